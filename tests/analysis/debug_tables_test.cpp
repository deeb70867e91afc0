// The intermediate tables the computations write into the Debug folder: none while debugging is off,
// and when it is on each file in Shift-JIS with CR LF, its head, its length and the rows worked out by
// hand. One case per computation.
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/fft_filter.h"
#include "analysis/iri.h"
#include "analysis/mirror_extend.h"
#include "analysis/moving_average.h"
#include "analysis/octave.h"
#include "analysis/psd.h"
#include "analysis/psd_window.h"
#include "base/app_paths.h"
#include "base/settings.h"
#include "base/text_encoding.h"
#include "support/analysis_fixture.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

constexpr std::size_t kEveryRow = static_cast<std::size_t>(-1);

// A row as written, or a pattern of it: "…" stands for any text, "#" for one digit.
bool Matches(std::string_view pattern, std::string_view text) {
  constexpr std::string_view kAny = "…";
  if (pattern.starts_with(kAny)) {
    pattern.remove_prefix(kAny.size());
    for (std::size_t skip = 0; skip <= text.size(); ++skip)
      if (Matches(pattern, text.substr(skip))) return true;
    return false;
  }
  if (pattern.empty() || text.empty()) return pattern.empty() && text.empty();
  const bool same = pattern[0] == '#' ? std::isdigit(static_cast<unsigned char>(text[0])) != 0 : pattern[0] == text[0];
  return same && Matches(pattern.substr(1), text.substr(1));
}

struct Table {
  std::string file;
  std::size_t lines;                                     // 0: only that it is there
  std::vector<std::pair<std::size_t, std::string>> rows;  // row (0 the head) or kEveryRow after the head
};

struct DebugCase {
  const char* name;
  bool bySwitch;  // the PSD follows the debug switch of the paths, the others DebugLevel
  std::function<void(Session&)> run;
  std::vector<Table> tables;
};
void PrintTo(const DebugCase& c, std::ostream* out) { *out << c.name; }

class DebugTablesTest : public testing::SessionTest, public ::testing::WithParamInterface<DebugCase> {};

TEST_P(DebugTablesTest, WrittenOnlyWhenAskedForWithTheirHeadsAndHandRows) {
  const DebugCase& c = GetParam();
  const auto debug = dir_ / "Debug";
  c.run(session);
  EXPECT_FALSE(std::filesystem::exists(debug)) << "debugging off";

  if (c.bySwitch) session.Paths.DebugSwitch = true;
  else session.Settings.DebugLevel = 1;
  c.run(session);
  for (const Table& table : c.tables) {
    SCOPED_TRACE(table.file);
    ASSERT_TRUE(std::filesystem::exists(debug / table.file));
    const std::string bytes = testing::ReadBytes(debug / table.file);
    EXPECT_TRUE(bytes.ends_with("\r\n"));
    EXPECT_EQ(bytes.find("\n"), bytes.find("\r\n") + 1) << "lines end in CR LF";
    const auto lines = ReadSystemTextLines(debug / table.file);
    if (table.lines > 0) { EXPECT_EQ(lines.size(), table.lines); }
    for (const auto& [row, pattern] : table.rows) {
      if (row != kEveryRow) {
        ASSERT_LT(row, lines.size());
        EXPECT_TRUE(Matches(pattern, lines[row])) << "row " << row << ": " << lines[row] << "\n  expected " << pattern;
      } else {
        for (std::size_t r = 1; r < lines.size(); ++r)
          ASSERT_TRUE(Matches(pattern, lines[r])) << "row " << r << ": " << lines[r] << "\n  expected " << pattern;
      }
    }
  }
}

void Fold(Session& session) {
  Array1<double> dest;
  std::int32_t count = 0;
  MirrorExtend(DebugTablesOf(session), true, 1, 3, Array1<double>({1, 2, 4}), count, dest);
  MirrorExtend(DebugTablesOf(session), false, 1, 3, Array1<double>({1, 2, 4}), count, dest, "観音開きデータ(移動平均フィルター).csv");
}

void FourierHiPass(Session& session) {
  std::int32_t seq = 0;
  WaveSeries result, other;  // N = 8: lengths 8 and 16
  Cal_FFTフィルタ_単体処理(session, seq, 0, 8, 8, 16, 1.0, FilterKind::HiPass, 10, 2, Array1<double>({1, 2, 4, 7, 11, 16, 22, 29}),
                    result, other);
}

void IriOfAWave(Session& session) {
  const std::vector<double> wave = testing::Sine(48, 20, 4);  // 48 samples at 0.25 m
  AnalysisBlock block = testing::BlockWithBands(wave, 0.25, wave);
  IriParams params;
  params.InitFilter = 11;
  CalcIriFilter(DebugTablesOf(session), block, params);
  params.IriBaseLength = 2.5;
  CalcIriProfile(DebugTablesOf(session), block, params, false);
}

void SmoothedPsd(Session& session) {
  std::int32_t count = 0;
  std::vector<PsdPair> pairs;
  PsdSmooth(session, 100, Array1<double>(testing::Road(100)), 0.1, kWindowHanning, true, 3, count, pairs);
}

void OctaveSplit(Session& session) {
  ProfileRecord record = testing::MakeProfile("road", 0.1, testing::Road(300));
  DecomposeProfile(session, record, false, FilterConvergence{});
}

INSTANTIATE_TEST_SUITE_P(
    Computations, DebugTablesTest,
    ::testing::Values(
        // Point fold of (1, 2, 4) by one: 2·1 − 2, then the samples, then 2·4 − 2; the line fold ends in 2.
        DebugCase{"MirrorFold", false, Fold,
                  {{"観音開きデータ.csv", 6,
                    {{0, "No, 観音開個数折り返し個数 = 1"}, {1, "1,0.000000000000000"}, {2, "2,1.000000000000000"},
                     {3, "3,2.000000000000000"}, {4, "4,4.000000000000000"}, {5, "5,6.000000000000000"}}},
                   {"観音開きデータ(移動平均フィルター).csv", 6, {{5, "5,2.000000000000000"}}}}},
        // Long cut 2 m at 0.5 m: window 4, mean of sample 2 is 1.75, so 2 − 1.75 passes.
        DebugCase{"MovingAverage", false,
                  [](Session& session) { MovingAverageFilter(DebugTablesOf(session), 5, Array1<double>({1, 2, 4, 7, 11}), 0.5, FilterKind::HiPass, 2, 1.5); },
                  {{"Filter.csv", 6,
                    {{0, "No, Dist, Profile, Filter[移動平均](HiPass)"}, {2, "2,0.500,2.000000000000000,0.250000000000000"}}},
                   {"観音開きデータ(移動平均フィルター).csv", 0, {}}}},
        DebugCase{"FourierFilter", false, FourierHiPass,
                  {{"001_FFTフィルタ_収束回数=00_Profile.csv", 9, {{0, "No, Profile"}, {8, "8,29.000000"}}},
                   // Element 1 is judged at 16 m, not below 10 m; element 2 by its own harmonic at 8 m.
                   {"002_FFTフィルタ用Filter LongCutFil=10.000  ShrtCutFil=2.000 ( HiPass ).dat", 16,
                    {{0, "***** ******* *******  0"}, {1, "00002 0.06250 16.00000  1"}, {15, "00016 0.06250 16.00000  1"}}},
                   {"003_FFTフィルタ結果 LongCutFil=10.000  ShrtCutFil=2.000 ( HiPass ).csv", 9,
                    {{0, "No, Dist, Profile, Filter[FFT](HiPass), Filter[FFT]_Other, (Prof-FFT1-FFT2)"},
                     {2, "2,1.000,2.000000000000000,…"}}}}},
        // 48 samples, IBASE 1: 47 responses; the 2.5 m windows span 11 of them, 37 windows.
        DebugCase{"IriFilterAndWindow", false, IriOfAWave,
                  {{"IRI_Filter.csv", 48, {{0, "No, IRI Filter(10m)"}, {1, "1,…#.###############"}}},
                   {"IRI_GETPI(2.50m).csv", 48, {{0, "No, IRI_GETPI(*)"}}},
                   {"IRI(2.50m).csv", 38, {{0, "No, Dist, Profile, IRI(10m)"}, {2, "2,0.500,…"}}}}},
        // 100 samples fold out to 128: 128 rows; h = 64 rows of smoothing, the last behind the smoothed ones.
        DebugCase{"Psd", true, SmoothedPsd,
                  {{"PSD.csv", 129, {{0, "No, Profile, 窓関数, Profile*窓関数, ABS(FFT), PSD値, f(Hz)"}, {1, "1,…"}}},
                   {"PSD平滑化.csv", 65,
                    {{0, "No, WN, PSD, WN比, WN比判定, 平滑化WN(X軸), B-Start, 自至内最小行, 平滑化PSD(Y軸)"}, {64, "…,,,"}}}}},
        // 300 samples: FftLength2 1024; the nine bands sum back to the profile in every row.
        DebugCase{"OctaveSplit", false, OctaveSplit,
                  {{"BandFilter.dat", 1 + 1024, {}},
                   {"Profile.csv", 301, {}},
                   {"001_FFT_(0)_収束回数=00_Profile.csv", 0, {}},
                   {"002_FFT_(0)_収束回数=00_[OCT1～OCT9].csv", 301,
                    {{0, "No, Profile, OCT-1, OCT-2, OCT-3, OCT-4, OCT-5, OCT-6, OCT-7, OCT-8, OCT-9, SUM(OCT1:OCT9), "
                         "Abs(Profile-SUM)"},
                     {kEveryRow, "…,0.000000000######"}}}}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace velmora
