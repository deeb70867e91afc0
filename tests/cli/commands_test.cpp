// The commands end to end on tiny profiles written here and on the bundled examples: exit status, what
// is printed and which files the options ask for. The numbers in the files are the engine's and the
// report's, checked there; here only that the run reaches them.
#include <filesystem>
#include <regex>

#include "cli_fixture.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using testing::CliTest;
using testing::ExpectHeads;
using testing::Fields;
using testing::Ramp;
using testing::Road;
using testing::Texts;
using testing::WriteBytes;

TEST_F(CliTest, SummaryNamesTheStrongestOctave) {
  ASSERT_EQ(Run("summary " + WriteErd("sine", testing::OctaveFiveSine(), 0.05)), 0) << Stderr();
  EXPECT_EQ(Stdout().rfind("Profile  Length(m)  Pitch(m)  IRI(mm/m)  IRI100m-mean(mm/m)", 0), 0u) << Stdout();
  EXPECT_NE(Stdout().find("  OCT-5 ("), std::string::npos) << Stdout();
}

TEST_F(CliTest, OctaveWritesTheFilesItsFlagsAskForAndPsdItsSpectrum) {
  const std::string sine = WriteErd("sine", testing::OctaveFiveSine(), 0.05);
  ASSERT_EQ(Run("octave " + sine + " --bands 5,9 --sum --long --short"), 0) << Stderr();
  ExpectHeads(Written(), {"sine_Octave5_", "sine_Octave9_", "sine_Octave_", "sine_Octave合算値_", "sine_Octave短波長_",
                          "sine_Octave長波長_"});
  EXPECT_EQ(LinesOf("_Octave_").size(), 1025u);  // a head line and one line per sample

  ASSERT_EQ(Run("psd " + sine + " --window hanning", "psd"), 0) << Stderr();
  EXPECT_EQ(LinesOf("_PSD_", "psd")[0], "波長(m/cycle), 周期(cycle/m), PSD(m^2-m/cycle)");
}

TEST_F(CliTest, ReductionTakesItsLinesFromTheFlagOrFromTheSettings) {
  const std::string sine = WriteErd("sine", testing::OctaveFiveSine(), 0.05);
  ASSERT_EQ(Run("reduce " + sine + " --lines ',,,,1,,,,' --bands 5 --sum --long --short"), 0) << Stderr();
  EXPECT_EQ(Stdout().rfind("sine\treduced profile ", 0), 0u) << Stdout();
  ExpectHeads(Written(), {"sine_バンド別低減_2", "sine_バンド別低減_Octave5_", "sine_バンド別低減_Octave合算値_",
                          "sine_バンド別低減_Octave短波長_", "sine_バンド別低減_Octave長波長_"});
  const Texts head = Fields(LinesOf("_バンド別低減_2")[0]);
  EXPECT_EQ(head[5], "OCT-5(1.000)(mm)");
  EXPECT_EQ(head[4], "OCT-4(99999.000)(mm)");

  // Without --lines the limits are the lines of Default.ini.
  ASSERT_EQ(Run("reduce " + sine, "default"), 0) << Stderr();
  EXPECT_EQ(LinesOf("_バンド別低減_", "default")[0].rfind(
                "Distance(m), OCT-1(12.000)(mm), OCT-2(8.000)(mm), OCT-3(5.000)(mm), OCT-4(3.000)(mm), OCT-5(2.000)(mm), "
                "OCT-6(1.200)(mm), OCT-7(0.800)(mm), OCT-8(0.500)(mm), OCT-9(0.300)(mm), ",
                0),
            0u);
}

TEST_F(CliTest, ReverseWritesTheReversedProfile) {
  const std::vector<double> original = testing::OctaveFiveSine();
  ASSERT_EQ(Run("tool reverse " + WriteErd("sine", original, 0.05)), 0) << Stderr();
  const Array1<double> reversed = ErdOf(WrittenWith("")).Elevation;
  ASSERT_EQ(reversed.size(), 1024);
  EXPECT_NEAR(reversed[1], original[1023], 1e-5);
}

TEST_F(CliTest, IriBandsAddTheOctaveColumns) {
  // The files of a plain run are those of the stable-names run in batch_runs_test.cpp.
  ASSERT_EQ(Run("iri " + Example("road_b.erd") + " --length 10 --bands"), 0) << Stderr();
  EXPECT_EQ(LinesOf("10m連続")[0].rfind("Start(m), End(m), Mid(m), IRI(mm/m), IRI(OCT-1)", 0), 0u);
}

TEST_F(CliTest, OctaveAndFilterOnTwoProfiles) {
  ASSERT_EQ(Run("octave " + Example("road_a_kp.erd") + " " + Example("road_b.erd")), 0) << Stderr();
  EXPECT_EQ(Written().size(), 2u);
  ASSERT_EQ(Run("filter " + Example("road_b.erd") + " --type ma --kind bandpass --long 50 --short 5"), 0) << Stderr();
  EXPECT_EQ(Written().size(), 3u);
  // 5000 samples at 0.05 m (examples/README.md): a head line and one line per sample.
  const Texts lines = LinesOf("road_b_MABP_50-5m_");
  EXPECT_EQ(lines.size(), 5001u);
  EXPECT_EQ(lines[0], "Distance(m), Elevetion(mm)");
  EXPECT_EQ(lines[1].rfind("0.00000, ", 0), 0u);
}

TEST_F(CliTest, StatsWritesOnePagePerFileInTheOrderAsked) {
  const std::string a = WriteErd("A", Ramp(400), 0.25, 1.0);
  const std::string b = WriteErd("B", Ramp(400, true), 0.25, 1.0);
  ASSERT_EQ(Run("stats " + a + " " + b + " --bands full --stats mean,sd --order stat,profile,band"), 0) << Stderr();
  testing::ExpectHeads(Written(), Texts(4, "統計値_"));
  EXPECT_NE(Stdout().find("10m(Prof)"), std::string::npos);
  const Texts whole = LinesOf("統計値_全区間(Prof)_");
  ASSERT_EQ(whole.size(), 4u);
  EXPECT_EQ(whole[0], "プロファイル,A,B,A,B");
  EXPECT_EQ(whole[1], "帯域,全波長,全波長,全波長,全波長");
  EXPECT_EQ(whole[2], "統計値,平均 μ,平均 μ,標準偏差 σ,標準偏差 σ");

  // The IRI side only: the lengths the flag names.
  const std::string flat = WriteErd("F", std::vector<double>(400, 5.0), 0.25, 1.0);
  ASSERT_EQ(Run("stats " + flat + " --no-profile --bands full --stats mean --iri-lengths 10c,100", "iri"), 0) << Stderr();
  const Texts iri = LinesOf("統計値_全区間(IRI)_", "iri");
  ASSERT_GE(iri.size(), 2u);
  EXPECT_EQ(iri[0], "プロファイル,F,F");
  EXPECT_EQ(iri[1], "IRI算出基準長,10m連続,100m固定");
}

TEST_F(CliTest, XcorrPrintsTheTableWritesSixFilesAndTheShiftedCopy) {
  // A's feature at index k lies at k + 3 in B: the shift against A is 3 and the copy is "B-3P".
  const std::string a = WriteErd("A", Road(400, 3), 0.25, 1.0);
  const std::string b = WriteErd("B", Road(400), 0.25, 1.0);
  ASSERT_EQ(Run("xcorr " + a + " " + b + " --filter none --measure shift --register-shifted"), 0) << Stderr();
  // One row per profile under the names; only B's row under A's column holds a pair.
  EXPECT_EQ(Stdout().rfind("\tA\tB\nA\t\t\nB\t3\t\n平均(基準)\t3.00000\t0.00000\n", 0), 0u) << Stdout();
  EXPECT_NE(Stdout().find((temp / "out" / "B-3P.ERD").string() + "\n"), std::string::npos) << Stdout();
  const Texts names = Written();
  ASSERT_EQ(names.size(), 7u);
  EXPECT_EQ(names[0], "B-3P.ERD");
  EXPECT_EQ(ErdOf(temp / "out" / "B-3P.ERD").NumSamples, 400);
}

TEST_F(CliTest, ARoadOf400MetresAt1CentimetreTakesTheSlopeFilterAndIsCheckedAtHalfItsLength) {
  // 40,000 samples: more than the 32,767 the slope filter and the shift counter once took. B runs 7
  // samples behind A, so over 20,000 shifts either way the best one is still 7.
  const std::string a = WriteErd("A", Road(40000, 7), 0.01, 1.0);
  const std::string b = WriteErd("B", Road(40000), 0.01, 1.0);
  ASSERT_EQ(Run("xcorr " + a + " " + b + " --filter none --max-shift half --measure shift"), 0) << Stderr();
  EXPECT_EQ(Stdout().rfind("\tA\tB\nA\t\t\nB\t7\t\n", 0), 0u) << Stdout();
  ASSERT_EQ(Run("filter " + a + " --type slope", "slope"), 0) << Stderr();
  EXPECT_EQ(LinesOf("_Slope_", "slope").size(), 40001u);  // a head line and one line per sample
}

TEST_F(CliTest, WritesTheFiveStudyFilesTheRegisteredWavesAndPrintsTheThreeIris) {
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --long 51.2 --short 4 --length 10 --lines ,,,,,,,, --register L,ideal"), 0)
      << Stderr();
  Texts study, erds;
  for (const auto& name : Written()) (name.ends_with(".ERD") ? erds : study).push_back(name);
  ExpectHeads(study, {"road_b_3波分解(IRI)_", "road_b_3波分解(Profile)_", "road_b_S波(IRI)_", "road_b_S波_",
                      "road_b_理想形状_"});
  ExpectHeads(erds, {"road_b_L波_", "road_b_理想形状案_"});
  // 5000 samples: a head line and one line per sample.
  const Texts profile = LinesOf("road_b_3波分解(Profile)_");
  EXPECT_EQ(profile.size(), 5001u);
  EXPECT_EQ(profile[0], "Distance(m), Profile, L波, M波, S波");
  EXPECT_EQ(profile[1].rfind("0.00000, ", 0), 0u) << profile[1];

  // The three IRIs on one line, then one line per registered wave.
  const std::string out = Stdout(), iris = out.substr(0, out.find('\n') + 1);
  std::smatch m;
  ASSERT_TRUE(std::regex_match(
      iris, m, std::regex("road_b\tIRI ([0-9.]+) mm/m\tcorrected ([0-9.]+) mm/m\tideal ([0-9.]+) mm/m\n")))
      << out;
  // No band lines: S' is S, so the ideal shape is the corrected profile and has its IRI.
  EXPECT_EQ(m[2].str(), m[3].str());
  EXPECT_GT(std::stod(m[1].str()), 0);
  // Then every written file, one path per line in name order.
  std::string paths;
  for (const std::string& name : Written()) paths += (temp / "out" / name).string() + "\n";
  EXPECT_EQ(out.substr(iris.size()), paths);
  // The registered waves are ERD profiles.
  EXPECT_EQ(ErdOf(temp / "out" / erds.at(0)).NumSamples, 5000);
}

TEST_F(CliTest, StudyTakesItsBandLinesFromTheSettingsAndAnAdjustmentChangesTheCorrectedProfile) {
  const auto firstLine = [this] { return Stdout().substr(0, Stdout().find('\n')); };
  const auto profileIri = [this] { return Stdout().substr(0, Stdout().find("\tcorrected")); };
  ASSERT_EQ(Run("repair " + Example("road_b.erd")), 0) << Stderr();
  EXPECT_EQ(Written().size(), 5u);  // nothing registered unless asked
  const std::string fromSettings = firstLine(), plainIri = profileIri();
  // The bundled Default.ini holds the lines 12, 8, 5, 3, 2, 1.2, 0.8, 0.5, 0.3 mm: naming them changes
  // nothing, clearing them changes the corrected profile.
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --lines 12,8,5,3,2,1.2,0.8,0.5,0.3", "named"), 0) << Stderr();
  EXPECT_EQ(firstLine(), fromSettings);
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --lines ,,,,,,,,", "none"), 0) << Stderr();
  EXPECT_NE(firstLine(), fromSettings);
  // Same profile IRI; a 5 mm change at one point gives another corrected profile.
  WriteSystemTextFile(temp / "adjust.csv", {"KP(km),厚さ(mm)", "0.1,5"});
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --adjust '" + (temp / "adjust.csv").string() + "'", "adjusted"), 0)
      << Stderr();
  EXPECT_EQ(profileIri(), plainIri);
  EXPECT_NE(firstLine(), fromSettings);
}

TEST_F(CliTest, InfoDescribesEveryFileAlsoTwoOfOneName) {
  const std::string first = WriteErd("road", {1, 2, 4}, 0.5);
  std::filesystem::create_directories(temp / "other");
  std::filesystem::copy_file(temp / "road.erd", temp / "other" / "road.erd");
  const std::string second = "'" + (temp / "other" / "road.erd").string() + "'";
  EXPECT_EQ(Run("info " + first + " " + second), 0);
  const std::string out = Stdout();
  // Both described: three samples at 0.5 m, 1 m long, mean 7/3 mm.
  EXPECT_NE(out.find("  samples    3 (header 3)"), out.rfind("  samples    3 (header 3)"));
  EXPECT_NE(out.find("  length     1.00000 m"), std::string::npos);
  EXPECT_NE(out.find("mean 2.3333"), std::string::npos);
  EXPECT_NE(out.find((temp / "other" / "road.erd").string()), std::string::npos);
}

TEST_F(CliTest, ImportRegistersEachColumnAfterTheHeadLineOrFromTheFirstLine) {
  WriteBytes(temp / "road.csv", "left,right\r\n1,2\r\n3,4\r\n5,6\r\n");
  EXPECT_EQ(Run("import '" + (temp / "road.csv").string() + "' --pitch 0.25 --header"), 0) << Stderr();
  ExpectHeads(Written(), {"road(001).ERD", "road(002).ERD"});
  EXPECT_EQ(ErdOf(temp / "out" / "road(002).ERD").Elevation, (Array1<double>{2, 4, 6}));

  WriteBytes(temp / "two.csv", "1.5,-2\r\n2.5,-3\r\n4,-5.25\r\n8,0\r\n");
  EXPECT_EQ(Run("import '" + (temp / "two.csv").string() + "' --pitch 0.1", "plain"), 0) << Stderr();
  ExpectHeads(Written("plain"), {"two(001).ERD", "two(002).ERD"});
  EXPECT_EQ(ErdOf(temp / "plain" / "two(001).ERD").Elevation, (Array1<double>{1.5, 2.5, 4, 8}));
}

TEST_F(CliTest, ImportWarnsOfEachCellThatIsNotANumberAndReadsItAsZero) {
  // Line 1 is the heading; "x" is line 3, column 2, and "?" line 4, column 1.
  WriteBytes(temp / "road.csv", "left,right\r\n1,2\r\n5,x\r\n?,4\r\n");
  EXPECT_EQ(Run("import '" + (temp / "road.csv").string() + "' --pitch 0.25 --header", "out", "en"), 0) << Stderr();
  const std::string file = (temp / "road.csv").string();
  EXPECT_EQ(Stderr(), "velmora: import: " + file + ":3:2: \"x\" is not a number; read as 0\n" +
                          "velmora: import: " + file + ":4:1: \"?\" is not a number; read as 0\n");
  EXPECT_EQ(ErdOf(temp / "out" / "road(001).ERD").Elevation, (Array1<double>{1, 5, 0}));
  EXPECT_EQ(ErdOf(temp / "out" / "road(002).ERD").Elevation, (Array1<double>{2, 0, 4}));
}

}  // namespace
}  // namespace velmora
