// The section grid and the fixed 10 m, 100 m, 200 m tables, the length check and the run, and a car
// model that cannot be inverted. The expected tables are worked out by hand in the comments (pitch 1 m
// keeps the arithmetic small).
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "analysis/filter.h"
#include "analysis/iri_sections.h"
#include "analysis/prepare_profile.h"
#include "support/analysis_fixture.h"
#include "support/checks.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

TEST(NextSectionBoundaryTest, GridLinesAndSampleCountsByHand) {
  const struct { const char* what; double kp, dx; std::int32_t length; bool backwards; double line; std::int32_t count; } cases[] = {
      // 35.3 m at 1 m: first sample rounded up to 36 m; next 10 m line 40 m: 36..40 is 5 samples.
      {"10 m forwards", 0.0353, 1.0, 10, false, 0.04, 5},
      {"100 m forwards", 0.0353, 1.0, 100, false, 0.1, 65},
      {"200 m lines lie on even hundreds", 0.0353, 1.0, 200, false, 0.2, 165},
      // Backwards the line is the one below: 30 m; |30 - 36| / 1 + 1 = 7.
      {"10 m backwards", 0.0353, 1.0, 10, true, 0.03, 7},
      {"a KP on a line: one sample", 1.25, 0.01, 10, false, 1.25, 1},
      // 1250 m: the 100 m line is 1300 (odd), so 1400 forwards and 1200 backwards.
      {"200 m forwards past an odd hundred", 1.25, 0.01, 200, false, 1.4, 15001},
      {"200 m backwards past an odd hundred", 1.25, 0.01, 200, true, 1.2, 5001},
      // 345.6 m backwards: 300, odd hundred, so 200; forwards 400 is already even.
      {"200 m backwards", 0.3456, 0.01, 200, true, 0.2, 14561},
      {"200 m forwards on an even hundred", 0.3456, 0.01, 200, false, 0.4, 5441},
      {"no KP counts as 0, on every grid", kNoValue, 0.01, 100, false, 0.0, 1},
  };
  for (const auto& c : cases) {
    double line = -1;
    std::int32_t count = -1;
    NextSectionBoundary(c.kp, c.dx, c.length, c.backwards, line, count);
    EXPECT_DOUBLE_EQ(line, c.line) << c.what;
    EXPECT_EQ(count, c.count) << c.what;
  }
}

// 250 samples at 1 m from KP 0.0353 km. Response r(i) (signed, alternating) has |r| = 1 up to 64,
// 3 for 65..164, 2 for 165..249 (249 responses: IBASE 1).
std::vector<double> StepResponse() {
  std::vector<double> r(249);
  for (std::size_t k = 0; k < r.size(); ++k) {
    const std::size_t i = k + 1;
    const double magnitude = i <= 64 ? 1.0 : i <= 164 ? 3.0 : 2.0;
    r[k] = i % 2 == 0 ? magnitude : -magnitude;
  }
  return r;
}

SectionIri Sections(bool skip) {
  std::vector<double> values(250);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = 0.5 * static_cast<double>(i);
  const auto response = StepResponse();
  SectionIri result;
  CalcFixedSections(0.0353, 1.0, false, 10.0, 250, values, 249, response, skip, result);
  return result;
}

// How many entries of a section table hold a value.
template <class Table>
long Valued(const Table& table) {
  return std::ranges::count_if(table, [](const SectionEntry& e) { return !IsNoValue(e.Iri); });
}

void ExpectEntry(const SectionEntry& e, std::int32_t count, double kpFrom, double kpTo, double iri,
                 std::int32_t index, std::int16_t partial) {
  EXPECT_EQ(e.Count, count);
  EXPECT_NEAR(e.KpFrom, kpFrom, 1e-12);
  EXPECT_NEAR(e.KpTo, kpTo, 1e-12);
  EXPECT_NEAR(e.Iri, iri, 1e-12);
  EXPECT_EQ(e.Index, index);
  EXPECT_EQ(e.Partial, partial);
}

TEST(CalcFixedSectionsTest, TenMetreSectionsWithShortFirstAndTail) {
  // First section: samples 1..5 (to the 40 m line). Full sections start at 5, 15, ..., 235 (24 of
  // them, 10 samples each, the border sample counted on both sides); the tail starts at 245 with
  // 250 - 245 + 1 = 6 samples. 1 + 24 + 1 = 26 entries.
  const SectionIri s = Sections(false);
  EXPECT_EQ(s.PointCount, 250);
  EXPECT_DOUBLE_EQ(s.KpStart, 0.0353);
  EXPECT_DOUBLE_EQ(s.KpStep, 1.0);
  EXPECT_NEAR(s.Points[1].Kp, 0.0353, 1e-15);
  EXPECT_NEAR(s.Points[1].KpNext, 0.0363, 1e-15);
  EXPECT_NEAR(s.Points[250].Kp, 0.2843, 1e-12);
  EXPECT_EQ(s.Points[3].Value, 1.0);
  ASSERT_EQ(s.SectionCount, 26);
  ExpectEntry(s.Sec10[1], 5, 0.0353, 0.0403, 1.0, 1, -1);
  ExpectEntry(s.Sec10[2], 10, 0.0403, 0.0503, 1.0, 5, 0);
  ExpectEntry(s.Sec10[7], 10, 0.0903, 0.1003, 1.0, 55, 0);   // samples 55..64
  ExpectEntry(s.Sec10[8], 10, 0.1003, 0.1103, 3.0, 65, 0);
  ExpectEntry(s.Sec10[17], 10, 0.1903, 0.2003, 3.0, 155, 0);
  ExpectEntry(s.Sec10[25], 10, 0.2703, 0.2803, 2.0, 235, 0);
  // Tail: responses 245..249 (five of 2) over the six points: 10 / 6, low by design.
  ExpectEntry(s.Sec10[26], 6, 0.2803, 0.2863, 10.0 / 6, 245, -1);
}

TEST(CalcFixedSectionsTest, HundredAndTwoHundredMetreUnitsAreSampleWeightedMeans) {
  const SectionIri s = Sections(false);
  // 100 m: the first unit runs up to the entry that passes the 100 m line (entry 7, to 100.3 m):
  // 5 + 60 samples of 1. Then entries 8..17, exactly 0.1 km: 3. Entries 18..26 never make ten: a
  // short last unit (8 × 10 × 2 + 10) / 86.
  ExpectEntry(s.Sec100[7], 65, 0.0353, 0.1003, 1.0, 1, -1);
  ExpectEntry(s.Sec100[17], 100, 0.1003, 0.2003, 3.0, 65, 0);
  ExpectEntry(s.Sec100[26], 86, 0.2003, 0.2863, 170.0 / 86, 165, -1);
  EXPECT_EQ(Valued(s.Sec100), 3);  // every other slot stays at the no value
  // 200 m: first unit up to the 200 m line (entry 17): (65 + 300) / 165; then a short last unit.
  ExpectEntry(s.Sec200[17], 165, 0.0353, 0.2003, 365.0 / 165, 1, -1);
  ExpectEntry(s.Sec200[26], 86, 0.2003, 0.2863, 170.0 / 86, 165, -1);
  EXPECT_TRUE(IsNoValue(s.Sec200[16].Iri));
}

TEST(CalcFixedSectionsTest, SkippingShortSectionsLeavesNoPartialTenMetreEntry) {
  // Without the first and the tail: 24 full sections in slots 1..24, slot 25 stays empty.
  const SectionIri s = Sections(true);
  ASSERT_EQ(s.SectionCount, 25);
  for (std::int32_t j = 1; j <= 24; ++j) {
    EXPECT_EQ(s.Sec10[j].Partial, 0) << j;
    EXPECT_EQ(s.Sec10[j].Count, 10) << j;
  }
  ExpectEntry(s.Sec10[1], 10, 0.0403, 0.0503, 1.0, 5, 0);
  EXPECT_TRUE(IsNoValue(s.Sec10[25].Iri));
  // 100 m: the first unit (entries 1..6, up to 100.3 m) loses its value; the unit 7..16 is full;
  // the short rest 17..24 is not stored.
  EXPECT_TRUE(IsNoValue(s.Sec100[6].Iri));
  ExpectEntry(s.Sec100[16], 100, 0.1003, 0.2003, 3.0, 65, 0);
  EXPECT_EQ(Valued(s.Sec100), 1);
  EXPECT_EQ(Valued(s.Sec200), 0);
}

TEST(CalcFixedSectionsTest, BackwardsKpRunsDownAndSectionsFollowIt) {
  // From 0.0353 km backwards: the 10 m line is 30 m, 7 samples (36 → 30 by the count rule).
  std::vector<double> values(40, 0.0);
  std::vector<double> response(39, 2.0);
  SectionIri s;
  CalcFixedSections(0.0353, 1.0, true, 10.0, 40, values, 39, response, false, s);
  EXPECT_DOUBLE_EQ(s.KpStep, -1.0);
  EXPECT_NEAR(s.Points[2].Kp, 0.0343, 1e-15);
  // First 1..7; full sections start at 7, 17, 27; the start 37 still lies on the profile and begins
  // the tail of 40 - 37 + 1 = 4 samples, of which responses 37..39 exist: 6 / 4.
  ASSERT_EQ(s.SectionCount, 5);
  ExpectEntry(s.Sec10[1], 7, 0.0353, 0.0283, 2.0, 1, -1);
  ExpectEntry(s.Sec10[2], 10, 0.0283, 0.0183, 2.0, 7, 0);
  ExpectEntry(s.Sec10[4], 10, 0.0083, -0.0017, 2.0, 27, 0);
  ExpectEntry(s.Sec10[5], 4, -0.0017, -0.0057, 1.5, 37, -1);
  // The 100 m line below 35.3 m is 0 km: entry 4 passes it and closes the first unit; entry 5 alone
  // is the short last unit.
  ExpectEntry(s.Sec100[4], 37, 0.0353, -0.0017, 2.0, 1, -1);
  ExpectEntry(s.Sec100[5], 4, -0.0017, -0.0057, 1.5, 37, -1);
}

TEST(CalcFixedSectionsTest, TablesListEveryTenMetreEntryAndTheUnits) {
  // A head line and a column line before each table: 26 entries of 10 m, three 100 m units, one 200 m.
  const auto lines = SectionTableLines(Sections(false));
  ASSERT_EQ(lines.size(), 2u + 26 + 2 + 3 + 2 + 2);
  EXPECT_EQ(lines[2], "1,0.03530,0.04030,1,5,1.00000000,,");
  EXPECT_EQ(lines[2 + 16], "17,0.19030,0.20030,155,10,3.00000000,3.00000000,2.21212121");
  EXPECT_EQ(lines[30], "1,0.03530,0.10030,1,65,1.00000000");
  EXPECT_EQ(lines[32], "3,0.20030,0.28630,165,86,1.97674419");
  EXPECT_EQ(lines[33], "<< 200m固定 >>");
}

TEST(CalcFixedSectionsTest, BadInputIsRefusedWithAnError) {
  std::vector<double> values(10, 0.0), response(9, 1.0);
  SectionIri s;
  EXPECT_THROW(CalcFixedSections(0, 1.0, false, 0.2, 10, values, 9, response, false, s), LegacyError);
  EXPECT_THROW(CalcFixedSections(0, 1.0, false, 10, 11, values, 9, response, false, s), LegacyError);
}

// A registered profile whose octave split is already there: each band a ninth of the road.
ProfileRecord Profile(double pitch, int count, double kp = kNoValue) {
  ProfileRecord p = testing::MakeProfile("p", pitch, testing::Road(count), kp);
  std::vector<double> ninth = testing::Road(count);
  for (double& v : ninth) v /= 9;
  p.Analysis = testing::BlockWithBands(testing::Road(count), pitch, ninth);
  return p;
}

using CheckIriLengthTest = testing::SessionTest;

TEST_F(CheckIriLengthTest, MessagesForBlankTextNumbersAndLimits) {
  // A: 0.01 m, 1000 samples, IBASE 25, 975 usable. B: 0.05 m, 300 samples, IBASE 5, 295 usable.
  ProfileRecord a = Profile(0.01, 1000), b = Profile(0.05, 300);
  std::vector<ProfileRecord*> list{&a, &b};
  const struct { const char* text; const char* message; } refused[] = {{"  ", "IRIの評価値が指定されていません。"},
                 {"10m", "IRIの評価値は数値で指定して下さい。"},
                 {"0.04", "0.05 以上で指定して下さい。"},
                 {"14.71", "14.7 以下で指定して下さい。"}};  // (295 - 1) × 0.05
  for (const auto& c : refused) {
    ui_.Log.clear();
    double value = -1;
    EXPECT_FALSE(CheckIriLength(session, c.text, list, value)) << c.text;
    testing::ExpectMessages(ui_, {{c.message, "警告"}});
    EXPECT_EQ(value, -1);
  }
  ui_.Log.clear();
  double value = 0;
  EXPECT_TRUE(CheckIriLength(session, " 14.7 ", list, value));
  EXPECT_EQ(value, 14.7);
  EXPECT_TRUE(ui_.Messages().empty());
  // The limit takes the last profile's pitch, not that of the shortest one: 294 × 0.01.
  std::vector<ProfileRecord*> reversed{&b, &a};
  EXPECT_FALSE(CheckIriLength(session, "3", reversed, value));
  EXPECT_EQ(ui_.OnlyMessageText(), "2.94 以下で指定して下さい。");
}

using RunIriTest = testing::SessionTest;

TEST_F(RunIriTest, ComputesSelectedProfilesAndRecomputesOnlyWhenTheLengthChanges) {
  ProfileRecord a = Profile(0.25, 400, 1.0), b = Profile(0.25, 300);
  std::vector<ProfileRecord*> list{&a, &b};
  std::vector<ProfileRecord*> selected{&a};
  IriRunRequest request{"10", IriParams{}, false, false, FilterConvergence{}};
  request.Params.InitFilter = 11;
  double last = kNoValue;
  ASSERT_TRUE(RunIri(session, list, selected, request, last));
  EXPECT_EQ(last, 10.0);
  ASSERT_FALSE(ui_.Log.empty());
  EXPECT_EQ(ui_.Log.front().Title, "ＩＲＩ計算");
  EXPECT_EQ(ui_.Log.back().Kind, "progress-exit");
  EXPECT_EQ(ui_.ProgressValues.back(), 100);
  EXPECT_TRUE(a.Analysis.Iri.IriWindowWave.Calculated);
  EXPECT_FALSE(b.Analysis.Iri.IriWindowWave.Calculated);
  EXPECT_EQ(a.Analysis.Iri.IriWindowCount, 399 - 40);
  EXPECT_TRUE(a.Analysis.Iri.IriWindowBand[9].Calculated);
  EXPECT_DOUBLE_EQ(a.Analysis.Sections.KpStart, 1.0);
  EXPECT_EQ(a.Analysis.Sections.Sec10[1].Count, 1);  // KP on the grid line
  EXPECT_EQ(a.Analysis.Sections.Sec10[2].Count, 40);

  // Same length: the stored responses stay (a marker survives), the sections follow the option.
  a.Analysis.Iri.IriWholeProfile = 123.0;
  request.SkipPartialSections = true;
  ASSERT_TRUE(RunIri(session, list, selected, request, last));
  EXPECT_EQ(a.Analysis.Iri.IriWholeProfile, 123.0);
  EXPECT_EQ(a.Analysis.Sections.Sec10[1].Partial, 0);
  // A new length recomputes.
  request.LengthText = "20";
  ASSERT_TRUE(RunIri(session, list, selected, request, last));
  EXPECT_NE(a.Analysis.Iri.IriWholeProfile, 123.0);
  EXPECT_EQ(a.Analysis.Iri.IriWindowCount, 399 - 80);
  // A refused length runs nothing and keeps the last length.
  request.LengthText = "abc";
  EXPECT_FALSE(RunIri(session, list, selected, request, last));
  EXPECT_EQ(last, 20.0);
}

TEST_F(RunIriTest, MissingBandSplitIsMadeFirst) {
  // A profile as read, not yet prepared: the run prepares and splits it, then takes the band IRI.
  ProfileRecord p = testing::MakeProfile("road", 0.25, testing::Road(800));
  std::vector<ProfileRecord*> list{&p};
  IriRunRequest request{"10", IriParams{}, false, false, FilterConvergence{}};
  double last = kNoValue;
  ASSERT_TRUE(RunIri(session, list, list, request, last));
  EXPECT_TRUE(p.Analysis.Octave.Calculated);
  EXPECT_TRUE(p.Analysis.Iri.IriWindowRss.Calculated);
  EXPECT_GT(p.Analysis.Iri.IriWindowRss.Stats.Maximum, 0.0);
  EXPECT_EQ(p.Analysis.Iri.IriWindowCount, 799 - 40);
}

// Every rate tiny and the unsprung mass huge: the model's last row underflows to zeros. It is said once
// by the run, inside its progress, and the engine goes on with it.
TEST_F(RunIriTest, ASingularCarIsSaidOnceByTheIriRunAndTheIriFilterOnly) {
  const IriParams singular{80, 1e-300, 1e-300, 1e300, 1e-300, 0, 0, 10};
  const auto expectSaidOnce = [&] { testing::ExpectMessages(ui_, {{"Singular matrix", "", MsgIcon::None}}); };
  ProfileRecord road = testing::MakeProfile("road", 0.25, testing::Road(400));
  ProfileRecord other = testing::MakeProfile("other", 0.25, testing::Road(400, 9));
  std::vector<ProfileRecord*> list{&road, &other};
  double last = kNoValue;
  RunIri(session, list, list, IriRunRequest{"10", singular, false, false, FilterConvergence{}}, last);
  expectSaidOnce();

  FilterSpec filter;
  for (const FilterCalcType type : {FilterCalcType::Iri, FilterCalcType::Slope}) {
    ui_.Log.clear();
    filter.CalcType = type;
    PrepareProfile(DebugTables{}, road);
    RunFilter(session, filter, true, {&road}, singular, FilterConvergence{});
    if (type == FilterCalcType::Iri) expectSaidOnce();
    else EXPECT_TRUE(ui_.Messages().empty());
  }
}

}  // namespace
}  // namespace velmora
