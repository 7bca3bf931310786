// What several commands share: their "FILE [-o OUT]" arguments, loading a
// print mode file, and writing their result.

#include <cstdio>
#include <string>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

bool ReadFileAndOutput(const Arguments& args, std::string& input, std::string& output) {
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "-o") {
      if (i + 1 == args.size() || !output.empty()) {
        return false;
      }
      output = args[++i];
    } else if (input.empty()) {
      input = args[i];
    } else {
      return false;
    }
  }
  return !input.empty();
}

}  // namespace

int LoadPrintModeFile(const std::string& file, CPrintModeData& mode) {
  const std::wstring path = FromUtf8(file);
  if (!FileExists(path)) {
    return Fail("no such file: " + file);
  }
  if (!LoadPrintModeQuietly(mode, path)) {
    return Fail(file + ": " + WhyNotLoaded(path, tags::kPrintModeRoot));
  }
  return kExitOk;
}

int OpenPrintModeCommand(const Arguments& args, const char* usage, CPrintModeData& mode, std::string& input,
                         std::string& output) {
  if (!ReadFileAndOutput(args, input, output)) {
    std::fprintf(stderr, "usage: %s\n", usage);
    return kExitUsage;
  }
  return LoadPrintModeFile(input, mode);
}

int WriteOutput(const std::string& output, std::string_view bytes) {
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

bool UseRipFolder(const std::string& folder, int& status) {
  std::wstring rip = FromUtf8(folder);
  if (!rip.empty() && rip.back() != L'\\' && rip.back() != L'/') {
    rip += L'\\';
  }
  if (!FolderExists(rip)) {
    status = Fail(folder + (FileExists(FromUtf8(folder)) ? ": not a folder" : ": no such folder"));
    return false;
  }
  SetTarnRipSystemRoot(rip.c_str());
  return true;
}

}  // namespace tarn::tool
