#include "tarn/foundation/registry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/test_support.h"
#include "tarn/foundation/limits.h"

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
    const wchar_t* where;  // null: not a store at all, which the load-failure message explains
  };
  const Case cases[] = {
      {"<XREG><KEY name=\"A\"><VALUE name=\"n\" type=\"integer\">12x</VALUE></KEY></XREG>", L"A/n"},
      {"<XREG><VALUE name=\"n\" type=\"colour\">1</VALUE></XREG>", L"n"},
      {"<XREG><VALUE type=\"string\">1</VALUE></XREG>", L"VALUE"},
      {"<XREG><KEY name=\"A\"><SETTING/></KEY></XREG>", L"A/SETTING"},
      {"<XREG><VALUE name=\"b\" type=\"boolean\">yes</VALUE></XREG>", L"b"},
      {"<XREG><VALUE name=\"d\" type=\"string\"/><VALUE name=\"D\" type=\"string\"/></XREG>", L"D"},
      // Numbers that do not fit are refused, not clamped or made infinite.
      {"<XREG><VALUE name=\"i\" type=\"integer\">99999999999999999999</VALUE></XREG>", L"i"},
      {"<XREG><VALUE name=\"i\" type=\"integer\">-9223372036854775809</VALUE></XREG>", L"i"},
      {"<XREG><VALUE name=\"r\" type=\"real\">1e400</VALUE></XREG>", L"r"},
      {"<XREG><VALUE name=\"r\" type=\"real\">-1e400</VALUE></XREG>", L"r"},
      {"<XREG><VALUE name=\"r\" type=\"real\">nan</VALUE></XREG>", L"r"},
      // Escapes belong to strings only, and must be complete.
      {"<XREG><VALUE name=\"s\" type=\"string\" encoding=\"escaped\">\\u{20</VALUE></XREG>", L"s"},
      {"<XREG><VALUE name=\"s\" type=\"string\" encoding=\"escaped\">a\\b</VALUE></XREG>", L"s"},
      {"<XREG><VALUE name=\"s\" type=\"string\" encoding=\"base64\">a</VALUE></XREG>", L"s"},
      {"<XREG><VALUE name=\"i\" type=\"integer\" encoding=\"escaped\">1</VALUE></XREG>", L"i"},
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
    ASSERT_EQ(capture.messages().size(), 1u) << c.xml;
    if (c.where) {
      EXPECT_EQ(capture.messages()[0].text, std::wstring(kBadSyntax) + c.where);
    } else {
      EXPECT_EQ(capture.messages()[0].text.rfind(L"[XRegistry] Cannot load the configuration store: ", 0),
                0u);
    }
  }
}

TEST(Registry, NumbersAtTheEdgeOfTheirTypesStillLoad) {
  CXRegistry store;
  ASSERT_TRUE(
      store.LoadFromString("<XREG><VALUE name=\"max\" type=\"integer\">9223372036854775807</VALUE>"
                           "<VALUE name=\"min\" type=\"integer\">-9223372036854775808</VALUE>"
                           "<VALUE name=\"big\" type=\"real\">1.7976931348623157e308</VALUE></XREG>"));
  std::int64_t value = 0;
  EXPECT_TRUE(store.GetInteger(L"max", value));
  EXPECT_EQ(value, INT64_MAX);
  EXPECT_TRUE(store.GetInteger(L"min", value));
  EXPECT_EQ(value, INT64_MIN);
}

TEST(Registry, EveryStringRoundTripsAndTheFileStaysStrictXml) {
  const std::wstring values[] = {
      L" ",
      L"\t",
      L"\r\n",
      L"\n",
      std::wstring(L"before\0after", 12),
      L"line\r\nbreaks",
      L"back\\slash \\u{20}",
      L"bell\a and escape\x1b",
      L"lone \xD800 surrogate",
      L"  padded  ",
      L"plain",
      L"",
  };
  CXRegistry store;
  for (size_t i = 0; i < std::size(values); ++i) {
    ASSERT_TRUE(store.SetString(L"Strings/v" + std::to_wstring(i), values[i]));
  }
  test::TempFolder temp;
  ASSERT_TRUE(store.Save(temp.File("store.xml")));
  if (test::HaveStrictParser()) {
    EXPECT_EQ(test::StrictParserComplaint(test::ReadBytes(temp.path() / "store.xml")), "");
  }
  // Values that need nothing special are written as they stand.
  EXPECT_NE(store.SaveToString().find(">  padded  </VALUE>"), std::string::npos);
  CXRegistry loaded;
  ASSERT_TRUE(loaded.Load(temp.File("store.xml")));
  for (size_t i = 0; i < std::size(values); ++i) {
    std::wstring value = L"unset";
    EXPECT_TRUE(loaded.GetString(L"Strings/v" + std::to_wstring(i), value));
    EXPECT_EQ(value, values[i]) << i;
  }
}

TEST(Registry, RefusesWhatAFileCouldNotKeep) {
  CXRegistry store;
  test::MessageCapture capture;
  EXPECT_FALSE(store.SetString(L"Tab\tKey/v", L"x"));
  EXPECT_FALSE(store.SetString(L"Key/bell\a", L"x"));
  EXPECT_FALSE(store.SetReal(L"Key/r", std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(store.SetReal(L"Key/r", std::nan("")));
  EXPECT_EQ(capture.messages().size(), 4u);
  EXPECT_TRUE(store.GetKeyNames(L"").empty());  // nothing half made
}

// A key path one part too deep for the file is refused; one at the limit
// saves and loads back.
TEST(Registry, KeyDepthIsBoundedInPathsAndFiles) {
  // The root element takes one level, the value another.
  std::wstring path;
  for (int part = 2; part < kMaxNestingDepth; ++part) {
    path += L"k/";
  }
  CXRegistry store;
  ASSERT_TRUE(store.SetInteger(path + L"v", 1));
  const std::string text = store.SaveToString();
  CXRegistry loaded;
  ASSERT_TRUE(loaded.LoadFromString(text));
  EXPECT_TRUE(loaded.HasValue(path + L"v"));

  test::MessageCapture capture;
  EXPECT_FALSE(store.SetInteger(path + L"k/v", 1));
  EXPECT_FALSE(store.HasKey(path + L"k"));
  ASSERT_EQ(capture.messages().size(), 1u);
  EXPECT_NE(capture.messages()[0].text.find(L"nested more than"), std::wstring::npos);
}

// Nesting far beyond any limit, read on a small stack: refused, not a crash.
TEST(Registry, DeepFilesAreRefusedOnASmallStack) {
  const std::string xml = "<XREG>" + test::Nested("<KEY name=\"k\">", "</KEY>", 100000) + "</XREG>";
  bool loaded = true;
  test::MessageCapture capture;
  test::RunOnStack(1 << 20, [&] {
    CXRegistry store;
    loaded = store.LoadFromString(xml);
  });
  EXPECT_FALSE(loaded);
  ASSERT_EQ(capture.messages().size(), 1u);
  EXPECT_NE(capture.messages()[0].text.find(L"nested more than 100 levels deep"), std::wstring::npos);
}

TEST(Registry, LoadAndSaveFailuresNameTheFileAndTheReason) {
  test::TempFolder temp;
  test::WriteBytes(temp.path() / "empty.xml", "");
  test::WriteBytes(temp.path() / "file", "");
  CXRegistry store;
  test::MessageCapture capture;
  EXPECT_FALSE(store.Load(temp.File("missing.xml")));
  EXPECT_FALSE(store.Load(temp.File("empty.xml")));
  EXPECT_FALSE(store.Save(temp.File("file/store.xml")));
  ASSERT_EQ(capture.messages().size(), 3u);
  EXPECT_EQ(capture.messages()[0].text,
            L"[XRegistry] Cannot load " + temp.File("missing.xml") + L": no such file or folder");
  EXPECT_EQ(capture.messages()[1].text,
            L"[XRegistry] Cannot load " + temp.File("empty.xml") + L": empty file");
  EXPECT_EQ(capture.messages()[2].text,
            L"[XRegistry] Cannot save " + temp.File("file/store.xml") + L": not a folder");
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
