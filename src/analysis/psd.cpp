#include "analysis/psd.h"

#include <cmath>
#include <string>

#include "analysis/complex.h"
#include "analysis/debug_table.h"
#include "analysis/fft.h"
#include "analysis/mirror_extend.h"
#include "analysis/psd_window.h"
#include "base/app_paths.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"

namespace velmora {
namespace {

// The module's name as the error log has always shown it.
constexpr const char* kModule = "basPasMain";
// The program's own π literal; the factor is part of the PSD's definition.
constexpr double kPi = 3.14159265358979;

std::string Sci(double value) { return FormatNumber(value, "0.0000000000E+00"); }

void WritePsdTable(const DebugTables& debug, std::int32_t n2, double dx, const Array1<double>& y, const Array1<double>& w,
                   const Array1<double>& z, const Array1<Complex>& c, const Array1<double>& out) {
  std::vector<std::string> lines{"No, Profile, 窓関数, Profile*窓関数, ABS(FFT), PSD値, f(Hz)"};
  const double df = 1.0 / (n2 * dx);
  for (std::int32_t i = 1; i <= n2; ++i) {
    std::string line = std::to_string(i) + "," + FormatNumber(y[i], "0.00000") + "," +
                       FormatNumber(w[i], "0.00000") + "," + FormatNumber(z[i], "0.00000") + "," +
                       Sci(ComplexAbs(c[i])) + "," + Sci(out[i]) + ",";
    // Wave numbers past half the length mirror the lower half and are left out.
    if (i <= n2 / 2) line += FormatNumber((i - 1) * df, "0.000000000");
    lines.push_back(std::move(line));
  }
  WriteDebugTable(debug, "PSD.csv", lines);
}

void Calc(Session& session, const DebugTables& debug, std::int32_t n, const Array1<double>& x, double dx, std::int32_t windowKind, bool mirrorFill,
          Array1<double>& out) {
  if (n < 1 || x.size() < n)
    throw LegacyError(ErrorNumber::InvalidData, "PsdCalc: " + std::to_string(n) + " samples asked, profile holds " +
                                                    std::to_string(x.size()));
  if (!(dx > 0)) throw LegacyError(ErrorNumber::InvalidData, "PsdCalc: pitch " + std::to_string(dx) + " m");
  if (windowKind < kWindowNone || windowKind > kWindowHamming)
    throw LegacyError(ErrorNumber::InvalidData, "PsdCalc: window kind " + std::to_string(windowKind));
  const std::int32_t n2 = PsdLength(n);

  Array1<double> w(static_cast<std::size_t>(n2));
  if (windowKind == kWindowNone)
    for (double& v : w) v = 1.0;
  else
    MakeWindow(windowKind == kWindowHamming, w.span());
  double squares = 0;
  for (double v : w) squares += v * v;
  const double u = squares / n2;

  // The fold is made in both modes; zero fill then uses the bare samples with a window of full length
  // n2, so the window does not come down to zero at the end of the data.
  std::int32_t offset = 0;
  Array1<double> y;
  if (!subPSD計算用_観音開き作成(session, n, n2, x, offset, y))
    throw LegacyError(ErrorNumber::InvalidData, "PsdCalc: the fold of the profile failed (see the log)");
  Array1<double> z(static_cast<std::size_t>(n2));
  const std::int32_t filled = mirrorFill ? n2 : n;
  for (std::int32_t i = 1; i <= filled; ++i) z[i] = w[i] * (mirrorFill ? y[i] : x[i]);

  Array1<Complex> c(static_cast<std::size_t>(n2));
  for (std::int32_t i = 1; i <= n2; ++i) c[i] = Complex{z[i], 0.0};
  Fft(n2, c, -1);
  out.assign_zero(n2);
  for (std::int32_t i = 1; i <= n2; ++i) {
    const double a = ComplexAbs(c[i]);
    out[i] = (a * a / ((1 / dx) * n2)) / u * kPi;
  }
  if (debug.Switch) WritePsdTable(debug, n2, dx, y, w, z, c, out);
}

// The working tables of the smoothing, 1..h each: raw rows T, step ratios, flags, the grid S, band
// starts B and the first raw row of each band.
struct SmoothingRows {
  explicit SmoothingRows(std::int32_t h)
      : raw(static_cast<std::size_t>(h)), ratio(static_cast<std::size_t>(h)), flag(static_cast<std::size_t>(h)),
        grid(static_cast<std::size_t>(h)), bandStart(static_cast<std::size_t>(h)),
        row(static_cast<std::size_t>(h)) {}
  Array1<PsdPair> raw;
  Array1<double> ratio;
  Array1<std::int32_t> flag;
  Array1<PsdPair> grid;
  Array1<double> bandStart;
  Array1<std::int32_t> row;
};

void WriteSmoothingTable(const DebugTables& debug, const SmoothingRows& r, std::int32_t count) {
  std::vector<std::string> lines{
      "No, WN, PSD, WN比, WN比判定, 平滑化WN(X軸), B-Start, 自至内最小行, 平滑化PSD(Y軸)"};
  for (std::int32_t i = 1; i <= r.raw.size(); ++i) {
    std::string line = std::to_string(i) + "," + Sci(r.raw[i].Wn) + "," + Sci(r.raw[i].Val) + "," +
                       Sci(r.ratio[i]) + "," + std::to_string(r.flag[i]) + ",";
    if (i <= count)
      line += Sci(r.grid[i].Wn) + "," + Sci(r.bandStart[i]) + "," + std::to_string(r.row[i]) + "," +
              Sci(r.grid[i].Val);
    else
      line += ",,,";
    lines.push_back(std::move(line));
  }
  WriteDebugTable(debug, "PSD平滑化.csv", lines);
}

}  // namespace

std::vector<PsdPair> SmoothPsdValues(const DebugTables& debug, const Array1<double>& psd, std::int32_t n, double dx,
                                     std::int32_t bandsPerOctave) {
  if (bandsPerOctave < 1)
    throw LegacyError(ErrorNumber::InvalidData, "PsdSmooth: BandsPerOctave " + std::to_string(bandsPerOctave));
  const double r = std::pow(2.0, 1.0 / bandsPerOctave);
  const double nyquist = ((1.0 / n) / dx) * n / 2;
  const auto n2 = static_cast<std::int32_t>(psd.size());
  const double df = 1.0 / (n2 * dx);
  const std::int32_t h = n2 / 2;
  if (h < 1) RaiseSubscriptOutOfRange("PsdSmooth: a spectrum of " + std::to_string(n2) + " points has no rows");

  SmoothingRows t(h);
  // The zero wave number is dropped; the last row stays (0, 0) and takes part as it is.
  for (std::int32_t i = 2; i <= h; ++i) t.raw[i - 1] = PsdPair{(i - 1) * df, psd[i]};
  for (std::int32_t i = 2; i <= h; ++i) t.ratio[i] = t.raw[i].Wn / t.raw[i - 1].Wn;
  t.flag[1] = 1;
  // Where the raw grid is coarser than the wanted one, its own points are taken.
  for (std::int32_t i = 2; i <= h; ++i) t.flag[i] = t.ratio[i] > r ? 1 : 0;

  t.grid[1] = t.raw[1];
  std::int32_t count = 1;
  for (std::int32_t i = 2; i <= h; ++i) {
    if (t.grid[i - 1].Wn > nyquist) break;
    ++count;
    t.grid[i].Wn = t.flag[i] == 1 ? t.raw[i].Wn : r * t.grid[i - 1].Wn;
  }
  for (std::int32_t i = 2; i <= count; ++i)  // geometric middle of two neighbours
    t.bandStart[i] = t.grid[i - 1].Wn * std::sqrt(t.grid[i].Wn / t.grid[i - 1].Wn);
  t.row[1] = 1;
  for (std::int32_t i = 2; i <= count; ++i) {
    std::int32_t j = 1;
    while (j <= h && !(t.raw[j].Wn > t.bandStart[i])) ++j;
    t.row[i] = j;  // h + 1 when no raw row lies above the band start
  }
  t.grid[1].Val = t.raw[1].Val;
  for (std::int32_t i = 2; i <= count - 1; ++i) {
    const std::int32_t first = t.row[i], last = t.row[i + 1] - 1;
    if (last < first)
      RaiseDivisionByZero("PsdSmooth: no raw value in the band from " + std::to_string(t.bandStart[i]));
    double sum = 0;
    for (std::int32_t j = first; j <= last; ++j) sum += t.raw[j].Val;
    t.grid[i].Val = sum / (last - first + 1);
  }
  --count;  // the last grid point lies past the Nyquist wave number and has no value
  if (debug.Switch) WriteSmoothingTable(debug, t, count);
  std::vector<PsdPair> out(t.grid.begin(), t.grid.begin() + count);
  return out;
}

bool PsdCalc(Session& session, std::int32_t n, const Array1<double>& x, double dx, std::int32_t windowKind, bool mirrorFill,
             Array1<double>& out) {
  return Guarded(session, kModule, "PsdCalc", [&] { Calc(session, DebugTablesOf(session), n, x, dx, windowKind, mirrorFill, out); });
}

bool PsdSmooth(Session& session, std::int32_t n, const Array1<double>& x, double dx, std::int32_t windowKind, bool mirrorFill,
               std::int32_t bandsPerOctave, std::int32_t& outCount, std::vector<PsdPair>& outPairs) {
  return Guarded(session, kModule, "PsdSmooth", [&] {
    Array1<double> psd;
    Calc(session, DebugTablesOf(session), n, x, dx, windowKind, mirrorFill, psd);
    outPairs = SmoothPsdValues(DebugTablesOf(session), psd, n, dx, bandsPerOctave);
    outCount = static_cast<std::int32_t>(outPairs.size());
  });
}

bool PsdRatioRaw(Session& session, std::int32_t countA, const Array1<double>& psdA, std::int32_t countB,
                 const Array1<double>& psdB, double dx, std::int32_t& outCount, std::vector<PsdPair>& outPairs) {
  outCount = 0;
  outPairs.clear();
  if (countA != countB) return true;
  if (countA < 2) {
    outCount = -1;
    return true;
  }
  return Guarded(session, kModule, "PsdRatioRaw", [&] {
    std::vector<PsdPair> rows;
    for (std::int32_t i = 2; i <= countA; ++i) {
      const std::int32_t k = i - 1;
      const double wn = k / (countA * dx);
      if (wn > 1 / (2 * dx)) break;
      const double a = psdA.at(i);
      if (a == 0) RaiseDivisionByZero("PsdRatioRaw: the base spectrum is 0 at row " + std::to_string(i));
      rows.push_back(PsdPair{wn, std::sqrt(psdB.at(i) / a)});
    }
    outPairs = std::move(rows);
    outCount = static_cast<std::int32_t>(outPairs.size());
  });
}

std::int32_t PsdLength(std::int32_t n) { return FftLength1(n); }

}  // namespace velmora
