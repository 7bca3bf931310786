// tarn info FILE.pdx: a readable summary of a printer definition, and the
// printer definition line of tarn info FILE.pmx.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

void Line(const char* label, const std::wstring& value) {
  std::printf("  %-20s %s\n", label, value.empty() ? "-" : ToUtf8(value).c_str());
}

void Heading(const char* title, size_t count) {
  std::printf("%s (%s)\n", title, std::to_string(count).c_str());
}

// Items joined with ", ".
std::wstring Join(const std::vector<std::wstring>& items) {
  std::wstring text;
  for (const std::wstring& item : items) {
    if (!text.empty()) {
      text += L", ";
    }
    text += item;
  }
  return text;
}

std::wstring Inches(double value) {
  return Format(L"%g", value);
}

std::wstring Ports(const CPrinterData& printer) {
  std::vector<std::wstring> ports;
  if (printer.HasTCPPort()) {
    ports.push_back(L"TCP (" + printer.GetTCPPort() + L")");
  }
  if (printer.HasUSBPort()) {
    ports.push_back(L"USB");
  }
  if (printer.HasLPTPort()) {
    ports.push_back(L"LPT");
  }
  if (printer.HasCOMPort()) {
    ports.push_back(L"COM");
  }
  return Join(ports);
}

std::wstring Kind(const CPrinterData& printer) {
  std::vector<std::wstring> kinds;
  if (printer.IsLaserDevice()) {
    kinds.push_back(L"laser");
  }
  if (printer.IsCutDevice()) {
    kinds.push_back(L"cutter");
  }
  if (printer.IsLayerDevice()) {
    kinds.push_back(L"layered printing");
  }
  if (printer.IsSinglePass()) {
    kinds.push_back(L"single pass");
  }
  if (printer.HasAnyFMResolution()) {
    kinds.push_back(L"FM screening");
  }
  return kinds.empty() ? L"inkjet" : Join(kinds);
}

void ShowResolutions(const CPrinterData& printer) {
  Heading("resolutions", printer.GetResolutions().size());
  for (const auto& [key, res] : printer.GetResolutions()) {
    std::wstring text =
        Format(L"%d x %d dpi, %d bit", res->GetResolutionX(), res->GetResolutionY(), res->GetBitsPerPixel());
    if (res->GetBitsPerPixel() != 1) {
      text += L"s";
    }
    if (!res->GetValidDotSize().empty()) {
      text += L", dot sizes " + res->GetValidDotSize();
    }
    if (res->GetFencePoints() != nullptr) {
      text += Format(L", fence points (%u profiles)", res->GetFencePoints()->GetProfileCount());
    }
    if (!res->IsVisible()) {
      text += L", hidden";
    }
    Line(ToUtf8(key).c_str(), text);
  }
}

void ShowColorModels(const CPrinterData& printer) {
  Heading("colour models", printer.GetColors().size());
  for (const auto& [key, model] : printer.GetColors()) {
    std::vector<std::wstring> planes;
    for (const CColorPlaneDef& plane : model->GetPlaneDefs()) {
      planes.push_back(plane.color ? plane.name : plane.name + L" (no colour)");
    }
    std::wstring text = model->GetDisplayName().empty() ? std::wstring() : model->GetDisplayName() + L": ";
    Line(ToUtf8(key).c_str(), text + Join(planes));
  }
}

void ShowPages(const CPrinterData& printer) {
  Heading("page sizes", printer.GetPages().size());
  for (const auto& [key, page] : printer.GetPages()) {
    Line(ToUtf8(key).c_str(), Inches(page->GetFullWidth()) + L" x " + Inches(page->GetFullDepth()) +
                                  L" in (printable " + Inches(page->GetWidth()) + L" x " +
                                  Inches(page->GetDepth()) + L")");
  }
}

void ShowOptions(const CPrinterData& printer) {
  Heading("printer options", printer.GetOptions().size());
  for (const auto& [key, option] : printer.GetOptions()) {
    std::vector<std::wstring> choices;
    for (const CCustomChoice& choice : option->GetChoices()) {
      choices.push_back(choice.value);
    }
    std::wstring text = option->GetProc() + L": " + Join(choices);
    if (!option->GetDefault().empty()) {
      text += L" (default " + option->GetDefault() + L")";
    }
    if (!option->GetOptions().empty()) {
      text += Format(L", %u nested", static_cast<unsigned>(option->GetOptions().size()));
    }
    Line(ToUtf8(key).c_str(), text);
  }
}

template <class Map>
std::wstring Names(const Map& map) {
  std::vector<std::wstring> names;
  for (const auto& entry : map) {
    names.push_back(entry.first);
  }
  return Join(names);
}

}  // namespace

int ShowPrinterDefinition(const std::string& file) {
  const std::wstring path = FromUtf8(file);
  if (!FileExists(path)) {
    return Fail("no such file: " + file);
  }
  CPrinterData printer;
  if (!printer.LoadFile(path)) {
    return Fail(file + ": not a printer definition (not XML, or no PRINTERLIST/PRINTER)");
  }
  std::printf("%s\n", file.c_str());
  Line("long name", printer.GetLongName());
  Line("short name", printer.GetShortName());
  Line("driver name", printer.GetDriverName());
  Line("version", Format(L"%lu", printer.GetVersion()));
  Line("kind", Kind(printer));
  Line("port", printer.GetPort());
  Line("port kinds", Ports(printer));
  Line("default resolution", printer.GetDpiDefault());
  Line("default colour", printer.GetColorDefault());
  Line("default page", printer.GetDefaultPageSize());
  std::wstring monitor = printer.GetDataMonitor();
  if (!printer.GetExternalDataMonitor().empty()) {
    monitor += L" (" + printer.GetExternalDataMonitor() + L")";
  }
  Line("data monitor", monitor);
  Line("SNMP", printer.GetSNMPData().IsEnabled() ? L"yes" : L"no");
  ShowResolutions(printer);
  ShowColorModels(printer);
  ShowPages(printer);
  ShowOptions(printer);
  Heading("dot profiles", printer.GetDotProfiles().size());
  if (!printer.GetDotProfiles().empty()) {
    Line("", Names(printer.GetDotProfiles()));
  }
  Heading("spot types", printer.GetSpots().size());
  if (!printer.GetSpots().empty()) {
    Line("", Names(printer.GetSpots()));
  }
  Heading("data-monitor buttons", printer.GetButtons().size());
  if (!printer.GetButtons().empty()) {
    Line("", Names(printer.GetButtons()));
  }
  return kExitOk;
}

std::wstring FindRipFolder(const std::string& file, const std::wstring& driver, std::wstring* definition) {
  // The print mode sits somewhere under its RIP folder (normally in
  // System/pmodes/<driver>/): try each folder above it as the RIP folder.
  std::wstring ripFolder;
  std::wstring found;
  if (!driver.empty()) {
    const std::wstring saved = GetTarnRipFolder();
    std::error_code error;
    std::filesystem::path folder = std::filesystem::absolute(file, error).parent_path();
    for (; found.empty() && !folder.empty(); folder = folder.parent_path()) {
      ripFolder = FromUtf8(folder.string() + "/");
      SetTarnRipSystemRoot(ripFolder.c_str());
      CPrinterData::FindPDXPath(driver, found);
      if (folder == folder.root_path()) {
        break;
      }
    }
    SetTarnRipSystemRoot(saved.c_str());
  }
  if (definition != nullptr) {
    *definition = found;
  }
  return found.empty() ? std::wstring() : ripFolder;
}

void ShowPrintModePrinter(const std::string& file, const std::wstring& driver) {
  std::wstring found;
  FindRipFolder(file, driver, &found);
  std::replace(found.begin(), found.end(), L'\\', L'/');
  std::printf("printer definition\n");
  Line("driver", driver);
  Line("definition", found.empty() ? std::wstring(L"not found") : found);
}

}  // namespace tarn::tool
