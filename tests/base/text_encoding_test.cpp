#include "base/text_encoding.h"

#include <gtest/gtest.h>

#include "base/legacy_error.h"
#include "support/checks.h"

namespace velmora {
namespace {

using testing::ReadBytes;
using testing::TempDir;
using testing::WriteBytes;

TEST(SystemCodePage, FullWidthBarIs8162UnmappableBecomesQuestionMarkInvalidBytesNameTheFile) {
  EXPECT_EQ(ToSystemCodePage("｜"), "\x81\x62");
  EXPECT_EQ(FromSystemCodePage("\x81\x62"), "｜");
  const std::string key = "長波長合算Octave";
  EXPECT_EQ(FromSystemCodePage(ToSystemCodePage(key)), key);
  EXPECT_EQ(ToSystemCodePage("a😀b"), "a?b");
  EXPECT_NE(testing::WhatOf([] { FromSystemCodePage("ab\x81", "road.erd"); }).find("road.erd"), std::string::npos);
}

TEST(SystemTextFile, WritesCrLfReadsAnyLineEndAndAFailedWriteLeavesNothingBehind) {
  TempDir dir;
  WriteSystemTextFile(dir / "a.txt", {"ERDFILEV2.00", "TITLE   路線｜1.00000++"});
  EXPECT_EQ(ReadBytes(dir / "a.txt"), "ERDFILEV2.00\r\nTITLE   \x98\x48\x90\xfc\x81\x62" "1.00000++\r\n");
  WriteBytes(dir / "b.txt", "x\ny\r\nz\r\r\nw");
  EXPECT_EQ(ReadSystemTextLines(dir / "b.txt"), (std::vector<std::string>{"x", "y", "z", "", "w"}));
  EXPECT_THROW(ReadSystemTextLines(dir / "none.txt"), LegacyError);
  // A folder in the target's place cannot be replaced: other files are untouched, no temporary is left.
  std::filesystem::create_directory(dir / "folder");
  EXPECT_THROW(WriteSystemTextFile(dir / "folder", {"new"}), LegacyError);
  EXPECT_EQ(ReadBytes(dir / "b.txt"), "x\ny\r\nz\r\r\nw");
  EXPECT_EQ(testing::EntryNames(dir.path()), (std::vector<std::string>{"a.txt", "b.txt", "folder"}));
}

}  // namespace
}  // namespace velmora
