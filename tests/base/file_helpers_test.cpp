#include "base/file_helpers.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <fmt/format.h>

#include "base/legacy_error.h"
#include "support/test_support.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::TempDir;
using testing::WriteBytes;

std::string S(const fs::path& p) { return p.string(); }

TEST(FilePattern, WildcardsIgnoreCaseAndStarDotStarTakesAll) {
  EXPECT_TRUE(MatchFilePattern("README", "*.*"));
  EXPECT_TRUE(MatchFilePattern("A.ERD", "*.erd"));
  EXPECT_FALSE(MatchFilePattern("a.erd.bak", "*.erd"));
  EXPECT_TRUE(MatchFilePattern("路.txt", "?.txt"));  // "?" is one character, not one byte
  EXPECT_FALSE(MatchFilePattern("路線.txt", "?.txt"));
  EXPECT_TRUE(MatchFilePattern("axxbyyc", "a*b*c"));
  EXPECT_FALSE(MatchFilePattern("axxbyy", "a*b*c"));
  EXPECT_TRUE(MatchFilePattern("", "*"));
}

TEST(Deletion, PatternDeletesOnlyMatchingFilesOfThatFolder) {
  TempDir dir;
  for (const char* name : {"a.erd", "b.ERD", "c.txt"}) WriteBytes(dir / name, "x");
  fs::create_directory(dir / "sub.erd");
  WriteBytes(dir / "sub.erd" / "d.erd", "x");
  DeletePath(S(dir.path()), "*.erd");
  EXPECT_FALSE(fs::exists(dir / "a.erd"));
  EXPECT_FALSE(fs::exists(dir / "b.ERD"));
  EXPECT_TRUE(fs::exists(dir / "c.txt"));
  EXPECT_TRUE(fs::exists(dir / "sub.erd" / "d.erd"));
  EXPECT_NO_THROW(DeletePath(S(dir / "absent"), "*.*"));
}

TEST(Deletion, FileAndFolderAreSilentWhenAbsent) {
  TempDir dir;
  WriteBytes(dir / "f.txt", "x");
  fs::create_directories(dir / "tree" / "deep");
  WriteBytes(dir / "tree" / "deep" / "g.txt", "x");
  EXPECT_NO_THROW(DeleteFile(S(dir / "none.txt")));
  DeleteFile(S(dir / "f.txt"));
  EXPECT_FALSE(fs::exists(dir / "f.txt"));
  DeleteFolder(S(dir / "tree"));
  EXPECT_FALSE(fs::exists(dir / "tree"));
  EXPECT_NO_THROW(DeleteFolder(S(dir / "tree")));
  try {
    DeleteFile(S(dir.path()));
    FAIL() << "a folder is not deleted as a file";
  } catch (const LegacyError& e) {
    EXPECT_NE(std::string(e.what()).find(S(dir.path())), std::string::npos);
  }
}

TEST(CopyMove, OverwriteAndNoOpCases) {
  TempDir dir;
  WriteBytes(dir / "src.txt", "new");
  WriteBytes(dir / "dst.txt", "old");
  uFileCopy_A(S(dir / "src.txt"), S(dir / "dst.txt"));
  EXPECT_EQ(ReadBytes(dir / "dst.txt"), "new");
  EXPECT_EQ(ReadBytes(dir / "src.txt"), "new");
  // A missing source or an empty target does nothing.
  uFileCopy_A(S(dir / "missing.txt"), S(dir / "dst.txt"));
  uFileCopy_A(S(dir / "src.txt"), "");
  EXPECT_EQ(ReadBytes(dir / "dst.txt"), "new");

  WriteBytes(dir / "target.txt", "older");
  uFileMove(S(dir / "src.txt"), S(dir / "target.txt"));
  EXPECT_FALSE(fs::exists(dir / "src.txt"));
  EXPECT_EQ(ReadBytes(dir / "target.txt"), "new");
  EXPECT_NO_THROW(uFileMove(S(dir / "src.txt"), S(dir / "target.txt")));
  EXPECT_EQ(ReadBytes(dir / "target.txt"), "new");
}

TEST(CopyMove, FailedCopyNamesTheTargetAndLeavesNothing) {
  TempDir dir;
  WriteBytes(dir / "src.txt", "x");
  EXPECT_THROW(uFileCopy_A(S(dir / "src.txt"), S(dir / "no" / "dst.txt")), LegacyError);
  EXPECT_FALSE(fs::exists(dir / "no"));
  // A folder in the target's place is kept whole.
  fs::create_directory(dir / "busy");
  WriteBytes(dir / "busy" / "inside.txt", "keep");
  EXPECT_THROW(uFileCopy_A(S(dir / "src.txt"), S(dir / "busy")), LegacyError);
  EXPECT_EQ(ReadBytes(dir / "busy" / "inside.txt"), "keep");
  EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 2);  // src.txt and busy: no temporary left
}

TEST(FindAll, FilesOfAFolderFirstThenItsSubFoldersInNameOrder) {
  TempDir dir;
  fs::create_directories(dir / "z");
  fs::create_directories(dir / "m");
  for (const char* name : {"b.erd", "a.erd", "z/c.erd", "m/d.ERD", "m/e.txt"}) WriteBytes(dir / name, "x");
  const auto root = S(dir.path());
  EXPECT_EQ(uFileFindAll(root, "*.erd"),
            (std::vector<std::string>{root + "/a.erd", root + "/b.erd", root + "/m/d.ERD", root + "/z/c.erd"}));
  EXPECT_TRUE(uFileFindAll(root + "/none", "*.*").empty());
}

TEST(FreeName, NumbersFromOneUpToNineHundredNinetyNine) {
  TempDir dir;
  const auto folder = S(dir.path());
  EXPECT_EQ(uFreeName(folder, "road", "ERD"), "road.ERD");
  WriteBytes(dir / "road.ERD", "x");
  EXPECT_EQ(uFreeName(folder, "road", "ERD"), "road(001).ERD");
  WriteBytes(dir / "road(001).ERD", "x");
  EXPECT_EQ(uFreeName(folder, "road", "ERD"), "road(002).ERD");
  EXPECT_EQ(uFreeName(folder, "road", ""), "road");
  for (int i = 2; i <= 999; ++i) WriteBytes(dir / fmt::format("road({:03}).ERD", i), "x");
  EXPECT_THROW(uFreeName(folder, "road", "ERD"), LegacyError);
}

}  // namespace
}  // namespace velmora
