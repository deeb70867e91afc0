// Files a user may hand the reader that are broken in ways the header checks do not cover, and the
// bundled examples, which must survive a read and a write unchanged.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/legacy_error.h"
#include "list_fixture.h"
#include "profile/erd_file.h"
#include "profile/profile_list.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::ReadBytes;
using testing::ScriptedUi;
using testing::TempDir;
using testing::WriteBytes;

constexpr const char* kHead =
    "ERDFILEV2.00\r\n      1,      3,      3,      1,      5, 0.100000    ,     -1,\r\n"
    "TITLE   t\r\nSHORTNAMLElev.\r\nUNITSNAMmm\r\nXUNITS  m\r\nEND\r\n";

// The text of the error the reader raises for `bytes`, or "" when it raises none.
std::string ReadError(const std::string& bytes, ErdRecord& rec, const TempDir& dir) {
  const auto path = dir / "bad.erd";
  WriteBytes(path, bytes);
  try {
    ReadERD(path.string(), rec);
  } catch (const LegacyError& error) {
    EXPECT_NE(std::string(error.what()).find(path.string()), std::string::npos) << error.what();
    return error.what();
  }
  return "";
}

TEST(ErdBadInput, EmptyFileIsNotAnErdFile) {
  TempDir dir;
  WriteBytes(dir / "empty.erd", "");
  ScriptedUi ui;
  ErdRecord rec;
  EXPECT_FALSE(ReadERD((dir / "empty.erd").string(), rec));
  EXPECT_EQ(ui.OnlyMessageText().rfind("指定されたファイルは ERD フォマットではありません。", 0), 0u);
}

TEST(ErdBadInput, NonFiniteValuesAreNotNumbers) {
  TempDir dir;
  for (const char* value : {"nan", "inf", "-Infinity", "1e999"}) {
    ErdRecord rec;
    const std::string text = ReadError(std::string(kHead) + "1.0\r\n" + value + "\r\n", rec, dir);
    EXPECT_NE(text.find("9 行目"), std::string::npos) << value << ": " << text;
  }
}

TEST(ErdBadInput, InvalidShiftJisNamesTheFile) {
  TempDir dir;
  ErdRecord rec;
  std::string bytes = kHead;
  bytes.replace(bytes.find("TITLE   t"), 9, "TITLE   \x81\x20");  // a lead byte without its trail byte
  EXPECT_FALSE(ReadError(bytes + "1\r\n", rec, dir).empty());
}

TEST(ErdBadInput, HugeDeclaredCountReadsOnlyWhatIsThere) {
  TempDir dir;
  ScriptedUi ui;
  ErdRecord rec;
  std::string bytes = kHead;
  bytes.replace(bytes.find("      3,      3,"), 16, "1000000000,1000000000,");
  EXPECT_EQ(ReadError(bytes + "1\r\n2\r\n3\r\n", rec, dir), "");
  EXPECT_EQ(rec.NumSamplesHeader, 1000000000);
  EXPECT_EQ(rec.NumSamples, 3);
  EXPECT_EQ(rec.Elevation.size(), 3);
}

class VanishingFileTest : public ProfileListTest {};

TEST_F(VanishingFileTest, AFileGoneBeforeRegistrationIsReportedAndNothingIsAdded) {
  ScriptedUi ui;
  const std::string path = Source("gone.erd");
  std::filesystem::remove(path);
  ProfileList list;
  EXPECT_FALSE(AddProfileList(list, {path}, false));
  EXPECT_EQ(list.Count(), 0);
  ASSERT_FALSE(ui.Messages().empty());
  EXPECT_NE(ui.Messages().back().Text.find("gone.erd"), std::string::npos) << ui.Messages().back().Text;
  EXPECT_FALSE(std::filesystem::exists(ProjectCopy("gone.erd")));
}

TEST(ErdExamples, ReadWriteGivesTheSameBytesAndTheSameRecord) {
  TempDir dir;
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(testing::SourceDir() / "examples")) {
    if (entry.path().extension() != ".erd") continue;
    ++count;
    ErdRecord first;
    ASSERT_TRUE(ReadERD(entry.path().string(), first)) << entry.path();
    const auto copy = dir / entry.path().filename();
    WriteERD(copy.string(), first);
    EXPECT_EQ(ReadBytes(copy), ReadBytes(entry.path())) << entry.path();
    ErdRecord second;
    ASSERT_TRUE(ReadERD(copy.string(), second));
    EXPECT_EQ(second.Elevation, first.Elevation);
    EXPECT_EQ(ComposeErdTitle(second), ComposeErdTitle(first));
    EXPECT_EQ(second.StepSize, first.StepSize);
  }
  EXPECT_GE(count, 2);
}

}  // namespace
}  // namespace velmora
