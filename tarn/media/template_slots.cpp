#include "tarn/media/template_slots.h"

#include <string>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/xml.h"
#include "tarn/sections/internal/number_list.h"

namespace tarn {
namespace {

constexpr const char* kSlot = "SLOT";
// The rectangle as the text of "SLOT": three decimals, commas, no spaces.
constexpr std::wstring_view kRectFormat = L"%.3f,%.3f,%.3f,%.3f";

}  // namespace

// The settings are the attributes of "SLOT", in the order they are written.
struct _SlotData::Fields {
  using R = _SlotData;
  using F = internal::Field<R>;

  // "Mirror" and "DoCustomPattern" are flags in the file: 1 when the setting
  // is 1 and 0 for anything else, so a setting of 2 reads back as 0. Each is a
  // writer at its place and a row that reads it.
  static void WriteMirror(const R& r, pugi::xml_node node) {
    xml::SetAttributeInt(node, "Mirror", r.mirror == 1 ? 1 : 0);
  }
  static void WriteDoCustomPattern(const R& r, pugi::xml_node node) {
    xml::SetAttributeInt(node, "DoCustomPattern", r.doCustomPattern == 1 ? 1 : 0);
  }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        kSlot, {
                   F::Int("item", &R::item).Attribute(),
                   F::Int("scaling", &R::scaling).Attribute(),
                   F::Int("rotate_enum", &R::rotate).Attribute(),
                   F::Int("anchor", &R::anchor).Attribute(),
                   F::Writer(&WriteMirror),
                   F::Int("Mirror", &R::mirror).Attribute().Writes(internal::Write::kNever),
                   F::Writer(&WriteDoCustomPattern),
                   F::Int("DoCustomPattern", &R::doCustomPattern).Attribute().Writes(internal::Write::kNever),
                   F::Int("Scaling_Vector", &R::scalingVector).Attribute(),
                   F::Int("Rotate_Vector", &R::rotateVector).Attribute(),
                   F::Int("Mirror_Vector", &R::mirrorVector).Attribute(),
                   F::Int("Pattern", &R::pattern).Attribute(),
                   F::Int("DoFixedGraphics", &R::doFixedGraphics).Attribute(),
                   F::Int("FixedGraphics", &R::fixedGraphics).Attribute(),
                   F::Int("scaling_Graphics", &R::scalingGraphics).Attribute(),
                   F::Int("rotate_Graphics", &R::rotateGraphics).Attribute(),
                   F::Int("anchor_Graphics", &R::anchorGraphics).Attribute(),
                   F::Int("arrange_Graphics", &R::arrangeGraphics).Attribute(),
                   F::Int("CreepAmount_X", &R::creepAmountX).Attribute(),
                   F::Int("CreepAmount_Y", &R::creepAmountY).Attribute(),
               });
    return table;
  }
};

bool _SlotData::ReadXML(const pugi::xml_node& node) {
  if (!Fields::Table().Read(*this, node)) {
    return false;
  }
  // The rectangle is the element's own text, which no row covers.
  double rect[4] = {};
  if (internal::ScanRealList(xml::ReadText(node), rect)) {
    x = rect[0];
    y = rect[1];
    width = rect[2];
    height = rect[3];
  }
  return true;
}

void _SlotData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendText(parent, kSlot, Format(kRectFormat, x, y, width, height));
  Fields::Table().Write(*this, node);
}

CTemplateSlots::CTemplateSlots(const CTemplateSlots& other) {
  other.copy(m_slots);
}

CTemplateSlots& CTemplateSlots::operator=(const CTemplateSlots& other) {
  if (this != &other) {
    std::deque<std::unique_ptr<_SlotData>> slots;
    other.copy(slots);
    m_slots = std::move(slots);
  }
  return *this;
}

bool CTemplateSlots::operator==(const CTemplateSlots& other) const {
  if (m_slots.size() != other.m_slots.size()) {
    return false;
  }
  for (std::size_t i = 0; i < m_slots.size(); ++i) {
    if (!(*m_slots[i] == *other.m_slots[i])) {
      return false;
    }
  }
  return true;
}

_SlotData* CTemplateSlots::Get(std::size_t index) {
  return index < m_slots.size() ? m_slots[index].get() : nullptr;
}

const _SlotData* CTemplateSlots::Get(std::size_t index) const {
  return index < m_slots.size() ? m_slots[index].get() : nullptr;
}

_SlotData* CTemplateSlots::Add(const _SlotData& slot) {
  return Add(slot.Clone());
}

_SlotData* CTemplateSlots::Add(std::unique_ptr<_SlotData> slot) {
  if (!slot) {
    return nullptr;
  }
  m_slots.push_back(std::move(slot));
  return m_slots.back().get();
}

void CTemplateSlots::copy(std::deque<std::unique_ptr<_SlotData>>& out) const {
  for (const auto& slot : m_slots) {
    out.push_back(slot->Clone());
  }
}

bool CTemplateSlots::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  m_slots.clear();
  for (const pugi::xml_node& child : node.children()) {
    auto slot = std::make_unique<_SlotData>();
    if (slot->ReadXML(child)) {
      m_slots.push_back(std::move(slot));
    }
  }
  return true;
}

void CTemplateSlots::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  for (const auto& slot : m_slots) {
    slot->WriteXML(node);
  }
}

}  // namespace tarn
