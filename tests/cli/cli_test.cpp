// Command lines the program refuses: each ends with its exit status and a message on stderr, and
// writes no file.
#include "cli_fixture.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

constexpr int kNonZero = -1;  // any status but 0

struct Refusal {
  std::string name;       // what the row proves
  std::string arguments;  // {road} is the example road_b, {A} and {B} files written here, {temp} the test's folder
  int status;
  std::vector<std::string> messages;  // parts of stderr
  std::vector<std::string> file = {};  // a text file written first: its name under {temp}, then its lines
};

const std::vector<Refusal> kRefusals = {
    {"MissingFileIsNamed", "iri '{temp}/missing.erd'", kNonZero, {"missing.erd"}},
    {"MissingFileOfInfoBesideAGoodOne", "info {A} '{temp}/none.erd'", 1, {"{temp}/none.erd: no such file"}},
    {"PitchThatIsNotANumber", "import '{temp}/road.csv' --pitch abc --header", 1, {"数値で指定してください。"},
     {"road.csv", "left,right", "1,2"}},
    {"FileThatIsNotErdIsNamed", "octave '{temp}/bad.erd'", kNonZero, {"bad.erd"}, {"bad.erd", "not an ERD file"}},
    {"UnknownOption", "reduce {road} --frobnicate", kNonZero, {"--frobnicate"}},
    {"LimitThatIsNotANumber", "reduce {road} --lines 1,2,x,4,5,6,7,8,9", kNonZero, {"\"x\" is not a number"}},
    {"TooFewLimits", "reduce {road} --lines 1,2,3", kNonZero, {"nine limits"}},
    {"MissingFileOfReduce", "reduce '{temp}/gone.erd'", kNonZero, {"gone.erd"}},
    {"OctaveBeyondNine", "octave {road} --bands 10", kNonZero, {"--bands"}},
    {"SmoothingThatIsNotANumber", "psd {road} --smooth many", kNonZero, {"many"}},
    {"ZeroIriLength", "iri {road} --length 0", kNonZero, {}},
    {"ZeroCutOff", "filter {road} --kind lowpass --short 0", kNonZero,
     {"Short CutOff wavelength > 0.0 で指定して下さい。"}},
    {"EmptySelectionOfStatistics", "stats {A} --stats ''", kNonZero, {}},
    {"StatisticsWithNothingToCompute", "stats {A} --no-profile", kNonZero, {"nothing to compute"}},
    {"MixedPitches", "xcorr {A} {B}", kNonZero,
     {"対象プロファイルのサンプルピッチは全て同じにしてください。", "A ： 0.2500", "B ： 0.1000", "確認してください。"}},
    // 100 samples in common: at most 98.
    {"ShiftBeyondTheCommonSamples", "xcorr {A} {A} --max-shift 99", kNonZero,
     {"０ < [最大ずらし量] <= ９８　の範囲で指定してください"}},
    {"BoundaryThatIsNotANumber", "repair {road} --long 5l.2", 1, {"長波側境界値は数値で指定して下さい。"}},
    {"EmptyBoundary", "repair {road} --short ''", 1, {"短波側境界値が指定されていません。"}},
    // Options of the command line itself are checked before any work.
    {"UnknownWave", "repair {road} --register L,X", 2, {"--register: \"X\" is none of L, M, S, ideal"}},
    {"TooFewRepairLimits", "repair {road} --lines 1,2,3", 2, {"--lines: nine limits are needed (mm), got 3"}},
    {"OnePlanKp", "repair {road} --plan-range 0.1", 2, {"--plan-range: two KP values in km are needed"}},
    {"AdjustmentLineWithoutComma", "repair {road} --adjust '{temp}/adjust.csv'", 2,
     {"{temp}/adjust.csv: line 3: expected \"KP(km),thickness(mm)\", got \"0.2;3\""},
     {"adjust.csv", "KP(km),厚さ(mm)", "0.1,5", "0.2;3"}},
    // The road is 249.95 m long.
    {"AdjustmentBeyondTheRoad", "repair {road} --adjust '{temp}/adjust.csv'", 2,
     {"KP 0.300 km lies outside the profile road_b"}, {"adjust.csv", "0.3,5"}},
};

void PrintTo(const Refusal& r, std::ostream* os) { *os << r.arguments; }

class Refused : public testing::CliTest, public ::testing::WithParamInterface<Refusal> {
 protected:
  std::string Expand(std::string text) const {
    const std::pair<std::string, std::string> names[] = {{"{road}", Example("road_b.erd")},
                                                         {"{A}", "'" + (temp / "A.erd").string() + "'"},
                                                         {"{B}", "'" + (temp / "B.erd").string() + "'"},
                                                         {"{temp}", temp.path().string()}};
    for (const auto& [name, value] : names)
      for (std::size_t at; (at = text.find(name)) != std::string::npos;) text.replace(at, name.size(), value);
    return text;
  }
};

TEST_P(Refused, WithItsStatusAndMessageAndNoFile) {
  const Refusal& r = GetParam();
  WriteErd("A", testing::Road(100), 0.25, 1.0);
  WriteErd("B", testing::Road(100), 0.1, 1.0);
  if (!r.file.empty()) WriteSystemTextFile(temp / r.file[0], {r.file.begin() + 1, r.file.end()});
  const int status = Run(Expand(r.arguments));
  EXPECT_TRUE(r.status == kNonZero ? status != 0 : status == r.status) << status;
  EXPECT_FALSE(Stderr().empty());
  for (const std::string& message : r.messages)
    EXPECT_NE(Stderr().find(Expand(message)), std::string::npos) << Stderr();
  EXPECT_TRUE(Written().empty());
}

INSTANTIATE_TEST_SUITE_P(CommandLines, Refused, ::testing::ValuesIn(kRefusals),
                         [](const ::testing::TestParamInfo<Refusal>& info) { return info.param.name; });

}  // namespace
}  // namespace velmora
