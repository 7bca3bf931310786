#include "tarn/foundation/platform.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <thread>

#include "tarn/foundation/text.h"

namespace tarn {

namespace {

std::wstring ErrorText(int error) {
  return FromUtf8(std::system_category().message(error));
}

void SetError(std::wstring* out, int error) {
  if (out) {
    *out = ErrorText(error);
  }
}

bool PathExists(const std::string& native) {
  struct stat info {};
  return ::stat(native.c_str(), &info) == 0;
}

// Finds the entry of folder whose name equals name ignoring case; empty when none.
std::string FindNoCase(const std::string& folder, const std::string& name) {
  DIR* dir = ::opendir(folder.empty() ? "." : folder.c_str());
  if (!dir) {
    return {};
  }
  const std::wstring wanted = FromUtf8(name);
  std::string found;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string candidate = entry->d_name;
    if (EqualsNoCase(FromUtf8(candidate), wanted)) {
      // Several spellings may exist on a case-sensitive disk; take the first in
      // name order so that the choice does not depend on directory order.
      if (found.empty() || candidate < found) {
        found = candidate;
      }
    }
  }
  ::closedir(dir);
  return found;
}

std::string ParentOf(const std::string& native) {
  const size_t slash = native.find_last_of('/');
  if (slash == std::string::npos) {
    return ".";
  }
  return slash == 0 ? "/" : native.substr(0, slash);
}

struct HostInterfaces {
  std::mutex mutex;
  MessageHandler message_handler;
  Translator translator;
  PrinterPaperQuery paper_query;
};

HostInterfaces& Host() {
  static HostInterfaces host;
  return host;
}

}  // namespace

std::string NativePath(std::wstring_view path) {
  std::string native = ToUtf8(path);
  std::replace(native.begin(), native.end(), '\\', '/');
  if (native.empty() || PathExists(native)) {
    return native;
  }
  // Walk the components; the first one that does not exist as written is
  // looked up ignoring case, and so on down. Past a component that does not
  // exist at all, the rest stays as written.
  const bool absolute = native[0] == '/';
  const bool trailing = native.size() > 1 && native.back() == '/';
  std::string current = absolute ? "/" : "";
  size_t pos = absolute ? 1 : 0;
  bool matching = true;
  while (pos <= native.size()) {
    size_t slash = native.find('/', pos);
    if (slash == std::string::npos) {
      slash = native.size();
    }
    std::string component = native.substr(pos, slash - pos);
    pos = slash + 1;
    if (component.empty()) {
      continue;
    }
    const auto join = [&](const std::string& name) {
      std::string joined = current;
      if (!joined.empty() && joined.back() != '/') {
        joined += '/';
      }
      return joined += name;
    };
    std::string candidate = join(component);
    if (matching && component != "." && component != ".." && !PathExists(candidate)) {
      const std::string found = FindNoCase(current, component);
      if (found.empty()) {
        matching = false;
      } else {
        candidate = join(found);
      }
    }
    current = candidate;
  }
  if (trailing && (current.empty() || current.back() != '/')) {
    current += '/';
  }
  return current;
}

bool FileExists(const std::wstring& path) {
  return !path.empty() && PathExists(NativePath(path));
}

bool FolderExists(const std::wstring& path) {
  struct stat info {};
  return !path.empty() && ::stat(NativePath(path).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool GetModificationTime(const std::wstring& path, std::int64_t& time) {
  struct stat info {};
  if (path.empty() || ::stat(NativePath(path).c_str(), &info) != 0) {
    return false;
  }
  time = static_cast<std::int64_t>(info.st_mtime);
  return true;
}

bool SetNormalAttributes(const std::wstring& path) {
  const std::string native = NativePath(path);
  struct stat info {};
  if (path.empty() || ::stat(native.c_str(), &info) != 0) {
    return false;
  }
  if ((info.st_mode & S_IWUSR) != 0) {
    return true;
  }
  return ::chmod(native.c_str(), (info.st_mode & 07777) | S_IWUSR) == 0;
}

bool ReadWholeFile(const std::wstring& path, std::string& data, std::wstring* error) {
  data.clear();
  if (path.empty()) {
    SetError(error, ENOENT);
    return false;
  }
  const int fd = ::open(NativePath(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    SetError(error, errno);
    return false;
  }
  struct stat info {};
  if (::fstat(fd, &info) != 0 || S_ISDIR(info.st_mode)) {
    const int failure = S_ISDIR(info.st_mode) ? EISDIR : errno;
    ::close(fd);
    SetError(error, failure);
    return false;
  }
  if (info.st_size > 0) {
    data.reserve(static_cast<size_t>(info.st_size));
  }
  char buffer[65536];
  for (;;) {
    const ssize_t got = ::read(fd, buffer, sizeof buffer);
    if (got == 0) {
      break;
    }
    if (got < 0) {
      if (errno == EINTR) {
        continue;
      }
      const int failure = errno;
      ::close(fd);
      data.clear();
      SetError(error, failure);
      return false;
    }
    data.append(buffer, static_cast<size_t>(got));
  }
  ::close(fd);
  return true;
}

bool WriteFileAtomically(const std::wstring& path, std::string_view data, std::wstring* error) {
  if (path.empty()) {
    SetError(error, ENOENT);
    return false;
  }
  const std::string target = NativePath(path);
  const std::string folder = ParentOf(target);
  struct stat folder_info {};
  if (::stat(folder.c_str(), &folder_info) != 0) {
    SetError(error, errno);
    return false;
  }
  if (!S_ISDIR(folder_info.st_mode)) {
    SetError(error, ENOTDIR);
    return false;
  }
  struct stat target_info {};
  const bool had_target = ::stat(target.c_str(), &target_info) == 0;
  if (had_target && S_ISDIR(target_info.st_mode)) {
    SetError(error, EISDIR);
    return false;
  }
  const std::string base = target.substr(target.find_last_of('/') + 1);
  std::string temporary = (folder == "/" ? std::string("/") : folder + "/") + "." + base + ".tmp.XXXXXX";
  const int fd = ::mkstemp(temporary.data());
  if (fd < 0) {
    SetError(error, errno);
    return false;
  }
  const auto fail = [&](int failure) {
    ::close(fd);
    ::unlink(temporary.c_str());
    SetError(error, failure);
    return false;
  };
  // A replaced file keeps its permissions, made writable by its owner (the
  // caller has cleared read-only already where it wants to); a new file gets
  // the usual 0644.
  const mode_t mode = had_target ? ((target_info.st_mode & 07777) | S_IWUSR) : 0644;
  if (::fchmod(fd, mode) != 0) {
    return fail(errno);
  }
  size_t written = 0;
  while (written < data.size()) {
    const ssize_t put = ::write(fd, data.data() + written, data.size() - written);
    if (put < 0) {
      if (errno == EINTR) {
        continue;
      }
      return fail(errno);
    }
    written += static_cast<size_t>(put);
  }
  if (::fsync(fd) != 0) {
    return fail(errno);
  }
  if (::close(fd) != 0) {
    const int failure = errno;
    ::unlink(temporary.c_str());
    SetError(error, failure);
    return false;
  }
  if (::rename(temporary.c_str(), target.c_str()) != 0) {
    const int failure = errno;
    ::unlink(temporary.c_str());
    SetError(error, failure);
    return false;
  }
  // Make the rename itself durable.
  const int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir >= 0) {
    ::fsync(dir);
    ::close(dir);
  }
  return true;
}

bool MatchesWildcard(std::wstring_view name, std::wstring_view pattern) {
  // "*.*" and "name.*" also match names without a dot, as on Windows.
  if (pattern.size() >= 2 && pattern.substr(pattern.size() - 2) == L".*" &&
      name.find(L'.') == std::wstring_view::npos) {
    return MatchesWildcard(name, pattern.substr(0, pattern.size() - 2));
  }
  size_t n = 0;
  size_t p = 0;
  size_t star = std::wstring_view::npos;
  size_t resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == L'*') {
      star = p++;
      resume = n;
    } else if (p < pattern.size() &&
               (pattern[p] == L'?' || EqualsNoCase(pattern.substr(p, 1), name.substr(n, 1)))) {
      ++p;
      ++n;
    } else if (star != std::wstring_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == L'*') {
    ++p;
  }
  return p == pattern.size();
}

std::vector<FolderEntry> FindFiles(const std::wstring& pattern) {
  std::vector<FolderEntry> entries;
  const size_t split = pattern.find_last_of(L"\\/");
  const std::wstring folder = split == std::wstring::npos ? L"." : pattern.substr(0, split + 1);
  const std::wstring wildcard = split == std::wstring::npos ? pattern : pattern.substr(split + 1);
  std::string native = NativePath(folder);
  if (native.empty()) {
    native = ".";
  }
  DIR* dir = ::opendir(native.c_str());
  if (!dir) {
    return entries;
  }
  while (const dirent* entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") {
      continue;
    }
    const std::wstring wide = FromUtf8(name);
    if (!MatchesWildcard(wide, wildcard.empty() ? L"*" : wildcard)) {
      continue;
    }
    struct stat info {};
    std::string full = native;
    if (full.back() != '/') {
      full += '/';
    }
    full += name;
    const bool is_folder = ::stat(full.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
    entries.push_back({wide, is_folder});
  }
  ::closedir(dir);
  std::sort(entries.begin(), entries.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return entries;
}

bool RemoveFile(const std::wstring& path) {
  return !path.empty() && ::unlink(NativePath(path).c_str()) == 0;
}

bool RenameFile(const std::wstring& from, const std::wstring& to) {
  return !from.empty() && !to.empty() && ::rename(NativePath(from).c_str(), NativePath(to).c_str()) == 0;
}

bool CreateFolders(const std::wstring& path) {
  if (path.empty()) {
    return false;
  }
  std::error_code error;
  const std::filesystem::path native(NativePath(path));
  std::filesystem::create_directories(native, error);
  return std::filesystem::is_directory(native, error);
}

void SleepMilliseconds(int milliseconds) {
  if (milliseconds > 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
}

MessageHandler SetMessageHandler(MessageHandler handler) {
  HostInterfaces& host = Host();
  const std::lock_guard lock(host.mutex);
  std::swap(host.message_handler, handler);
  return handler;
}

void ShowMessage(const std::wstring& text, const std::wstring& caption) {
  HostInterfaces& host = Host();
  MessageHandler handler;
  {
    const std::lock_guard lock(host.mutex);
    handler = host.message_handler;
  }
  if (handler) {
    handler(text, caption);
    return;
  }
  std::string line = ToUtf8(caption) + ": " + ToUtf8(text);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void SetTranslator(Translator translator) {
  HostInterfaces& host = Host();
  const std::lock_guard lock(host.mutex);
  host.translator = std::move(translator);
}

void XLT_TranslateString(std::wstring& text) {
  text = XLT_TranslateCString(text);
}

std::wstring XLT_TranslateCString(std::wstring_view text) {
  HostInterfaces& host = Host();
  Translator translator;
  {
    const std::lock_guard lock(host.mutex);
    translator = host.translator;
  }
  std::wstring value(text);
  return translator ? translator(value) : value;
}

void SetPrinterPaperQuery(PrinterPaperQuery query) {
  HostInterfaces& host = Host();
  const std::lock_guard lock(host.mutex);
  host.paper_query = std::move(query);
}

bool QueryPrinterPaper(const std::wstring& printer, PrinterPaper& paper) {
  HostInterfaces& host = Host();
  PrinterPaperQuery query;
  {
    const std::lock_guard lock(host.mutex);
    query = host.paper_query;
  }
  return query ? query(printer, paper) : false;
}

}  // namespace tarn
