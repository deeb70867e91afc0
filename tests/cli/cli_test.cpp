// Command lines the program refuses: each ends with its exit status (1: the work failed, 2: usage)
// and one message line on stderr in the chosen language, and writes no file.
#include "cli_fixture.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

constexpr int kNonZero = -1;  // any status but 0
constexpr int kFailed = 1, kUsage = 2;

struct Refusal {
  std::string name;       // what the row proves
  std::string arguments;  // {road} is the example road_b, {A} and {B} files written here, {temp} the test's folder
  int status;
  std::vector<std::string> messages;  // parts of stderr
  std::vector<std::string> file = {};  // a text file written first: its name under {temp}, then its lines
  std::string lang = "ja";
  bool whole = false;  // the one message is all of stderr, and nothing is on stdout
};

// One line per problem, "velmora: COMMAND: WHAT: why", naming the file or the flag (with its unit).
const std::vector<Refusal> kRefusals = {
    {"MissingFileIsNamed", "iri '{temp}/missing.erd'", kFailed, {"velmora: iri: {temp}/missing.erd: ファイルがありません\n"}},
    {"MissingFileInEnglish", "iri '{temp}/missing.erd'", kFailed, {"velmora: iri: {temp}/missing.erd: no such file\n"}, {}, "en"},
    {"MissingFileOfInfoBesideAGoodOne", "info {A} '{temp}/none.erd'", kFailed, {"velmora: info: {temp}/none.erd: ファイルがありません"}},
    {"FolderWithoutErdFiles", "iri '{temp}/empty'", kFailed, {"velmora: iri: {temp}/empty: no ERD file in this folder"},
     {"empty/readme.txt", "nothing"}, "en"},
    {"PitchThatIsNotANumber", "import '{temp}/road.csv' --pitch abc --header", kUsage,
     {"velmora: import: --pitch (m): 数値で指定してください。"}, {"road.csv", "left,right", "1,2"}},
    {"PitchThatIsNotANumberInEnglish", "import '{temp}/road.csv' --pitch abc --header", kUsage,
     {"velmora: import: --pitch (m): must be a number"}, {"road.csv", "left,right", "1,2"}, "en"},
    // Line 3 of the file (the first is the heading), column 2.
    {"CellThatIsNotANumberUnderStrict", "import '{temp}/road.csv' --pitch 0.1 --header --strict", kFailed,
     {"velmora: import: {temp}/road.csv:3:2: \"x\" は数値ではありません\n"}, {"road.csv", "left,right", "1,2", "5,x", "3,4"}},
    {"FileThatIsNotErdIsNamed", "octave '{temp}/bad.erd'", kFailed,
     {"velmora: octave: {temp}/bad.erd: 指定されたファイルは ERD フォマットではありません。"}, {"bad.erd", "not an ERD file"}},
    {"FileThatIsNotErdInEnglish", "octave '{temp}/bad.erd'", kFailed, {"velmora: octave: {temp}/bad.erd: not an ERD file"},
     {"bad.erd", "not an ERD file"}, "en"},
    {"UnknownOption", "reduce {road} --frobnicate", kUsage,
     {"velmora: reduce: --frobnicate: このコマンドのオプションまたは引数ではありません"}},
    {"UnknownOptionInEnglish", "reduce {road} --frobnicate", kUsage,
     {"velmora: reduce: --frobnicate: not an option or argument of this command"}, {}, "en"},
    {"LimitThatIsNotANumber", "reduce {road} --lines 1,2,x,4,5,6,7,8,9", kUsage,
     {"velmora: reduce: --lines: 低減ライン 3 の \"x\" は数値ではありません（mm）"}},
    {"PairWithAnUnknownMember", "iri {A} --pair A nowhere", kUsage,
     {"velmora: iri: --pair: \"nowhere\" is neither a file nor a profile among the files\n"}, {}, "en", true},
    {"PairOfUnequalPitches", "iri --pair {B} {A}", kFailed,
     {"velmora: iri: --pair: the two profiles differ in pitch: 0.100000 m and 0.250000 m\n"}, {}, "en", true},
    {"MissingFileArgument", "iri", kUsage, {"velmora: iri: FILE: is required (see --help)\n"}, {}, "en", true},
    {"DelimitedTextWithoutPitch", "import '{temp}/road.csv'", kUsage, {"velmora: import: --pitch (m): no pitch given\n"},
     {"road.csv", "1,2", "3,4"}, "en", true},
    {"PlotSizeWithoutHeight", "plot profile --size 600 {road}", kUsage, {"--size: \"600\" is not WIDTHxHEIGHT"}, {}, "en"},
    {"PlotSizeTooSmall", "plot profile --size 10x10 {road}", kUsage, {"--size: \"10x10\" is not WIDTHxHEIGHT"}, {}, "en"},
    {"PlotOfAnUnknownKind", "plot wave {road}", kUsage, {"wave"}, {}, "en"},
    {"PlotInAnUnknownFormat", "plot profile --format gif {road}", kUsage, {"gif"}, {}, "en"},
    {"PlotAtTooFewDots", "plot profile --dpi 5 {road}", kUsage, {"--dpi"}, {}, "en"},
    {"TooFewLimits", "reduce {road} --lines 1,2,3", kUsage, {"velmora: reduce: --lines: nine limits (mm) are needed, separated by commas; got 3"},
     {}, "en"},
    {"OctaveBeyondNine", "octave {road} --bands 10", kUsage, {"velmora: octave: --bands"}},
    {"SmoothingThatIsNotANumber", "psd {road} --smooth many", kUsage, {"velmora: psd: --smooth: \"many\" は 1 以上の整数ではありません"}},
    {"SmoothingOfZeroInEnglish", "psd {road} --smooth 0", kUsage, {"velmora: psd: --smooth: \"0\" is not a whole number of at least 1\n"},
     {}, "en"},
    // road_b is sampled at 0.05 m: a window must hold at least one step.
    {"ZeroIriLength", "iri {road} --length 0", kUsage, {"velmora: iri: --length (m): 0.05 以上で指定して下さい。"}},
    {"ZeroIriLengthInEnglish", "iri {road} --length 0", kUsage, {"velmora: iri: --length (m): must be at least 0.05\n"}, {}, "en"},
    {"IriLengthThatIsNotANumber", "summary {road} --length abc", kUsage,
     {"velmora: summary: --length (m): IRIの評価値は数値で指定して下さい。"}},
    {"ZeroCutOff", "filter {road} --kind lowpass --short 0", kUsage,
     {"velmora: filter: --short (m): Short CutOff wavelength > 0.0 で指定して下さい。"}},
    {"EmptySelectionOfStatistics", "stats {A} --stats ''", kNonZero, {}},
    {"StatisticsWithNothingToCompute", "stats {A} --no-profile", kUsage, {"velmora: stats: --no-profile: 計算するものがありません"}},
    {"MixedPitches", "xcorr {A} {B}", kFailed,
     {"velmora: xcorr: 対象プロファイルのサンプルピッチは全て同じにしてください。 A ： 0.2500 B ： 0.1000 確認してください。\n"}},
    // 100 samples in common: at most 98.
    {"ShiftBeyondTheCommonSamples", "xcorr {A} {A} --max-shift 99", kUsage,
     {"velmora: xcorr: --max-shift: ０ < [最大ずらし量] <= ９８　の範囲で指定してください"}},
    {"ShiftBeyondTheCommonSamplesInEnglish", "xcorr {A} {A} --max-shift 99", kUsage,
     {"velmora: xcorr: --max-shift: the largest shift must lie in 0 < shift <= ９８"}, {}, "en"},
    {"BoundaryThatIsNotANumber", "repair {road} --long 5l.2", kUsage, {"velmora: repair: --long (m): 長波側境界値は数値で指定して下さい。"}},
    {"EmptyBoundary", "repair {road} --short ''", kUsage, {"velmora: repair: --short (m): 短波側境界値が指定されていません。"}},
    // Options of the command line itself are checked before any work.
    {"UnknownWave", "repair {road} --register L,X", kUsage, {"velmora: repair: --register: \"X\" は L、M、S、ideal のいずれでもありません"}},
    {"TooFewRepairLimits", "repair {road} --lines 1,2,3", kUsage,
     {"velmora: repair: --lines: 低減ライン（mm）をカンマ区切りで 9 個指定してください（3 個でした）"}},
    {"OnePlanKp", "repair {road} --plan-range 0.1", kUsage, {"velmora: repair: --plan-range: two KP values in km are needed"}, {}, "en"},
    {"AdjustmentLineWithoutComma", "repair {road} --adjust '{temp}/adjust.csv'", kUsage,
     {"velmora: repair: {temp}/adjust.csv: line 3: expected \"KP(km),thickness(mm)\", got \"0.2;3\""},
     {"adjust.csv", "KP(km),厚さ(mm)", "0.1,5", "0.2;3"}, "en"},
    // The road is 249.95 m long.
    {"AdjustmentBeyondTheRoad", "repair {road} --adjust '{temp}/adjust.csv'", kUsage,
     {"velmora: repair: {temp}/adjust.csv: KP 0.300 km lies outside the profile road_b"}, {"adjust.csv", "0.3,5"}},
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
  if (!r.file.empty()) {
    std::filesystem::create_directories((temp / r.file[0]).parent_path());
    WriteSystemTextFile(temp / r.file[0], {r.file.begin() + 1, r.file.end()});
  }
  const int status = Run(Expand(r.arguments), "out", r.lang);
  EXPECT_TRUE(r.status == kNonZero ? status != 0 : status == r.status) << status << "\n" << Stderr();
  EXPECT_FALSE(Stderr().empty());
  // Internal procedure names belong in the error log, not on the terminal.
  EXPECT_EQ(Stderr().find("[ "), std::string::npos) << Stderr();
  for (const std::string& message : r.messages)
    EXPECT_NE(Stderr().find(Expand(message)), std::string::npos) << Stderr();
  if (r.whole) {
    EXPECT_EQ(Stderr(), Expand(r.messages.at(0)));
    EXPECT_EQ(Stdout(), "");
  }
  EXPECT_TRUE(Written().empty());
}

INSTANTIATE_TEST_SUITE_P(CommandLines, Refused, ::testing::ValuesIn(kRefusals),
                         [](const ::testing::TestParamInfo<Refusal>& info) { return info.param.name; });

}  // namespace
}  // namespace velmora
