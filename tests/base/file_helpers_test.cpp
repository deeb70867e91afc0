#include "base/file_helpers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include <fmt/format.h>

#include "base/legacy_error.h"
#include "support/checks.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::WriteBytes;
using Names = std::vector<std::string>;

// A scratch folder, its paths as the helpers take them and files in it, folders made as needed.
class FileHelpers : public ::testing::Test {
 protected:
  std::string At(const std::string& name = "") const { return name.empty() ? dir_.path().string() : (dir_ / name).string(); }
  void Put(const std::string& name, const std::string& bytes = "x") const {
    fs::create_directories((dir_ / name).parent_path());
    WriteBytes(dir_ / name, bytes);
  }
  testing::TempDir dir_;
};

TEST(FilePattern, WildcardsIgnoreCaseAndStarDotStarTakesAll) {
  // "?" is one character, not one byte.
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"README", "*.*", true},       {"A.ERD", "*.erd", true},      {"a.erd.bak", "*.erd", false}, {"路.txt", "?.txt", true},
      {"路線.txt", "?.txt", false},  {"axxbyyc", "a*b*c", true},    {"axxbyy", "a*b*c", false},    {"", "*", true}};
  for (const auto& [name, pattern, match] : cases) EXPECT_EQ(MatchFilePattern(name, pattern), match) << name << " " << pattern;
}

TEST_F(FileHelpers, APatternDeletesOnlyMatchingFilesOfThatFolderAndDeletionsAreSilentWhenAbsent) {
  for (const char* name : {"a.erd", "b.ERD", "c.txt", "sub.erd/d.erd", "tree/deep/g.txt"}) Put(name);
  DeletePath(At(), "*.erd");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"c.txt", "sub.erd", "tree"}));
  EXPECT_TRUE(fs::exists(dir_ / "sub.erd" / "d.erd"));
  EXPECT_NO_THROW(DeletePath(At("absent"), "*.*"));

  EXPECT_NO_THROW(DeleteFile(At("none.txt")));
  DeleteFile(At("c.txt"));
  DeleteFolder(At("tree"));
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"sub.erd"}));
  EXPECT_NO_THROW(DeleteFolder(At("tree")));
  // A folder is not deleted as a file.
  EXPECT_NE(testing::WhatOf([&] { DeleteFile(At()); }).find(At()), std::string::npos);
}

TEST_F(FileHelpers, CopyAndMoveOverwriteAndSkipAMissingSourceOrAnEmptyTarget) {
  Put("src.txt", "new");
  Put("dst.txt", "old");
  uFileCopy_A(At("src.txt"), At("dst.txt"));
  EXPECT_EQ(ReadBytes(dir_ / "dst.txt"), "new");
  EXPECT_EQ(ReadBytes(dir_ / "src.txt"), "new");
  uFileCopy_A(At("missing.txt"), At("dst.txt"));
  uFileCopy_A(At("src.txt"), "");
  EXPECT_EQ(ReadBytes(dir_ / "dst.txt"), "new");

  Put("target.txt", "older");
  uFileMove(At("src.txt"), At("target.txt"));
  EXPECT_NO_THROW(uFileMove(At("src.txt"), At("target.txt")));
  EXPECT_EQ(ReadBytes(dir_ / "target.txt"), "new");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"dst.txt", "target.txt"}));
}

TEST_F(FileHelpers, FailedCopyNamesTheTargetAndLeavesNothing) {
  Put("src.txt");
  EXPECT_NE(testing::WhatOf([&] { uFileCopy_A(At("src.txt"), At("no/dst.txt")); }).find(At("no/dst.txt")),
            std::string::npos);
  // A folder in the target's place is kept whole.
  Put("busy/inside.txt", "keep");
  EXPECT_THROW(uFileCopy_A(At("src.txt"), At("busy")), LegacyError);
  EXPECT_EQ(ReadBytes(dir_ / "busy" / "inside.txt"), "keep");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"busy", "src.txt"}));  // no temporary left, no "no"
}

TEST_F(FileHelpers, FindAllListsTheFilesOfAFolderFirstThenItsSubFoldersInNameOrder) {
  for (const char* name : {"b.erd", "a.erd", "z/c.erd", "m/d.ERD", "m/e.txt"}) Put(name);
  EXPECT_EQ(uFileFindAll(At(), "*.erd"), (Names{At("a.erd"), At("b.erd"), At("m/d.ERD"), At("z/c.erd")}));
  EXPECT_TRUE(uFileFindAll(At("none"), "*.*").empty());
}

TEST_F(FileHelpers, FreeNameNumbersFromOneUpToNineHundredNinetyNine) {
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road.ERD");
  Put("road.ERD");
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road(001).ERD");
  Put("road(001).ERD");
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road(002).ERD");
  EXPECT_EQ(uFreeName(At(), "road", ""), "road");
  for (int i = 2; i <= 999; ++i) Put(fmt::format("road({:03}).ERD", i));
  EXPECT_THROW(uFreeName(At(), "road", "ERD"), LegacyError);
}

}  // namespace
}  // namespace velmora
