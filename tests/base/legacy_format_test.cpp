#include "base/legacy_format.h"

#include <gtest/gtest.h>

#include "base/legacy_error.h"

namespace velmora {
namespace {

TEST(FormatNumber, FixedDecimalsRoundHalfAwayInDecimal) {
  EXPECT_EQ(FormatNumber(0.01, "0.000000"), "0.010000");
  EXPECT_EQ(FormatNumber(123.45, "0.00000"), "123.45000");
  // 0.125 and 2.675 are not exact in binary; 15 significant digits make them ties, rounded away.
  EXPECT_EQ(FormatNumber(0.125, "0.00"), "0.13");
  EXPECT_EQ(FormatNumber(2.675, "0.00"), "2.68");
  EXPECT_EQ(FormatNumber(-2.5, "0"), "-3");
  EXPECT_EQ(FormatNumber(0.5, "0"), "1");
  EXPECT_EQ(FormatNumber(9.9999996, "0.000000"), "10.000000");
  EXPECT_EQ(FormatNumber(-1.234567891, "0.00000000"), "-1.23456789");
  EXPECT_EQ(FormatNumber(0, "0.00000"), "0.00000");
}

TEST(FormatNumber, OptionalDigitsAndGrouping) {
  EXPECT_EQ(FormatNumber(1000, "######0"), "1000");
  EXPECT_EQ(FormatNumber(-1, "######0"), "-1");
  EXPECT_EQ(FormatNumber(0.5, "#.##"), ".5");
  EXPECT_EQ(FormatNumber(1234567.891, "#,##0.0"), "1,234,567.9");
  EXPECT_EQ(FormatNumber(3, "0.##"), "3.");
}

TEST(FormatNumber, Scientific) {
  EXPECT_EQ(FormatNumber(12345.678, "0.0000000000E+00"), "1.2345678000E+04");
  EXPECT_EQ(FormatNumber(0.00012, "0.0000000000E+00"), "1.2000000000E-04");
  EXPECT_EQ(FormatNumber(0, "0.0000000000E+00"), "0.0000000000E+00");
  EXPECT_EQ(FormatNumber(-9.99999999999, "0.00E+00"), "-1.00E+01");
  EXPECT_EQ(FormatNumber(5e-300, "0.0E+00"), "5.0E-300");
}

TEST(FormatNumber, RejectsUnknownPatternAndNonFinite) {
  EXPECT_THROW(FormatNumber(1, "0.0x"), LegacyError);
  EXPECT_THROW(FormatNumber(1.0 / 0.0 * 0.0, "0"), LegacyError);
}

TEST(FormatDateTime, PatternsOfStampsAndNames) {
  std::tm t{};
  t.tm_year = 2026 - 1900;
  t.tm_mon = 10;  // November
  t.tm_mday = 2;
  t.tm_hour = 7;
  t.tm_min = 5;
  t.tm_sec = 9;
  EXPECT_EQ(FormatDateTime(t, "YYYYMMDDHHNNSS"), "20261102070509");
  EXPECT_EQ(FormatDateTime(t, "YYYY/MM/DD HH:MM:SS"), "2026/11/02 07:05:09");
  EXPECT_EQ(FormatDateTime(t, "yyyymm"), "202611");
  EXPECT_EQ(FormatDateTime(t, "MM"), "11");
}

}  // namespace
}  // namespace velmora
