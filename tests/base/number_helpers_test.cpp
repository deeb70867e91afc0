#include "base/number_helpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "base/colour.h"
#include "base/common.h"

namespace velmora {
namespace {

TEST(NoValueText, EmptyForTheNoValueOnly) {
  EXPECT_EQ(uDblToText(kNoValue, "0.00"), "");
  EXPECT_EQ(uDblToText(-99999.01, "0.00"), "-99999.01");
  EXPECT_EQ(uDblToText(1.5, "0.00"), "1.50");
  EXPECT_EQ(uLongToText(kNoValueLong), "");
  EXPECT_EQ(uLongToText(-99998), "-99998");
  EXPECT_EQ(uDblZero(kNoValue), 0.0);
  EXPECT_EQ(uDblZero(-3.25), -3.25);
}

TEST(FormatRight, PadsToTheWidthOfThePatternAndNeverCuts) {
  EXPECT_EQ(uFormatRight(42, "######0"), "     42");
  EXPECT_EQ(uFormatRight(-7, "######0"), "     -7");
  EXPECT_EQ(uFormatRight(12345678, "######0"), "12345678");
  // "##0.00" less its '#' is "0.00": 3.14 in six columns.
  EXPECT_EQ(uFormatRight(3.14159, "##0.00"), "  3.14");
}

TEST(TrimZero, DropsTrailingZerosAndALonePoint) {
  EXPECT_EQ(uTrimZero(1.5), "1.5");
  EXPECT_EQ(uTrimZero(2.0), "2");
  EXPECT_EQ(uTrimZero(0.0), "0");
  EXPECT_EQ(uTrimZero(-0.25), "-0.25");
  EXPECT_EQ(uTrimZero(1.0 / 3.0), "0.3333333333");
  // Ten decimals at most: the eleventh (5) rounds the tenth up.
  EXPECT_EQ(uTrimZero(0.12345678905), "0.1234567891");
  EXPECT_EQ(uTrimZero(100.0), "100");
}

TEST(Tolerances, NearlyEqualSqrtAndKiriage) {
  EXPECT_TRUE(uNearlyEqual(0.1 + 0.2, 0.3));
  EXPECT_TRUE(uNearlyEqual(-1.0, -1.0 + 0.9e-9));
  EXPECT_FALSE(uNearlyEqual(1.0, 1.0 + 2e-9));
  EXPECT_EQ(uSqrt(9.0), 3.0);
  EXPECT_EQ(uSqrt(-4.0), 0.0);
  EXPECT_EQ(uSqrt(std::numeric_limits<double>::quiet_NaN()), 0.0);
  EXPECT_EQ(Kiriage(2.0), 2.0);
  EXPECT_EQ(Kiriage(2.1), 3.0);
  EXPECT_EQ(Kiriage(0.0), 0.0);
  EXPECT_EQ(Kiriage(0.001), 1.0);
  EXPECT_EQ(Kiriage(-2.5), -2.0);
  // 300 m of 10 m sections computed with noise stays 30 sections.
  EXPECT_EQ(Kiriage(30.000000000004), 30.0);
  EXPECT_EQ(Kiriage(0.3 / 0.1), 3.0);  // 2.9999999999999996
}

TEST(MinMax, FirstArgumentKeptUnlessStrictlyBeaten) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(uMin(2.0, nan), 2.0);
  EXPECT_TRUE(std::isnan(uMin(nan, 2.0)));  // 2 < NaN is false: the first stays
  EXPECT_EQ(uMax(3, 5), 5);
  EXPECT_EQ(uMin(3, 5), 3);
  // -0.0 and 0.0 compare equal: the first one is returned, sign included.
  EXPECT_TRUE(std::signbit(uMin(-0.0, 0.0)));
  EXPECT_FALSE(std::signbit(uMax(0.0, -0.0)));
}

TEST(MinMax, AbsentValuesNeverWinAndArraysGiveTheirExtremes) {
  EXPECT_EQ(uMin(std::nullopt, std::optional<double>(5.0)), 5.0);
  EXPECT_EQ(uMax(std::optional<double>(-5.0), std::nullopt), -5.0);
  EXPECT_FALSE(uMin(std::optional<double>(), std::optional<double>()).has_value());
  const std::vector<double> values{3.0, -1.5, 7.25, -1.5};
  EXPECT_EQ(uMin(std::span<const double>(values)), -1.5);
  EXPECT_EQ(uMax(std::span<const double>(values)), 7.25);
  EXPECT_FALSE(uMax(std::span<const double>()).has_value());
}

TEST(Colours, SplitJoinAndMissingComponentsAre255) {
  // 0xBBGGRR: 0x123456 is red 0x56, green 0x34, blue 0x12.
  EXPECT_EQ(uColourSplit(0x123456), (ColourParts{0x56, 0x34, 0x12}));
  EXPECT_EQ(MakeColour(0x56, 0x34, 0x12), 0x123456u);
  EXPECT_EQ(ParseColourText("10,20"), 0xFF140Au);  // blue 255, green 20, red 10
  EXPECT_EQ(ParseColourText(" 255, 0, 255 "), 0xFF00FFu);
  EXPECT_EQ(ParseColourText(""), 0xFFFFFFu);
  EXPECT_EQ(ParseColourText("0,x,300"), MakeColour(0, 255, 255));
  EXPECT_EQ(ColourText(0xFF00FF, ", "), "255, 0, 255");
  EXPECT_EQ(ColourText(0x00FF00, ","), "0,255,0");
}

TEST(Words, CommandLineSplitsAtBlanksAndTabs) {
  EXPECT_EQ(uTokenSpace("velmora\t swdebug  x.prj "), (std::vector<std::string>{"velmora", "swdebug", "x.prj"}));
  EXPECT_TRUE(uTokenSpace(" \t ").empty());
  EXPECT_EQ(uQuote("a,b"), "\"a,b\"");
  EXPECT_EQ(uQuote(""), "\"\"");
}

}  // namespace
}  // namespace velmora
