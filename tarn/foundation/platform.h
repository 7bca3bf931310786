#pragma once

// The platform layer: the only code that talks to the operating system.
//
// Paths are the RIP's own Windows-style strings ("System\\pmodes\\"). On Linux
// "\\" becomes "/", and a path component that does not exist as written is
// matched ignoring case, as Windows would; so "System\\pmodes" and
// "system\\PMODES" name one folder.
//
// The user-facing interfaces live here too: message boxes go to a handler the
// host sets, display names go through a translator the host sets, and the
// paper size of an installed Windows printer comes from a query the host sets.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/foundation/export.h"

namespace tarn {

// --- files and folders ---------------------------------------------------

// The native path for a RIP-style path, with case-insensitive matching of the
// components that do not exist as written. Returned as UTF-8.
TARN_API std::string NativePath(std::wstring_view path);

TARN_API bool FileExists(const std::wstring& path);  // a file or a folder
TARN_API bool FolderExists(const std::wstring& path);

// Last modification time in seconds since 1970; false when the file is missing.
TARN_API bool GetModificationTime(const std::wstring& path, std::int64_t& time);

// Clears the read-only state of a file (Windows' "normal attributes"). False when
// the file is missing or cannot be changed.
TARN_API bool SetNormalAttributes(const std::wstring& path);

// Reads a whole file. False, with the system's reason in error, when it cannot.
TARN_API bool ReadWholeFile(const std::wstring& path, std::string& data, std::wstring* error = nullptr);

// Replaces a file atomically: writes a temporary file in the same folder,
// flushes it to disk and renames it over the target. On any failure the old
// file is untouched, the temporary removed, and the system's reason put in error.
TARN_API bool WriteFileAtomically(const std::wstring& path, std::string_view data,
                                  std::wstring* error = nullptr);

struct TARN_API FolderEntry {
  std::wstring name;  // name with extension, no folder
  bool is_folder = false;
};

// Lists the entries of a folder matching a Windows wildcard pattern: the last
// component of pattern is the wildcard ("System\\pmodes\\*.pmx"). "*" matches
// any run, "?" one character, case is ignored, and "*.*" also matches names
// without a dot. "." and ".." are never listed. Entries come sorted by name.
TARN_API std::vector<FolderEntry> FindFiles(const std::wstring& pattern);

// True when name matches a Windows wildcard pattern (see FindFiles).
TARN_API bool MatchesWildcard(std::wstring_view name, std::wstring_view pattern);

TARN_API bool RemoveFile(const std::wstring& path);
TARN_API bool RenameFile(const std::wstring& from, const std::wstring& to);
// Creates a folder and any missing parents; true when it exists afterwards.
TARN_API bool CreateFolders(const std::wstring& path);

// Blocks the calling thread for the given time.
TARN_API void SleepMilliseconds(int milliseconds);

// --- messages ------------------------------------------------------------

using MessageHandler = std::function<void(const std::wstring& text, const std::wstring& caption)>;

// Sets where user messages go and returns the handler it replaces (empty for
// the default), so that a caller can put it back. The default writes one line
// "caption: text" to stderr; an empty function restores it.
TARN_API MessageHandler SetMessageHandler(MessageHandler handler);

// Shows a message to the user through the handler.
TARN_API void ShowMessage(const std::wstring& text, const std::wstring& caption);

// --- translation ---------------------------------------------------------

using Translator = std::function<std::wstring(const std::wstring& text)>;

// Sets the translator of display names such as "(*v*)Linear". The default
// returns the text unchanged; an empty function restores it.
TARN_API void SetTranslator(Translator translator);

// Translates text in place.
TARN_API void XLT_TranslateString(std::wstring& text);
// Returns the translation of text.
TARN_API std::wstring XLT_TranslateCString(std::wstring_view text);

// --- printers ------------------------------------------------------------

// Paper of an installed Windows printer, as its device settings give it.
struct TARN_API PrinterPaper {
  int code = 0;       // the paper size code; 0 means none
  int width = 0;      // tenths of a millimetre
  int length = 0;     // tenths of a millimetre
  std::wstring name;  // the form's name, where the host knows it
};

using PrinterPaperQuery = std::function<bool(const std::wstring& printer, PrinterPaper& paper)>;

// Sets how the paper of an installed printer is asked for; an empty function
// removes the query.
TARN_API void SetPrinterPaperQuery(PrinterPaperQuery query);

// Asks the host for the paper of an installed printer. False when no query is
// set or the query fails.
TARN_API bool QueryPrinterPaper(const std::wstring& printer, PrinterPaper& paper);

}  // namespace tarn
