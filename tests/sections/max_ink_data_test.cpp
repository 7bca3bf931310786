#include "tarn/sections/max_ink_data.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"
#include "tarn/foundation/xml.h"
#include "tarn/sections/image_adjust_data.h"

namespace tarn {
namespace {

template <typename Record>
bool ReadInto(Record& record, const std::string& text) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text.c_str()));
  return record.ReadXML(document.first_child());
}

TEST(MaxInk, DefaultAndOldLimitLayouts) {
  EXPECT_EQ(test::Written(CPMMaxInkData()),
            "<?xml version=\"1.0\"?>\n"
            "<MAXINKEX enable=\"0\">\n"
            "\t<MIDATA>0.000000,0.000000,400.000000,400.000000,0.000000,0.000000</MIDATA>\n"
            "</MAXINKEX>\n");

  CPMMaxInkData data;
  data.SetOldMaxInk(300);
  data.SetValueA(250.5);
  data.SetValueC(280);
  EXPECT_EQ(test::Written(data),
            "<?xml version=\"1.0\"?>\n"
            "<MAXINKEX enable=\"1\" use_old_value=\"1\">\n"
            "\t<MIDATA>250.500000,250.500000,400.000000,280.000000,0.000000,0.000000</MIDATA>\n"
            "\t<MIOLDDATA>300.000000</MIOLDDATA>\n"
            "</MAXINKEX>\n");
}

TEST(MaxInk, EnableDecidesWhetherTheOldLimitIsInForce) {
  const struct {
    double old_value;
    bool use_old_after_disable;
  } cases[] = {{0.0, false}, {0.0004, false}, {0.0006, true}, {300.0, true}, {-0.0004, false}};
  for (const auto& c : cases) {
    CPMMaxInkData data;
    data.SetOldMaxInk(c.old_value);
    EXPECT_TRUE(data.UseOldMaxInk());
    data.SetEnable(true);
    EXPECT_FALSE(data.UseOldMaxInk()) << c.old_value;
    data.SetEnable(false);
    EXPECT_EQ(data.UseOldMaxInk(), c.use_old_after_disable) << c.old_value;
    EXPECT_FALSE(data.GetEnable());
  }
}

TEST(MaxInk, ValidateOrdersTheLimits) {
  const struct {
    const char* what;
    double a, b, c, scale_b, scale_c;
    double b_after, c_after;
    bool changed;
  } cases[] = {
      {"ordered limits stay", 200, 350, 300, 1, 1, 350, 300, false},
      {"B equal to A returns to full ink, C stays", 250, 250, 250, 1, 1, 400, 250, true},
      {"C above B sends both to full ink", 250, 250, 300, 1, 1, 400, 400, true},
      {"B below A", 300, 200, 300, 1, 1, 400, 300, true},
      {"B above full ink", 100, 401, 200, 1, 1, 400, 100, true},
      {"C below A follows A", 200, 350, 150, 1, 1, 400, 200, true},
      {"differences below one half round away", 200, 200.4, 200.2, 1, 1, 400, 200, true},
      {"scale makes B and A equal", 100, 300, 200, 0.001, 1, 400, 100, true},
      {"scale makes C and A equal but not below", 100, 300, 200, 1, 0.001, 300, 200, false},
  };
  for (const auto& c : cases) {
    CPMMaxInkData data;
    data.SetValueA(c.a);
    data.SetValueB(c.b);
    data.SetValueC(c.c);
    data.SetScaleB(c.scale_b);
    data.SetScaleC(c.scale_c);
    EXPECT_EQ(data.Validate(), c.changed) << c.what;
    EXPECT_EQ(data.GetValueA(), c.a) << c.what;
    EXPECT_EQ(data.GetValueB(), c.b_after) << c.what;
    EXPECT_EQ(data.GetValueC(), c.c_after) << c.what;
  }
}

TEST(MaxInk, EveryFieldSurvivesWriteAndRead) {
  test::DecimalCommaLocale locale;
  CPMMaxInkData data;
  data.SetValueA(120.125);
  data.SetValueB(390.5);
  data.SetValueC(300.75);
  data.SetOldMaxInk(275.25);
  CPMMaxInkData copy;
  ASSERT_TRUE(ReadInto(copy, test::Written(data)));
  EXPECT_EQ(copy, data);
  EXPECT_TRUE(copy.UseOldMaxInk());
  EXPECT_EQ(copy.GetOldMaxInk(), 275.25);

  // Without the old limit the old value is not kept.
  data.SetEnable(true);
  ASSERT_TRUE(ReadInto(copy, test::Written(data)));
  EXPECT_TRUE(copy.GetEnable());
  EXPECT_FALSE(copy.UseOldMaxInk());
  EXPECT_EQ(copy.GetOldMaxInk(), 0.0);
  EXPECT_EQ(copy.GetValueC(), 300.75);
}

TEST(MaxInk, MalformedNumbersKeepTheDefaults) {
  const struct {
    const char* what;
    const char* xml;
    double a, b, old_value;
  } cases[] = {
      {"five numbers", "<MAXINKEX><MIDATA>1,1,2,3,0</MIDATA></MAXINKEX>", 0, 400, 0},
      {"seven numbers", "<MAXINKEX><MIDATA>1,1,2,3,0,0,0</MIDATA></MAXINKEX>", 0, 400, 0},
      {"a word among them", "<MAXINKEX><MIDATA>1,1,two,3,0,0</MIDATA></MAXINKEX>", 0, 400, 0},
      {"decimal commas", "<MAXINKEX><MIDATA>1,5;1,5;2;3;0;0</MIDATA></MAXINKEX>", 0, 400, 0},
      {"old limit not a number", "<MAXINKEX use_old_value=\"1\"><MIOLDDATA>lots</MIOLDDATA></MAXINKEX>", 0,
       400, 0},
      {"the second A is not read", "<MAXINKEX><MIDATA>10,99,300,200,7,7</MIDATA></MAXINKEX>", 10, 300, 0},
  };
  for (const auto& c : cases) {
    CPMMaxInkData data;
    data.SetOldMaxInk(1);
    EXPECT_TRUE(ReadInto(data, c.xml)) << c.what;
    EXPECT_EQ(data.GetValueA(), c.a) << c.what;
    EXPECT_EQ(data.GetValueB(), c.b) << c.what;
    EXPECT_EQ(data.GetOldMaxInk(), c.old_value) << c.what;
  }

  CPMMaxInkData data;
  data.SetValueA(50);
  EXPECT_FALSE(ReadInto(data, "<MaxInkEx enable=\"1\"/>"));
  EXPECT_EQ(data.GetValueA(), 50);
}

TEST(ImageAdjust, WritesThreeNumbersAndReadsThemBack) {
  EXPECT_EQ(test::Written(CPMImageAdjustData()),
            "<?xml version=\"1.0\"?>\n"
            "<IMAGING>\n"
            "\t<SAMPLING>0</SAMPLING>\n"
            "\t<BLUR>0</BLUR>\n"
            "\t<SATURATION>100</SATURATION>\n"
            "</IMAGING>\n");

  CPMImageAdjustData data;
  data.SetSampling(2);
  data.SetBlur(-3);
  data.SetSaturation(140);
  CPMImageAdjustData copy;
  ASSERT_TRUE(ReadInto(copy, test::Written(data)));
  EXPECT_EQ(copy, data);

  // Missing children keep their defaults, even over earlier values.
  ASSERT_TRUE(ReadInto(copy, "<IMAGING><BLUR>4</BLUR><Saturation>5</Saturation></IMAGING>"));
  EXPECT_EQ(copy.GetSampling(), 0);
  EXPECT_EQ(copy.GetBlur(), 4);
  EXPECT_EQ(copy.GetSaturation(), 100);
  EXPECT_FALSE(ReadInto(copy, "<imaging/>"));
}

}  // namespace
}  // namespace tarn
