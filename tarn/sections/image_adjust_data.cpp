#include "tarn/sections/image_adjust_data.h"

#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

// Tags of the section, shared by its reader and writer.
namespace tag {
constexpr const char* kSampling = "SAMPLING";
constexpr const char* kBlur = "BLUR";
constexpr const char* kSaturation = "SATURATION";
}  // namespace tag

}  // namespace

bool CPMImageAdjustData::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  SetDefaults();
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, tag::kSampling)) {
      sampling_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kBlur)) {
      blur_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kSaturation)) {
      saturation_ = xml::ReadInt(child);
    }
  }
  return true;
}

void CPMImageAdjustData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  xml::AppendInt(node, tag::kSampling, sampling_);
  xml::AppendInt(node, tag::kBlur, blur_);
  xml::AppendInt(node, tag::kSaturation, saturation_);
}

}  // namespace tarn
