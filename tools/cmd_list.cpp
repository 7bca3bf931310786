// tarn list RIPFOLDER: the print mode files under the print modes folder,
// one per line as a native path relative to it ("Aurora64/Gloss.pmx"), sorted.

#include <algorithm>
#include <cstdio>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

int RunList(const Arguments& args) {
  if (args.size() != 1) {
    std::fprintf(stderr, "usage: tarn list RIPFOLDER\n");
    return kExitUsage;
  }
  int status = kExitOk;
  if (!UseRipFolder(args[0], status)) {
    return status;
  }
  const std::wstring root = GetPrintModesFolder();
  if (!FolderExists(root)) {
    return Fail("no print modes folder (System/pmodes) in " + args[0]);
  }
  // Print modes sit in one folder per driver, sometimes in sub-folders of it;
  // the walk enters each real folder once, so links cannot make it loop.
  const std::vector<std::wstring> modes = FindFilesBelow(root, L"*.pmx");
  for (std::wstring mode : modes) {
    std::replace(mode.begin(), mode.end(), L'\\', L'/');
    std::printf("%s\n", Shown(mode).c_str());
  }
  std::string reason;
  if (!OutputWritten(reason)) {
    return kExitFailure;  // main says why, in one line
  }
  std::fprintf(stderr, "%zu print mode%s\n", modes.size(), modes.size() == 1 ? "" : "s");
  return kExitOk;
}

}  // namespace tarn::tool
