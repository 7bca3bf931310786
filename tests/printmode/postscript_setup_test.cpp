// The PostScript set-up as exact text: each block against its literal text
// for a print mode made to exercise it, the table edge cases that change
// what prints, and the PostScript save.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "printmode/samples.h"
#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/text.h"
#include "tarn/postscript/postscript_setup.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

namespace fs = std::filesystem;

// The 256 values of the identity curve, as a table holds them.
std::wstring IdentityTable() {
  std::wstring table;
  for (int i = 0; i < 256; ++i) {
    table += Format(L"%2.2x", i);
    if (i % 32 == 31) {
      table += L"\r\n";
    }
  }
  return table;
}

// The block named name, from its opening to its closing comment line.
std::wstring Block(const std::wstring& text, const std::wstring& name, const std::wstring& endName = L"") {
  const std::wstring open = L"\r\n% -- " + name + L" --\r\n";
  const std::wstring close = L"\r\n% -- End " + (endName.empty() ? name : endName) + L" --\r\n";
  const size_t start = text.find(open);
  const size_t end = text.find(close, start);
  if (start == std::wstring::npos || end == std::wstring::npos) {
    return L"(no block " + name + L")";
  }
  return text.substr(start, end + close.size() - start);
}

// The hex digits of a table "/name <\r\n ... > def".
std::wstring TableDigits(const std::wstring& text, const std::wstring& opening) {
  const size_t start = text.find(opening);
  if (start == std::wstring::npos) {
    return L"(no table)";
  }
  const size_t from = start + opening.size();
  std::wstring digits;
  for (size_t i = from; i < text.size() && text[i] != L'>'; ++i) {
    if (text[i] != L'\r' && text[i] != L'\n') {
      digits += text[i];
    }
  }
  return digits;
}

// The identity density curve, except that tone 255 gives top.
CPMCurveData CurveEndingAt(double top) {
  CPMCurveData curve;
  // Density 0 is tone 255: the output density there sets the value at 255.
  curve.SetValueStraight(0, 1.0 - top / 255.0);
  return curve;
}

class PostscriptSetupTest : public ::testing::Test {
 protected:
  void SetUp() override {
    test::InstallTestPrinters(rip_.path());
    SetTarnRipSystemRoot(rip_.wide().c_str());
    ASSERT_TRUE(hexa_.LoadPrinter(L"Hexa6"));
    ASSERT_TRUE(chroma_.LoadPrinter(L"Chroma6"));
  }
  void TearDown() override { SetTarnRipSystemRoot(L""); }

  // A print mode for a printer and colour model, with linear separations.
  static CPrintModeData Mode(const wchar_t* driver, const wchar_t* colorMode, const CPrinterData& printer) {
    CPrintModeData mode;
    mode.SetName(L"Test.pmx");
    mode.SetDriver(driver);
    mode.SetPrinterX(L"Test printer");
    mode.ResetSeparationData(colorMode, &printer);
    return mode;
  }

  test::TempFolder rip_;
  CPrinterData hexa_;
  CPrinterData chroma_;
};

TEST_F(PostscriptSetupTest, WritersGivenNoPrinterWriteNothing) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYK", hexa_);
  mode.GetHalftones()->SetIsUsed(true);
  CPostscriptSetup setup(mode);
  setup.WriteSeparationCurves(nullptr);
  setup.WriteNColor(nullptr);
  setup.WriteHalftone(nullptr);
  setup.WritePrinterOptions(nullptr);
  setup.WriteICC(nullptr);
  EXPECT_EQ(setup.GetText(), L"");
}

TEST_F(PostscriptSetupTest, PrinterSelectionNamesThePrinterInAString) {
  CPrintModeData mode;
  mode.SetPrinterX(L"Hexa 6");
  CPostscriptSetup setup(mode);
  setup.WritePrinterSelect();
  EXPECT_EQ(setup.GetText(),
            L"\r\n% -- Printer Selection --\r\n\r\n"
            L"(%StartUp%) currentdevparams (Hexa 6) statusdict begin _selectprinter end\r\n"
            L"\r\n% -- End Printer Selection --\r\n");

  // A name with parentheses or a backslash must not end the string early.
  mode.SetPrinterX(L"Hexa (6\\)");
  CPostscriptSetup odd(mode);
  odd.WritePrinterSelect();
  EXPECT_NE(odd.GetText().find(L"(Hexa \\(6\\\\\\)) statusdict"), std::wstring::npos);
}

TEST_F(PostscriptSetupTest, LevelTransferCurvesOfADefaultPrintMode) {
  CPrintModeData mode;
  CPostscriptSetup setup(mode);
  setup.WriteLevelTransferCurves();
  const std::wstring identity = IdentityTable();
  std::wstring gray = identity;
  EXPECT_EQ(
      setup.GetText(),
      L"\r\n% -- Level Transfer Curves --\r\n\r\nuserdict begin\r\n\r\n"
      L"/settransfer {systemdict /currentcolortransfer get exec pop 4 -1 roll systemdict /setcolortransfer "
      L"get exec} def\r\n\r\n"
      L"/graytransfertable <\r\n" +
          gray + L"> def\r\n/redtransfertable <\r\n" + identity + L"> def\r\n/greentransfertable <\r\n" +
          identity + L"> def\r\n/bluetransfertable <\r\n" + identity + L"> def\r\n/hex1transfertable <\r\n" +
          identity + L"> def\r\n/hex2transfertable <\r\n" + identity +
          L"> def\r\n\r\nend\r\n\r\n% -- End Level Transfer Curvers --\r\n");
}

TEST_F(PostscriptSetupTest, LevelTablesRoundAndPinTheirEnds) {
  CPrintModeData mode;
  CPMTransferData& transfers = *mode.GetTransfers();
  // Output density 0.88 at input density 1 (tone 0): tone 0 maps to 30.6.
  CPMCurveData lifted;
  lifted.SetValueStraight(12, 0.88);
  transfers.SetCurve(4, lifted, 0);
  transfers.SetCurve(1, lifted, 0);
  CPostscriptSetup setup(mode);
  // Gray starts at 00 whatever its curve says; other planes keep the value.
  const std::wstring gray = setup.WriteLevelCurve(4);
  const std::wstring red = setup.WriteLevelCurve(1);
  EXPECT_EQ(gray.substr(0, 2), L"00");
  EXPECT_EQ(red.substr(0, 2), L"1f");
  EXPECT_EQ(gray.substr(2), red.substr(2));

  // The value at 255: 254 or more (after rounding) prints as full ink.
  for (const auto& [top, last] : {std::pair{254.0, L"ff"}, std::pair{253.6, L"ff"}, std::pair{253.4, L"fd"},
                                  std::pair{255.0, L"ff"}, std::pair{200.0, L"c8"}}) {
    transfers.SetCurve(2, CurveEndingAt(top), 0);
    const std::wstring table = setup.WriteLevelCurve(2);
    ASSERT_EQ(table.size(), 512u + 16u);
    EXPECT_EQ(table.substr(table.size() - 4, 2), last) << top;
  }

  // Level mode: low 0, gamma 2, high 255 gives 255 * (i/255)^(1/2).
  CPMCurveData level(false, 0);
  level.SetValueStraight(1, 2.0);
  transfers.SetCurve(3, level, 0);
  const std::wstring table = setup.WriteLevelCurve(3);
  EXPECT_EQ(table.substr(64 * 2 + 2 * 2 + 0, 2), L"80");  // i = 64 on the third line
  EXPECT_EQ(table.substr(0, 2), L"00");
}

TEST_F(PostscriptSetupTest, OneCurveForAllPlanesAndMissingCurves) {
  CPrintModeData mode;
  CPMTransferData& transfers = *mode.GetTransfers();
  transfers.SetUseAll(true);
  transfers.SetCurve(0, CurveEndingAt(128.0), 0);
  CPostscriptSetup setup(mode);
  for (unsigned plane = 1; plane <= 6; ++plane) {
    const std::wstring table = setup.WriteLevelCurve(plane);
    EXPECT_EQ(table.substr(table.size() - 4, 2), L"80") << plane;
  }

  // A plane without a curve, or with one that cannot be evaluated, gives an
  // empty table; the PostScript around it stays whole.
  transfers.SetUseAll(false);
  transfers.ClearData();
  pugi::xml_document document;
  ASSERT_TRUE(
      document.load_string("<CURVEDATA type=\"1\"><DATA_FLEXIBLE>0.5, 0.5;</DATA_FLEXIBLE></CURVEDATA>"));
  CPMCurveData onePoint;
  onePoint.ReadXML(document.first_child());
  transfers.SetCurve(2, onePoint, 0);
  transfers.SetCurve(4, CPMCurveData(), 0);
  CPostscriptSetup empty(mode);
  empty.WriteLevelTransferCurves();
  EXPECT_NE(empty.GetText().find(L"/redtransfertable <\r\n> def\r\n"), std::wstring::npos);
  EXPECT_NE(empty.GetText().find(L"/greentransfertable <\r\n> def\r\n"), std::wstring::npos);
  EXPECT_NE(empty.GetText().find(L"/graytransfertable <\r\n00"), std::wstring::npos);
  EXPECT_EQ(empty.WritePDFLevelCurve(1), L"");
  EXPECT_EQ(empty.WritePDFLevelCurve(4).substr(0, 16), L"0.0000, 0.0000, ");
}

TEST_F(PostscriptSetupTest, SeparationTablesFollowTheColourModel) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYK", hexa_);
  // Cyan at 60 %: density 1 (tone 0) gives output density 0.6.
  mode.GetSeparations()->GetChannel(L"Cyan", 0u)->MakeLinear(0.6);
  CPostscriptSetup setup(mode);
  setup.WriteSeparationCurves(&hexa_);
  const std::wstring identity = IdentityTable();
  std::wstring cyan;
  for (int i = 0; i < 256; ++i) {
    cyan += Format(L"%2.2x", static_cast<int>(255.0 - 0.6 * (255.0 - i) + 0.5));
    if (i % 32 == 31) {
      cyan += L"\r\n";
    }
  }
  EXPECT_EQ(setup.GetText(),
            L"\r\n% -- Separation Curves --\r\n\r\nuserdict begin\r\n\r\n"
            L"/cyanseparation <\r\n" +
                cyan + L"> def\r\n\r\n/magentaseparation <\r\n" + identity +
                L"> def\r\n\r\n/yellowseparation <\r\n" + identity + L"> def\r\n\r\n/grayseparation <\r\n" +
                identity + L"> def\r\n\r\nend\r\n\r\n% -- End Separation Curves --\r\n");

  // A printer that did not load: an empty block.
  CPostscriptSetup none(mode);
  const CPrinterData emptyPrinter;
  none.WriteSeparationCurves(&emptyPrinter);
  EXPECT_EQ(none.GetText(),
            L"\r\n% -- Separation Curves --\r\n\r\nuserdict begin\r\n\r\nend\r\n"
            L"\r\n% -- End Separation Curves --\r\n");
}

TEST_F(PostscriptSetupTest, SeparationCurveNamesAndGrayPlanes) {
  EXPECT_EQ(CPostscriptSetup::SeparationTableName(L"Black"), L"gray");
  EXPECT_EQ(CPostscriptSetup::SeparationTableName(L"Light Cyan"), L"lightcyan");
  EXPECT_EQ(CPostscriptSetup::SeparationTableName(L"Spot (1)/2"), L"spot12");

  CPrintModeData mode;
  CPostscriptSetup setup(mode);
  CPMCurveData half;
  half.MakeLinear(0.5);
  // An ink plane: tone i gives 255 - (255 - i) / 2. A gray plane holds gray
  // levels (0 is full ink), so the same curve gives i / 2 there.
  const std::wstring ink = setup.WriteSepCurve(&half, L"Orange");
  const std::wstring gray = setup.WriteSepCurve(&half, L"DeviceGray");
  EXPECT_EQ(ink.substr(0, 21), L"/orangeseparation <\r\n");
  EXPECT_EQ(TableDigits(ink, L"/orangeseparation <\r\n").substr(0, 4), L"8080");
  EXPECT_EQ(TableDigits(gray, L"/devicegrayseparation <\r\n").substr(0, 4), L"0001");
  EXPECT_EQ(TableDigits(gray, L"/devicegrayseparation <\r\n").substr(510, 2), L"80");
  EXPECT_EQ(TableDigits(setup.WriteSepCurve(&half, L"UnderbaseGray"), L"/underbasegrayseparation <\r\n"),
            TableDigits(gray, L"/devicegrayseparation <\r\n"));
  EXPECT_EQ(setup.WriteSepCurve(nullptr, L"Cyan"), L"/cyanseparation <\r\n> def\r\n\r\n");
}

TEST_F(PostscriptSetupTest, NColorProceduresForFourColours) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYK", hexa_);
  // A plane of the separations that the colour model lacks has no table.
  mode.GetSeparations()->GetPlane(L"Yellow")->clear();
  CPostscriptSetup setup(mode);
  setup.WriteNColor(&hexa_);
  EXPECT_EQ(setup.GetText(),
            L"\r\n% -- Level Transfer Functions --\r\n\r\nprinter_desc begin\r\n\r\n"
            L"  /NColor <<\r\n"
            L"    /TProcs[\r\n"
            L"      {255 mul round cvi redtransfertable exch get 255 div}\r\n"
            L"      {255 mul round cvi greentransfertable exch get 255 div}\r\n"
            L"      {255 mul round cvi bluetransfertable exch get 255 div}\r\n"
            L"      {255 mul round cvi graytransfertable exch get 255 div}\r\n"
            L"    ]\r\n"
            L"    /ClippingTProcs <<\r\n"
            L"      /Black [ /Gray {255 mul round cvi grayseparation exch get 255 div}]\r\n"
            L"      /Cyan [{255 mul round cvi cyanseparation exch get 255 div}]\r\n"
            L"      /Magenta [{255 mul round cvi magentaseparation exch get 255 div}]\r\n"
            L"      /Yellow [{}]\r\n"
            L"    >>\r\n"
            L"    /Screens <<\r\n"
            L"      /HalftoneType 9 /SubType 1\r\n"
            L"      /Default /Black\r\n"
            L"    >>\r\n"
            L"  >> def\r\n"
            L"\r\nend\r\n"
            L"\r\nuserdict begin\r\n"
            L"  $Disable-Screen\r\n"
            L"end\r\n"
            L"\r\n% -- End Level Transfer Functions --\r\n");
}

TEST_F(PostscriptSetupTest, HexachromeHasSixProceduresAndClipsItsExtraPlanes) {
  CPrintModeData mode = Mode(L"Chroma6", L"Hexachrome", chroma_);
  CPostscriptSetup setup(mode);
  setup.WriteNColor(&chroma_);
  const std::wstring& text = setup.GetText();
  EXPECT_NE(text.find(L"      {255 mul round cvi graytransfertable exch get 255 div}\r\n"
                      L"      {255 mul round cvi hex1transfertable exch get 255 div}\r\n"
                      L"      {255 mul round cvi hex2transfertable exch get 255 div}\r\n    ]\r\n"),
            std::wstring::npos);
  EXPECT_NE(text.find(L"      /Hex0 [{255 mul round cvi hex0separation exch get 255 div}]\r\n"
                      L"      /Hex1 [{255 mul round cvi hex1separation exch get 255 div}]\r\n"),
            std::wstring::npos);

  // The same print mode under a four-colour model: four procedures, and the
  // extra planes are no longer clipped.
  mode.GetPrinterOptions()->SetOptionValue(L"Color Plane", L"CMYK");
  CPostscriptSetup four(mode);
  four.WriteNColor(&chroma_);
  EXPECT_EQ(four.GetText().find(L"hex1transfertable"), std::wstring::npos);
  EXPECT_EQ(four.GetText().find(L"/Hex0"), std::wstring::npos);
}

TEST_F(PostscriptSetupTest, HalftoneScreeningOfAUsedSection) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYKOG", hexa_);
  CPMHalftoneData& halftones = *mode.GetHalftones();
  halftones.SetIsUsed(true);
  halftones.GetHalftoneOption(std::wstring(L"Cyan"))->SetFrequency(133.9);
  CPostscriptSetup setup(mode);
  setup.WriteHalftone(&hexa_);
  EXPECT_EQ(
      setup.GetText(),
      L"\r\n% -- Halftone Screening --\r\n"
      L"\r\n% -- Max Super Screen --\r\n%\r\n"
      L"  <</MaxSuperScreen 1024>> setuserparams\r\n"
      L"\r\n% -- End Max Super Screen --\r\n"
      L"\r\nuserdict begin\r\n"
      L"/PlateColor\r\n{\r\n"
      L"/thePlate exch def /thePlateFound false def\r\n"
      L"thePlate (Cyan) eq {userdict begin $Enable-Screen end /thePlateFound true def 133 108.0000 "
      L"statusdict "
      L"/EuclideanSmallEllipse get setscreen userdict begin $Disable-Screen end} if\r\n"
      L"thePlate (Magenta) eq {userdict begin $Enable-Screen end /thePlateFound true def 60 90.0000 "
      L"statusdict "
      L"/EuclideanSmallEllipse get setscreen userdict begin $Disable-Screen end} if\r\n"
      L"thePlate (Yellow) eq {userdict begin $Enable-Screen end /thePlateFound true def 60 161.0000 "
      L"statusdict "
      L"/EuclideanSmallEllipse get setscreen userdict begin $Disable-Screen end} if\r\n"
      L"thePlate (Black) eq {userdict begin $Enable-Screen end /thePlateFound true def 60 45.0000 statusdict "
      L"/EuclideanSmallEllipse get setscreen userdict begin $Disable-Screen end} if\r\n"
      L"thePlate (Orange) eq {userdict begin $Enable-Screen end /thePlateFound true def 60 45.0000 "
      L"statusdict "
      L"/EuclideanSmallEllipse get setscreen userdict begin $Disable-Screen end} if\r\n"
      L"thePlate (Green) eq {userdict begin $Enable-Screen end /thePlateFound true def 60 45.0000 statusdict "
      L"/EuclideanSmallEllipse get setscreen userdict begin $Disable-Screen end} if\r\n"
      L"thePlateFound not {60 45.0000 statusdict /EuclideanSmallEllipse get setscreen} if\r\n"
      L"} def\r\n"
      L"end\r\n"
      L"\r\nprinter_desc begin\r\n"
      L"  NColor begin\r\n"
      L"    /Screens <<\r\n"
      L"      /HalftoneType 9 /SubType 2\r\n"
      L"      /Default <<\r\n"
      L"        /HalftoneType 1\r\n        /Frequency 60\r\n        /Angle 45.0000\r\n"
      L"        /SpotFunction statusdict /EuclideanSmallEllipse get\r\n      >>\r\n"
      L"      /Black <<\r\n"
      L"        /HalftoneType 1\r\n        /Frequency 60\r\n        /Angle 45.0000\r\n"
      L"        /SpotFunction statusdict /EuclideanSmallEllipse get\r\n      >>\r\n"
      L"      /Cyan <<\r\n"
      L"        /HalftoneType 1\r\n        /Frequency 133\r\n        /Angle 108.0000\r\n"
      L"        /SpotFunction statusdict /EuclideanSmallEllipse get\r\n      >>\r\n"
      L"      /Magenta <<\r\n"
      L"        /HalftoneType 1\r\n        /Frequency 60\r\n        /Angle 90.0000\r\n"
      L"        /SpotFunction statusdict /EuclideanSmallEllipse get\r\n      >>\r\n"
      L"      /Yellow <<\r\n"
      L"        /HalftoneType 1\r\n        /Frequency 60\r\n        /Angle 161.0000\r\n"
      L"        /SpotFunction statusdict /EuclideanSmallEllipse get\r\n      >>\r\n"
      L"      /Orange /Black\r\n"
      L"      /Green /Black\r\n"
      L"    >> def\r\n"
      L"  end\r\n"
      L"end\r\n"
      L"\r\nuserdict begin\r\n"
      L"  $Disable-Spotfunction\r\n"
      L"end\r\n"
      L"\r\n% -- End Halftone Screening --\r\n");
}

TEST_F(PostscriptSetupTest, HalftoneChoicesFollowTheSectionSwitches) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYKOG", hexa_);
  CPMHalftoneData& halftones = *mode.GetHalftones();

  // An unused section leaves the RIP's screens alone.
  CPostscriptSetup unused(mode);
  unused.WriteHalftone(&hexa_);
  EXPECT_EQ(unused.GetText(), L"\r\n% -- Halftone Screening --\r\n\r\n% -- End Halftone Screening --\r\n");

  halftones.SetIsUsed(true);
  halftones.SetUseSuperCell(false);
  halftones.SetUseAppHalftoning(true);
  halftones.SetUseAppSpotFunction(true);
  halftones.SetUseSameShape(true);
  halftones.GetHalftoneOption(std::wstring(L"Black"))->SetShape(0);
  halftones.GetHalftoneOption(std::wstring(L"Spot"))->SetAngle(75.0);
  CPostscriptSetup setup(mode);
  setup.WriteHalftone(&hexa_);
  const std::wstring& text = setup.GetText();
  EXPECT_NE(text.find(L"  <</MaxSuperScreen 0>> setuserparams\r\n"), std::wstring::npos);
  // The job may set screens: plain dispatch lines, and screens left enabled.
  EXPECT_NE(
      text.find(
          L"thePlate (Cyan) eq {/thePlateFound true def 60 108.0000 statusdict /Round get setscreen} if\r\n"),
      std::wstring::npos);
  EXPECT_NE(text.find(L"\r\nuserdict begin\r\n  $Enable-Screen\r\nend\r\n"), std::wstring::npos);
  EXPECT_EQ(text.find(L"$Disable-Spotfunction"), std::wstring::npos);
  // Inks other than the process plates take the spot screen; equal screens share one entry.
  EXPECT_NE(text.find(L"thePlate (Orange) eq {/thePlateFound true def 60 75.0000 statusdict /Round get"),
            std::wstring::npos);
  EXPECT_NE(text.find(L"thePlateFound not {60 75.0000 statusdict /Round get setscreen} if\r\n"),
            std::wstring::npos);
  EXPECT_NE(text.find(L"      /Orange <<\r\n"), std::wstring::npos);
  EXPECT_NE(text.find(L"      /Green /Orange\r\n"), std::wstring::npos);
}

TEST_F(PostscriptSetupTest, PrinterOptionsAreValueFirstAndSkipResolutionAndColorPlane) {
  CPrintModeData mode = Mode(L"Chroma6", L"Hexachrome", chroma_);
  CPMPrinterOptionsData& options = *mode.GetPrinterOptions();
  options.SetOptionValue(L"Resolution", L"600 x 600");
  options.SetOptionValue(L"Passes", L"8");
  options.SetOptionValue(L"Quality", L"Fine");
  options.SetOptionValue(L"Unknown", L"1");  // the printer has no such option
  options.SetOptionValue(L"LOCKED", L"1");
  CPostscriptSetup setup(mode);
  setup.WritePrinterOptions(&chroma_);
  // Chroma6 defines "Resolution" and "Color Plane" as options too; they are
  // still only written as the two lines of their own.
  EXPECT_EQ(setup.GetText(),
            L"\r\n% -- Printer Options --\r\n\r\n"
            L"600 x 600\r\n"
            L"Hexachrome\r\n"
            L"8 Passes\r\n"
            L"Fine Quality\r\n"
            L"\r\n% -- End Printer Options --\r\n");

  // A printer that did not load knows no options.
  const CPrinterData emptyPrinter;
  CPostscriptSetup empty(mode);
  empty.WritePrinterOptions(&emptyPrinter);
  EXPECT_EQ(
      empty.GetText(),
      L"\r\n% -- Printer Options --\r\n\r\n600 x 600\r\nHexachrome\r\n\r\n% -- End Printer Options --\r\n");
}

TEST_F(PostscriptSetupTest, TheSetupRunsTheBlocksInOrderAndEndsWithTheTrailer) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYK", hexa_);
  mode.SetTrailerText(L"Special Kestrel job");
  CPostscriptSetup setup(mode);
  setup.WritePostscriptSection();
  const std::wstring& text = setup.GetText();
  size_t at = 0;
  for (const wchar_t* line :
       {L"% -- Printer Selection --", L"% -- Level Transfer Curves --", L"% -- End Level Transfer Curvers --",
        L"% -- Separation Curves --", L"% -- Level Transfer Functions --", L"% -- Halftone Screening --",
        L"% -- Printer Options --", L"% -- End Printer Options --\r\nSpecial Kestrel job"}) {
    const size_t found = text.find(line, at);
    ASSERT_NE(found, std::wstring::npos) << ToUtf8(line);
    at = found;
  }
  EXPECT_TRUE(text.ends_with(L"Special Kestrel job"));
  // Every line ends in CR LF.
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'\n') {
      ASSERT_TRUE(i > 0 && text[i - 1] == L'\r') << i;
    }
  }
  // The separations come from the printer the driver names.
  EXPECT_NE(Block(text, L"Separation Curves").find(L"/grayseparation <"), std::wstring::npos);

  // A trailer without the mark is replaced, in the record too; nothing else changes.
  const CPrintModeData before = mode;
  mode.SetTrailerText(L"MyTrailer");
  CPostscriptSetup replaced(mode);
  replaced.WritePostscriptSection();
  EXPECT_TRUE(replaced.GetText().ends_with(L"% -- End Printer Options --\r\nKestrelA4"));
  EXPECT_EQ(mode.GetTrailerText(), L"KestrelA4");
  EXPECT_TRUE(mode == before);

  // A driver without a definition: the blocks are written without planes or options.
  mode.SetDriver(L"NoSuchPrinter");
  CPostscriptSetup orphan(mode);
  orphan.WritePostscriptSection();
  EXPECT_EQ(Block(orphan.GetText(), L"Separation Curves"),
            L"\r\n% -- Separation Curves --\r\n\r\nuserdict begin\r\n\r\nend\r\n\r\n% -- End Separation "
            L"Curves --\r\n");
}

TEST_F(PostscriptSetupTest, TheSetupIsEightBitText) {
  CPrintModeData mode;
  mode.SetPrinterX(L"Dru\u00e7k \u20ac");
  CPostscriptSetup setup(mode);
  setup.WritePrinterSelect();
  const std::string bytes = setup.GetBytes();
  EXPECT_NE(bytes.find("(Dru\xe7k ?)"), std::string::npos);
  EXPECT_EQ(bytes.size(), setup.GetText().size());
}

// --- the blocks outside the set-up -------------------------------------------

TEST_F(PostscriptSetupTest, FurtherBlocksAreWrittenOnlyWhenTheirSettingIsInUse) {
  CPrintModeData mode;
  CPostscriptSetup setup(mode);
  formatstringT maxInk;
  setup.WriteSaturation();
  setup.WriteMaxInk(maxInk, 9, true, true);
  setup.WriteMirror();
  setup.WriteInvert();
  setup.WriteImageSampling();
  setup.WriteSharpenBlur();
  setup.WriteFencePoints();
  EXPECT_EQ(setup.GetText(), L"");
  EXPECT_EQ(maxInk.str(), L"");
}

TEST_F(PostscriptSetupTest, MirrorInvertAndImageBlocks) {
  CPrintModeData mode;
  mode.SetMirror(true);
  mode.SetInvert(true);
  mode.GetImageAdjust()->SetSaturation(0);
  mode.GetImageAdjust()->SetSampling(50);
  mode.GetImageAdjust()->SetBlur(25);
  CPostscriptSetup setup(mode);
  setup.WriteMirror();
  EXPECT_EQ(setup.GetText(),
            L"\r\n% -- Mirror --\r\n\r\nuserdict begin\r\n  DefaultCTM.Mirror\r\nend\r\n"
            L"\r\n% -- End Mirror --\r\n");
  setup.Clear();

  setup.WriteInvert();
  const std::wstring& invert = setup.GetText();
  EXPECT_TRUE(invert.starts_with(
      L"\r\n% -- Invert --\r\n\r\n userdict /?Invert? known not\r\n{\r\n"
      L"  /?Invert? true def\r\n"
      L"  userdict /graytransfertable known { 0 1 255 { dup graytransfertable exch get 255 "
      L"exch sub graytransfertable 3 1 roll put } for } if\r\n"));
  // The hex2 extra table is filled from the red extra table, as the RIP has always done.
  EXPECT_NE(
      invert.find(
          L"  userdict /hex2extratransfertable known { 0 1 255 { dup redextratransfertable exch get 255 "
          L"exch sub hex2extratransfertable 3 1 roll put } for } if\r\n} if\r\n"),
      std::wstring::npos);
  EXPECT_NE(invert.find(L"{ dup hex2transfertable exch get"), std::wstring::npos);
  setup.Clear();

  // Saturation 0: every row is the luminance projection.
  setup.WriteSaturation();
  EXPECT_EQ(setup.GetText(),
            L"\r\n% -- Saturation / Hue --\r\n\r\nuserdict begin\r\n  /imagecolmatrix [\r\n"
            L"  0.308600 0.609400 0.082000\r\n  0.308600 0.609400 0.082000\r\n"
            L"  0.308600 0.609400 0.082000\r\n  ] def\r\nend\r\n"
            L"\r\n% -- End Saturation / Hue --\r\n");
  setup.Clear();

  setup.WriteImageSampling();
  setup.WriteSharpenBlur();
  EXPECT_EQ(setup.GetText(),
            L"\r\n% -- Image Sampling --\r\n\r\n"
            L"<< /Password() /IntermediateScale 0.500000 >> setsystemparams\r\n50 ImageSampling\r\n"
            L"\r\n% -- End Image Sampling --\r\n"
            L"\r\n% -- Sharpen Blur --\r\n\r\n<< /Password() /Sharpen -0.250000 >> setsystemparams\r\n"
            L"\r\n% -- End Sharpen Blur --\r\n");
}

TEST_F(PostscriptSetupTest, MaxInkLimitsAndTheirTable) {
  CPrintModeData mode;
  CPMMaxInkData& maxInk = *mode.GetMaxInkEx();
  maxInk.SetEnable(true);
  maxInk.SetValueA(200.0);
  maxInk.SetValueB(300.0);
  maxInk.SetValueC(250.0);
  CPostscriptSetup setup(mode);
  formatstringT text;
  setup.WriteMaxInk(text, 5, true, true);
  // Up to A unchanged; from A to 400 % compressed onto B.
  EXPECT_EQ(text.str(),
            L"\r\n% -- MaxInk --\r\n\r\nuserdict begin\r\n"
            L"   /MaxInk 300.000000 def\r\n   /MaxImageInk 250.000000 def\r\n"
            L"  /InkLimit [\r\n\r\n  0.000 0.250 0.500 0.625 0.750\r\n  ] def\r\n"
            L"end\r\n\r\n% -- End MaxInk --\r\n");

  // The old single limit stands for all of them.
  maxInk.SetOldMaxInk(320.0);
  formatstringT old;
  setup.WriteMaxInk(old, 0, false, true);
  EXPECT_EQ(old.str(),
            L"\r\n% -- MaxInk --\r\n\r\nuserdict begin\r\n   /MaxInk 320.000000 def\r\nend\r\n"
            L"\r\n% -- End MaxInk --\r\n");
}

TEST_F(PostscriptSetupTest, FencePointFilesAndTheDomainTable) {
  CPrintModeData mode;
  CPMFencePointData& fences = *mode.GetFencePointData();
  fences.SetEnabled(true);
  fences.SetProfileCount(2);
  fences.SetProfile(1, FenceProfile{60, 150, 30, 190});
  fences.SetColorPosition(L"Cyan", 0);
  fences.SetColorPosition(L"Light Cyan", 1);
  CPostscriptSetup setup(mode);
  setup.WriteFencePoints();
  const std::wstring& text = setup.GetText();
  EXPECT_TRUE(
      text.starts_with(L"\r\n% -- Fence Points Setup --\r\n\r\nuserdict begin\r\n/FencePointFiles <<\r\n"
                       L"  (Cyan) (%LumascriptWritable%fps/064160032192)\r\n"
                       L"  (Light Cyan) (%LumascriptWritable%fps/060150030190)\r\n"
                       L">> def\r\n/TriDomainTable <\n"));
  EXPECT_TRUE(text.ends_with(L"> def\r\nend\r\n\r\n% -- End Fence Points Setup --\r\n"));

  // The domain table: small dots below TD low, medium below TD high, large above; LF line ends.
  formatstringT table;
  CPostscriptSetup::FencePointArray(table, 2, 34);
  ASSERT_EQ(table.length(), 512u + 8u);
  EXPECT_EQ(table.str().substr(0, 8), L"00000101");
  EXPECT_EQ(table.str().substr(64, 5), L"\n0101");
  EXPECT_EQ(table.str().substr(64 + 1 + 2, 4), L"0102");
}

TEST_F(PostscriptSetupTest, IccProfilesDictionary) {
  CPrintModeData mode;
  CPMICCProfileData& icc = *mode.GetICCProfiles();
  for (int slot = ICC_LA_RGB_PATH; slot <= ICC_BMP_CMYK_PATH; ++slot) {
    icc.SetICCUsed(slot, slot == ICC_BMP_RGB_PATH);
  }
  icc.SetICCPath(ICC_BMP_RGB_PATH, L"%Lumascript%profiles\\sRGB (v4).icc");
  CICCInfo info;
  icc.GetICCInfo(L"BMP_RGB_INFO", info);
  info.links = {L"Proof.icc"};
  icc.SetICCInfo(L"BMP_RGB_INFO", info);
  icc.SetICCPath(ICC_OUT_DEVICE_PATH, L"Out.icm");
  CPostscriptSetup setup(mode);
  const CPrinterData printer;
  setup.WriteICC(&printer);
  EXPECT_EQ(
      setup.GetText(),
      L"\r\n% -- ICC Profiles --\r\n\r\nuserdict begin\r\n  /clinks <<\r\n    /Root (%Lumascript%clinks)\r\n"
      L"    /BMP_RGBPath << /Path (%Lumascript%profiles\\\\sRGB \\(v4\\).icc) /Intent (Perceptual) "
      L"/Links [(Proof.icc)] >>\r\n"
      L"    /OutTagDevicePath << /Path (Out.icm) /Intent (Perceptual) /Links [] >>\r\n"
      L"  >> def\r\nend\r\n\r\n% -- End ICC Profiles --\r\n");

  icc.SetEnabled(false);
  CPostscriptSetup off(mode);
  off.WriteICC(&printer);
  EXPECT_EQ(off.GetText(), L"");
}

// --- the PostScript save -------------------------------------------------------

TEST_F(PostscriptSetupTest, SavingThePostScriptFormWritesTheSetupAtomically) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYK", hexa_);
  mode.SetTrailerText(L"Plain");
  const fs::path jobs = rip_.path() / "jobs";
  fs::create_directories(jobs);
  test::WriteBytes(jobs / "Test.pmx", "old");
  ASSERT_TRUE(mode.SavePrintMode(FromUtf8(jobs.string()).c_str(), true));

  CPrintModeData copy = mode;
  CPostscriptSetup expected(copy);
  expected.WritePostscriptSection();
  EXPECT_EQ(test::ReadBytes(jobs / "Test.pmx"), expected.GetBytes());
  // The record is not rebound to what it wrote; only its trailer changed.
  EXPECT_EQ(mode.GetFullPath(), L"");
  EXPECT_FALSE(mode.IsDiskBased());
  EXPECT_EQ(mode.GetTrailerText(), L"KestrelA4");

  // A folder that cannot take the file: the message says why, nothing changes.
  test::MessageCapture messages;
  EXPECT_FALSE(mode.SavePrintMode(FromUtf8((jobs / "missing").string()).c_str(), true));
  ASSERT_EQ(messages.messages().size(), 1u);
  EXPECT_EQ(messages.messages()[0].caption, L"Error");
  EXPECT_EQ(test::ReadBytes(jobs / "Test.pmx"), expected.GetBytes());
}

TEST_F(PostscriptSetupTest, TheSetupIsNeverWrittenOverThePrintModeItself) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYK", hexa_);
  ASSERT_TRUE(mode.SavePrintMode(rip_.wide().c_str(), false));
  const std::string xml = test::ReadBytes(rip_.path() / "Test.pmx");
  test::MessageCapture messages;
  EXPECT_FALSE(mode.SavePrintMode(nullptr, true));
  EXPECT_EQ(messages.messages().size(), 1u);
  EXPECT_EQ(test::ReadBytes(rip_.path() / "Test.pmx"), xml);
}

}  // namespace
}  // namespace tarn
