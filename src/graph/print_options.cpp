#include "graph/print_options.h"

#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "base/common.h"
#include "base/legacy_error.h"
#include "base/text_encoding.h"

namespace velmora::graph {
namespace {

constexpr const char* kMark = "PRINTOPTION";
constexpr const char* kRule = "*--------------------------------------------------------";
constexpr const char* kScales = "[グラフスケール]";
constexpr const char* kHeader = "[ヘッダー]";
constexpr const char* kColours = "[表示色オプション]";
constexpr const char* kLayout = "[レイアウト]";
constexpr const char* kVersion = "[VER]";

std::string Number(double value) { return fmt::format("{}", value); }

class LineReader {
 public:
  LineReader(const std::filesystem::path& path, std::size_t lineNumber, const std::string& line)
      : path_(path), lineNumber_(lineNumber), items_(uToken(line, ",")) {}

  double NumberAt(std::size_t index) const {
    const std::optional<double> value = index < items_.size() ? ParseNumber(Trim(items_[index])) : std::nullopt;
    if (!value) Fail(fmt::format("item {} is not a number", index + 1));
    return *value;
  }
  Colour ColourAt(std::size_t index) const {
    const double value = NumberAt(index);
    if (value < 0 || value > 0xFFFFFF || value != std::floor(value)) Fail("a colour is a whole number 0..16777215");
    return static_cast<Colour>(value);
  }
  [[noreturn]] void Fail(const std::string& why) const {
    throw LegacyError(ErrorNumber::InvalidData, fmt::format("{}:{}: {}", path_.string(), lineNumber_, why));
  }

 private:
  const std::filesystem::path& path_;
  std::size_t lineNumber_;
  std::vector<std::string> items_;
};

// Fills the value of the section's `index`-th data line.
void ReadDataLine(const std::string& section, int index, const LineReader& line, const std::string& text,
                  PrintOptions& options) {
  if (section == kVersion) {
    options.Version = Trim(text);
  } else if (section == kScales) {
    if (index == 0) {
      options.ProfileMin = line.NumberAt(0);
      options.ProfileMax = line.NumberAt(1);
    } else if (index == 1) {
      options.IriMin = line.NumberAt(0);
      options.IriMax = line.NumberAt(1);
    } else if (index <= 10) {
      options.OctaveMax[static_cast<std::size_t>(index - 1)] = line.NumberAt(0);
    } else {
      line.Fail("more scale lines than the two charts and nine bands");
    }
  } else if (section == kHeader) {
    options.HeaderItems.push_back(text);
  } else if (section == kColours) {
    if (index == 0) {
      options.LimitLineColour = line.ColourAt(0);
      options.LimitGraphColour = line.ColourAt(1);
    } else if (index <= 9) {
      options.OctaveBackground[static_cast<std::size_t>(index)] = line.ColourAt(0);
    } else {
      line.Fail("more colour lines than the limit colours and nine bands");
    }
  } else if (section == kLayout) {
    if (index > 0) line.Fail("one layout line, 0 or 1");
    const double flag = line.NumberAt(0);
    if (flag != 0 && flag != 1) line.Fail("the statistics flag is 0 or 1");
    options.PrintStatistics = flag == 1;
  } else {
    line.Fail("a value before any section");
  }
}

}  // namespace

PrintOptions DefaultPrintOptions() {
  PrintOptions options;
  options.OctaveMax = {0, 40, 30, 20, 10, 5, 3, 2, 1, 1};
  options.OctaveBackground = {0,        0xF0F0FF, 0xF0F8FF, 0xF0FFFF, 0xF0FFF0, 0xFFFFF0,
                              0xFFF8F0, 0xFFF0F0, 0xFFF0F8, 0xF8F0FF};
  options.HeaderItems = {"路線名", "測定日", "区間", "備考"};
  return options;
}

void ClearOctaveBackgrounds(PrintOptions& options) {
  for (std::size_t band = 1; band <= 9; ++band) options.OctaveBackground[band] = 0xFFFFFF;
}

bool ReadPrintoption(Session& session, const std::filesystem::path& path, PrintOptions& options) {
  const std::vector<std::string> lines = ReadSystemTextLines(path);
  if (lines.empty() || lines.front() != kMark) {
    session.Ui().Inform("指定されたファイルはプリントオプションファイルではありません。", "エラー", MsgIcon::Exclamation);
    return false;
  }
  PrintOptions read = options;
  read.HeaderItems.clear();
  std::string section;
  int index = 0;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::string& text = lines[i];
    if (text.empty() || text.front() == '*' || text.front() == ';') continue;
    if (text.front() == '[') {
      section = Trim(text);
      index = 0;
      continue;
    }
    ReadDataLine(section, index++, LineReader(path, i + 1, text), text, read);
  }
  options = std::move(read);
  return true;
}

std::vector<std::string> PrintOptionLines(const PrintOptions& options) {
  std::vector<std::string> lines{kMark, kVersion, options.Version};
  const auto heading = [&](const char* name) { lines.insert(lines.end(), {kRule, name, kRule}); };
  heading(kScales);
  lines.push_back("*   プロファイル図 (縦軸最小値,　最大値)");
  lines.push_back(Number(options.ProfileMin) + "," + Number(options.ProfileMax));
  lines.push_back("*   IRI図 (縦軸最小値,　最大値)");
  lines.push_back(Number(options.IriMin) + "," + Number(options.IriMax));
  lines.push_back("*   Octave図 (縦軸最大値)　１～９");
  for (std::size_t band = 1; band <= 9; ++band) lines.push_back(Number(options.OctaveMax[band]));
  heading(kHeader);
  lines.insert(lines.end(), options.HeaderItems.begin(), options.HeaderItems.end());
  heading(kColours);
  lines.push_back("*   低減ライン表示色 (直線, グラフ色)");
  lines.push_back(fmt::format("{},{}", options.LimitLineColour, options.LimitGraphColour));
  lines.push_back("*   Ovtave背景色  (１～９)");
  for (std::size_t band = 1; band <= 9; ++band) lines.push_back(std::to_string(options.OctaveBackground[band]));
  heading(kLayout);
  lines.push_back("*   統計値の印刷可否  (0/1)");
  lines.push_back(options.PrintStatistics ? "1" : "0");
  return lines;
}

void WritePrintoption(Session& session, const std::filesystem::path& path, const PrintOptions& options) {
  WriteSystemTextFile(path, PrintOptionLines(options));
  session.Ui().Inform("プリンター設定ファイルを保存しました。", "確認", MsgIcon::Information);
}

}  // namespace velmora::graph
