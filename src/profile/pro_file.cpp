#include "profile/pro_file.h"

#include <fmt/format.h>

#include "base/common.h"
#include "base/text_encoding.h"

namespace velmora {
namespace {

constexpr std::size_t kHeaderLines = 5;
constexpr std::int32_t kUnitsLine = 3;
constexpr std::size_t kMaxChannels = 3;

std::vector<std::string> CommaFields(std::string_view line) {
  std::vector<std::string> fields;
  for (std::size_t start = 0;;) {
    const std::size_t comma = line.find(',', start);
    fields.push_back(TrimAll(line.substr(start, comma == std::string_view::npos ? std::string_view::npos : comma - start)));
    if (comma == std::string_view::npos) return fields;
    start = comma + 1;
  }
}

// The first field of a header line names it ("HEAD3", "CMET3"); the rest is kept as its value.
std::pair<std::string, std::string> KeyedLine(std::string_view line, const std::string& path) {
  const std::string text = FromSystemCodePage(TrimAll(line), path);
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos) return {text, ""};
  return {text.substr(0, comma), text.substr(comma + 1)};
}

}  // namespace

ChannelFile ReadProFile(const std::string& path, std::string_view bytes) {
  const std::vector<std::string_view> lines = FileLines(bytes);
  if (lines.size() < kHeaderLines)
    throw ChannelFileError(path, static_cast<std::int32_t>(lines.size()), "ヘッダーが途中で終わっています");
  ChannelFile file;
  file.Path = path;
  file.Format = "PRO";
  file.ChannelLine = kUnitsLine;
  file.Info.push_back(KeyedLine(lines[0], path));
  file.Info.push_back(KeyedLine(lines[1], path));

  // maker, height unit, channel letters, interval, interval unit
  const std::vector<std::string> units = CommaFields(lines[kUnitsLine - 1]);
  if (units.size() < 5)
    throw ChannelFileError(path, kUnitsLine, fmt::format("項目が {} 個しかありません（{} 個以上必要）", units.size(), 5));
  const std::string& letters = units[2];
  if (letters.empty() || letters.size() > kMaxChannels)
    throw ChannelFileError(path, kUnitsLine, fmt::format("チャンネル数 {} は読めません（1 から 3）", letters.size()));
  const auto millimetres = MillimetresPer(units[1]);
  if (!millimetres) throw ChannelFileError(path, kUnitsLine, fmt::format("単位 \"{}\" は知られていません", units[1]));
  const auto metres = MetresPer(units[4]);
  if (!metres) throw ChannelFileError(path, kUnitsLine, fmt::format("単位 \"{}\" は知られていません", units[4]));
  const double interval = ParseField(units[3], path, kUnitsLine);
  if (!(interval > 0)) throw ChannelFileError(path, kUnitsLine, fmt::format("ピッチ {} が正の数ではありません", units[3]));

  file.Info.emplace_back("MAKER", FromSystemCodePage(units[0], path));
  file.Info.emplace_back("GPS", FromSystemCodePage(TrimAll(lines[3]), path));
  file.Info.emplace_back("COMMENT", FromSystemCodePage(TrimAll(lines[4]), path));
  for (char letter : letters) file.ChannelNames.emplace_back(1, letter);
  file.HeightUnits.assign(letters.size(), units[1]);
  file.DistanceUnit = units[4];
  file.Pitch = interval * *metres;

  const std::size_t channels = letters.size();
  file.Heights.assign(channels, {});
  for (auto& channel : file.Heights) channel.reserve(lines.size() - kHeaderLines);
  for (std::size_t i = kHeaderLines; i < lines.size(); ++i) {
    const auto line = static_cast<std::int32_t>(i + 1);
    if (TrimAll(lines[i]).empty()) continue;
    const std::vector<std::string> fields = CommaFields(lines[i]);
    // The values behind the channels (a flag, GPS on some lines) are the profiler's, not heights.
    if (fields.size() < channels)
      throw ChannelFileError(path, line, fmt::format("値が {} 個ありますが、チャンネル数は {} です", fields.size(), channels));
    for (std::size_t c = 0; c < channels; ++c) file.Heights[c].push_back(ParseField(fields[c], path, line) * *millimetres);
  }
  if (file.SampleCount() == 0) throw ChannelFileError(path, static_cast<std::int32_t>(kHeaderLines), "データがありません");
  return file;
}

}  // namespace velmora
