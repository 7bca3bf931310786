#pragma once

// Process-wide paths the host hands over once at start-up, and the folders
// derived from them.
//
//   SetTarnPathsFromQPath(L"C:\\Kestrel\\queue");
//   GetTarnRipFolder()      -> "C:\\Kestrel\\queue\\rip\\"
//   GetPrintModesFolder()   -> "C:\\Kestrel\\queue\\rip\\System\\pmodes\\"
//
// The values are meant to be set once before use; setting them again replaces
// them for all later calls.

#include <string>
#include <string_view>

#include "tarn/foundation/export.h"

namespace tarn {

class CXRegistry;

// Queue module path := path, unchanged. A null path empties it.
TARN_API void SetQModulePath(const wchar_t* path);

// RIP folder := path, unchanged; the caller supplies the trailing backslash.
TARN_API void SetTarnRipSystemRoot(const wchar_t* path);

// Queue module path := qpath; RIP folder := qpath, a backslash unless qpath
// already ends in one, then "rip\\".
TARN_API void SetTarnPathsFromQPath(const wchar_t* qpath);

// The configuration store; borrowed, never deleted by the library.
TARN_API void SetTarnRegistryBase(CXRegistry* registry);

TARN_API std::wstring GetQModulePath();
TARN_API std::wstring GetTarnRipFolder();
TARN_API CXRegistry* GetTarnRegistryBase();

// RIP folder + "System\\pmodes\\".
TARN_API std::wstring GetPrintModesFolder();
// RIP folder + "system\\": the value of "%Lumascript%" in stored ICC paths.
TARN_API std::wstring GetSystemFolder();
// RIP folder + "System\\clinks\\".
TARN_API std::wstring GetColorLinksFolder();

// Splits a path into its folder (with "\\" appended unless it already ends in
// "\\" or "/"; an empty folder stays empty) and its file name with extension.
// Either output may be null.
TARN_API void SplitPath(std::wstring_view path, std::wstring* folder, std::wstring* file);

}  // namespace tarn
