#include "tarn/foundation/paths.h"

#include <mutex>

namespace tarn {

namespace {

// Set once by the host at start-up and read whenever a path is built; the lock
// only keeps a late change from tearing a string another thread is copying.
struct ProcessPaths {
  std::mutex mutex;
  std::wstring queue_module;
  std::wstring rip_folder;
  CXRegistry* registry = nullptr;
};

ProcessPaths& Paths() {
  static ProcessPaths paths;
  return paths;
}

}  // namespace

void SetQModulePath(const wchar_t* path) {
  ProcessPaths& paths = Paths();
  const std::lock_guard lock(paths.mutex);
  paths.queue_module = path ? path : L"";
}

void SetTarnRipSystemRoot(const wchar_t* path) {
  ProcessPaths& paths = Paths();
  const std::lock_guard lock(paths.mutex);
  paths.rip_folder = path ? path : L"";
}

void SetTarnPathsFromQPath(const wchar_t* qpath) {
  const std::wstring queue = qpath ? qpath : L"";
  std::wstring rip = queue;
  if (rip.empty() || rip.back() != L'\\') {
    rip += L'\\';
  }
  rip += L"rip\\";
  ProcessPaths& paths = Paths();
  const std::lock_guard lock(paths.mutex);
  paths.queue_module = queue;
  paths.rip_folder = rip;
}

void SetTarnRegistryBase(CXRegistry* registry) {
  ProcessPaths& paths = Paths();
  const std::lock_guard lock(paths.mutex);
  paths.registry = registry;
}

std::wstring GetQModulePath() {
  ProcessPaths& paths = Paths();
  const std::lock_guard lock(paths.mutex);
  return paths.queue_module;
}

std::wstring GetTarnRipFolder() {
  ProcessPaths& paths = Paths();
  const std::lock_guard lock(paths.mutex);
  return paths.rip_folder;
}

CXRegistry* GetTarnRegistryBase() {
  ProcessPaths& paths = Paths();
  const std::lock_guard lock(paths.mutex);
  return paths.registry;
}

std::wstring GetPrintModesFolder() {
  return GetTarnRipFolder() + L"System\\pmodes\\";
}

std::wstring GetSystemFolder() {
  return GetTarnRipFolder() + L"system\\";
}

std::wstring GetColorLinksFolder() {
  return GetTarnRipFolder() + L"System\\clinks\\";
}

void SplitPath(std::wstring_view path, std::wstring* folder, std::wstring* file) {
  const size_t split = path.find_last_of(L"\\/");
  // A bare drive ("C:name") keeps the drive as its folder, as on Windows.
  size_t folder_end = split == std::wstring_view::npos ? 0 : split + 1;
  if (folder_end == 0 && path.size() >= 2 && path[1] == L':') {
    folder_end = 2;
  }
  if (folder) {
    *folder = std::wstring(path.substr(0, folder_end));
    if (!folder->empty() && folder->back() != L'\\' && folder->back() != L'/') {
      *folder += L'\\';
    }
  }
  if (file) {
    *file = std::wstring(path.substr(folder_end));
  }
}

}  // namespace tarn
