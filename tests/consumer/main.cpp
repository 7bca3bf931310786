// Builds against the installed tarn package and exercises a print mode round
// trip in memory; exits non-zero on any surprise.

#include <cstdio>
#include <string>

#include <tarn/tarn.h>

// The project sets no standard; the package's requirement must have raised it.
static_assert(__cplusplus >= 202002L, "the tarn package did not bring its C++20 requirement");

int main() {
  tarn::CPrintModeData mode;
  mode.SetPrinterX(L"Consumer Printer");
  mode.SetInkSet(L"CMYK");
  pugi::xml_document document;
  mode.WriteXML(document);
  const std::string text = tarn::xml::SaveDocumentToString(document);

  tarn::CPrintModeData copy;
  pugi::xml_document reread;
  if (!tarn::xml::LoadDocumentFromBuffer(reread, text, "PMH") || !copy.ReadXML(reread.first_child())) {
    std::fprintf(stderr, "consumer: the print mode did not read back\n");
    return 1;
  }
  if (copy.GetPrinterX() != L"Consumer Printer" || copy.GetInkSet() != L"CMYK") {
    std::fprintf(stderr, "consumer: the print mode changed on the way\n");
    return 1;
  }
  // The colour code links Little CMS privately; a consumer never names it.
  tarn::CIT8Chart chart;
  if (!chart.ReadText("CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_ID LAB_L LAB_A LAB_B\nEND_DATA_FORMAT\n"
                      "BEGIN_DATA\nA1 50 2.5 0\nEND_DATA\n")) {
    std::fprintf(stderr, "consumer: the chart did not read\n");
    return 1;
  }
  tarn::CLabColor lab;
  if (!chart.GetTable(0)->GetLab(0, lab) || tarn::DeltaE2000(lab, {50.0, 0.0, -2.5}) < 4.3) {
    std::fprintf(stderr, "consumer: the colour difference is wrong\n");
    return 1;
  }
  std::printf("consumer: tarn %s works from its installed package\n", TARN_VERSION_STRING);
  return 0;
}
