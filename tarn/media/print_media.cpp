#include "tarn/media/print_media.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

#include "tarn/foundation/format.h"
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

struct CQTAData::Field {
  const char* tag;
  double CQTAData::*real = nullptr;
  std::int32_t CQTAData::*integer = nullptr;
};

std::span<const CQTAData::Field> CQTAData::Fields() {
  using Q = CQTAData;
  static const Field kFields[] = {
      {.tag = "HSpace", .real = &Q::m_hSpace},
      {.tag = "VSpace", .real = &Q::m_vSpace},
      {.tag = "HOffset", .real = &Q::m_hOffset},
      {.tag = "VOffset", .real = &Q::m_vOffset},
      {.tag = "HNumber", .integer = &Q::m_hNumber},
      {.tag = "VNumber", .integer = &Q::m_vNumber},
      {.tag = "SlotWidth", .real = &Q::m_slotWidth},
      {.tag = "SlotHeight", .real = &Q::m_slotHeight},
      {.tag = "FillOrder", .integer = &Q::m_fillOrder},
  };
  return kFields;
}

bool CQTAData::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  SetDefaults();
  for (const pugi::xml_node& child : node.children()) {
    for (const Field& field : Fields()) {
      if (!xml::IsNamed(child, field.tag)) {
        continue;
      }
      if (field.real) {
        this->*field.real = xml::ReadReal(child);
      } else {
        this->*field.integer = xml::ReadInt(child);
      }
      break;
    }
  }
  return true;
}

void CQTAData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  for (const Field& field : Fields()) {
    if (field.real) {
      xml::AppendReal(node, field.tag, this->*field.real);
    } else {
      xml::AppendInt(node, field.tag, this->*field.integer);
    }
  }
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

struct CPrintMedia::Field {
  const char* tag;
  std::wstring CPrintMedia::*text = nullptr;
  std::int32_t CPrintMedia::*integer = nullptr;
  double CPrintMedia::*real = nullptr;
  bool CPrintMedia::*flag = nullptr;
  std::int16_t CPrintMedia::*shortInteger = nullptr;
  // What is not a plain value is read and written by hand.
  void (*read)(CPrintMedia&, const pugi::xml_node&) = nullptr;
  void (*write)(const CPrintMedia&, pugi::xml_node) = nullptr;
  // Written only when this says so; null writes always.
  bool (*when)(const CPrintMedia&) = nullptr;
};

std::span<const CPrintMedia::Field> CPrintMedia::Fields() {
  using M = CPrintMedia;
  static constexpr auto isTemplate = [](const M& m) { return m.IsTemplate(); };
  static const Field kFields[] = {
      {.tag = "Name", .text = &M::m_name},
      {.tag = "Version", .text = &M::m_version},
      {.tag = "Copyright", .text = &M::m_copyright},
      {.tag = "Type", .integer = &M::m_type},
      {.tag = "Width", .real = &M::m_width},
      {.tag = "Height", .real = &M::m_height},
      {.tag = "LMargin", .real = &M::m_lMargin},
      {.tag = "RMargin", .real = &M::m_rMargin},
      {.tag = "TMargin", .real = &M::m_tMargin},
      {.tag = "BMargin", .real = &M::m_bMargin},
      {.tag = "XSpacing", .real = &M::m_xSpacing},
      {.tag = "YSpacing", .real = &M::m_ySpacing},
      {.tag = "Locked", .flag = &M::m_locked},
      // A template carries its page set-up whether locked or not; other media
      // only while locked.
      {.tag = "PS",
       .text = &M::m_ps,
       .when = [](const M& m) { return !m.m_ps.empty() && (m.m_locked || m.IsTemplate()); }},
      {.tag = "PSImageableArea",
       .text = &M::m_psImageableArea,
       .when = [](const M& m) { return !m.m_psImageableArea.empty() && m.m_locked; }},
      {.tag = "PSDimension",
       .text = &M::m_psDimension,
       .when = [](const M& m) { return !m.m_psDimension.empty() && m.m_locked; }},
      {.tag = "TEMPLATE_BASE", .text = &M::m_templateBase, .when = isTemplate},
      {.tag = CQTAData::kElementName,
       .read =
           [](M& m, const pugi::xml_node& node) {
             m.m_quickSet.ReadXML(node);
             m.m_quickSetInUse = true;
           },
       .write = [](const M& m, pugi::xml_node parent) { m.m_quickSet.WriteXML(parent); },
       .when = [](const M& m) { return m.IsTemplate() && m.m_quickSetInUse; }},
      {.tag = CTemplateSlots::kElementName,
       .read = [](M& m, const pugi::xml_node& node) { m.ReadSlots(node); },
       .write = [](const M& m, pugi::xml_node parent) { m.WriteSlots(parent); },
       .when = isTemplate},
      {.tag = "BookTemplate", .flag = &M::m_bookTemplate, .when = isTemplate},
      {.tag = "CreepContent", .flag = &M::m_creepContent, .when = isTemplate},
      {.tag = "PaperSizeName",
       .shortInteger = &M::m_paperSizeCode,
       .when = [](const M& m) { return m.m_paperSizeCode != 0; }},
  };
  return kFields;
}

bool CPrintMedia::operator==(const CPrintMedia& other) const {
  return m_name == other.m_name && m_version == other.m_version && m_copyright == other.m_copyright &&
         m_type == other.m_type && m_width == other.m_width && m_height == other.m_height &&
         m_lMargin == other.m_lMargin && m_rMargin == other.m_rMargin && m_tMargin == other.m_tMargin &&
         m_bMargin == other.m_bMargin && m_xSpacing == other.m_xSpacing && m_ySpacing == other.m_ySpacing &&
         m_locked == other.m_locked && m_ps == other.m_ps && m_psImageableArea == other.m_psImageableArea &&
         m_psDimension == other.m_psDimension && m_templateBase == other.m_templateBase &&
         m_quickSet == other.m_quickSet && m_quickSetInUse == other.m_quickSetInUse &&
         m_slots == other.m_slots && m_bookTemplate == other.m_bookTemplate &&
         m_creepContent == other.m_creepContent && m_paperSizeCode == other.m_paperSizeCode;
}

void CPrintMedia::SetDefaults() {
  for (const Field& field : Fields()) {
    if (field.text) {
      (this->*field.text).clear();
    } else if (field.integer) {
      this->*field.integer = 0;
    } else if (field.real) {
      this->*field.real = 0.0;
    } else if (field.flag) {
      this->*field.flag = false;
    } else if (field.shortInteger) {
      this->*field.shortInteger = 0;
    }
  }
  m_copyright = kDefaultCopyright;
  m_quickSet.SetDefaults();
  m_quickSetInUse = false;
  m_slots.clear();
  m_path.clear();
}

void CPrintMedia::CreateDefaultRoll(double widthPoints) {
  SetDefaults();
  m_type = MEDIA_ROLL;
  m_name = kDefaultRollName;
  m_width = widthPoints;
  m_height = kRollHeight;
}

void CPrintMedia::CreateDefaultSheet() {
  SetDefaults();
  m_type = MEDIA_SHEET;
  m_name = kDefaultSheetName;
  m_width = kA4Width;
  m_height = kRollHeight;
  _SlotData slot;
  slot.width = m_width;
  slot.height = m_height;
  m_slots.Add(slot);
}

void CPrintMedia::CreateDefaultTemplate() {
  SetDefaults();
  m_type = MEDIA_TEMPLATE;
  m_name = kDefaultTemplateName;
  m_width = kA4Width;
  m_height = kA4Height;
  _SlotData slot;
  slot.width = m_width;
  slot.height = m_height;
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
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  SetDefaults();
  for (const pugi::xml_node& child : node.children()) {
    for (const Field& field : Fields()) {
      if (!xml::IsNamed(child, field.tag)) {
        continue;
      }
      if (field.text) {
        this->*field.text = xml::ReadText(child);
      } else if (field.integer) {
        this->*field.integer = xml::ReadInt(child);
      } else if (field.real) {
        this->*field.real = xml::ReadReal(child);
      } else if (field.flag) {
        this->*field.flag = xml::ReadBool(child);
      } else if (field.shortInteger) {
        this->*field.shortInteger = static_cast<std::int16_t>(xml::ReadInt(child));
      } else if (field.read) {
        field.read(*this, child);
      }
      break;
    }
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
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  for (const Field& field : Fields()) {
    if (field.when && !field.when(*this)) {
      continue;
    }
    if (field.text) {
      xml::AppendText(node, field.tag, this->*field.text);
    } else if (field.integer) {
      xml::AppendInt(node, field.tag, this->*field.integer);
    } else if (field.real) {
      xml::AppendReal(node, field.tag, this->*field.real);
    } else if (field.flag) {
      xml::AppendBool(node, field.tag, this->*field.flag);
    } else if (field.shortInteger) {
      xml::AppendInt(node, field.tag, this->*field.shortInteger);
    } else if (field.write) {
      field.write(*this, node);
    }
  }
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
