#include "base/path_helpers.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/test_support.h"

namespace velmora {
namespace {

TEST(PathText, NameFolderAndExtensionWithEitherSeparator) {
  EXPECT_EQ(flGetFileName("C:\\data\\road.erd"), "road.erd");
  EXPECT_EQ(flGetFileName("/home/u/road.erd"), "road.erd");
  EXPECT_EQ(flGetFileName("a/b\\路線.txt"), "路線.txt");
  EXPECT_EQ(flGetFileName("road"), "road");
  EXPECT_EQ(flGetFileName("/home/u/"), "");
  EXPECT_EQ(flGetFileNameNonExt("/x/a.b.erd"), "a.b");
  EXPECT_EQ(flGetFileNameNonExt("/x.y/name"), "name");
  EXPECT_EQ(flGetPathName("/home/u/road.erd"), "/home/u");
  EXPECT_EQ(flGetPathName("C:\\data\\road.erd"), "C:\\data");
  EXPECT_EQ(flGetPathName("road.erd"), "");
  EXPECT_EQ(flGetExtension("a.b.ERD"), "ERD");
  // The only "." stands in a folder name: no extension.
  EXPECT_EQ(flGetExtension("/x.y/name"), "");
  EXPECT_EQ(flGetExtension("C:\\x.y\\name"), "");
  EXPECT_EQ(flGetExtension("name."), "");
}

TEST(PathText, SeparatorAddedOnceReverseSearchCountsCharacters) {
  EXPECT_EQ(flAddDirSep("/a"), "/a/");
  EXPECT_EQ(flAddDirSep("/a/"), "/a/");
  EXPECT_EQ(flAddDirSep("C:\\a\\"), "C:\\a\\");
  // 路 線 / 路: the last "路線" starts at character 4, not at byte 8.
  EXPECT_EQ(flInStrRev("路線/路線.erd", "路線"), 4u);
  EXPECT_EQ(flInStrRev("abc", "x"), 0u);
  EXPECT_EQ(flStrRev("abc路"), "路cba");
}

TEST(PathText, SearchPathFindsFilesOnly) {
  testing::TempDir dir;
  testing::WriteBytes(dir / "a.ini", "x");
  EXPECT_TRUE(flSearchPath((dir / "a.ini").string()));
  EXPECT_FALSE(flSearchPath(dir.path().string()));
  EXPECT_FALSE(flSearchPath((dir / "b.ini").string()));
  EXPECT_FALSE(flSearchPath(""));
}

}  // namespace
}  // namespace velmora
