#include "base/ini_file.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <sstream>
#include <tuple>

#include "base/common.h"
#include "base/legacy_error.h"
#include "base/text_encoding.h"
#include "support/checks.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::TempDir;
using testing::WriteBytes;

// A scratch folder and files in it, written byte for byte.
class Ini : public ::testing::Test {
 protected:
  fs::path File(const std::string& name, const std::string& bytes) {
    WriteBytes(dir_ / name, bytes);
    return dir_ / name;
  }
  TempDir dir_;
};

TEST_F(Ini, NamesIgnoreCaseValuesAreTrimmedTheFirstWinsAndAReplacedKeyChangesOnlyItsLine) {
  // Comments, odd blanks, a LF-only line, a section appearing twice.
  const std::string mixed = "; comment=not a key\r\n[General]\r\n  DebugLevel =  1  \r\nQuoted=\"  spaced  \"\r\nEmpty=\r\n"
                            "debuglevel=2\r\nno equals sign here\n\r\n[ Other ]\r\nKey=other\r\n[general]\r\nLate=ignored\r\n";
  const fs::path path = File("a.ini", mixed);
  const IniDocument ini = IniDocument::Load(path);
  EXPECT_EQ(ini.Get("GENERAL", "debugLevel"), "1");
  EXPECT_EQ(ini.Get("General", "Quoted"), "  spaced  ");
  EXPECT_EQ(ini.Get("General", "Empty"), "");
  EXPECT_EQ(ini.Get("other", "KEY"), "other");
  EXPECT_EQ(ini.Get("General", "Late"), std::nullopt);  // only the first [General] counts
  EXPECT_EQ(ini.Get("General", "; comment"), std::nullopt);
  EXPECT_EQ(ini.Get("Missing", "Key"), std::nullopt);
  EXPECT_EQ(ReadIniValue(dir_ / "absent.ini", "General", "DebugLevel"), std::nullopt);

  WriteIniValue(path, "general", "DEBUGLEVEL", "5");
  std::string expected = mixed;
  EXPECT_EQ(ReadBytes(path), expected.replace(expected.find("  DebugLevel =  1  "), 19, "DEBUGLEVEL=5"));
}

TEST_F(Ini, NewKeyGoesBehindTheLastLineOfItsSectionNewSectionAtTheEnd) {
  const fs::path path = File("a.ini", "[A]\r\nx=1\r\n\r\n[B]\r\ny=2");  // no line end at the very end
  WriteIniValue(path, "A", "z", "3");
  WriteIniValue(path, "B", "w", "4");
  WriteIniValue(path, "C", "v", "");
  EXPECT_EQ(ReadBytes(path), "[A]\r\nx=1\r\nz=3\r\n\r\n[B]\r\ny=2\r\nw=4\r\n[C]\r\nv=\r\n");
  WriteIniValue(dir_ / "new.ini", "S", "k", "v");
  EXPECT_EQ(ReadBytes(dir_ / "new.ini"), "[S]\r\nk=v\r\n");
}

TEST_F(Ini, JapaneseNamesRoundTripInShiftJis) {
  // "ゾーン" holds the bytes 0x5D and 0x5B (']' and '[') as trail bytes, "表示" holds 0x5C.
  WriteIniValue(dir_ / "j.ini", "ゾーン", "表示", "値");
  EXPECT_EQ(ReadBytes(dir_ / "j.ini"), "[\x83\x5d\x81\x5b\x83\x93]\r\n\x95\x5c\x8e\xa6=\x92\x6c\r\n");
  EXPECT_EQ(ReadIniValue(dir_ / "j.ini", "ゾーン", "表示"), "値");
  WriteIniValue(dir_ / "j.ini", "ゾーン", "表示", "長");
  EXPECT_EQ(ReadBytes(dir_ / "j.ini"), "[\x83\x5d\x81\x5b\x83\x93]\r\n\x95\x5c\x8e\xa6=\x92\xb7\r\n");
}

TEST_F(Ini, BytesThatAreNotShiftJisNameFileAndLineAndWritingKeepsTheFile) {
  const std::string broken = "[A]\r\nx=\x81\r\n";  // a lead byte with no trail byte
  const fs::path path = File("bad.ini", broken);
  const std::string what = testing::WhatOf([&] { IniDocument::Load(path); });
  EXPECT_NE(what.find("bad.ini: 2 行目"), std::string::npos) << what;
  EXPECT_THROW(WriteIniValue(path, "A", "y", "1"), LegacyError);
  EXPECT_EQ(ReadBytes(path), broken);
}

TEST_F(Ini, FolderInPlaceOfTheFileAndUnwritableTextsAreRefused) {
  fs::create_directory(dir_ / "dir.ini");
  EXPECT_THROW(ReadIniValue(dir_ / "dir.ini", "A", "x"), LegacyError);
  const fs::path path = File("a.ini", "[A]\r\nx=1\r\n");
  const std::tuple<const char*, const char*, const char*> refused[] = {
      {"A", "x", "1\r\n[B]"}, {"A", "k=v", "1"}, {"A]", "x", "1"}, {"", "x", "1"}};
  for (const auto& [section, key, value] : refused)
    EXPECT_THROW(WriteIniValue(path, section, key, value), LegacyError) << section << " " << key << " " << value;
  EXPECT_EQ(ReadBytes(path), "[A]\r\nx=1\r\n");
  EXPECT_THROW(WriteIniValue(dir_ / "no" / "a.ini", "A", "x", "1"), LegacyError);
}

TEST_F(Ini, MalformedLinesAreIgnoredAndANulEndsTheValue) {
  using namespace std::string_literals;
  const IniDocument ini =
      IniDocument::Load(File("m.ini", "orphan=before any section\r\n[broken\r\nk=1\r\n[A]\r\nv=ab\0cd\r\n=nokey\r\n"s));
  EXPECT_EQ(ini.Get("A", "v"), "ab");
  EXPECT_EQ(ini.Get("broken", "k"), std::nullopt);
  EXPECT_EQ(ini.Get("A", ""), std::nullopt);
}

// Lines of a byte string without their endings, for comparing files line by line.
std::multiset<std::string> LineSet(const std::string& bytes) {
  std::multiset<std::string> lines;
  std::istringstream in(bytes);
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.insert(line);
  }
  return lines;
}

TEST_F(Ini, OneWriteChangesOneKeyAndAtMostOneExistingLine) {
  const std::vector<std::string> sections{"General", "ゾーン", "表示", "a"};
  const std::vector<std::string> keys{"k", "K2", "長波側境界値", "x"};
  const std::vector<std::string> values{"1", "", "51.2", "$(AppPath)/値", "a=b"};
  std::mt19937 random(20240307);
  auto pick = [&](const std::vector<std::string>& pool) { return pool[random() % pool.size()]; };
  for (int round = 0; round < 300; ++round) {
    std::string text;
    const int lineCount = static_cast<int>(random() % 12);
    for (int i = 0; i < lineCount; ++i) {
      switch (random() % 5) {
        case 0: text += "[" + pick(sections) + "]"; break;
        case 1: text += " " + pick(keys) + " = " + pick(values); break;
        case 2: text += "; " + pick(keys) + "=comment"; break;
        case 3: text += "no key here"; break;
        default: break;  // blank line
      }
      if (i + 1 < lineCount || random() % 2) text += random() % 2 ? "\r\n" : "\n";
    }
    const fs::path path = File("p.ini", ToSystemCodePage(text));
    const IniDocument before = IniDocument::Load(path);
    const std::string section = pick(sections), key = pick(keys), value = pick(values);
    WriteIniValue(path, section, key, value);
    const IniDocument after = IniDocument::Load(path);
    ASSERT_EQ(after.Get(section, key), value) << text;
    for (const auto& s : sections)
      for (const auto& k : keys)
        if (!(UCase(s) == UCase(section) && k == key)) {
          ASSERT_EQ(after.Get(s, k), before.Get(s, k)) << text;
        }
    // Every old line is still there except, at most, the one that held the key.
    auto newLines = LineSet(ReadBytes(path));
    int lost = 0;
    for (const auto& line : LineSet(ToSystemCodePage(text))) {
      if (const auto at = newLines.find(line); at != newLines.end()) newLines.erase(at);
      else ++lost;
    }
    ASSERT_LE(lost, 1) << text;
  }
}

}  // namespace
}  // namespace velmora
