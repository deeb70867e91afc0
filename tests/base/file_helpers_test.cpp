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

// A scratch folder and its paths as the helpers take them.
class FileHelpers : public ::testing::Test {
 protected:
  std::string At(const std::string& name = "") const { return name.empty() ? dir_.path().string() : (dir_ / name).string(); }
  testing::TempDir dir_;
};

TEST(FilePattern, WildcardsIgnoreCaseAndStarDotStarTakesAll) {
  // "?" is one character, not one byte.
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"README", "*.*", true},       {"A.ERD", "*.erd", true},      {"a.erd.bak", "*.erd", false}, {"路.txt", "?.txt", true},
      {"路線.txt", "?.txt", false},  {"axxbyyc", "a*b*c", true},    {"axxbyy", "a*b*c", false},    {"", "*", true}};
  for (const auto& [name, pattern, match] : cases) EXPECT_EQ(MatchFilePattern(name, pattern), match) << name << " " << pattern;
}

TEST_F(FileHelpers, PatternDeletesOnlyMatchingFilesOfThatFolder) {
  for (const char* name : {"a.erd", "b.ERD", "c.txt"}) WriteBytes(dir_ / name, "x");
  fs::create_directory(dir_ / "sub.erd");
  WriteBytes(dir_ / "sub.erd" / "d.erd", "x");
  DeletePath(At(), "*.erd");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"c.txt", "sub.erd"}));
  EXPECT_TRUE(fs::exists(dir_ / "sub.erd" / "d.erd"));
  EXPECT_NO_THROW(DeletePath(At("absent"), "*.*"));
}

TEST_F(FileHelpers, FileAndFolderDeletionsAreSilentWhenAbsent) {
  WriteBytes(dir_ / "f.txt", "x");
  fs::create_directories(dir_ / "tree" / "deep");
  WriteBytes(dir_ / "tree" / "deep" / "g.txt", "x");
  EXPECT_NO_THROW(DeleteFile(At("none.txt")));
  DeleteFile(At("f.txt"));
  DeleteFolder(At("tree"));
  EXPECT_TRUE(testing::EntryNames(dir_.path()).empty());
  EXPECT_NO_THROW(DeleteFolder(At("tree")));
  // A folder is not deleted as a file.
  EXPECT_NE(testing::WhatOf([&] { DeleteFile(At()); }).find(At()), std::string::npos);
}

TEST_F(FileHelpers, CopyAndMoveOverwriteAndSkipAMissingSourceOrAnEmptyTarget) {
  WriteBytes(dir_ / "src.txt", "new");
  WriteBytes(dir_ / "dst.txt", "old");
  uFileCopy_A(At("src.txt"), At("dst.txt"));
  EXPECT_EQ(ReadBytes(dir_ / "dst.txt"), "new");
  EXPECT_EQ(ReadBytes(dir_ / "src.txt"), "new");
  uFileCopy_A(At("missing.txt"), At("dst.txt"));
  uFileCopy_A(At("src.txt"), "");
  EXPECT_EQ(ReadBytes(dir_ / "dst.txt"), "new");

  WriteBytes(dir_ / "target.txt", "older");
  uFileMove(At("src.txt"), At("target.txt"));
  EXPECT_NO_THROW(uFileMove(At("src.txt"), At("target.txt")));
  EXPECT_EQ(ReadBytes(dir_ / "target.txt"), "new");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"dst.txt", "target.txt"}));
}

TEST_F(FileHelpers, FailedCopyNamesTheTargetAndLeavesNothing) {
  WriteBytes(dir_ / "src.txt", "x");
  EXPECT_NE(testing::WhatOf([&] { uFileCopy_A(At("src.txt"), At("no/dst.txt")); }).find(At("no/dst.txt")),
            std::string::npos);
  // A folder in the target's place is kept whole.
  fs::create_directory(dir_ / "busy");
  WriteBytes(dir_ / "busy" / "inside.txt", "keep");
  EXPECT_THROW(uFileCopy_A(At("src.txt"), At("busy")), LegacyError);
  EXPECT_EQ(ReadBytes(dir_ / "busy" / "inside.txt"), "keep");
  EXPECT_EQ(testing::EntryNames(dir_.path()), (Names{"busy", "src.txt"}));  // no temporary left, no "no"
}

TEST_F(FileHelpers, FindAllListsTheFilesOfAFolderFirstThenItsSubFoldersInNameOrder) {
  fs::create_directories(dir_ / "z");
  fs::create_directories(dir_ / "m");
  for (const char* name : {"b.erd", "a.erd", "z/c.erd", "m/d.ERD", "m/e.txt"}) WriteBytes(dir_ / name, "x");
  EXPECT_EQ(uFileFindAll(At(), "*.erd"), (Names{At("a.erd"), At("b.erd"), At("m/d.ERD"), At("z/c.erd")}));
  EXPECT_TRUE(uFileFindAll(At("none"), "*.*").empty());
}

TEST_F(FileHelpers, FreeNameNumbersFromOneUpToNineHundredNinetyNine) {
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road.ERD");
  WriteBytes(dir_ / "road.ERD", "x");
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road(001).ERD");
  WriteBytes(dir_ / "road(001).ERD", "x");
  EXPECT_EQ(uFreeName(At(), "road", "ERD"), "road(002).ERD");
  EXPECT_EQ(uFreeName(At(), "road", ""), "road");
  for (int i = 2; i <= 999; ++i) WriteBytes(dir_ / fmt::format("road({:03}).ERD", i), "x");
  EXPECT_THROW(uFreeName(At(), "road", "ERD"), LegacyError);
}

}  // namespace
}  // namespace velmora
