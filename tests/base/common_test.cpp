#include "base/common.h"

#include <gtest/gtest.h>

#include "base/legacy_error.h"
#include "base/legacy_math.h"
#include "support/checks.h"

namespace velmora {
namespace {

using std::pair;
using testing::ExpectEach;

TEST(Token, QuotesKeepDelimitersAndDoubledQuotesAMinimumSizePads) {
  EXPECT_EQ(uToken("a,\"b,c\",d", ","), (std::vector<std::string>{"a", "b,c", "d"}));
  EXPECT_EQ(uToken("\"say \"\"hi\"\"\",x", ","), (std::vector<std::string>{"say \"hi\"", "x"}));
  EXPECT_EQ(uToken("a,,", ","), (std::vector<std::string>{"a", "", ""}));
  EXPECT_TRUE(uToken("", ",").empty());
  EXPECT_EQ(uTokenCount("", ","), 0u);
  // A minimum size pads, but the count stays real.
  const auto tokens = uToken("a", ",", 20);
  ASSERT_EQ(tokens.size(), 20u);
  EXPECT_EQ(tokens[0], "a");
  EXPECT_EQ(tokens[19], "");
  EXPECT_EQ(uTokenCount("a", ","), 1u);
}

TEST(Numeric, LenientTestsAndNoValueConversions) {
  ExpectEach(IsNumeric, {pair{" 1,000.5 ", true}, {"-1.5E+03", true}, {"１２．５", true}, {"&H1F", true}, {"", false},
                         {"1.2.3", false}, {"12 3", false}, {"E5", false}});
  ExpectEach(uDblVal, {pair{"１２．５", 12.5}, {"abc", 0.0}});
  ExpectEach(uLongVal, {pair{"2.5", 2}, {"3.5", 4}});  // half to even
  EXPECT_TRUE(IsNoValue(uTextToDbl("   ")));
  EXPECT_EQ(uTextToLong(""), kNoValueLong);
  EXPECT_EQ(uTextToLong("x"), 0);
  EXPECT_THROW(uLongVal("3000000000"), LegacyError);
}

TEST(Numeric, RoundingRules) {
  ExpectEach(CLng, {pair{-2.5, -2}, {1.5, 2}});
  ExpectEach(RoundHalfAway, {pair{2.5, 3}, {-2.5, -3}});
  EXPECT_EQ(IntLong(-0.5), -1);
  EXPECT_EQ(CInt(32767.4), 32767);
  EXPECT_THROW(CInt(32767.5), LegacyError);
  EXPECT_THROW(CheckedI16(40000), LegacyError);
}

TEST(Text, EqualityTrimsAndIgnoresCaseOnly) {
  EXPECT_TRUE(uStrEqual(" rElev ", "RELEV"));
  EXPECT_FALSE(uStrEqual(" rElev ", "RElev."));
  EXPECT_EQ(CharLength("｜ab"), 3u);
  EXPECT_EQ(CharLeft("路線｜12", 2), "路線");
  EXPECT_EQ(CharMid("路線｜12", 4), "12");
  EXPECT_EQ(CharRight("123.45+-", 2), "+-");
}

}  // namespace
}  // namespace velmora
