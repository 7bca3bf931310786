// Printer definitions: every key of a complete file, the keys with rules of
// their own, failures, lookup on disk and the queries over the lists.

#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/printer/printer_data.h"
#include "tarn/sections/fence_point_data.h"

namespace tarn {
namespace {

std::string Wrap(const std::string& keys) {
  return "<?xml version=\"1.0\"?><PRINTERLIST><PRINTER>" + keys + "</PRINTER></PRINTERLIST>";
}

CPrinterData Load(const std::string& keys) {
  CPrinterData printer;
  EXPECT_TRUE(printer.LoadFromString(Wrap(keys)));
  return printer;
}

TEST(PrinterDataTest, EmptyPrinterHasTheDefaults) {
  const CPrinterData printer = Load("");
  EXPECT_EQ(printer.GetTCPPort(), L"9100");
  EXPECT_TRUE(printer.HasTCPPort());
  EXPECT_TRUE(printer.HasUSBPort());
  EXPECT_FALSE(printer.HasLPTPort());
  EXPECT_TRUE(printer.GetShowResolutions());
  EXPECT_TRUE(printer.GetShowColors());
  EXPECT_TRUE(printer.GetRewind());
  EXPECT_TRUE(printer.GetPCDecalMode());
  EXPECT_FALSE(printer.IsLaserDevice());
  EXPECT_FALSE(printer.HasPageOffset());
  EXPECT_EQ(printer.GetSmallDropVolume(), 5.9);
  EXPECT_EQ(printer.GetMediumDropVolume(), 12.7);
  EXPECT_EQ(printer.GetLargeDropVolume(), 20.9);
  EXPECT_EQ(printer.GetSNMPData().GetPort(), 161);
  EXPECT_FALSE(printer.GetSNMPData().IsEnabled());
  EXPECT_TRUE(printer.GetResolutions().empty());
  EXPECT_FALSE(printer.HasAnyFMResolution());
}

TEST(PrinterDataTest, ReadsACompleteDefinition) {
  CPrinterData printer;
  ASSERT_TRUE(printer.LoadFile(FromUtf8(test::DataFile("valid/printer_full.pdx").string())));
  EXPECT_EQ(printer.GetDriverName(), L"printer_full");
  EXPECT_EQ(printer.GetVersion(), 3u);
  EXPECT_EQ(printer.GetLongName(), L"Aurora 64 Six");
  EXPECT_EQ(printer.GetShortName(), L"Aurora64");
  EXPECT_EQ(printer.GetPort(), L"TCP/IP");
  EXPECT_TRUE(printer.HasTCPPort());
  EXPECT_FALSE(printer.HasUSBPort());
  EXPECT_TRUE(printer.HasLPTPort());
  EXPECT_FALSE(printer.HasCOMPort());
  EXPECT_EQ(printer.GetSpecial(), L"HTM-ready");
  EXPECT_EQ(printer.GetMultiImage(), L"Nest");
  EXPECT_EQ(printer.GetDpiDefault(), L"720 x 720");
  EXPECT_EQ(printer.GetColorDefault(), L"CMYKOG");
  EXPECT_EQ(printer.GetDeviceID(), L"MFG:Aurora;MDL:64");
  EXPECT_EQ(printer.GetDataMonitor(), L"External");
  EXPECT_EQ(printer.GetExternalDataMonitor(), L"AuroraMonitor");
  EXPECT_EQ(printer.GetDFormatDriver(), L"aurora.dll");
  EXPECT_EQ(printer.GetCutterIni(), L"cutter.ini");
  EXPECT_EQ(printer.GetDefStrat(), L"Quality");
  EXPECT_EQ(printer.GetBreviaPalette(), L"six");
  EXPECT_EQ(printer.GetBits(), 2);
  EXPECT_EQ(printer.GetTimeoutI() + printer.GetTimeoutR() + printer.GetTimeoutS(), 60);
  EXPECT_EQ(printer.GetScanLimit(), 4096);
  EXPECT_EQ(printer.GetFrameDiff(), 3);
  EXPECT_EQ(printer.GetDevFrame() * 100 + printer.GetDevScan() * 10 + printer.GetDevAuto(), 123);
  EXPECT_TRUE(printer.IsSinglePass() && printer.IsCutDevice() && printer.IsSpotDevice());
  EXPECT_EQ(printer.GetHalftone(), 4);
  EXPECT_EQ(printer.GetHalftonePalette(), L"fm");
  EXPECT_TRUE(printer.GetAllow8BitHalftone());
  EXPECT_EQ(printer.GetConcurrentPlanes(), 6);
  EXPECT_FALSE(printer.GetShowResolutions() || printer.GetShowColors() || printer.GetRewind());
  EXPECT_TRUE(printer.IsMultiHitFoil() && printer.GetStripBlankPlanes() && printer.GetFoilInfo());
  EXPECT_TRUE(printer.IsLayerDevice() && printer.GetConcurrentPrime() && printer.GetDynamicPlanes() &&
              printer.GetMultiplePrime());
  EXPECT_FALSE(printer.IsLaserDevice());
  EXPECT_EQ(printer.GetByteAlignment(), 8);
  EXPECT_TRUE(printer.IsWindowsPrimeDevice() && printer.IsRightSideOrigin() && printer.GetColorClear() &&
              printer.GetPDFOutput() && printer.GetSetInkOrder());
  EXPECT_EQ(printer.GetInkReorderSlotDisplay(), L"1,2,3,4,5,6");
  EXPECT_EQ(printer.GetInkReorderColorMap(), L"K,C,M,Y,O,G");
  EXPECT_TRUE(printer.GetPageVMirror());
  EXPECT_EQ(printer.GetSecondaryPortType(), 2);
  EXPECT_TRUE(printer.GetLayerSeparatedPreview());
  EXPECT_EQ(printer.GetTCPPort(), L"9101");
  EXPECT_TRUE(printer.GetDuplex());
  EXPECT_EQ(printer.GetAbortCommand(), std::string("\x1b\x40\x0a"));
  EXPECT_EQ(printer.GetPMCType(), L"HTM");
  EXPECT_EQ(printer.GetDefaultPageSize(), L"A4");
  EXPECT_TRUE(printer.GetDefaultRollMode());
  EXPECT_EQ(printer.GetDefaultRollWidth(), 64.5);
  EXPECT_TRUE(printer.GetDefaultPortrait());
  EXPECT_TRUE(printer.GetStretchPageSize());
  EXPECT_EQ(printer.GetHStretch(), 1.25);
  EXPECT_EQ(printer.GetVStretch(), 0.75);
  EXPECT_FALSE(printer.GetPCDecalMode());
  EXPECT_TRUE(printer.GetNoQCopies());
  EXPECT_EQ(printer.GetEmbeddedPreviewFormat(), 2);
  EXPECT_EQ(printer.GetPrinterSeries(), L"Aurora");
  EXPECT_TRUE(printer.GetSNMPDeviceName().Matches(L"aurora 64 rev B"));
  EXPECT_EQ(printer.GetUSBDeviceName().GetNames().size(), 1u);
  EXPECT_FALSE(printer.GetGenericDeviceName().Matches(L"Aur"));
  EXPECT_EQ(printer.GetISOLABRef().GetStandard(), L"ISO 12647-2");
  ASSERT_EQ(printer.GetISOLABRef().GetReferences().size(), 2u);
  EXPECT_EQ(printer.GetISOLABRef().Find(L"magenta")->a, 74.0);
  EXPECT_TRUE(printer.IsCostingLaser());
  EXPECT_TRUE(printer.GetGDIAllowCustomPage());
  EXPECT_EQ(printer.GetGDIOriginalName(), L"Aurora 64 (GDI)");
  EXPECT_EQ(printer.GetGDINonPrintableX(), 0.125);
  EXPECT_EQ(printer.GetGDINonPrintableY(), 0.25);
  EXPECT_TRUE(printer.IsDashboardResolutionPMI());
  EXPECT_TRUE(printer.GetExposeInstalledQueues());
  EXPECT_TRUE(printer.HasCustomPrinterStatus());
  EXPECT_TRUE(printer.HasPageOffset());
  EXPECT_DOUBLE_EQ(printer.GetPageOffsetX(), 1.0);
  EXPECT_DOUBLE_EQ(printer.GetPageOffsetY(), 1.0);

  const CSNMPData& snmp = printer.GetSNMPData();
  EXPECT_TRUE(snmp.IsEnabled());
  EXPECT_EQ(snmp.GetCommunity(), L"aurora");
  EXPECT_EQ(snmp.GetPort(), 1161);
  EXPECT_EQ(snmp.GetTimeout(), 2500);
  EXPECT_EQ(snmp.GetInkOIDs().size(), 1u);

  ASSERT_TRUE(printer.HasInkList());
  EXPECT_EQ(printer.GetInkList().GetInks().size(), 2u);
  EXPECT_EQ(printer.GetInkList().Find(L"ORANGE")->color, L"#FF8000");

  // The lists.
  EXPECT_EQ(printer.GetResolutions().size(), 3u);
  EXPECT_FALSE(printer.GetResolution(L"1440 X 720")->IsVisible());
  ASSERT_NE(printer.GetResolution(L"720 x 720")->GetFencePoints(), nullptr);
  EXPECT_EQ(printer.GetResolution(L"720 x 720")->GetFencePoints()->GetProfileCount(), 2u);
  const CColorDef* hexa = printer.GetColorModel(L"cmykog");
  ASSERT_NE(hexa, nullptr);
  EXPECT_EQ(hexa->GetPlanes(),
            (std::vector<std::wstring>{L"Cyan", L"Magenta", L"Yellow", L"Black", L"Orange", L"Green"}));
  EXPECT_TRUE(hexa->FindPlane(L"Cyan")->keyword);
  EXPECT_EQ(hexa->FindPlane(L"Green")->profile, 4);
  EXPECT_EQ(printer.GetColors().Get(L"Four colour", true)->GetName(), L"CMYK");
  EXPECT_EQ(printer.GetDotProfiles().size(), 3u);
  EXPECT_TRUE(printer.GetDotProfiles().Get(L"Large")->AppliesTo(L"360 x 360"));
  EXPECT_FALSE(printer.GetDotProfiles().Get(L"Small")->AppliesTo(L"360 x 360"));
  EXPECT_EQ(printer.GetPages().Get(L"letter", true)->GetName(), L"Letter");
  EXPECT_FALSE(printer.GetSpots().Get(L"round 60")->IsVisible());
  EXPECT_EQ(printer.GetOptions().Get(L"SweepDelay", false)->GetChoices().size(), 2u);
  EXPECT_EQ(printer.GetOptions().Get(L"Print direction")->FindChoice(L"Uni")->label, L"Unidirectional");
  EXPECT_EQ(printer.GetButtons().size(), 1u);
  EXPECT_TRUE(printer.GetButtons().Get(L"clean")->NeedsConfirmation());
  EXPECT_TRUE(printer.IsHTMPrinter());
}

TEST(PrinterDataTest, DataMonitorNamesAnExternalMonitor) {
  EXPECT_EQ(Load("<DATAMONITOR>Internal</DATAMONITOR>").GetDataMonitor(), L"Internal");
  const CPrinterData printer = Load("<DATAMONITOR>External:Mon External:2</DATAMONITOR>");
  EXPECT_EQ(printer.GetDataMonitor(), L"External");
  EXPECT_EQ(printer.GetExternalDataMonitor(), L"Mon 2");
}

TEST(PrinterDataTest, PageSizeOffsetIsInInchesAndAccumulates) {
  const struct {
    const char* element;
    double x;
    double y;
  } cases[] = {
      {"<PAGESIZE_OFFSET left=\"25.4\"/>", 1.0, 0.0},
      {"<PAGESIZE_OFFSET units=\"in\" left=\"1\"/>", 1.0, 0.0},
      {"<PAGESIZE_OFFSET left=\"10\" right=\"15.4\"/>", 1.0, 0.0},
      {"<PAGESIZE_OFFSET top=\"12.7\" bottom=\"12.7\"/>", 0.0, 1.0},
      {"<PAGESIZE_OFFSET units=\"IN\" left=\"25.4\"/>", 1.0, 0.0},  // only "in" means inches
      {"<PAGESIZE_OFFSET units=\"in\" left=\"1\"/><PAGESIZE_OFFSET units=\"in\" left=\"0.5\"/>", 1.5, 0.0},
      {"<PAGESIZE_OFFSET left=\"x\"/>", 0.0, 0.0},
  };
  for (const auto& test : cases) {
    const CPrinterData printer = Load(test.element);
    EXPECT_TRUE(printer.HasPageOffset()) << test.element;
    EXPECT_DOUBLE_EQ(printer.GetPageOffsetX(), test.x) << test.element;
    EXPECT_DOUBLE_EQ(printer.GetPageOffsetY(), test.y) << test.element;
  }
  EXPECT_TRUE(Load("<PAGESIZE_OFFSET/>").HasPageOffset());
}

TEST(PrinterDataTest, RollWidthIsCutToTheHostsLimit) {
  const std::string keys = "<DEFAULTPAGE><ROLLWIDTH>72</ROLLWIDTH></DEFAULTPAGE>";
  EXPECT_EQ(Load(keys).GetDefaultRollWidth(), 72.0);
  CPrinterBase::nMediaWidthLimit = 64;
  EXPECT_EQ(Load(keys).GetDefaultRollWidth(), 64.0);
  EXPECT_EQ(Load("<DEFAULTPAGE><ROLLWIDTH>60</ROLLWIDTH></DEFAULTPAGE>").GetDefaultRollWidth(), 60.0);
  CPrinterBase::nMediaWidthLimit = 0;
}

TEST(PrinterDataTest, FlagTextsMustMatchExactly) {
  EXPECT_FALSE(Load("<COSTING>laser</COSTING>").IsCostingLaser());
  EXPECT_FALSE(Load("<EPSONDASHBOARD>resolutionpmi</EPSONDASHBOARD>").IsDashboardResolutionPMI());
  // A later different text does not clear the flag.
  EXPECT_TRUE(Load("<COSTING>Laser</COSTING><COSTING>Ink</COSTING>").IsCostingLaser());
}

TEST(PrinterDataTest, LaterKeysWinAndKeysAreCaseSensitive) {
  const CPrinterData printer =
      Load("<LONGNAME>one</LONGNAME><LONGNAME/><TCPPORT>1</TCPPORT><tcpport>2</tcpport>");
  EXPECT_EQ(printer.GetLongName(), L"");
  EXPECT_EQ(printer.GetTCPPort(), L"1");
}

TEST(PrinterDataTest, ParseHexAcceptsGroupedDigits) {
  const struct {
    const wchar_t* text;
    bool ok;
    std::string bytes;
  } cases[] = {
      {L"", true, ""},
      {L"1B40", true, "\x1b\x40"},
      {L"1b 40\t0A", true, "\x1b\x40\x0a"},
      {L"0x1B,0x40;0X0a", true, "\x1b\x40\x0a"},
      {L"7 A", true, "\x07\x0a"},
      {L"1B4", false, ""},
      {L"1G", false, ""},
      {L"0x", false, ""},
      {L"1B-40", false, ""},
  };
  for (const auto& test : cases) {
    std::string out = "stale";
    EXPECT_EQ(CPrinterBase::ParseHex(test.text, out), test.ok) << ToUtf8(test.text);
    EXPECT_EQ(out, test.bytes) << ToUtf8(test.text);
  }
  EXPECT_EQ(Load("<ABORTCMD>zz</ABORTCMD>").GetAbortCommand(), "");
}

TEST(PrinterDataTest, BadFilesFailAndLeaveDefaults) {
  const char* cases[] = {
      "",
      "<PRINTERLIST/>",
      "<PRINTERLIST><printer><LONGNAME>x</LONGNAME></printer></PRINTERLIST>",
      "<PRINTER><LONGNAME>x</LONGNAME></PRINTER>",
      "<printerlist><PRINTER><LONGNAME>x</LONGNAME></PRINTER></printerlist>",
      "<PRINTERLIST><PRINTER><LONGNAME>x</LONGNAME><RES><RESLABEL>a</RES>",
      "\xff\xfe<\x00",
  };
  for (const char* text : cases) {
    CPrinterData printer = Load("<LONGNAME>before</LONGNAME><RES><RESLABEL>r</RESLABEL></RES>");
    EXPECT_FALSE(printer.LoadFromString(text)) << text;
    EXPECT_EQ(printer.GetLongName(), L"") << text;
    EXPECT_TRUE(printer.GetResolutions().empty()) << text;
    EXPECT_FALSE(printer.IsLoaded());
  }
  CPrinterData printer;
  EXPECT_FALSE(printer.LoadFile(FromUtf8(test::DataFile("invalid/printer_no_printer.pdx").string())));
  EXPECT_FALSE(printer.LoadFile(FromUtf8(test::DataFile("invalid/printer_truncated.pdx").string())));
  EXPECT_FALSE(printer.LoadFile(L"/no/such/file.pdx"));
}

TEST(PrinterDataTest, DefinitionsAreFoundByDriverNameUnderTheRipFolder) {
  test::TempFolder rip;
  SetTarnRipSystemRoot(rip.wide().c_str());
  const std::string pdx = Wrap("<LONGNAME>Found</LONGNAME>");
  std::filesystem::create_directories(rip.path() / "System" / "printers" / "Maker" / "Series");
  test::WriteBytes(rip.path() / "System" / "printers" / "Top.PDX", pdx);
  test::WriteBytes(rip.path() / "System" / "printers" / "Maker" / "Series" / "Deep.pdx", pdx);

  std::wstring path;
  EXPECT_TRUE(CPrinterData::FindPDXPath(L"top", path));
  EXPECT_NE(path.find(L"Top.PDX"), std::wstring::npos);
  EXPECT_TRUE(CPrinterData::FindPDXPath(L"Deep.pdx", path));
  EXPECT_FALSE(CPrinterData::FindPDXPath(L"Missing", path));
  EXPECT_TRUE(path.empty());
  EXPECT_FALSE(CPrinterData::FindPDXPath(L"Maker\\Series\\Deep", path));
  EXPECT_FALSE(CPrinterData::FindPDXPath(L"*", path));
  EXPECT_FALSE(CPrinterData::FindPDXPath(L"", path));

  CPrinterData printer;
  ASSERT_TRUE(printer.LoadPrinter(L"deep"));
  EXPECT_EQ(printer.GetLongName(), L"Found");
  EXPECT_EQ(printer.GetDriverName(), L"Deep");
  EXPECT_FALSE(printer.LoadPrinter(L"Missing"));
  EXPECT_EQ(printer.GetLongName(), L"");
  SetTarnRipSystemRoot(L"");
}

TEST(PrinterDataTest, FMAndHTMQueriesLookAtTheLists) {
  CPrinterData printer = Load("<RES><RESLABEL>a</RESLABEL></RES><RES><RESLABEL>b</RESLABEL></RES>");
  EXPECT_FALSE(printer.HasAnyFMResolution());
  printer.GetResolution(L"b")->SetScreeningKind(2);
  EXPECT_FALSE(printer.HasAnyFMResolution());
  printer.GetResolution(L"a")->SetScreeningKind(1);
  EXPECT_TRUE(printer.HasAnyFMResolution());

  const std::string htmOption = "<CUSTOM><NAME>a</NAME><CUSTOM htm=\"1\"><NAME>b</NAME></CUSTOM></CUSTOM>";
  EXPECT_TRUE(Load("<PMCTYPE>xHTMx</PMCTYPE>" + htmOption).IsHTMPrinter());
  EXPECT_FALSE(Load("<PMCTYPE>htm</PMCTYPE>" + htmOption).IsHTMPrinter());
  EXPECT_FALSE(Load("<PMCTYPE>HTM</PMCTYPE><CUSTOM><NAME>a</NAME></CUSTOM>").IsHTMPrinter());
}

TEST(PrinterDataTest, AssignmentReplacesTheLists) {
  CPrinterData target = Load("<LONGNAME>T</LONGNAME><SPOT><NAME>only in target</NAME></SPOT>");
  const CPrinterData source = Load("<LONGNAME>S</LONGNAME><SPOT><NAME>S</NAME></SPOT>");
  target = source;
  EXPECT_EQ(target.GetLongName(), L"S");
  EXPECT_EQ(target.GetSpots().size(), 1u);
  EXPECT_NE(target.GetSpots().Get(L"S"), source.GetSpots().Get(L"S"));
}

TEST(PrinterDataTest, GDIPaperComesFromTheHostsQuery) {
  CPrinterData printer = Load("<GDIORIGINALNAME>Office</GDIORIGINALNAME>");
  PrinterPaper paper;
  SetPrinterPaperQuery({});
  EXPECT_FALSE(printer.QueryGDIPaper(paper));
  SetPrinterPaperQuery([](const std::wstring& name, PrinterPaper& out) {
    if (name != L"Office") {
      return false;
    }
    out.code = 9;
    out.width = 2100;
    out.length = 2970;
    return true;
  });
  ASSERT_TRUE(printer.QueryGDIPaper(paper));
  EXPECT_EQ(paper.width, 2100);
  // A printer that answers without a paper size code has no usable paper.
  SetPrinterPaperQuery([](const std::wstring&, PrinterPaper& out) {
    out.width = 2100;
    return true;
  });
  EXPECT_FALSE(printer.QueryGDIPaper(paper));
  EXPECT_FALSE(Load("").QueryGDIPaper(paper));
  EXPECT_EQ(paper.width, 0);
  SetPrinterPaperQuery({});
}

}  // namespace
}  // namespace tarn
