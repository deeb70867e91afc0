// The analysis commands end to end on tiny synthetic profiles whose results are known by reasoning (a
// flat road has no roughness at all, a pure sine sits in one octave and one PSD bin, and a band reduced
// against a limit peaks at exactly that limit), and on the bundled examples: exit status and the files.
// The lines of each kind of file are checked with the report; here, what the options ask for.
#include <cmath>
#include <regex>

#include "cli_fixture.h"
#include "support/octave_five_sine.h"

namespace velmora {
namespace {

using testing::CliTest;
using testing::ExpectHeads;
using testing::Fields;
using testing::Texts;

// Largest |value| of a column over the data lines first..last (default: all of them).
double MaxAbsOfColumn(const Texts& lines, std::size_t column, std::size_t first = 1, std::size_t last = 0) {
  double m = 0;
  if (last == 0) last = lines.size() - 1;
  for (std::size_t i = first; i <= last; ++i) m = std::max(m, std::abs(std::stod(Fields(lines[i]).at(column))));
  return m;
}

TEST_F(CliTest, FlatRoadHasZeroIriEverywhere) {
  const std::string flat = WriteErd("flat", std::vector<double>(2048, 3.0), 0.05);  // 102.35 m
  ASSERT_EQ(Run("iri " + flat + " --length 10"), 0) << Stderr();
  EXPECT_EQ(Stdout().rfind("flat\tIRI 0.0000 mm/m\n", 0), 0u) << Stdout();
  EXPECT_EQ(LinesOf("IRI(全区間)"), (Texts{"Profile, 区間, IRI(mm/m)", "flat, 全区間IRI(102.35m), 0.00000000"}));
  const Texts continuous = LinesOf("10m連続");
  ASSERT_GT(continuous.size(), 1u);
  EXPECT_EQ(continuous[0], "Start(m), End(m), Mid(m), IRI(mm/m)");
  for (std::size_t i = 1; i < continuous.size(); ++i) EXPECT_EQ(Fields(continuous[i]).back(), "0.00000000") << i;

  ASSERT_EQ(Run("summary " + flat), 0) << Stderr();
  EXPECT_EQ(Stdout().rfind("Profile  Length(m)  Pitch(m)  IRI(mm/m)  IRI100m-mean(mm/m)", 0), 0u) << Stdout();
  EXPECT_TRUE(std::regex_search(Stdout(), std::regex("\nflat +102\\.35 +0\\.050 +0\\.000 +0\\.000 "))) << Stdout();

  ASSERT_EQ(Run("summary " + WriteErd("sine", testing::OctaveFiveSine(), 0.05)), 0) << Stderr();
  EXPECT_NE(Stdout().find("  OCT-5 ("), std::string::npos) << Stdout();
}

TEST_F(CliTest, SineSplitsIntoOctaveFiveAndOnePsdBin) {
  const std::string sine = WriteErd("sine", testing::OctaveFiveSine(), 0.05);
  ASSERT_EQ(Run("octave " + sine + " --bands 5,9 --sum --long --short"), 0) << Stderr();
  ExpectHeads(Written(), {"sine_Octave5_", "sine_Octave9_", "sine_Octave_", "sine_Octave合算値_", "sine_Octave短波長_",
                          "sine_Octave長波長_"});
  const Texts all = LinesOf("_Octave_");
  ASSERT_EQ(all.size(), 1025u);
  // The sine lies in octave 5, so away from the ends (where the split's edges ring) that band carries
  // by far the most.
  const double five = MaxAbsOfColumn(all, 5, 200, 824);
  EXPECT_GT(five, 1.5);
  for (std::size_t k : {1u, 2u, 3u, 4u, 6u, 7u, 8u, 9u}) EXPECT_LT(MaxAbsOfColumn(all, k, 200, 824), five / 4) << k;
  // The files of one band and of the sums hold the columns of the whole split.
  const Texts band5 = LinesOf("_Octave5_"), sum = LinesOf("_Octave合算値_");
  const Texts longSum = LinesOf("_Octave長波長_"), shortSum = LinesOf("_Octave短波長_");
  for (std::size_t i : {1u, 300u, 1024u}) {
    EXPECT_EQ(Fields(band5[i])[1], Fields(all[i])[5]) << i;
    EXPECT_EQ(Fields(sum[i])[1], Fields(all[i])[10]) << i;
    EXPECT_EQ(Fields(longSum[i])[1], Fields(all[i])[11]) << i;
    EXPECT_EQ(Fields(shortSum[i])[1], Fields(all[i])[12]) << i;
  }

  ASSERT_EQ(Run("psd " + sine + " --window hanning", "psd"), 0) << Stderr();
  const Texts psd = LinesOf("_PSD_", "psd");
  EXPECT_EQ(psd[0], "波長(m/cycle), 周期(cycle/m), PSD(m^2-m/cycle)");
  std::size_t peak = 1;
  for (std::size_t i = 1; i < psd.size(); ++i)
    if (std::stod(Fields(psd[i])[2]) > std::stod(Fields(psd[peak])[2])) peak = i;
  EXPECT_EQ(Fields(psd[peak])[1], "2.1484375000E-01");  // 11 / 51.2 cycle/m
  EXPECT_EQ(Fields(psd[peak])[0], "4.6545454545E+00");
}

TEST_F(CliTest, ReductionHoldsTheLimitedBandAndKeepsTheOthers) {
  const std::string sine = WriteErd("sine", testing::OctaveFiveSine(), 0.05);
  ASSERT_EQ(Run("octave " + sine, "octave"), 0) << Stderr();
  const Texts octave = LinesOf("_Octave_", "octave");
  ASSERT_EQ(Run("reduce " + sine + " --lines ',,,,1,,,,' --bands 5 --sum --long --short"), 0) << Stderr();
  EXPECT_EQ(Stdout().rfind("sine\treduced profile ", 0), 0u) << Stdout();
  ExpectHeads(Written(), {"sine_バンド別低減_2", "sine_バンド別低減_Octave5_", "sine_バンド別低減_Octave合算値_",
                          "sine_バンド別低減_Octave短波長_", "sine_バンド別低減_Octave長波長_"});
  const Texts reduced = LinesOf("_バンド別低減_2");
  ASSERT_EQ(reduced.size(), 1025u);
  EXPECT_EQ(Fields(reduced[0])[5], "OCT-5(1.000)(mm)");
  EXPECT_EQ(Fields(reduced[0])[4], "OCT-4(99999.000)(mm)");
  // Each half-wave of octave 5 above 1 mm is scaled to a peak of exactly 1 mm; the bands beside it are
  // as split.
  EXPECT_EQ(MaxAbsOfColumn(reduced, 5), 1.0);
  for (std::size_t i = 1; i < reduced.size(); ++i) {
    EXPECT_EQ(Fields(reduced[i])[4], Fields(octave[i])[4]) << i;
    EXPECT_EQ(Fields(reduced[i])[6], Fields(octave[i])[6]) << i;
  }
  EXPECT_EQ(LinesOf("_バンド別低減_Octave5_")[0], "Distance(m), sine バンド別低減 5-Octave=1.00mm");

  // Without --lines the limits are the lines of Default.ini.
  ASSERT_EQ(Run("reduce " + sine, "default"), 0) << Stderr();
  EXPECT_EQ(LinesOf("_バンド別低減_", "default")[0].rfind(
                "Distance(m), OCT-1(12.000)(mm), OCT-2(8.000)(mm), OCT-3(5.000)(mm), OCT-4(3.000)(mm), OCT-5(2.000)(mm), "
                "OCT-6(1.200)(mm), OCT-7(0.800)(mm), OCT-8(0.500)(mm), OCT-9(0.300)(mm), ",
                0),
            0u);
}

TEST_F(CliTest, ReverseTwiceGivesTheProfileBack) {
  const Array1<double> original(testing::OctaveFiveSine());
  ASSERT_EQ(Run("tool reverse " + WriteErd("sine", original.vector(), 0.05), "once"), 0) << Stderr();
  const std::filesystem::path once = WrittenWith("", "once");
  const Array1<double> reversed = ErdOf(once).Elevation;
  ASSERT_EQ(reversed.size(), original.size());
  EXPECT_NEAR(reversed[1], original[1024], 1e-5);
  ASSERT_EQ(Run("tool reverse '" + once.string() + "'", "twice"), 0) << Stderr();
  const Array1<double> back = ErdOf(WrittenWith("", "twice")).Elevation;
  ASSERT_EQ(back.size(), original.size());
  for (std::int32_t i = 1; i <= 1024; ++i) ASSERT_NEAR(back[i], original[i], 1e-5) << i;
}

TEST_F(CliTest, IriWritesTheWholeContinuousAndFixedFiles) {
  ASSERT_EQ(Run("iri " + Example("road_b.erd") + " --length 10 --bands"), 0) << Stderr();
  EXPECT_EQ(Stdout().rfind("road_b\tIRI ", 0), 0u) << Stdout();
  // Sorted by bytes: whole ("IRI(全区間)_"), 100m, 10m fixed, 10m continuous, 200m.
  ExpectHeads(Written(), {"IRI(", "road_b_IRI(100m固定)_", "road_b_IRI(10m固定)_", "road_b_IRI(10m連続)_",
                          "road_b_IRI(200m固定)_"});
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

}  // namespace
}  // namespace velmora
