#include "base/text_encoding.h"

#include <gtest/gtest.h>

#include "base/legacy_error.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::ReadBytes;
using testing::TempDir;
using testing::WriteBytes;

TEST(SystemCodePage, FullWidthBarIs8162AndRoundTrips) {
  EXPECT_EQ(ToSystemCodePage("｜"), "\x81\x62");
  EXPECT_EQ(FromSystemCodePage("\x81\x62"), "｜");
  const std::string key = "長波長合算Octave";
  EXPECT_EQ(FromSystemCodePage(ToSystemCodePage(key)), key);
}

TEST(SystemCodePage, UnmappableBecomesQuestionMarkAndInvalidBytesNameTheFile) {
  EXPECT_EQ(ToSystemCodePage("a😀b"), "a?b");
  try {
    FromSystemCodePage("ab\x81", "road.erd");
    FAIL();
  } catch (const LegacyError& e) {
    EXPECT_NE(std::string(e.what()).find("road.erd"), std::string::npos);
  }
}

TEST(SystemTextFile, WritesCrLfReadsAnyLineEnd) {
  TempDir dir;
  WriteSystemTextFile(dir / "a.txt", {"ERDFILEV2.00", "TITLE   路線｜1.00000++"});
  EXPECT_EQ(ReadBytes(dir / "a.txt"), "ERDFILEV2.00\r\nTITLE   \x98\x48\x90\xfc\x81\x62" "1.00000++\r\n");
  WriteBytes(dir / "b.txt", "x\ny\r\nz\r\r\nw");
  EXPECT_EQ(ReadSystemTextLines(dir / "b.txt"), (std::vector<std::string>{"x", "y", "z", "", "w"}));
}

TEST(SystemTextFile, MissingFileAndFailedWriteLeaveNothingBehind) {
  TempDir dir;
  EXPECT_THROW(ReadSystemTextLines(dir / "none.txt"), LegacyError);
  WriteSystemTextFile(dir / "keep.txt", {"old"});
  // A target that is a folder cannot be replaced: the old content of other files is untouched and no
  // temporary file is left.
  std::filesystem::create_directory(dir / "folder");
  EXPECT_THROW(WriteSystemTextFile(dir / "folder", {"new"}), LegacyError);
  EXPECT_EQ(ReadBytes(dir / "keep.txt"), "old\r\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);
}

}  // namespace
}  // namespace velmora
