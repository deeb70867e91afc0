#include "base/legacy_format.h"

#include <array>
#include <bit>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <cstdint>
#include <cstdlib>

#include <fmt/format.h>

#include "base/legacy_error.h"

namespace velmora {
namespace {

struct NumberPattern {
  int integerZeros = 0;   // '0' in the integer part: minimum digits shown
  bool grouping = false;  // ',' in the integer part
  int decimalZeros = 0;   // '0' after the point: always shown
  int decimalHashes = 0;  // '#' after the point: shown when not zero
  bool hasPoint = false;
  bool scientific = false;
  bool exponentPlus = false;  // "E+": sign always; "E-": only for negative exponents
  char exponentLetter = 'E';
  int exponentDigits = 0;
};

NumberPattern ParsePattern(std::string_view pattern) {
  NumberPattern p;
  std::size_t i = 0;
  auto bad = [&] { throw LegacyError(ErrorNumber::InvalidData, fmt::format("書式が不正です: \"{}\"", pattern)); };
  for (; i < pattern.size() && (pattern[i] == '0' || pattern[i] == '#' || pattern[i] == ','); ++i) {
    if (pattern[i] == '0') ++p.integerZeros;
    if (pattern[i] == ',') p.grouping = true;
  }
  if (i < pattern.size() && pattern[i] == '.') {
    p.hasPoint = true;
    for (++i; i < pattern.size() && (pattern[i] == '0' || pattern[i] == '#'); ++i) {
      if (pattern[i] == '0') {
        if (p.decimalHashes > 0) bad();
        ++p.decimalZeros;
      } else {
        ++p.decimalHashes;
      }
    }
  }
  if (i < pattern.size() && (pattern[i] == 'E' || pattern[i] == 'e')) {
    p.scientific = true;
    p.exponentLetter = pattern[i];
    if (++i >= pattern.size() || (pattern[i] != '+' && pattern[i] != '-')) bad();
    p.exponentPlus = pattern[i] == '+';
    for (++i; i < pattern.size() && pattern[i] == '0'; ++i) ++p.exponentDigits;
    if (p.exponentDigits == 0) bad();
  }
  if (i != pattern.size()) bad();
  return p;
}

// Decimal digits of |value| to 15 significant digits: value = 0.d1d2...d15 × 10^point.
struct Decimal {
  std::string digits;  // without leading zeros unless the value is zero
  int point = 0;       // position of the decimal point relative to the digits
};

Decimal ToDecimal(double magnitude) {
  Decimal d;
  if (magnitude == 0) {
    d.digits.assign(1, '0');
    d.point = 1;
    return d;
  }
  std::string s = fmt::format("{:.14e}", magnitude);  // d.dddddddddddddde±XX
  const std::size_t e = s.find('e');
  d.digits = s.substr(0, 1) + s.substr(2, e - 2);
  d.point = std::atoi(s.c_str() + e + 1) + 1;
  return d;
}

// Rounds to `keep` digits (half away from zero); keep may be <= 0. Adjusts point on carry.
void RoundDigits(Decimal& d, int keep) {
  if (keep >= static_cast<int>(d.digits.size())) return;
  if (keep < 0) {
    d.digits.assign(1, '0');
    d.point = 1;
    return;
  }
  const bool up = d.digits[static_cast<std::size_t>(keep)] >= '5';
  d.digits.resize(static_cast<std::size_t>(keep));
  if (up) {
    int k = keep - 1;
    for (; k >= 0; --k) {
      if (d.digits[static_cast<std::size_t>(k)] == '9') {
        d.digits[static_cast<std::size_t>(k)] = '0';
      } else {
        ++d.digits[static_cast<std::size_t>(k)];
        break;
      }
    }
    if (k < 0) {
      d.digits.insert(d.digits.begin(), '1');
      ++d.point;
    }
  }
  if (d.digits.empty()) {
    d.digits.assign(1, '0');
    d.point = 1;
  }
}

std::string Group(const std::string& integer) {
  std::string out;
  const int n = static_cast<int>(integer.size());
  for (int i = 0; i < n; ++i) {
    if (i > 0 && (n - i) % 3 == 0) out += ',';
    out += integer[static_cast<std::size_t>(i)];
  }
  return out;
}

std::string Decimals(const std::string& fraction, const NumberPattern& p) {
  std::string text = fraction;
  std::size_t keep = text.size();
  while (keep > static_cast<std::size_t>(p.decimalZeros) && text[keep - 1] == '0') --keep;
  text.resize(keep);
  if (!p.hasPoint) return "";
  return "." + text;  // VB keeps the point even when no decimal follows ("0." for "0.##")
}

// The decimals of a pattern "0.00…0" (one integer zero, a point, zeros only), else -1: the form of
// nearly every number in the result files, which takes the fast path below.
int PlainFixedDecimals(std::string_view pattern) {
  if (pattern.size() < 3 || pattern[0] != '0' || pattern[1] != '.') return -1;
  for (std::size_t i = 2; i < pattern.size(); ++i)
    if (pattern[i] != '0') return -1;
  return static_cast<int>(pattern.size()) - 2;
}

constexpr auto kPow10 = [] {
  std::array<std::uint64_t, 16> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

// m · 10^k · 2^e rounded to an integer, ties to even, as a correctly rounded conversion rounds;
// false when the exact product does not fit the 128-bit arithmetic or the result 64 bits.
// 10^p for p = −kLowestPower .. 16, each correctly rounded (10^k is exact up to 10^22).
constexpr int kLowestPower = 13;
constexpr auto kPowersOfTen = [] {
  std::array<double, kLowestPower + 17> powers{};
  double exact = 1;
  for (int k = 0; k <= 16; ++k, exact *= 10) powers[static_cast<std::size_t>(kLowestPower + k)] = exact;
  exact = 10;
  for (int k = 1; k <= kLowestPower; ++k, exact *= 10) powers[static_cast<std::size_t>(kLowestPower - k)] = 1 / exact;
  return powers;
}();

constexpr auto kPow5 = [] {
  std::array<std::uint64_t, 28> powers{};
  powers[0] = 1;
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 5;
  return powers;
}();

__extension__ using Wide = unsigned __int128;

bool ScaledRounded(std::uint64_t m, int e, int k, std::uint64_t& result) {
  if (k < 0 || k >= static_cast<int>(kPow5.size())) return false;
  Wide p = static_cast<Wide>(m) * kPow5[static_cast<std::size_t>(k)];  // 5^27 · 2^53 < 2^116
  const int shift = -(e + k);
  if (shift <= 0) {
    if (shift < -10) return false;
    p <<= -shift;
  } else {
    if (shift >= 120) return false;
    const Wide rest = p & ((Wide{1} << shift) - 1);
    const Wide half = Wide{1} << (shift - 1);
    p >>= shift;
    if (rest > half || (rest == half && (p & 1) != 0)) ++p;
  }
  if ((p >> 64) != 0) return false;
  result = static_cast<std::uint64_t>(p);
  return true;
}

// The same two roundings in integers for the values the result files hold (magnitudes from about
// 1e-12 up to 1e15): the 15 significant digits of |value| = m · 2^e are m · 10^(15 − point) · 2^e
// rounded, then whole decimals are dropped half away from zero. False when the value needs the
// general route.
bool AppendFixedDecimalsByIntegers(std::string& out, double value, int decimals) {
  const double magnitude = std::fabs(value);
  if (magnitude < 1e-12 || magnitude >= 1e15 || decimals > 15) return false;
  // magnitude = m · 2^e with 2^52 <= m < 2^53 (no subnormals at these magnitudes)
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  const std::uint64_t m = (bits & ((std::uint64_t{1} << 52) - 1)) | (std::uint64_t{1} << 52);
  const int e = static_cast<int>(bits >> 52) - 1075;
  // point: the number of digits before the decimal point in d.ddd…·10^(point−1), from 2^(e+52) <=
  // magnitude and a comparison with the next power of ten; the loop below corrects the rare miss at
  // a power of ten's rounding.
  int point = static_cast<int>(std::floor((e + 52) * 0.30102999566398120)) + 1;
  if (magnitude >= kPowersOfTen[static_cast<std::size_t>(point + kLowestPower)]) ++point;
  std::uint64_t digits15 = 0;
  for (int attempt = 0;; ++attempt) {
    if (attempt == 3 || !ScaledRounded(m, e, 15 - point, digits15)) return false;
    if (digits15 >= kPow10[15]) {
      ++point;  // rounding reached the next power of ten, or the estimate was low
    } else if (digits15 < kPow10[14]) {
      --point;
    } else {
      break;
    }
  }
  const int keep = point + decimals;  // significant digits left after the second rounding
  if (keep > 15) return false;
  std::uint64_t scaled = 0;  // |value| rounded, times 10^decimals
  if (keep >= 0) {
    const std::uint64_t dropped = kPow10[15 - keep];
    scaled = (digits15 + dropped / 2) / dropped;
  }
  // Digits from the last decimal leftwards, the point after `decimals` of them, at least "0." before.
  char text[48];
  char* first = text + sizeof text;
  int written = 0;
  do {
    if (written == decimals) *--first = '.';
    *--first = static_cast<char>('0' + scaled % 10);
    scaled /= 10;
    ++written;
  } while (scaled != 0 || written <= decimals);
  out.append(first, text + sizeof text);
  return true;
}

}  // namespace

// FormatNumber for a "0.00…0" pattern, by the same two roundings (to 15 significant digits, then
// half away from zero at the last decimal) on a stack buffer instead of strings.
void AppendFixedDecimals(std::string& out, double value, int decimals) {
  if (std::isnan(value) || std::isinf(value)) RaiseOverflow(fmt::format("{}", value));
  if (std::signbit(value) && value != 0) out += '-';
  if (value != 0 && AppendFixedDecimalsByIntegers(out, value, decimals)) return;
  char digits[40];
  int count = 1, point = 1;
  digits[0] = '0';
  if (value != 0) {
    char sci[32];
    // d.dddddddddddddde±XX, correctly rounded as "{:.14e}" is
    *std::to_chars(sci, sci + sizeof sci - 1, std::fabs(value), std::chars_format::scientific, 14).ptr = '\0';
    digits[0] = sci[0];
    count = 15;
    for (int k = 1; k < 15; ++k) digits[k] = sci[k + 1];
    point = std::atoi(sci + 17) + 1;
  }
  const int keep = point + decimals;
  if (keep < 0) {
    count = 1, point = 1, digits[0] = '0';
  } else if (keep < count) {
    const bool up = digits[keep] >= '5';
    count = keep;
    if (up) {
      int k = keep - 1;
      for (; k >= 0 && digits[k] == '9'; --k) digits[k] = '0';
      if (k >= 0) {
        ++digits[k];
      } else {
        std::memmove(digits + 1, digits, static_cast<std::size_t>(count));
        digits[0] = '1';
        ++count, ++point;
      }
    }
    if (count == 0) count = 1, point = 1, digits[0] = '0';
  }
  // Integer part without leading zeros but at least "0", then exactly `decimals` digits.
  const auto digitAt = [&](int position) { return position >= 0 && position < count ? digits[position] : '0'; };
  bool leading = true;
  for (int k = 0; k < point; ++k) {
    const char c = digitAt(k);
    if (leading && c == '0') continue;
    leading = false;
    out += c;
  }
  if (leading) out += '0';
  out += '.';
  for (int k = 0; k < decimals; ++k) out += digitAt(point + k);
}

std::string FormatNumber(double value, std::string_view pattern) {
  if (const int decimals = PlainFixedDecimals(pattern); decimals >= 0) {
    std::string out;
    AppendFixedDecimals(out, value, decimals);
    return out;
  }
  return FormatNumberByPattern(value, pattern);
}

std::string FormatNumberByPattern(double value, std::string_view pattern) {
  const NumberPattern p = ParsePattern(pattern);
  if (std::isnan(value) || std::isinf(value)) RaiseOverflow(fmt::format("{}", value));
  const bool negative = std::signbit(value) && value != 0;
  Decimal d = ToDecimal(std::fabs(value));
  const int decimals = p.decimalZeros + p.decimalHashes;
  std::string body;

  if (p.scientific) {
    const int mantissaDigits = std::max(1, p.integerZeros) + decimals;
    int exponent = 0;
    if (d.digits != "0") {
      RoundDigits(d, mantissaDigits);
      exponent = d.point - std::max(1, p.integerZeros);
    }
    std::string all = d.digits;
    all.resize(static_cast<std::size_t>(mantissaDigits), '0');
    const std::size_t intDigits = static_cast<std::size_t>(std::max(1, p.integerZeros));
    body = all.substr(0, intDigits) + Decimals(all.substr(intDigits), p);
    body += p.exponentLetter;
    if (exponent < 0) body += '-';
    else if (p.exponentPlus) body += '+';
    body += fmt::format("{:0{}d}", std::abs(exponent), p.exponentDigits);
  } else {
    RoundDigits(d, d.point + decimals);
    std::string integer, fraction;
    if (d.point > 0) {
      std::string all = d.digits;
      if (static_cast<int>(all.size()) < d.point) all.resize(static_cast<std::size_t>(d.point), '0');
      integer = all.substr(0, static_cast<std::size_t>(d.point));
      fraction = all.substr(static_cast<std::size_t>(d.point));
    } else {
      fraction = std::string(static_cast<std::size_t>(-d.point), '0') + d.digits;
    }
    fraction.resize(static_cast<std::size_t>(decimals), '0');
    while (!integer.empty() && integer[0] == '0') integer.erase(0, 1);
    if (static_cast<int>(integer.size()) < p.integerZeros)
      integer.insert(0, static_cast<std::size_t>(p.integerZeros) - integer.size(), '0');
    if (p.grouping) integer = Group(integer);
    body = integer + Decimals(fraction, p);
  }
  return negative ? "-" + body : body;
}

std::string FormatDateTime(const std::tm& time, std::string_view pattern) {
  std::string out;
  bool afterHour = false;
  auto starts = [&](std::size_t i, std::string_view token) {
    if (i + token.size() > pattern.size()) return false;
    for (std::size_t k = 0; k < token.size(); ++k)
      if (std::toupper(static_cast<unsigned char>(pattern[i + k])) != token[k]) return false;
    return true;
  };
  for (std::size_t i = 0; i < pattern.size();) {
    if (starts(i, "YYYY")) {
      out += fmt::format("{:04d}", time.tm_year + 1900);
      i += 4;
    } else if (starts(i, "YY")) {
      out += fmt::format("{:02d}", (time.tm_year + 1900) % 100);
      i += 2;
    } else if (starts(i, "MM")) {
      // Minutes when it follows the hour or precedes the seconds, as the legacy formatter reads it.
      std::size_t next = i + 2;
      while (next < pattern.size() && !std::isalpha(static_cast<unsigned char>(pattern[next]))) ++next;
      const bool minutes = afterHour || starts(next, "SS");
      out += fmt::format("{:02d}", minutes ? time.tm_min : time.tm_mon + 1);
      afterHour = false;
      i += 2;
    } else if (starts(i, "DD")) {
      out += fmt::format("{:02d}", time.tm_mday);
      i += 2;
    } else if (starts(i, "HH")) {
      out += fmt::format("{:02d}", time.tm_hour);
      afterHour = true;
      i += 2;
      continue;
    } else if (starts(i, "NN")) {
      out += fmt::format("{:02d}", time.tm_min);
      i += 2;
    } else if (starts(i, "SS")) {
      out += fmt::format("{:02d}", time.tm_sec);
      i += 2;
    } else {
      out += pattern[i++];
      continue;
    }
    afterHour = false;
  }
  return out;
}

std::tm LocalNow() {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local;
}

}  // namespace velmora
