#include "base/legacy_format.h"

#include <gtest/gtest.h>

#include "base/legacy_error.h"
#include "support/calendar.h"

namespace velmora {
namespace {

TEST(FormatNumber, FixedOptionalGroupedAndScientificPatterns) {
  const struct {
    double value;
    const char* pattern;
    const char* text;
  } cases[] = {
      {0.01, "0.000000", "0.010000"}, {123.45, "0.00000", "123.45000"}, {0, "0.00000", "0.00000"},
      // 0.125 and 2.675 are not exact in binary; 15 significant digits make them ties, rounded away.
      {0.125, "0.00", "0.13"}, {2.675, "0.00", "2.68"}, {-2.5, "0", "-3"}, {0.5, "0", "1"},
      {9.9999996, "0.000000", "10.000000"}, {-1.234567891, "0.00000000", "-1.23456789"},
      {1000, "######0", "1000"}, {-1, "######0", "-1"}, {0.5, "#.##", ".5"}, {3, "0.##", "3."},
      {1234567.891, "#,##0.0", "1,234,567.9"},
      {12345.678, "0.0000000000E+00", "1.2345678000E+04"}, {0.00012, "0.0000000000E+00", "1.2000000000E-04"},
      {0, "0.0000000000E+00", "0.0000000000E+00"}, {-9.99999999999, "0.00E+00", "-1.00E+01"},
      {5e-300, "0.0E+00", "5.0E-300"},
  };
  for (const auto& c : cases) EXPECT_EQ(FormatNumber(c.value, c.pattern), c.text) << c.value << " " << c.pattern;
  EXPECT_THROW(FormatNumber(1, "0.0x"), LegacyError);
  EXPECT_THROW(FormatNumber(1.0 / 0.0 * 0.0, "0"), LegacyError);
}

TEST(FormatDateTime, PatternsOfStampsAndNames) {
  const std::tm t = testing::At(2026, 11, 2, 7, 5, 9);
  EXPECT_EQ(FormatDateTime(t, "YYYYMMDDHHNNSS"), "20261102070509");
  EXPECT_EQ(FormatDateTime(t, "YYYY/MM/DD HH:MM:SS"), "2026/11/02 07:05:09");
  EXPECT_EQ(FormatDateTime(t, "yyyymm"), "202611");
  EXPECT_EQ(FormatDateTime(t, "MM"), "11");
}

}  // namespace
}  // namespace velmora
