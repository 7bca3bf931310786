// Any bytes as a print mode file, then its PostScript set-up and every
// further block: writing must never crash, and every table must hold either
// nothing or its 256 values of two hex digits.
//   build/fuzz/fuzz/fuzz_postscript -dict=fuzz/print_mode.dict fuzz/corpus/print_mode

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz_support.h"
#include "tarn/postscript/postscript_setup.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace {

// A printer with the colour models fuzzed print modes name most, so that the
// separation, N-colour and halftone writers see planes.
const tarn::CPrinterData& Printer() {
  static const tarn::CPrinterData printer = [] {
    tarn::CPrinterData loaded;
    loaded.LoadFromString(
        "<PRINTERLIST><PRINTER>"
        "<NCOLOR2><NAME>CMYK</NAME><PLANE>Cyan</PLANE><PLANE>Magenta</PLANE><PLANE>Yellow</PLANE>"
        "<PLANE>Black</PLANE></NCOLOR2>"
        "<NCOLOR2><NAME>Hexachrome</NAME><PLANE>Cyan</PLANE><PLANE>Magenta</PLANE><PLANE>Yellow</PLANE>"
        "<PLANE>Black</PLANE><PLANE>Hex0</PLANE><PLANE>Hex1</PLANE></NCOLOR2>"
        "<CUSTOM><NAME>Passes</NAME><PROC>Passes</PROC></CUSTOM>"
        "</PRINTER></PRINTERLIST>");
    return loaded;
  }();
  return printer;
}

// Every "<\r\n ... > def" table: empty, or 256 values in eight lines.
bool TablesAreWhole(const std::wstring& text) {
  for (size_t at = text.find(L" <\r\n"); at != std::wstring::npos; at = text.find(L" <\r\n", at + 1)) {
    const size_t end = text.find(L"> def", at);
    if (end == std::wstring::npos) {
      return false;
    }
    const size_t length = end - at - 4;
    if (length != 0 && length != 8 * 66) {
      return false;
    }
    for (size_t i = at + 4; i < end; ++i) {
      const wchar_t c = text[i];
      if (!((c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'f') || c == L'\r' || c == L'\n')) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tarn::CPrintModeData mode;
  if (!tarn::fuzz::ReadPrintMode(data, size, mode)) {
    return 0;
  }
  tarn::CPostscriptSetup setup(mode);
  setup.WritePostscriptSection(Printer());
  if (!TablesAreWhole(setup.GetText()) || setup.GetText().find(L"Kestrel") == std::wstring::npos) {
    std::abort();
  }
  tarn::formatstringT maxInk;
  setup.WriteMaxInk(maxInk, 16, true, true);
  setup.WriteSaturation();
  setup.WriteMirror();
  setup.WriteInvert();
  setup.WriteICC(&Printer());
  setup.WriteImageSampling();
  setup.WriteSharpenBlur();
  setup.WriteFencePoints();
  std::wstring pdf;
  setup.WritePDFLevelTransferCurves(true, pdf);
  if (setup.GetBytes().size() != setup.GetText().size()) {
    std::abort();
  }
  return 0;
}
