// tarn postscript FILE [-o OUT.ps]: the PostScript set-up of a print mode, as
// the RIP runs it before a job.

#include <cstdio>
#include <string>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

int RunPostscript(const Arguments& args) {
  std::string input;
  std::string output;
  CPrintModeData mode;
  if (const int status = OpenPrintModeCommand(args, "tarn postscript FILE [-o OUT.ps]", mode, input, output);
      status != kExitOk) {
    return status;
  }

  // The printer definition comes from the RIP folder the print mode lives in.
  CPrinterData printer;
  const std::wstring ripFolder = FindRipFolder(input, mode.GetDriver(), nullptr);
  if (ripFolder.empty()) {
    std::fprintf(stderr,
                 "tarn: warning: printer definition '%s' not found above %s; set-up written without it\n",
                 ToUtf8(mode.GetDriver()).c_str(), input.c_str());
  } else {
    const std::wstring saved = GetTarnRipFolder();
    SetTarnRipSystemRoot(ripFolder.c_str());
    const bool found = printer.LoadPrinter(mode.GetDriver());
    SetTarnRipSystemRoot(saved.c_str());
    if (!found) {
      std::fprintf(stderr,
                   "tarn: warning: printer definition '%s' cannot be read; set-up written without it\n",
                   ToUtf8(mode.GetDriver()).c_str());
    }
  }

  CPostscriptSetup setup(mode);
  setup.WritePostscriptSection(printer);
  return WriteOutput(output, setup.GetBytes());
}

}  // namespace tarn::tool
