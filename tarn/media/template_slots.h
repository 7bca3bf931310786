#pragma once

// The slots of a template: rectangles on the sheet that each receive one image,
// with how the image is placed in its slot. A template keeps them under
// "SLOTS", one "SLOT" per slot in slot order; the text is the rectangle (x, y,
// width, height in points) and the attributes are the placement settings:
//
//   <SLOTS>
//   	<SLOT item="1" scaling="2" rotate_enum="0" anchor="4" Mirror="0" DoCustomPattern="0"
//   	      Scaling_Vector="0" Rotate_Vector="0" Mirror_Vector="0" Pattern="0" DoFixedGraphics="0"
//   	      FixedGraphics="0" scaling_Graphics="0" rotate_Graphics="0" anchor_Graphics="0"
//   	      arrange_Graphics="0" CreepAmount_X="0" CreepAmount_Y="0">18.000,18.000,144.000,72.000</SLOT>
//   </SLOTS>

#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>

#include "tarn/foundation/export.h"

namespace tarn {

// One slot: its rectangle and the placement settings of the image it receives.
// Every setting is a whole number; "item" is the number of the image (1 for
// the first image of a job).
struct TARN_API _SlotData {
  _SlotData() = default;
  virtual ~_SlotData() = default;
  _SlotData(const _SlotData&) = default;
  _SlotData& operator=(const _SlotData&) = default;

  // A copy of the same dynamic type, for containers that copy deeply.
  virtual std::unique_ptr<_SlotData> Clone() const { return std::make_unique<_SlotData>(*this); }

  bool operator==(const _SlotData&) const = default;

  // Every field back to 0.
  void SetDefaults() { *this = _SlotData(); }

  // Reads a "SLOT" element: the rectangle from its text, the settings from its
  // attributes. A text that is not four numbers leaves the rectangle at 0 and
  // absent attributes leave their settings at 0; false only when node is not
  // "SLOT".
  bool ReadXML(const pugi::xml_node& node);
  // Appends a "SLOT" element to parent.
  void WriteXML(pugi::xml_node parent) const;

  // The rectangle, in points from the sheet's origin.
  double x = 0.0;
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;

  // The placement settings, in the order of their attributes.
  std::int32_t item = 0;
  std::int32_t scaling = 0;
  std::int32_t rotate = 0;  // "rotate_enum"
  std::int32_t anchor = 0;
  std::int32_t mirror = 0;           // written as a flag: 1 only when it equals 1
  std::int32_t doCustomPattern = 0;  // written as a flag: 1 only when it equals 1
  std::int32_t scalingVector = 0;
  std::int32_t rotateVector = 0;
  std::int32_t mirrorVector = 0;
  std::int32_t pattern = 0;
  std::int32_t doFixedGraphics = 0;
  std::int32_t fixedGraphics = 0;
  std::int32_t scalingGraphics = 0;
  std::int32_t rotateGraphics = 0;
  std::int32_t anchorGraphics = 0;
  std::int32_t arrangeGraphics = 0;
  std::int32_t creepAmountX = 0;
  std::int32_t creepAmountY = 0;

 private:
  struct Fields;  // the field table, in the source file
};

// The slots of a template, in slot order. Owns them; copies are deep.
class TARN_API CTemplateSlots {
 public:
  static constexpr const char* kElementName = "SLOTS";

  CTemplateSlots() = default;
  virtual ~CTemplateSlots() = default;
  CTemplateSlots(const CTemplateSlots& other);
  CTemplateSlots& operator=(const CTemplateSlots& other);
  CTemplateSlots(CTemplateSlots&&) noexcept = default;
  CTemplateSlots& operator=(CTemplateSlots&&) noexcept = default;

  // Equal when both hold equal slots in the same order.
  bool operator==(const CTemplateSlots& other) const;

  std::size_t size() const { return m_slots.size(); }
  bool empty() const { return m_slots.empty(); }
  void clear() { m_slots.clear(); }

  // The slot at index, or null when index is out of range.
  _SlotData* Get(std::size_t index);
  const _SlotData* Get(std::size_t index) const;

  // Appends a copy of slot / takes slot over; returns the slot as stored.
  _SlotData* Add(const _SlotData& slot);
  _SlotData* Add(std::unique_ptr<_SlotData> slot);

  // Appends a copy of every slot to out; the copies belong to out.
  void copy(std::deque<std::unique_ptr<_SlotData>>& out) const;

  // Replaces the slots with the "SLOT" children of a "SLOTS" element, in
  // document order; other children are skipped. False only when node is not
  // "SLOTS" (the slots are then left as they were).
  bool ReadXML(const pugi::xml_node& node);
  // Appends "SLOTS" with one "SLOT" per slot to parent.
  void WriteXML(pugi::xml_node parent) const;

  auto begin() const { return m_slots.begin(); }
  auto end() const { return m_slots.end(); }

 private:
  std::deque<std::unique_ptr<_SlotData>> m_slots;
};

}  // namespace tarn
