#include "profile/erd_channels.h"

#include <cmath>
#include <set>

#include <fmt/format.h>

#include "base/common.h"
#include "base/text_encoding.h"

namespace velmora {
namespace {

constexpr std::int32_t kMaxChannels = 3;
constexpr std::int32_t kTextFormatCode = 5;
// Header keys that describe the channels or the layout; every other key is the profiler's
// information and is kept.
const std::set<std::string> kLayoutKeys = {"TITLE", "SHORTNAM", "LONGNAME", "UNITSNAM", "GENNAME",
                                           "XLABEL", "XUNITS", "FORMAT", "SCALFACT"};

std::int32_t LineNumber(std::size_t index) { return static_cast<std::int32_t>(index + 1); }

std::int32_t WholeNumber(std::string_view field, const std::string& path, std::int32_t line) {
  const double value = ParseField(Trim(field), path, line);
  if (value != std::floor(value) || std::abs(value) > 1e9)
    throw ChannelFileError(path, line, fmt::format("\"{}\" は整数ではありません", Trim(field)));
  return static_cast<std::int32_t>(value);
}

// The key fills columns 1-8 and the value starts in column 9; a shorter key followed by a blank
// ("TITLE Track run") is taken as well.
struct HeaderLine {
  std::string Key;        // upper case
  std::string_view Raw;   // the value's columns as they stand
};

HeaderLine SplitHeader(std::string_view line) {
  const std::string_view head = line.substr(0, 8);
  const std::size_t blank = head.find(' ');
  const std::size_t keyLength = blank == std::string_view::npos ? head.size() : blank;
  return {UCase(head.substr(0, keyLength)), line.substr(std::min(line.size(), keyLength == 8 ? std::size_t{8} : keyLength))};
}

// One field per channel: blank-separated when that gives exactly one each, else the columns of eight
// characters the format lays them in (names with blanks in them).
std::vector<std::string> PerChannel(std::string_view raw, std::int32_t channels) {
  std::vector<std::string> fields;
  for (std::string_view field : DataFields(raw)) fields.emplace_back(field);
  if (std::ssize(fields) == channels) return fields;
  fields.clear();
  for (std::int32_t c = 0; c < channels; ++c)
    fields.push_back(Trim(c * 8u < raw.size() ? raw.substr(c * 8u, 8) : std::string_view{}));
  return fields;
}

struct ErdHeader {
  std::int32_t Channels = 0;
  std::int32_t DeclaredSamples = 0;
  double Step = 0;                     // in the file's distance unit
  std::vector<std::string> Units;
  std::int32_t UnitsLine = 0;
  std::vector<double> Scale;
  std::int32_t XUnitsLine = 0;
};

void ReadCountsLine(std::string_view line, const std::string& path, ErdHeader& header) {
  std::vector<std::string_view> fields;
  for (std::size_t start = 0;;) {
    const std::size_t comma = line.find(',', start);
    fields.push_back(line.substr(start, comma == std::string_view::npos ? std::string_view::npos : comma - start));
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  if (fields.size() < 6) throw ChannelFileError(path, 2, fmt::format("項目が {} 個しかありません（{} 個以上必要）", fields.size(), 6));
  header.Channels = WholeNumber(fields[0], path, 2);
  header.DeclaredSamples = WholeNumber(fields[1], path, 2);
  const std::int32_t formatCode = WholeNumber(fields[4], path, 2);
  header.Step = ParseField(Trim(fields[5]), path, 2);
  if (header.Channels < 1 || header.Channels > kMaxChannels)
    throw ChannelFileError(path, 2, fmt::format("チャンネル数 {} は読めません（1 から 3）", header.Channels));
  if (formatCode != kTextFormatCode)
    throw ChannelFileError(path, 2, fmt::format("書式コード {} は読めません（テキストの 5 のみ）", formatCode));
  if (!(header.Step > 0)) throw ChannelFileError(path, 2, fmt::format("ピッチ {} が正の数ではありません", Trim(fields[5])));
}

}  // namespace

ChannelFile ReadErdChannels(const std::string& path, std::string_view bytes) {
  const std::vector<std::string_view> lines = FileLines(bytes);
  ChannelFile file;
  file.Path = path;
  file.Format = "ERD";
  file.ChannelLine = 2;
  if (lines.size() < 2) throw ChannelFileError(path, static_cast<std::int32_t>(lines.size()), "ヘッダーが途中で終わっています");
  ErdHeader header;
  ReadCountsLine(lines[1], path, header);
  header.Scale.assign(header.Channels, 1.0);
  file.ChannelNames.assign(header.Channels, "");

  std::size_t i = 2;
  for (;; ++i) {
    if (i >= lines.size()) throw ChannelFileError(path, static_cast<std::int32_t>(lines.size()), "END の行がありません");
    const HeaderLine line = SplitHeader(TrimAll(lines[i]).empty() ? std::string_view{} : lines[i]);
    const std::int32_t number = LineNumber(i);
    if (line.Key == "END") break;
    if (line.Key == "TITLE") file.Title = FromSystemCodePage(Trim(line.Raw), path);
    else if (line.Key == "SHORTNAM") file.ChannelNames = PerChannel(line.Raw, header.Channels);
    else if (line.Key == "UNITSNAM") header.Units = PerChannel(line.Raw, header.Channels), header.UnitsLine = number;
    else if (line.Key == "XUNITS") file.DistanceUnit = Trim(line.Raw), header.XUnitsLine = number;
    else if (line.Key == "SCALFACT") {
      const std::vector<std::string> factors = PerChannel(line.Raw, header.Channels);
      for (std::int32_t c = 0; c < header.Channels; ++c) header.Scale[c] = ParseField(factors[c], path, number);
    } else if (!line.Key.empty() && !kLayoutKeys.contains(line.Key)) {
      file.Info.emplace_back(line.Key, FromSystemCodePage(Trim(line.Raw), path));
    }
  }
  const std::int32_t endLine = LineNumber(i);

  if (header.UnitsLine == 0) throw ChannelFileError(path, endLine, "UNITSNAM の行がありません");
  if (header.XUnitsLine == 0) throw ChannelFileError(path, endLine, "XUNITS の行がありません");
  std::vector<double> factors;
  for (const std::string& unit : header.Units) {
    const auto factor = MillimetresPer(unit);
    if (!factor) throw ChannelFileError(path, header.UnitsLine, fmt::format("単位 \"{}\" は知られていません", unit));
    factors.push_back(*factor * header.Scale[factors.size()]);
  }
  const auto metres = MetresPer(file.DistanceUnit);
  if (!metres) throw ChannelFileError(path, header.XUnitsLine, fmt::format("単位 \"{}\" は知られていません", file.DistanceUnit));
  file.HeightUnits = header.Units;
  file.Pitch = header.Step * *metres;

  file.Heights.assign(header.Channels, {});
  for (auto& channel : file.Heights) channel.reserve(lines.size() - i);
  for (++i; i < lines.size(); ++i) {
    const std::vector<std::string_view> fields = DataFields(lines[i]);
    if (fields.empty()) continue;  // a blank line is no sample, as in the program's own files
    if (std::ssize(fields) != header.Channels)
      throw ChannelFileError(path, LineNumber(i),
                             fmt::format("値が {} 個ありますが、チャンネル数は {} です", fields.size(), header.Channels));
    for (std::int32_t c = 0; c < header.Channels; ++c)
      file.Heights[c].push_back(ParseField(fields[c], path, LineNumber(i)) * factors[c]);
  }
  if (file.SampleCount() == 0) throw ChannelFileError(path, endLine, "データがありません");
  if (header.DeclaredSamples > 0 && header.DeclaredSamples != file.SampleCount())
    throw ChannelFileError(path, 2, fmt::format("ヘッダーのデータ件数 {} が実データ件数 {} と合いません",
                                                header.DeclaredSamples, file.SampleCount()));
  return file;
}

}  // namespace velmora
