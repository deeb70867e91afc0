#include "analysis/mirror_extend.h"

#include <string>
#include <utility>
#include <vector>

#include "analysis/debug_table.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"

namespace velmora {
namespace {

constexpr std::string_view kModule = "basFFT";

void WriteFoldTable(const DebugTables& debug, std::int32_t foldCount, const Array1<double>& dest, std::string_view debugName) {
  std::vector<std::string> lines;
  lines.reserve(static_cast<std::size_t>(dest.size()) + 1);
  lines.push_back("No, 観音開個数折り返し個数 = " + std::to_string(foldCount));
  for (std::ptrdiff_t i = 1; i <= dest.size(); ++i)
    lines.push_back(std::to_string(i) + "," + FormatNumber(dest[i], "0.000000000000000"));
  WriteDebugTable(debug, debugName.empty() ? std::string_view("観音開きデータ.csv") : debugName, lines);
}

// Point-symmetric first stage: to `length` samples, the larger half of the surplus on the left.
// Returns the left fold count, which is where source(1) lands minus one.
std::int32_t FoldToLength(const DebugTables& debug, std::int32_t n, std::int32_t length, const Array1<double>& source,
                          Array1<double>& dest) {
  const std::int32_t d = length - n;
  std::int32_t a = CLng(d / 2.0);
  std::int32_t b = d - a;
  if (b > a) std::swap(a, b);
  std::int32_t count = 0;
  MirrorExtend(debug, true, a, n, source, count, dest);
  dest.resize(length);  // the fold made a on both sides; the right end keeps only b
  return a;
}

}  // namespace

void MirrorExtend(const DebugTables& debug, bool pointSymmetric, std::int32_t foldCount, std::int32_t n, const Array1<double>& source,
                  std::int32_t& outCount, Array1<double>& dest, std::string_view debugName) {
  if (n < 1 || n > source.size())
    RaiseSubscriptOutOfRange("MirrorExtend: " + std::to_string(n) + " samples, array 1.." +
                             std::to_string(source.size()));
  if (foldCount < 0 || foldCount > n - 1)
    RaiseSubscriptOutOfRange("MirrorExtend: folding " + std::to_string(foldCount) + " samples out of " +
                             std::to_string(n) + " reads beyond the profile");

  outCount = 2 * foldCount + n;
  dest.assign_zero(outCount);
  const double first = source[1];
  const double last = source[n];
  for (std::int32_t p = 1; p <= foldCount; ++p) {
    const double s = source[foldCount + 2 - p];
    dest[p] = pointSymmetric ? first - (s - first) : s;
  }
  for (std::int32_t i = 1; i <= n; ++i) dest[foldCount + i] = source[i];
  for (std::int32_t i = 1; i <= foldCount; ++i) {
    const double s = source[n - i];
    dest[foldCount + n + i] = pointSymmetric ? (last - s) + last : s;
  }
  if (debug.On) WriteFoldTable(debug, foldCount, dest, debugName);
}

void FoldOutForFft(const DebugTables& debug, std::int32_t n, std::int32_t length1, std::int32_t length2,
                   const Array1<double>& source, std::int32_t& offset, Array1<double>& dest) {
  offset = 0;
  Array1<double> work;
  if (length1 != n) {
    offset += FoldToLength(debug, n, length1, source, work);
  } else {
    if (n > source.size()) RaiseSubscriptOutOfRange("subFFT計算用_観音開き作成: " + std::to_string(n));
    work = source;
    work.resize(n);
  }
  const std::int32_t c = CLng((length2 - length1) / 2.0);
  offset += c;
  std::int32_t count = 0;
  MirrorExtend(debug, false, c, length1, work, count, dest);
}

bool subFFT計算用_観音開き作成(Session& session, std::int32_t n, std::int32_t length1, std::int32_t length2,
                            const Array1<double>& source, std::int32_t& offset, Array1<double>& dest) {
  return Guarded(session, kModule, "subFFT計算用_観音開き作成",
                 [&] { FoldOutForFft(DebugTablesOf(session), n, length1, length2, source, offset, dest); });
}

bool subPSD計算用_観音開き作成(Session& session, std::int32_t n, std::int32_t length, const Array1<double>& source,
                            std::int32_t& offset, Array1<double>& dest) {
  return Guarded(session, kModule, "subPSD計算用_観音開き作成", [&] {
    offset = 0;
    if (length == n) {
      if (n > source.size()) RaiseSubscriptOutOfRange("subPSD計算用_観音開き作成: " + std::to_string(n));
      dest = source;
      dest.resize(n);
      return;
    }
    offset = FoldToLength(DebugTablesOf(session), n, length, source, dest);
  });
}

}  // namespace velmora
