#pragma once

// The subcommands of the tarn tool. Each takes its arguments (without the
// program and command names) and returns the process exit code.

#include <string>
#include <string_view>
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
// The RIP folder of a print mode file: the nearest folder above it whose
// System/printers holds the definition named driver; empty when none does.
// definition (when given) receives the definition's path.
std::wstring FindRipFolder(const std::string& file, const std::wstring& driver, std::wstring* definition);
int RunList(const Arguments& args);
int RunCurves(const Arguments& args);
int RunMedia(const Arguments& args);
int RunPostscript(const Arguments& args);
int RunJob(const Arguments& args);

// Makes folder the process's RIP folder. False, with status set to the exit
// code of a one-line failure, when the folder does not exist.
bool UseRipFolder(const std::string& folder, int& status);

// tarn info for a media definition (.qmd); in cmd_media.cpp.
bool IsMediaFile(const std::string& file);
int ShowMediaFile(const std::string& file);
// tarn chart and tarn deltae; in cmd_chart.cpp.
int RunChart(const Arguments& args);
int RunDeltaE(const Arguments& args);

// Prints "tarn: message" on stderr and returns the failure exit code.
int Fail(const std::string& message);

// Text from a file as UTF-8 for standard output; on a terminal, control
// characters are shown as "\x1b" and the like instead of acting.
std::string Shown(const std::wstring& text);

// Why the document at path does not load with that root, in a few words:
// "permission denied", "empty file", "XML error at line 3, column 7: ...";
// empty when the document does load.
std::string WhyNotLoaded(const std::wstring& path, const char* root);

// Flushes standard output; false, with the reason, when anything written to
// it was lost (a full disk, /dev/full, a closed pipe).
bool OutputWritten(std::string& reason);

// Loads a print mode file into mode with the library's own message silenced,
// as the caller reports a failure in its one line; the tool's message handler
// is put back afterwards.
bool LoadPrintModeQuietly(CPrintModeData& mode, const std::wstring& path);
// Loads the print mode file; kExitOk, or the exit code after its failure line.
int LoadPrintModeFile(const std::string& file, CPrintModeData& mode);
// Reads the arguments "FILE [-o OUT]" and loads FILE into mode: kExitOk, or
// the exit code after the usage line (which reads "usage: " usage) or the
// failure line.
int OpenPrintModeCommand(const Arguments& args, const char* usage, CPrintModeData& mode, std::string& input,
                         std::string& output);
// Writes bytes to output (atomically), or to stdout when output is empty.
int WriteOutput(const std::string& output, std::string_view bytes);

// Exit codes.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

}  // namespace tarn::tool
