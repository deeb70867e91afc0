// What the reader makes of each file it may be handed: the edge-case fixtures (tests/data/erd, made
// by tools/make_erd_fixtures.py), broken bytes written here, the bundled examples and the measured
// profiles beside the repository. One row per file: the values read, or the error naming the file.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <variant>

#include "base/legacy_error.h"
#include "profile/erd_file.h"
#include "profile/profile_reader.h"
#include "support/checks.h"

namespace velmora {
namespace {

using Value = std::variant<std::string, double, std::vector<double>>;
using Expect = std::pair<std::string, Value>;

// The fields a row may name; numbers come as doubles and compare within a few ulps.
std::map<std::string, Value> Fields(const ProfileRecord& p) {
  const ErdRecord& e = p.Erd;
  return {{"Title", e.Title}, {"Samples", e.Elevation.vector()}, {"NumSamples", double(e.NumSamples)},
          {"NumSamplesHeader", double(e.NumSamplesHeader)}, {"NumChannels", double(e.NumChannels)},
          {"FormatCode", double(e.FormatCode)}, {"StepSize", e.StepSize},
          {"First", e.Elevation.empty() ? kNoValue : e.Elevation[1]}, {"DistanceUnit", e.DistanceUnit},
          {"Metric", std::string(e.IsMetric ? "yes" : "no")}, {"SlopeUnitScale", e.SlopeUnitScale},
          {"SlopeUnitName", e.SlopeUnitName}, {"KpText", e.KpText}, {"KpStart", e.KpStart}, {"KpSign", double(e.KpSign)},
          {"Lane", double(e.Lane)}, {"KpDisplay", e.KpDisplay}, {"RepairRangeText", e.RepairRangeText},
          {"RepairRangeStart", e.RepairRangeStart}, {"RepairRangeEnd", e.RepairRangeEnd},
          {"RepairRangeOn", double(e.RepairRangeOn)}, {"ShortName1", e.ShortName[1]}, {"ShortName2", e.ShortName[2]},
          {"UnitsName1", e.UnitsName[1]}, {"UnitsName2", e.UnitsName[2]}, {"YLabel", e.YLabel}, {"XLabel", e.XLabel},
          {"WorkCount", double(p.WorkCount)}, {"Count", double(p.Statistics.Count)}, {"Mean", p.Statistics.Mean},
          {"Spread", p.Statistics.Spread}};
}

enum class Outcome {
  Reads,    // true, no message
  Refused,  // false and one message box: the row's text, then the file's name
  BadData,  // a type mismatch naming the file and the row's text (the line), no message
  Raises,   // an error naming the file, no message
};

struct ReadCase {
  std::string name;  // what the row proves
  std::string file;  // under tests/data/erd; "examples/", "shared/" or "temp/" (then written from `bytes`)
  Outcome outcome;
  std::string text;
  std::vector<Expect> fields;  // what the record holds afterwards
  std::optional<std::string> bytes = std::nullopt;
};

// The head of a well-formed file of three samples at 0.1 m, seven lines up to END.
const std::string kHead =
    "ERDFILEV2.00\r\n      1,      3,      3,      1,      5, 0.100000    ,     -1,\r\n"
    "TITLE   t\r\nSHORTNAMLElev.\r\nUNITSNAMmm\r\nXUNITS  m\r\nEND\r\n";

std::string WithReplaced(std::string text, const std::string& from, const std::string& to) {
  return text.replace(text.find(from), from.size(), to);
}

// A bundled example: its count (in the header and the data alike), pitch and KP as shown.
ReadCase Example(const std::string& name, const std::string& file, double count, double pitch, const char* kp) {
  return {name, "examples/" + file, Outcome::Reads, "",
          {{"NumSamples", count}, {"NumSamplesHeader", count}, {"WorkCount", count}, {"StepSize", pitch},
           {"KpDisplay", kp}}};
}

// A single-channel copy of a measured profile, in mm and without KP.
ReadCase Measured(const std::string& name, const std::string& file, double count, double pitch, double first,
                  const char* shortName) {
  return {name, "shared/" + file, Outcome::Reads, "",
          {{"NumChannels", 1.}, {"NumSamples", count}, {"NumSamplesHeader", count}, {"StepSize", pitch},
           {"First", first}, {"ShortName1", shortName}, {"Metric", "yes"}, {"KpStart", kNoValue}}};
}

const std::vector<ReadCase> kCases = {
    {"HeaderWithoutEndStopsAfterHundredLinesTheHundredthStillAKey", "header_without_end.erd", Outcome::Reads, "",
     {{"Title", "hundredth"}, {"Samples", std::vector<double>{7.5, 8.5}}, {"NumSamples", 2.}}},
    {"BlankLinesAmongSamplesAreSkippedAndNotCounted", "blank_line_in_data.erd", Outcome::Reads, "",
     {{"Samples", std::vector<double>{1, 2}}, {"NumSamples", 2.}, {"NumSamplesHeader", 3.}}},
    {"FeetScaleThePitchButNotTheHeights", "feet_units.erd", Outcome::Reads, "",
     {{"StepSize", 0.5 * 0.3048}, {"Samples", std::vector<double>{10, -2.5}}, {"DistanceUnit", "ft"},
      {"Metric", "no"}, {"SlopeUnitScale", 63360.}, {"SlopeUnitName", " in/mi"}}},
    {"CentimetreHeightsBecomeMillimetres", "cm_heights.erd", Outcome::Reads, "",
     {{"Samples", std::vector<double>{15, -2.5, 0}}, {"Metric", "yes"}, {"SlopeUnitScale", 1000.},
      {"SlopeUnitName", " m/km"}}},
    {"MetreHeightsBecomeMillimetres", "m_heights.erd", Outcome::Reads, "",
     {{"Samples", std::vector<double>{1.5, -2, 1000}}, {"NumSamples", 3.}}},
    // Only the check box sets RepairRangeOn; the file's range leaves it 0.
    {"ShiftJisTitleCarriesKpSignLaneAndRepairRange", "sjis_title_with_kp.erd", Outcome::Reads, "",
     {{"Title", "国道１２号　上り"}, {"KpText", "123.45000+-"}, {"KpStart", 123.45}, {"KpSign", 0.}, {"Lane", -1.},
      {"KpDisplay", "123.45000+-"}, {"RepairRangeText", "123.50000,124.00000"}, {"RepairRangeStart", 123.5},
      {"RepairRangeEnd", 124.}, {"RepairRangeOn", 0.}, {"ShortName1", "LElev."}, {"YLabel", "Elevation"},
      {"XLabel", "Distance"}}},
    // The lone "-" is neither the sign nor the lane.
    {"KpFieldShorterThanItsFlagsGivesKpZeroAndNoFlags", "title_short_kp.erd", Outcome::Reads, "",
     {{"Title", "route"}, {"KpText", "-"}, {"KpStart", 0.}, {"KpSign", 0.}, {"Lane", 0.}}},
    {"KpOfExactlyNoValueIsNoKp", "kp_no_value.erd", Outcome::Reads, "",
     {{"Title", "road"}, {"KpStart", kNoValue}, {"KpDisplay", ""}, {"RepairRangeStart", 1.}}},
    {"HeaderCountMayDifferFromTheLinesPresent", "header_count_differs.erd", Outcome::Reads, "",
     {{"NumSamplesHeader", 10.}, {"NumSamples", 3.}, {"WorkCount", 3.}}},
    // Samples 1, 2, 3: mean 2, spread 3 - 1.
    {"LineTwoIsSplitAtCommasWhateverTheWidthsAndStatisticsAreFilled", "line2_free_widths.erd", Outcome::Reads, "",
     {{"NumChannels", 1.}, {"NumSamplesHeader", 3.}, {"FormatCode", 5.}, {"StepSize", 0.25},
      {"Samples", std::vector<double>{1, 2, 3}}, {"Count", 3.}, {"Mean", 2.}, {"Spread", 2.}}},
    {"ShortKeysWithLessPaddingAreRecognised", "short_key_padding.erd", Outcome::Reads, "",
     {{"Title", "Short pad"}, {"YLabel", "Height"}, {"XLabel", "Dist"}, {"DistanceUnit", "m"},
      {"Samples", std::vector<double>{4, 5, 6}}}},
    // The padded "cm      " still counts as centimetres.
    {"TwoChannelHeaderFillsEightColumnSlices", "two_channel_header.erd", Outcome::Reads, "",
     {{"NumChannels", 2.}, {"ShortName1", "LElev.  "}, {"ShortName2", "RElev."}, {"UnitsName1", "cm      "},
      {"UnitsName2", "cm"}, {"Samples", std::vector<double>{10, 20}}}},
    {"HugeDeclaredCountReadsOnlyWhatIsThere", "temp/huge.erd", Outcome::Reads, "",
     {{"NumSamplesHeader", 1e9}, {"NumSamples", 3.}, {"Samples", std::vector<double>{1, 2, 3}}},
     WithReplaced(kHead, "      3,      3,", "1000000000,1000000000,") + "1\r\n2\r\n3\r\n"},

    {"WrongSignatureIsNotAnErdFile", "not_erd.erd", Outcome::Refused, "指定されたファイルは ERD フォマットではありません。", {}},
    {"EmptyFileIsNotAnErdFile", "temp/empty.erd", Outcome::Refused, "指定されたファイルは ERD フォマットではありません。",
     {}, ""},
    {"FormatCodeOtherThanFiveIsRefused", "format_code_4.erd", Outcome::Refused, "Data not stored in correct format.",
     {}},
    {"ThreeChannelsAreRefused", "three_channels.erd", Outcome::Refused, "File must have 1 or 2 channels.", {}},
    {"ZeroStepIsRefused", "zero_step.erd", Outcome::Refused, "Illegal step size.", {}},

    // Eleven lines up to END in the fixtures, seven in kHead.
    {"WordOnADataLine", "data_line_not_number.erd", Outcome::BadData, "14 行目", {}},
    {"TwoNumbersOnADataLine", "two_numbers_on_line.erd", Outcome::BadData, "12 行目", {}},
    {"NanIsNotANumber", "temp/nan.erd", Outcome::BadData, "9 行目", {}, kHead + "1.0\r\nnan\r\n"},
    {"InfIsNotANumber", "temp/inf.erd", Outcome::BadData, "9 行目", {}, kHead + "1.0\r\ninf\r\n"},
    {"MinusInfinityIsNotANumber", "temp/minf.erd", Outcome::BadData, "9 行目", {}, kHead + "1.0\r\n-Infinity\r\n"},
    {"OverflowIsNotANumber", "temp/big.erd", Outcome::BadData, "9 行目", {}, kHead + "1.0\r\n1e999\r\n"},

    {"MissingFile", "/nonexistent/nowhere.erd", Outcome::Raises, "", {}},
    {"FolderInPlaceOfTheFile", "temp/", Outcome::Raises, "", {}},
    {"LeadByteWithoutTrailByteInTheTitle", "temp/sjis.erd", Outcome::Raises, "", {},
     WithReplaced(kHead, "TITLE   t", "TITLE   \x81\x20") + "1\r\n"},

    Example("ExampleWithKp", "road_a_kp.erd", 3000, 0.1, "12.30000++"),
    Example("ExampleWithoutKp", "road_b.erd", 5000, 0.05, ""),
    Example("RoughExample", "road_c_rough.erd", 3000, 0.1, ""),
    // Counts, pitches and first samples read off the measured files' own heads (see the data
    // folder's README).
    Measured("SharedBasicLeft", "derived/basic_left_mm.erd", 25544, 0.063068210, -0.01127760, "LElev."),
    Measured("SharedBasicRight", "derived/basic_right_mm.erd", 25544, 0.063068210, -0.01524000, "RElev."),
    Measured("SharedTestRunLeft", "derived/Test_Run1_left_mm.erd", 159131, 0.0762, -10.8458, "LElev."),
    Measured("SharedTestRunRight", "derived/Test_Run1_right_mm.erd", 159131, 0.0762, 0.381, "RElev."),
    Measured("SharedProfileOne", "derived/profile_1_derived_mm.erd", 2177, 0.25, 583137.0, "Elev"),
    // Both channels on one line: 17 header lines up to END, and the header was taken in before the
    // data failed (two channels in feet).
    {"SharedTwoChannelsOnOneLine", "shared/freevryheid_iri/basic.erd", Outcome::BadData, "18 行目",
     {{"NumChannels", 2.}, {"Title", "Track Run E1"}, {"StepSize", 0.2069167 * 0.3048}}},
};

void PrintTo(const ReadCase& c, std::ostream* os) { *os << c.file; }

class ErdRead : public ::testing::TestWithParam<ReadCase> {};

TEST_P(ErdRead, GivesTheValuesOrTheErrorNamingTheFile) {
  const ReadCase& c = GetParam();
  testing::TempDir dir;
  std::filesystem::path path = testing::SourceDir() / "tests/data/erd" / c.file;
  if (c.file.starts_with("/")) path = c.file;
  if (c.file.starts_with("examples/")) path = testing::SourceDir() / c.file;
  if (c.file.starts_with("temp/")) path = c.file == "temp/" ? dir.path() : dir / c.file.substr(5);
  if (c.file.starts_with("shared/")) {
    path = testing::SharedDataDir() / c.file.substr(7);
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "shared data not present: " << c.file;
  }
  if (c.bytes) testing::WriteBytes(path, *c.bytes);

  testing::ScriptedUi ui;
  Session session(ui);
  ProfileRecord profile;
  try {
    EXPECT_EQ(ReadProfile(session, path.string(), profile), c.outcome == Outcome::Reads);
    EXPECT_TRUE(c.outcome == Outcome::Reads || c.outcome == Outcome::Refused) << "no error";
  } catch (const LegacyError& error) {
    const std::string what = error.what();
    EXPECT_TRUE(c.outcome == Outcome::BadData || c.outcome == Outcome::Raises) << what;
    EXPECT_NE(what.find(path.string()), std::string::npos) << what;
    EXPECT_NE(what.find(c.text), std::string::npos) << what;
    if (c.outcome == Outcome::BadData) {
      EXPECT_EQ(error.Number(), ErrorNumber::TypeMismatch) << what;
    }
  }
  if (c.outcome == Outcome::Refused) {
    testing::ExpectMessages(ui, {{c.text + "\r\n\r\nファイル名：" + path.string(), "読み込みエラー", MsgIcon::Exclamation}});
  } else {
    EXPECT_TRUE(ui.Messages().empty());
  }

  const auto fields = Fields(profile);
  for (const auto& [name, expected] : c.fields) {
    ASSERT_TRUE(fields.contains(name)) << name;
    const Value& actual = fields.at(name);
    ASSERT_EQ(actual.index(), expected.index()) << name;
    if (const auto* number = std::get_if<double>(&expected)) {
      EXPECT_DOUBLE_EQ(std::get<double>(actual), *number) << name;
    } else if (const auto* samples = std::get_if<std::vector<double>>(&expected)) {
      const auto& got = std::get<std::vector<double>>(actual);
      ASSERT_EQ(got.size(), samples->size()) << name;
      for (std::size_t i = 0; i < got.size(); ++i) EXPECT_DOUBLE_EQ(got[i], (*samples)[i]) << name << " " << i;
    } else {
      EXPECT_EQ(std::get<std::string>(actual), std::get<std::string>(expected)) << name;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, ErdRead, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<ReadCase>& info) { return info.param.name; });

}  // namespace
}  // namespace velmora
