// tarn media RIPFOLDER PRINTER: the media list of a printer.
// tarn media FILE.qmd [-o OUT.svg]: a picture of a media layout.
// tarn info FILE.qmd: one media definition (called from cmd_info.cpp).

#include <cstdio>
#include <string>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

constexpr double kPointsPerMm = 72.0 / 25.4;

int Usage() {
  std::fprintf(stderr, "usage: tarn media RIPFOLDER PRINTER\n       tarn media FILE.qmd [-o OUT.svg]\n");
  return kExitUsage;
}

std::string Size(double width, double height) {
  return Format("%.1f x %.1f mm (%.2f x %.2f in)", width / kPointsPerMm, height / kPointsPerMm, width / 72.0,
                height / 72.0);
}

bool LoadMedia(const std::string& file, CPrintMedia& media, int& status) {
  const std::wstring path = FromUtf8(file);
  if (!FileExists(path)) {
    status = Fail("no such file: " + file);
    return false;
  }
  std::wstring error;
  if (!media.ReadFile(path, &error)) {
    status = Fail(file + ": " + ToUtf8(error));
    return false;
  }
  return true;
}

int ListPrinterMedia(const std::string& folder, const std::string& driver) {
  std::wstring rip = FromUtf8(folder);
  if (!rip.empty() && rip.back() != L'\\' && rip.back() != L'/') {
    rip += L'\\';
  }
  if (!FolderExists(rip)) {
    return Fail("no such folder: " + folder);
  }
  SetTarnRipSystemRoot(rip.c_str());
  CPrinterData printer;
  if (!printer.LoadPrinter(FromUtf8(driver))) {
    return Fail("no printer definition " + driver + " in " + folder + "/System/printers");
  }
  CPrintMediaList list;
  list.Initialize(&printer, nullptr, nullptr);
  std::printf("%-32s %-10s %-42s %s\n", "name", "kind", "size", "slots");
  for (const auto& media : list) {
    std::printf("%-32s %-10s %-42s %d%s\n", ToUtf8(media->GetName()).c_str(),
                ToUtf8(CPrintMedia::KindName(media->GetType())).c_str(),
                Size(media->GetWidth(), media->GetHeight()).c_str(), media->SlotCount(),
                media->IsLocked() ? "  locked" : "");
  }
  std::fprintf(stderr, "%zu media; media files in %s\n", list.size(),
               NativePath(list.GetMediaPath()).c_str());
  return kExitOk;
}

int DrawMedia(const std::string& input, const std::string& output) {
  CPrintMedia media;
  int status = kExitOk;
  if (!LoadMedia(input, media, status)) {
    return status;
  }
  const std::string svg = PlotMediaSVG(media);
  return WriteOutput(output, svg);
}

void Line(const char* label, const std::string& value) {
  std::printf("  %-20s %s\n", label, value.empty() ? "-" : value.c_str());
}

// The first line of a PostScript text, enough to recognise it.
std::string FirstLine(const std::wstring& text) {
  const std::wstring line = text.substr(0, text.find_first_of(L"\r\n"));
  return ToUtf8(line) + (line.size() < text.size() ? " ..." : "");
}

}  // namespace

bool IsMediaFile(const std::string& file) {
  return file.size() > 4 && EqualsNoCase(FromUtf8(file.substr(file.size() - 4)), L".qmd");
}

int ShowMediaFile(const std::string& file) {
  CPrintMedia media;
  int status = kExitOk;
  if (!LoadMedia(file, media, status)) {
    return status;
  }
  std::printf("%s\n", file.c_str());
  Line("name", ToUtf8(media.GetName()));
  Line("version", ToUtf8(media.GetVersion()));
  Line("kind", ToUtf8(CPrintMedia::KindName(media.GetType())));
  Line("size", Size(media.GetWidth(), media.GetHeight()));
  Line("margins", Format("left %.1f, right %.1f, top %.1f, bottom %.1f mm", media.GetLMargin() / kPointsPerMm,
                         media.GetRMargin() / kPointsPerMm, media.GetTMargin() / kPointsPerMm,
                         media.GetBMargin() / kPointsPerMm));
  Line("spacing",
       Format("%.1f x %.1f mm", media.GetXSpacing() / kPointsPerMm, media.GetYSpacing() / kPointsPerMm));
  Line("locked", media.IsLocked() ? "yes" : "no");
  Line("page set-up", FirstLine(media.GetPS()));
  Line("imageable area", ToUtf8(media.GetPSImageableArea()));
  Line("dimension", ToUtf8(media.GetPSDimension()));
  Line("paper size code", media.GetPaperSizeCode() ? Format("%d", media.GetPaperSizeCode()) : "");
  Line("valid", CPrintMedia(media).IsDataValid() ? "yes" : "no (no name, or no width or height)");
  if (media.IsTemplate()) {
    std::printf("template\n");
    Line("base", ToUtf8(media.GetTemplateBase()));
    Line("book", media.IsBookTemplate() ? "yes" : "no");
    Line("creep content", media.GetCreepContent() ? "yes" : "no");
    if (media.IsQuickSetInUse()) {
      const CQTAData& q = media.GetQuickSet();
      Line("quick-set", Format("%d x %d slots of %.1f x %.1f mm, offset %.1f, %.1f mm, gaps %.1f, %.1f mm, "
                               "fill order %d",
                               q.GetHNumber(), q.GetVNumber(), q.GetSlotWidth() / kPointsPerMm,
                               q.GetSlotHeight() / kPointsPerMm, q.GetHOffset() / kPointsPerMm,
                               q.GetVOffset() / kPointsPerMm, q.GetHSpace() / kPointsPerMm,
                               q.GetVSpace() / kPointsPerMm, q.GetFillOrder()));
    } else {
      Line("quick-set", "");
    }
    std::printf("slots (%d)\n", media.SlotCount());
    int index = 0;
    for (const auto& slot : media.GetSlots()) {
      std::printf("  %3d  image %-4d at %.1f, %.1f mm, %.1f x %.1f mm\n", ++index, slot->item,
                  slot->x / kPointsPerMm, slot->y / kPointsPerMm, slot->width / kPointsPerMm,
                  slot->height / kPointsPerMm);
    }
  }
  return kExitOk;
}

int RunMedia(const Arguments& args) {
  if (!args.empty() && IsMediaFile(args[0])) {
    if (args.size() == 1) {
      return DrawMedia(args[0], "");
    }
    if (args.size() == 3 && args[1] == "-o") {
      return DrawMedia(args[0], args[2]);
    }
    return Usage();
  }
  if (args.size() != 2) {
    return Usage();
  }
  return ListPrinterMedia(args[0], args[1]);
}

}  // namespace tarn::tool
