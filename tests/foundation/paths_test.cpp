#include "tarn/foundation/paths.h"

#include <gtest/gtest.h>

#include "tarn/foundation/registry.h"

namespace tarn {
namespace {

// Restores the process-wide paths a test changes.
class PathsTest : public testing::Test {
 protected:
  void SetUp() override {
    queue_ = GetQModulePath();
    rip_ = GetTarnRipFolder();
  }
  void TearDown() override {
    SetQModulePath(queue_.c_str());
    SetTarnRipSystemRoot(rip_.c_str());
    SetTarnRegistryBase(nullptr);
  }

 private:
  std::wstring queue_;
  std::wstring rip_;
};

TEST_F(PathsTest, QueuePathGivesTheRipFolderWithOrWithoutBackslash) {
  SetTarnPathsFromQPath(L"C:\\Kestrel\\queue");
  EXPECT_EQ(GetQModulePath(), L"C:\\Kestrel\\queue");
  EXPECT_EQ(GetTarnRipFolder(), L"C:\\Kestrel\\queue\\rip\\");
  SetTarnPathsFromQPath(L"C:\\Kestrel\\queue\\");
  EXPECT_EQ(GetTarnRipFolder(), L"C:\\Kestrel\\queue\\rip\\");
  EXPECT_EQ(GetPrintModesFolder(), L"C:\\Kestrel\\queue\\rip\\System\\pmodes\\");
  EXPECT_EQ(GetSystemFolder(), L"C:\\Kestrel\\queue\\rip\\system\\");
  EXPECT_EQ(GetColorLinksFolder(), L"C:\\Kestrel\\queue\\rip\\System\\clinks\\");
  SetTarnPathsFromQPath(L"");
  EXPECT_EQ(GetTarnRipFolder(), L"\\rip\\");
}

TEST_F(PathsTest, RipRootIsKeptExactly) {
  // Without its backslash, the derived folders run into the parent's name.
  SetTarnRipSystemRoot(L"D:\\rip");
  EXPECT_EQ(GetPrintModesFolder(), L"D:\\ripSystem\\pmodes\\");
  SetTarnRipSystemRoot(nullptr);
  EXPECT_EQ(GetTarnRipFolder(), L"");
}

TEST_F(PathsTest, RegistryIsBorrowed) {
  {
    CXRegistry store;
    SetTarnRegistryBase(&store);
    EXPECT_EQ(GetTarnRegistryBase(), &store);
    SetTarnRegistryBase(nullptr);
  }
  EXPECT_EQ(GetTarnRegistryBase(), nullptr);
}

TEST(SplitPath, FolderAndFile) {
  struct Case {
    const wchar_t* path;
    const wchar_t* folder;
    const wchar_t* file;
  };
  const Case cases[] = {
      {L"C:\\rip\\System\\pmodes\\Gloss.pmx", L"C:\\rip\\System\\pmodes\\", L"Gloss.pmx"},
      {L"/tmp/modes/Gloss.pmx", L"/tmp/modes/", L"Gloss.pmx"},
      {L"Gloss.pmx", L"", L"Gloss.pmx"},
      {L"C:Gloss.pmx", L"C:\\", L"Gloss.pmx"},
      {L"C:\\rip\\", L"C:\\rip\\", L""},
      {L"", L"", L""},
  };
  for (const Case& c : cases) {
    std::wstring folder = L"x";
    std::wstring file = L"x";
    SplitPath(c.path, &folder, &file);
    EXPECT_EQ(folder, c.folder);
    EXPECT_EQ(file, c.file);
  }
  std::wstring only;
  SplitPath(L"a\\b.pmx", nullptr, &only);
  EXPECT_EQ(only, L"b.pmx");
}

}  // namespace
}  // namespace tarn
