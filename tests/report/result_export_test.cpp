// The result files of the analysis tabs and the profile summary, from records filled by hand: the
// position axis, the number formats and the null rule of every table, and each kind's lines; the
// statistics and cross-correlation files as saved into the folder a scripted dialog answers with.
#include "report/result_export.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>
#include <regex>

#include "analysis/band_reduction.h"
#include "base/legacy_error.h"
#include "base/text_encoding.h"
#include "evaluation/correlation_tables.h"
#include "evaluation/evaluation_fixture.h"
#include "report/evaluation_files.h"
#include "report/profile_summary.h"
#include "report/result_csv.h"
#include "support/checks.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using Lines = std::vector<std::string>;

Lines PointCsvLines(const PositionAxis& axis, const ProfileGeometry& geometry, const std::vector<PointColumn>& columns) {
  return CollectLines([&](const LineOut& out) { WritePointCsv(out, axis, geometry, columns); });
}

const PositionAxis kZero, kKpKm{PositionMode::Kp, KpUnit::Km, false}, kKpM{PositionMode::Kp, KpUnit::M, false};

TEST(PositionAxis, ZeroBasedAndKpForwardAndBackward) {
  EXPECT_DOUBLE_EQ(SamplePosition(kZero, 1, 0.25, 12.3, 0), 0.0);
  EXPECT_DOUBLE_EQ(SamplePosition(kZero, 5, 0.25, 12.3, 1), 1.0);
  EXPECT_NEAR(SamplePosition(kKpKm, 3, 0.5, 12.3, 0), 12.301, 1e-12);
  EXPECT_NEAR(SamplePosition(kKpKm, 3, 0.5, 12.3, 1), 12.299, 1e-12);
  EXPECT_NEAR(SamplePosition(kKpKm, 3, 0.5, kNoValue, 0), 0.001, 1e-12);  // no KP counts as 0
  EXPECT_NEAR(SamplePosition(kKpM, 3, 0.5, 12.3, 1), 12299.0, 1e-9);
}

// The heads without the unit word and the zero-based section head are those of the tables below.
TEST(ResultCsv, UnitWordInTheDistanceHeadAndTheKpSectionHead) {
  std::string heads;
  WriteDistanceHeader(heads, kKpKm, true);
  WriteDistanceHeader(heads, kKpM, true);
  WriteSectionHeader(heads, kKpKm);
  EXPECT_EQ(heads, "Distance(km), Distance(m), Start(KP), End(KP), Mid(KP), ");
}

TEST(ResultCsv, NumberFormatsAndTheNullRule) {
  EXPECT_EQ(FormatDistanceField(1.234567), "1.23457");
  EXPECT_EQ(FormatPsdField(0.00012345), "1.2345000000E-04");
  EXPECT_EQ(FormatDistanceField(kNoValue) + FormatPsdField(kNoValue), "");
}

TEST(ResultCsv, PointTableWritesPositionsValuesAndEmptyFields) {
  const std::vector<double> profile{1.5, kNoValue, -0.123456789};
  const std::vector<double> shorter{2.0};
  EXPECT_EQ(PointCsvLines(kZero, {0.25, kNoValue, 0}, {{"Elevetion(mm)", profile}, {"IRI(mm/m)", shorter}}),
            (Lines{"Distance(m), Elevetion(mm), IRI(mm/m)", "0.00000, 1.50000000, 2.00000000", "0.25000, , ",
                   "0.50000, -0.12345679, "}));
  EXPECT_EQ(PointCsvLines(kKpKm, {0.5, 12.3, 1}, {{"Elevetion(mm)", profile}}),
            (Lines{"Distance(KP), Elevetion(mm)", "12.30000, 1.50000000", "12.29950, ", "12.29900, -0.12345679"}));
}

TEST(ResultCsv, SectionTablePlacesStartEndAndMiddle) {
  const std::vector<SectionRow> rows{{1.0, 1.01, {2.0, kNoValue}}, {1.01, 1.02, {kNoValue, 0.5}}};
  EXPECT_EQ(SectionCsvLines(kZero, {0.1, 1.0, 0}, {"IRI(mm/m)", "IRI(OCT-1)"}, rows),
            (Lines{"Start(m), End(m), Mid(m), IRI(mm/m), IRI(OCT-1)", "0.00000, 10.00000, 5.00000, 2.00000000, ",
                   "10.00000, 20.00000, 15.00000, , 0.50000000"}));
  // KP falling along the profile: zero-based distances still grow.
  const std::vector<SectionRow> back{{1.0, 0.99, {1.0}}};
  EXPECT_EQ(SectionCsvLines(kZero, {0.1, 1.0, 1}, {"IRI(mm/m)"}, back)[1], "0.00000, 10.00000, 5.00000, 1.00000000");
  EXPECT_EQ(SectionCsvLines(kKpM, {0.1, 1.0, 1}, {"IRI(mm/m)"}, back)[1],
            "1000.00000, 990.00000, 995.00000, 1.00000000");
}

// Long tables are formatted in blocks on two threads: every row must still come once, in order, at
// the block edges too, and a value that cannot be written stops the table from either thread.
TEST(ResultCsv, LongTablesKeepEveryRowInOrderAndStopAtABadValueInAnyBlock) {
  constexpr std::size_t kRows = 70001;  // past four blocks, the last one short
  std::vector<double> values(kRows);
  for (std::size_t r = 0; r < kRows; ++r) values[r] = static_cast<double>(r) / 4;  // exact quarters
  const Lines lines = PointCsvLines(kZero, {1.0, kNoValue, 0}, {{"v", values}});
  ASSERT_EQ(lines.size(), kRows + 1);
  for (const std::size_t r : {std::size_t{0}, std::size_t{16383}, std::size_t{16384}, std::size_t{32768},
                              std::size_t{49151}, kRows - 1}) {
    const std::string quarter[] = {"00", "25", "50", "75"};
    EXPECT_EQ(lines[r + 1], std::to_string(r) + ".00000, " + std::to_string(r / 4) + "." + quarter[r % 4] + "000000")
        << r;
  }
  for (const std::size_t bad : {std::size_t{5}, std::size_t{20000}}) {  // the first and the second thread's block
    std::vector<double> broken = values;
    broken[bad] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(PointCsvLines(kZero, {1.0, kNoValue, 0}, {{"v", broken}}), LegacyError) << bad;
  }
}

// Samples 0.5 m apart from KP 1.0 km.
ProfileRecord Road(std::int32_t count = 3) {
  ProfileRecord r;
  r.FileName = "r.erd";
  r.Erd.StepSize = 0.5;
  r.Erd.KpStart = 1.0;
  r.WorkCount = count;
  return r;
}

// Two samples; band 2 limited to 1.5 mm, band 8 to 0.25 mm, the others without a limit.
ProfileRecord Reduced() {
  ProfileRecord r = Road(2);
  BandReductionBlock& b = r.Analysis.BandReduction;
  for (std::size_t k = 1; k <= 9; ++k) {
    b.Limits[k] = NoLimit;
    b.Result.Reduced[k].Values = Array1<double>{0.0, 0.0};
  }
  b.Limits[2] = 1.5;
  b.Limits[8] = 0.25;
  b.Result.Reduced[2].Values = b.LongSum.Values = Array1<double>{1.5, -0.75};
  b.Result.Reduced[8].Values = b.ShortSum.Values = Array1<double>{-0.25, 0.125};
  b.Result.Total.Values = Array1<double>{1.25, -0.625};
  b.Calculated = true;
  return r;
}

// The filter result is shorter than its array, as the IRI kind makes it; the second value is null.
ProfileRecord Filtered() {
  ProfileRecord r = Road();
  r.Analysis.Filter.FilterWave.Values = Array1<double>{1.0, kNoValue, 2.5, 9.0};
  r.Analysis.Filter.FilterCount = 3;
  return r;
}

// Two samples; octave 3 and 7 carry values, the long sum is octave 3 and the short one octave 7.
ProfileRecord Octaves() {
  ProfileRecord r = Road(2);
  OctaveBandSet& o = r.Analysis.Octave;
  for (std::size_t k = 1; k <= 9; ++k) o.Band[k].Values = Array1<double>{0.0, 0.0};
  o.Band[3].Values = o.LongSum.Values = Array1<double>{0.5, -0.25};
  o.Band[7].Values = o.ShortSum.Values = Array1<double>{1.0, 2.0};
  return r;
}

struct PointFile {
  const char* name;
  std::function<ProfileRecord()> record;
  ExportKind kind;
  PositionAxis axis;
  int octave;
  std::size_t lines;
  std::vector<std::pair<std::size_t, std::string>> rows;
};
void PrintTo(const PointFile& c, std::ostream* out) { *out << c.name; }

class PointFileTest : public ::testing::TestWithParam<PointFile> {};

TEST_P(PointFileTest, Lines) {
  const PointFile& c = GetParam();
  const Lines lines = PointKindLines(c.kind, c.record(), c.axis, c.octave);
  ASSERT_EQ(lines.size(), c.lines);
  for (const auto& [row, text] : c.rows) EXPECT_EQ(lines[row], text) << "row " << row;
}

constexpr ExportKind kProfile = ExportKind::Profile;

INSTANTIATE_TEST_SUITE_P(
    Kinds, PointFileTest,
    ::testing::Values(
        PointFile{"FilteredProfileGoesByItsCountWithTheNullRule", Filtered, kProfile, {}, 0, 4,
                  {{0, "Distance(m), Elevetion(mm)"}, {1, "0.00000, 1.00000000"}, {2, "0.50000, "},
                   {3, "1.00000, 2.50000000"}}},
        PointFile{"FilteredProfileOnTheKp", Filtered, kProfile, kKpKm, 0, 4, {{3, "1.00100, 2.50000000"}}},
        PointFile{"OneOctave", Octaves, ExportKind::OctaveBand, {}, 3, 3,
                  {{0, "Distance(m), r Octave 3(mm)"}, {1, "0.00000, 0.50000000"}, {2, "0.50000, -0.25000000"}}},
        // The sum of the nine: 0.5 + 1.0 and -0.25 + 2.0.
        PointFile{"AllOctavesWithTheirSums", Octaves, ExportKind::OctaveAll, {}, 0, 3,
                  {{0, "Distance(m), OCT-1(mm), OCT-2(mm), OCT-3(mm), OCT-4(mm), OCT-5(mm), OCT-6(mm), OCT-7(mm), "
                       "OCT-8(mm), OCT-9(mm), OCT-合算(mm), OCT-長波長(mm), OCT-短波長(mm)"},
                   {2, "0.50000, 0.00000000, 0.00000000, -0.25000000, 0.00000000, 0.00000000, 0.00000000, 2.00000000, "
                       "0.00000000, 0.00000000, 1.75000000, -0.25000000, 2.00000000"}}},
        PointFile{"OctaveSum", Octaves, ExportKind::OctaveSum, {}, 0, 3,
                  {{0, "Distance(m), r 合算値(mm)"}, {1, "0.00000, 1.50000000"}, {2, "0.50000, 1.75000000"}}},
        PointFile{"OctaveLongSum", Octaves, ExportKind::OctaveLong, {}, 0, 3, {{0, "Distance(m), r Octave 長波長(mm)"}}},
        PointFile{"OctaveShortSum", Octaves, ExportKind::OctaveShort, {}, 0, 3,
                  {{0, "Distance(m), r Octave 短波長(mm)"}, {2, "0.50000, 2.00000000"}}},
        PointFile{"AllReducedBandsNameEachLimit", Reduced, ExportKind::BandAll, {}, 0, 3,
                  {{0, "Distance(m), OCT-1(99999.000)(mm), OCT-2(1.500)(mm), OCT-3(99999.000)(mm), "
                       "OCT-4(99999.000)(mm), OCT-5(99999.000)(mm), OCT-6(99999.000)(mm), OCT-7(99999.000)(mm), "
                       "OCT-8(0.250)(mm), OCT-9(99999.000)(mm), OCT-合算(mm), OCT-長波長(mm), OCT-短波長(mm)"},
                   {2, "0.50000, 0.00000000, -0.75000000, 0.00000000, 0.00000000, 0.00000000, 0.00000000, "
                       "0.00000000, 0.12500000, 0.00000000, -0.62500000, -0.75000000, 0.12500000"}}},
        PointFile{"OneReducedBandCarriesItsLimit", Reduced, ExportKind::BandOne, {}, 8, 3,
                  {{0, "Distance(m), r バンド別低減 8-Octave=0.25mm"}, {1, "0.00000, -0.25000000"},
                   {2, "0.50000, 0.12500000"}}},
        PointFile{"ReducedLongSum", Reduced, ExportKind::BandLong, {}, 0, 3, {{0, "Distance(m), r バンド別低減(長波長)(mm)"}}},
        PointFile{"ReducedShortSum", Reduced, ExportKind::BandShort, {}, 0, 3,
                  {{0, "Distance(m), r バンド別低減(短波長)(mm)"}}},
        PointFile{"ReducedTotal", Reduced, ExportKind::BandSum, {}, 0, 3,
                  {{0, "Distance(m), r バンド別低減(合算値)(mm)"}, {1, "0.00000, 1.25000000"}}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ResultExport, BandNumbersPastNineAreRefusedAndAReductionDoesNotStandInForTheSplit) {
  EXPECT_THROW(PointKindLines(ExportKind::OctaveBand, Octaves(), PositionAxis{}, 10), LegacyError);
  EXPECT_THROW(PointKindValues(ExportKind::BandOne, Reduced(), 10), LegacyError);
  ProfileRecord r = Reduced();
  EXPECT_TRUE(HasResult(ExportKind::BandSum, r));
  EXPECT_FALSE(HasResult(ExportKind::OctaveAll, r));
  r.Analysis.BandReduction.Calculated = false;
  EXPECT_FALSE(HasResult(ExportKind::BandAll, r));
}

TEST(ResultExport, WordsOfTheFileNames) {
  const struct {
    FilterCalcType type;
    FilterKind band;
    double shortCut;
    bool slopeMode;
    const char* word;
  } cases[] = {{FilterCalcType::MovingAverage, FilterKind::BandPass, 10, false, "MABP_50-10m"},
               {FilterCalcType::Fourier, FilterKind::LowPass, 2.5, false, "FTLP_2.5m"},
               {FilterCalcType::Fourier, FilterKind::HiPass, 2.5, false, "FTHP_50m"},
               {FilterCalcType::Slope, FilterKind::HiPass, 2.5, true, "SLHC"},
               {FilterCalcType::Iri, FilterKind::HiPass, 2.5, true, "IRI"}};
  for (const auto& c : cases) {
    const FilterSpec f{.CalcType = c.type, .Band = c.band, .SlopeMode = c.slopeMode, .LongCut = 50, .ShortCut = c.shortCut};
    EXPECT_EQ(FilterWord(f), c.word);
  }
  EXPECT_EQ(IriKindWord(ExportKind::IriContinuous, 10, 0), "10m連続");
  EXPECT_EQ(IriKindWord(ExportKind::IriFixed, 10, 200), "200m固定");
}

TEST(ResultExport, RawPsdRowsFromTheFirstWaveNumberToNyquist) {
  ProfileRecord r = Road();
  r.Analysis.Psd.PsdCount = 4;
  r.Analysis.Psd.PsdValues = Array1<double>{9.0, 1.0, 2.0, 3.0};
  // Bin i: wave number (i - 1) / (4 * 0.5); bins 2 and 3 (Nyquist) are written.
  EXPECT_EQ(PsdRawLines(r), (Lines{"波長(m/cycle), 周期(cycle/m), PSD(m^2-m/cycle)",
                                   "2.0000000000E+00, 5.0000000000E-01, 1.0000000000E+00",
                                   "1.0000000000E+00, 1.0000000000E+00, 2.0000000000E+00"}));
}

TEST(ResultExport, IriWholeAndFixedSections) {
  ProfileRecord r = Road();
  r.Analysis.Iri.IriWholeProfile = 1.23456789;
  ProfileRecord empty = Road();
  empty.FileName = "e.erd";
  EXPECT_EQ(IriWholeLines({&r, &empty}),
            (Lines{"Profile, 区間, IRI(mm/m)", "r, 全区間IRI(1.00m), 1.23456789", "e, 全区間IRI(1.00m), "}));

  SectionIri& s = r.Analysis.Sections;
  s.SectionCount = 2;
  s.Sec10 = Array1<SectionEntry>{{1, 1.0, 1.0005, 0.5, 1, -1}, {20, 1.0005, 1.0105, kNoValue, 2, 0}};
  s.Sec100 = s.Sec200 = Array1<SectionEntry>{{1, 1.0, 1.0005, kNoValue, 1, -1}, {21, 1.0, 1.0105, 0.75, 1, -1}};
  const Lines fixed = IriFixedLines(r, PositionAxis{}, 100);
  ASSERT_GE(fixed.size(), 4u);
  EXPECT_EQ(Lines(fixed.begin(), fixed.begin() + 4),
            (Lines{"Start(m), End(m), Mid(m), IRI(mm/m)", "0.00000, 10.50000, 5.25000, 0.75000000", "",
                   "<< 10m固定（合計）>>"}));
  EXPECT_THROW(IriFixedLines(r, PositionAxis{}, 50), LegacyError);
}

TEST(ProfileSummary, WeighsValuedSectionsByLengthAndPicksTheWidestBand) {
  ProfileRecord r;
  r.FileName = "a.erd";
  r.Erd.StepSize = 0.25;
  r.WorkCount = 801;  // 200 m
  r.Analysis.Iri.IriWholeProfile = 2.5;
  // A short first piece of the grid (100 samples), a merged member without a value, which does not
  // count, and 300 samples: (2.0 x 100 + 3.5 x 300) / 400 = 3.125.
  r.Analysis.Sections.Sec100 = Array1<SectionEntry>{{100, 0, 0, 2.0}, {400}, {300, 0, 0, 3.5}};
  OctaveBandSet& o = r.Analysis.Octave;
  o.Calculated = true;
  o.Band[4].Stats.StdDev = o.Band[6].Stats.StdDev = 1.75;  // a tie keeps the longer band
  o.Band[9].Stats.StdDev = 0.5;
  const Lines table = SummaryTableLines({SummarizeProfile(r)});
  ASSERT_EQ(table.size(), 2u);
  // Columns right-aligned to the head's widths: 7 for the name, then 9, 8, 9 and 18, two blanks apart.
  const std::string gap = "  ";
  EXPECT_EQ(table[1], "a      " + gap + "   200.00" + gap + "   0.250" + gap + "    2.500" + gap +
                          std::string(13, ' ') + "3.125" + gap + "OCT-4 (1.750)");

  ProfileRecord bare;
  bare.FileName = "b.erd";
  const ProfileSummary none = SummarizeProfile(bare);
  EXPECT_TRUE(IsNoValue(none.MeanIri100));
  EXPECT_EQ(none.StrongestOctave, 0);
}

using testing::ListOf;
using testing::TempDir;

// Profiles at 0.25 m computed over every row of their list, then saved into the folder the
// scripted dialog answers with.
class EvaluationFiles : public testing::EvaluationTest {
 protected:
  static ProfileRecord P(const std::string& name, std::vector<double> samples) {
    return testing::MakeProfile(name, 0.25, std::move(samples));
  }
  static ProfileRecord PlainRamp(const std::string& name, int n, double kp) {
    return testing::MakeProfile(name, 0.25, testing::Ramp(n), kp);
  }
  static StatisticsSelection MeanOfFullWave() {
    StatisticsSelection s;
    s.ProfileBands[0] = true;
    s.ProfileMeasures[0] = true;
    return s;
  }
  bool Run(const ProfileList& list, CorrelationResults& results, std::int32_t filterMode = 0) {
    const CorrelationOptions options{.MaxShiftText = "10", .FilterMode = filterMode};
    return RunCrossCorrelation(session, list, AllRows(list), options, session.CurrentConditions.Iri, results);
  }
  bool Run(ProfileList& list, const StatisticsSelection& s, StatisticsResults& results) {
    return RunStatistics(session, list, AllRows(list), s, {}, results);
  }
  bool Save(const ProfileList& list, const CorrelationResults& results, const std::string& folder,
            const std::string& pattern = "") {
    ui_.Files.push_back({folder});
    return SaveCrossCorrelation(session, list, AllRows(list), results, session.CurrentConditions.Iri, pattern);
  }
};

TEST_F(EvaluationFiles, StatisticsSaveWritesOneFilePerPageWithDataNamedByCaption) {
  StatisticsResults none;
  EXPECT_FALSE(SaveStatistics(session, none, "A", ""));
  EXPECT_EQ(ui_.OnlyMessageText(), "統計値が計算されていません。");

  ProfileList list = ListOf({PlainRamp("A", 400, 1.0)});
  StatisticsResults results;
  ASSERT_TRUE(Run(list, MeanOfFullWave(), results));
  TempDir out;
  ui_.Files.push_back({out.path().string()});
  ASSERT_TRUE(SaveStatistics(session, results, "A", ""));
  const auto names = testing::EntryNames(out.path());
  ASSERT_EQ(names.size(), 4u);  // the four profile pages; the IRI pages hold nothing
  const std::regex pattern("統計値_(全区間|10m|100m|200m)\\(Prof\\)_[0-9]{14}\\.CSV");
  for (const auto& name : names) EXPECT_TRUE(std::regex_match(name, pattern)) << name;
  EXPECT_EQ(ui_.Messages().back().Title, "データ保存");

  TempDir named;
  ui_.Files.push_back({named.path().string()});
  ASSERT_TRUE(SaveStatistics(session, results, "A", "$(PROFILENAME)$-$(出力種別)$"));
  // The page's rows as the statistics give them, comma-separated.
  EXPECT_EQ(ReadSystemTextLines(named / "A-10m(Prof).CSV").at(4), "1.000,20.50000000");
}

TEST_F(EvaluationFiles, CorrelationSaveWritesSixFilesNamedByMeasureFromARunWithoutTheFilter) {
  const ProfileList list = ListOf({P("A", testing::Road(300, 3)), P("B", testing::Road(300))});
  CorrelationResults results;
  ASSERT_TRUE(Run(list, results));

  TempDir out;
  ASSERT_TRUE(Save(list, results, out.path().string()));
  const auto names = testing::EntryNames(out.path());
  ASSERT_EQ(names.size(), 6u);
  const std::regex stamp("CC_(相互相関値|一致度|ずらし量|標準偏差比|IRI誤差率|PSD誤差率)_[0-9]{14}\\.CSV");
  for (const auto& name : names) EXPECT_TRUE(std::regex_match(name, stamp)) << name;
  testing::ExpectShown(ui_.Messages().back(), {"CSV形式で以下のフォルダに保存しました。\r\n\r\n保存先：" + out.path().string(), "データ保存"});

  // A set pattern; the shift file names B against A with shift 3, in Shift-JIS with CR LF.
  TempDir named;
  ASSERT_TRUE(Save(list, results, named.path().string(), "$(PROFILENAME)$_$(出力種別)$"));
  EXPECT_EQ(ReadSystemTextLines(named / "A_ずらし量.CSV").at(2), "A,B,3,3.00000");
  EXPECT_NE(testing::ReadBytes(named / "A_ずらし量.CSV").find("\r\n"), std::string::npos);
  // The folder is remembered and offered the next time.
  EXPECT_FALSE(Save(list, results, ""));
  EXPECT_EQ(ui_.Log.back().Kind, "folder");
  EXPECT_EQ(ui_.Log.back().Text, named.path().string());

  // Filtered results are written from a run without the filter; the shown results stay as they are.
  CorrelationResults filtered;
  ASSERT_TRUE(Run(list, filtered, 1));
  const std::string rho = MeasureText(results, 0, 1, 2);
  ASSERT_NE(rho, MeasureText(filtered, 0, 1, 2));
  TempDir out2;
  ASSERT_TRUE(Save(list, filtered, out2.path().string(), "$(出力種別)$"));
  EXPECT_EQ(ReadSystemTextLines(out2 / "相互相関値.CSV")[2], "A,B," + rho + "," + rho);
  EXPECT_TRUE(filtered.UsedIriFilter);
}

}  // namespace
}  // namespace velmora
