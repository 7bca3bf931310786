#pragma once

// One layer of a layered print mode: the print mode that renders it (a private
// copy), the colour model it prints with, its planes, its bitmap processing
// options and its print-time settings.
//
//   <Layer>
//   	<LayerName>White Underbase</LayerName>
//   	<PrintMode>White 720.pmx</PrintMode>
//   	<PMH>...the print mode's sections...</PMH>
//   	<ColorMode>CMYKW</ColorMode>
//   	<BaseModel>CMYK</BaseModel>
//   	<Repeats>1</Repeats>
//   	<Mirror>0</Mirror>
//   	<FloodLevel>255</FloodLevel>
//   	<Page>-1</Page>
//   	<ExcludeFromPreview>0</ExcludeFromPreview>
//   	<LayerDelayDlg>0</LayerDelayDlg>
//   	<LayerDelay>0</LayerDelay>
//   	<TogglePort>0</TogglePort>
//   	<ScaleX>1</ScaleX>
//   	<ScaleY>1</ScaleY>
//   	<BitmapProcessingOptions>...</BitmapProcessingOptions>
//   	<PlaneOptions>...</PlaneOptions>       (one per plane, in order)
//   </Layer>
//
// Older files give the planes as a "Channels" element instead; see
// docs/formats/layered-print-mode.md.

#include <pugixml.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tarn/foundation/export.h"
#include "tarn/layers/bmp_process_options.h"
#include "tarn/layers/plane_options.h"

namespace tarn {

class CPrintModeData;
class CPrinterData;

class TARN_API Layer {
 public:
  // Element name of a layer.
  static constexpr const char* kElementName = "Layer";

  // The default name, translated when a layer is made.
  static constexpr const wchar_t* kDefaultName = L"(*v*)Color Layer";

  // A layer named "(*v*)Color Layer" (translated) with a new default print
  // mode, one repeat, flood level 255, page -1, scales 1.0 and the four
  // process planes, all enabled.
  Layer();
  // Deep copies: the copy owns its own copy of the print mode.
  Layer(const Layer& other);
  Layer& operator=(const Layer& other);
  // A moved-from layer holds no print mode.
  Layer(Layer&& other) noexcept;
  Layer& operator=(Layer&& other) noexcept;
  ~Layer();

  // Takes a copy of printMode and the colour model it prints with. False, the
  // layer unchanged, when printer is null or lacks the print mode's colour
  // mode ("Color Plane" of its printer options). When the colour mode is the
  // one the layer already has, the planes stay as they are; otherwise they are
  // rebuilt from the colour model, each taking the settings of the plane of
  // the same name in previous when there is one (previous may be this layer).
  bool SetPrintMode(const CPrintModeData& printMode, CPrinterData* printer, Layer* previous);
  // Copies the layer's print mode into out; false when the layer has none.
  bool GetPrintMode(CPrintModeData& out) const;
  // The layer's own print mode; null only for a moved-from layer. The layer
  // keeps ownership.
  CPrintModeData* GetPrintModePointer() { return print_mode_.get(); }
  const CPrintModeData* GetPrintModePointer() const { return print_mode_.get(); }

  const std::wstring& GetPrintModeName() const { return print_mode_name_; }
  const std::wstring& GetColorModel() const { return color_model_; }
  const std::wstring& GetBaseModel() const { return base_model_; }
  // The printer named in the layer's print mode; empty when it has none.
  std::wstring GetPrinterL() const;

  // --- planes ---
  std::vector<PlaneOptions> GetPlaneOptions() const { return planes_; }
  const std::vector<PlaneOptions>& GetPlanes() const { return planes_; }
  void SetPlaneOptions(const std::vector<PlaneOptions>& planes) { planes_ = planes; }
  unsigned GetNumberOfChannels() const { return static_cast<unsigned>(planes_.size()); }
  // Walk the planes: GetFirstChannel copies the first plane, each
  // GetNextChannel the next. False, out untouched, when there is no (further)
  // plane. The position is state of the layer: one walk at a time.
  bool GetFirstChannel(PlaneOptions& out);
  bool GetNextChannel(PlaneOptions& out);

  // True when every plane of the print mode is a keyword plane of the printer;
  // worked out by SetPrintMode (and ReadXML when given the printer).
  bool IsPlanesAllKeyWords() const { return planes_all_keywords_; }
  // The enabled flag of the plane of that exact name; false when there is none.
  bool IsPlaneEnable(const std::wstring& name) const;
  // Gives the first plane named plane the substitute; nothing when there is none.
  void SetSynonym(const std::wstring& plane, const std::wstring& substitute);
  // Appends (out is not cleared) for each plane that is not a process plane,
  // enabled or not, its substitute or, when that is empty, its name.
  void GetSubstitutes(std::vector<std::wstring>& out) const;
  // Plane name to PlaneOptions::GetSubstitute for each plane where that is not
  // empty (process planes are left out). Entries are added to out.
  void GetSubstituteMap(std::map<std::wstring, std::wstring>& out) const;
  // The substitute of the first plane whose name begins with "White" ("White",
  // "White2", "WhiteHD"); empty when there is none.
  std::wstring GetWhiteSubstitute() const;

  // Which inks the layer has. The white, clear and prime tests look at plane
  // names only, enabled or not; the colour test counts enabled planes only; the
  // only-white test looks at the enabled planes alone. The RIP relies on each.
  bool HasWhiteChannel() const;              // a plane named exactly "White"
  bool HasClearChannel() const;              // a plane named exactly "Clear"
  bool HasPrimeChannel() const;              // a plane named exactly "Promoter"
  bool HasColorChannels() const;             // an enabled C, M, Y, K, Red, Green or Blue plane
  bool HasOnlyWhiteChannelsEnabled() const;  // some plane enabled, and all enabled ones "White..."
  // True when the print mode's separations list a separation ink.
  bool HasSeparationChannels() const;

  // --- print-time settings ---
  const std::wstring& GetLayerName() const { return layer_name_; }
  void SetLayerName(const std::wstring& name) { layer_name_ = name; }
  std::uint32_t GetRepeats() const { return repeats_; }
  void SetRepeats(std::uint32_t repeats) { repeats_ = repeats; }
  std::uint32_t GetMirror() const { return mirror_; }
  void SetMirror(std::uint32_t mirror) { mirror_ = mirror; }
  std::uint8_t GetFloodLevel() const { return flood_level_; }
  void SetFloodLevel(std::uint8_t level) { flood_level_ = level; }
  // The page of the job the layer prints when pages are printed as layers; -1 for none.
  int GetPage() const { return page_; }
  void SetPage(int page) { page_ = page; }
  bool GetExcludeFromPreview() const { return exclude_from_preview_; }
  void SetExcludeFromPreview(bool exclude) { exclude_from_preview_ = exclude; }
  bool GetLayerDelayDlg() const { return layer_delay_dlg_; }
  void SetLayerDelayDlg(bool on) { layer_delay_dlg_ = on; }
  int GetLayerDelay() const { return layer_delay_; }
  void SetLayerDelay(int delay) { layer_delay_ = delay; }
  bool GetTogglePort() const { return toggle_port_; }
  void SetTogglePort(bool on) { toggle_port_ = on; }
  double GetScaleX() const { return scale_x_; }
  void SetScaleX(double scale) { scale_x_ = scale; }
  double GetScaleY() const { return scale_y_; }
  void SetScaleY(double scale) { scale_y_ = scale; }
  const CBmpProcessOptions& GetBitmapOptions() const { return bitmap_options_; }
  CBmpProcessOptions& GetBitmapOptions() { return bitmap_options_; }
  void SetBitmapOptions(const CBmpProcessOptions& options) { bitmap_options_ = options; }

  // Equal print modes (as print modes compare), settings, bitmap options,
  // names and plane names in order. The cursor and the keyword flag, which are
  // not kept in files, take no part.
  bool operator==(const Layer& other) const;
  bool operator!=(const Layer& other) const { return !(*this == other); }

  // Reads a "Layer" element over the current values (see the format notes):
  // absent or empty elements leave their fields; a stored print mode replaces
  // the layer's; the planes come from "PlaneOptions" children, else from an
  // older "Channels" element, else (given a printer) from the print mode's
  // colour model. An element of another name reads nothing. Never fails:
  // true for any node.
  bool ReadXML(const pugi::xml_node& layerNode, CPrinterData* printer);
  // Appends a "Layer" element to parent, the print mode's sections inside it.
  // Always true.
  bool WriteXML(pugi::xml_node parent) const;

 private:
  struct Fields;  // the field table, in the source file

  void RebuildPlanes(const std::vector<std::wstring>& names, const std::vector<PlaneOptions>* previous);
  void UpdatePlanesAllKeyWords(const CPrinterData& printer);
  void ReadChannels(const pugi::xml_node& channels);

  std::wstring layer_name_;
  std::uint32_t repeats_ = 1;
  std::uint32_t mirror_ = 0;
  std::uint8_t flood_level_ = 255;
  int page_ = -1;
  bool exclude_from_preview_ = false;
  CBmpProcessOptions bitmap_options_;
  bool layer_delay_dlg_ = false;
  int layer_delay_ = 0;
  bool toggle_port_ = false;
  double scale_x_ = 1.0;
  double scale_y_ = 1.0;
  std::unique_ptr<CPrintModeData> print_mode_;
  std::wstring print_mode_name_;
  std::wstring color_model_;
  std::wstring base_model_;
  std::vector<PlaneOptions> planes_;
  bool planes_all_keywords_ = true;
  int channel_cursor_ = 0;
};

}  // namespace tarn
