#pragma once

// The subcommands of the tarn tool. Each takes its arguments (without the
// program and command names) and returns the process exit code.

#include <string>
#include <vector>

namespace tarn {
class CPrintModeData;
}

namespace tarn::tool {

using Arguments = std::vector<std::string>;

struct Command {
  const char* name;
  const char* usage;    // e.g. "info FILE"
  const char* summary;  // one line for --help
  int (*run)(const Arguments& args);
};

int RunInfo(const Arguments& args);

// tarn info for a printer definition (.pdx); in cmd_info_printer.cpp.
int ShowPrinterDefinition(const std::string& file);
// The "printer definition" lines of tarn info FILE.pmx: the driver and where
// its definition was found, looking in the folders above the print mode.
void ShowPrintModePrinter(const std::string& file, const std::wstring& driver);
int RunList(const Arguments& args);
int RunCurves(const Arguments& args);
int RunMedia(const Arguments& args);
int RunJob(const Arguments& args);

// Makes folder the process's RIP folder. False, with status set to the exit
// code of a one-line failure, when the folder does not exist.
bool UseRipFolder(const std::string& folder, int& status);

// tarn info for a media definition (.qmd); in cmd_media.cpp.
bool IsMediaFile(const std::string& file);
int ShowMediaFile(const std::string& file);

// Writes text to the file output atomically, or to stdout when output is
// empty; a failure is reported as Fail does.
int WriteOutput(const std::string& text, const std::string& output);

// Prints "tarn: message" on stderr and returns the failure exit code.
int Fail(const std::string& message);

// Loads a print mode file into mode with the library's own message silenced,
// as the caller reports a failure in its one line; the tool's message handler
// is put back afterwards.
bool LoadPrintModeQuietly(CPrintModeData& mode, const std::wstring& path);

// Exit codes.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

}  // namespace tarn::tool
