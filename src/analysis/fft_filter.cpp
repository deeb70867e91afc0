#include "analysis/fft_filter.h"

#include <string>
#include <utility>
#include <vector>

#include "analysis/complex.h"
#include "analysis/debug_table.h"
#include "analysis/mirror_extend.h"
#include "analysis/real_fft.h"
#include "base/common.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/settings_io.h"
#include "base/user_interaction.h"

namespace velmora {
namespace {

constexpr std::string_view kModule = "basFFTFilter";
constexpr std::string_view kSingleProc = "Cal_FFTフィルタ_単体処理";
constexpr std::string_view kConvergeProc = "Cal_FFTフィルタ_収束計算";
constexpr const char* kProgressTitle = "フィルターの計算";
constexpr const char* kFull = "0.000000000000000";

std::string CutOffPart(double longCut, double shortCut) {
  return "LongCutFil=" + FormatNumber(longCut, "0.000") + "  ShrtCutFil=" + FormatNumber(shortCut, "0.000");
}

void WriteSourceTable(const DebugTables& debug, std::int32_t& debugSeq, std::int32_t iteration, std::int32_t n,
                      const Array1<double>& source) {
  std::vector<std::string> lines{"No, Profile"};
  lines.reserve(static_cast<std::size_t>(n) + 1);
  for (std::int32_t i = 1; i <= n; ++i) lines.push_back(std::to_string(i) + "," + FormatNumber(source[i], "0.000000"));
  ++debugSeq;
  WriteDebugTable(debug, FormatNumber(debugSeq, "000") + "_FFTフィルタ_収束回数=" + FormatNumber(iteration, "00") +
                      "_Profile.csv",
                  lines);
}

// The frequency column is the element's own harmonic (element 1 is zero frequency), not the one the
// mask judged it by, so the table shows the one-bin offset of the mask.
void WriteMaskTable(const DebugTables& debug, std::int32_t& debugSeq, std::int32_t length, double dx, FilterKind kind, double longCut,
                    double shortCut, const Array1<std::uint8_t>& mask) {
  std::vector<std::string> lines;
  lines.reserve(static_cast<std::size_t>(length));
  for (std::int32_t p = 1; p <= length; ++p) {
    const std::int32_t harmonic = p <= length / 2 + 1 ? p - 1 : length + 1 - p;
    const std::string value = std::to_string(mask[p]);
    if (harmonic == 0) {
      lines.push_back("***** ******* *******  " + value);
      continue;
    }
    const double ff = harmonic / (length * dx);
    lines.push_back(FormatNumber(p, "00000") + " " + FormatNumber(ff, "0.00000") + " " +
                    FormatNumber(1 / ff, "0.00000") + "  " + value);
  }
  ++debugSeq;
  WriteDebugTable(debug, FormatNumber(debugSeq, "000") + "_FFTフィルタ用Filter " + CutOffPart(longCut, shortCut) + " ( " +
                      FilterKindName(kind) + " ).dat",
                  lines);
}

void WriteResultTable(const DebugTables& debug, std::int32_t& debugSeq, std::int32_t n, double dx, FilterKind kind, double longCut,
                      double shortCut, const Array1<double>& source, const WaveSeries& result,
                      const WaveSeries& other) {
  const std::string name = FilterKindName(kind);
  std::vector<std::string> lines{"No, Dist, Profile, Filter[FFT](" + name +
                                 "), Filter[FFT]_Other, (Prof-FFT1-FFT2)"};
  lines.reserve(static_cast<std::size_t>(n) + 1);
  for (std::int32_t i = 1; i <= n; ++i) {
    const double pass = result.Values[i];
    const double rest = other.Values[i];
    lines.push_back(std::to_string(i) + "," + FormatNumber((i - 1) * dx, "0.000") + "," +
                    FormatNumber(source[i], kFull) + "," + FormatNumber(pass, kFull) + "," +
                    FormatNumber(rest, kFull) + "," + FormatNumber(source[i] - pass - rest, kFull));
  }
  ++debugSeq;
  WriteDebugTable(debug, FormatNumber(debugSeq, "000") + "_FFTフィルタ結果 " + CutOffPart(longCut, shortCut) + " ( " +
                      name + " ).csv",
                  lines);
}

// Scales the lower half of the spectrum (bins 1..length/2 + 1) by 1/length, keeps the bins the mask
// lets through, transforms back and stores the elements where the profile stands. The masks are
// symmetric, so the upper half would only mirror the lower one and the wave comes back real.
void MaskedInverse(const Array1<Complex>& spectrum, std::int32_t length, const Array1<std::uint8_t>& mask,
                   std::int32_t offset, std::int32_t n, Array1<Complex>& scratch, WaveSeries& out) {
  const double scale = length;
  scratch.resize(length / 2 + 1);
  for (std::int32_t i = 1; i <= length / 2 + 1; ++i) {
    const double keep = mask[i];
    scratch[i] = {spectrum[i].Re / scale * keep, spectrum[i].Im / scale * keep};
  }
  RealInverseFft(length, scratch);
  Array1<double> values(static_cast<std::size_t>(n));
  UnpackReal(scratch, offset, n, values.data());
  StoreWave(out, std::move(values));
}

}  // namespace

FilterConvergence ReadFilterConvergence(const AppPaths& paths) {
  FilterConvergence limits;
  std::string text;
  if (ReadIni(GeneralIniPath(paths), "収束判定値", "標準偏差比", text))
    if (const auto value = ParseNumber(text)) limits.StdRatio = *value;
  if (ReadIni(GeneralIniPath(paths), "収束判定値", "最大収束回数", text))
    if (const auto value = ParseNumber(text)) limits.MaxPasses = CLng(*value);
  return limits;
}

void MakeFilterMask(std::int32_t n, double dx, double lower, double upper, Array1<std::uint8_t>& mask) {
  mask.assign_zero(n);
  std::int32_t p = 1;
  const auto judge = [&](std::int32_t j) {
    const double ff = j / (n * dx);
    const double w = 1 / ff;
    if (lower <= w && w < upper) mask[p] = 1;
    ++p;
  };
  const std::int32_t ascendTo = IntLong(n / 2.0 + 1);
  for (std::int32_t j = 1; j <= ascendTo; ++j) judge(j);
  for (std::int32_t j = CLng(n / 2.0); j >= 2; --j) judge(j);
}

void InvertFilterMask(std::int32_t n, Array1<std::uint8_t>& mask) {
  for (std::int32_t i = 1; i <= n; ++i) mask[i] = mask[i] == 0 ? 1 : 0;
}

void MakeFilterMaskOfKind(std::int32_t n, double dx, FilterKind kind, double longCut, double shortCut,
                          Array1<std::uint8_t>& mask) {
  switch (kind) {
    case FilterKind::HiPass:
      MakeFilterMask(n, dx, 0.0, longCut, mask);
      return;
    case FilterKind::LowPass:
      MakeFilterMask(n, dx, shortCut, 1e30, mask);
      return;
    case FilterKind::BandPass:
      MakeFilterMask(n, dx, shortCut, longCut, mask);
      return;
    case FilterKind::BandCut:
      MakeFilterMask(n, dx, shortCut, longCut, mask);
      InvertFilterMask(n, mask);
      return;
  }
  throw LegacyError(ErrorNumber::InvalidData,
                    "filter kind " + std::to_string(static_cast<std::int32_t>(kind)) + " is not 0 to 3");
}

bool Cal_FFTフィルタ_単体処理(Session& session, std::int32_t& debugSeq, std::int32_t iteration, std::int32_t n,
                         std::int32_t length1, std::int32_t length2, double dx, FilterKind kind,
                         double longCut, double shortCut, const Array1<double>& source, WaveSeries& result,
                         WaveSeries& other) {
  try {
    const DebugTables debug = DebugTablesOf(session);
    const bool debugOn = debug.On;
    if (debugOn) WriteSourceTable(debug, debugSeq, iteration, n, source);
    std::int32_t offset = 0;
    Array1<double> extended;
    if (!subFFT計算用_観音開き作成(session, n, length1, length2, source, offset, extended)) return false;  // logged
    if (extended.size() != length2)
      throw LegacyError(ErrorNumber::InvalidData, "FFT length " + std::to_string(length2) + " does not hold " +
                                                      std::to_string(n) + " samples folded out");

    Array1<Complex> spectrum;
    RealForwardFft(length2, extended, spectrum);

    Array1<std::uint8_t> mask;
    MakeFilterMaskOfKind(length2, dx, kind, longCut, shortCut, mask);
    if (debugOn) WriteMaskTable(debug, debugSeq, length2, dx, kind, longCut, shortCut, mask);

    Array1<Complex> scratch;
    MaskedInverse(spectrum, length2, mask, offset, n, scratch, result);
    InvertFilterMask(length2, mask);
    MaskedInverse(spectrum, length2, mask, offset, n, scratch, other);
    if (debugOn) WriteResultTable(debug, debugSeq, n, dx, kind, longCut, shortCut, source, result, other);
    return true;
  } catch (const std::exception& error) {
    ErrorLog(session, kModule, kSingleProc, error);
    return false;
  }
}

bool Cal_FFTフィルタ_収束計算(Session& session, std::int32_t n, std::int32_t length1, std::int32_t length2, double dx,
                         FilterKind kind, double longCut, double shortCut, const Array1<double>& source,
                         WaveSeries& result, const FilterConvergence& limits) {
  try {
    // Zero passes would leave no result at all; at least one pass is always made.
    const std::int32_t maxPasses = limits.MaxPasses < 1 ? 1 : limits.MaxPasses;
    session.Ui().ProgressStart(kProgressTitle, "収束計算中・・・・");
    Array1<double> work = source;
    WaveSeries pass, removed;
    double previousStd = 1e30;
    std::int32_t debugSeq = 0;
    for (std::int32_t i = 1; i <= maxPasses; ++i) {
      session.Ui().ProgressStart(kProgressTitle, "収束計算中  " + std::to_string(i) + " / " + std::to_string(maxPasses) +
                                             " ・・・・");
      ReportProgress(session.Ui(), CLng(static_cast<double>(i) / maxPasses * 100));
      if (!Cal_FFTフィルタ_単体処理(session, debugSeq, i, n, length1, length2, dx, kind, longCut, shortCut, work, pass,
                               removed))
        return false;  // logged by the pass
      work = pass.Values;
      const double removedStd = removed.Stats.StdDev;
      if (removedStd == 0)
        RaiseDivisionByZero("pass " + std::to_string(i) + " of the FFT filter took nothing away");
      // One-sided on purpose: a removed part that grows (ratio below 1) also ends the iteration.
      const bool converged = previousStd / removedStd < limits.StdRatio;
      previousStd = removedStd;
      if (converged) break;
    }
    result = std::move(pass);
    return true;
  } catch (const std::exception& error) {
    ErrorLog(session, kModule, kConvergeProc, error);
    return false;
  }
}

}  // namespace velmora
