#include "tarn/foundation/platform.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "tarn/foundation/format.h"
#include "tarn/foundation/limits.h"
#include "tarn/foundation/text.h"

namespace tarn {

namespace {

void SetError(std::wstring* out, const std::wstring& text) {
  if (out) {
    *out = text;
  }
}

void SetError(std::wstring* out, int error) {
  SetError(out, DescribeSystemError(error));
}

std::wstring TooLarge(std::uint64_t size) {
  return Format(L"file too large (%llu bytes; the limit is %llu)", static_cast<unsigned long long>(size),
                static_cast<unsigned long long>(kMaxFileSize));
}

constexpr wchar_t kNotRegular[] = L"not a regular file";
constexpr wchar_t kFolderCaption[] = L"Folder";

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

std::wstring DescribeSystemError(int error) {
  // Our own words for what users meet most, so that messages read the same
  // whatever language the host's C library speaks.
  switch (error) {
    case ENOENT:
      return L"no such file or folder";
    case EACCES:
    case EPERM:
      return L"permission denied";
    case EISDIR:
      return L"is a folder";
    case ENOTDIR:
      return L"not a folder";
    case ELOOP:
      return L"too many levels of symbolic links";
    case ENOSPC:
      return L"no space left on the disk";
    case EDQUOT:
      return L"disk quota exceeded";
    case EROFS:
      return L"read-only file system";
    case ENAMETOOLONG:
      return L"file name too long";
    case EIO:
      return L"input/output error";
    default:
      break;
  }
  std::string text = std::system_category().message(error);
  if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') {
    text[0] = static_cast<char>(text[0] - 'A' + 'a');
  }
  return FromUtf8(text);
}

bool ReadWholeFile(const std::wstring& path, std::string& data, std::wstring* error) {
  data.clear();
  if (path.empty()) {
    SetError(error, ENOENT);
    return false;
  }
  // Opened without blocking: a FIFO with no writer would otherwise hold the
  // caller for ever before the type check below could refuse it.
  const int fd = ::open(NativePath(path).c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) {
    SetError(error, errno);
    return false;
  }
  const auto fail = [&](const std::wstring& reason) {
    ::close(fd);
    data.clear();
    SetError(error, reason);
    return false;
  };
  struct stat info {};
  if (::fstat(fd, &info) != 0) {
    return fail(DescribeSystemError(errno));
  }
  if (S_ISDIR(info.st_mode)) {
    return fail(DescribeSystemError(EISDIR));
  }
  // Devices, FIFOs and sockets have no end a reader can trust (/dev/zero).
  if (!S_ISREG(info.st_mode)) {
    return fail(kNotRegular);
  }
  if (static_cast<std::uint64_t>(info.st_size) > kMaxFileSize) {
    return fail(TooLarge(static_cast<std::uint64_t>(info.st_size)));
  }
  data.reserve(static_cast<size_t>(info.st_size));
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
      return fail(DescribeSystemError(errno));
    }
    data.append(buffer, static_cast<size_t>(got));
    // The file may grow while it is read.
    if (data.size() > kMaxFileSize) {
      return fail(TooLarge(data.size()));
    }
  }
  ::close(fd);
  return true;
}

namespace {

// Temporary files of a save are named ".<file>.tarn-save-<unique>" beside
// the file, so that a person (or the next save) can tell what left them.
constexpr char kTemporaryMark[] = ".tarn-save-";

std::string JoinNative(const std::string& folder, const std::string& name) {
  return (folder == "/" ? std::string("/") : folder + "/") + name;
}

// Follows symbolic links to the file they finally name, so that a save
// through a link replaces the real file and the link stays a link. A dangling
// link names the file to create.
bool ResolveLinks(std::string path, std::string& resolved, int& failure) {
  for (int hops = 0; hops < 40; ++hops) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) {
      resolved = std::move(path);
      return true;
    }
    std::string target(PATH_MAX, '\0');
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length < 0) {
      failure = errno;
      return false;
    }
    target.resize(static_cast<size_t>(length));
    path = (!target.empty() && target[0] == '/') ? target : JoinNative(ParentOf(path), target);
  }
  failure = ELOOP;
  return false;
}

// Removes the temporaries that earlier saves of the same file left behind
// when they were killed. A save in progress holds a lock on its temporary,
// so only abandoned ones can be locked here.
void RemoveStaleTemporaries(const std::string& folder, const std::string& prefix) {
  DIR* dir = ::opendir(folder.c_str());
  if (!dir) {
    return;
  }
  std::vector<std::string> stale;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string_view name = entry->d_name;
    if (name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix) {
      stale.emplace_back(name);
    }
  }
  ::closedir(dir);
  for (const std::string& name : stale) {
    const std::string full = JoinNative(folder, name);
    const int fd = ::open(full.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
      continue;
    }
    struct stat info {};
    if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && ::flock(fd, LOCK_EX | LOCK_NB) == 0) {
      ::unlink(full.c_str());
    }
    ::close(fd);
  }
}

// Creates a new temporary file for target, locked, with the mode the process
// would give any new file (0666 less the umask).
int CreateTemporary(const std::string& folder, const std::string& prefix, std::string& name) {
  static std::atomic<unsigned> counter{0};
  for (int attempt = 0; attempt < 100; ++attempt) {
    const auto ticks =
        static_cast<unsigned long long>(std::chrono::steady_clock::now().time_since_epoch().count());
    name = JoinNative(folder, prefix + Format("%x-%x-%llx", static_cast<unsigned>(::getpid()),
                                              counter.fetch_add(1), ticks & 0xffffffffull));
    const int fd = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd >= 0) {
      ::flock(fd, LOCK_EX | LOCK_NB);
      return fd;
    }
    if (errno != EEXIST) {
      return -1;
    }
  }
  errno = EEXIST;
  return -1;
}

}  // namespace

bool WriteFileAtomically(const std::wstring& path, std::string_view data, std::wstring* error) {
  if (path.empty()) {
    SetError(error, ENOENT);
    return false;
  }
  std::string target;
  int failure = 0;
  if (!ResolveLinks(NativePath(path), target, failure)) {
    SetError(error, failure);
    return false;
  }
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
  // Renaming over a device or a FIFO would replace it, not write to it.
  if (had_target && !S_ISREG(target_info.st_mode)) {
    SetError(error, kNotRegular);
    return false;
  }
  const std::string prefix = "." + target.substr(target.find_last_of('/') + 1) + kTemporaryMark;
  RemoveStaleTemporaries(folder, prefix);
  std::string temporary;
  const int fd = CreateTemporary(folder, prefix, temporary);
  if (fd < 0) {
    SetError(error, errno);
    return false;
  }
  const auto fail = [&](int code) {
    ::close(fd);
    ::unlink(temporary.c_str());
    SetError(error, code);
    return false;
  };
  if (had_target) {
    // The replacement keeps the owner where the process may set it (root, or
    // a group the user belongs to), then the mode: chown clears set-id bits.
    if (::fchown(fd, target_info.st_uid, target_info.st_gid) != 0) {
      (void)::fchown(fd, static_cast<uid_t>(-1), target_info.st_gid);
    }
    if (::fchmod(fd, target_info.st_mode & 07777) != 0) {
      return fail(errno);
    }
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
  if (::rename(temporary.c_str(), target.c_str()) != 0) {
    return fail(errno);
  }
  // Closing after the rename keeps the lock until the temporary has its
  // final name, so no other save takes it for abandoned.
  ::close(fd);
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

namespace {

// Lists the entries of a native folder that match wildcard, sorted by name.
// False, with the reason, when the folder cannot be read.
bool ListFolder(const std::string& native, std::wstring_view wildcard, std::vector<FolderEntry>& entries,
                int& failure) {
  DIR* dir = ::opendir(native.c_str());
  if (!dir) {
    failure = errno;
    return false;
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
    const bool is_folder = ::stat(JoinNative(native, name).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
    entries.push_back({wide, is_folder});
  }
  ::closedir(dir);
  std::sort(entries.begin(), entries.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return true;
}

void ReportUnreadableFolder(const std::wstring& folder, int failure) {
  ShowMessage(Format(L"Cannot read the folder %s: %s", folder, DescribeSystemError(failure)), kFolderCaption);
}

std::string NativeFolder(const std::wstring& folder) {
  std::string native = NativePath(folder);
  if (native.empty()) {
    native = ".";
  }
  if (native.size() > 1 && native.back() == '/') {
    native.pop_back();
  }
  return native;
}

}  // namespace

std::vector<FolderEntry> FindFiles(const std::wstring& pattern) {
  std::vector<FolderEntry> entries;
  const size_t split = pattern.find_last_of(L"\\/");
  const std::wstring folder = split == std::wstring::npos ? L"." : pattern.substr(0, split + 1);
  const std::wstring wildcard = split == std::wstring::npos ? pattern : pattern.substr(split + 1);
  int failure = 0;
  // A folder that is not there simply holds nothing; one that is there and
  // cannot be read is worth telling the user about.
  if (!ListFolder(NativeFolder(folder), wildcard, entries, failure) && failure != ENOENT &&
      failure != ENOTDIR) {
    ReportUnreadableFolder(folder, failure);
  }
  return entries;
}

std::vector<std::wstring> FindFilesBelow(const std::wstring& folder, const std::wstring& wildcard) {
  std::vector<std::wstring> found;
  std::wstring root = folder;
  if (!root.empty() && root.back() != L'\\' && root.back() != L'/') {
    root += L'\\';
  }
  // Real folders already entered, by device and inode: a link back to a
  // parent, or two links to one folder, must not list anything twice.
  std::set<std::pair<dev_t, ino_t>> visited;
  const std::function<void(const std::wstring&, int)> walk = [&](const std::wstring& relative, int depth) {
    const std::wstring here = root + relative;
    const std::string native = NativeFolder(here);
    struct stat info {};
    if (::stat(native.c_str(), &info) != 0) {
      ReportUnreadableFolder(here, errno);
      return;
    }
    if (!visited.insert({info.st_dev, info.st_ino}).second) {
      return;
    }
    std::vector<FolderEntry> entries;
    int failure = 0;
    if (!ListFolder(native, L"*", entries, failure)) {
      ReportUnreadableFolder(here, failure);
      return;
    }
    for (const FolderEntry& entry : entries) {
      if (entry.is_folder) {
        if (depth < kMaxFolderDepth) {
          walk(relative + entry.name + L"\\", depth + 1);
        } else {
          ShowMessage(Format(L"The folder %s%s is nested too deeply (more than %d levels); it is skipped.",
                             here, entry.name, kMaxFolderDepth),
                      kFolderCaption);
        }
      } else if (MatchesWildcard(entry.name, wildcard.empty() ? L"*" : wildcard)) {
        found.push_back(relative + entry.name);
      }
    }
  };
  walk(L"", 0);
  return found;
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
