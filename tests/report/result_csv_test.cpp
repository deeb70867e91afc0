#include "report/result_csv.h"

#include <gtest/gtest.h>

#include "base/common.h"

namespace velmora {
namespace {

using Lines = std::vector<std::string>;

TEST(PositionAxis, ZeroBasedAndKpForwardAndBackward) {
  PositionAxis zero;
  EXPECT_DOUBLE_EQ(SamplePosition(zero, 1, 0.25, 12.3, 0), 0.0);
  EXPECT_DOUBLE_EQ(SamplePosition(zero, 5, 0.25, 12.3, 1), 1.0);
  PositionAxis kpKm{PositionMode::Kp, KpUnit::Km, false};
  EXPECT_NEAR(SamplePosition(kpKm, 3, 0.5, 12.3, 0), 12.301, 1e-12);
  EXPECT_NEAR(SamplePosition(kpKm, 3, 0.5, 12.3, 1), 12.299, 1e-12);
  EXPECT_NEAR(SamplePosition(kpKm, 3, 0.5, kNoValue, 0), 0.001, 1e-12);  // no KP counts as 0
  PositionAxis kpM{PositionMode::Kp, KpUnit::M, false};
  EXPECT_NEAR(SamplePosition(kpM, 3, 0.5, 12.3, 1), 12299.0, 1e-9);
}

TEST(ResultCsv, DistanceAndSectionHeadsFollowTheSetting) {
  const PositionAxis kpKm{PositionMode::Kp, KpUnit::Km, false}, kpM{PositionMode::Kp, KpUnit::M, false};
  auto distance = [](const PositionAxis& axis, bool unitInHead) {
    std::string line;
    WriteDistanceHeader(line, axis, unitInHead);
    return line;
  };
  auto section = [](const PositionAxis& axis) {
    std::string line;
    WriteSectionHeader(line, axis);
    return line;
  };
  EXPECT_EQ(distance(PositionAxis{}, false), "Distance(m), ");
  EXPECT_EQ(distance(kpKm, false), "Distance(KP), ");
  EXPECT_EQ(distance(kpKm, true), "Distance(km), ");
  EXPECT_EQ(distance(kpM, true), "Distance(m), ");
  EXPECT_EQ(section(kpKm), "Start(KP), End(KP), Mid(KP), ");
  EXPECT_EQ(section(PositionAxis{}), "Start(m), End(m), Mid(m), ");
}

TEST(ResultCsv, NumberFormatsAndTheNullRule) {
  EXPECT_EQ(FormatDistanceField(1.234567), "1.23457");
  EXPECT_EQ(FormatValueField(-0.123456789), "-0.12345679");
  EXPECT_EQ(FormatValueField(kNoValue), "");
  EXPECT_EQ(FormatDistanceField(kNoValue), "");
  EXPECT_EQ(FormatPsdField(0.00012345), "1.2345000000E-04");
  EXPECT_EQ(FormatPsdField(kNoValue), "");
}

TEST(ResultCsv, PointTableWritesPositionsValuesAndEmptyFields) {
  const std::vector<double> profile{1.5, kNoValue, -0.123456789};
  const std::vector<double> shorter{2.0};
  const Lines zero = PointCsvLines(PositionAxis{}, {0.25, kNoValue, 0},
                                     {{"Elevetion(mm)", profile}, {"IRI(mm/m)", shorter}});
  EXPECT_EQ(zero, (Lines{"Distance(m), Elevetion(mm), IRI(mm/m)", "0.00000, 1.50000000, 2.00000000",
                         "0.25000, , ", "0.50000, -0.12345679, "}));

  const Lines kp = PointCsvLines({PositionMode::Kp, KpUnit::Km, false}, {0.5, 12.3, 1}, {{"Elevetion(mm)", profile}});
  EXPECT_EQ(kp, (Lines{"Distance(KP), Elevetion(mm)", "12.30000, 1.50000000", "12.29950, ",
                       "12.29900, -0.12345679"}));
}

TEST(ResultCsv, SectionTablePlacesStartEndAndMiddle) {
  const std::vector<SectionRow> rows{{1.0, 1.01, {2.0, kNoValue}}, {1.01, 1.02, {kNoValue, 0.5}}};
  const Lines zero = SectionCsvLines(PositionAxis{}, {0.1, 1.0, 0}, {"IRI(mm/m)", "IRI(OCT-1)"}, rows);
  EXPECT_EQ(zero, (Lines{"Start(m), End(m), Mid(m), IRI(mm/m), IRI(OCT-1)",
                         "0.00000, 10.00000, 5.00000, 2.00000000, ", "10.00000, 20.00000, 15.00000, , 0.50000000"}));
  // KP falling along the profile: zero-based distances still grow.
  const std::vector<SectionRow> back{{1.0, 0.99, {1.0}}};
  EXPECT_EQ(SectionCsvLines(PositionAxis{}, {0.1, 1.0, 1}, {"IRI(mm/m)"}, back)[1],
            "0.00000, 10.00000, 5.00000, 1.00000000");
  EXPECT_EQ(SectionCsvLines({PositionMode::Kp, KpUnit::M, false}, {0.1, 1.0, 1}, {"IRI(mm/m)"}, back)[1],
            "1000.00000, 990.00000, 995.00000, 1.00000000");
}

}  // namespace
}  // namespace velmora
