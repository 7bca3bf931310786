// Halftones, ink limits, image adjustment and fence points inside a print
// mode: saved in their places, read back whole, and compared.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "printmode/samples.h"
#include "support/test_support.h"
#include "tarn/foundation/xml.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

CPrintModeData ScreensSample() {
  CPrintModeData mode;
  mode.SetName(L"Screens.pmx");
  test::FillScreenSections(mode);
  return mode;
}

TEST(PrintModeScreens, EveryFieldSurvivesSaveAndReload) {
  test::TempFolder temp;
  const CPrintModeData mode = ScreensSample();
  CPrintModeData saving = mode;  // saving rebinds and reloads it
  ASSERT_TRUE(saving.SavePrintMode(temp.wide().c_str(), false));
  const CPrintModeData loaded(temp.File("Screens.pmx"));
  ASSERT_TRUE(loaded.IsLoaded());

  // Loading switches the override flags off; everything else comes back.
  CPrintModeData expected = mode;
  expected.DisableAllOverrideFlags();
  EXPECT_FALSE(loaded.GetHalftones()->GetEnable());
  EXPECT_TRUE(loaded == expected);
  EXPECT_FALSE(loaded == mode);

  // Field by field where a section's comparison does not look.
  EXPECT_EQ(*loaded.GetImageAdjust(), *mode.GetImageAdjust());
  EXPECT_EQ(*loaded.GetFencePointData(), *mode.GetFencePointData());
  ASSERT_NE(loaded.GetHalftones()->GetHalftoneOption(L"Orange"), nullptr);
  EXPECT_EQ(loaded.GetHalftones()->GetHalftoneOption(L"Orange")->GetChoke(), -1);
  EXPECT_EQ(loaded.GetHalftones()->GetHalftoneOption(L"Cyan")->GetName(), L"Process Cyan");
  const CPMMaxInkData& max_ink = *loaded.GetMaxInkEx();
  EXPECT_TRUE(max_ink.GetEnable());
  EXPECT_TRUE(max_ink.UseOldMaxInk());
  EXPECT_EQ(max_ink.GetOldMaxInk(), 290.0);
  EXPECT_EQ(max_ink.GetValueC(), 260.125);
}

TEST(PrintModeScreens, SectionsKeepTheirOverrideFlagWhenReadFromANode) {
  const CPrintModeData mode = ScreensSample();
  pugi::xml_document document;
  mode.WriteXML(document);
  CPrintModeData copy;
  ASSERT_TRUE(copy.ReadXML(document.first_child()));
  EXPECT_TRUE(copy == mode);
  EXPECT_TRUE(copy.GetHalftones()->GetEnable());

  copy.DisableAllOverrideFlags();
  EXPECT_FALSE(copy.GetHalftones()->GetEnable());
  copy.EnableAllOverrideFlags();
  EXPECT_TRUE(copy.GetHalftones()->GetEnable());
}

TEST(PrintModeScreens, SectionsAreWrittenInTheirPlaces) {
  const auto saved = [](const CPrintModeData& mode) {
    pugi::xml_document document;
    mode.WriteXML(document);
    return xml::SaveDocumentToString(document);
  };
  const std::string text = saved(ScreensSample());
  const size_t imaging = text.find("\n\t<IMAGING>");
  const size_t halftones = text.find("\n\t<HALFTONEDATA ");
  const size_t max_ink = text.find("\n\t<MAXINKEX ");
  const size_t fences = text.find("\n\t<FENCEPOINTS ");
  ASSERT_NE(imaging, std::string::npos);
  ASSERT_NE(halftones, std::string::npos);
  ASSERT_NE(max_ink, std::string::npos);
  ASSERT_NE(fences, std::string::npos);
  EXPECT_LT(text.find("\n\t</METADATA>"), imaging);
  EXPECT_LT(imaging, halftones);
  EXPECT_LT(halftones, max_ink);
  EXPECT_LT(max_ink, fences);

  // A fresh print mode leaves its unused halftone section out entirely.
  const std::string fresh = saved(CPrintModeData());
  EXPECT_EQ(fresh.find("HALFTONEDATA"), std::string::npos);
  EXPECT_NE(fresh.find("<MAXINKEX enable=\"0\">"), std::string::npos);
  EXPECT_NE(fresh.find("<FENCEPOINTS>"), std::string::npos);
}

TEST(PrintModeScreens, ComparisonSeesEachSection) {
  const std::function<void(CPrintModeData&)> changes[] = {
      [](CPrintModeData& m) { m.GetImageAdjust()->SetSaturation(99); },
      [](CPrintModeData& m) { m.GetHalftones()->GetHalftoneOption(L"Black")->SetAngle(44.0); },
      [](CPrintModeData& m) { m.GetHalftones()->SetUseSuperCell(false); },
      [](CPrintModeData& m) { m.GetMaxInkEx()->SetValueB(399.0); },
      [](CPrintModeData& m) { m.GetFencePointData()->GetTrizone(8)->SetVLD(L"VD1"); },
      [](CPrintModeData& m) { m.GetFencePointData()->SetInkRemovalAngle(21.0); },
  };
  for (size_t i = 0; i < std::size(changes); ++i) {
    CPrintModeData changed;
    changes[i](changed);
    EXPECT_TRUE(changed != CPrintModeData()) << i;
  }
  // How ink limits are compared is the caller's business, not the print mode's.
  CPrintModeData scaled;
  scaled.GetMaxInkEx()->SetScaleB(0.5);
  EXPECT_TRUE(scaled == CPrintModeData());
}

TEST(PrintModeScreens, SectionDefaultsComeBackWithTheWholeRecord) {
  CPrintModeData mode = ScreensSample();
  mode.SetDefaults(true);
  EXPECT_EQ(mode.GetImageAdjust()->GetSaturation(), 125);  // header only

  mode.SetDefaults(false);
  EXPECT_EQ(*mode.GetImageAdjust(), CPMImageAdjustData());
  EXPECT_EQ(*mode.GetHalftones(), CPMHalftoneData());
  EXPECT_EQ(*mode.GetMaxInkEx(), CPMMaxInkData());
  // The ink-removal screen is only ever set by construction.
  EXPECT_TRUE(mode.GetFencePointData()->GetInkRemovalEnabled());
  EXPECT_TRUE(mode.GetFencePointData()->GetColorMap().empty());
}

}  // namespace
}  // namespace tarn
