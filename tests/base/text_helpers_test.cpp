// The text, number, path and name helpers of the base layer: tokens, lenient numbers, the legacy
// number and date formats, Shift-JIS files, path pieces and the macros of file names.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "base/app_paths.h"
#include "base/colour.h"
#include "base/common.h"
#include "base/file_export_name.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/macros.h"
#include "base/number_helpers.h"
#include "base/path_helpers.h"
#include "base/text_encoding.h"
#include "support/calendar.h"
#include "support/checks.h"

namespace velmora {
namespace {

using std::pair;
using testing::ExpectEach;
using testing::ReadBytes;
using testing::WriteBytes;
using Texts = std::vector<std::string>;

TEST(Token, QuotesKeepDelimitersAndDoubledQuotesAMinimumSizePads) {
  EXPECT_EQ(uToken("a,\"b,c\",d", ","), (Texts{"a", "b,c", "d"}));
  EXPECT_EQ(uToken("\"say \"\"hi\"\"\",x", ","), (Texts{"say \"hi\"", "x"}));
  EXPECT_EQ(uToken("a,,", ","), (Texts{"a", "", ""}));
  EXPECT_TRUE(uToken("", ",").empty());
  EXPECT_EQ(uTokenCount("", ","), 0u);
  // A minimum size pads, but the count stays real.
  EXPECT_EQ(uToken("a", ",", 20), [] { Texts padded(20); padded[0] = "a"; return padded; }());
  EXPECT_EQ(uTokenCount("a", ","), 1u);
  EXPECT_EQ(uTokenSpace("velmora\t swdebug  x.prj "), (Texts{"velmora", "swdebug", "x.prj"}));
  EXPECT_TRUE(uTokenSpace(" \t ").empty());
  ExpectEach(uQuote, {pair{"a,b", "\"a,b\""}, {"", "\"\""}});
}

TEST(Numeric, LenientTestsNoValueConversionsAndRoundingRules) {
  ExpectEach(IsNumeric, {pair{" 1,000.5 ", true}, {"-1.5E+03", true}, {"１２．５", true}, {"&H1F", true}, {"", false},
                         {"1.2.3", false}, {"12 3", false}, {"E5", false}});
  ExpectEach(uDblVal, {pair{"１２．５", 12.5}, {"abc", 0.0}});
  ExpectEach(uLongVal, {pair{"2.5", 2}, {"3.5", 4}});  // half to even
  EXPECT_TRUE(IsNoValue(uTextToDbl("   ")));
  EXPECT_EQ(std::pair(uTextToLong(""), uTextToLong("x")), std::pair(kNoValueLong, 0));
  EXPECT_THROW(uLongVal("3000000000"), LegacyError);
  ExpectEach(CLng, {pair{-2.5, -2}, {1.5, 2}});
  ExpectEach(RoundHalfAway, {pair{2.5, 3}, {-2.5, -3}});
  EXPECT_EQ(IntLong(-0.5), -1);
  EXPECT_EQ(CInt(32767.4), 32767);
  EXPECT_THROW(CInt(32767.5), LegacyError);
  EXPECT_THROW(CheckedI16(40000), LegacyError);
}

TEST(Text, EqualityTrimsAndIgnoresCaseOnlyAndPiecesCountCharacters) {
  EXPECT_TRUE(uStrEqual(" rElev ", "RELEV"));
  EXPECT_FALSE(uStrEqual(" rElev ", "RElev."));
  EXPECT_EQ(CharLength("｜ab"), 3u);
  EXPECT_EQ((Texts{CharLeft("路線｜12", 2), CharMid("路線｜12", 4), CharRight("123.45+-", 2)}), (Texts{"路線", "12", "+-"}));
}

TEST(NumberText, NoValueIsEmptyWidthIsThePatternsNeverCutTrailingZerosDropped) {
  ExpectEach([](double v) { return uDblToText(v, "0.00"); }, {pair{kNoValue, ""}, {-99999.01, "-99999.01"}, {1.5, "1.50"}});
  ExpectEach(uLongToText, {pair{kNoValueLong, ""}, {-99998, "-99998"}});
  ExpectEach(uDblZero, {pair{kNoValue, 0.0}, {-3.25, -3.25}});
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
  EXPECT_EQ(std::pair(uMax(3, 5), uMin(3, 5)), std::pair(5, 3));
  // -0.0 and 0.0 compare equal: the first one is returned, sign included.
  EXPECT_TRUE(std::signbit(uMin(-0.0, 0.0)));
  EXPECT_FALSE(std::signbit(uMax(0.0, -0.0)));
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
  EXPECT_EQ(ColourText(0xFF00FF, ", ") + "|" + ColourText(0x00FF00, ","), "255, 0, 255|0,255,0");
}

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

TEST(FormatNumber, PlainDecimalsGiveWhatThePatternInterpreterGives) {
  // The result files' "0.00000" and "0.00000000" take a faster route: it must agree everywhere,
  // also at ties, carries into a new digit, values that round to zero, and the extremes.
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> mantissa(-10, 10);
  std::uniform_int_distribution<int> exponent(-12, 12);
  std::vector<double> values = {0.0, -0.0, 0.5, -0.5, 9.999995, 0.000005, -0.000004999, 0.125, 2.675, 99999.999995,
                                1e15, 1e-300, -1e300, 123456789.123456789, std::numeric_limits<double>::denorm_min()};
  for (int k = 0; k < 20000; ++k) values.push_back(mantissa(random) * std::pow(10.0, exponent(random)));
  for (const char* pattern : {"0.0", "0.00000", "0.00000000", "0.000000"})
    for (double v : values) ASSERT_EQ(FormatNumber(v, pattern), FormatNumberByPattern(v, pattern)) << v << " " << pattern;
}

TEST(ToSystemCodePage, AsciiRunsPassAndEverythingElseIsConverted) {
  // "距" is 0x8B 0x97 and "離" 0x97 0xA3 in Shift-JIS; "€" has no Shift-JIS form and becomes "?".
  EXPECT_EQ(ToSystemCodePage("a,1.5\r\n距離(m), x€y"), "a,1.5\r\n\x8B\x97\x97\xA3(m), x?y");
  EXPECT_EQ(ToSystemCodePage(""), "");
}

TEST(FormatDateTime, PatternsOfStampsAndNamesMinutesAfterTheHour) {
  const std::tm t = testing::At(2026, 11, 2, 7, 5, 9);
  ExpectEach([&](const char* pattern) { return FormatDateTime(t, pattern); },
             {pair{"YYYYMMDDHHNNSS", "20261102070509"}, {"YYYY/MM/DD HH:MM:SS", "2026/11/02 07:05:09"}, {"yyyymm", "202611"},
              {"MM", "11"}});
}

TEST(SystemCodePage, FullWidthBarIs8162UnmappableBecomesQuestionMarkInvalidBytesNameTheFile) {
  EXPECT_EQ(ToSystemCodePage("｜"), "\x81\x62");
  EXPECT_EQ(FromSystemCodePage("\x81\x62"), "｜");
  const std::string key = "長波長合算Octave";
  EXPECT_EQ(FromSystemCodePage(ToSystemCodePage(key)), key);
  EXPECT_EQ(ToSystemCodePage("a😀b"), "a?b");
  EXPECT_NE(testing::WhatOf([] { FromSystemCodePage("ab\x81", "road.erd"); }).find("road.erd"), std::string::npos);
}

TEST(SystemTextFile, WritesCrLfReadsAnyLineEndAndAFailedWriteLeavesNothingBehind) {
  testing::TempDir dir;
  WriteSystemTextFile(dir / "a.txt", {"ERDFILEV2.00", "TITLE   路線｜1.00000++"});
  EXPECT_EQ(ReadBytes(dir / "a.txt"), "ERDFILEV2.00\r\nTITLE   \x98\x48\x90\xfc\x81\x62" "1.00000++\r\n");
  WriteBytes(dir / "b.txt", "x\ny\r\nz\r\r\nw");
  EXPECT_EQ(ReadSystemTextLines(dir / "b.txt"), (Texts{"x", "y", "z", "", "w"}));
  EXPECT_THROW(ReadSystemTextLines(dir / "none.txt"), LegacyError);
  // A folder in the target's place cannot be replaced: other files are untouched, no temporary is left.
  std::filesystem::create_directory(dir / "folder");
  EXPECT_THROW(WriteSystemTextFile(dir / "folder", {"new"}), LegacyError);
  EXPECT_EQ(ReadBytes(dir / "b.txt"), "x\ny\r\nz\r\r\nw");
  EXPECT_EQ(testing::EntryNames(dir.path()), (Texts{"a.txt", "b.txt", "folder"}));
}

TEST(PathText, EitherSeparatorIsAddedOnceSearchesCountCharactersAndOnlyFilesAreFound) {
  ExpectEach(flGetFileName, {pair{"C:\\data\\road.erd", "road.erd"}, {"/home/u/road.erd", "road.erd"},
                             {"a/b\\路線.txt", "路線.txt"}, {"road", "road"}, {"/home/u/", ""}});
  ExpectEach(flGetFileNameNonExt, {pair{"/x/a.b.erd", "a.b"}, {"/x.y/name", "name"}});
  ExpectEach(flGetPathName, {pair{"/home/u/road.erd", "/home/u"}, {"C:\\data\\road.erd", "C:\\data"}, {"road.erd", ""}});
  // Where the only "." stands in a folder name there is no extension.
  ExpectEach(flGetExtension, {pair{"a.b.ERD", "ERD"}, {"/x.y/name", ""}, {"C:\\x.y\\name", ""}, {"name.", ""}});
  ExpectEach(flAddDirSep, {pair{"/a", "/a/"}, {"/a/", "/a/"}, {"C:\\a\\", "C:\\a\\"}});
  // 路 線 / 路: the last "路線" starts at character 4, not at byte 8.
  EXPECT_EQ(std::pair(flInStrRev("路線/路線.erd", "路線"), flInStrRev("abc", "x")), std::pair(std::size_t{4}, std::size_t{0}));
  EXPECT_EQ(flStrRev("abc路"), "路cba");
  testing::TempDir dir;
  WriteBytes(dir / "a.ini", "x");
  ExpectEach(flSearchPath, {pair{(dir / "a.ini").string(), true}, {dir.path().string(), false},
                            {(dir / "b.ini").string(), false}, {std::string(), false}});
}

TEST(NameMacros, FirstOccurrenceOnlyWhateverTheCaseMonthIsMmMinuteIsNn) {
  EXPECT_EQ(uReplaceMacro("x_$(profilename)$_y", "$(PROFILENAME)$", "R1"), "x_R1_y");
  EXPECT_EQ(uReplaceMacro("$(IRI種別)$.csv", "$(IRI種別)$", "10m"), "10m.csv");
  EXPECT_EQ(uReplaceMacro("plain", "$(X)$", "v"), "plain");
  const std::tm t = testing::At(2024, 3, 7, 9, 5, 2);
  EXPECT_EQ(uExpandDate("$(YYYYMMDDHHNNSS)$", t), "20240307090502");
  EXPECT_EQ(uExpandDate("$(yyyymmdd)$_$(HH)$$(NN)$", t), "20240307_0905");
  EXPECT_EQ(uExpandDate("$(YYYYMMDDHHNN)$|$(YYYYMMDDHH)$|$(YYYYMM)$|$(YYYY)$", t), "202403070905|2024030709|202403|2024");
  EXPECT_EQ(uExpandDate("$(DD)$.$(SS)$", t), "07.02");
  EXPECT_EQ(uExpandDate("$(MM)$-$(NN)$-$(MM)$", t), "03-05-$(MM)$");
  // The name and the kind's macros once each too; a blank pattern takes the built-in one.
  EXPECT_EQ(FileExportName("$(profilename)$_$(CutOff)$_$(yyyymmdd)$+$(PROFILENAME)$", "unused", "road1",
                           {{"$(CUTOFF)$", "MAHP_50m"}}, t),
            "road1_MAHP_50m_20240307+$(PROFILENAME)$");
  EXPECT_EQ(FileExportName("  ", "$(PROFILENAME)$_Octave$(OctaveNum)$_$(YYYYMMDDHHNNSS)$", "r", {{"$(OctaveNum)$", "3"}}, t),
            "r_Octave3_20240307090502");
}

TEST(PathMacros, AppPathFirstAndOnlyAtAFolderBoundaryAndAStoredPathFollowsAMovedFolder) {
  AppPaths paths;
  paths.AppPath = "/opt/velmora/bin";
  paths.UserLocalPath = "/home/u/.local/share/Velmora";
  testing::ExpectEach([&](const char* path) { return uAbbreviatePathMacro(paths, path); },
                      {std::pair{"/opt/velmora/bin/Default.ini", "$(AppPath)/Default.ini"}, {"/OPT/Velmora/BIN/a", "$(AppPath)/a"},
                       {"/home/u/.local/share/Velmora/Resource/x", "$(UserLocalPath)/Resource/x"},
                       {"/home/u/.local/share/Velmora", "$(UserLocalPath)"},
                       {"/opt/velmora/binary/x", "/opt/velmora/binary/x"}, {"/data/road.erd", "/data/road.erd"}});
  EXPECT_EQ(uExpandPathMacro(paths, "$(apppath)/a"), "/opt/velmora/bin/a");
  EXPECT_EQ(uExpandPathMacro(paths, "$(AppPath)/$(UserLocalPath)"), "/opt/velmora/bin/$(UserLocalPath)");
  EXPECT_EQ(uExpandPathMacro(paths, "/no/macro"), "/no/macro");
  const std::string stored = uAbbreviatePathMacro(paths, "/home/u/.local/share/Velmora/Project/p.prj");
  paths.UserLocalPath = "/mnt/other/Velmora";
  EXPECT_EQ(uExpandPathMacro(paths, stored), "/mnt/other/Velmora/Project/p.prj");
  // A user-local tree inside the program's folder is still abbreviated by AppPath, which is tried first.
  paths.UserLocalPath = "/opt/velmora/bin/local";
  EXPECT_EQ(uAbbreviatePathMacro(paths, "/opt/velmora/bin/local/x"), "$(AppPath)/local/x");
}

}  // namespace
}  // namespace velmora
