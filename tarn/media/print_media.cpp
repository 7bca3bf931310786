#include "tarn/media/print_media.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

// Sizes are compared at a thousandth of a point.
bool RoundsToZero(double value) {
  return std::round(value * 1000.0) == 0.0;
}

constexpr std::wstring_view kForbidden = CPrintMedia::kForbiddenNameChars;
constexpr std::wstring_view kDefaultTemplate = CPrintMedia::kDefaultTemplateName;

}  // namespace

// --- the quick-set -------------------------------------------------------

struct CQTAData::Fields {
  using R = CQTAData;
  using F = internal::Field<R>;
  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(R::kElementName, {
                                                                    F::Real("HSpace", &R::m_hSpace),
                                                                    F::Real("VSpace", &R::m_vSpace),
                                                                    F::Real("HOffset", &R::m_hOffset),
                                                                    F::Real("VOffset", &R::m_vOffset),
                                                                    F::Int("HNumber", &R::m_hNumber),
                                                                    F::Int("VNumber", &R::m_vNumber),
                                                                    F::Real("SlotWidth", &R::m_slotWidth),
                                                                    F::Real("SlotHeight", &R::m_slotHeight),
                                                                    F::Int("FillOrder", &R::m_fillOrder),
                                                                });
    return table;
  }
};

bool CQTAData::ReadXML(const pugi::xml_node& node) {
  return Fields::Table().Read(*this, node);
}

void CQTAData::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, kElementName));
}

bool CQTAData::GetSlotData(_SlotData* slot, int index, int fillOrder) const {
  const long long count = static_cast<long long>(m_hNumber) * m_vNumber;
  if (slot == nullptr || m_hNumber < 1 || index < 0 || index >= count) {
    return false;
  }
  const int column = index % m_hNumber;
  const int row = index / m_hNumber;
  slot->x = m_hOffset + column * (m_slotWidth + m_hSpace);
  slot->y = m_vOffset + row * (m_slotHeight + m_vSpace);
  slot->width = m_slotWidth;
  slot->height = m_slotHeight;
  switch (fillOrder) {
    case 1: {  // down the columns; a grid too large for int numbers stops at the largest
      const long long item = static_cast<long long>(column) * m_vNumber + row + 1;
      slot->item = static_cast<int>(std::min<long long>(item, std::numeric_limits<int>::max()));
      break;
    }
    case 2:  // the same image in every slot
      slot->item = 1;
      break;
    case 3:  // one image per row
      slot->item = row + 1;
      break;
    case 4:  // one image per column
      slot->item = column + 1;
      break;
    default:  // along the rows
      slot->item = index + 1;
      break;
  }
  return true;
}

std::unique_ptr<CPrintMedia> CQTAData::GenerateTemplate(int fillOrder) const {
  // Both counts must be positive: two negative counts multiply to a positive
  // number of slots that no grid has.
  const long long count = static_cast<long long>(m_hNumber) * m_vNumber;
  if (m_hNumber < 1 || m_vNumber < 1 || count > kMaxSlots || RoundsToZero(m_slotWidth) ||
      RoundsToZero(m_slotHeight)) {
    return nullptr;
  }
  auto media = std::make_unique<CPrintMedia>();
  media->SetType(CPrintMedia::MEDIA_TEMPLATE);
  // The page holds the grid with the offsets as margins all round, so that a
  // generated template is a valid page from the start.
  media->SetSize(2.0 * m_hOffset + m_hNumber * m_slotWidth + (m_hNumber - 1) * m_hSpace,
                 2.0 * m_vOffset + m_vNumber * m_slotHeight + (m_vNumber - 1) * m_vSpace);
  for (int i = 0; i < count; ++i) {
    auto slot = std::make_unique<_SlotData>();
    slot->scaling = 2;
    slot->rotate = 0;
    slot->anchor = 4;
    slot->mirror = 0;
    GetSlotData(slot.get(), i, fillOrder);
    media->GetSlots().Add(std::move(slot));
  }
  media->SetQuickSet(*this);
  return media;
}

// --- the media record ----------------------------------------------------

struct CPrintMedia::Fields {
  using R = CPrintMedia;
  using F = internal::Field<R>;
  using internal::Write::kIfNotEmpty;

  static bool Locked(const R& r) { return r.m_locked; }
  // A template carries its page set-up whether locked or not.
  static bool LockedOrTemplate(const R& r) { return r.m_locked || r.IsTemplate(); }
  static bool Template(const R& r) { return r.IsTemplate(); }
  static bool HasPaperSize(const R& r) { return r.m_paperSizeCode != 0; }

  // Reading the quick-set puts it in use; it is written only while in use.
  static void ReadQuickSet(R& r, const pugi::xml_node& node, internal::ReadContext& /*context*/) {
    r.m_quickSet.ReadXML(node);
    r.m_quickSetInUse = true;
  }
  static void WriteQuickSet(const R& r, pugi::xml_node& node) {
    if (r.IsTemplate() && r.m_quickSetInUse) {
      r.m_quickSet.WriteXML(node);
    }
  }
  static void ReadSlots(R& r, const pugi::xml_node& node, internal::ReadContext& /*context*/) {
    r.ReadSlots(node);
  }
  static void WriteSlots(const R& r, pugi::xml_node& node) {
    if (r.IsTemplate()) {
      r.WriteSlots(node);
    }
  }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        R::kElementName,
        {
            F::Text("Name", &R::m_name),
            F::Text("Version", &R::m_version),
            F::Text("Copyright", &R::m_copyright),
            F::Int("Type", &R::m_type),
            F::Real("Width", &R::m_width),
            F::Real("Height", &R::m_height),
            F::Real("LMargin", &R::m_lMargin),
            F::Real("RMargin", &R::m_rMargin),
            F::Real("TMargin", &R::m_tMargin),
            F::Real("BMargin", &R::m_bMargin),
            F::Real("XSpacing", &R::m_xSpacing),
            F::Real("YSpacing", &R::m_ySpacing),
            F::Bool("Locked", &R::m_locked),
            F::Text("PS", &R::m_ps).Writes(kIfNotEmpty).When(&LockedOrTemplate),
            F::Text("PSImageableArea", &R::m_psImageableArea).Writes(kIfNotEmpty).When(&Locked),
            F::Text("PSDimension", &R::m_psDimension).Writes(kIfNotEmpty).When(&Locked),
            F::Text("TEMPLATE_BASE", &R::m_templateBase).When(&Template),
            F::Custom(CQTAData::kElementName, &ReadQuickSet, &WriteQuickSet),
            F::Custom(CTemplateSlots::kElementName, &ReadSlots, &WriteSlots),
            F::Bool("BookTemplate", &R::m_bookTemplate).When(&Template),
            F::Bool("CreepContent", &R::m_creepContent).When(&Template),
            F::Int16("PaperSizeName", &R::m_paperSizeCode).When(&HasPaperSize),
        });
    return table;
  }
};

bool CPrintMedia::operator==(const CPrintMedia& other) const {
  return Fields::Table().Equal(*this, other) && m_quickSet == other.m_quickSet &&
         m_quickSetInUse == other.m_quickSetInUse && m_slots == other.m_slots;
}

void CPrintMedia::SetDefaults() {
  *this = CPrintMedia();
}

void CPrintMedia::CreateDefaultRoll(double widthPoints) {
  SetDefaults();
  m_type = MEDIA_ROLL;
  m_name = kDefaultRollName;
  m_width = widthPoints;
  m_height = kRollHeight;
}

void CPrintMedia::CreateDefaultSheet() {
  MakeOneSlotPage(MEDIA_SHEET, kDefaultSheetName, kA4Width, kRollHeight);
}

void CPrintMedia::CreateDefaultTemplate() {
  MakeOneSlotPage(MEDIA_TEMPLATE, kDefaultTemplateName, kA4Width, kA4Height);
}

void CPrintMedia::MakeOneSlotPage(std::int32_t type, const wchar_t* name, double width, double height) {
  SetDefaults();
  m_type = type;
  m_name = name;
  m_width = width;
  m_height = height;
  _SlotData slot;
  slot.width = width;
  slot.height = height;
  m_slots.Add(slot);
}

bool CPrintMedia::MakeDefaultMedia(std::int32_t kind, double rollWidthPoints) {
  switch (kind) {
    case MEDIA_ROLL:
      CreateDefaultRoll(rollWidthPoints);
      return true;
    case MEDIA_SHEET:
      CreateDefaultSheet();
      return true;
    case MEDIA_FIXED:
      CreateDefaultSheet();
      m_type = MEDIA_FIXED;
      return true;
    case MEDIA_TEMPLATE:
      CreateDefaultTemplate();
      return true;
    default:
      SetDefaults();
      return false;
  }
}

bool CPrintMedia::IsDataValid() {
  if (m_name.empty() || RoundsToZero(m_width)) {
    return false;
  }
  if (IsSheet() && RoundsToZero(m_height)) {
    return false;
  }
  if (IsRoll()) {
    m_height = kRollHeight;
  }
  return true;
}

bool CPrintMedia::HasMargins() const {
  return !RoundsToZero(m_lMargin) || !RoundsToZero(m_rMargin) || !RoundsToZero(m_tMargin) ||
         !RoundsToZero(m_bMargin);
}

const wchar_t* CPrintMedia::KindName(std::int32_t type) {
  switch (type) {
    case MEDIA_ROLL:
      return L"roll";
    case MEDIA_SHEET:
      return L"sheet";
    case MEDIA_TEMPLATE:
      return L"template";
    case MEDIA_FIXED:
      return L"fixed size";
    default:
      return L"unknown kind";
  }
}

bool CPrintMedia::IsDefaultTemplate() const {
  if (!IsTemplate() || !m_name.starts_with(kDefaultTemplate)) {
    return false;
  }
  return m_name.size() == kDefaultTemplate.size() || m_name[kDefaultTemplate.size()] == L'_';
}

std::wstring CPrintMedia::GetPSName() const {
  std::wstring name = m_name;
  for (wchar_t& c : name) {
    if (c == L' ') {
      c = L'_';
    }
  }
  return name;
}

bool CPrintMedia::GetSlotOrigin(int index, double& x, double& y) const {
  if (index < 0) {
    return false;
  }
  const _SlotData* slot = m_slots.Get(static_cast<std::size_t>(index));
  if (!slot) {
    return false;
  }
  x = slot->x;
  y = slot->y;
  return true;
}

std::wstring CPrintMedia::MakePSImageableArea() const {
  return Format(L"%.3f %.3f %.3f %.3f", m_lMargin, m_bMargin, m_width - m_rMargin, m_height - m_tMargin);
}

std::wstring CPrintMedia::MakePSDimension() const {
  return Format(L"%.3f %.3f", m_width, m_height);
}

bool CPrintMedia::ReadXML(const pugi::xml_node& node) {
  if (!Fields::Table().Read(*this, node)) {
    return false;
  }
  // A page set-up text makes a medium its maker's: media with one have always
  // been locked on reading, whatever "Locked" said. Templates keep theirs
  // unlocked.
  if (!IsTemplate() && !m_ps.empty()) {
    m_locked = true;
  }
  return true;
}

bool CPrintMedia::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, kElementName));
  return true;
}

bool CPrintMedia::IsFileNameChar(wchar_t c) {
  const bool control = (c >= 0 && c < 0x20) || c == 0x7F;
  return !control && kForbidden.find(c) == std::wstring_view::npos;
}

bool CPrintMedia::IsFileNameSafe(const std::wstring& name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), IsFileNameChar);
}

std::wstring CPrintMedia::MakeFilePath(const std::wstring& folder, const std::wstring& name) {
  std::wstring path = folder;
  if (!path.empty() && path.back() != L'\\' && path.back() != L'/') {
    path += L'\\';
  }
  return path + name + kExtension;
}

bool CPrintMedia::ReadFile(const std::wstring& path, std::wstring* error) {
  SetDefaults();
  std::string data;
  std::wstring reason;
  if (!ReadWholeFile(path, data, &reason)) {
    if (error) {
      *error = reason;
    }
    return false;
  }
  pugi::xml_document document;
  if (!xml::LoadDocumentFromBuffer(document, data, kElementName)) {
    if (error) {
      *error = L"not a media file (not XML, or its root is not XMEDIA)";
    }
    return false;
  }
  ReadXML(document.first_child());
  m_path = path;
  return true;
}

bool CPrintMedia::WriteFile(const std::wstring& folder, std::wstring* error) {
  if (folder.empty() || m_name.empty()) {
    if (error) {
      *error = folder.empty() ? L"no folder given" : L"the media has no name";
    }
    return false;
  }
  if (!IsFileNameSafe(m_name)) {
    if (error) {
      *error = L"the name holds a character a media name may not hold";
    }
    return false;
  }
  pugi::xml_document document;
  WriteXML(document);
  const std::wstring path = MakeFilePath(folder, m_name);
  if (!xml::SaveDocument(document, path, error)) {
    return false;
  }
  m_path = path;
  return true;
}

bool CPrintMedia::LoadDef(const std::wstring& folder, const std::wstring& name, std::wstring* error) {
  if (!IsFileNameSafe(name)) {
    SetDefaults();
    if (error) {
      *error = L"not a media name";
    }
    return false;
  }
  return ReadFile(MakeFilePath(folder, name), error);
}

}  // namespace tarn
