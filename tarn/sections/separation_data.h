#pragma once

// CPMSeparationData: the print mode's separations. Each output plane (an ink,
// by name) holds channel curves in order; a channel named like its plane
// passes the plane's own ink through, channels with other names pull another
// ink into the plane.
//
//   <SEPARATION name="CMYK" identifier="Set A">
//   	<OVR_ENABLE>1</OVR_ENABLE>
//   	<PLANE name="Cyan" channels="2">
//   		<CURVEDATA name="Cyan" type="1" keep0="0">
//   			<DATA>0.0000,0.0500,...,1.0000</DATA>
//   		</CURVEDATA>
//   		<CURVEDATA name="Orange" type="1" keep0="0">...</CURVEDATA>
//   	</PLANE>
//   </SEPARATION>
//
// "identifier" is written only when it is not empty.
//
// Reading: when a file holds the same "PLANE" name twice, the later plane
// replaces the earlier one, as a repeated element does everywhere else; with
// keep, a file plane also replaces an existing plane of that name. A plane's
// channels are the "CURVEDATA" elements it holds; the "channels" count is not
// checked against them, so no curve is ever dropped. "PLANE" elements without
// a name are skipped, as AddPlane refuses empty names.
//
// Plane and channel names compare exactly (same characters, same case): they
// are ink names taken verbatim from the printer definition, and the planes are
// kept ordered by that exact comparison.

#include <pugixml.hpp>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tarn/foundation/export.h"
#include "tarn/sections/curve_data.h"

namespace tarn {

class TARN_API CPMSeparationData {
 public:
  // The channel curves of one plane, in channel order.
  using ChannelQueue = std::deque<CPMCurveData>;
  // (ink name, flag) entries for SetForInkLimiting; the flag is carried for callers.
  using InkList = std::vector<std::pair<std::wstring, bool>>;

  // No planes, enable off, empty names.
  CPMSeparationData() = default;
  CPMSeparationData(const CPMSeparationData&) = default;
  CPMSeparationData(CPMSeparationData&&) noexcept = default;
  CPMSeparationData& operator=(const CPMSeparationData&) = default;
  CPMSeparationData& operator=(CPMSeparationData&&) noexcept = default;
  virtual ~CPMSeparationData() = default;

  // Enable off, colour mode empty, no planes. Resolution and identifier stay.
  void SetDefaults();
  // Removes every plane and its curves.
  void ClearPlanes();

  // Adds a plane holding channels (an empty queue when null); the section
  // takes the queue. Returns false, changing nothing, when name is empty or
  // the plane exists: the queue is then left with the caller.
  bool AddPlane(const std::wstring& name, std::unique_ptr<ChannelQueue>&& channels);
  // Adds a plane with one density identity channel named like the plane.
  // Returns false, changing nothing, when name is empty or the plane exists.
  bool AddLinearPlane(const std::wstring& name);

  // The plane's channels; null when there is no such plane.
  ChannelQueue* GetPlane(const std::wstring& name);
  const ChannelQueue* GetPlane(const std::wstring& name) const;
  unsigned GetPlaneCount() const { return static_cast<unsigned>(planes_.size()); }
  // The number of channels of the plane; 0 when there is no such plane.
  unsigned GetPlaneChannelCount(const std::wstring& name) const;
  // Walk the planes in name order, setting name; null at the end.
  ChannelQueue* GetFirstPlane(std::wstring& name);
  ChannelQueue* GetNextPlane(std::wstring& name);

  // The index-th channel of the plane; null when the plane is absent or index >= count.
  CPMCurveData* GetChannel(const std::wstring& planeName, unsigned index);
  // The first channel of channels named channelName; null when none (or channels is null).
  static CPMCurveData* GetChannel(ChannelQueue* channels, const std::wstring& channelName);
  // The first channel named channelName in the named plane; null when either is absent.
  CPMCurveData* GetChannel(const std::wstring& planeName, const std::wstring& channelName);
  // The first channel named channelName in any plane, planes in name order; null when none.
  CPMCurveData* GetChannel(const std::wstring& channelName);

  // The plane names in order.
  std::vector<std::wstring> GetMainInks() const;
  // The names of channels that differ from their plane's name, each once, in
  // order of first appearance (planes in order, channels in queue order).
  std::vector<std::wstring> GetSepInks() const;
  // For each plane named in inks: its own channel becomes the identity and
  // every other channel zero, so that the ink prints only itself. Planes not
  // listed are untouched.
  void SetForInkLimiting(const InkList& inks);

  bool GetEnable() const { return enable_; }
  void SetEnable(bool enable) { enable_ = enable; }
  const std::wstring& GetResolution() const { return resolution_; }
  void SetResolution(const std::wstring& resolution) { resolution_ = resolution; }
  const std::wstring& GetColorMode() const { return color_mode_; }
  void SetColorMode(const std::wstring& colorMode) { color_mode_ = colorMode; }
  const std::wstring& GetIdentifier() const { return identifier_; }
  void SetIdentifier(const std::wstring& identifier) { identifier_ = identifier; }

  // Reads a "SEPARATION" element, or the first child of a "PMH" element, after
  // restoring the defaults unless keep is set (then the file's planes join the
  // existing ones). Returns false when no "SEPARATION" element was found.
  bool ReadXML(const pugi::xml_node& node, bool keep);
  // Appends a "SEPARATION" element to parent.
  void WriteXML(pugi::xml_node& parent) const;

  // Equal when every field, every plane and every channel (as CPMCurveData
  // compares them) are equal.
  bool operator==(const CPMSeparationData& other) const;
  bool operator!=(const CPMSeparationData& other) const { return !(*this == other); }

 private:
  using PlaneMap = std::map<std::wstring, ChannelQueue>;

  std::uint32_t reserved_ = 0;  // cleared by every reset; nothing reads it
  bool enable_ = false;
  std::wstring resolution_;
  std::wstring color_mode_;
  std::wstring identifier_;
  PlaneMap planes_;
  // Plane last handed out by GetFirstPlane/GetNextPlane; a key rather than an
  // iterator, so that copies and edits never leave it dangling.
  std::optional<std::wstring> cursor_;
};

}  // namespace tarn
