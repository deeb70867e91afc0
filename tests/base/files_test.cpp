// The file-system helpers of the base layer: patterns, deletion, copies and free names; ini files
// read and written byte for byte in Shift-JIS; the user's folders from the environment.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <tuple>

#include <fmt/format.h>

#include "base/app_paths.h"
#include "base/common.h"
#include "base/file_helpers.h"
#include "base/folders.h"
#include "base/ini_file.h"
#include "base/legacy_error.h"
#include "base/session.h"
#include "base/text_encoding.h"
#include "support/checks.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::WriteBytes;
using Names = std::vector<std::string>;

// A scratch folder, its paths as the helpers take them and files in it written byte for byte, folders
// made as needed.
class Scratch : public ::testing::Test {
 protected:
  std::string At(const std::string& name = "") const { return name.empty() ? dir_.path().string() : (dir_ / name).string(); }
  fs::path Put(const std::string& name, const std::string& bytes = "x") const {
    fs::create_directories((dir_ / name).parent_path());
    WriteBytes(dir_ / name, bytes);
    return dir_ / name;
  }
  testing::TempDir dir_;
};
using FileHelpers = Scratch;
using Ini = Scratch;

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

TEST_F(Ini, NamesIgnoreCaseValuesAreTrimmedTheFirstWinsAndAReplacedKeyChangesOnlyItsLine) {
  // Comments, odd blanks, a LF-only line, a section appearing twice.
  const std::string mixed = "; comment=not a key\r\n[General]\r\n  DebugLevel =  1  \r\nQuoted=\"  spaced  \"\r\nEmpty=\r\n"
                            "debuglevel=2\r\nno equals sign here\n\r\n[ Other ]\r\nKey=other\r\n[general]\r\nLate=ignored\r\n";
  const fs::path path = Put("a.ini", mixed);
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
  const fs::path path = Put("a.ini", "[A]\r\nx=1\r\n\r\n[B]\r\ny=2");  // no line end at the very end
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
  const fs::path path = Put("bad.ini", broken);
  const std::string what = testing::WhatOf([&] { IniDocument::Load(path); });
  EXPECT_NE(what.find("bad.ini: 2 行目"), std::string::npos) << what;
  EXPECT_THROW(WriteIniValue(path, "A", "y", "1"), LegacyError);
  EXPECT_EQ(ReadBytes(path), broken);
}

TEST_F(Ini, FolderInPlaceOfTheFileAndUnwritableTextsAreRefused) {
  fs::create_directory(dir_ / "dir.ini");
  EXPECT_THROW(ReadIniValue(dir_ / "dir.ini", "A", "x"), LegacyError);
  const fs::path path = Put("a.ini", "[A]\r\nx=1\r\n");
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
      IniDocument::Load(Put("m.ini", "orphan=before any section\r\n[broken\r\nk=1\r\n[A]\r\nv=ab\0cd\r\n=nokey\r\n"s));
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
    const fs::path path = Put("p.ini", ToSystemCodePage(text));
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

// Sets environment variables for one test and puts the old values back afterwards.
class Environment : public Scratch {
 protected:
  void Set(const char* name, const std::optional<std::string>& value) {
    if (!saved_.count(name)) {
      const char* old = std::getenv(name);
      saved_[name] = old ? std::optional<std::string>(old) : std::nullopt;
    }
    if (value) ::setenv(name, value->c_str(), 1);
    else ::unsetenv(name);
  }
  void TearDown() override {
    for (const auto& [name, value] : saved_) {
      if (value) ::setenv(name.c_str(), value->c_str(), 1);
      else ::unsetenv(name.c_str());
    }
  }
  // A plain XDG environment with the home in the temporary folder.
  void PlainHome() {
    Set("VELMORA_HOME", std::nullopt);
    Set("HOME", (dir_ / "h").string());
    for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_DOCUMENTS_DIR", "XDG_PICTURES_DIR"})
      Set(name, std::nullopt);
  }
  // Data home, documents and pictures as read from the environment now.
  static std::vector<std::string> Folders() {
    const FolderEnvironment env = ReadFolderEnvironment();
    return {env.DataHome, env.Documents, env.Pictures};
  }

 private:
  std::map<std::string, std::optional<std::string>> saved_;
};

TEST_F(Environment, XdgDefaultsFallBackToTheHomeFolder) {
  PlainHome();
  const std::string home = (dir_ / "h").string();
  EXPECT_EQ(Folders(), (std::vector<std::string>{home + "/.local/share", home, home}));
  const FolderEnvironment env = ReadFolderEnvironment();
  EXPECT_EQ(ResolveFolderPath(kFolderLocalAppDataCreate, env), home + "/.local/share");
  EXPECT_EQ(ResolveFolderPath(kFolderCommonDocuments, env), home + "/.local/share");
}

TEST_F(Environment, UserDirsFileAndVariablesNameDocumentsAndPictures) {
  PlainHome();
  fs::create_directories(dir_ / "h" / ".config");
  WriteBytes(dir_ / "h" / ".config" / "user-dirs.dirs",
                      "# written by xdg-user-dirs-update\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                      "XDG_PICTURES_DIR=\"/srv/pictures\"\nXDG_MUSIC_DIR=\"relative\"\n");
  EXPECT_EQ(Folders(), (std::vector<std::string>{(dir_ / "h").string() + "/.local/share",
                                                 (dir_ / "h").string() + "/Dokumente", "/srv/pictures"}));
  Set("XDG_DOCUMENTS_DIR", "/var/docs");
  Set("XDG_DATA_HOME", "/var/data");
  EXPECT_EQ(Folders(), (std::vector<std::string>{"/var/data", "/var/docs", "/srv/pictures"}));
}

TEST_F(Environment, VelmoraHomeMovesEverythingAndIgnoresXdg) {
  PlainHome();
  Set("XDG_DATA_HOME", "/var/data");
  Set("XDG_DOCUMENTS_DIR", "/var/docs");
  Set("VELMORA_HOME", (dir_ / "v").string());
  EXPECT_EQ(Folders(), (std::vector<std::string>{dir_ / "v", dir_ / "v" / "Documents", dir_ / "v" / "Pictures"}));
  // The create flag of local application data makes the folder.
  EXPECT_EQ(GetFolderPath("/opt/velmora", kFolderLocalAppDataCreate), (dir_ / "v").string());
  EXPECT_TRUE(fs::is_directory(dir_ / "v"));
}

TEST_F(Environment, FoldersWithoutACounterpartOrValueResolveToAppPath) {
  PlainHome();
  Set("HOME", std::nullopt);
  // kFolderPersonal has no home at all.
  for (int folder : {int{kFolderWindows}, int{kFolderSystem}, int{kFolderPersonal}, 12345})
    EXPECT_EQ(GetFolderPath("/opt/velmora", folder), "/opt/velmora") << folder;
}

TEST(ProgramFolder, IsTheFolderOfTheRunningBinary) {
  EXPECT_EQ(fs::canonical(ProgramFolder()), fs::canonical(VELMORA_BIN_DIR));
}

}  // namespace
}  // namespace velmora
