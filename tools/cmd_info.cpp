// tarn info FILE: a readable summary of a print mode.

#include <cstdio>

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

int ShowPrintMode(const std::string& file) {
  const std::wstring path = FromUtf8(file);
  if (!FileExists(path)) {
    return Fail("no such file: " + file);
  }
  CPrintModeData mode;
  SetMessageHandler([](const std::wstring&, const std::wstring&) {});  // the failure below says it all
  const bool loaded = mode.LoadXMLPrintMode(path);
  SetMessageHandler({});
  if (!loaded) {
    return Fail(file + ": not a print mode file (not XML, or its root is not PMH)");
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
  return ShowPrintMode(file);
}

}  // namespace tarn::tool
