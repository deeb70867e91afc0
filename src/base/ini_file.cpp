#include "base/ini_file.h"

#include <fmt/format.h>

#include "base/common.h"
#include "base/legacy_error.h"
#include "base/text_encoding.h"

namespace velmora {
namespace {

std::string TrimBlanks(std::string_view text) {
  auto blank = [](char c) { return c == ' ' || c == '\t'; };
  std::size_t b = 0, e = text.size();
  while (b < e && blank(text[b])) ++b;
  while (e > b && blank(text[e - 1])) --e;
  return std::string(text.substr(b, e - b));
}

std::string Unquote(std::string value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
    return value.substr(1, value.size() - 2);
  return value;
}

bool SameName(std::string_view a, std::string_view b) { return UCase(TrimBlanks(a)) == UCase(TrimBlanks(b)); }

void CheckName(std::string_view text, std::string_view forbidden, std::string_view what,
               const std::filesystem::path& path) {
  if (TrimBlanks(text).empty() || text.find_first_of(forbidden) != std::string_view::npos)
    throw LegacyError(ErrorNumber::InvalidData,
                      fmt::format("{}: ini ファイルに書けない{}です: \"{}\"", path.string(), what, text));
}

}  // namespace

IniDocument::IniDocument(std::filesystem::path path) : path_(std::move(path)) {}

IniDocument IniDocument::Load(const std::filesystem::path& path) {
  IniDocument document(path);
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) return document;
  if (std::filesystem::is_directory(path, ec))
    RaiseFileError(ErrorNumber::PermissionDenied, path.string(), "ファイルではなくフォルダです。");
  const std::string bytes = ReadFileBytes(path);
  std::size_t start = 0, number = 0;
  // CR and LF never occur inside a Shift-JIS character (trail bytes are 0x40 and above), so the
  // lines can be cut on bytes before they are decoded.
  while (start < bytes.size()) {
    std::size_t end = bytes.find_first_of("\r\n", start);
    std::string ending;
    if (end == std::string::npos) {
      end = bytes.size();
    } else if (bytes[end] == '\r' && end + 1 < bytes.size() && bytes[end + 1] == '\n') {
      ending = "\r\n";
    } else {
      ending.assign(1, bytes[end]);
    }
    document.lines_.push_back(ParseLine(bytes.substr(start, end - start), ending, path, ++number));
    start = end + ending.size();
  }
  return document;
}

IniDocument::Line IniDocument::ParseLine(std::string raw, std::string ending, const std::filesystem::path& path,
                                         std::size_t number) {
  Line line{std::move(raw), std::move(ending), {}, {}, {}, false, false};
  std::string text;
  try {
    text = FromSystemCodePage(line.raw, path.string());
  } catch (const LegacyError&) {
    throw LegacyError(ErrorNumber::InvalidData,
                      fmt::format("{}: {} 行目に Shift-JIS として読めないバイトがあります。", path.string(), number));
  }
  const std::string trimmed = TrimBlanks(text);
  if (trimmed.empty() || trimmed.front() == ';') return line;
  if (trimmed.front() == '[') {
    const std::size_t close = trimmed.find(']');
    if (close != std::string::npos) {
      line.isSection = true;
      line.section = TrimBlanks(std::string_view(trimmed).substr(1, close - 1));
    }
    return line;
  }
  const std::size_t equals = trimmed.find('=');
  if (equals == std::string::npos) return line;
  line.key = TrimBlanks(std::string_view(trimmed).substr(0, equals));
  line.isKey = !line.key.empty();
  std::string value = TrimBlanks(std::string_view(trimmed).substr(equals + 1));
  // The platform's calls hand values over as C strings: a NUL ends the value.
  if (const std::size_t nul = value.find('\0'); nul != std::string::npos) value.resize(nul);
  line.value = Unquote(TrimBlanks(value));
  return line;
}

std::size_t IniDocument::FindSection(std::string_view section) const {
  for (std::size_t i = 0; i < lines_.size(); ++i)
    if (lines_[i].isSection && SameName(lines_[i].section, section)) return i;
  return std::string::npos;
}

std::optional<std::string> IniDocument::Get(std::string_view section, std::string_view key) const {
  const std::size_t head = FindSection(section);
  if (head == std::string::npos) return std::nullopt;
  for (std::size_t i = head + 1; i < lines_.size() && !lines_[i].isSection; ++i)
    if (lines_[i].isKey && SameName(lines_[i].key, key)) return lines_[i].value;
  return std::nullopt;
}

void IniDocument::Set(std::string_view section, std::string_view key, std::string_view value) {
  CheckName(section, "]\r\n", "セクション名", path_);
  CheckName(key, "=\r\n", "キー名", path_);
  if (value.find_first_of("\r\n") != std::string_view::npos)
    throw LegacyError(ErrorNumber::InvalidData,
                      fmt::format("{}: 改行を含む値は ini ファイルに書けません ([{}] {})", path_.string(), section, key));
  const std::string keyText = TrimBlanks(key);
  const std::string text = keyText + "=" + std::string(value);
  Line keyLine{ToSystemCodePage(text), "\r\n", {}, keyText, Unquote(TrimBlanks(value)), false, true};

  std::size_t head = FindSection(section);
  if (head == std::string::npos) {
    if (!lines_.empty() && lines_.back().ending.empty()) lines_.back().ending = "\r\n";
    const std::string name = TrimBlanks(section);
    lines_.push_back(Line{ToSystemCodePage("[" + name + "]"), "\r\n", name, {}, {}, true, false});
    lines_.push_back(std::move(keyLine));
    return;
  }
  std::size_t lastContent = head;
  std::size_t i = head + 1;
  for (; i < lines_.size() && !lines_[i].isSection; ++i) {
    if (lines_[i].isKey && SameName(lines_[i].key, key)) {
      keyLine.ending = lines_[i].ending;
      lines_[i] = std::move(keyLine);
      return;
    }
    if (!TrimBlanks(lines_[i].raw).empty()) lastContent = i;
  }
  // A new key goes behind the last non-blank line of its section, so blank lines that separate it
  // from the next section stay where they are.
  if (lines_[lastContent].ending.empty()) lines_[lastContent].ending = "\r\n";
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(lastContent + 1), std::move(keyLine));
}

void IniDocument::Save() const {
  std::string bytes;
  for (const auto& line : lines_) bytes.append(line.raw).append(line.ending);
  WriteFileBytesAtomically(path_, bytes);
}

std::optional<std::string> ReadIniValue(const std::filesystem::path& path, std::string_view section,
                                        std::string_view key) {
  return IniDocument::Load(path).Get(section, key);
}

void WriteIniValue(const std::filesystem::path& path, std::string_view section, std::string_view key,
                   std::string_view value) {
  IniDocument document = IniDocument::Load(path);
  document.Set(section, key, value);
  document.Save();
}

}  // namespace velmora
