// The sample media of examples/rip are what the library writes today: each
// reads, and writes back the very bytes it holds (scripts/make-examples
// rewrites them after a change of the layout).

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/text.h"
#include "tarn/media/print_media.h"
#include "tarn/media/print_media_list.h"
#include "tarn/printer/printer_data.h"

namespace tarn {
namespace {

const std::filesystem::path kExamples =
    std::filesystem::path(TARN_TEST_DATA_DIR).parent_path().parent_path() / "examples" / "rip";

TEST(SampleMedia, EveryFileIsCurrent) {
  int files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kExamples / "System" / "pmodes")) {
    if (entry.path().extension() != ".qmd") {
      continue;
    }
    ++files;
    CPrintMedia media;
    std::wstring error;
    ASSERT_TRUE(media.ReadFile(FromUtf8(entry.path().string()), &error)) << entry.path() << ToUtf8(error);
    EXPECT_TRUE(CPrintMedia(media).IsDataValid()) << entry.path();
    EXPECT_EQ(test::Written(media), test::ReadBytes(entry.path())) << entry.path();
    EXPECT_EQ(entry.path().stem().string(), ToUtf8(media.GetName()));
  }
  EXPECT_GE(files, 5);
}

TEST(SampleMedia, EachPrinterHasItsMedia) {
  SetTarnRipSystemRoot((FromUtf8(kExamples.string()) + L"/").c_str());
  const struct {
    const wchar_t* driver;
    const wchar_t* medium;
    std::int32_t type;
  } cases[] = {
      {L"Aurora64", L"Vinyl_Roll_54in", CPrintMedia::MEDIA_ROLL},
      {L"Aurora64", L"Kestrel_Banner_1000x3000", CPrintMedia::MEDIA_FIXED},
      {L"Hexa6", L"Labels_3x2", CPrintMedia::MEDIA_TEMPLATE},
      {L"Hexa6", L"Proof_A3_Plus", CPrintMedia::MEDIA_SHEET},
      {L"Lumen40", L"Plywood_600x300", CPrintMedia::MEDIA_SHEET},
  };
  for (const auto& c : cases) {
    CPrinterData printer;
    ASSERT_TRUE(printer.LoadPrinter(c.driver));
    test::MessageCapture messages;
    CPrintMediaList list;
    ASSERT_TRUE(list.Initialize(&printer, nullptr, nullptr));
    EXPECT_TRUE(messages.empty()) << ToUtf8(messages.messages()[0].text);
    const CPrintMedia* media = list.GetMedia(c.medium);
    ASSERT_NE(media, nullptr) << ToUtf8(c.medium);
    EXPECT_EQ(media->GetType(), c.type) << ToUtf8(c.medium);
  }
}

}  // namespace
}  // namespace tarn
