// tarn curves FILE [-o OUT.svg]: a picture of a print mode's transfer curves
// and separation channels.

#include <cstdio>
#include <string>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

int RunCurves(const Arguments& args) {
  std::string input;
  std::string output;
  CPrintModeData mode;
  if (const int status = OpenPrintModeCommand(args, "tarn curves FILE [-o OUT.svg]", mode, input, output);
      status != kExitOk) {
    return status;
  }
  return WriteOutput(output, PlotCurvesSVG(mode));
}

}  // namespace tarn::tool
