#include "analysis/octave.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <string>
#include <thread>
#include <vector>

#include "analysis/debug_table.h"
#include "analysis/fft.h"
#include "analysis/mirror_extend.h"
#include "analysis/octave_bands.h"
#include "analysis/prepare_profile.h"
#include "app/error_log.h"
#include "app/legacy_error.h"
#include "app/legacy_format.h"
#include "app/settings.h"
#include "app/user_interaction.h"
#include "profile/profile_record.h"

namespace velmora {
namespace {

constexpr const char* kModule = "bas計算共通";
constexpr const char* kSingleProc = "Cal_プロファイル分解_単体処理";
constexpr const char* kConvergeProc = "Cal_プロファイル分解_収束計算";
constexpr const char* kProgressTitle = "プロファイル分解計算";

std::string Seq(std::int32_t& debugSeq) { return FormatNumber(++debugSeq, "000"); }

// Extremes (each part on its own, starting from element 1) and statistics of the real part.
void Summarise(std::int32_t n, OctaveBand& band, Array1<double>& realScratch) {
  realScratch.assign_zero(n);
  if (n >= 1) {
    band.MinReal = band.MaxReal = band.Values[1].Re;
    band.MinImag = band.MaxImag = band.Values[1].Im;
  }
  for (std::int32_t i = 1; i <= n; ++i) {
    const Complex v = band.Values[i];
    band.MinReal = std::min(band.MinReal, v.Re);
    band.MaxReal = std::max(band.MaxReal, v.Re);
    band.MinImag = std::min(band.MinImag, v.Im);
    band.MaxImag = std::max(band.MaxImag, v.Im);
    realScratch[i] = v.Re;
  }
  CalcSeriesStats(n, realScratch, band.Stats);
  band.Calculated = true;
}

// The work of one pass, with its arrays kept from pass to pass: the spectrum of the folded profile is
// taken once, scaled once, and only the masking and the inverse transform are repeated per octave.
class OctaveSplitter {
 public:
  OctaveSplitter(std::int32_t n, std::int32_t length1, std::int32_t length2, const OctaveMasks& masks)
      : n_(n), length1_(length1), length2_(length2), masks_(masks) {
    for (int k = 1; k <= kMaskCount; ++k)
      if (masks_[static_cast<std::size_t>(k)].size() < length2_)
        RaiseSubscriptOutOfRange("octave mask " + std::to_string(k) + " shorter than " +
                                 std::to_string(length2_));
  }

  void Split(const Array1<double>& source, OctaveBands& bands) {
    std::int32_t offset = 0;
    if (!subFFT計算用_観音開き作成(n_, length1_, length2_, source, offset, extended_))
      throw LegacyError(ErrorNumber::InvalidData, "the fold of the profile failed (see the log)");
    spectrum_.assign_zero(length2_);
    for (std::int32_t i = 1; i <= length2_; ++i) spectrum_[i] = Complex{extended_[i], 0.0};
    Fft(length2_, spectrum_, -1);
    const double scale = static_cast<double>(length2_);
    for (std::int32_t i = 1; i <= length2_; ++i)
      spectrum_[i] = Complex{spectrum_[i].Re / scale, spectrum_[i].Im / scale};

    // The nine inverse transforms are independent of one another: the odd octaves run here, the even
    // ones on a second core. Each band gets exactly the operations of a serial run.
    if (std::thread::hardware_concurrency() < 2) {
      for (int k = 1; k <= kOctaveCount; ++k) InverseBand(k, offset, band_, realScratch_, bands);
      return;
    }
    std::exception_ptr workerFailure;
    std::thread worker([&] {
      try {
        Array1<Complex> work;
        Array1<double> scratch;
        for (int k = 2; k <= kOctaveCount; k += 2) InverseBand(k, offset, work, scratch, bands);
      } catch (...) {
        workerFailure = std::current_exception();
      }
    });
    try {
      for (int k = 1; k <= kOctaveCount; k += 2) InverseBand(k, offset, band_, realScratch_, bands);
    } catch (...) {
      worker.join();
      throw;
    }
    worker.join();
    if (workerFailure) std::rethrow_exception(workerFailure);
  }

 private:
  // Octave k of the scaled spectrum back in the profile's domain, with its extremes and statistics.
  void InverseBand(int k, std::int32_t offset, Array1<Complex>& work, Array1<double>& scratch,
                   OctaveBands& bands) const {
    const Array1<std::uint8_t>& mask = masks_[static_cast<std::size_t>(k)];
    work.resize(length2_);
    for (std::int32_t i = 1; i <= length2_; ++i) {
      const double m = mask[i];
      work[i] = Complex{spectrum_[i].Re * m, spectrum_[i].Im * m};
    }
    Fft(length2_, work, +1);
    OctaveBand& out = bands[static_cast<std::size_t>(k)];
    out.Values.resize(n_);
    for (std::int32_t i = 1; i <= n_; ++i) out.Values[i] = work[i + offset];
    Summarise(n_, out, scratch);
  }

  std::int32_t n_, length1_, length2_;
  const OctaveMasks& masks_;
  Array1<double> extended_;
  Array1<Complex> spectrum_;
  Array1<Complex> band_;
  Array1<double> realScratch_;
};

void WritePassTables(std::int32_t& debugSeq, std::int32_t iteration, std::int32_t n,
                     const Array1<double>& source, const OctaveBands& bands) {
  const std::string stem = "_FFT_(" + std::to_string(iteration) + ")_収束回数=" + FormatNumber(iteration, "00");
  std::vector<std::string> lines{"No, Profile"};
  for (std::int32_t i = 1; i <= n; ++i)
    lines.push_back(std::to_string(i) + "," + FormatNumber(source[i], "0.000000"));
  WriteDebugTable(Seq(debugSeq) + stem + "_Profile.csv", lines);

  lines = {"No, Profile, OCT-1, OCT-2, OCT-3, OCT-4, OCT-5, OCT-6, OCT-7, OCT-8, OCT-9, SUM(OCT1:OCT9), "
           "Abs(Profile-SUM)"};
  for (std::int32_t i = 1; i <= n; ++i) {
    std::string line = std::to_string(i) + "," + FormatNumber(source[i], "0.000000000000000");
    double sum = 0;
    for (int k = 1; k <= kOctaveCount; ++k) {
      const double v = bands[static_cast<std::size_t>(k)].Values[i].Re;
      sum += v;
      line += "," + FormatNumber(v, "0.000000000000000");
    }
    line += "," + FormatNumber(sum, "0.000000000000000") + "," + FormatNumber(std::abs(source[i] - sum), "0.000000000000000");
    lines.push_back(std::move(line));
  }
  WriteDebugTable(Seq(debugSeq) + stem + "_[OCT1～OCT9].csv", lines);
}

void SplitOnce(std::int32_t writeDebug, std::int32_t& debugSeq, std::int32_t iteration, std::int32_t n,
               OctaveSplitter& splitter, const Array1<double>& source, OctaveBands& bands) {
  splitter.Split(source, bands);
  if (writeDebug != 0 && DebugTablesOn()) WritePassTables(debugSeq, iteration, n, source, bands);
}

// Stage captions of the peeling and the heads of its per-pass tables.
const char* const kStageCaption[5] = {"", "収束計算中( 1-OCT、9-OCT )  ", "収束計算中( 2-OCT、8-OCT )  ",
                                      "収束計算中( 3-OCT、7-OCT )  ", "収束計算中( 4-OCT、6-OCT )  "};
const char* const kStagePair[5] = {"", "1-OCT、9-OCT", "2-OCT、8-OCT", "3-OCT、7-OCT", "4-OCT、6-OCT"};
const char* const kStageHead[5] = {"", "No, OCT-1, OCT-9, (OCT-2～OCT-8)",
                                   "No, OCT-1, OCT2, OCT8, OCT-9, (OCT-3～OCT-7)",
                                   "No, OCT-1, OCT2, OCT3, OCT7, OCT8, OCT-9, (OCT-4～OCT-6)",
                                   "No, OCT-1, OCT2, OCT3, OCT4, OCT6, OCT7, OCT8, OCT-9, (OCT-5)"};

void WriteStageTable(std::int32_t& debugSeq, int stage, std::int32_t pass, std::int32_t n,
                     const OctaveBands& acc, const Array1<double>& rest) {
  std::vector<int> columns;
  for (int k = 1; k <= stage; ++k) columns.push_back(k);
  for (int k = 10 - stage; k <= kOctaveCount; ++k) columns.push_back(k);
  std::vector<std::string> lines{kStageHead[stage]};
  for (std::int32_t i = 1; i <= n; ++i) {
    std::string line = std::to_string(i);
    for (int k : columns) line += "," + FormatNumber(acc[static_cast<std::size_t>(k)].Values[i].Re, "0.000000");
    line += "," + FormatNumber(rest[i], "0.000000");
    lines.push_back(std::move(line));
  }
  WriteDebugTable(Seq(debugSeq) + "_FFT_(" + kStagePair[stage] + ")_収束回数=" + FormatNumber(pass, "00") + ".csv",
                  lines);
}

void WriteFinalBandTables(std::int32_t n, double dx, const OctaveBands& bands) {
  for (int k = 1; k <= kOctaveCount; ++k) {
    std::vector<std::string> lines{"No, cycle, rPart, iPart"};
    const OctaveBand& band = bands[static_cast<std::size_t>(k)];
    // The second column gives the position of the sample along the profile, m.
    for (std::int32_t i = 1; i <= n; ++i)
      lines.push_back(std::to_string(i) + "," + FormatNumber((i - 1) * dx, "0.000") + "," +
                      FormatNumber(band.Values[i].Re, "0.000000") + "," + FormatNumber(band.Values[i].Im, "0.000000"));
    WriteDebugTable("ProfBand_" + FormatNumber(k, "00") + ".csv", lines);
  }
}

// prev / current standard deviation; a band with nothing in it cannot be judged.
double StdRatio(double previous, const OctaveBand& band, int octave) {
  if (band.Stats.StdDev == 0)
    RaiseDivisionByZero("standard deviation of octave " + std::to_string(octave) + " is 0");
  return previous / band.Stats.StdDev;
}

class PeelingProgress {
 public:
  void Pass(int stage, std::int32_t pass, std::int32_t maxPasses) {
    Ui().ProgressStart(kProgressTitle, std::string(kStageCaption[stage]) + std::to_string(pass) + " / " +
                                           std::to_string(maxPasses) + " ・・・・");
    // The bar moves by 10 at each pass and starts again from 0 after 100.
    value_ = value_ >= 100 ? 0 : value_ + 10;
    Ui().ProgressValue(value_);
  }

 private:
  int value_ = 0;
};

void Peel(const AnalysisBlock& block, const FilterConvergence& limits, OctaveBands& result) {
  const std::int32_t n = block.Count;
  const double dx = 1.0 / block.SamplesPerMetre;
  Ui().ProgressStart(kProgressTitle, "収束計算中・・・・");
  OctaveSplitter splitter(n, block.FftLength1, block.FftLength2, block.Masks);
  PeelingProgress progress;
  std::int32_t debugSeq = 0;

  OctaveBands acc;
  for (int k = 1; k <= kOctaveCount; ++k) acc[static_cast<std::size_t>(k)].Values.assign_zero(n);
  Array1<double> rest = block.Profile.Values;
  rest.resize(n);
  OctaveBands pass;

  for (int stage = 1; stage <= 4; ++stage) {
    const int low = stage, high = 10 - stage;
    double prevLow = 1e30, prevHigh = 1e30;
    bool lowDone = false, highDone = false;
    for (std::int32_t i = 1; i <= limits.MaxPasses; ++i) {
      progress.Pass(stage, i, limits.MaxPasses);
      SplitOnce(1, debugSeq, i, n, splitter, rest, pass);
      for (int k = 1; k <= kOctaveCount; ++k) {
        if (k > low && k < high) continue;
        Array1<Complex>& into = acc[static_cast<std::size_t>(k)].Values;
        const Array1<Complex>& from = pass[static_cast<std::size_t>(k)].Values;
        for (std::int32_t j = 1; j <= n; ++j) into[j].Re += from[j].Re;
      }
      for (std::int32_t j = 1; j <= n; ++j) {
        rest[j] = 0;
        for (int k = low + 1; k <= high - 1; ++k) rest[j] += pass[static_cast<std::size_t>(k)].Values[j].Re;
      }
      if (DebugTablesOn()) WriteStageTable(debugSeq, stage, i, n, acc, rest);

      const double ratioLow = StdRatio(prevLow, pass[static_cast<std::size_t>(low)], low);
      if (ratioLow < limits.StdRatio) lowDone = true;
      prevLow = pass[static_cast<std::size_t>(low)].Stats.StdDev;
      const double ratioHigh = StdRatio(prevHigh, pass[static_cast<std::size_t>(high)], high);
      if (ratioHigh < limits.StdRatio) highDone = true;
      prevHigh = pass[static_cast<std::size_t>(high)].Stats.StdDev;
      if (lowDone && highDone) break;
    }
  }

  // The middle octave is what the last pass of the last stage left, as it stands.
  Array1<double> scratch;
  for (int k = 1; k <= kOctaveCount; ++k) {
    OctaveBand& band = result[static_cast<std::size_t>(k)];
    band = k == 5 ? std::move(pass[5]) : std::move(acc[static_cast<std::size_t>(k)]);
    Summarise(n, band, scratch);
  }
  if (DebugTablesOn()) WriteFinalBandTables(n, dx, result);
}

bool InList(const std::vector<std::int32_t>& list, int octave) {
  return std::find(list.begin(), list.end(), octave) != list.end();
}

// Sums of the octaves named in the settings lists; an octave counts once even when listed twice.
void BuildSums(std::int32_t n, OctaveBandSet& set) {
  const AppSettings& settings = Settings();
  Array1<double> longSum(static_cast<std::size_t>(n)), shortSum(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i) {
    double l = 0, s = 0;
    for (int k = 1; k <= kOctaveCount; ++k) {
      const double v = set.Band[static_cast<std::size_t>(k)].Values[i].Re;
      if (InList(settings.LongOctaves, k)) l += v;
      if (InList(settings.ShortOctaves, k)) s += v;
    }
    longSum[i] = l;
    shortSum[i] = s;
  }
  StoreWave(set.LongSum, std::move(longSum));
  StoreWave(set.ShortSum, std::move(shortSum));
}

}  // namespace

bool Cal_プロファイル分解_単体処理(std::int32_t writeDebug, std::int32_t& debugSeq, std::int32_t iteration,
                         std::int32_t n, std::int32_t length1, std::int32_t length2,
                         const OctaveMasks& masks, const Array1<double>& source, OctaveBands& bands) {
  return Guarded(kModule, kSingleProc, [&] {
    OctaveSplitter splitter(n, length1, length2, masks);
    SplitOnce(writeDebug, debugSeq, iteration, n, splitter, source, bands);
  });
}

bool Cal_プロファイル分解_収束計算(const AnalysisBlock& block, OctaveBands& bands,
                         const FilterConvergence& limits) {
  return Guarded(kModule, kConvergeProc, [&] {
    OctaveBands result;
    Peel(block, limits, result);
    bands = std::move(result);
  });
}

bool DecomposeProfile(ProfileRecord& record, bool converge, bool force, const FilterConvergence& limits) {
  OctaveBandSet& set = record.Analysis.Octave;
  if (set.Calculated && set.Converged == converge && !force) return true;
  if (record.Analysis.Count == 0 &&
      !Guarded(kModule, "PrepareProfile", [&] { PrepareProfile(record); }))
    return false;

  const AnalysisBlock& block = record.Analysis;
  Ui().ProgressStart(kProgressTitle, "しばらくお待ちください。");
  OctaveBands bands;
  std::int32_t debugSeq = 0;
  const bool done = converge ? Cal_プロファイル分解_収束計算(block, bands, limits)
                             : Cal_プロファイル分解_単体処理(1, debugSeq, 0, block.Count, block.FftLength1,
                                                     block.FftLength2, block.Masks, block.Profile.Values,
                                                     bands);
  if (done) {
    set.Band = std::move(bands);
    BuildSums(block.Count, set);
    set.Calculated = true;
    set.Converged = converge;
    Ui().ProgressValue(100);
  }
  Ui().ProgressExit();
  return done;
}

}  // namespace velmora
