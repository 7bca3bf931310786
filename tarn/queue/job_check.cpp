#include "tarn/queue/job_check.h"

#include <cmath>
#include <exception>

#include "tarn/foundation/format.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"
#include "tarn/media/print_media_list.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"
#include "tarn/queue/internal/parse.h"
#include "tarn/queue/queue_edit.h"

namespace tarn {

namespace {

// Sizes are compared at a thousandth of a point, as the media list compares them.
constexpr double kTolerance = 0.001;

// What the print mode check learnt: the printer the print mode was made for.
struct PrintModeFacts {
  bool loaded = false;
  std::wstring name;
  std::wstring driver;
};

class Checker {
 public:
  Checker(const CQueueEdit& job, std::vector<JobCheckProblem>* problems) : job_(job), problems_(problems) {}

  bool Run() {
    CheckCopies();
    const bool page_ok = CheckPageSize();
    const PrintModeFacts mode = CheckPrintMode();
    CPrinterData printer;
    const bool printer_ok = CheckPrinter(printer);
    if (mode.loaded && printer_ok) {
      CheckPrinterMatch(mode);
    }
    if (printer_ok && !job_.GetMediaName().empty()) {
      CheckMedia(printer, page_ok);
    }
    return ok_;
  }

 private:
  void Fail(const char* parameter, std::wstring message) {
    ok_ = false;
    if (problems_ != nullptr) {
      problems_->push_back({parameter, std::move(message)});
    }
  }

  void CheckCopies() {
    if (job_.GetCopies() < 1) {
      Fail("Copies", Format(L"must be at least 1, not %d", job_.GetCopies()));
    }
  }

  // A page of no size, or of a size that is not a number, fits nothing.
  bool CheckPageSize() {
    bool ok = true;
    for (const auto& [key, value] : {std::pair{"PageSize.Width", job_.GetPageWidth()},
                                     std::pair{"PageSize.Height", job_.GetPageHeight()}}) {
      if (!(value > 0.0 && std::isfinite(value))) {
        Fail(key, Format(L"must be more than 0 points, not %g", value));
        ok = false;
      }
    }
    return ok;
  }

  PrintModeFacts CheckPrintMode() {
    PrintModeFacts facts;
    const std::wstring path = job_.GetPrintModeFullPath();
    if (path.empty()) {
      Fail("PrintMode", L"no print mode is chosen");
      return facts;
    }
    if (!FileExists(path)) {
      Fail("PrintMode", L"no such file: " + path);
      return facts;
    }
    std::string data;
    std::wstring error;
    pugi::xml_document document;
    if (!ReadWholeFile(path, data, &error) || !internal::ParseDocument(document, data, nullptr, &error)) {
      Fail("PrintMode", path + L": " + error);
      return facts;
    }
    const pugi::xml_node root = document.first_child();
    if (xml::IsNamed(root, "PMH")) {
      CPrintModeData mode;
      mode.ReadXML(root);
      facts.driver = mode.GetDriver();
    } else if (xml::IsNamed(root, "Tarn")) {
      // A layered print mode: its printer is the whole file's, and it prints
      // nothing without a layer.
      if (!root.child("Layer")) {
        Fail("PrintMode", path + L": the layered print mode has no layers");
        return facts;
      }
      facts.driver = xml::ReadText(root.child("Driver"));
    } else {
      Fail("PrintMode",
           Format(L"%s: not a print mode (the root element is '%s')", path, FromUtf8(root.name())));
      return facts;
    }
    SplitPath(path, nullptr, &facts.name);
    facts.loaded = true;
    return facts;
  }

  bool CheckPrinter(CPrinterData& printer) {
    const std::wstring& driver = job_.GetPrinter();
    if (driver.empty()) {
      Fail("Printer", L"the queue names no printer");
      return false;
    }
    if (!printer.LoadPrinter(driver)) {
      std::wstring path;
      Fail("Printer",
           CPrinterData::FindPDXPath(driver, path)
               ? Format(L"the printer definition %s cannot be read", path)
               : Format(L"no printer definition '%s' in %sSystem\\printers\\", driver, GetTarnRipFolder()));
      return false;
    }
    return true;
  }

  void CheckPrinterMatch(const PrintModeFacts& mode) {
    if (mode.driver.empty()) {
      Fail("PrintMode", Format(L"print mode '%s' names no printer", mode.name));
    } else if (!EqualsNoCase(mode.driver, job_.GetPrinter())) {
      Fail("PrintMode", Format(L"print mode '%s' is made for printer '%s', not for the queue's printer '%s'",
                               mode.name, mode.driver, job_.GetPrinter()));
    }
  }

  void CheckMedia(CPrinterData& printer, bool page_ok) {
    CPrintMediaList list;
    list.Initialize(&printer, nullptr, nullptr);
    const CPrintMedia* media = list.GetMedia(job_.GetMediaName().c_str());
    if (media == nullptr) {
      Fail("PageSize.Media",
           Format(L"printer '%s' has no media '%s'", job_.GetPrinter(), job_.GetMediaName()));
      return;
    }
    if (!page_ok) {
      return;
    }
    // The page must fit between the margins, the part of the media printed on.
    const double width = media->GetWidth() - media->GetLMargin() - media->GetRMargin();
    const double height = media->GetHeight() - media->GetTMargin() - media->GetBMargin();
    const bool wide = job_.GetPageWidth() > width + kTolerance;
    const bool high = job_.GetPageHeight() > height + kTolerance;
    const bool turned =
        job_.GetPageWidth() <= height + kTolerance && job_.GetPageHeight() <= width + kTolerance;
    const wchar_t* hint = turned ? L" (it fits turned by 90 degrees)" : L"";
    if (wide) {
      Fail("PageSize.Width", Format(L"the page is %.2f pt wide, media '%s' prints at most %.2f pt%s",
                                    job_.GetPageWidth(), media->GetName(), width, hint));
    }
    if (high) {
      Fail("PageSize.Height", Format(L"the page is %.2f pt high, media '%s' prints at most %.2f pt%s",
                                     job_.GetPageHeight(), media->GetName(), height, hint));
    }
  }

  const CQueueEdit& job_;
  std::vector<JobCheckProblem>* problems_;
  bool ok_ = true;
};

}  // namespace

bool CheckJob(const CQueueEdit& job, std::vector<JobCheckProblem>* problems) {
  try {
    return Checker(job, problems).Run();
  } catch (const std::exception&) {
    // Only running out of memory throws here; a check that cannot run has not passed.
    if (problems != nullptr) {
      try {
        problems->push_back({"", L"the checks ran out of memory"});
      } catch (const std::exception&) {
      }
    }
    return false;
  }
}

}  // namespace tarn
