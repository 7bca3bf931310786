// tarn job FILE: a queue edit record (XML) or a job parameter file, one
// parameter a line.
// tarn job FILE --check RIPFOLDER: the checks a queue makes before it hands
// the job over, against the printers, print modes and media of RIPFOLDER.

#include <cstdio>
#include <string>
#include <vector>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

int Usage() {
  std::fprintf(stderr, "usage: tarn job FILE [--check RIPFOLDER]\n");
  return kExitUsage;
}

// A queue edit record starts with markup; anything else is read as a
// parameter file.
bool LooksLikeXml(const std::string& data) {
  size_t at = data.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
  while (at < data.size() && (data[at] == ' ' || data[at] == '\t' || data[at] == '\r' || data[at] == '\n')) {
    ++at;
  }
  return at < data.size() && data[at] == '<';
}

// A value on one line: control characters as the parameter file escapes them.
std::string OneLine(const std::wstring& value) {
  std::string out;
  for (const char c : ToUtf8(value)) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
      out += Format("%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
    } else {
      out += c;
    }
  }
  return out.empty() ? "-" : out;
}

}  // namespace

int RunJob(const Arguments& args) {
  std::string rip;
  if (args.size() == 3 && args[1] == "--check") {
    rip = args[2];
  } else if (args.size() != 1) {
    return Usage();
  }
  const std::string& file = args[0];
  const std::wstring path = FromUtf8(file);
  std::string data;
  std::wstring error;
  if (!FileExists(path)) {
    return Fail("no such file: " + file);
  }
  if (!ReadWholeFile(path, data, &error)) {
    return Fail(file + ": " + ToUtf8(error));
  }
  CQueueEdit job;
  const bool xml = LooksLikeXml(data);
  if (!(xml ? job.LoadFromString(data, &error) : job.ReadParameters(data, &error))) {
    return Fail(file + ": " + ToUtf8(error));
  }
  if (rip.empty()) {
    std::printf("%s\n", xml ? "queue edit record" : "job parameter file");
    for (const CQueueEdit::Parameter& parameter : job.GetParameters()) {
      std::printf("  %-20s %s\n", parameter.key.c_str(), OneLine(parameter.value).c_str());
    }
    return kExitOk;
  }
  int status = kExitOk;
  if (!UseRipFolder(rip, status)) {
    return status;
  }
  std::vector<JobCheckProblem> problems;
  if (CheckJob(job, &problems)) {
    std::printf("%s: every check passed\n", file.c_str());
    return kExitOk;
  }
  for (const JobCheckProblem& problem : problems) {
    std::fprintf(stderr, "tarn: %s: %s: %s\n", file.c_str(), problem.parameter.c_str(),
                 ToUtf8(problem.message).c_str());
  }
  return kExitFailure;
}

}  // namespace tarn::tool
