// Octave masks, the preparation of a profile, the single and the repeated split, and the sums.
#include "analysis/fft.h"
#include "analysis/mirror_extend.h"
#include "analysis/octave.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "analysis/octave_bands.h"
#include "analysis/prepare_profile.h"
#include "base/app_paths.h"
#include "base/settings.h"
#include "profile/erd_file.h"
#include "profile/profile_record.h"
#include "support/expect_values.h"
#include "support/literal_pass.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

constexpr double kPi = 3.14159265358979323846;

// Paths, debug level and octave lists changed by a test are put back afterwards; error logs go into a
// fresh folder.
using OctaveTest = testing::SessionTest;

ProfileRecord MakeRecord(const std::vector<double>& samples, double pitch) {
  return testing::MakeProfile("test", pitch, samples);
}

// A rough road: a few sines across the octaves, a slope and an offset.
std::vector<double> RoughProfile(int n, double dx) {
  std::vector<double> y(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    const double x = i * dx;
    y[static_cast<std::size_t>(i)] = 12.0 + 0.01 * x + 8 * std::sin(2 * kPi * x / 37.0) +
                                     3 * std::sin(2 * kPi * x / 5.3 + 1) + 1.5 * std::cos(2 * kPi * x / 0.93) +
                                     0.4 * std::sin(2 * kPi * x / 0.27);
  }
  return y;
}

std::set<int> OnesOf(const Array1<std::uint8_t>& mask) {
  std::set<int> ones;
  for (int p = 1; p <= mask.size(); ++p)
    if (mask[p] == 1) ones.insert(p);
  return ones;
}

double RealAt(const OctaveBandSet& set, int k, int i) { return set.Band[static_cast<std::size_t>(k)].Values[i]; }

// The largest difference between the sum of the nine bands and the profile.
double WorstSumBack(const ProfileRecord& record) {
  double worst = 0;
  for (int i = 1; i <= record.WorkCount; ++i) {
    double sum = 0;
    for (int k = 1; k <= 9; ++k) sum += RealAt(record.Analysis.Octave, k, i);
    worst = std::max(worst, std::abs(sum - record.WorkProfile[i]));
  }
  return worst;
}

using Waves = std::array<std::vector<double>, 10>;  // [1..9]

// The split exactly as the steps are written: nine literal masked passes.
Waves LiteralSplit(const AnalysisBlock& block, const Array1<double>& source) {
  Waves waves;
  for (std::size_t k = 1; k <= 9; ++k) waves[k] = testing::LiteralMaskedPass(block.Count, source, block.Masks[k]);
  return waves;
}

double Deviation(const std::vector<double>& wave) {
  double mean = 0, squares = 0;
  for (double v : wave) mean += v;
  mean /= static_cast<double>(wave.size());
  for (double v : wave) squares += (v - mean) * (v - mean);
  return std::sqrt(squares / static_cast<double>(wave.size()));
}

// The peeling as written, on the literal split: every pass makes all nine octaves, the rest is the sum
// of the octaves between, a stage ends when both deviations stop shrinking by the ratio.
Waves LiteralPeeling(const AnalysisBlock& block, double ratio, int maxPasses) {
  const std::int32_t n = block.Count;
  Waves acc;
  for (int k = 1; k <= 9; ++k) acc[static_cast<std::size_t>(k)].assign(static_cast<std::size_t>(n), 0.0);
  Array1<double> rest = block.Profile.Values;
  Waves pass;
  for (int s = 1; s <= 4; ++s) {
    double previous[2] = {1e30, 1e30};
    bool done[2] = {false, false};
    for (int i = 1; i <= maxPasses; ++i) {
      pass = LiteralSplit(block, rest);
      for (int k = 1; k <= 9; ++k)
        if (k <= s || k >= 10 - s)
          for (std::size_t j = 0; j < static_cast<std::size_t>(n); ++j) acc[static_cast<std::size_t>(k)][j] += pass[static_cast<std::size_t>(k)][j];
      for (std::int32_t j = 1; j <= n; ++j) {
        rest[j] = 0;
        for (int k = s + 1; k <= 9 - s; ++k) rest[j] += pass[static_cast<std::size_t>(k)][static_cast<std::size_t>(j - 1)];
      }
      const int octaves[2] = {s, 10 - s};
      for (int side = 0; side < 2; ++side) {
        const double deviation = Deviation(pass[static_cast<std::size_t>(octaves[side])]);
        if (previous[side] / deviation < ratio) done[side] = true;
        previous[side] = deviation;
      }
      if (done[0] && done[1]) break;
    }
  }
  acc[5] = pass[5];
  return acc;
}

// Largest difference between the stored bands and the literal ones, over the profile's range.
double WorstRelativeDifference(const OctaveBandSet& set, const Waves& literal, const Array1<double>& profile) {
  const auto [low, high] = std::minmax_element(profile.begin(), profile.end());
  double worst = 0;
  for (int k = 1; k <= 9; ++k)
    for (std::size_t j = 0; j < literal[static_cast<std::size_t>(k)].size(); ++j)
      worst = std::max(worst, std::abs(set.Band[static_cast<std::size_t>(k)].Values[static_cast<std::ptrdiff_t>(j + 1)] -
                                       literal[static_cast<std::size_t>(k)][j]));
  return worst / (*high - *low);
}

class OctaveMasks : public testing::SessionTest {};

TEST_F(OctaveMasks, EachHarmonicInItsOctaveByHand) {
  struct Case {
    std::int32_t length;
    double dx;
    std::vector<std::set<int>> ones;  // octaves 1..9
  };
  const Case cases[] = {
      // L·dx = 51.2 m, ff = j / 51.2. Positions 1..5 look at j = 1..5, positions 6..8 at j = 4, 3, 2.
      // j = 1 is exactly 1/51.2 (octave 1), j = 2 exactly 1/25.6 (octave 2), j = 3, 4 octave 3, j = 5
      // (0.098 c/m) octave 4.
      {8, 6.4, {{1}, {2, 8}, {3, 4, 6, 7}, {5}, {}, {}, {}, {}, {}}},
      // L·dx = 6.4 m: j = 1 is 1/6.4, the upper limit of octave 4, so the zero-frequency position lies in
      // octave 4 here; j = 2 (1/3.2) octave 5; 3, 4 octave 6; 5..8 octave 7; j = 9 (1.406 c/m) octave 8.
      {16, 0.4, {{}, {}, {}, {1}, {2, 16}, {3, 4, 14, 15}, {5, 6, 7, 8, 10, 11, 12, 13}, {9}, {}}},
  };
  for (const Case& c : cases) {
    std::array<Array1<std::uint8_t>, 11> masks;
    MakeOctaveMasks(c.length, c.dx, masks);
    for (std::size_t k = 1; k <= 9; ++k) {
      EXPECT_EQ(masks[k].size(), c.length);
      EXPECT_EQ(OnesOf(masks[k]), c.ones[k - 1]) << "length " << c.length << " octave " << k;
    }
  }
}

TEST_F(OctaveMasks, LimitsFallOnBinsAndEveryBinIsTakenOnce) {
  // L = 512 at 0.1 m: L·dx = 51.2, so each octave limit is exactly a harmonic j = 2^m. The upper limit
  // is inclusive: j = 128 (2.5 c/m = 1/0.4) belongs to octave 8, j = 129 to octave 9.
  std::array<Array1<std::uint8_t>, 11> masks;
  MakeOctaveMasks(512, 0.1, masks);
  const int counts[10] = {0, 1, 2, 4, 8, 16, 32, 64, 128, 257};
  for (int k = 1; k <= 9; ++k) EXPECT_EQ(OnesOf(masks[static_cast<std::size_t>(k)]).size(), counts[k]) << k;
  EXPECT_EQ(masks[2][512], 1);  // second half: position 512 looks at j = 2
  EXPECT_EQ(masks[8][128], 1);
  EXPECT_EQ(masks[9][129], 1);
  EXPECT_EQ(masks[9][257], 1);  // the highest harmonic
  EXPECT_EQ(masks[8][386], 1);  // position 386 looks at j = 512 + 2 − 386 = 128
  for (int p = 1; p <= 512; ++p) {
    int owners = 0;
    for (int k = 1; k <= 9; ++k) owners += masks[static_cast<std::size_t>(k)][p];
    EXPECT_EQ(owners, 1) << "position " << p;
  }
}

TEST_F(OctaveTest, PrepareFillsLengthsCopyAndMasks) {
  ProfileRecord record = MakeRecord({1, 2, 3, 4, 5}, 0.1);
  PrepareProfile(DebugTables{}, record);
  const AnalysisBlock& block = record.Analysis;
  EXPECT_DOUBLE_EQ(block.SamplesPerMetre, 10.0);
  EXPECT_EQ(block.Count, 5);
  EXPECT_EQ(block.FftLength1, 8);
  EXPECT_EQ(block.FftLength2, 16);
  EXPECT_EQ(block.Profile.Values, Array1<double>({1, 2, 3, 4, 5}));
  EXPECT_DOUBLE_EQ(block.Profile.Stats.Mean, 3.0);
  EXPECT_DOUBLE_EQ(block.Profile.Stats.StdDev, std::sqrt(2.0));
  EXPECT_TRUE(block.Profile.Calculated);
  for (int k = 1; k <= 10; ++k) EXPECT_EQ(block.Masks[static_cast<std::size_t>(k)].size(), 16);
  // 16 points at 0.1 m: ff = j / 1.6, all below 1/0.4 except j = 5..9; the zero position is j = 1,
  // 0.625 c/m = 1/1.6, the top of octave 6.
  EXPECT_EQ(block.Masks[6][1], 1);
}

TEST_F(OctaveTest, PrepareRefusesBadPitchAndCount) {
  ProfileRecord flat = MakeRecord({1, 2, 3}, 0.0);
  try {
    PrepareProfile(DebugTables{}, flat);
    FAIL() << "a pitch of 0 was accepted";
  } catch (const LegacyError& error) {
    EXPECT_NE(std::string(error.what()).find("test.erd"), std::string::npos) << error.what();
    EXPECT_NE(std::string(error.what()).find("pitch"), std::string::npos) << error.what();
  }
  ProfileRecord shorter = MakeRecord({1, 2, 3}, 0.1);
  shorter.WorkCount = 4;
  EXPECT_THROW(PrepareProfile(DebugTables{}, shorter), LegacyError);
}

TEST_F(OctaveTest, SinglePassIsTheLiteralStepsAndSumsBack) {
  // The bands come back through half-length real transforms on two cores; each must match the literal
  // sequence of complex transforms of the whole length far inside 1e-9 of the profile's range.
  for (const std::int32_t n : {3000, 4096, 5}) {
    ui_.Log.clear();
    ProfileRecord record = MakeRecord(RoughProfile(n, 0.1), 0.1);
    ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
    const OctaveBandSet& set = record.Analysis.Octave;
    const Waves literal = LiteralSplit(record.Analysis, record.Analysis.Profile.Values);
    EXPECT_LT(WorstRelativeDifference(set, literal, record.WorkProfile), 1e-12) << n;
    EXPECT_LT(WorstSumBack(record), 1e-9) << n;
    EXPECT_TRUE(set.Calculated);
    EXPECT_FALSE(set.Converged);
    EXPECT_EQ(ui_.Log.front().Kind, "progress-start");
    EXPECT_EQ(ui_.Log.front().Title, "プロファイル分解計算");
    EXPECT_EQ(ui_.Log.back().Kind, "progress-exit");
    if (n != 3000) continue;
    // The mean level (12 mm plus half the slope) lies in octave 1, the other bands average about 0.
    EXPECT_NEAR(set.Band[1].Stats.Mean, record.Analysis.Profile.Stats.Mean, 0.5);
    for (std::size_t k = 2; k <= 9; ++k) EXPECT_LT(std::abs(set.Band[k].Stats.Mean), 0.5) << k;
  }
}

TEST_F(OctaveTest, MeasuredProfileSumsBack) {
  const auto file = testing::SharedDataDir() / "derived" / "profile_1_derived_mm.erd";
  if (!std::filesystem::exists(file)) GTEST_SKIP() << "shared data absent";
  ProfileRecord record;
  ASSERT_TRUE(ReadERD(session, file.string(), record.Erd));
  record.WorkCount = record.Erd.NumSamples;
  record.WorkProfile = record.Erd.Elevation;
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
  const auto [low, high] = std::minmax_element(record.WorkProfile.begin(), record.WorkProfile.end());
  EXPECT_LT(WorstSumBack(record), 1e-10 * std::max(-*low, *high) + 1e-9);
}

TEST_F(OctaveTest, SineOfOneOctaveLandsInThatBand) {
  // 4.4 m lies in octave 5 (3.2..6.4 m), near its geometric middle; 4096 samples at 0.1 m (409.6 m).
  const double dx = 0.1, amplitude = 10;
  std::vector<double> y(4096);
  for (int i = 0; i < 4096; ++i) y[static_cast<std::size_t>(i)] = amplitude * std::sin(2 * kPi * i * dx / 4.4);
  ProfileRecord record = MakeRecord(y, dx);
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
  const OctaveBandSet& set = record.Analysis.Octave;
  const double rms = amplitude / std::sqrt(2.0);
  EXPECT_NEAR(set.Band[5].Stats.StdDev, rms, 0.01 * rms);
  // The fold bends the sine at both ends; the brick-wall masks spread that bend into the neighbouring
  // octaves near the ends only. In the middle half the other bands stay small and octave 5 is the sine.
  for (int k = 1; k <= 9; ++k) {
    if (k == 5) continue;
    EXPECT_LT(set.Band[static_cast<std::size_t>(k)].Stats.StdDev, 0.06 * rms) << "octave " << k;
    double middle = 0;
    for (int i = 1024; i <= 3072; ++i) middle = std::max(middle, std::abs(RealAt(set, k, i)));
    EXPECT_LT(middle, 0.02 * amplitude) << "octave " << k;
  }
  double worst = 0;
  for (int i = 1024; i <= 3072; ++i)
    worst = std::max(worst, std::abs(RealAt(set, 5, i) - y[static_cast<std::size_t>(i - 1)]));
  EXPECT_LT(worst, 0.03 * amplitude);
}

TEST_F(OctaveTest, TenMetreSineHoldsItsEnergyInOctaveFour) {
  // 10 m lies in octave 4 (6.4..12.8 m); 8192 samples at 0.05 m (409.6 m, about 41 wavelengths).
  const double dx = 0.05, amplitude = 3;
  std::vector<double> y(8192);
  for (int i = 0; i < 8192; ++i) y[static_cast<std::size_t>(i)] = amplitude * std::sin(2 * kPi * i * dx / 10.0);
  ProfileRecord record = MakeRecord(y, dx);
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
  const OctaveBandSet& set = record.Analysis.Octave;
  double total = 0;
  for (int k = 1; k <= 9; ++k) total += std::pow(set.Band[static_cast<std::size_t>(k)].Stats.StdDev, 2);
  // Energy as variance: octave 4 holds nearly all of it, and its deviation is the sine's rms.
  EXPECT_GT(std::pow(set.Band[4].Stats.StdDev, 2), 0.95 * total);
  EXPECT_NEAR(set.Band[4].Stats.StdDev, amplitude / std::sqrt(2.0), 0.02 * amplitude);
}

TEST_F(OctaveTest, PeelingIsTheLiteralStepsWithinRounding) {
  // With all passes forced and with the default ratio, which stops stages at different passes.
  const double dx = 0.05;
  ProfileRecord record = MakeRecord(RoughProfile(1500, dx), dx);
  for (const FilterConvergence limits : {FilterConvergence{0.0, 3}, FilterConvergence{1.1, 10}}) {
    ASSERT_TRUE(DecomposeProfile(session, record, true, limits, true));
    const Waves literal = LiteralPeeling(record.Analysis, limits.StdRatio, limits.MaxPasses);
    EXPECT_LT(WorstRelativeDifference(record.Analysis.Octave, literal, record.WorkProfile), 1e-11)
        << limits.StdRatio;
  }
}

TEST_F(OctaveTest, ShortTransformLeavesOctaveOneEmpty) {
  // 100 samples at 0.1 m: FftLength2 = 256, 25.6 m, below 51.2 m; the mean goes to octave 2.
  std::vector<double> y(100, 7.0);
  ProfileRecord record = MakeRecord(y, 0.1);
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
  const OctaveBandSet& set = record.Analysis.Octave;
  for (int i = 1; i <= 100; ++i) {
    EXPECT_EQ(RealAt(set, 1, i), 0.0);
    EXPECT_NEAR(RealAt(set, 2, i), 7.0, 1e-12);
  }
}

TEST_F(OctaveTest, SumsFollowTheSettingsLists) {
  session.Settings.LongOctaves = {1, 2, 3};
  session.Settings.ShortOctaves = {9, 3, 9};  // an octave listed twice counts once
  ProfileRecord record = MakeRecord(RoughProfile(600, 0.1), 0.1);
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
  const OctaveBandSet& set = record.Analysis.Octave;
  for (int i = 1; i <= 600; ++i) {
    EXPECT_DOUBLE_EQ(set.LongSum.Values[i], RealAt(set, 1, i) + RealAt(set, 2, i) + RealAt(set, 3, i));
    EXPECT_DOUBLE_EQ(set.ShortSum.Values[i], RealAt(set, 3, i) + RealAt(set, 9, i));
  }
  EXPECT_TRUE(set.LongSum.Calculated);
  EXPECT_EQ(set.ShortSum.DisplayMax, set.ShortSum.Stats.Maximum);

  session.Settings.LongOctaves.clear();
  session.Settings.ShortOctaves.clear();
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths), true));
  EXPECT_EQ(set.LongSum.Values, Array1<double>(std::vector<double>(600, 0.0)));
  EXPECT_EQ(set.ShortSum.Values, Array1<double>(std::vector<double>(600, 0.0)));
}

TEST_F(OctaveTest, ValidBandsAreNotRecomputedUnlessForcedOrTheOptionChanges) {
  ProfileRecord record = MakeRecord(RoughProfile(600, 0.1), 0.1);
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
  record.Analysis.Octave.Band[4].Values[1] = 1234.5;  // a mark a recomputation would remove
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
  EXPECT_EQ(record.Analysis.Octave.Band[4].Values[1], 1234.5);
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths), true));
  EXPECT_NE(record.Analysis.Octave.Band[4].Values[1], 1234.5);

  record.Analysis.Octave.Band[4].Values[1] = 1234.5;
  ASSERT_TRUE(DecomposeProfile(session, record, true, FilterConvergence{1.1, 2}, false));
  EXPECT_NE(record.Analysis.Octave.Band[4].Values[1], 1234.5);
  EXPECT_TRUE(record.Analysis.Octave.Converged);

  record.Analysis.Octave.Band[4].Values[1] = 1234.5;
  PrepareProfile(DebugTables{}, record);  // a changed profile makes the bands stale
  ASSERT_TRUE(DecomposeProfile(session, record, true, FilterConvergence{1.1, 2}, false));
  EXPECT_NE(record.Analysis.Octave.Band[4].Values[1], 1234.5);
}

TEST_F(OctaveTest, PeelingShowsEachStageAndPassAndMovesTheBarByTen) {
  ProfileRecord record = MakeRecord(RoughProfile(600, 0.1), 0.1);
  // A ratio of 0 never converges, so every stage runs all three passes: 12 passes.
  ASSERT_TRUE(DecomposeProfile(session, record, true, FilterConvergence{0.0, 3}, false));
  const std::vector<std::string> captions = testing::ProgressTexts(ui_);
  ASSERT_EQ(captions.size(), 14u);
  EXPECT_EQ(captions[0], "しばらくお待ちください。");
  EXPECT_EQ(captions[1], "収束計算中・・・・");
  EXPECT_EQ(captions[2], "収束計算中( 1-OCT、9-OCT )  1 / 3 ・・・・");
  EXPECT_EQ(captions[4], "収束計算中( 1-OCT、9-OCT )  3 / 3 ・・・・");
  EXPECT_EQ(captions[5], "収束計算中( 2-OCT、8-OCT )  1 / 3 ・・・・");
  EXPECT_EQ(captions[13], "収束計算中( 4-OCT、6-OCT )  3 / 3 ・・・・");
  const std::vector<int> bar = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 0, 10, 100};
  EXPECT_EQ(ui_.ProgressValues, bar);  // the last 100 marks the end of the split
}

TEST_F(OctaveTest, PeelingStopsAStageWhenBothBandsHaveConverged) {
  ProfileRecord record = MakeRecord(RoughProfile(600, 0.1), 0.1);
  // With an enormous ratio limit the first pass of each stage already counts as converged.
  ASSERT_TRUE(DecomposeProfile(session, record, true, FilterConvergence{1e300, 10}, false));
  const auto captions = testing::ProgressTexts(ui_);
  EXPECT_EQ(std::count_if(captions.begin(), captions.end(), [](const std::string& text) {
              return text.find(" / 10 ") != std::string::npos;
            }), 4);
}

TEST_F(OctaveTest, EmptyOctaveStopsThePeelingAndKeepsTheStoredBands) {
  // At 0.5 m the highest frequency of the transform is about 1 c/m, below 1/0.8: octaves 8 and 9 are
  // empty, and the convergence test of stage 1 divides by a zero deviation.
  ProfileRecord record = MakeRecord(RoughProfile(400, 0.5), 0.5);
  ASSERT_TRUE(DecomposeProfile(session, record, false, ReadFilterConvergence(session.Paths)));
  for (int i = 1; i <= 400; ++i) {
    EXPECT_EQ(RealAt(record.Analysis.Octave, 8, i), 0.0);
    EXPECT_EQ(RealAt(record.Analysis.Octave, 9, i), 0.0);
  }
  const OctaveBandSet before = record.Analysis.Octave;
  EXPECT_FALSE(DecomposeProfile(session, record, true, FilterConvergence{1.1, 10}, false));
  EXPECT_EQ(record.Analysis.Octave.Band[3].Values, before.Band[3].Values);
  EXPECT_FALSE(record.Analysis.Octave.Converged);
  const auto messages = ui_.Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].Title, "[ bas計算共通 : Cal_プロファイル分解_収束計算 ]");
  EXPECT_TRUE(std::filesystem::exists(dir_ / "Temp" / "Sorvik_Err.log"));
  EXPECT_EQ(ui_.Log.back().Kind, "progress-exit");
}

}  // namespace
}  // namespace velmora
