#include "analysis/mirror_extend.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

#include "base/legacy_error.h"
#include "base/text_encoding.h"
#include "support/error_of.h"
#include "support/session_fixture.h"
#include "support/test_support.h"

namespace velmora {

// Readable failure output for 1-based arrays (found by argument-dependent lookup).
void PrintTo(const Array1<double>& values, std::ostream* out) {
  *out << "(";
  for (std::ptrdiff_t i = 1; i <= values.size(); ++i) *out << (i > 1 ? ", " : "") << values[i];
  *out << ")";
}

namespace {

Array1<double> A(std::vector<double> values) { return Array1<double>(std::move(values)); }

using MirrorExtendTest = testing::SessionTest;

TEST_F(MirrorExtendTest, FoldsBothWaysWithoutRepeatingTheEndSamples) {
  const struct { bool pointSymmetric; std::int32_t fold; std::vector<double> extended; } cases[] = {
      // Left: 2·1 − source(3), 2·1 − source(2); right: 2·11 − source(4), 2·11 − source(3).
      {true, 2, {-2, 0, 1, 2, 4, 7, 11, 15, 18}},
      {false, 2, {4, 2, 1, 2, 4, 7, 11, 7, 4}},
      {true, 0, {1, 2, 4, 7, 11}},
      {false, 4, {11, 7, 4, 2, 1, 2, 4, 7, 11, 7, 4, 2, 1}},  // the widest fold n − 1 reaches source(5) and source(1)
  };
  for (const auto& c : cases) {
    Array1<double> dest;
    std::int32_t count = 0;
    MirrorExtend(DebugTables{}, c.pointSymmetric, c.fold, 5, A({1, 2, 4, 7, 11}), count, dest);
    EXPECT_EQ(count, static_cast<std::int32_t>(c.extended.size())) << c.fold;
    EXPECT_EQ(dest, A(c.extended)) << c.fold;
  }
}

TEST_F(MirrorExtendTest, PointFoldKeepsConstantsAndRamps) {
  Array1<double> ramp(50), constant(std::vector<double>(50, -12.5)), dest;
  for (int i = 1; i <= 50; ++i) ramp[i] = 0.25 * i - 3.0;
  std::int32_t count = 0;
  MirrorExtend(DebugTables{}, true, 30, 50, ramp, count, dest);
  ASSERT_EQ(count, 110);
  for (int p = 1; p <= 110; ++p) EXPECT_DOUBLE_EQ(dest[p], 0.25 * (p - 30) - 3.0) << p;
  MirrorExtend(DebugTables{}, true, 49, 50, constant, count, dest);
  for (int p = 1; p <= count; ++p) EXPECT_EQ(dest[p], -12.5) << p;
}

TEST_F(MirrorExtendTest, RefusesFoldsThatReachBeyondTheProfile) {
  const Array1<double> source = A({1, 2, 3});
  Array1<double> dest;
  std::int32_t count = 0;
  for (std::int32_t fold : {3, -1})
    EXPECT_EQ(testing::ErrorOf([&] { MirrorExtend(DebugTables{}, true, fold, 3, source, count, dest); }),
              ErrorNumber::SubscriptOutOfRange) << fold;
  EXPECT_THROW(MirrorExtend(DebugTables{}, true, 1, 4, source, count, dest), LegacyError);  // n past the array
}

// The extensions for a transform: the samples, where they start, and the whole extended array.
struct Extension {
  const char* what;
  bool forPsd;  // only the point fold to length1; else the filter's to length2
  std::vector<double> source;
  std::int32_t length1, length2, offset;
  std::vector<double> extended;
};

TEST_F(MirrorExtendTest, ExtensionsForTheTransformsByHand) {
  const Extension cases[] = {
      {"filter, a power of two: a copy then a half fold", false, {1, 5, 2, 8}, 4, 8, 2, {2, 5, 1, 5, 2, 8, 2, 5}},
      // N = 5: d = 3, a = 2, b = 1. Work (−2, 0, 1, 2, 4, 7, 11, 15) after the cut, then 4 each side.
      {"filter, the larger part of the surplus left", false, {1, 2, 4, 7, 11}, 8, 16, 6,
       {4, 2, 1, 0, -2, 0, 1, 2, 4, 7, 11, 15, 11, 7, 4, 2}},
      // N = 7: d = 1, round(0.5) = 0, exchanged to one sample left and none right.
      {"filter, a surplus of one goes left", false, {0, 1, 3, 6, 10, 15, 21}, 8, 16, 5,
       {6, 3, 1, 0, -1, 0, 1, 3, 6, 10, 15, 21, 15, 10, 6, 3}},
      // N = 11: d = 5, round(2.5) = 2, exchanged to 3 left and 2 right; work is
      // (2 − 16, 2 − 9, 2 − 4, 1, 4, …, 121, 242 − 100, 242 − 81).
      {"filter, round half to even exchanged", false, {1, 4, 9, 16, 25, 36, 49, 64, 81, 100, 121}, 16, 32, 11,
       {36, 25, 16, 9, 4, 1, -2, -7, -14, -7, -2, 1, 4, 9, 16, 25,
        36, 49, 64, 81, 100, 121, 142, 161, 142, 121, 100, 81, 64, 49, 36, 25}},
      {"psd, the point fold only", true, {1, 2, 4, 7, 11}, 8, 0, 2, {-2, 0, 1, 2, 4, 7, 11, 15}},
      {"psd, a power of two as it is", true, {3, 1, 4, 1}, 4, 0, 0, {3, 1, 4, 1}},
  };
  for (const Extension& c : cases) {
    SCOPED_TRACE(c.what);
    const auto n = static_cast<std::int32_t>(c.source.size());
    Array1<double> dest;
    std::int32_t offset = -1;
    ASSERT_TRUE(c.forPsd ? subPSD計算用_観音開き作成(session, n, c.length1, A(c.source), offset, dest)
                         : subFFT計算用_観音開き作成(session, n, c.length1, c.length2, A(c.source), offset, dest));
    EXPECT_EQ(offset, c.offset);
    EXPECT_EQ(dest, A(c.extended));
  }
  EXPECT_TRUE(ui_.Messages().empty());
}

TEST_F(MirrorExtendTest, ASingleSampleProfileIsLoggedUnderTheProcedureName) {
  Array1<double> dest;
  std::int32_t offset = 0;
  // N = 1 gives length 4: the fold needs source(3).
  EXPECT_FALSE(subFFT計算用_観音開き作成(session, 1, 4, 4, A({5}), offset, dest));
  ASSERT_EQ(ui_.Messages().size(), 1u);
  EXPECT_EQ(ui_.Messages()[0].Title, "[ basFFT : subFFT計算用_観音開き作成 ]");
  const auto log = ReadSystemTextLines(dir_ / "Temp" / "Sorvik_Err.log");
  ASSERT_EQ(log.size(), 1u);
  EXPECT_NE(log[0].find("subFFT計算用_観音開き作成"), std::string::npos);

  EXPECT_FALSE(subPSD計算用_観音開き作成(session, 1, 4, A({5}), offset, dest));
  EXPECT_EQ(ui_.Messages().size(), 2u);
}

}  // namespace
}  // namespace velmora
