// Transfer curves and separations inside the print mode: their place in the
// file, save and reload, comparison and ownership.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "printmode/samples.h"
#include "support/test_support.h"
#include "tarn/foundation/xml.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

CPrintModeData CurveSample() {
  CPrintModeData mode;
  mode.SetName(L"Curves.pmx");
  mode.SetPrinterX(L"Aurora 64");
  test::FillCurveSections(mode);
  return mode;
}

TEST(PrintModeCurves, SectionsStandInTheirPlaces) {
  const std::string text = test::Written(CurveSample());
  const size_t metadata = text.find("\t</METADATA>\n");
  const size_t transfers = text.find("\t<TCURVES type=\"0\" inripseps=\"1\">\n");
  const size_t separations = text.find("\t<SEPARATION name=\"CMYK+O\" identifier=\"Orange set &lt;2>\">\n");
  ASSERT_NE(metadata, std::string::npos);
  ASSERT_NE(transfers, std::string::npos);
  ASSERT_NE(separations, std::string::npos);
  EXPECT_LT(metadata, transfers);
  EXPECT_LT(transfers, separations);
  // Nothing else comes between the header and the transfer curves.
  EXPECT_EQ(transfers, metadata + std::string("\t</METADATA>\n").size());
}

TEST(PrintModeCurves, EveryFieldSurvivesSaveAndReload) {
  test::TempFolder temp;
  // Saving reloads the record from its new file, so the comparison is with a
  // record that never went through a file. Loading switches the override
  // flags off (both sections' enables among them); everything else comes back.
  CPrintModeData mode = CurveSample();
  ASSERT_TRUE(mode.GetTransfers()->GetEnable() && mode.GetSeparations()->GetEnable());
  mode.DisableAllOverrideFlags();
  CPrintModeData saved = CurveSample();
  ASSERT_TRUE(saved.SavePrintMode(temp.wide().c_str(), false));
  EXPECT_EQ(saved, mode);
  const CPrintModeData reloaded(temp.File("Curves.pmx"));
  ASSERT_TRUE(reloaded.IsLoaded());
  EXPECT_EQ(reloaded, mode);
  EXPECT_EQ(*reloaded.GetTransfers(), *mode.GetTransfers());
  EXPECT_EQ(*reloaded.GetSeparations(), *mode.GetSeparations());
  EXPECT_FALSE(reloaded.GetTransfers()->GetCurve(4, 1)->IsDensityMode());
  EXPECT_EQ(reloaded.GetSeparations()->GetSepInks(), std::vector<std::wstring>{L"Orange"});
  EXPECT_EQ(test::Written(reloaded), test::Written(mode));

  // A header-only file gives default sections, whatever the record held.
  CPrintModeData header;
  header.SetName(L"Header.pmx");
  pugi::xml_document document;
  header.WriteXML(document);
  document.first_child().remove_child("TCURVES");
  document.first_child().remove_child("SEPARATION");
  CPrintModeData read = CurveSample();
  ASSERT_TRUE(read.ReadXML(document.first_child()));
  EXPECT_EQ(*read.GetTransfers(), CPMTransferData());
  // Resetting separations keeps their identifier and resolution; the planes go.
  EXPECT_EQ(read.GetSeparations()->GetPlaneCount(), 0u);
  EXPECT_FALSE(read.GetSeparations()->GetEnable());
  EXPECT_EQ(read.GetSeparations()->GetIdentifier(), L"Orange set <2>");
}

TEST(PrintModeCurves, SeparationColourModeIsReadWithTheElement) {
  // Loading a file takes the colour mode from the printer options; reading the
  // element alone keeps the file's.
  CPrintModeData mode = CurveSample();
  mode.GetSeparations()->SetColorMode(L"CMYK+O+G");
  pugi::xml_document document;
  mode.WriteXML(document);
  CPrintModeData read;
  ASSERT_TRUE(read.ReadXML(document.first_child()));
  EXPECT_EQ(read.GetSeparations()->GetColorMode(), L"CMYK+O+G");
  EXPECT_EQ(read, mode);
}

TEST(PrintModeCurves, SectionsTakePartInComparison) {
  const CPrintModeData sample = CurveSample();
  CPrintModeData changed = sample;
  EXPECT_EQ(changed, sample);
  changed.GetTransfers()->GetCurve(2, 0)->SetValueStraight(3, 0.2001);
  EXPECT_NE(changed, sample);

  changed = sample;
  changed.GetTransfers()->SetUseAll(true);
  EXPECT_NE(changed, sample);

  changed = sample;
  changed.GetSeparations()->GetChannel(L"Cyan", L"Orange")->SetKeepZero(false);
  EXPECT_NE(changed, sample);

  changed = sample;
  changed.GetSeparations()->AddLinearPlane(L"Black");
  EXPECT_NE(changed, sample);
}

// Run under AddressSanitizer, this catches a leak or double free in the
// sections' ownership of their curves.
TEST(PrintModeCurves, CopiesOwnTheirCurves) {
  std::vector<CPrintModeData> modes;
  modes.push_back(CurveSample());
  for (int i = 0; i < 4; ++i) {
    modes.push_back(modes.back());  // copies, and moves as the vector grows
  }
  CPrintModeData assigned;
  assigned = modes[2];
  modes[2].GetSeparations()->ClearPlanes();
  modes[2].GetTransfers()->ClearData();
  EXPECT_EQ(assigned, modes[0]);
  EXPECT_NE(assigned, modes[2]);

  assigned.SetTransferData(*modes[2].GetTransfers());
  assigned.SetSeparationData(*modes[2].GetSeparations());
  assigned.SetTransferData(*assigned.GetTransfers());  // assignment to itself
  EXPECT_EQ(assigned.GetTransfers()->GetCurveCount(0), 0u);
  EXPECT_EQ(modes[1], modes[0]);

  modes.erase(modes.begin());
  modes.resize(1);
  modes.front().SetDefaults(false);
  EXPECT_EQ(modes.front().GetSeparations()->GetPlaneCount(), 0u);
}

}  // namespace
}  // namespace tarn
