#include "base/common.h"

#include <cmath>
#include <cstring>

#include "base/legacy_math.h"

namespace velmora {

bool IsNoValue(double value) {
  return std::memcmp(&value, &kNoValue, sizeof value) == 0;
}

std::string Trim(std::string_view text) {
  std::size_t b = 0, e = text.size();
  while (b < e && text[b] == ' ') ++b;
  while (e > b && text[e - 1] == ' ') --e;
  return std::string(text.substr(b, e - b));
}

std::string TrimAll(std::string_view text) {
  auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  std::size_t b = 0, e = text.size();
  while (b < e && blank(text[b])) ++b;
  while (e > b && blank(text[e - 1])) --e;
  return std::string(text.substr(b, e - b));
}

std::string UCase(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

namespace {
bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Byte offset of the character with 0-based index `index` (or text.size()).
std::size_t CharOffset(std::string_view text, std::size_t index) {
  std::size_t offset = 0;
  for (std::size_t n = 0; n < index && offset < text.size(); ++n) {
    ++offset;
    while (offset < text.size() && IsContinuation(text[offset])) ++offset;
  }
  return offset;
}

// Full-width digits, signs, point and comma (common in Japanese input) to ASCII.
std::string NarrowDigits(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c == 0xEF && i + 2 < text.size()) {
      const auto c1 = static_cast<unsigned char>(text[i + 1]), c2 = static_cast<unsigned char>(text[i + 2]);
      // U+FF01..U+FF5E map to U+0021..U+007E; only digits and number punctuation are taken.
      int code = -1;
      if (c1 == 0xBC) code = 0xFF00 + (c2 - 0x80);
      else if (c1 == 0xBD) code = 0xFF40 + (c2 - 0x80);
      if (code >= 0xFF01 && code <= 0xFF5E) {
        const char ascii = static_cast<char>(code - 0xFF01 + 0x21);
        if ((ascii >= '0' && ascii <= '9') || ascii == '+' || ascii == '-' || ascii == '.' || ascii == ',') {
          out += ascii;
          i += 2;
          continue;
        }
      }
    }
    out += static_cast<char>(c);
  }
  return out;
}
}  // namespace

std::size_t CharLength(std::string_view text) {
  std::size_t n = 0;
  for (char c : text)
    if (!IsContinuation(c)) ++n;
  return n;
}

std::string CharLeft(std::string_view text, std::size_t count) {
  return std::string(text.substr(0, CharOffset(text, count)));
}

std::string CharMid(std::string_view text, std::size_t start1, std::size_t count) {
  if (start1 < 1) start1 = 1;
  const std::size_t b = CharOffset(text, start1 - 1);
  if (count == std::string::npos) return std::string(text.substr(b));
  const std::size_t e = b + CharOffset(text.substr(b), count);
  return std::string(text.substr(b, e - b));
}

std::string CharRight(std::string_view text, std::size_t count) {
  const std::size_t n = CharLength(text);
  return count >= n ? std::string(text) : CharMid(text, n - count + 1);
}

std::optional<double> ParseNumber(std::string_view raw) {
  const std::string text = TrimAll(NarrowDigits(raw));
  if (text.empty()) return std::nullopt;
  std::size_t i = 0;
  if (text.size() > 2 && text[0] == '&' && (text[1] == 'H' || text[1] == 'h')) {
    long long v = 0;
    for (i = 2; i < text.size(); ++i) {
      const char c = text[i];
      int d = (c >= '0' && c <= '9') ? c - '0' : (c >= 'A' && c <= 'F') ? c - 'A' + 10 : (c >= 'a' && c <= 'f') ? c - 'a' + 10 : -1;
      if (d < 0 || i > 17) return std::nullopt;
      v = v * 16 + d;
    }
    return static_cast<double>(v);
  }
  std::string plain;
  if (text[i] == '+' || text[i] == '-') plain += text[i++];
  bool digits = false;
  for (; i < text.size() && ((text[i] >= '0' && text[i] <= '9') || (text[i] == ',' && digits)); ++i) {
    if (text[i] != ',') plain += text[i];
    digits = digits || text[i] != ',';
  }
  if (i < text.size() && text[i] == '.') {
    plain += text[i++];
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
      plain += text[i];
      digits = true;
    }
  }
  if (!digits) return std::nullopt;
  if (i < text.size() && (text[i] == 'E' || text[i] == 'e' || text[i] == 'D' || text[i] == 'd')) {
    plain += 'e';
    ++i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) plain += text[i++];
    bool expDigits = false;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
      plain += text[i];
      expDigits = true;
    }
    if (!expDigits) return std::nullopt;
  }
  if (i != text.size()) return std::nullopt;
  const double value = std::strtod(plain.c_str(), nullptr);
  if (std::isinf(value)) return std::nullopt;
  return value;
}

bool IsNumeric(std::string_view text) { return ParseNumber(text).has_value(); }

std::int32_t uLongVal(std::string_view text) {
  const auto v = ParseNumber(text);
  return v ? CLng(*v) : 0;
}

double uDblVal(std::string_view text) { return ParseNumber(text).value_or(0.0); }

double uTextToDbl(std::string_view text) { return Trim(text).empty() ? kNoValue : uDblVal(text); }

std::int32_t uTextToLong(std::string_view text) { return Trim(text).empty() ? kNoValueLong : uLongVal(text); }

namespace {
std::vector<std::string> Tokenise(std::string_view text, std::string_view delimiter, std::size_t& count) {
  std::vector<std::string> tokens;
  count = 0;
  if (text.empty()) return tokens;
  std::string token;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    if (c == '"') {
      if (!quoted) {
        quoted = true;
        ++i;
      } else if (text.substr(i, 2) == "\"\"") {
        // A quote doubled inside quotes: one quote in the token, the pair consumed as one.
        token += '"';
        i += 2;
      } else {
        quoted = false;
        ++i;
      }
      continue;
    }
    if (!quoted && !delimiter.empty() && text.substr(i, delimiter.size()) == delimiter) {
      tokens.push_back(std::move(token));
      token.clear();
      i += delimiter.size();
      continue;
    }
    token += c;
    ++i;
  }
  tokens.push_back(std::move(token));
  count = tokens.size();
  return tokens;
}
}  // namespace

std::vector<std::string> uToken(std::string_view text, std::string_view delimiter, std::size_t minSize) {
  std::size_t count = 0;
  auto tokens = Tokenise(text, delimiter, count);
  if (tokens.size() < minSize) tokens.resize(minSize);
  return tokens;
}

std::size_t uTokenCount(std::string_view text, std::string_view delimiter) {
  std::size_t count = 0;
  Tokenise(text, delimiter, count);
  return count;
}

bool uStrEqual(std::string_view a, std::string_view b) { return UCase(Trim(a)) == UCase(Trim(b)); }

std::vector<std::string> uTokenSpace(std::string_view commandLine) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : commandLine) {
    if (c == ' ' || c == '\t') {
      if (!word.empty()) words.push_back(std::move(word));
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(std::move(word));
  return words;
}

std::string uQuote(std::string_view text) {
  std::string out = "\"";
  out.append(text).append("\"");
  return out;
}

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

}  // namespace velmora
