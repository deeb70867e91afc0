// Reading files line by line through one buffer: every line ending in every place the buffer can cut
// it, lines too long for any profile, and one message per kind of path that is not a readable file.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/line_reader.h"
#include "base/text_encoding.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::TempDir;
using testing::WriteBytes;

std::vector<std::string> AllLines(const std::filesystem::path& path) {
  LineReader reader(path);
  std::vector<std::string> lines;
  while (const auto line = reader.Next()) lines.emplace_back(*line);
  return lines;
}

TEST(LineReader, EndingsAreCutWhereverTheBufferEnds) {
  TempDir temp;
  // Lines of 4,000 bytes with mixed endings cross the 64 KB reads of the buffer at every offset
  // of an ending, CR LF split between two reads among them.
  std::string bytes;
  std::vector<std::string> expected;
  const char* endings[] = {"\r\n", "\n", "\r"};
  for (int k = 0; k < 200; ++k) {
    expected.push_back(std::string(3999 + k % 3, static_cast<char>('a' + k % 26)));
    bytes += expected.back() + endings[k % 3];
  }
  WriteBytes(temp / "long.txt", bytes);
  EXPECT_EQ(AllLines(temp / "long.txt"), expected);
}

TEST(LineReader, FinalLineWithAndWithoutEndingAndEmptyLinesInside) {
  TempDir temp;
  const struct {
    const char* bytes;
    std::vector<std::string> lines;
  } cases[] = {
      {"a\r\nb", {"a", "b"}},
      {"a\r\nb\r\n", {"a", "b"}},
      {"a\r\r\nb\r", {"a", "", "b"}},  // a lone CR, then CR LF: an empty line between
      {"\n\n", {"", ""}},
      {"", {}},
  };
  for (const auto& c : cases) {
    WriteBytes(temp / "f.txt", c.bytes);
    EXPECT_EQ(AllLines(temp / "f.txt"), c.lines) << ::testing::PrintToString(std::string(c.bytes));
  }
}

TEST(LineReader, ALineLongerThanTheLimitNamesTheFileAndTheLine) {
  TempDir temp;
  WriteBytes(temp / "wide.txt", "short\r\n" + std::string(5000, 'x') + "\r\n");
  LineReader reader(temp / "wide.txt");
  ASSERT_EQ(*reader.Next(4096), "short");
  try {
    reader.Next(4096);
    FAIL() << "no error";
  } catch (const LineTooLong& error) {
    const std::string text = error.what();
    EXPECT_NE(text.find((temp / "wide.txt").string()), std::string::npos) << text;
    EXPECT_NE(text.find("2 行目"), std::string::npos) << text;
  }
}

TEST(LineReader, EachKindOfPathThatIsNotAReadableFileHasItsOwnMessage) {
  TempDir temp;
  std::filesystem::create_directories(temp / "folder");
  const struct {
    std::filesystem::path path;
    const char* message;
  } cases[] = {{temp / "missing.txt", "ファイルが見つかりません。"}, {temp / "folder", "ファイルではなくフォルダです。"}};
  for (const auto& c : cases) {
    try {
      LineReader reader(c.path);
      FAIL() << c.path;
    } catch (const LegacyError& error) {
      EXPECT_EQ(std::string(error.what()), c.path.string() + ": " + c.message);
    }
  }
}

TEST(SystemCodePage, StrayBytesBecomeReplacementCharactersOnlyWhereAsked) {
  bool replaced = true;
  EXPECT_EQ(FromSystemCodePageReplacing("plain", replaced), "plain");
  EXPECT_FALSE(replaced);
  // "道" in Shift-JIS is 0x93 0xB9; 0xFF is no Shift-JIS byte at all; a lone lead byte at the end neither.
  EXPECT_EQ(FromSystemCodePageReplacing("\x93\xB9\xFF" "a\x93", replaced), "道\uFFFDa\uFFFD");
  EXPECT_TRUE(replaced);
  EXPECT_THROW(FromSystemCodePage("a\xFF", "x.txt"), LegacyError);
}

}  // namespace
}  // namespace velmora
