#include "tarn/foundation/registry.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace tarn {
namespace {

constexpr wchar_t kWrongType[] =
    L"[XRegistry] Attempting to access or set a value that is of the wrong data type: ";
constexpr wchar_t kBadSyntax[] = L"[XRegistry] Registry has invalid syntax around node: ";

TEST(Registry, TypedValuesRoundTripThroughAFile) {
  CXRegistry store;
  ASSERT_TRUE(store.SetReal(L"Halftone/Cyan/Frequency", 0.1));
  ASSERT_TRUE(store.SetString(L"Halftone/Cyan/Shape", L"Round <&> \"dot\""));
  ASSERT_TRUE(store.SetInteger(L"Queue/Copies", -3));
  ASSERT_TRUE(store.SetBoolean(L"Queue/Hold", true));
  test::TempFolder temp;
  ASSERT_TRUE(store.Save(temp.File("store.xml")));

  CXRegistry loaded;
  ASSERT_TRUE(loaded.Load(temp.File("store.xml")));
  double frequency = 0;
  std::wstring shape;
  std::int64_t copies = 0;
  bool hold = false;
  EXPECT_TRUE(loaded.GetReal(L"halftone/CYAN/frequency", frequency));  // names ignore case
  EXPECT_EQ(frequency, 0.1);
  EXPECT_TRUE(loaded.GetString(L"Halftone/Cyan/Shape", shape));
  EXPECT_EQ(shape, L"Round <&> \"dot\"");
  EXPECT_TRUE(loaded.GetInteger(L"Queue/Copies", copies));
  EXPECT_EQ(copies, -3);
  EXPECT_TRUE(loaded.GetBoolean(L"Queue/Hold", hold));
  EXPECT_TRUE(hold);
  EXPECT_EQ(loaded.GetKeyNames(L""), (std::vector<std::wstring>{L"Halftone", L"Queue"}));
  EXPECT_EQ(loaded.GetValueNames(L"Queue"), (std::vector<std::wstring>{L"Copies", L"Hold"}));
  EXPECT_EQ(loaded.SaveToString(), store.SaveToString());
}

TEST(Registry, WrongTypeIsRefusedWithItsMessage) {
  CXRegistry store;
  store.SetInteger(L"Queue/Copies", 2);
  test::MessageCapture capture;
  std::wstring text = L"unchanged";
  EXPECT_FALSE(store.GetString(L"Queue/Copies", text));
  EXPECT_EQ(text, L"unchanged");
  EXPECT_FALSE(store.SetReal(L"Queue/Copies", 2.5));
  ASSERT_EQ(capture.messages().size(), 2u);
  EXPECT_EQ(capture.messages()[0].text, std::wstring(kWrongType) + L"Queue/Copies");
  // A missing value is no error worth a message.
  capture.clear();
  EXPECT_FALSE(store.GetString(L"Queue/Missing", text));
  EXPECT_FALSE(store.SetString(L"", L"x"));
  EXPECT_TRUE(capture.empty());
}

TEST(Registry, MalformedNodesFailTheLoadAndKeepTheContents) {
  struct Case {
    const char* xml;
    const wchar_t* where;  // null: fails without a message (not a store at all)
  };
  const Case cases[] = {
      {"<XREG><KEY name=\"A\"><VALUE name=\"n\" type=\"integer\">12x</VALUE></KEY></XREG>", L"A/n"},
      {"<XREG><VALUE name=\"n\" type=\"colour\">1</VALUE></XREG>", L"n"},
      {"<XREG><VALUE type=\"string\">1</VALUE></XREG>", L"VALUE"},
      {"<XREG><KEY name=\"A\"><SETTING/></KEY></XREG>", L"A/SETTING"},
      {"<XREG><VALUE name=\"b\" type=\"boolean\">yes</VALUE></XREG>", L"b"},
      {"<XREG><VALUE name=\"d\" type=\"string\"/><VALUE name=\"D\" type=\"string\"/></XREG>", L"D"},
      {"<xreg/>", nullptr},
      {"<XREG><KEY", nullptr},
      {"", nullptr},
  };
  for (const Case& c : cases) {
    CXRegistry store;
    store.SetString(L"Kept", L"yes");
    test::MessageCapture capture;
    EXPECT_FALSE(store.LoadFromString(c.xml)) << c.xml;
    std::wstring kept;
    EXPECT_TRUE(store.GetString(L"Kept", kept)) << c.xml;
    if (c.where) {
      ASSERT_EQ(capture.messages().size(), 1u) << c.xml;
      EXPECT_EQ(capture.messages()[0].text, std::wstring(kBadSyntax) + c.where);
    } else {
      EXPECT_TRUE(capture.empty()) << c.xml;
    }
  }
}

TEST(Registry, RemoveAndCopy) {
  CXRegistry store;
  store.SetString(L"A/B/c", L"1");
  store.SetString(L"A/d", L"2");
  CXRegistry copy = store;
  EXPECT_TRUE(store.Remove(L"a/b"));
  EXPECT_FALSE(store.HasKey(L"A/B"));
  EXPECT_FALSE(store.Remove(L"A/B"));
  EXPECT_TRUE(copy.HasValue(L"A/B/c"));  // the copy is deep
  EXPECT_TRUE(store.Remove(L"A/d"));
  EXPECT_FALSE(store.HasValue(L"A/d"));
}

}  // namespace
}  // namespace tarn
