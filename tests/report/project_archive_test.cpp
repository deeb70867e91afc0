// The project archive: what the writer stores and ordinary zip tools read, and archives made here
// byte by byte that must be refused, each with a message naming the entry, and with nothing written
// outside the folder they were to be unpacked into.
#include "report/project_archive.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zip.h>

#include <cstdlib>
#include <functional>

#include "base/text_encoding.h"
#include "support/checks.h"
#include "support/raw_zip.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::RawEntry;
using testing::RawZip;

// Every path under `folder`, relative, sorted.
std::vector<std::string> Tree(const fs::path& folder) {
  std::vector<std::string> paths;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    paths.push_back(fs::relative(entry.path(), folder).generic_string());
  std::sort(paths.begin(), paths.end());
  return paths;
}

class ProjectArchiveTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(project / "Profile");
    fs::create_directories(project / "Screening");
    testing::WriteBytes(project / "User.dat", "[VER]\r\n0.1.0\r\n");
    testing::WriteBytes(project / "Profile" / "a.erd", std::string(5000, '1'));
    testing::WriteBytes(project / "Profile" / "道路.erd", "road");
    testing::WriteBytes(project / "work.bin", "scratch");
    fs::create_directory(destination);
  }

  // The stored names, raw, in the archive's order.
  static std::vector<std::string> RawNames(const fs::path& archive) {
    int error = 0;
    zip_t* zip = zip_open(archive.c_str(), ZIP_RDONLY, &error);
    EXPECT_NE(zip, nullptr);
    std::vector<std::string> names;
    if (zip == nullptr) return names;
    for (zip_int64_t i = 0; i < zip_get_num_entries(zip, 0); ++i)
      names.emplace_back(zip_get_name(zip, static_cast<zip_uint64_t>(i), ZIP_FL_ENC_RAW));
    zip_discard(zip);
    return names;
  }

  // The message of the refusal of `bytes` as an archive. Nothing may have been written outside the
  // private folder, and no file inside it.
  std::string Refusal(const std::string& bytes) {
    const fs::path archive = dir / "bad.prj";
    testing::WriteBytes(archive, bytes);
    const std::string text = testing::WhatOf([&] { UnpackProjectArchive(archive, destination); });
    std::vector<std::string> outside;
    for (const std::string& path : Tree(dir.path()))
      if (!path.starts_with("private/")) outside.push_back(path);
    EXPECT_EQ(outside, (std::vector<std::string>{"bad.prj", "private", "project", "project/Profile",
                                                 "project/Profile/a.erd", "project/Profile/道路.erd",
                                                 "project/Screening", "project/User.dat", "project/work.bin"}));
    for (const std::string& path : Tree(destination)) EXPECT_TRUE(fs::is_directory(destination / path)) << path;
    return text;
  }

  testing::TempDir dir;
  fs::path project = dir / "project";
  fs::path destination = dir / "private";
};

// Packed over an older file of the same name, which is replaced.
TEST_F(ProjectArchiveTest, StoresTheProjectFolderUnderItsNameInShiftJisWithoutBinFiles) {
  const fs::path archive = dir / "p.prj";
  testing::WriteBytes(archive, "the old file");
  PackProjectFolder(project, archive);
  EXPECT_EQ(RawNames(archive), (std::vector<std::string>{"Project/Profile/", "Project/Profile/a.erd",
                                                         "Project/Profile/\x93\xb9\x98\x48.erd", "Project/Screening/",
                                                         "Project/User.dat"}))
      << "道路 is 0x93B9 0x9848 in Shift-JIS";
  EXPECT_EQ(Tree(dir.path()).size(), 9u) << "p.prj beside the 8 of the tree, no temporary file";
  UnpackProjectArchive(archive, destination);
  EXPECT_EQ(Tree(destination), (std::vector<std::string>{"Project", "Project/Profile", "Project/Profile/a.erd",
                                                         "Project/Profile/道路.erd", "Project/Screening",
                                                         "Project/User.dat"}));
  EXPECT_EQ(testing::ReadBytes(destination / "Project" / "Profile" / "a.erd"), std::string(5000, '1'));
  EXPECT_EQ(testing::ReadBytes(destination / "Project" / "User.dat"), "[VER]\r\n0.1.0\r\n");
}

TEST_F(ProjectArchiveTest, OrdinaryZipToolsReadWhatIsWritten) {
  const fs::path archive = dir / "p.prj";
  PackProjectFolder(project, archive);
  const std::string quoted = "'" + archive.string() + "'";
  EXPECT_EQ(std::system(("unzip -tq " + quoted + " >/dev/null").c_str()), 0);
  const std::string python =
      "python3 -c 'import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); "
      "assert z.testzip() is None; assert z.read(\"Project/User.dat\") == b\"[VER]\\r\\n0.1.0\\r\\n\"; "
      "assert len(z.namelist()) == 5' ";
  EXPECT_EQ(std::system((python + quoted).c_str()), 0);
}

TEST_F(ProjectArchiveTest, ReadsBackslashesAndUtf8NamesAsWellAsShiftJis) {
  const fs::path archive = dir / "other.prj";
  testing::WriteBytes(archive, RawZip({{"Project\\User.dat", "u"},
                                       {"Project\\Profile\\\x93\xb9.erd", "sjis"},
                                       {"Project/Profile/路.erd", "utf8", std::nullopt, std::nullopt, 0, 0x0800}}));
  UnpackProjectArchive(archive, destination);
  EXPECT_EQ(testing::ReadBytes(destination / "Project" / "User.dat"), "u");
  EXPECT_EQ(testing::ReadBytes(destination / "Project" / "Profile" / "道.erd"), "sjis");
  EXPECT_EQ(testing::ReadBytes(destination / "Project" / "Profile" / "路.erd"), "utf8");
}

struct Hostile {
  const char* Case;
  std::function<std::string()> Bytes;
  std::string Message;
};

class HostileArchiveTest : public ProjectArchiveTest, public ::testing::WithParamInterface<Hostile> {};

TEST_P(HostileArchiveTest, IsRefusedNamingTheEntryAndNothingIsWritten) {
  EXPECT_EQ(Refusal(GetParam().Bytes()), GetParam().Message);
}

std::function<std::string()> OneEntry(std::string name) {
  return [name] { return RawZip({{"Project/User.dat", "u"}, {name, "x"}}); };
}

// Deflated data whose header says it unpacks to `size` bytes.
std::function<std::string()> Declared(std::uint32_t size) {
  return [size] { return RawZip({{"Project/big.erd", std::string(100, '\x03'), 0, size, 8}}); };
}

INSTANTIATE_TEST_SUITE_P(
    Cases, HostileArchiveTest,
    ::testing::Values(
        Hostile{"ParentFolder", OneEntry("../evil.txt"), "エントリー ../evil.txt はフォルダの外を指しています。"},
        Hostile{"ParentFolderInside", OneEntry("Project/../../evil.txt"),
                "エントリー Project/../../evil.txt はフォルダの外を指しています。"},
        Hostile{"Absolute", OneEntry("/tmp/evil.txt"), "エントリー /tmp/evil.txt はフォルダの外を指しています。"},
        Hostile{"LeadingBackslash", OneEntry("\\evil.txt"), "エントリー \\evil.txt はフォルダの外を指しています。"},
        Hostile{"DriveLetter", OneEntry("C:/evil.txt"), "エントリー C:/evil.txt はフォルダの外を指しています。"},
        Hostile{"BackslashClimbing", OneEntry("Project\\..\\..\\evil.txt"),
                "エントリー Project\\..\\..\\evil.txt はフォルダの外を指しています。"},
        Hostile{"SymbolicLink",
                [] {
                  return RawZip({{"Project/link", "/etc/passwd", std::nullopt, std::nullopt, 0, 0,
                                  (S_IFLNK | 0777u) << 16}});
                },
                "エントリー Project/link はシンボリックリンクです。"},
        Hostile{"SameNameTwice", [] { return RawZip({{"Project/User.dat", "a"}, {"Project/User.dat", "b"}}); },
                "エントリー Project/User.dat が二重にあります。"},
        Hostile{"SameNameOtherSeparatorAndCase",
                [] { return RawZip({{"Project/a.erd", "a"}, {"Project\\A.ERD", "b"}}); },
                "エントリー Project\\A.ERD が二重にあります。"},
        Hostile{"DeclaringGigabytes", Declared(3000000000u),
                "エントリー Project/big.erd までで展開後の大きさが 2147483648 バイトを超えます。"},
        Hostile{"PackedMoreThanAThousandToOne", Declared(1000000u),
                "エントリー Project/big.erd の圧縮率が 1000 倍を超えます。"},
        Hostile{"TooManyEntries",
                [] {
                  std::vector<RawEntry> entries;
                  for (int i = 0; i <= 10000; ++i) entries.push_back({"d" + std::to_string(i) + "/", ""});
                  return RawZip(entries);
                },
                "エントリーが 10001 個あります（10000 個まで）。"},
        Hostile{"BadCrc", [] { return RawZip({{"Project/User.dat", "hello", 0x12345678u}}); },
                "エントリー Project/User.dat の CRC が合いません。"},
        Hostile{"CutShort", [] { const std::string whole = RawZip({{"Project/User.dat", std::string(300, 'u')}});
                                 return whole.substr(0, whole.size() / 2); },
                "ZIP 書庫が途中で切れています。"},
        Hostile{"RandomBytes",
                [] {
                  std::string bytes;
                  for (unsigned i = 0; i < 4096; ++i) bytes += static_cast<char>((i * 2654435761u) >> 13);
                  return bytes;
                },
                "ZIP 形式のファイルではありません。"},
        Hostile{"EmptyFile", [] { return std::string(); }, "空のファイルです。プロジェクトファイルではありません。"}),
    [](const auto& info) { return std::string(info.param.Case); });

}  // namespace
}  // namespace velmora
