#pragma once
// Text helpers that every part of the program shares: the no value, trimming and case, the lenient
// numeric tests and conversions, and the quoting tokeniser.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// The universal "no value" of f64 and i32 fields (unset KP, IRI of an empty section, ...).
inline constexpr double kNoValue = -99999.0;
inline constexpr std::int32_t kNoValueLong = -99999;
// Compared exactly, as its bit pattern.
bool IsNoValue(double value);

// Trim of blanks (U+0020) at both ends, as the legacy Trim; TrimAll also drops tabs and CR/LF.
std::string Trim(std::string_view text);
std::string TrimAll(std::string_view text);
// Upper case of ASCII letters; other characters are kept.
std::string UCase(std::string_view text);
// Character-wise (UTF-8 code point) length and prefix helpers, as Len/Left/Mid count characters.
std::size_t CharLength(std::string_view text);
std::string CharLeft(std::string_view text, std::size_t count);
std::string CharMid(std::string_view text, std::size_t start1, std::size_t count = std::string::npos);
std::string CharRight(std::string_view text, std::size_t count);

// The lenient numeric test: blanks around, a sign, digits with "," grouping, a point, an exponent
// (E or D), full-width digits; "&H" hexadecimal. Empty text is not numeric.
bool IsNumeric(std::string_view text);
// The value of numeric text (nullopt otherwise).
std::optional<double> ParseNumber(std::string_view text);

std::int32_t uLongVal(std::string_view text);  // i32 (half to even) when numeric, else 0
double uDblVal(std::string_view text);         // f64 when numeric, else 0
double uTextToDbl(std::string_view text);      // no value for text that trims to nothing
std::int32_t uTextToLong(std::string_view text);

// The CSV tokeniser with quoting. Tokens from index 0; "" gives 0 tokens; the array is at least
// `minSize` long so callers may address tokens up to that size without a check.
std::vector<std::string> uToken(std::string_view text, std::string_view delimiter, std::size_t minSize = 0);
// Count of real tokens of the last line split (uToken's `count` out-parameter).
std::size_t uTokenCount(std::string_view text, std::string_view delimiter);

// Every occurrence of `from` replaced by `to` (`from` not empty), left to right.
std::string ReplaceAll(std::string text, std::string_view from, std::string_view to);

// True when both, trimmed and in upper case, are equal.
bool uStrEqual(std::string_view a, std::string_view b);

// The words of a command line, split at blanks and tabs (runs of them count as one break). Word 1 is
// element [0]; no quoting is recognised, as the program's own command line needs none.
std::vector<std::string> uTokenSpace(std::string_view commandLine);

// The text in double quotes, for a CSV field. Quotes inside are not doubled: the program's CSV
// fields never hold one, and readers of its files expect the plain wrap.
std::string uQuote(std::string_view text);

}  // namespace velmora
