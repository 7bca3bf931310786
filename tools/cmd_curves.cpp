// tarn curves FILE [-o OUT.svg]: a picture of a print mode's transfer curves
// and separation channels.

#include <cstdio>
#include <string>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

int Usage() {
  std::fprintf(stderr, "usage: tarn curves FILE [-o OUT.svg]\n");
  return kExitUsage;
}

}  // namespace

int RunCurves(const Arguments& args) {
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
  const bool loaded = LoadPrintModeQuietly(mode, path);
  if (!loaded) {
    return Fail(input + ": not a print mode file (not XML, or its root is not PMH)");
  }
  const std::string svg = PlotCurvesSVG(mode);
  if (output.empty()) {
    std::fwrite(svg.data(), 1, svg.size(), stdout);
    return kExitOk;
  }
  std::wstring error;
  if (!WriteFileAtomically(FromUtf8(output), svg, &error)) {
    return Fail("cannot write " + output + ": " + ToUtf8(error));
  }
  return kExitOk;
}

}  // namespace tarn::tool
