// User.dat: the whole file of a small project written line by line as worked out by hand, read back
// with the format's asymmetries, refused with a message that says where when it is malformed, and
// the deep compare of the project commands.
#include "report/user_data.h"

#include <gtest/gtest.h>

#include <functional>

#include "base/text_encoding.h"
#include "report/project_record.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using Lines = std::vector<std::string>;

const std::string kRuler = "*-------------------------------------------------------------------------------";
const std::string kIriComment =
    "'   Speed, Ks/Ms, Cs/Ms, Mu/Ms, Kt/Ms, Initialization distance for a custom filter, Power weighting(=0:ARS/=1:RMS)";
const std::string kInfoComment =
    " ) : 読み込みファイルタイプ(=0:ERD形式/=1:PMSファイル形式),  読み込みファイル名, 読み込みフルパスファイル名, 路線名, 計測日, コメント";

StudyTarget Study(std::string name, bool adjusted, std::vector<std::uint8_t> flags, std::vector<double> points,
                  std::vector<std::uint8_t> adjFlags, std::vector<double> adjPoints) {
  StudyTarget s;
  s.Name = std::move(name);
  s.Adjusted = adjusted;
  s.Flags = std::move(flags);
  s.Points = std::move(points);
  s.AdjFlags = std::move(adjFlags);
  s.AdjPoints = std::move(adjPoints);
  return s;
}

class UserDataTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.AppPath = "/opt/velmora";
    session.Paths.UserLocalPath = (dir_ / "local").string();
    existing = (dir_ / "b.erd").string();
    testing::WriteBytes(existing, "x");

    ProfileRecord a = testing::MakeProfile("a", 0.25, {1, 2});
    a.FilePath = "/opt/velmora/data/a.erd";
    a.RouteName = " 国道１号 ";
    a.MeasureDate = 45356;  // 2024-03-05: 45292 is 2024-01-01, then 31 + 29 days
    a.Comment = "一行目\r\n二行目";
    a.Studies.push_back(Study("山[厚]", true, {0, 1}, {10, 20}, {0, 2, 1}, {10, 15, 20}));
    a.Studies[0].PlanA = 1;
    a.Studies[0].PlanB = 2;
    a.Studies[0].PlanC = 3;
    a.Studies[0].PlanValue = 0.12345;
    a.Studies[0].PlanText = "text";
    a.Studies.push_back(Study("谷[間]", false, {1}, {5}, {}, {}));
    ProfileRecord b = testing::MakeProfile("b", 0.25, {3});
    b.FilePath = existing;
    b.RouteName = "b";
    b.MeasureDate = 0;
    project.Profiles.Items = Array1<ProfileRecord>(std::vector{a, b});

    conditions.FilterLong = 50;
    conditions.FilterShort = 10;
    conditions.Iri = {80, 63.3, 6, 0.15, 653, 5, 1, 10};
    conditions.RepairIri = {49.5, 0, 0, 0, 0, 0, 0, 10};
  }

  Lines Written() {
    bool replaced = true;
    Lines lines = UserDataLines(session.Paths, project, conditions, testing::Noon(), replaced);
    EXPECT_FALSE(replaced);
    return lines;
  }

  // The file as it should be, worked out from the layout column by column: fields joined by ", ",
  // each number right-aligned in the width of its pattern (15 for "########0.00000").
  Lines Expected() const {
    return {kRuler,
            "*         velmora",
            kRuler,
            "*  コメント行：",
            "*              ① 行頭1文字が半角アスタリスク(*)の場合はコメント行とする",
            "*              ② 行頭1文字が半角リテラル(')の場合はコメント行とする",
            "*              ③ 空白行の場合はコメント行とする",
            kRuler,
            "[VER]",
            "0.1.0",
            "",
            "[DATE]",
            "2024/03/05 12:00:00",
            "",
            kRuler,
            "*    プロファイル・緒元",
            kRuler,
            "[PROFILE_NUM]",
            "' プロファイル数",
            "         2",
            "",
            "[PROFILE_INFO]",
            "' ( 1" + kInfoComment,
            "    0, a.erd, $(AppPath)/data/a.erd, 国道１号, 2024/03/05 00:00:00, 一行目｜二行目",
            "",
            "' ( 2" + kInfoComment,
            "    0, b.erd, " + existing + ", b, 1899/12/30 00:00:00, ",
            "",
            kRuler,
            "*    M波・検討データ",
            kRuler,
            "[M波検討データ]",
            "2",
            "山[厚],1",
            "3,0,2,1",
            "3,10,15,20",
            "谷[間],0",
            "1,1",
            "1,5",
            "0",
            kRuler,
            "*    M波・補修計画",
            kRuler,
            "[M波補修計画データ]",
            "2",
            "山[厚],1,1,2,3,0.1235,text",
            "3,0,2,1",
            "3,10,15,20",
            "谷[間],0,0,0,0,0.0000,",
            "0",
            "0",
            "0",
            kRuler,
            "*    計算計算条件",
            kRuler,
            "[FILTER]",
            "'   Long CutOff Wavelength, Short CutOff Wavelength",
            "    50,     10",
            "",
            "[IRI]",
            kIriComment,
            "       80.00000,        63.30000,         6.00000,         0.15000,       653.00000,         5.00000,      1",
            "",
            "[補修形状検討_IRI]",
            kIriComment,
            "       49.50000,         0.00000,         0.00000,         0.00000,         0.00000,         0.00000,      0",
            ""};
  }

  // Reads `lines` into a fresh record and conditions whose evaluation lengths are 10 m.
  void Parse(const Lines& lines) {
    read = ProjectRecord{};
    readConditions = CalcConditions{};
    readConditions.Iri.IriBaseLength = readConditions.RepairIri.IriBaseLength = 10;
    ParseUserData(lines, session.Paths, read, readConditions);
  }

  std::string existing;
  ProjectRecord project;
  CalcConditions conditions;
  ProjectRecord read;
  CalcConditions readConditions;
};

TEST_F(UserDataTest, WritesTheWholeFileAsLaidOut) {
  const Lines lines = Written();
  const Lines expected = Expected();
  ASSERT_EQ(lines.size(), expected.size());
  for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(lines[i], expected[i]) << "line " << i + 1;
}

TEST_F(UserDataTest, ReadsBackWithTheNameLineWholeAndTheAdjustedListsAsTheCalculatedOnes) {
  Parse(Written());
  EXPECT_EQ(std::tuple(read.VerMajor, read.VerMinor, read.VerRevision), std::tuple(0, 1, 0));
  ASSERT_EQ(read.Profiles.Count(), 2);
  const ProfileRecord& a = read.Profiles.Items[1];
  EXPECT_EQ(std::tuple(a.SourceType, a.FileName, a.RouteName, a.MeasureDate, a.Comment),
            std::tuple(0, std::string("a.erd"), std::string("国道１号"), 45356, std::string("一行目\r\n二行目")));
  EXPECT_EQ(a.FilePath, "") << "/opt/velmora/data/a.erd is not there";
  EXPECT_EQ(read.Profiles.Items[2].FilePath, existing);
  EXPECT_EQ(read.Profiles.Items[2].MeasureDate, 0);
  ASSERT_EQ(a.Studies.size(), 2u);
  EXPECT_EQ(a.Studies[0].Name, "山[厚],1");
  EXPECT_EQ(a.Studies[0].Flags, (std::vector<std::uint8_t>{0, 2, 1}));
  EXPECT_EQ(a.Studies[0].Points, (std::vector<double>{10, 15, 20}));
  EXPECT_FALSE(a.Studies[0].Adjusted);
  EXPECT_TRUE(a.Studies[0].AdjPoints.empty());
  EXPECT_EQ(a.Studies[1].Name, "谷[間],0");
  EXPECT_EQ(a.Studies[1].Points, (std::vector<double>{5}));
  EXPECT_TRUE(read.Profiles.Items[2].Studies.empty());
  // The plan data are write-only: nothing of them comes back.
  EXPECT_EQ(std::tuple(a.Studies[0].PlanA, a.Studies[0].PlanText), std::tuple(0, std::string()));
  EXPECT_EQ(readConditions.FilterLong, 50);
  EXPECT_EQ(readConditions.FilterShort, 10);
  EXPECT_EQ(readConditions.Iri, conditions.Iri);
  EXPECT_EQ(readConditions.RepairIri, conditions.RepairIri);
}

TEST_F(UserDataTest, FreeTextsWithACommaAreWrittenFullWidthAndTheUserIsToldOnce) {
  project.Profiles.Items[1].RouteName = "a,b";
  project.Profiles.Items[1].Comment = "c,d";
  const auto path = dir_ / "User.dat";
  ASSERT_TRUE(funWriteUserData(session, path.string(), project, conditions));
  testing::ExpectMessages(ui_, {{"テキストに含まれる半角カンマ（,）は全角カンマ（，）に置き換えて保存しました。", "確認",
                                 MsgIcon::Information}});
  const std::string bytes = testing::ReadBytes(path);
  EXPECT_NE(bytes.find("a\x81\x43" "b, "), std::string::npos) << "\"，\" is 0x8143 in Shift-JIS";
  std::size_t lineEnds = 0;
  for (std::size_t at = bytes.find('\n'); at != std::string::npos; at = bytes.find('\n', at + 1), ++lineEnds)
    ASSERT_EQ(bytes[at - 1], '\r');
  EXPECT_EQ(lineEnds, Expected().size());
  Parse(ReadSystemTextLines(path));
  EXPECT_EQ(read.Profiles.Items[1].RouteName, "a，b");
}

TEST_F(UserDataTest, ABarInACommentComesBackAsALineBreakAndLoneBreaksAreKeptOnTheLine) {
  project.Profiles.Items[1].Comment = "a｜b\nc\rd";
  const Lines lines = Written();
  EXPECT_EQ(lines[23], "    0, a.erd, $(AppPath)/data/a.erd, 国道１号, 2024/03/05 00:00:00, a｜b｜c｜d");
  Parse(lines);
  EXPECT_EQ(read.Profiles.Items[1].Comment, "a\r\nb\r\nc\r\nd");
}

TEST_F(UserDataTest, LinesTheReaderPassesOverAndSectionsItDoesNotRead) {
  Lines lines = Written();
  lines[13] = "; a remark the main loop skips";
  lines.insert(lines.begin() + 55, "' a comment between sections, an unknown word to the main loop");
  lines[12] = "not a date at all";                   // [DATE] is write-only
  lines[45 + 0] = "anything, at all, in the plan data";  // so is [M波補修計画データ]
  lines.insert(lines.begin() + 8, {"[user]", "  the user text  ", "[NEWER_SECTION]", "1, 2, 3", "4"});
  Parse(lines);
  EXPECT_EQ(read.User, "the user text");
  EXPECT_EQ(read.Profiles.Count(), 2);
  EXPECT_EQ(readConditions.Iri, conditions.Iri);
}

TEST(UserDataLineInput, SkipsBlankAndCommentLinesAndEndsEmpty) {
  const Lines lines{"", "  ' quoted", "* starred", "   ", "  data  ", "; not skipped here"};
  UserDataCursor cursor{lines};
  EXPECT_EQ(uLineInput(cursor), "data");
  EXPECT_EQ(uLineInput(cursor), "; not skipped here");
  EXPECT_EQ(uLineInput(cursor), "");
}

TEST_F(UserDataTest, ALaterMajorOrMinorVersionIsRefusedALaterRevisionIsRead) {
  for (const auto& [version, refused] : std::vector<std::pair<std::string, std::string>>{
           {"0.1.9", ""}, {"0.0.3", ""}, {"0.2.0", "0.2"}, {"1.0.0", "1.0"}}) {
    Lines lines = Written();
    lines[9] = version;
    try {
      Parse(lines);
      EXPECT_EQ(refused, "") << version;
    } catch (const UserDataError& error) {
      EXPECT_TRUE(error.NewerVersion());
      EXPECT_EQ(error.what(), "指定されたファイルのバージョンが違います。\r\nVER. " + refused +
                                  " 以上のプログラムを入手してください。");
    }
  }
}

struct Malformed {
  const char* Case;
  std::function<void(Lines&)> Change;
  std::string Message;
};

class UserDataMalformedTest : public UserDataTest, public ::testing::WithParamInterface<Malformed> {};

TEST_P(UserDataMalformedTest, IsRefusedWithTheLineAndWhatIsWrong) {
  Lines lines = Written();
  GetParam().Change(lines);
  try {
    Parse(lines);
    ADD_FAILURE() << "read without complaint";
  } catch (const UserDataError& error) {
    EXPECT_FALSE(error.NewerVersion());
    EXPECT_EQ(error.what(), GetParam().Message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, UserDataMalformedTest,
    ::testing::Values(
        Malformed{"ProfileLineWithTooManyFields",
                  [](Lines& l) { l[23] = "    0, a.erd, x, r, 2024/03/05 00:00:00, c, extra"; },
                  "24 行目：項目の数が 7 個です（6 個のはずです）。"},
        Malformed{"ProfileLineWithTooFewFields", [](Lines& l) { l[23] = "    0, a.erd, x"; },
                  "24 行目：項目の数が 3 個です（6 個のはずです）。"},
        Malformed{"IriLineWithTooFewFields", [](Lines& l) { l[61] = "80, 1"; },
                  "62 行目：項目の数が 2 個です（7 個のはずです）。"},
        Malformed{"FilterValueNotANumber", [](Lines& l) { l[57] = "abc, 10"; }, "58 行目：数値ではありません：abc"},
        Malformed{"DateThatIsNoDate", [](Lines& l) { l[23] = "    0, a.erd, x, r, 2024/13/05 00:00:00, c"; },
                  "24 行目：日付ではありません：2024/13/05 00:00:00"},
        Malformed{"FileNameWithAFolder", [](Lines& l) { l[23] = "    0, ../a.erd, x, r, 2024/03/05, c"; },
                  "24 行目：ファイル名ではありません：../a.erd"},
        Malformed{"ProfileCountAboveTheLines", [](Lines& l) { l[19] = "3"; },
                  "32 行目：項目の数が 1 個です（6 個のはずです）。"},
        Malformed{"ProfileCountBelowTheLines", [](Lines& l) { l[19] = "1"; }, "27 行目：件数より多い行があります。"},
        Malformed{"ProfileCountWithoutItsSection", [](Lines& l) { l[21] = "[OTHER]"; }, "20 行目：[PROFILE_INFO] がありません。"},
        Malformed{"NegativeCount", [](Lines& l) { l[19] = "-1"; }, "20 行目：整数 0～67 ではありません：-1"},
        Malformed{"FlagCountNotMatchingItsLine", [](Lines& l) { l[34] = "4,0,2,1"; },
                  "35 行目：項目の数が 4 個です（5 個のはずです）。"},
        Malformed{"FlagOutsideAByte", [](Lines& l) { l[34] = "3,0,256,1"; }, "35 行目：整数 0～255 ではありません：256"},
        Malformed{"StudyCountAboveTheStudies", [](Lines& l) { l[32] = "3"; },
                  "44 行目：数値ではありません：[M波補修計画データ]"},
        Malformed{"StudyCountBelowTheStudies", [](Lines& l) { l[32] = "1"; }, "37 行目：数値ではありません：谷[間],0"},
        Malformed{"FileEndingInsideTheStudies", [](Lines& l) { l.resize(35); }, "36 行目：ファイルが途中で終わっています。"},
        Malformed{"VersionWithTwoParts", [](Lines& l) { l[9] = "0.1"; }, "10 行目：バージョンではありません：0.1"}),
    [](const auto& info) { return std::string(info.param.Case); });

TEST_F(UserDataTest, ReadingAMissingOrMalformedFileTellsTheUserAndGivesFalse) {
  const std::string missing = (dir_ / "none" / "User.dat").string();
  EXPECT_FALSE(funReadUserData(session, missing, read, readConditions));
  const auto path = dir_ / "User.dat";
  Lines lines = Written();
  lines[57] = "50";
  WriteSystemTextFile(path, lines);
  EXPECT_FALSE(funReadUserData(session, path.string(), read, readConditions));
  testing::ExpectMessages(ui_, {{"ファイル名：" + missing + "\r\n\r\n確認してください。", std::nullopt, MsgIcon::Information},
                                {"プロジェクトファイルの内容が正しくありません。\r\n\r\nファイル名：" + path.string() +
                                     "\r\n\r\n58 行目：項目の数が 1 個です（2 個のはずです）。",
                                 "プロジェクトの読込", MsgIcon::Exclamation}});
}

// ---- the deep compare ----

TEST(ProjectChanged, ComparesTheFieldsTheFileKeepsWithTheToleranceForFloatsAndExactSamples) {
  ProjectRecord base;
  base.Profiles.Items = Array1<ProfileRecord>(std::vector{testing::MakeProfile("a", 0.25, {1, 2, 3}, 12.5)});
  const std::vector<std::pair<const char*, std::function<void(ProfileRecord&)>>> changes{
      {"FileName", [](ProfileRecord& p) { p.FileName = "b.erd"; }},
      {"NumSamplesHeader", [](ProfileRecord& p) { p.Erd.NumSamplesHeader = 4; }},
      {"StepSize", [](ProfileRecord& p) { p.Erd.StepSize += 1e-6; }},
      {"Title", [](ProfileRecord& p) { p.Erd.Title = "x"; }},
      {"ShortName", [](ProfileRecord& p) { p.Erd.ShortName[2] = "RElev."; }},
      {"UnitsName", [](ProfileRecord& p) { p.Erd.UnitsName[1] = "cm"; }},
      {"Sample", [](ProfileRecord& p) { p.Erd.Elevation[2] += 1e-12; }},
      {"KpStart", [](ProfileRecord& p) { p.Erd.KpStart += 1e-6; }},
      {"Lane", [](ProfileRecord& p) { p.Erd.Lane = -1; }},
      {"KpSign", [](ProfileRecord& p) { p.Erd.KpSign = 1; }},
      {"RouteName", [](ProfileRecord& p) { p.RouteName = "r"; }},
      {"MeasureDate", [](ProfileRecord& p) { p.MeasureDate = 1; }},
      {"Comment", [](ProfileRecord& p) { p.Comment = "c"; }},
  };
  for (const auto& [field, change] : changes) {
    ProjectRecord other = base;
    change(other.Profiles.Items[1]);
    EXPECT_TRUE(ProjectChanged(base, other)) << field;
  }
  const std::vector<std::pair<const char*, std::function<void(ProfileRecord&)>>> same{
      {"StepSize within 1e-9", [](ProfileRecord& p) { p.Erd.StepSize += 1e-12; }},
      {"KpStart within 1e-9", [](ProfileRecord& p) { p.Erd.KpStart -= 1e-12; }},
      {"working samples", [](ProfileRecord& p) { p.WorkProfile[1] = 99; }},
      {"studies", [](ProfileRecord& p) { p.Studies.emplace_back(); }},
  };
  for (const auto& [field, change] : same) {
    ProjectRecord other = base;
    change(other.Profiles.Items[1]);
    EXPECT_FALSE(ProjectChanged(base, other)) << field;
  }
  ProjectRecord longer = base;
  longer.Profiles.Items.resize(2);
  EXPECT_TRUE(ProjectChanged(base, longer));
  EXPECT_FALSE(ProfilesChanged(base.Profiles, PersistentCopy(base.Profiles)));
  EXPECT_TRUE(PersistentCopy(base.Profiles).Items[1].WorkProfile.empty());
}

}  // namespace
}  // namespace velmora
