#include "tarn/printmode/curve_plot.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/svg.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {

namespace {

// Geometry of one panel, in SVG pixels.
constexpr double kPlotSize = 300.0;  // the 0..255 square
constexpr double kLeft = 56.0;
constexpr double kTop = 44.0;
constexpr double kLegendGap = 18.0;
constexpr double kLegendWidth = 150.0;
constexpr double kLegendRow = 17.0;
constexpr double kBottom = 52.0;
constexpr double kPanelWidth = kLeft + kPlotSize + kLegendGap + kLegendWidth;
constexpr double kScale = kPlotSize / 255.0;
constexpr int kGridStep = 51;  // 20 % steps: 0, 51, ..., 255
// Values far outside the plot are pulled in before they are written, so that a
// wildly extrapolating curve gives short numbers; the clip path hides them.
constexpr double kDrawLimit = 64.0;

struct Curve {
  std::wstring label;
  std::string colour;
  const CPMCurveData* data;
  bool pulled = false;  // a separation channel that pulls another ink into its plane
};

struct Panel {
  std::wstring title;
  std::vector<Curve> curves;
};

std::string Number(double value) {
  return internal::SvgNumber(value);
}

std::string HexColour(unsigned long bgr) {
  return Format("#%02X%02X%02X", static_cast<unsigned>(bgr & 0xFF), static_cast<unsigned>((bgr >> 8) & 0xFF),
                static_cast<unsigned>((bgr >> 16) & 0xFF));
}

// Colours for curves without one (0, which editors treat as "none"): ink
// names that people expect to see in their own colour first, then a palette
// of colours that stand apart from each other and from the process inks.
struct NamedColour {
  const wchar_t* name;  // folded; matched as a part of the curve's name
  const char* colour;
};
constexpr NamedColour kInkColours[] = {
    {L"light cyan", "#6FD3F0"}, {L"light magenta", "#F08CC8"}, {L"light black", "#707070"},
    {L"cyan", "#00AEEF"},       {L"magenta", "#EC008C"},       {L"yellow", "#E6C800"},
    {L"black", "#000000"},      {L"orange", "#FF7F00"},        {L"green", "#00A651"},
    {L"red", "#E41A1C"},        {L"blue", "#2F55D4"},          {L"violet", "#7F3FBF"},
    {L"white", "#A0A0A0"},      {L"gray", "#808080"},          {L"grey", "#808080"},
};
constexpr const char* kPalette[] = {"#404040", "#D95F02", "#1B9E77", "#7570B3",
                                    "#E7298A", "#66A61E", "#A6761D"};

std::string ColourFor(unsigned long bgr, const std::wstring& name, size_t& next_palette) {
  if ((bgr & 0xFFFFFF) != 0) {
    return HexColour(bgr);
  }
  const std::wstring folded = FoldCase(name);
  for (const auto& ink : kInkColours) {
    if (folded.find(ink.name) != std::wstring::npos) {
      return ink.colour;
    }
  }
  return kPalette[next_palette++ % std::size(kPalette)];
}

std::vector<Panel> CollectPanels(const CPrintModeData& mode) {
  std::vector<Panel> panels;
  const CPMTransferData& transfers = *mode.GetTransfers();
  const wchar_t* off = transfers.GetEnable() ? L"" : L" (off)";
  for (unsigned set = 0; set < 2; ++set) {
    Panel panel{Format(L"Transfer curves, set %u%s", set + 1, off), {}};
    size_t palette = 0;
    // The process planes lead; "All" is the one that counts when one curve
    // serves every plane, and comes last otherwise.
    std::vector<unsigned> planes = {1, 2, 3, 4, 5, 6};
    if (transfers.GetUseAll()) {
      planes.insert(planes.begin(), 0);
    } else {
      planes.push_back(0);
    }
    for (unsigned plane : planes) {
      if (const CPMCurveData* curve = transfers.GetCurve(plane, set)) {
        const std::wstring name = CPMTransferData::GetFileName(plane);
        panel.curves.push_back({name, ColourFor(curve->GetDrawColor(), name, palette), curve});
      }
    }
    panels.push_back(std::move(panel));
  }
  const CPMSeparationData& separations = *mode.GetSeparations();
  Panel panel{Format(L"Separations%s", separations.GetEnable() ? L"" : L" (off)"), {}};
  size_t palette = 0;
  for (const std::wstring& plane : separations.GetMainInks()) {
    for (const CPMCurveData& curve : *separations.GetPlane(plane)) {
      // A channel pulls its ink into the plane; colour it as that ink.
      const std::wstring& channel = curve.GetName();
      const bool pulled = channel != plane && !channel.empty();
      std::wstring label = plane;
      if (pulled) {
        label.append(L" \u2190 ").append(channel);
      }
      panel.curves.push_back(
          {label, ColourFor(curve.GetDrawColor(), pulled ? channel : plane, palette), &curve, pulled});
    }
  }
  panels.push_back(std::move(panel));
  return panels;
}

double PlotX(double tone) {
  return kLeft + tone * kScale;
}
double PlotY(double tone) {
  return kTop + (255.0 - tone) * kScale;
}

// The curve sampled at every whole tone, as path data. A tone that cannot be
// evaluated or is not finite breaks the line; the next good tone starts anew.
std::string PathData(const CPMCurveData& curve) {
  std::string data;
  bool drawing = false;
  for (int v = 0; v <= 255; ++v) {
    double value = 0.0;
    try {
      value = curve.GetCurveValue(v, false);
    } catch (const std::out_of_range&) {
      drawing = false;
      continue;
    }
    if (!std::isfinite(value)) {
      drawing = false;
      continue;
    }
    value = std::clamp(value, -kDrawLimit, 255.0 + kDrawLimit);
    if (!data.empty()) {
      data += ' ';
    }
    data += drawing ? "L" : "M";
    data += Number(PlotX(v)) + "," + Number(PlotY(value));
    drawing = true;
  }
  return data;
}

pugi::xml_node Line(pugi::xml_node parent, const char* cls, double x1, double y1, double x2, double y2) {
  pugi::xml_node line = parent.append_child("line");
  line.append_attribute("class") = cls;
  line.append_attribute("x1") = Number(x1).c_str();
  line.append_attribute("y1") = Number(y1).c_str();
  line.append_attribute("x2") = Number(x2).c_str();
  line.append_attribute("y2") = Number(y2).c_str();
  return line;
}

pugi::xml_node Text(pugi::xml_node parent, const char* cls, double x, double y, std::wstring_view text,
                    const char* anchor = nullptr) {
  pugi::xml_node node = parent.append_child("text");
  node.append_attribute("class") = cls;
  node.append_attribute("x") = Number(x).c_str();
  node.append_attribute("y") = Number(y).c_str();
  if (anchor) {
    node.append_attribute("text-anchor") = anchor;
  }
  xml::SetText(node, text);
  return node;
}

void DrawPanel(pugi::xml_node svg, const Panel& panel, size_t index) {
  pugi::xml_node group = svg.append_child("g");
  group.append_attribute("class") = "panel";
  group.append_attribute("transform") = Format("translate(%s,0)", Number(index * kPanelWidth)).c_str();

  Text(group, "title", kLeft, kTop - 18.0, panel.title);
  pugi::xml_node frame = group.append_child("rect");
  frame.append_attribute("class") = "plot";
  frame.append_attribute("x") = Number(kLeft).c_str();
  frame.append_attribute("y") = Number(kTop).c_str();
  frame.append_attribute("width") = Number(kPlotSize).c_str();
  frame.append_attribute("height") = Number(kPlotSize).c_str();

  for (int tone = 0; tone <= 255; tone += kGridStep) {
    Line(group, "grid", PlotX(tone), kTop, PlotX(tone), kTop + kPlotSize);
    Line(group, "grid", kLeft, PlotY(tone), kLeft + kPlotSize, PlotY(tone));
    Text(group, "tick", PlotX(tone), kTop + kPlotSize + 16.0, Format(L"%d", tone), "middle");
    Text(group, "tick", kLeft - 6.0, PlotY(tone) + 4.0, Format(L"%d", tone), "end");
  }
  Line(group, "identity", kLeft, kTop + kPlotSize, kLeft + kPlotSize, kTop);
  Text(group, "axis", kLeft + kPlotSize / 2.0, kTop + kPlotSize + 36.0, L"input tone", "middle");
  pugi::xml_node axis = Text(group, "axis", 0, 0, L"output tone", "middle");
  axis.append_attribute("transform") =
      Format("translate(%s,%s) rotate(-90)", Number(kLeft - 40.0), Number(kTop + kPlotSize / 2.0)).c_str();

  const std::string clip_id = Format("plot%u", static_cast<unsigned>(index));
  pugi::xml_node clip = group.append_child("clipPath");
  clip.append_attribute("id") = clip_id.c_str();
  pugi::xml_node clip_rect = clip.append_child("rect");
  clip_rect.append_attribute("x") = Number(kLeft).c_str();
  clip_rect.append_attribute("y") = Number(kTop).c_str();
  clip_rect.append_attribute("width") = Number(kPlotSize).c_str();
  clip_rect.append_attribute("height") = Number(kPlotSize).c_str();

  pugi::xml_node curves = group.append_child("g");
  curves.append_attribute("clip-path") = ("url(#" + clip_id + ")").c_str();
  // Drawn from the last legend entry to the first, so that the first lie on
  // top where curves coincide.
  for (size_t i = panel.curves.size(); i-- > 0;) {
    const Curve& curve = panel.curves[i];
    pugi::xml_node path = curves.append_child("path");
    path.append_attribute("class") = curve.pulled ? "curve pulled" : "curve";
    path.append_attribute("stroke") = curve.colour.c_str();
    path.append_attribute("d") = PathData(*curve.data).c_str();
    xml::SetText(path.append_child("title"), curve.label);
  }
  const double legend_x = kLeft + kPlotSize + kLegendGap;
  for (size_t i = 0; i < panel.curves.size(); ++i) {
    const Curve& curve = panel.curves[i];
    const double y = kTop + 8.0 + static_cast<double>(i) * kLegendRow;
    pugi::xml_node swatch =
        Line(group, curve.pulled ? "swatch pulled" : "swatch", legend_x, y, legend_x + 22.0, y);
    swatch.append_attribute("stroke") = curve.colour.c_str();
    Text(group, "legend", legend_x + 28.0, y + 4.0, curve.label);
  }
  if (panel.curves.empty()) {
    Text(group, "legend", legend_x, kTop + 12.0, L"no curves");
  }
}

}  // namespace

std::string PlotCurvesSVG(const CPrintModeData& mode) {
  const std::vector<Panel> panels = CollectPanels(mode);
  size_t rows = 0;
  for (const Panel& panel : panels) {
    rows = std::max(rows, panel.curves.size());
  }
  const double width = kPanelWidth * static_cast<double>(panels.size());
  const double height =
      std::max(kTop + kPlotSize + kBottom, kTop + static_cast<double>(rows) * kLegendRow + 16.0);

  pugi::xml_document document;
  pugi::xml_node svg = internal::AppendSvgRoot(document, width, height);
  // Light inks (yellow on white) get a thin dark edge so they stay visible.
  xml::SetText(svg.append_child("style"),
               L"\n.plot { fill: #FFFFFF; stroke: #404040; stroke-width: 1; }\n"
               L".grid { stroke: #D8D8D8; stroke-width: 0.5; }\n"
               L".identity { stroke: #B0B0B0; stroke-width: 0.75; stroke-dasharray: 4 3; }\n"
               L".curve { fill: none; stroke-width: 2; stroke-linejoin: round; filter: url(#edge); }\n"
               L".swatch { stroke-width: 3; filter: url(#edge); }\n"
               L".pulled { stroke-dasharray: 7 3; }\n"
               L".title { font-size: 14px; font-weight: bold; }\n"
               L".tick { fill: #505050; font-size: 10px; }\n"
               L".axis, .legend { fill: #202020; }\n");
  pugi::xml_node defs = svg.append_child("defs");
  pugi::xml_node filter = defs.append_child("filter");
  filter.append_attribute("id") = "edge";
  // The filter covers the whole picture: measured on a flat line's own box it
  // would have no height and hide the line.
  filter.append_attribute("filterUnits") = "userSpaceOnUse";
  filter.append_attribute("x") = "0";
  filter.append_attribute("y") = "0";
  filter.append_attribute("width") = Number(width).c_str();
  filter.append_attribute("height") = Number(height).c_str();
  pugi::xml_node dilate = filter.append_child("feMorphology");
  dilate.append_attribute("in") = "SourceAlpha";
  dilate.append_attribute("operator") = "dilate";
  dilate.append_attribute("radius") = "0.6";
  dilate.append_attribute("result") = "wide";
  pugi::xml_node flood = filter.append_child("feFlood");
  flood.append_attribute("flood-color") = "#000000";
  flood.append_attribute("flood-opacity") = "0.45";
  pugi::xml_node composite = filter.append_child("feComposite");
  composite.append_attribute("in2") = "wide";
  composite.append_attribute("operator") = "in";
  pugi::xml_node merge = filter.append_child("feMerge");
  merge.append_child("feMergeNode");
  merge.append_child("feMergeNode").append_attribute("in") = "SourceGraphic";

  pugi::xml_node background = svg.append_child("rect");
  background.append_attribute("width") = "100%";
  background.append_attribute("height") = "100%";
  background.append_attribute("fill") = "#FAFAFA";

  for (size_t i = 0; i < panels.size(); ++i) {
    DrawPanel(svg, panels[i], i);
  }
  return xml::SaveDocumentToString(document);
}

}  // namespace tarn
