#pragma once

// Helpers shared by the test programs.

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "tarn/foundation/platform.h"
#include "tarn/foundation/xml.h"

namespace tarn::test {

// A fresh folder under the system's temporary folder, removed with everything
// in it when the object goes away.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The folder as a wide path with a trailing separator, ready to prepend.
  std::wstring wide() const;
  // path() / name as a wide path.
  std::wstring File(const std::string& name) const;

 private:
  std::filesystem::path path_;
};

// Collects the messages the library shows while it lives, instead of printing them.
class MessageCapture {
 public:
  struct Message {
    std::wstring text;
    std::wstring caption;
  };
  MessageCapture();
  ~MessageCapture();
  MessageCapture(const MessageCapture&) = delete;
  MessageCapture& operator=(const MessageCapture&) = delete;

  const std::vector<Message>& messages() const { return *messages_; }
  bool empty() const { return messages_->empty(); }
  void clear() { messages_->clear(); }

 private:
  std::shared_ptr<std::vector<Message>> messages_;
  MessageHandler previous_;  // put back on destruction, so captures nest
};

// Switches the whole process (C and C++ locales) to a locale with a decimal
// comma for its lifetime. active() is false when the machine lacks one; tests
// then GTEST_SKIP.
class DecimalCommaLocale {
 public:
  DecimalCommaLocale();
  ~DecimalCommaLocale();
  DecimalCommaLocale(const DecimalCommaLocale&) = delete;
  DecimalCommaLocale& operator=(const DecimalCommaLocale&) = delete;
  bool active() const { return active_; }

 private:
  bool active_ = false;
  std::string previous_;
};

// The text a record writes as the only element of a document, as files hold it.
template <typename Record>
std::string Written(const Record& record) {
  pugi::xml_document document;
  pugi::xml_node root = document;
  record.WriteXML(root);
  return xml::SaveDocumentToString(document);
}

// Runs body on a thread of its own with a stack of the given size, so that a
// test can show a reader stays within a small stack (1 MB, as many hosts give
// their worker threads).
void RunOnStack(size_t stack_bytes, const std::function<void()>& body);

// open repeated depth times, then close as often: elements nested depth deep.
std::string Nested(const std::string& open, const std::string& close, int depth);

// Empty when the strict second parser (libxml2's xmllint) accepts the text
// as a well-formed XML 1.0 document; otherwise its complaint. Tests skip
// when xmllint is not installed (scripts/install-deps installs it).
bool HaveStrictParser();
std::string StrictParserComplaint(const std::string& xml);

// What the tarn tool did: its exit status (-1 when it did not exit normally)
// and what it wrote.
struct ToolRun {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs the tool at path tool (the tests pass TARN_TOOL_PATH) with args,
// capturing what it writes.
ToolRun RunTool(const std::string& tool, const std::vector<std::string>& args);

std::string ReadBytes(const std::filesystem::path& path);
void WriteBytes(const std::filesystem::path& path, const std::string& bytes);
// Absolute path of a fixture under tests/data.
std::filesystem::path DataFile(const std::string& relative);

}  // namespace tarn::test
