// tarn: look at and check the files of a RIP folder from the command line.

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

// Every subcommand, in the order --help lists them.
const Command kCommands[] = {
    {"info", "info FILE", "show a print mode (.pmx), printer definition (.pdx) or media definition (.qmd)",
     RunInfo},
    {"list", "list RIPFOLDER", "list the print modes under RIPFOLDER/System/pmodes", RunList},
    {"curves", "curves FILE [-o OUT.svg]", "draw the transfer and separation curves of a print mode as SVG",
     RunCurves},
    {"media", "media RIPFOLDER PRINTER",
     "list the media of a printer: files, its page sizes and the defaults", RunMedia},
    {"media", "media FILE.qmd [-o OUT.svg]", "draw a media layout to scale, slots numbered in fill order",
     RunMedia},
    {"postscript", "postscript FILE [-o OUT.ps]", "write the PostScript set-up of a print mode",
     RunPostscript},
    {"chart", "chart FILE [-o OUT.svg]",
     "summarise a measurement chart (CGATS): tables, fields, patches, Lab range; or draw its a*b* plot",
     RunChart},
    {"deltae", "deltae REFERENCE SAMPLE [--method 76|94|2000] [--match id|name]",
     "compare two measured charts: mean, 95th percentile and max delta-E, the ten worst patches", RunDeltaE},
    {"job", "job FILE [--check RIPFOLDER]",
     "show a queue edit record or job parameter file; with --check, check it against RIPFOLDER", RunJob},
};

void PrintHelp() {
  std::printf("tarn %s: the data model of a production-printer RIP\n\n", TARN_VERSION_STRING);
  std::printf("usage: tarn COMMAND [ARGS]\n       tarn --help | --version\n\ncommands:\n");
  for (const Command& command : kCommands) {
    std::printf("  %-28s %s\n", command.usage, command.summary);
  }
}

}  // namespace

int Fail(const std::string& message) {
  std::fprintf(stderr, "tarn: %s\n", message.c_str());
  return kExitFailure;
}

bool LoadPrintModeQuietly(CPrintModeData& mode, const std::wstring& path) {
  const MessageHandler previous = SetMessageHandler([](const std::wstring&, const std::wstring&) {});
  const bool loaded = mode.LoadXMLPrintMode(path);
  SetMessageHandler(previous);
  return loaded;
}

}  // namespace tarn::tool

int main(int argc, char** argv) {
  using namespace tarn::tool;
  if (argc < 2) {
    PrintHelp();
    return kExitUsage;
  }
  const std::string command = argv[1];
  if (command == "--help" || command == "-h" || command == "help") {
    PrintHelp();
    return kExitOk;
  }
  if (command == "--version") {
    std::printf("tarn %s (queue version %d.%d.%d)\n", TARN_VERSION_STRING, tarn::kQueueVersionMajor,
                tarn::kQueueVersionMinor, tarn::kQueueVersionBuild);
    return kExitOk;
  }
  // The library reports through message boxes; on the command line they are
  // one line each on stderr.
  tarn::SetMessageHandler([](const std::wstring& text, const std::wstring& caption) {
    std::fprintf(stderr, "tarn: %s: %s\n", Shown(caption).c_str(), Shown(text).c_str());
  });
  for (const Command& entry : kCommands) {
    if (command == entry.name) {
      int status = kExitOk;
      try {
        status = entry.run(Arguments(argv + 2, argv + argc));
      } catch (const std::exception& error) {
        status = Fail(error.what());
      }
      // Output that never reached its file is a failure, whatever the command thought.
      std::string reason;
      if (!OutputWritten(reason)) {
        return Fail("cannot write the output: " + reason);
      }
      return status;
    }
  }
  std::fprintf(stderr, "tarn: unknown command '%s' (try tarn --help)\n", command.c_str());
  return kExitUsage;
}
