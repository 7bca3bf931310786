// tarn list RIPFOLDER: the print mode files under the print modes folder,
// one per line as "driver\name.pmx", sorted.

#include <cstdio>
#include <functional>

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
  size_t count = 0;
  // Print modes sit in one folder per driver, sometimes in sub-folders of it.
  std::function<void(const std::wstring&, const std::wstring&)> walk = [&](const std::wstring& folder,
                                                                           const std::wstring& relative) {
    for (const FolderEntry& entry : FindFiles(folder + L"*.*")) {
      if (entry.is_folder) {
        walk(folder + entry.name + L"\\", relative + entry.name + L"\\");
      } else if (MatchesWildcard(entry.name, L"*.pmx")) {
        std::printf("%s\n", ToUtf8(relative + entry.name).c_str());
        ++count;
      }
    }
  };
  walk(root, L"");
  std::fprintf(stderr, "%zu print mode%s\n", count, count == 1 ? "" : "s");
  return kExitOk;
}

}  // namespace tarn::tool
