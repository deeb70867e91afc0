// Profiles as profilers write them: multi-channel ERD and Texas-style .PRO files made here for every
// unit and every fault, and the measured files beside the repository when they are there. Expected
// heights are the written values times the exact unit (1 ft = 304.8 mm, 1 in = 25.4 mm).
#include "profile/channel_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "profile/erd_file.h"
#include "support/test_support.h"

namespace velmora {
namespace {

class ChannelFileTest : public testing::SessionTest {
 protected:
  std::string Write(const std::string& name, const std::string& text) {
    const auto path = dir_ / name;
    testing::WriteBytes(path, text);
    return path.string();
  }
  // A two-channel ERD of `rows` with the given units (the real files' layout: keys in eight columns,
  // one field of eight per channel).
  std::string Erd(const std::string& heightUnit, const std::string& distanceUnit, const std::string& step,
                  const std::string& rows, const std::string& count = "2", const std::string& extra = "") {
    return Write("road.erd", "ERDFILEV2.00\r\n      2,      " + count + ",     -1,      1,      5,   " + step +
                                 ",     -1,\r\nTITLE   Track run\r\nSHORTNAMLElev.  RElev.  \r\nUNITSNAM" + heightUnit +
                                 std::string(8 - heightUnit.size(), ' ') + heightUnit + "\r\nXUNITS  " + distanceUnit +
                                 "\r\n" + extra + "END     \r\n" + rows);
  }
};

// The value 100 written in each height unit, in mm by hand; a step of 3 in each distance unit, in m.
const struct { const char* name; double millimetres; } kHeightUnits[] = {
    {"ft", 30480.0}, {"FEET", 30480.0}, {"in", 2540.0}, {"mil", 2.54}, {"mm", 100.0}, {"cm", 1000.0}, {"m", 100000.0}};
const struct { const char* name; double metres; } kDistanceUnits[] = {
    {"ft", 0.9144}, {"FT", 0.9144}, {"in", 0.0762}, {"i", 0.0762}, {"m", 3.0}};

// Rows "0 0" and "100 -50": the second sample in mm, the pitch and the length in m.
void ExpectConverted(const ChannelFile& file, double millimetres, double metres) {
  ASSERT_EQ(file.ChannelCount(), 2);
  ASSERT_EQ(file.SampleCount(), 2);
  EXPECT_EQ(file.Heights[0][0], 0.0);
  EXPECT_NEAR(file.Heights[0][1], millimetres, 1e-13 * millimetres);
  EXPECT_NEAR(file.Heights[1][1], -millimetres / 2, 1e-13 * millimetres);
  EXPECT_NEAR(file.Pitch, metres, 1e-15);
  EXPECT_NEAR(file.Length(), metres, 1e-15);
}

TEST_F(ChannelFileTest, ErdHeightsAndPitchComeOutInMillimetresAndMetresForEveryUnit) {
  for (const auto& height : kHeightUnits)
    for (const auto& distance : kDistanceUnits) {
      SCOPED_TRACE(std::string(height.name) + " / " + distance.name);
      ExpectConverted(ReadChannelFile(Erd(height.name, distance.name, "3", "0 0\r\n100 -50\r\n")), height.millimetres,
                      distance.metres);
    }
}

TEST_F(ChannelFileTest, ThreeChannelsTakeTheirOwnUnitsScaleFactorsAndWheelPaths) {
  const std::string path = Write(
      "lane.erd",
      "ERDFILEV2.00\r\n3, 2, -1, 1, 5, 0.025, -1,\r\nTITLE   Lane 2\r\nSHORTNAMLElev.  CElev.  RElev.  \r\n"
      "UNITSNAMmm      in      m       \r\nSCALFACT2       1       0.5\r\nXUNITS  m\r\nDATE    03/01/2001\r\n"
      "IRILWP  1.20\r\nIRIRWP  1.35\r\nEND\r\n1 1 1\r\n\r\n-0.5 2, 0.5\r\n");
  const ChannelFile file = ReadChannelFile(path);
  ASSERT_EQ(file.ChannelCount(), 3);
  EXPECT_EQ(file.SampleCount(), 2);  // the blank line is no sample
  EXPECT_EQ(file.Heights[0], (std::vector<double>{2.0, -1.0}));          // mm × 2
  EXPECT_EQ(file.Heights[1], (std::vector<double>{25.4, 50.8}));         // in
  EXPECT_EQ(file.Heights[2], (std::vector<double>{500.0, 250.0}));       // m × 0.5
  EXPECT_EQ(file.Title, "Lane 2");
  EXPECT_EQ(file.Info.front(), (std::pair<std::string, std::string>{"DATE", "03/01/2001"}));
  EXPECT_EQ(file.HeaderIris().size(), 2u);
  EXPECT_EQ(file.HeaderIris()[1].second, "1.35");
  EXPECT_EQ(ChannelProfileName(file, 1), "lane_L");
  EXPECT_EQ(ChannelProfileName(file, 2), "lane_C");
  EXPECT_EQ(ChannelProfileName(file, 3), "lane_R");
  EXPECT_EQ(ChosenChannels(file, std::nullopt), (std::vector<std::int32_t>{1, 2, 3}));
  EXPECT_EQ(ChosenChannels(file, 2), (std::vector<std::int32_t>{2}));

  const ErdRecord right = ChannelRecord(file, 3);
  EXPECT_EQ(right.Title, "Lane 2 R (lane.erd)");
  EXPECT_EQ(right.ShortName[1], "RElev.");
  EXPECT_EQ(right.NumChannels, 1);
  EXPECT_EQ(right.StepSize, 0.025);
  EXPECT_EQ(right.Elevation, (Array1<double>{500.0, 250.0}));
}

TEST(WheelPathTest, TheNameSaysWhichPathOrNothing) {
  const struct { const char* name; const char* path; } cases[] = {
      {"LElev.", "L"}, {"RElev.", "R"}, {"CElev.", "C"}, {"Left", "L"}, {"right wheel", "R"}, {"Centre", "C"},
      {"L", "L"}, {"R.", "R"}, {"LWP", "L"}, {"Roughness", ""}, {"Lat", ""}, {"Elev", ""}, {"", ""}};
  for (const auto& c : cases) EXPECT_EQ(WheelPath(c.name), c.path) << c.name;
}

TEST_F(ChannelFileTest, ChannelsWithoutWheelPathsAreNumbered) {
  const ChannelFile file = ReadChannelFile(
      Write("two.erd", "ERDFILEV2.00\r\n2, 1, -1, 1, 5, 0.1, -1,\r\nSHORTNAMElev1   Elev2   \r\nUNITSNAMmm mm\r\n"
                       "XUNITS  m\r\nEND\r\n1 2\r\n"));
  EXPECT_EQ(ChannelProfileName(file, 1), "two_1");
  EXPECT_EQ(ChannelProfileName(file, 2), "two_2");
  EXPECT_EQ(ChannelRecord(file, 2).Title, "two Elev2 (two.erd)");  // no TITLE: the file's name
}

TEST_F(ChannelFileTest, ProPitchAndUnitsComeFromItsHeader) {
  for (const auto& height : kHeightUnits)
    for (const auto& distance : kDistanceUnits) {
      SCOPED_TRACE(std::string(height.name) + " / " + distance.name);
      // The first row carries GPS fields behind the flag, as the profiler writes it.
      const ChannelFile file = ReadChannelFile(
          Write("run.PRO", std::string("HEAD3,12182015,14\r\nCMET3,RSP\r\nDynatest,") + height.name + ",LR,3," +
                               distance.name + "\r\n30.4,-97.5\r\nComment\r\n0,0,0,30.4,-97.5\r\n100,-50,0\r\n"));
      EXPECT_EQ(file.Format, "PRO");
      ExpectConverted(file, height.millimetres, distance.metres);
      EXPECT_EQ(ChannelProfileName(file, 2), "run_R");
    }
}

// Each fault: the file, the line and what is wrong.
TEST_F(ChannelFileTest, BrokenFilesNameTheLineAndTheFault) {
  const std::string erdHead = "ERDFILEV2.00\r\n2, 2, -1, 1, 5, 0.1, -1,\r\nSHORTNAMLElev.  RElev.  \r\n";
  const std::string erdUnits = "UNITSNAMmm      mm      \r\nXUNITS  m\r\nEND\r\n";
  const std::string proHead = "HEAD3,1\r\nCMET3,2\r\n";
  const std::string proTail = "\r\nGPS\r\nComment\r\n";
  const struct {
    const char* name;
    std::string text;
    std::int32_t line;
    const char* problem;
  } cases[] = {
      {"FewerValuesThanChannels", erdHead + erdUnits + "1 2\r\n3\r\n", 8, "値が 1 個ありますが、チャンネル数は 2 です"},
      {"MoreValuesThanChannels", erdHead + erdUnits + "1 2 3\r\n4 5\r\n", 7, "値が 3 個ありますが、チャンネル数は 2 です"},
      {"CountDisagreesWithTheData", erdHead + erdUnits + "1 2\r\n3 4\r\n5 6\r\n", 2,
       "ヘッダーのデータ件数 2 が実データ件数 3 と合いません"},
      {"UnknownHeightUnit", erdHead + "UNITSNAMmm      furlong \r\nXUNITS  m\r\nEND\r\n1 2\r\n3 4\r\n", 4,
       "単位 \"furlong\" は知られていません"},
      {"UnknownDistanceUnit", erdHead + "UNITSNAMmm      mm      \r\nXUNITS  yd\r\nEND\r\n1 2\r\n3 4\r\n", 5,
       "単位 \"yd\" は知られていません"},
      {"NotFinite", erdHead + erdUnits + "1 nan\r\n3 4\r\n", 7, "\"nan\" は有限の数ではありません"},
      {"NotANumber", erdHead + erdUnits + "1 2\r\n3 x4\r\n", 8, "\"x4\" は数値ではありません"},
      {"FourChannels", "ERDFILEV2.00\r\n4, 2, -1, 1, 5, 0.1, -1,\r\nEND\r\n", 2, "チャンネル数 4 は読めません（1 から 3）"},
      {"BinaryFormatCode", "ERDFILEV2.00\r\n2, 2, -1, 1, 2, 0.1, -1,\r\nEND\r\n", 2, "書式コード 2 は読めません（テキストの 5 のみ）"},
      {"ZeroPitch", "ERDFILEV2.00\r\n2, 2, -1, 1, 5, 0, -1,\r\nEND\r\n", 2, "ピッチ 0 が正の数ではありません"},
      {"NoEnd", erdHead + "UNITSNAMmm      mm      \r\n", 4, "END の行がありません"},
      {"NoUnits", erdHead + "XUNITS  m\r\nEND\r\n1 2\r\n", 5, "UNITSNAM の行がありません"},
      {"NoSamples", erdHead + erdUnits, 6, "データがありません"},
      {"ProFewerValuesThanChannels", proHead + "D,mil,LCR,3,i" + proTail + "1,2,3\r\n1,2\r\n", 7,
       "値が 2 個ありますが、チャンネル数は 3 です"},
      {"ProUnknownHeightUnit", proHead + "D,furlong,LR,3,i" + proTail + "1,2\r\n", 3, "単位 \"furlong\" は知られていません"},
      {"ProUnknownIntervalUnit", proHead + "D,mil,LR,3,yd" + proTail + "1,2\r\n", 3, "単位 \"yd\" は知られていません"},
      {"ProNegativeInterval", proHead + "D,mil,LR,-3,i" + proTail + "1,2\r\n", 3, "ピッチ -3 が正の数ではありません"},
      {"ProFourChannels", proHead + "D,mil,LRCX,3,i" + proTail + "1,2,3,4\r\n", 3, "チャンネル数 4 は読めません（1 から 3）"},
      {"ProEmptyValue", proHead + "D,mil,LR,3,i" + proTail + "1,2\r\n,2\r\n", 7, "値が空です"},
      {"ProInfinite", proHead + "D,mil,LR,3,i" + proTail + "1,2\r\ninf,2\r\n", 7, "\"inf\" は有限の数ではありません"},
      {"ProShortHeader", "HEAD3,1\r\nCMET3,2\r\n", 2, "ヘッダーが途中で終わっています"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string path = Write(c.name, c.text);
    try {
      ReadChannelFile(path);
      ADD_FAILURE() << "read without a word";
    } catch (const ChannelFileError& error) {
      EXPECT_EQ(error.Path(), path);
      EXPECT_EQ(error.Line(), c.line);
      EXPECT_EQ(error.Problem(), c.problem);
      EXPECT_EQ(std::string(error.what()), path + ":" + std::to_string(c.line) + ": " + c.problem);
    }
  }
}

TEST_F(ChannelFileTest, AChannelTheFileLacksIsRefusedAtTheLineThatDeclaresThem) {
  const ChannelFile erd = ReadChannelFile(Erd("mm", "m", "0.1", "1 2\r\n", "1"));
  const ChannelFile pro = ReadChannelFile(Write("run.PRO", "HEAD3\r\nCMET3\r\nD,mil,L,3,i\r\nGPS\r\nComment\r\n5\r\n"));
  const struct { const ChannelFile* file; std::int32_t channel; std::int32_t line; const char* problem; } cases[] = {
      {&erd, 3, 2, "チャンネル 3 はありません（チャンネル数 2）"},
      {&erd, 0, 2, "チャンネル 0 はありません（チャンネル数 2）"},
      {&pro, 2, 3, "チャンネル 2 はありません（チャンネル数 1）"}};
  for (const auto& c : cases) {
    try {
      ChosenChannels(*c.file, c.channel);
      ADD_FAILURE() << c.channel;
    } catch (const ChannelFileError& error) {
      EXPECT_EQ(error.Line(), c.line);
      EXPECT_EQ(error.Problem(), c.problem);
    }
  }
}

TEST_F(ChannelFileTest, TheFormatIsKnownByTheContentNotTheName) {
  EXPECT_EQ(DetectChannelFormat(Write("a.txt", "ERDFILEV2.00\r\n")), ChannelFormat::Erd);
  EXPECT_EQ(DetectChannelFormat(Write("b.erd", "HEAD3,1,2\r\n")), ChannelFormat::Pro);
  EXPECT_EQ(DetectChannelFormat(Write("c.erd", "left,right\r\n1,2\r\n")), ChannelFormat::None);
  EXPECT_EQ(DetectChannelFormat(Write("d.csv", "HEADING,LEFT\r\n1,2\r\n")), ChannelFormat::None);
  EXPECT_EQ(DetectChannelFormat((dir_ / "missing.erd").string()), ChannelFormat::None);
}

TEST_F(ChannelFileTest, EachChannelIsWrittenAsAnErdTheProgramReadsBack) {
  const ChannelFile file = ReadChannelFile(Erd("ft", "ft", "0.5", "1 -1\r\n2 0.5\r\n"));
  ProfileList list;
  list.Views[0].Rows.push_back("road_L");  // taken: the new left path gets the next free name
  const auto written = WriteChannelProfiles(session, {file, file}, {{1, 2}, {2}}, list);
  ASSERT_EQ(written.size(), 3u);
  EXPECT_EQ(std::filesystem::path(written[0]).filename(), "road_L(001).ERD");
  EXPECT_EQ(std::filesystem::path(written[1]).filename(), "road_R.ERD");
  EXPECT_EQ(std::filesystem::path(written[2]).filename(), "road_R(001).ERD");
  ErdRecord right;
  ASSERT_TRUE(ReadERD(session, written[1], right));
  EXPECT_EQ(right.Title, "Track run R (road.erd)");
  EXPECT_EQ(right.Elevation, (Array1<double>{-304.8, 152.4}));
  EXPECT_EQ(right.StepSize, 0.1524);
  EXPECT_EQ(right.ShortName[1], "RElev.");
}

// The measured files: basic.erd against its one-path copies in mm made beside it, Test_Run1.PRO
// against its header and its first rows.
TEST(MeasuredChannelFileTest, BasicErdGivesBothWheelPathsInMillimetres) {
  const auto data = testing::SharedDataDir();
  if (!std::filesystem::exists(data / "freevryheid_iri" / "basic.erd")) GTEST_SKIP() << "no measured profiles here";
  const ChannelFile file = ReadChannelFile((data / "freevryheid_iri" / "basic.erd").string());
  ASSERT_EQ(file.ChannelCount(), 2);
  ASSERT_EQ(file.SampleCount(), 25544);
  EXPECT_EQ(file.Pitch, 0.2069167 * 0.3048);
  EXPECT_EQ(file.Title, "Track Run E1");
  EXPECT_EQ(ChannelProfileName(file, 1), "basic_L");
  EXPECT_EQ(ChannelProfileName(file, 2), "basic_R");
  const auto iris = file.HeaderIris();
  ASSERT_EQ(iris.size(), 2u);
  EXPECT_EQ(iris[0], (std::pair<std::string, std::string>{"IRILWP", "183"}));
  EXPECT_EQ(iris[1], (std::pair<std::string, std::string>{"IRIRWP", "163"}));
  EXPECT_NEAR(file.Heights[0][0], -0.000037 * 304.8, 1e-15);
  EXPECT_NEAR(file.Heights[1][25543], 0.685689 * 304.8, 1e-12);

  Session quiet;
  const char* copies[] = {"basic_left_mm.erd", "basic_right_mm.erd"};
  for (int c = 0; c < 2; ++c) {
    ErdRecord copy;
    if (!std::filesystem::exists(data / "derived" / copies[c])) continue;
    ASSERT_TRUE(ReadERD(quiet, (data / "derived" / copies[c]).string(), copy));
    ASSERT_EQ(copy.Elevation.size(), 25544);
    for (std::ptrdiff_t i = 1; i <= copy.Elevation.size(); ++i)
      ASSERT_NEAR(file.Heights[c][i - 1], copy.Elevation[i], 1e-6) << copies[c] << " " << i;
  }
}

TEST(MeasuredChannelFileTest, TexasProfileTakesPitchAndUnitsFromItsHeader) {
  const auto path = testing::SharedDataDir() / "freevryheid_iri" / "Test_Run1.PRO";
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "no measured profiles here";
  const ChannelFile file = ReadChannelFile(path.string());
  EXPECT_EQ(file.Format, "PRO");
  ASSERT_EQ(file.ChannelCount(), 2);
  EXPECT_EQ(file.SampleCount(), 159131);  // 159136 lines less the five of the header
  EXPECT_NEAR(file.Pitch, 0.0762, 1e-15);  // 3 in
  EXPECT_EQ(file.HeightUnits[0], "mil");
  EXPECT_EQ(file.ChannelNames, (std::vector<std::string>{"L", "R"}));
  // First row "-427,15,0,<GPS>", last "2991,985,0"; 1 mil = 0.0254 mm.
  EXPECT_NEAR(file.Heights[0][0], -10.8458, 1e-12);
  EXPECT_NEAR(file.Heights[1][0], 0.381, 1e-12);
  EXPECT_NEAR(file.Heights[0].back(), 75.9714, 1e-12);
  EXPECT_NEAR(file.Heights[1].back(), 25.019, 1e-12);
  EXPECT_NEAR(file.Length(), 159130 * 0.0762, 1e-9);
}

}  // namespace
}  // namespace velmora
