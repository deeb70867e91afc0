// The result files of the analysis tabs and the profile summary, from records filled by hand.
#include "report/result_export.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "analysis/band_reduction.h"
#include "base/common.h"
#include "report/profile_summary.h"

namespace velmora {
namespace {

using Lines = std::vector<std::string>;

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
const PositionAxis kKpKm{PositionMode::Kp, KpUnit::Km, false};

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
  FilterSpec f;
  f.CalcType = FilterCalcType::MovingAverage;
  f.Band = FilterKind::BandPass;
  f.LongCut = 50;
  f.ShortCut = 10;
  EXPECT_EQ(FilterWord(f), "MABP_50-10m");
  f.CalcType = FilterCalcType::Fourier;
  f.Band = FilterKind::LowPass;
  f.ShortCut = 2.5;
  EXPECT_EQ(FilterWord(f), "FTLP_2.5m");
  f.Band = FilterKind::HiPass;
  EXPECT_EQ(FilterWord(f), "FTHP_50m");
  f.CalcType = FilterCalcType::Slope;
  f.SlopeMode = true;
  EXPECT_EQ(FilterWord(f), "SLHC");
  f.CalcType = FilterCalcType::Iri;
  EXPECT_EQ(FilterWord(f), "IRI");
  EXPECT_EQ(IriKindWord(ExportKind::IriContinuous, 10, 0), "10m連続");
  EXPECT_EQ(IriKindWord(ExportKind::IriFixed, 10, 200), "200m固定");
  // The other names are checked where the command line writes the files; these it does not look for.
  EXPECT_EQ(BuiltInExportPattern(ExportKind::PsdRatio), "[$(PROFILENAME)$]_PSD比_$(YYYYMMDDHHNNSS)$");
  EXPECT_EQ(BuiltInExportPattern(ExportKind::BandShort), "$(PROFILENAME)$_バンド別低減_Octave短波長_$(YYYYMMDDHHNNSS)$");
  EXPECT_EQ(ExportSection(ExportKind::Profile), "Filter");
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

}  // namespace
}  // namespace velmora
