// The field tables every record reads and writes through: write order and
// policies, read policies, codecs, the tag lookup and equality.

#include "tarn/foundation/internal/fields.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

using internal::Field;
using internal::FieldTable;
using internal::Read;
using internal::Start;
using internal::Write;

struct Sample {
  std::wstring name = L"Aurora";
  std::wstring note;
  std::wstring script = L"a<b";
  bool enabled = true;
  bool locked = false;
  std::int32_t count = 7;
  std::uint32_t mask = 0;
  std::int16_t kind = 0;
  std::int64_t big = 0;
  double gamma = 0.1;
  double level = 0.5;
  std::wstring group_text = L"inks";
  bool group_flag = false;
  std::wstring version = L"3";
  std::wstring secret;
  std::vector<std::wstring> unknown;  // names of children no row claims
  int resets = 0;

  void SetDefaults() {
    const int seen = resets;
    *this = Sample();
    resets = seen + 1;
  }
};

using F = Field<Sample>;

void RecordUnknown(Sample& s, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
  s.unknown.emplace_back(child.name(), child.name() + std::char_traits<char>::length(child.name()));
}

const FieldTable<Sample>& Table() {
  static const FieldTable<Sample> table(
      "REC",
      {
          F::Text("version", &Sample::version).Attribute().Reads(Read::kIfPresent),
          F::Bool("on", &Sample::enabled).Attribute(),
          F::Text("NAME", &Sample::name),
          F::Text("NOTE", &Sample::note).Writes(Write::kIfNotEmpty).Reads(Read::kIfPresentNotEmpty),
          F::CData("SCRIPT", &Sample::script),
          F::Bool("LOCKED", &Sample::locked).Writes(Write::kIfTrue),
          F::Int("COUNT", &Sample::count),
          F::UInt("MASK", &Sample::mask),
          F::Int16("KIND", &Sample::kind),
          F::Int64("BIG", &Sample::big),
          F::Real("GAMMA", &Sample::gamma),
          F::Real("LEVEL", &Sample::level, "%0.04f"),
          F::Text("INK", &Sample::group_text).In("META"),
          F::Bool("FLAG", &Sample::group_flag).In("META"),
          F::Writer([](const Sample& /*s*/, pugi::xml_node& node) { xml::AppendText(node, "CONST", L"x"); }),
          F::Text("SECRET", &Sample::secret).Writes(Write::kNever).NotCompared(),
      },
      &RecordUnknown);
  return table;
}

std::string Written(const Sample& sample) {
  pugi::xml_document document;
  Table().Write(sample, document.append_child("REC"));
  return xml::SaveDocumentToString(document);
}

bool ReadText(Sample& sample, const char* text, Start start = Start::kDefaults) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text));
  return Table().Read(sample, document.first_child(), start);
}

TEST(FieldTables, WriteFollowsTheRowOrderAndPolicies) {
  Sample sample;
  EXPECT_EQ(Written(sample),
            "<?xml version=\"1.0\"?>\n"
            "<REC version=\"3\" on=\"1\">\n"
            "\t<NAME>Aurora</NAME>\n"
            "\t<SCRIPT><![CDATA[a<b]]></SCRIPT>\n"
            "\t<COUNT>7</COUNT>\n"
            "\t<MASK>0</MASK>\n"
            "\t<KIND>0</KIND>\n"
            "\t<BIG>0</BIG>\n"
            "\t<GAMMA>0.10000000000000001</GAMMA>\n"
            "\t<LEVEL>0.5000</LEVEL>\n"
            "\t<META>\n"
            "\t\t<INK>inks</INK>\n"
            "\t\t<FLAG>0</FLAG>\n"
            "\t</META>\n"
            "\t<CONST>x</CONST>\n"
            "</REC>\n");

  sample.note = L"n";
  sample.locked = true;
  sample.mask = 4000000000U;
  sample.kind = -2;
  sample.big = -9000000000000LL;
  const std::string text = Written(sample);
  EXPECT_NE(text.find("<NOTE>n</NOTE>"), std::string::npos);
  EXPECT_NE(text.find("<LOCKED>1</LOCKED>"), std::string::npos);
  EXPECT_NE(text.find("<MASK>4000000000</MASK>"), std::string::npos);
  EXPECT_NE(text.find("<KIND>-2</KIND>"), std::string::npos);
  EXPECT_NE(text.find("<BIG>-9000000000000</BIG>"), std::string::npos);
  EXPECT_EQ(text.find("SECRET"), std::string::npos);
}

TEST(FieldTables, WrittenRecordReadsBackEqual) {
  Sample sample;
  sample.name = L"Gr\u00fcn & <co>";
  sample.script = L"x ]]> y";
  sample.note = L"n";
  sample.locked = true;
  sample.count = INT_MIN;
  sample.mask = UINT_MAX;
  sample.kind = SHRT_MIN;
  sample.big = LLONG_MIN;
  sample.gamma = 1.0 / 3.0;
  sample.group_flag = true;
  Sample back;
  ASSERT_TRUE(ReadText(back, Written(sample).c_str()));
  EXPECT_TRUE(Table().Equal(sample, back));
  EXPECT_EQ(back.script, sample.script);
  EXPECT_EQ(back.gamma, sample.gamma);
  EXPECT_EQ(back.level, 0.5);  // the record's own format keeps four places
}

TEST(FieldTables, ReadPolicies) {
  Sample sample;
  sample.count = 99;
  ASSERT_TRUE(ReadText(sample, "<REC><NOTE></NOTE><COUNT>1</COUNT><COUNT>2</COUNT><NAME/></REC>"));
  EXPECT_EQ(sample.resets, 1);
  EXPECT_EQ(sample.version, L"3");  // absent, read only if present: the default stays
  EXPECT_FALSE(sample.enabled);     // absent, read always: reads as false
  EXPECT_EQ(sample.note, L"");      // empty, read only if not empty: the default stays
  EXPECT_EQ(sample.count, 2);       // a repeated child: the later one wins
  EXPECT_EQ(sample.name, L"");      // present and empty: read
  EXPECT_EQ(sample.group_text, L"inks");

  sample.note = L"kept";
  ASSERT_TRUE(ReadText(sample, "<REC version=\"9\"><NOTE></NOTE><META><FLAG>yes</FLAG><INK/></META></REC>",
                       Start::kCurrent));
  EXPECT_EQ(sample.resets, 1);  // kCurrent does not reset
  EXPECT_EQ(sample.version, L"9");
  EXPECT_EQ(sample.note, L"kept");
  EXPECT_EQ(sample.count, 2);
  EXPECT_TRUE(sample.group_flag);
  EXPECT_EQ(sample.group_text, L"");
}

TEST(FieldTables, UnknownAndMisplacedChildrenGoToTheHook) {
  Sample sample;
  ASSERT_TRUE(ReadText(sample,
                       "<REC><ODD>1</ODD><!-- c --><FLAG>1</FLAG><META><ODD2/><COUNT>5</COUNT></META>"
                       "<name>x</name><SECRET>s</SECRET></REC>"));
  // A grouped tag outside its group, an ungrouped tag inside a group and a
  // name in the wrong case are not the field.
  EXPECT_FALSE(sample.group_flag);
  EXPECT_EQ(sample.count, 7);
  EXPECT_EQ(sample.name, L"Aurora");
  EXPECT_EQ(sample.secret, L"s");  // never written, still read
  EXPECT_EQ(sample.unknown, (std::vector<std::wstring>{L"ODD", L"FLAG", L"name"}));
}

TEST(FieldTables, WrongElementChangesNothing) {
  Sample sample;
  sample.count = 3;
  EXPECT_FALSE(ReadText(sample, "<OTHER><COUNT>5</COUNT></OTHER>"));
  EXPECT_EQ(sample.count, 3);
  EXPECT_EQ(sample.resets, 0);
}

// Whole numbers read as the hand-written readers read them with pugixml.
TEST(FieldTables, WholeNumbersReadAsPugixmlReadsThem) {
  const char* texts[] = {"0",
                         "42",
                         " \t-17",
                         "+5",
                         "2147483647",
                         "2147483648",
                         "-2147483648",
                         "-2147483649",
                         "4294967295",
                         "4294967296",
                         "0x7fffffff",
                         "0xFFFFFFFF",
                         "0x100000000",
                         "-0x10",
                         "00000000000012",
                         "12abc",
                         "abc",
                         "",
                         "99999999999",
                         "9223372036854775807",
                         "9223372036854775808",
                         "-9223372036854775809",
                         "1e3",
                         "32767",
                         "32768",
                         "-32769"};
  for (const char* text : texts) {
    pugi::xml_document document;
    pugi::xml_attribute attribute = document.append_child("x").append_attribute("v");
    attribute.set_value(text);
    SCOPED_TRACE(text);
    EXPECT_EQ(internal::DecodeWhole32(text), attribute.as_int());
    EXPECT_EQ(internal::DecodeUnsigned(text), attribute.as_uint());
    EXPECT_EQ(internal::DecodeWhole(text), attribute.as_llong());
    EXPECT_EQ(internal::DecodeBool(text), attribute.as_bool());
  }
  EXPECT_EQ(internal::DecodeWhole16("40000"), 32767);
  EXPECT_EQ(internal::DecodeWhole16("-40000"), -32768);
  EXPECT_EQ(internal::DecodeWhole16("-7"), -7);
}

TEST(FieldTables, EqualitySkipsUncomparedRows) {
  Sample a;
  Sample b;
  b.secret = L"different";
  b.unknown.emplace_back(L"x");
  EXPECT_TRUE(Table().Equal(a, b));
  b.group_flag = true;
  EXPECT_FALSE(Table().Equal(a, b));
  b = a;
  b.gamma = 0.2;
  EXPECT_FALSE(Table().Equal(a, b));
}

TEST(FieldTables, RowsReadAndWriteAsText) {
  Sample sample;
  const auto& rows = Table().rows();
  std::vector<std::string> names;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].name == nullptr) {
      EXPECT_EQ(Table().GetText(sample, i), "");
      EXPECT_FALSE(Table().SetText(sample, i, "1"));
      continue;
    }
    names.emplace_back(rows[i].name);
    if (std::string(rows[i].name) == "LEVEL") {
      EXPECT_TRUE(Table().SetText(sample, i, "0.25"));
      EXPECT_EQ(Table().GetText(sample, i), "0.2500");
    } else if (std::string(rows[i].name) == "NAME") {
      EXPECT_TRUE(Table().SetText(sample, i, "Gr\xc3\xbcn"));
      EXPECT_EQ(sample.name, L"Gr\u00fcn");
    }
  }
  EXPECT_EQ(names.size(), 15U);
  EXPECT_EQ(names.front(), "version");
}

TEST(FieldTables, TagIndexFindsEveryNameAndNothingElse) {
  internal::TagIndex index;
  std::vector<std::string> names;
  for (int i = 0; i < 300; ++i) {
    names.push_back("TAG" + std::to_string(i));
  }
  for (size_t i = 0; i < names.size(); ++i) {
    index.Add(names[i], static_cast<std::uint16_t>(i));
  }
  index.Add("TAG5", 999);  // a later row of the same name does not replace the first
  for (size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(index.Find(names[i].c_str()), i);
  }
  EXPECT_EQ(index.Find("TAG"), internal::TagIndex::kNone);
  EXPECT_EQ(index.Find("TAG3000"), internal::TagIndex::kNone);
  EXPECT_EQ(index.Find(""), internal::TagIndex::kNone);
  EXPECT_EQ(internal::TagIndex().Find("TAG1"), internal::TagIndex::kNone);
}

}  // namespace
}  // namespace tarn
