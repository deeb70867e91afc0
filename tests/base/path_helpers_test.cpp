#include "base/path_helpers.h"

#include <gtest/gtest.h>

#include "support/checks.h"

namespace velmora {
namespace {

using std::pair;
using testing::ExpectEach;

TEST(PathText, EitherSeparatorIsAddedOnceAndSearchesCountCharacters) {
  ExpectEach(flGetFileName, {pair{"C:\\data\\road.erd", "road.erd"}, {"/home/u/road.erd", "road.erd"},
                             {"a/b\\路線.txt", "路線.txt"}, {"road", "road"}, {"/home/u/", ""}});
  ExpectEach(flGetFileNameNonExt, {pair{"/x/a.b.erd", "a.b"}, {"/x.y/name", "name"}});
  ExpectEach(flGetPathName, {pair{"/home/u/road.erd", "/home/u"}, {"C:\\data\\road.erd", "C:\\data"}, {"road.erd", ""}});
  // Where the only "." stands in a folder name there is no extension.
  ExpectEach(flGetExtension, {pair{"a.b.ERD", "ERD"}, {"/x.y/name", ""}, {"C:\\x.y\\name", ""}, {"name.", ""}});
  ExpectEach(flAddDirSep, {pair{"/a", "/a/"}, {"/a/", "/a/"}, {"C:\\a\\", "C:\\a\\"}});
  // 路 線 / 路: the last "路線" starts at character 4, not at byte 8.
  EXPECT_EQ(flInStrRev("路線/路線.erd", "路線"), 4u);
  EXPECT_EQ(flInStrRev("abc", "x"), 0u);
  EXPECT_EQ(flStrRev("abc路"), "路cba");
}

TEST(PathText, SearchPathFindsFilesOnly) {
  testing::TempDir dir;
  testing::WriteBytes(dir / "a.ini", "x");
  ExpectEach(flSearchPath, {pair{(dir / "a.ini").string(), true}, {dir.path().string(), false},
                            {(dir / "b.ini").string(), false}, {std::string(), false}});
}

}  // namespace
}  // namespace velmora
