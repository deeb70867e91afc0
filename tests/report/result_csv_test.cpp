#include "report/result_csv.h"

#include <gtest/gtest.h>

#include "base/common.h"

namespace velmora {
namespace {

using Lines = std::vector<std::string>;

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

}  // namespace
}  // namespace velmora
