#include "tarn/media/template_plot.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/svg.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"
#include "tarn/media/print_media.h"

namespace tarn {
namespace {

constexpr double kPointsPerMm = 72.0 / 25.4;

// A size the picture can use: infinities and NaN are drawn as 0.
double Finite(double value) {
  return std::isfinite(value) ? value : 0.0;
}

std::string Number(double value) {
  return internal::SvgNumber(value);
}

pugi::xml_node Rect(pugi::xml_node parent, const char* cls, double x, double y, double width, double height) {
  pugi::xml_node rect = parent.append_child("rect");
  if (cls) {
    rect.append_attribute("class") = cls;
  }
  // A negative size is drawn from the other corner rather than not at all.
  rect.append_attribute("x") = Number(std::min(x, x + width)).c_str();
  rect.append_attribute("y") = Number(std::min(y, y + height)).c_str();
  rect.append_attribute("width") = Number(std::fabs(width)).c_str();
  rect.append_attribute("height") = Number(std::fabs(height)).c_str();
  return rect;
}

}  // namespace

std::string PlotMediaSVG(const CPrintMedia& media) {
  const double width = Finite(media.GetWidth());
  const double height = Finite(media.GetHeight());

  // The picture holds the sheet and every slot, with a small border.
  double left = std::min(0.0, width);
  double top = std::min(0.0, height);
  double right = std::max(0.0, width);
  double bottom = std::max(0.0, height);
  for (const auto& slot : media.GetSlots()) {
    const double x = Finite(slot->x);
    const double y = Finite(slot->y);
    const double w = Finite(slot->width);
    const double h = Finite(slot->height);
    left = std::min({left, x, x + w});
    right = std::max({right, x, x + w});
    top = std::min({top, y, y + h});
    bottom = std::max({bottom, y, y + h});
  }
  const double border = std::max(std::max(right - left, bottom - top) * 0.01, 1.0);
  left -= border;
  top -= border;
  right += border;
  bottom += border;
  const double extent = std::max(right - left, bottom - top);

  pugi::xml_document document;
  // Drawn in points, shown at its real size in millimetres.
  pugi::xml_node svg = internal::AppendSvgRoot(
      document, Number((right - left) / kPointsPerMm) + "mm", Number((bottom - top) / kPointsPerMm) + "mm",
      Format("%s %s %s %s", Number(left), Number(top), Number(right - left), Number(bottom - top)), "");
  const std::string line = Number(std::max(extent / 800.0, 0.25));
  xml::SetText(
      svg.append_child("style"),
      FromUtf8("\n.sheet { fill: #FFFFFF; stroke: #202020; stroke-width: " + line +
               "; }\n.margins { fill: none; stroke: #808080; stroke-width: " + line +
               "; stroke-dasharray: " + Number(std::max(extent / 200.0, 1.0)) +
               "; }\n.slot rect { fill: #DCEBFA; stroke: #2F55D4; stroke-width: " + line +
               "; }\n.slot text { fill: #1A2F75; text-anchor: middle; dominant-baseline: central; }\n"));
  xml::SetText(
      svg.append_child("title"),
      Format(L"%s: %s, %.1f x %.1f mm, %d slot%s", media.GetName().empty() ? L"(no name)" : media.GetName(),
             CPrintMedia::KindName(media.GetType()), width / kPointsPerMm, height / kPointsPerMm,
             media.SlotCount(), media.SlotCount() == 1 ? L"" : L"s"));
  Rect(svg, "sheet", 0.0, 0.0, width, height);
  if (media.HasMargins()) {
    const double l = Finite(media.GetLMargin());
    const double r = Finite(media.GetRMargin());
    const double t = Finite(media.GetTMargin());
    const double b = Finite(media.GetBMargin());
    Rect(svg, "margins", l, t, width - l - r, height - t - b);
  }
  int index = 0;
  for (const auto& slot : media.GetSlots()) {
    ++index;
    const double x = Finite(slot->x);
    const double y = Finite(slot->y);
    const double w = Finite(slot->width);
    const double h = Finite(slot->height);
    pugi::xml_node group = svg.append_child("g");
    group.append_attribute("class") = "slot";
    xml::SetText(group.append_child("title"),
                 Format(L"slot %d, image %d: %.1f, %.1f mm, %.1f x %.1f mm", index, slot->item,
                        x / kPointsPerMm, y / kPointsPerMm, w / kPointsPerMm, h / kPointsPerMm));
    Rect(group, nullptr, x, y, w, h);
    // The image number fills a good part of the slot, whatever its size.
    const double size = std::max(std::min(std::fabs(w), std::fabs(h)) * 0.4, 0.5);
    pugi::xml_node text = group.append_child("text");
    text.append_attribute("x") = Number(x + w / 2.0).c_str();
    text.append_attribute("y") = Number(y + h / 2.0).c_str();
    text.append_attribute("font-size") = Number(size).c_str();
    xml::SetText(text, Format(L"%d", slot->item));
  }
  return xml::SaveDocumentToString(document);
}

}  // namespace tarn
