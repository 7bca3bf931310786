#include "tarn/media/template_slots.h"

#include <string>

#include "tarn/foundation/format.h"
#include "tarn/foundation/xml.h"
#include "tarn/sections/internal/number_list.h"

namespace tarn {
namespace {

constexpr const char* kSlot = "SLOT";
// The rectangle as the text of "SLOT": three decimals, commas, no spaces.
constexpr std::wstring_view kRectFormat = L"%.3f,%.3f,%.3f,%.3f";

// The attributes of "SLOT" in the order they are written. Flags are written 1
// when the setting equals 1 and 0 otherwise; a setting of 2 reads back as 0.
struct SlotAttribute {
  const char* name;
  int _SlotData::*member;
  bool flag;
};
constexpr SlotAttribute kSlotAttributes[] = {
    {"item", &_SlotData::item, false},
    {"scaling", &_SlotData::scaling, false},
    {"rotate_enum", &_SlotData::rotate, false},
    {"anchor", &_SlotData::anchor, false},
    {"Mirror", &_SlotData::mirror, true},
    {"DoCustomPattern", &_SlotData::doCustomPattern, true},
    {"Scaling_Vector", &_SlotData::scalingVector, false},
    {"Rotate_Vector", &_SlotData::rotateVector, false},
    {"Mirror_Vector", &_SlotData::mirrorVector, false},
    {"Pattern", &_SlotData::pattern, false},
    {"DoFixedGraphics", &_SlotData::doFixedGraphics, false},
    {"FixedGraphics", &_SlotData::fixedGraphics, false},
    {"scaling_Graphics", &_SlotData::scalingGraphics, false},
    {"rotate_Graphics", &_SlotData::rotateGraphics, false},
    {"anchor_Graphics", &_SlotData::anchorGraphics, false},
    {"arrange_Graphics", &_SlotData::arrangeGraphics, false},
    {"CreepAmount_X", &_SlotData::creepAmountX, false},
    {"CreepAmount_Y", &_SlotData::creepAmountY, false},
};

}  // namespace

bool _SlotData::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kSlot)) {
    return false;
  }
  SetDefaults();
  double rect[4] = {};
  if (internal::ScanRealList(xml::ReadText(node), rect)) {
    x = rect[0];
    y = rect[1];
    width = rect[2];
    height = rect[3];
  }
  for (const SlotAttribute& attribute : kSlotAttributes) {
    this->*attribute.member = xml::ReadAttributeInt(node, attribute.name);
  }
  return true;
}

void _SlotData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendText(parent, kSlot, Format(kRectFormat, x, y, width, height));
  for (const SlotAttribute& attribute : kSlotAttributes) {
    const int value = this->*attribute.member;
    xml::SetAttributeInt(node, attribute.name, attribute.flag ? (value == 1 ? 1 : 0) : value);
  }
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
