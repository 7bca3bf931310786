// What the tool prints: text from files made safe for a terminal, the reasons
// a file does not load, and the check that standard output took it all.

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

bool ToTerminal() {
  static const bool terminal = ::isatty(STDOUT_FILENO) == 1;
  return terminal;
}

}  // namespace

std::string Shown(const std::wstring& text) {
  if (!ToTerminal()) {
    return ToUtf8(text);
  }
  // A name in a file must not move the cursor, change colours or retitle the
  // window of the user who looks at it.
  std::wstring safe;
  for (const wchar_t c : text) {
    const auto code = static_cast<unsigned>(c);
    if (code < 0x20 || (code >= 0x7F && code <= 0x9F)) {
      safe += Format(L"\\x%02x", code);
    } else {
      safe += c;
    }
  }
  return ToUtf8(safe);
}

std::string WhyNotLoaded(const std::wstring& path, const char* root) {
  pugi::xml_document document;
  std::wstring reason;
  if (xml::LoadDocument(document, path, root, &reason)) {
    return {};
  }
  return ToUtf8(reason);
}

bool OutputWritten(std::string& reason) {
  static int failure = 0;
  if (failure == 0 && std::fflush(stdout) != 0) {
    failure = errno != 0 ? errno : EIO;
  }
  if (failure == 0 && std::ferror(stdout)) {
    failure = EIO;
  }
  if (failure != 0) {
    reason = ToUtf8(DescribeSystemError(failure));
    return false;
  }
  return true;
}

}  // namespace tarn::tool
