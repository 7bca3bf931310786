// tarn info FILE: a readable summary of a print mode.

#include <cstdio>
#include <string>
#include <vector>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

void Line(const char* label, const std::wstring& value) {
  std::printf("  %-20s %s\n", label, value.empty() ? "-" : ToUtf8(value).c_str());
}

void Line(const char* label, bool value) {
  std::printf("  %-20s %s\n", label, value ? "yes" : "no");
}

std::wstring OnOff(bool on) {
  return on ? L"on" : L"off";
}

std::wstring Joined(const std::vector<std::wstring>& names) {
  std::wstring text;
  for (const std::wstring& name : names) {
    text += (text.empty() ? L"" : L", ") + name;
  }
  return text;
}

// One line per section: enough to tell what a print mode does at a glance.
void ShowSections(const CPrintModeData& mode) {
  std::printf("sections\n");
  const CPMTransferData& transfers = *mode.GetTransfers();
  Line("transfer curves",
       Format(L"%s, %s", OnOff(transfers.GetEnable()),
              transfers.GetUseAll() ? L"one curve for all planes" : L"one curve per plane"));
  const CPMSeparationData& separations = *mode.GetSeparations();
  const std::vector<std::wstring> inks = separations.GetMainInks();
  Line("separations", Format(L"%s, colour mode %s, %u planes%s%s", OnOff(separations.GetEnable()),
                             separations.GetColorMode().empty() ? L"-" : separations.GetColorMode(),
                             separations.GetPlaneCount(), inks.empty() ? L"" : L": ", Joined(inks)));
  const std::vector<std::wstring> pulled = separations.GetSepInks();
  if (!pulled.empty()) {
    Line("inks pulled in", Joined(pulled));
  }
  const CPMHalftoneData& halftones = *mode.GetHalftones();
  Line("halftones", halftones.GetIsUsed() ? Format(L"%u screens, overrides %s",
                                                   static_cast<unsigned>(halftones.GetHalftoneCount()),
                                                   OnOff(halftones.GetEnable()))
                                          : std::wstring(L"not used"));
  const CPMMaxInkData& max_ink = *mode.GetMaxInkEx();
  Line("ink limits", max_ink.GetEnable() ? Format(L"A %.1f%%, B %.1f%%, C %.1f%%", max_ink.GetValueA(),
                                                  max_ink.GetValueB(), max_ink.GetValueC())
                                         : std::wstring(L"off"));
  Line("output profile", mode.GetICCProfiles()->GetICCPath(ICC_OUT_DEVICE_PATH));
  const CPMPrinterOptionsData& options = *mode.GetPrinterOptions();
  Line("printer options",
       Format(L"%u, resolution %s, colour plane %s", static_cast<unsigned>(options.GetOptions().size()),
              options.GetResolutionName().empty() ? L"-" : options.GetResolutionName(),
              options.GetColorMode().empty() ? L"-" : options.GetColorMode()));
  const CPMFencePointData& fences = *mode.GetFencePointData();
  Line("fence points",
       fences.GetEnabled() ? Format(L"on, colour mode %s", fences.GetColorMode()) : std::wstring(L"off"));
}

int ShowPrintMode(const std::string& file) {
  CPrintModeData mode;
  if (const int status = LoadPrintModeFile(file, mode); status != kExitOk) {
    return status;
  }
  std::printf("%s\n", file.c_str());
  Line("file version", mode.GetVersion());
  Line("name", mode.GetName());
  Line("printer", mode.GetPrinterX());
  Line("driver", mode.GetDriver());
  Line("invert", mode.GetInvert());
  Line("mirror", mode.GetMirror());
  std::printf("metadata\n");
  Line("ink set", mode.GetInkSet());
  Line("manufacturer", mode.GetManufacturer());
  Line("media category", mode.GetMediaCategory());
  Line("media description", mode.GetMediaDescription());
  Line("creation date", mode.GetCreationDate());
  Line("RIP version", mode.GetRipVersion());
  Line("underbase", mode.GetUnderbase());
  Line("finish", mode.GetFinish());
  Line("windows underbase", mode.GetWindowsUnderbase());
  Line("complete", mode.ValidateMetaData());
  ShowSections(mode);
  ShowPrintModePrinter(file, mode.GetDriver());
  return kExitOk;
}

}  // namespace

int RunInfo(const Arguments& args) {
  if (args.size() != 1) {
    std::fprintf(stderr, "usage: tarn info FILE\n");
    return kExitUsage;
  }
  const std::string& file = args[0];
  if (file.size() > 4 && EqualsNoCase(FromUtf8(file.substr(file.size() - 4)), L".pdx")) {
    return ShowPrinterDefinition(file);
  }
  if (IsMediaFile(file)) {
    return ShowMediaFile(file);
  }
  return ShowPrintMode(file);
}

}  // namespace tarn::tool
