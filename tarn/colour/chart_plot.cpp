#include "tarn/colour/chart_plot.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <pugixml.hpp>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/svg.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

constexpr double kSize = 640.0;
constexpr double kMargin = 40.0;
constexpr double kRadius = 5.0;

std::string Number(double value) {
  return internal::SvgNumber(value);
}

// A Lab to sRGB transform, made for one picture and freed with it.
class LabToSRGB {
 public:
  LabToSRGB() {
    lab_ = cmsCreateLab4Profile(nullptr);
    srgb_ = cmsCreate_sRGBProfile();
    if (lab_ != nullptr && srgb_ != nullptr) {
      transform_ = cmsCreateTransform(lab_, TYPE_Lab_DBL, srgb_, TYPE_RGB_8, INTENT_RELATIVE_COLORIMETRIC,
                                      cmsFLAGS_NOCACHE);
    }
  }
  ~LabToSRGB() {
    if (transform_ != nullptr) {
      cmsDeleteTransform(transform_);
    }
    if (srgb_ != nullptr) {
      cmsCloseProfile(srgb_);
    }
    if (lab_ != nullptr) {
      cmsCloseProfile(lab_);
    }
  }
  LabToSRGB(const LabToSRGB&) = delete;
  LabToSRGB& operator=(const LabToSRGB&) = delete;

  std::string Hex(const CLabColor& lab) const {
    unsigned char rgb[3] = {128, 128, 128};
    if (transform_ != nullptr) {
      const cmsCIELab in{lab.L, lab.a, lab.b};
      cmsDoTransform(transform_, &in, rgb, 1);
    }
    return Format("#%02X%02X%02X", rgb[0], rgb[1], rgb[2]);
  }

 private:
  cmsHPROFILE lab_ = nullptr;
  cmsHPROFILE srgb_ = nullptr;
  cmsHTRANSFORM transform_ = nullptr;
};

struct Patch {
  std::wstring key;
  CLabColor lab;
};

}  // namespace

std::string LabToHexColor(const CLabColor& lab) {
  return LabToSRGB().Hex(lab);
}

std::string PlotChartSVG(const CIT8Chart& chart, const CXYZColor& white) {
  const CIT8Table* table = chart.GetMeasurementTable();
  if (table == nullptr || !table->HasColorimetry()) {
    return {};
  }
  std::vector<Patch> patches;
  double extent = 128.0;
  for (std::size_t row = 0; row < table->GetRowCount(); ++row) {
    Patch patch{table->GetPatchKey(row), {}};
    if (table->GetLab(row, patch.lab, white) && std::isfinite(patch.lab.a) && std::isfinite(patch.lab.b) &&
        std::isfinite(patch.lab.L)) {
      extent = std::max({extent, std::fabs(patch.lab.a), std::fabs(patch.lab.b)});
      patches.push_back(std::move(patch));
    }
  }
  // Darker patches first, so the light ones near the middle stay visible.
  std::stable_sort(patches.begin(), patches.end(),
                   [](const Patch& x, const Patch& y) { return x.lab.L < y.lab.L; });

  const double centre = kSize / 2.0;
  const double scale = (kSize / 2.0 - kMargin) / extent;
  pugi::xml_document document;
  pugi::xml_node svg = internal::AppendSvgRoot(document, kSize, kSize);
  xml::SetText(svg.append_child("style"),
               L".background{fill:#808080}.axis{stroke:#FFFFFF;stroke-width:1}.label{fill:#FFFFFF}"
               L"circle{stroke:#000000;stroke-width:0.5}");
  pugi::xml_node background = svg.append_child("rect");
  background.append_attribute("class") = "background";
  background.append_attribute("width") = Number(kSize).c_str();
  background.append_attribute("height") = Number(kSize).c_str();
  const auto line = [&svg](double x1, double y1, double x2, double y2) {
    pugi::xml_node axis = svg.append_child("line");
    axis.append_attribute("class") = "axis";
    axis.append_attribute("x1") = Number(x1).c_str();
    axis.append_attribute("y1") = Number(y1).c_str();
    axis.append_attribute("x2") = Number(x2).c_str();
    axis.append_attribute("y2") = Number(y2).c_str();
  };
  line(kMargin, centre, kSize - kMargin, centre);
  line(centre, kMargin, centre, kSize - kMargin);
  const auto label = [&svg](double x, double y, const wchar_t* text) {
    pugi::xml_node node = svg.append_child("text");
    node.append_attribute("class") = "label";
    node.append_attribute("x") = Number(x).c_str();
    node.append_attribute("y") = Number(y).c_str();
    xml::SetText(node, text);
  };
  label(kSize - kMargin + 4.0, centre + 4.0, L"+a*");
  label(4.0, centre + 4.0, L"-a*");
  label(centre + 4.0, kMargin - 8.0, L"+b*");
  label(centre + 4.0, kSize - kMargin + 16.0, L"-b*");
  const std::wstring title = Format(L"a*b* of %zu patches, scale +-%.0f", patches.size(), extent);
  label(8.0, 16.0, title.c_str());

  const LabToSRGB colours;
  for (const Patch& patch : patches) {
    pugi::xml_node circle = svg.append_child("circle");
    circle.append_attribute("cx") = Number(centre + patch.lab.a * scale).c_str();
    circle.append_attribute("cy") = Number(centre - patch.lab.b * scale).c_str();
    circle.append_attribute("r") = Number(kRadius).c_str();
    circle.append_attribute("fill") = colours.Hex(patch.lab).c_str();
    xml::SetText(circle.append_child("title"),
                 patch.key + Format(L" L %.2f a %.2f b %.2f", patch.lab.L, patch.lab.a, patch.lab.b));
  }
  return xml::SaveDocumentToString(document);
}

}  // namespace tarn
