#pragma once

// Image sampling, blur and saturation of a print mode, kept as "IMAGING":
//
//   <IMAGING>
//   	<SAMPLING>0</SAMPLING>
//   	<BLUR>0</BLUR>
//   	<SATURATION>100</SATURATION>
//   </IMAGING>

#include <pugixml.hpp>

#include <cstdint>

#include "tarn/foundation/export.h"

namespace tarn {

class TARN_API CPMImageAdjustData {
 public:
  // Element name of the section ("IMAGING").
  static constexpr const char* kElementName = "IMAGING";

  CPMImageAdjustData() = default;

  bool operator==(const CPMImageAdjustData& other) const = default;

  // Sampling 0, blur 0, saturation 100.
  void SetDefaults() { *this = CPMImageAdjustData(); }

  std::int32_t GetSampling() const { return sampling_; }
  void SetSampling(std::int32_t sampling) { sampling_ = sampling; }
  std::int32_t GetBlur() const { return blur_; }
  void SetBlur(std::int32_t blur) { blur_ = blur; }
  // Saturation in percent.
  std::int32_t GetSaturation() const { return saturation_; }
  void SetSaturation(std::int32_t saturation) { saturation_ = saturation; }

  // Reads an "IMAGING" element, starting from the defaults; missing children
  // keep theirs. False only when node is not "IMAGING".
  bool ReadXML(const pugi::xml_node& node);
  // Appends "IMAGING" to parent.
  void WriteXML(pugi::xml_node parent) const;

 private:
  struct Fields;  // the field table, in the source file

  std::int32_t sampling_ = 0;
  std::int32_t blur_ = 0;
  std::int32_t saturation_ = 100;
};

}  // namespace tarn
