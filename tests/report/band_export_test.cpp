// Band-reduction result files and the profile summary, from records filled by hand.
#include <gtest/gtest.h>

#include "analysis/band_reduction.h"
#include "base/common.h"
#include "report/profile_summary.h"
#include "report/result_export.h"

namespace velmora {
namespace {

using Lines = std::vector<std::string>;

// Two samples 0.5 m apart; band 2 limited to 1.5 mm, band 8 to 0.25 mm, the others without a limit.
ProfileRecord Reduced() {
  ProfileRecord r;
  r.FileName = "r.erd";
  r.Erd.StepSize = 0.5;
  r.WorkCount = 2;
  BandReductionBlock& b = r.Analysis.BandReduction;
  for (std::size_t k = 1; k <= 9; ++k) {
    b.Limits[k] = NoLimit;
    b.Result.Reduced[k].Values = Array1<double>{0.0, 0.0};
  }
  b.Limits[2] = 1.5;
  b.Limits[8] = 0.25;
  b.Result.Reduced[2].Values = Array1<double>{1.5, -0.75};
  b.Result.Reduced[8].Values = Array1<double>{-0.25, 0.125};
  b.Result.Total.Values = Array1<double>{1.25, -0.625};
  b.LongSum.Values = Array1<double>{1.5, -0.75};
  b.ShortSum.Values = Array1<double>{-0.25, 0.125};
  b.Calculated = true;
  return r;
}

TEST(BandExport, AllInOneHeadNamesEachLimit) {
  const Lines lines = PointKindLines(ExportKind::BandAll, Reduced(), PositionAxis{});
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0],
            "Distance(m), OCT-1(99999.000)(mm), OCT-2(1.500)(mm), OCT-3(99999.000)(mm), OCT-4(99999.000)(mm), "
            "OCT-5(99999.000)(mm), OCT-6(99999.000)(mm), OCT-7(99999.000)(mm), OCT-8(0.250)(mm), "
            "OCT-9(99999.000)(mm), OCT-合算(mm), OCT-長波長(mm), OCT-短波長(mm)");
  EXPECT_EQ(lines[2],
            "0.50000, 0.00000000, -0.75000000, 0.00000000, 0.00000000, 0.00000000, 0.00000000, 0.00000000, "
            "0.12500000, 0.00000000, -0.62500000, -0.75000000, 0.12500000");
}

TEST(BandExport, OneBandAndSumsCarryTheirTitles) {
  const ProfileRecord r = Reduced();
  EXPECT_EQ(PointKindLines(ExportKind::BandOne, r, PositionAxis{}, 8),
            (Lines{"Distance(m), r バンド別低減 8-Octave=0.25mm", "0.00000, -0.25000000", "0.50000, 0.12500000"}));
  EXPECT_EQ(PointKindLines(ExportKind::BandLong, r, PositionAxis{})[0], "Distance(m), r バンド別低減(長波長)(mm)");
  EXPECT_EQ(PointKindLines(ExportKind::BandShort, r, PositionAxis{})[0], "Distance(m), r バンド別低減(短波長)(mm)");
  EXPECT_EQ(PointKindLines(ExportKind::BandSum, r, PositionAxis{})[1], "0.00000, 1.25000000");
  EXPECT_THROW(PointKindValues(ExportKind::BandOne, r, 10), LegacyError);
}

TEST(BandExport, NamesAndResultPresence) {
  EXPECT_EQ(BuiltInExportPattern(ExportKind::BandAll), "$(PROFILENAME)$_バンド別低減_$(YYYYMMDDHHNNSS)$");
  EXPECT_EQ(BuiltInExportPattern(ExportKind::BandOne),
            "$(PROFILENAME)$_バンド別低減_Octave$(OctaveNum)$_$(YYYYMMDDHHNNSS)$");
  EXPECT_EQ(BuiltInExportPattern(ExportKind::BandShort), "$(PROFILENAME)$_バンド別低減_Octave短波長_$(YYYYMMDDHHNNSS)$");
  ProfileRecord r = Reduced();
  EXPECT_TRUE(HasResult(ExportKind::BandSum, r));
  EXPECT_FALSE(HasResult(ExportKind::OctaveAll, r));  // the reduction does not stand in for the split
  r.Analysis.BandReduction.Calculated = false;
  EXPECT_FALSE(HasResult(ExportKind::BandAll, r));
}

TEST(ProfileSummary, WeighsValuedSectionsByLengthAndPicksTheWidestBand) {
  ProfileRecord r;
  r.FileName = "a.erd";
  r.Erd.StepSize = 0.25;
  r.WorkCount = 801;  // 200 m
  r.Analysis.Iri.IriWholeProfile = 2.5;
  SectionEntry valued;  // a short first piece of the grid: 100 samples
  valued.Iri = 2.0;
  valued.Count = 100;
  SectionEntry merged;  // a merged member carries no value and does not count
  merged.Count = 400;
  SectionEntry other;
  other.Iri = 3.5;
  other.Count = 300;
  r.Analysis.Sections.Sec100 = Array1<SectionEntry>{valued, merged, other};
  r.Analysis.Octave.Calculated = true;
  r.Analysis.Octave.Band[4].Stats.StdDev = 1.75;
  r.Analysis.Octave.Band[6].Stats.StdDev = 1.75;  // a tie keeps the longer band
  r.Analysis.Octave.Band[9].Stats.StdDev = 0.5;
  const ProfileSummary s = SummarizeProfile(r);
  EXPECT_EQ(s.Name, "a");
  EXPECT_DOUBLE_EQ(s.LengthM, 200.0);
  EXPECT_DOUBLE_EQ(s.MeanIri100, 3.125);  // (2.0 x 100 + 3.5 x 300) / 400
  EXPECT_EQ(s.StrongestOctave, 4);
  const Lines table = SummaryTableLines({s});
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
