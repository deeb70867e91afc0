#include "analysis/moving_average.h"

#include <string>
#include <vector>

#include "analysis/debug_table.h"
#include "analysis/mirror_extend.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/session.h"

namespace velmora {
namespace {

void WriteFilterTable(const DebugTables& debug, std::int32_t n, const Array1<double>& profile, double dx, FilterKind band,
                      const Array1<double>& filtered) {
  std::vector<std::string> lines{"No, Dist, Profile, Filter[移動平均](" + FilterKindName(band) + ")"};
  lines.reserve(static_cast<std::size_t>(n) + 1);
  for (std::int32_t i = 1; i <= n; ++i)
    lines.push_back(std::to_string(i) + "," + FormatNumber((i - 1) * dx, "0.000") + "," +
                    FormatNumber(profile[i], "0.000000000000000") + "," +
                    FormatNumber(filtered[i], "0.000000000000000"));
  WriteDebugTable(debug, "Filter.csv", lines);
}

}  // namespace

void MovingAverageSplit(const DebugTables& debug, std::int32_t window, std::int32_t n, const Array1<double>& source,
                        Array1<double>& highPart, Array1<double>& average) {
  if (window == 0) RaiseDivisionByZero("moving average over a window of 0 samples");
  const std::int32_t foldCount = CLng((window - 1) / 2.0);
  std::int32_t count = 0;
  Array1<double> ext;
  MirrorExtend(debug, true, foldCount, n, source, count, ext, "観音開きデータ(移動平均フィルター).csv");

  highPart.assign_zero(n);
  average.assign_zero(n);
  double sum = 0;
  std::int32_t o = 0, taken = 0;
  for (std::int32_t i = 1; i <= count; ++i) {
    sum += ext[i];
    ++taken;
    if (taken >= window) {
      ++o;
      average[o] = sum / window;
      highPart[o] = source[o] - average[o];
      sum -= ext[o];
      if (o == n) break;
    }
  }
}

Array1<double> MovingAverageFilter(const DebugTables& debug, std::int32_t n, const Array1<double>& profile, double dx, FilterKind band,
                                   double longCut, double shortCut) {
  Array1<double> high1, mean1, high2, mean2;
  // The long split runs for every kind, LowPass too: a blank long cut-off fails here.
  MovingAverageSplit(debug, CLng(longCut / dx), n, profile, high1, mean1);
  if (band != FilterKind::HiPass) MovingAverageSplit(debug, CLng(shortCut / dx), n, profile, high2, mean2);

  Array1<double> filtered(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i) {
    switch (band) {
      case FilterKind::HiPass: filtered[i] = profile[i] - mean1[i]; break;
      case FilterKind::LowPass: filtered[i] = mean2[i]; break;
      case FilterKind::BandPass: filtered[i] = mean2[i] - mean1[i]; break;
      case FilterKind::BandCut: filtered[i] = profile[i] - (mean2[i] - mean1[i]); break;
    }
  }
  if (debug.On) WriteFilterTable(debug, n, profile, dx, band, filtered);
  return filtered;
}

}  // namespace velmora
