// The analysis commands end to end on tiny synthetic profiles whose results are known by reasoning (a
// flat road has no roughness at all, a pure sine sits in one octave and one PSD bin, and a band reduced
// against a limit peaks at exactly that limit), and on the bundled examples: exit status and the files.
#include <cmath>
#include <numbers>

#include "cli_fixture.h"

namespace velmora {
namespace {

using testing::CliTest;
using testing::ErdSamples;
using testing::Fields;

// 1024 samples at 0.05 m (51.2 m) of a sine of 2 mm amplitude and 11 cycles: wavelength 51.2/11 =
// 4.6545 m, inside octave 5 (3.2 to 6.4 m), and exactly on bin 11 of a 1024-point transform.
std::vector<double> Sine() {
  std::vector<double> v(1024);
  for (std::size_t i = 0; i < v.size(); ++i)
    v[i] = 2.0 * std::sin(2 * std::numbers::pi * 11.0 * static_cast<double>(i) / 1024.0);
  return v;
}

// Largest |value| of a column over the data lines first..last (default: all of them).
double MaxAbsOfColumn(const std::vector<std::string>& lines, std::size_t column, std::size_t first = 1,
                      std::size_t last = 0) {
  double m = 0;
  if (last == 0) last = lines.size() - 1;
  for (std::size_t i = first; i <= last; ++i) m = std::max(m, std::abs(std::stod(Fields(lines[i]).at(column))));
  return m;
}

TEST_F(CliTest, FlatRoadHasZeroIriEverywhere) {
  const std::string flat = WriteErd("flat", std::vector<double>(2048, 3.0), 0.05);  // 102.35 m
  ASSERT_EQ(Run("iri " + flat + " --length 10"), 0) << Stderr();
  EXPECT_EQ(Stdout(), "flat\tIRI 0.0000 mm/m\n");
  const auto whole = ReadSystemTextLines(WrittenWith("IRI(全区間)"));
  ASSERT_EQ(whole.size(), 2u);
  EXPECT_EQ(whole[0], "Profile, 区間, IRI(mm/m)");
  EXPECT_EQ(whole[1], "flat, 全区間IRI(102.35m), 0.00000000");
  const auto continuous = ReadSystemTextLines(WrittenWith("10m連続"));
  EXPECT_EQ(continuous[0], "Start(m), End(m), Mid(m), IRI(mm/m)");
  ASSERT_GT(continuous.size(), 1u);
  for (std::size_t i = 1; i < continuous.size(); ++i) EXPECT_EQ(Fields(continuous[i]).back(), "0.00000000") << i;

  ASSERT_EQ(Run("summary " + flat), 0) << Stderr();
  const std::string table = Stdout();
  EXPECT_EQ(table.rfind("Profile  Length(m)  Pitch(m)  IRI(mm/m)  IRI100m-mean(mm/m)", 0), 0u) << table;
  std::istringstream row(table.substr(table.find('\n') + 1));
  std::vector<std::string> cells(5);
  for (auto& cell : cells) row >> cell;
  EXPECT_EQ(cells, (std::vector<std::string>{"flat", "102.35", "0.050", "0.000", "0.000"}));

  ASSERT_EQ(Run("summary " + WriteErd("sine", Sine(), 0.05)), 0) << Stderr();
  EXPECT_NE(Stdout().find("  OCT-5 ("), std::string::npos) << Stdout();
}

TEST_F(CliTest, SineSplitsIntoOctaveFiveAndOnePsdBin) {
  const std::string sine = WriteErd("sine", Sine(), 0.05);
  ASSERT_EQ(Run("octave " + sine + " --bands 5,9 --sum --long --short"), 0) << Stderr();
  EXPECT_EQ(Written().size(), 6u);
  const auto all = ReadSystemTextLines(WrittenWith("_Octave_"));
  ASSERT_EQ(all.size(), 1025u);
  EXPECT_EQ(all[0],
            "Distance(m), OCT-1(mm), OCT-2(mm), OCT-3(mm), OCT-4(mm), OCT-5(mm), OCT-6(mm), OCT-7(mm), OCT-8(mm), "
            "OCT-9(mm), OCT-合算(mm), OCT-長波長(mm), OCT-短波長(mm)");
  // The sine lies in octave 5, so away from the ends (where the split's edges ring) that band carries
  // by far the most.
  const double five = MaxAbsOfColumn(all, 5, 200, 824);
  EXPECT_GT(five, 1.5);
  for (std::size_t k : {1u, 2u, 3u, 4u, 6u, 7u, 8u, 9u}) EXPECT_LT(MaxAbsOfColumn(all, k, 200, 824), five / 4) << k;
  const auto band5 = ReadSystemTextLines(WrittenWith("_Octave5_"));
  EXPECT_EQ(band5[0], "Distance(m), sine Octave 5(mm)");
  const auto sum = ReadSystemTextLines(WrittenWith("_Octave合算値_"));
  EXPECT_EQ(sum[0], "Distance(m), sine 合算値(mm)");
  for (std::size_t i : {1u, 300u, 1024u}) {
    EXPECT_EQ(Fields(band5[i])[1], Fields(all[i])[5]) << i;
    EXPECT_EQ(Fields(sum[i])[1], Fields(all[i])[10]) << i;
  }
  EXPECT_EQ(ReadSystemTextLines(WrittenWith("_Octave長波長_"))[0], "Distance(m), sine Octave 長波長(mm)");
  EXPECT_EQ(ReadSystemTextLines(WrittenWith("_Octave短波長_"))[0], "Distance(m), sine Octave 短波長(mm)");

  ASSERT_EQ(Run("psd " + sine + " --window hanning", "psd"), 0) << Stderr();
  const auto psd = ReadSystemTextLines(WrittenWith("_PSD_", "psd"));
  EXPECT_EQ(psd[0], "波長(m/cycle), 周期(cycle/m), PSD(m^2-m/cycle)");
  std::size_t peak = 1;
  for (std::size_t i = 1; i < psd.size(); ++i)
    if (std::stod(Fields(psd[i])[2]) > std::stod(Fields(psd[peak])[2])) peak = i;
  EXPECT_EQ(Fields(psd[peak])[1], "2.1484375000E-01");  // 11 / 51.2 cycle/m
  EXPECT_EQ(Fields(psd[peak])[0], "4.6545454545E+00");
}

TEST_F(CliTest, ReductionHoldsTheLimitedBandAndKeepsTheOthers) {
  const std::string sine = WriteErd("sine", Sine(), 0.05);
  ASSERT_EQ(Run("octave " + sine, "octave"), 0) << Stderr();
  const auto octave = ReadSystemTextLines(WrittenWith("_Octave_", "octave"));
  ASSERT_EQ(Run("reduce " + sine + " --lines ',,,,1,,,,' --bands 5 --sum --long --short"), 0) << Stderr();
  EXPECT_EQ(Written().size(), 5u);
  const auto reduced = ReadSystemTextLines(WrittenWith("_バンド別低減_2"));
  ASSERT_EQ(reduced.size(), 1025u);
  EXPECT_EQ(reduced[0],
            "Distance(m), OCT-1(99999.000)(mm), OCT-2(99999.000)(mm), OCT-3(99999.000)(mm), OCT-4(99999.000)(mm), "
            "OCT-5(1.000)(mm), OCT-6(99999.000)(mm), OCT-7(99999.000)(mm), OCT-8(99999.000)(mm), "
            "OCT-9(99999.000)(mm), OCT-合算(mm), OCT-長波長(mm), OCT-短波長(mm)");
  // Each half-wave of octave 5 above 1 mm is scaled to a peak of exactly 1 mm; the rest stay below.
  EXPECT_EQ(MaxAbsOfColumn(reduced, 5), 1.0);
  for (std::size_t i = 1; i < reduced.size(); ++i) {
    const auto r = Fields(reduced[i]);
    const auto o = Fields(octave[i]);
    EXPECT_EQ(r[0], o[0]);
    EXPECT_EQ(r[4], o[4]) << i;  // no limit: the band as split
    EXPECT_EQ(r[6], o[6]) << i;
    double sum = 0;
    for (std::size_t k = 1; k <= 9; ++k) sum += std::stod(r[k]);
    ASSERT_NEAR(std::stod(r[10]), sum, 1e-7) << i;
  }
  EXPECT_EQ(ReadSystemTextLines(WrittenWith("_バンド別低減_Octave5_"))[0],
            "Distance(m), sine バンド別低減 5-Octave=1.00mm");
  EXPECT_EQ(ReadSystemTextLines(WrittenWith("_バンド別低減_Octave長波長_"))[0],
            "Distance(m), sine バンド別低減(長波長)(mm)");
  EXPECT_EQ(Stdout().rfind("sine\treduced profile ", 0), 0u) << Stdout();

  // Without --lines the limits are the lines of Default.ini.
  ASSERT_EQ(Run("reduce " + sine, "default"), 0) << Stderr();
  const auto head = Fields(ReadSystemTextLines(WrittenWith("_バンド別低減_", "default"))[0]);
  const std::vector<std::string> expected{"OCT-1(12.000)(mm)", "OCT-2(8.000)(mm)", "OCT-3(5.000)(mm)",
                                          "OCT-4(3.000)(mm)",  "OCT-5(2.000)(mm)", "OCT-6(1.200)(mm)",
                                          "OCT-7(0.800)(mm)",  "OCT-8(0.500)(mm)", "OCT-9(0.300)(mm)"};
  EXPECT_EQ(std::vector<std::string>(head.begin() + 1, head.begin() + 10), expected);
}

TEST_F(CliTest, ImportMakesOneProfilePerColumnAndReverseTwiceGivesItBack) {
  testing::WriteBytes(temp / "two.csv", "1.5,-2\r\n2.5,-3\r\n4,-5.25\r\n8,0\r\n");
  ASSERT_EQ(Run("import '" + (temp / "two.csv").string() + "' --pitch 0.1", "imported"), 0) << Stderr();
  const auto names = Written("imported");
  ASSERT_EQ(names.size(), 2u);
  EXPECT_EQ(ErdSamples(temp / "imported" / names[0]), (std::vector<double>{1.5, 2.5, 4, 8}));
  EXPECT_EQ(ErdSamples(temp / "imported" / names[1]), (std::vector<double>{-2, -3, -5.25, 0}));

  const std::string sine = WriteErd("sine", Sine(), 0.05);
  ASSERT_EQ(Run("tool reverse " + sine, "once"), 0) << Stderr();
  ASSERT_EQ(Written("once").size(), 1u);
  const auto once = temp / "once" / Written("once")[0];
  const std::vector<double> reversed = ErdSamples(once);
  const std::vector<double> original = Sine();
  ASSERT_EQ(reversed.size(), original.size());
  EXPECT_NEAR(reversed.front(), original.back(), 1e-5);
  ASSERT_EQ(Run("tool reverse '" + once.string() + "'", "twice"), 0) << Stderr();
  ASSERT_EQ(Written("twice").size(), 1u);
  const std::vector<double> back = ErdSamples(temp / "twice" / Written("twice")[0]);
  ASSERT_EQ(back.size(), original.size());
  for (std::size_t i = 0; i < back.size(); ++i) ASSERT_NEAR(back[i], original[i], 1e-5) << i;
}

TEST_F(CliTest, IriWritesTheWholeContinuousAndFixedFiles) {
  ASSERT_EQ(Run("iri " + Example("road_b.erd") + " --length 10 --bands"), 0) << Stderr();
  // Sorted by bytes: whole ("IRI(全区間)_"), 100m, 10m fixed, 10m continuous, 200m.
  const auto names = Written();
  ExpectHeads(names, {"IRI(", "road_b_IRI(100m固定)_", "road_b_IRI(10m固定)_", "road_b_IRI(10m連続)_",
                      "road_b_IRI(200m固定)_"});
  EXPECT_EQ(Stdout().rfind("road_b\tIRI ", 0), 0u) << Stdout();
  const std::string continuous = testing::ReadBytes(WrittenWith("10m連続"));
  EXPECT_EQ(continuous.rfind("Start(m), End(m), Mid(m), IRI(mm/m), IRI(OCT-1)", 0), 0u);
}

TEST_F(CliTest, OctaveAndFilterOnTwoProfiles) {
  ASSERT_EQ(Run("octave " + Example("road_a_kp.erd") + " " + Example("road_b.erd")), 0) << Stderr();
  EXPECT_EQ(Written().size(), 2u);
  ASSERT_EQ(Run("filter " + Example("road_b.erd") + " --type ma --kind bandpass --long 50 --short 5"), 0) << Stderr();
  EXPECT_EQ(Written().size(), 3u);
  // 5000 samples at 0.05 m (examples/README.md): a head line and one line per sample.
  const std::string text = testing::ReadBytes(WrittenWith("road_b_MABP_50-5m_"));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5001);
  EXPECT_EQ(text.rfind("Distance(m), Elevetion(mm)\r\n0.00000, ", 0), 0u);
}

}  // namespace
}  // namespace velmora
