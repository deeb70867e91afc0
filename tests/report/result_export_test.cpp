#include "report/result_export.h"

#include <gtest/gtest.h>

#include "base/common.h"

namespace velmora {
namespace {

using Lines = std::vector<std::string>;

ProfileRecord Road() {
  ProfileRecord r;
  r.FileName = "r.erd";
  r.Erd.StepSize = 0.5;
  r.Erd.KpStart = 1.0;
  r.Erd.KpSign = 0;
  r.WorkCount = 3;
  return r;
}

TEST(ResultExport, FilterWordCarriesTheCutOffs) {
  FilterSpec filterSpec;
  filterSpec.CalcType = FilterCalcType::MovingAverage;
  filterSpec.Band = FilterKind::BandPass;
  filterSpec.LongCut = 50;
  filterSpec.ShortCut = 10;
  EXPECT_EQ(FilterWord(filterSpec), "MABP_50-10m");
  filterSpec.CalcType = FilterCalcType::Fourier;
  filterSpec.Band = FilterKind::LowPass;
  filterSpec.ShortCut = 2.5;
  EXPECT_EQ(FilterWord(filterSpec), "FTLP_2.5m");
  filterSpec.Band = FilterKind::HiPass;
  EXPECT_EQ(FilterWord(filterSpec), "FTHP_50m");
  filterSpec.CalcType = FilterCalcType::Slope;
  filterSpec.SlopeMode = true;
  EXPECT_EQ(FilterWord(filterSpec), "SLHC");
  filterSpec.CalcType = FilterCalcType::Iri;
  EXPECT_EQ(FilterWord(filterSpec), "IRI");
}

TEST(ResultExport, FilteredProfileGoesByItsCountWithTheNullRule) {
  ProfileRecord r = Road();
  r.Analysis.Filter.FilterWave.Values = Array1<double>{1.0, kNoValue, 2.5, 9.0};
  r.Analysis.Filter.FilterCount = 3;  // e.g. the IRI kind: shorter than its array
  EXPECT_EQ(PointKindLines(ExportKind::Profile, r, PositionAxis{}),
            (Lines{"Distance(m), Elevetion(mm)", "0.00000, 1.00000000", "0.50000, ", "1.00000, 2.50000000"}));
  EXPECT_EQ(PointKindLines(ExportKind::Profile, r, {PositionMode::Kp, KpUnit::Km, false})[3], "1.00100, 2.50000000");
}

TEST(ResultExport, OctaveFilesOneBandAndAllInOne) {
  ProfileRecord r = Road();
  r.WorkCount = 2;
  OctaveBandSet& o = r.Analysis.Octave;
  for (int k = 1; k <= 9; ++k) o.Band[static_cast<std::size_t>(k)].Values = Array1<double>{0.0, 0.0};
  o.Band[3].Values = Array1<double>{0.5, -0.25};
  o.Band[7].Values = Array1<double>{1.0, 2.0};
  o.LongSum.Values = Array1<double>{0.5, -0.25};
  o.ShortSum.Values = Array1<double>{1.0, 2.0};
  EXPECT_EQ(PointKindLines(ExportKind::OctaveBand, r, PositionAxis{}, 3),
            (Lines{"Distance(m), r Octave 3(mm)", "0.00000, 0.50000000", "0.50000, -0.25000000"}));
  const Lines all = PointKindLines(ExportKind::OctaveAll, r, PositionAxis{});
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0],
            "Distance(m), OCT-1(mm), OCT-2(mm), OCT-3(mm), OCT-4(mm), OCT-5(mm), OCT-6(mm), OCT-7(mm), OCT-8(mm), "
            "OCT-9(mm), OCT-合算(mm), OCT-長波長(mm), OCT-短波長(mm)");
  // Sum of the nine: 0.5 + 1.0 and -0.25 + 2.0.
  EXPECT_EQ(all[2],
            "0.50000, 0.00000000, 0.00000000, -0.25000000, 0.00000000, 0.00000000, 0.00000000, 2.00000000, "
            "0.00000000, 0.00000000, 1.75000000, -0.25000000, 2.00000000");
  EXPECT_EQ(PointKindValues(ExportKind::OctaveSum, r).vector(), (std::vector<double>{1.5, 1.75}));
  EXPECT_THROW(PointKindLines(ExportKind::OctaveBand, r, PositionAxis{}, 10), LegacyError);
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
  s.Sec100 = Array1<SectionEntry>{{1, 1.0, 1.0005, kNoValue, 1, -1}, {21, 1.0, 1.0105, 0.75, 1, -1}};
  s.Sec200 = s.Sec100;
  const Lines fixed = IriFixedLines(r, PositionAxis{}, 100);
  ASSERT_GE(fixed.size(), 4u);
  EXPECT_EQ(fixed[0], "Start(m), End(m), Mid(m), IRI(mm/m)");
  EXPECT_EQ(fixed[1], "0.00000, 10.50000, 5.25000, 0.75000000");
  EXPECT_EQ(fixed[2], "");
  EXPECT_EQ(fixed[3], "<< 10m固定（合計）>>");
  EXPECT_THROW(IriFixedLines(r, PositionAxis{}, 50), LegacyError);
}

TEST(ResultExport, NamePatternsOfTheKinds) {
  EXPECT_EQ(BuiltInExportPattern(ExportKind::OctaveBand), "$(PROFILENAME)$_Octave$(OctaveNum)$_$(YYYYMMDDHHNNSS)$");
  EXPECT_EQ(BuiltInExportPattern(ExportKind::PsdRatio), "[$(PROFILENAME)$]_PSD比_$(YYYYMMDDHHNNSS)$");
  EXPECT_EQ(BuiltInExportPattern(ExportKind::IriWhole), "IRI(全区間)_$(YYYYMMDDHHNNSS)$");
  EXPECT_EQ(IriKindWord(ExportKind::IriContinuous, 10, 0), "10m連続");
  EXPECT_EQ(IriKindWord(ExportKind::IriFixed, 10, 200), "200m固定");
  EXPECT_EQ(ExportSection(ExportKind::Profile), "Filter");
}

}  // namespace
}  // namespace velmora
