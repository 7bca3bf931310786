#include "support/test_support.h"

#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <locale>
#include <sstream>
#include <stdexcept>

#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"

namespace tarn::test {

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) {
    throw std::runtime_error("cannot create a temporary folder");
  }
  path_ = pattern;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  // Tests make files read-only; make everything writable so it can go.
  for (auto it = std::filesystem::recursive_directory_iterator(path_, ignored);
       it != std::filesystem::recursive_directory_iterator(); it.increment(ignored)) {
    std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ignored);
  }
  std::filesystem::remove_all(path_, ignored);
}

std::wstring TempFolder::wide() const {
  return FromUtf8(path_.string()) + L"/";
}

std::wstring TempFolder::File(const std::string& name) const {
  return FromUtf8((path_ / name).string());
}

MessageCapture::MessageCapture() : messages_(std::make_shared<std::vector<Message>>()) {
  auto sink = messages_;
  previous_ = SetMessageHandler([sink](const std::wstring& text, const std::wstring& caption) {
    sink->push_back({text, caption});
  });
}

MessageCapture::~MessageCapture() {
  SetMessageHandler(std::move(previous_));
}

DecimalCommaLocale::DecimalCommaLocale() {
  const char* current = std::setlocale(LC_ALL, nullptr);
  previous_ = current ? current : "C";
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE"}) {
    if (std::setlocale(LC_ALL, name)) {
      try {
        std::locale::global(std::locale(name));
      } catch (const std::exception&) {
        continue;
      }
      active_ = true;
      return;
    }
  }
}

DecimalCommaLocale::~DecimalCommaLocale() {
  std::setlocale(LC_ALL, previous_.c_str());
  std::locale::global(std::locale::classic());
}

void RunOnStack(size_t stack_bytes, const std::function<void()>& body) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, stack_bytes);
  pthread_t thread;
  auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  if (pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&body)) != 0) {
    pthread_attr_destroy(&attributes);
    throw std::runtime_error("cannot start a thread");
  }
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

std::string Nested(const std::string& open, const std::string& close, int depth) {
  std::string text;
  text.reserve((open.size() + close.size()) * static_cast<size_t>(depth));
  for (int i = 0; i < depth; ++i) {
    text += open;
  }
  for (int i = 0; i < depth; ++i) {
    text += close;
  }
  return text;
}

bool HaveStrictParser() {
  return std::system("xmllint --version >/dev/null 2>&1") == 0;
}

std::string StrictParserComplaint(const std::string& xml) {
  TempFolder temp;
  const std::filesystem::path file = temp.path() / "written.xml";
  const std::filesystem::path complaint = temp.path() / "complaint.txt";
  WriteBytes(file, xml);
  const std::string command = "xmllint --noout '" + file.string() + "' 2>'" + complaint.string() + "'";
  if (std::system(command.c_str()) == 0) {
    return {};
  }
  const std::string text = ReadBytes(complaint);
  return text.empty() ? std::string("xmllint failed") : text;
}

ToolRun RunTool(const std::string& tool, const std::vector<std::string>& args) {
  TempFolder temp;
  std::string command = "\"" + tool + "\"";
  for (const std::string& arg : args) {
    command += " \"" + arg + "\"";
  }
  command += " >\"" + (temp.path() / "out").string() + "\" 2>\"" + (temp.path() / "err").string() + "\"";
  const int raw = std::system(command.c_str());
  ToolRun run;
  run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  run.out = ReadBytes(temp.path() / "out");
  run.err = ReadBytes(temp.path() / "err");
  return run;
}

std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

std::filesystem::path DataFile(const std::string& relative) {
  return std::filesystem::path(TARN_TEST_DATA_DIR) / relative;
}

}  // namespace tarn::test
