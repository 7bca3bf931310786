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
  if (!ReadFileAndOutput(args, input, output)) {
    return Usage();
  }
  CPrintModeData mode;
  if (const int status = LoadPrintModeFile(input, mode); status != kExitOk) {
    return status;
  }
  return WriteOutput(output, PlotCurvesSVG(mode));
}

}  // namespace tarn::tool
