#include "tarn/colour/pmc_progress.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"
#include "tarn/printer/printer_data.h"

namespace tarn {
namespace {

CIT8Chart SmallChart() {
  CIT8Chart chart;
  CIT8Issue error;
  EXPECT_TRUE(chart.ReadText(
      "CGATS.17\r\nORIGINATOR \"wizard\"\r\nBEGIN_DATA_FORMAT\r\nSAMPLE_ID CMYK_C LAB_L LAB_A LAB_B\r\n"
      "END_DATA_FORMAT\r\nBEGIN_DATA\r\n1 100 55 -37 -50\r\n2 0 95 0 2\r\nEND_DATA\r\n",
      &error));
  return chart;
}

// A progress with every part set away from its default.
CPMCProgress FullProgress() {
  CPMCProgress progress;
  progress.SetPrinter(L"Aurora64");
  progress.SetSelectPage(4);
  CPMCInkModel model;
  model.SetColorModel(L"CMYK");
  model.SetTotalInk(280.5);
  model.SetInk(CPMCInk{L"Cyan", 85.0, true, false, {}});
  model.SetInk(CPMCInk{L"Black", 100.0, false, true, {16.0, 0.5, -1.25}});
  progress.SetInkModel(model);

  auto* limits = new CPMCSection(PMCSectionType::kInkLimits);
  limits->SetCompleted(true);
  limits->SetValue(L"TotalInk", L"280.5");
  limits->SetValue(L"Cyan", L"85");
  limits->SetIt8Chart(SmallChart());
  progress.AddSection(limits);

  CPMCSection icc(PMCSectionType::kICCCreation);
  icc.SetLabel(L"Profile <gloss>");
  CICCInfo info;
  info.configName = L"Heavy GCR";
  info.gcr = 80;
  info.maxink = 280;
  info.links = {L"proof.icc"};
  icc.SetICCInfo(info);
  progress.AddSection(icc);

  auto* metadata = new CPMCSection(PMCSectionType::kMetadata);
  metadata->SetValue(L"Inkset", L"Eco solvent");
  progress.AddSection(metadata);
  return progress;
}

CPMCProgress ReadBack(const std::string& text) {
  pugi::xml_document document;
  EXPECT_TRUE(xml::LoadDocumentFromBuffer(document, text, CPMCProgress::kElementName)) << text;
  CPMCProgress progress;
  EXPECT_TRUE(progress.ReadXML(document.first_child()));
  return progress;
}

TEST(PMCProgress, WritesItsElementLayout) {
  CPMCProgress progress;
  progress.SetPrinter(L"Hexa6");
  progress.SetSelectPage(2);
  CPMCInkModel model;
  model.SetColorModel(L"CMYK");
  model.SetTotalInk(300);
  model.SetInk(CPMCInk{L"Black", 100.0, true, true, {16.0, 0.0, 0.0}});
  progress.SetInkModel(model);
  auto* limits = new CPMCSection(PMCSectionType::kInkLimits);
  limits->SetCompleted(true);
  limits->SetValue(L"TotalInk", L"300");
  progress.AddSection(limits);
  EXPECT_EQ(test::Written(progress),
            "<?xml version=\"1.0\"?>\n"
            "<PMCProgress version=\"1\">\n"
            "\t<Printer>Hexa6</Printer>\n"
            "\t<SelectPage>2</SelectPage>\n"
            "\t<InkModel colorModel=\"CMYK\" totalInk=\"300\">\n"
            "\t\t<Ink name=\"Black\" maxInk=\"100\" linearize=\"1\" L=\"16\" a=\"0\" b=\"0\" />\n"
            "\t</InkModel>\n"
            "\t<Section type=\"InkLimits\" completed=\"1\">\n"
            "\t\t<Label>Ink limits</Label>\n"
            "\t\t<Value name=\"TotalInk\">300</Value>\n"
            "\t</Section>\n"
            "</PMCProgress>\n");
}

TEST(PMCProgress, RoundTripKeepsEverything) {
  const CPMCProgress progress = FullProgress();
  const std::string text = test::Written(progress);
  const CPMCProgress again = ReadBack(text);
  EXPECT_EQ(again, progress) << text;
  EXPECT_EQ(test::Written(again), text);

  ASSERT_NE(again.GetSectionIt8Chart(PMCSectionType::kInkLimits), nullptr);
  EXPECT_EQ(*again.GetSectionIt8Chart(PMCSectionType::kInkLimits), SmallChart());
  ASSERT_NE(again.GetSection(PMCSectionType::kICCCreation)->GetICCInfo(), nullptr);
  EXPECT_EQ(again.GetSection(PMCSectionType::kICCCreation)->GetICCInfo()->configName, L"Heavy GCR");
  EXPECT_EQ(again.GetSectionLabel(PMCSectionType::kICCCreation), L"Profile <gloss>");
  EXPECT_EQ(again.GetInkModel().FindInk(L"black")->target, (CLabColor{16.0, 0.5, -1.25}));
}

TEST(PMCProgress, ReadingStartsFromDefaultsAndSkipsWhatItDoesNotKnow) {
  CPMCProgress progress = FullProgress();
  const CPMCProgress read = ReadBack(
      "<PMCProgress version=\"7\">"
      "<Future>kept out</Future>"
      "<Section type=\"Dithering\"><Label>unknown step</Label></Section>"
      "<Section type=\"Calibration\"><Label>first</Label></Section>"
      "<Section type=\"Calibration\" completed=\"1\"><Label>second</Label>"
      "<It8Chart><Table><Fields>SAMPLE_ID LAB_L</Fields><Data>A 1,5</Data></Table></It8Chart></Section>"
      "<Section "
      "type=\"Metadata\"><It8Chart><Table><Fields>SAMPLE_ID</Fields><Data>A</Data></Table></It8Chart>"
      "</Section>"
      "</PMCProgress>");
  ASSERT_EQ(read.GetSectionCount(), 2u);
  // Sections keep the wizard's step order, whatever the file's order.
  EXPECT_EQ(read.GetSectionAt(0)->GetType(), PMCSectionType::kMetadata);
  // The later of two sections of a step wins; a chart that cannot be read is dropped.
  EXPECT_EQ(read.GetSectionLabel(PMCSectionType::kCalibration), L"second");
  EXPECT_EQ(read.GetSectionIt8Chart(PMCSectionType::kCalibration), nullptr);
  // The metadata step has no chart.
  EXPECT_EQ(read.GetSectionIt8Chart(PMCSectionType::kMetadata), nullptr);
  EXPECT_EQ(read.GetPrinter(), L"");
  EXPECT_EQ(read.GetInkModel().GetTotalInk(), 400.0);

  pugi::xml_document document;
  document.append_child("LayerData");
  EXPECT_FALSE(progress.ReadXML(document.first_child()));
  EXPECT_EQ(progress, FullProgress());
}

TEST(PMCProgress, CopiesAreDeep) {
  const CPMCProgress original = FullProgress();
  CPMCProgress copy(original);
  EXPECT_EQ(copy, original);
  copy.GetSection(PMCSectionType::kInkLimits)->GetIt8Chart()->GetTable(0)->SetCell(0, 1, L"50");
  copy.GetSection(PMCSectionType::kMetadata)->SetValue(L"Inkset", L"UV");
  EXPECT_FALSE(copy == original);
  EXPECT_EQ(original.GetSectionIt8Chart(PMCSectionType::kInkLimits)->GetTable(0)->GetCell(0, 1), L"100");
  EXPECT_EQ(*original.GetSection(PMCSectionType::kMetadata)->GetValue(L"Inkset"), L"Eco solvent");

  CPMCProgress assigned;
  assigned = original;
  EXPECT_EQ(assigned, original);
  EXPECT_NE(assigned.GetSectionIt8Chart(PMCSectionType::kInkLimits),
            original.GetSectionIt8Chart(PMCSectionType::kInkLimits));
}

TEST(PMCProgress, SectionsAreAddedInStepOrderAndReplaced) {
  CPMCProgress progress;
  EXPECT_EQ(progress.AddSection(nullptr), nullptr);
  progress.AddSection(CPMCSection(PMCSectionType::kBlackGeneration));
  progress.AddSection(CPMCSection(PMCSectionType::kCalibration));
  auto* replacement = new CPMCSection(PMCSectionType::kBlackGeneration);
  replacement->SetLabel(L"GCR");
  EXPECT_EQ(progress.AddSection(replacement), replacement);
  EXPECT_EQ(progress.AddSection(replacement), replacement);  // adding what it holds changes nothing
  ASSERT_EQ(progress.GetSectionCount(), 2u);
  EXPECT_EQ(progress.GetSectionAt(0)->GetType(), PMCSectionType::kCalibration);
  EXPECT_EQ(progress.GetSectionLabel(PMCSectionType::kBlackGeneration), L"GCR");
  EXPECT_EQ(progress.GetSectionLabel(PMCSectionType::kCalibration), L"Calibration");
  EXPECT_EQ(progress.GetSectionLabel(PMCSectionType::kSeparation), L"");
  EXPECT_TRUE(progress.RemoveSection(PMCSectionType::kCalibration));
  EXPECT_FALSE(progress.RemoveSection(PMCSectionType::kCalibration));
  EXPECT_EQ(progress.GetSectionAt(1), nullptr);

  // Only the measuring steps hold charts, only the profile steps settings.
  CPMCSection metadata(PMCSectionType::kMetadata);
  EXPECT_FALSE(metadata.SetIt8Chart(SmallChart()));
  EXPECT_FALSE(metadata.SetICCInfo(CICCInfo()));
  CPMCSection reprofiling(PMCSectionType::kReprofiling);
  EXPECT_TRUE(reprofiling.SetIt8Chart(SmallChart()));
  EXPECT_TRUE(reprofiling.SetICCInfo(CICCInfo()));
  EXPECT_FALSE(reprofiling.SetValue(L"", L"x"));
}

TEST(PMCProgress, SectionTypeNamesTranslateBothWays) {
  for (int i = 0; i < kPMCSectionTypeCount; ++i) {
    const auto type = static_cast<PMCSectionType>(i);
    PMCSectionType read = PMCSectionType::kMetadata;
    EXPECT_TRUE(PMCSectionTypeFromName(PMCSectionTypeName(type), read));
    EXPECT_EQ(read, type);
  }
  PMCSectionType type = PMCSectionType::kSeparation;
  EXPECT_FALSE(PMCSectionTypeFromName(L"inklimits", type));
  EXPECT_EQ(type, PMCSectionType::kSeparation);
}

TEST(PMCProgress, InkModelFollowsThePrinter) {
  CPrinterData printer;
  ASSERT_TRUE(printer.LoadFile(FromUtf8(test::DataFile("valid/printer_full.pdx").string())));
  CPMCProgress progress;
  // Nothing stored: the printer's default colour model, default limits, the
  // printer's reference Lab values as aims.
  const CPMCInkModel fresh = progress.GetInkModel(&printer);
  EXPECT_EQ(fresh.GetColorModel(), L"CMYKOG");
  ASSERT_EQ(fresh.GetInks().size(), printer.GetColorModel(L"CMYKOG")->GetPlanes().size());
  EXPECT_EQ(fresh.GetInks()[0].name, L"Cyan");
  EXPECT_EQ(fresh.GetInks()[0].maxInk, 100.0);
  EXPECT_TRUE(fresh.GetInks()[0].hasTarget);
  EXPECT_EQ(fresh.GetInks()[0].target, (CLabColor{55.0, -37.0, -50.0}));

  // A stored model keeps its colour model and limits; its own aims win; inks
  // the printer does not have are left out.
  CPMCInkModel stored;
  stored.SetColorModel(L"cmyk");
  stored.SetTotalInk(260);
  stored.SetInk(CPMCInk{L"cyan", 80.0, false, true, {50.0, -30.0, -45.0}});
  stored.SetInk(CPMCInk{L"Orange", 70.0, true, false, {}});
  progress.SetInkModel(stored);
  const CPMCInkModel model = progress.GetInkModel(&printer);
  EXPECT_EQ(model.GetColorModel(), L"CMYK");
  EXPECT_EQ(model.GetTotalInk(), 260.0);
  ASSERT_EQ(model.GetInks().size(), 4u);
  EXPECT_EQ(model.GetInks()[0], (CPMCInk{L"Cyan", 80.0, false, true, {50.0, -30.0, -45.0}}));
  EXPECT_EQ(model.FindInk(L"Orange"), nullptr);
  EXPECT_EQ(progress.GetInkModel(nullptr), stored);
}

}  // namespace
}  // namespace tarn
