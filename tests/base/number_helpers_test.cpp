#include "base/number_helpers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/colour.h"
#include "base/common.h"
#include "support/checks.h"

namespace velmora {
namespace {

using std::pair;
using testing::ExpectEach;

TEST(NoValueText, EmptyForTheNoValueOnly) {
  ExpectEach([](double v) { return uDblToText(v, "0.00"); }, {pair{kNoValue, ""}, {-99999.01, "-99999.01"}, {1.5, "1.50"}});
  ExpectEach(uLongToText, {pair{kNoValueLong, ""}, {-99998, "-99998"}});
  ExpectEach(uDblZero, {pair{kNoValue, 0.0}, {-3.25, -3.25}});
}

TEST(NumberText, RightAlignedToThePatternsWidthNeverCutAndTrailingZerosDropped) {
  ExpectEach([](double v) { return uFormatRight(v, "######0"); }, {pair{42.0, "     42"}, {-7.0, "     -7"}, {12345678.0, "12345678"}});
  // "##0.00" less its '#' is "0.00": 3.14 in six columns.
  EXPECT_EQ(uFormatRight(3.14159, "##0.00"), "  3.14");
  // Ten decimals at most: the eleventh (5) of 0.12345678905 rounds the tenth up.
  ExpectEach(uTrimZero, {pair{1.5, "1.5"}, {2.0, "2"}, {0.0, "0"}, {-0.25, "-0.25"}, {1.0 / 3.0, "0.3333333333"},
                         {0.12345678905, "0.1234567891"}, {100.0, "100"}});
}

TEST(Tolerances, NearlyEqualSqrtAndKiriage) {
  EXPECT_TRUE(uNearlyEqual(0.1 + 0.2, 0.3));
  EXPECT_TRUE(uNearlyEqual(-1.0, -1.0 + 0.9e-9));
  EXPECT_FALSE(uNearlyEqual(1.0, 1.0 + 2e-9));
  ExpectEach(uSqrt, {pair{9.0, 3.0}, {-4.0, 0.0}, {std::numeric_limits<double>::quiet_NaN(), 0.0}});
  // 300 m of 10 m sections computed with noise stays 30 sections; 0.3 / 0.1 is 2.9999999999999996.
  ExpectEach(Kiriage, {pair{2.0, 2.0}, {2.1, 3.0}, {0.0, 0.0}, {0.001, 1.0}, {-2.5, -2.0}, {30.000000000004, 30.0},
                       {0.3 / 0.1, 3.0}});
}

TEST(MinMax, FirstArgumentKeptUnlessStrictlyBeatenAbsentValuesNeverWin) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(uMin(2.0, nan), 2.0);
  EXPECT_TRUE(std::isnan(uMin(nan, 2.0)));  // 2 < NaN is false: the first stays
  EXPECT_EQ(uMax(3, 5), 5);
  EXPECT_EQ(uMin(3, 5), 3);
  // -0.0 and 0.0 compare equal: the first one is returned, sign included.
  EXPECT_TRUE(std::signbit(uMin(-0.0, 0.0)));
  EXPECT_FALSE(std::signbit(uMax(0.0, -0.0)));
  // Absent values never win; arrays give their extremes.
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
  // "10,20" has blue 255, green 20, red 10.
  ExpectEach(ParseColourText, {pair{"10,20", Colour{0xFF140A}}, {" 255, 0, 255 ", 0xFF00FF}, {"", 0xFFFFFF},
                               {"0,x,300", MakeColour(0, 255, 255)}});
  EXPECT_EQ(ColourText(0xFF00FF, ", "), "255, 0, 255");
  EXPECT_EQ(ColourText(0x00FF00, ","), "0,255,0");
}

TEST(Words, CommandLineSplitsAtBlanksAndTabs) {
  EXPECT_EQ(uTokenSpace("velmora\t swdebug  x.prj "), (std::vector<std::string>{"velmora", "swdebug", "x.prj"}));
  EXPECT_TRUE(uTokenSpace(" \t ").empty());
  ExpectEach(uQuote, {pair{"a,b", "\"a,b\""}, {"", "\"\""}});
}

}  // namespace
}  // namespace velmora
