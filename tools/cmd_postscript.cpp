// tarn postscript FILE [-o OUT.ps]: the PostScript set-up of a print mode, as
// the RIP runs it before a job.

#include <cstdio>
#include <string>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

int Usage() {
  std::fprintf(stderr, "usage: tarn postscript FILE [-o OUT.ps]\n");
  return kExitUsage;
}

}  // namespace

int RunPostscript(const Arguments& args) {
  std::string input;
  std::string output;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "-o") {
      if (i + 1 == args.size() || !output.empty()) {
        return Usage();
      }
      output = args[++i];
    } else if (input.empty()) {
      input = args[i];
    } else {
      return Usage();
    }
  }
  if (input.empty()) {
    return Usage();
  }
  const std::wstring path = FromUtf8(input);
  if (!FileExists(path)) {
    return Fail("no such file: " + input);
  }
  CPrintModeData mode;
  SetMessageHandler([](const std::wstring&, const std::wstring&) {});  // the failure below says it all
  const bool loaded = mode.LoadXMLPrintMode(path);
  SetMessageHandler({});
  if (!loaded) {
    return Fail(input + ": not a print mode file (not XML, or its root is not PMH)");
  }

  // The printer definition comes from the RIP folder the print mode lives in.
  CPrinterData printer;
  const std::wstring ripFolder = FindRipFolder(input, mode.GetDriver(), nullptr);
  if (ripFolder.empty()) {
    std::fprintf(stderr, "tarn: warning: printer definition '%s' not found above %s; set-up written without it\n",
                 ToUtf8(mode.GetDriver()).c_str(), input.c_str());
  } else {
    const std::wstring saved = GetTarnRipFolder();
    SetTarnRipSystemRoot(ripFolder.c_str());
    const bool found = printer.LoadPrinter(mode.GetDriver());
    SetTarnRipSystemRoot(saved.c_str());
    if (!found) {
      std::fprintf(stderr, "tarn: warning: printer definition '%s' cannot be read; set-up written without it\n",
                   ToUtf8(mode.GetDriver()).c_str());
    }
  }

  CPostscriptSetup setup(mode);
  setup.WritePostscriptSection(printer);
  const std::string bytes = setup.GetBytes();
  if (output.empty()) {
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    return kExitOk;
  }
  std::wstring error;
  if (!WriteFileAtomically(FromUtf8(output), bytes, &error)) {
    return Fail("cannot write " + output + ": " + ToUtf8(error));
  }
  return kExitOk;
}

}  // namespace tarn::tool
