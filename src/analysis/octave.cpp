#include "analysis/octave.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <string>
#include <thread>
#include <vector>

#include "analysis/debug_table.h"
#include "analysis/mirror_extend.h"
#include "analysis/octave_bands.h"
#include "analysis/prepare_profile.h"
#include "analysis/real_fft.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/settings.h"
#include "base/user_interaction.h"
#include "profile/profile_record.h"

namespace velmora {
namespace {

constexpr const char* kModule = "bas計算共通";
constexpr const char* kSingleProc = "Cal_プロファイル分解_単体処理";
constexpr const char* kConvergeProc = "Cal_プロファイル分解_収束計算";
constexpr const char* kProgressTitle = "プロファイル分解計算";

std::string Seq(std::int32_t& debugSeq) { return FormatNumber(++debugSeq, "000"); }

// Extremes and statistics of a band's wave.
void Summarise(std::int32_t n, OctaveBand& band) {
  band.MinReal = band.MaxReal = n >= 1 ? band.Values[1] : 0.0;
  for (std::int32_t i = 1; i <= n; ++i) {
    band.MinReal = std::min(band.MinReal, band.Values[i]);
    band.MaxReal = std::max(band.MaxReal, band.Values[i]);
  }
  CalcSeriesStats(n, band.Values, band.Stats);
  band.Calculated = true;
}

// The buffers of one core: the half spectrum transformed back, and a wave of the profile's length.
struct Workspace {
  Array1<Complex> Spectrum;
  Array1<double> Wave;
};

// Runs job(index, workspace) for index = 0 .. count − 1: the even indices here, the odd ones on a
// second core when there is one. Jobs must touch disjoint results.
template <class Job>
void OnTwoCores(int count, std::array<Workspace, 2>& spaces, const Job& job) {
  if (std::thread::hardware_concurrency() < 2) {
    for (int index = 0; index < count; ++index) job(index, spaces[0]);
    return;
  }
  std::exception_ptr workerFailure;
  std::thread worker([&] {
    try {
      for (int index = 1; index < count; index += 2) job(index, spaces[1]);
    } catch (...) {
      workerFailure = std::current_exception();
    }
  });
  try {
    for (int index = 0; index < count; index += 2) job(index, spaces[0]);
  } catch (...) {
    worker.join();
    throw;
  }
  worker.join();
  if (workerFailure) std::rethrow_exception(workerFailure);
}

// The work of one pass. The folded-out profile is real and every mask is symmetric, so only the
// lower half of the spectrum is kept and each band comes back through a real inverse transform.
class OctaveSplitter {
 public:
  OctaveSplitter(const DebugTables& debug, std::int32_t n, std::int32_t length1, std::int32_t length2,
                 const OctaveMasks& masks)
      : debug_(debug), n_(n), length1_(length1), length2_(length2), masks_(masks) {
    for (int k = 1; k <= kMaskCount; ++k)
      if (masks_[static_cast<std::size_t>(k)].size() < length2_)
        RaiseSubscriptOutOfRange("octave mask " + std::to_string(k) + " shorter than " +
                                 std::to_string(length2_));
  }

  std::int32_t Count() const { return n_; }
  std::array<Workspace, 2>& Spaces() { return spaces_; }

  // Folds source(1..n) out to length2 and takes its spectrum, divided by length2.
  void Analyse(const Array1<double>& source) {
    Array1<double> extended;
    FoldOutForFft(debug_, n_, length1_, length2_, source, offset_, extended);
    RealForwardFft(length2_, extended, spectrum_);
    const double scale = static_cast<double>(length2_);
    for (Complex& bin : spectrum_) bin = Complex{bin.Re / scale, bin.Im / scale};
  }

  // Octaves first..last of the analysed profile together (one octave when first = last), at the
  // profile's samples: out[0 .. n).
  void Synthesise(int first, int last, Workspace& space, double* out) const {
    const std::int32_t half = length2_ / 2 + 1;
    space.Spectrum.resize(half);
    for (std::int32_t p = 1; p <= half; ++p) {
      std::uint8_t keep = 0;
      for (int k = first; k <= last; ++k) keep |= masks_[static_cast<std::size_t>(k)][p];
      const double m = keep;
      space.Spectrum[p] = Complex{spectrum_[p].Re * m, spectrum_[p].Im * m};
    }
    RealInverseFft(length2_, space.Spectrum);
    UnpackReal(space.Spectrum, offset_, n_, out);
  }

  // All nine octaves of source, each with its extremes and statistics.
  void Split(const Array1<double>& source, OctaveBands& bands) {
    Analyse(source);
    OnTwoCores(kOctaveCount, spaces_, [&](int index, Workspace& space) {
      OctaveBand& band = bands[static_cast<std::size_t>(index + 1)];
      band.Values.assign_zero(n_);
      Synthesise(index + 1, index + 1, space, band.Values.data());
      Summarise(n_, band);
    });
  }

 private:
  DebugTables debug_;
  std::int32_t n_, length1_, length2_;
  const OctaveMasks& masks_;
  std::int32_t offset_ = 0;
  Array1<Complex> spectrum_;
  std::array<Workspace, 2> spaces_;
};

void WritePassTables(const DebugTables& debug, std::int32_t& debugSeq, std::int32_t iteration, std::int32_t n,
                     const Array1<double>& source, const OctaveBands& bands) {
  const std::string stem = "_FFT_(" + std::to_string(iteration) + ")_収束回数=" + FormatNumber(iteration, "00");
  std::vector<std::string> lines{"No, Profile"};
  for (std::int32_t i = 1; i <= n; ++i)
    lines.push_back(std::to_string(i) + "," + FormatNumber(source[i], "0.000000"));
  WriteDebugTable(debug, Seq(debugSeq) + stem + "_Profile.csv", lines);

  lines = {"No, Profile, OCT-1, OCT-2, OCT-3, OCT-4, OCT-5, OCT-6, OCT-7, OCT-8, OCT-9, SUM(OCT1:OCT9), "
           "Abs(Profile-SUM)"};
  for (std::int32_t i = 1; i <= n; ++i) {
    std::string line = std::to_string(i) + "," + FormatNumber(source[i], "0.000000000000000");
    double sum = 0;
    for (int k = 1; k <= kOctaveCount; ++k) {
      const double v = bands[static_cast<std::size_t>(k)].Values[i];
      sum += v;
      line += "," + FormatNumber(v, "0.000000000000000");
    }
    line += "," + FormatNumber(sum, "0.000000000000000") + "," + FormatNumber(std::abs(source[i] - sum), "0.000000000000000");
    lines.push_back(std::move(line));
  }
  WriteDebugTable(debug, Seq(debugSeq) + stem + "_[OCT1～OCT9].csv", lines);
}

void SplitOnce(const DebugTables& debug, std::int32_t writeDebug, std::int32_t& debugSeq, std::int32_t iteration, std::int32_t n,
               OctaveSplitter& splitter, const Array1<double>& source, OctaveBands& bands) {
  splitter.Split(source, bands);
  if (writeDebug != 0 && debug.On) WritePassTables(debug, debugSeq, iteration, n, source, bands);
}

// Stage captions of the peeling and the heads of its per-pass tables.
const char* const kStageCaption[5] = {"", "収束計算中( 1-OCT、9-OCT )  ", "収束計算中( 2-OCT、8-OCT )  ",
                                      "収束計算中( 3-OCT、7-OCT )  ", "収束計算中( 4-OCT、6-OCT )  "};
const char* const kStagePair[5] = {"", "1-OCT、9-OCT", "2-OCT、8-OCT", "3-OCT、7-OCT", "4-OCT、6-OCT"};
const char* const kStageHead[5] = {"", "No, OCT-1, OCT-9, (OCT-2～OCT-8)",
                                   "No, OCT-1, OCT2, OCT8, OCT-9, (OCT-3～OCT-7)",
                                   "No, OCT-1, OCT2, OCT3, OCT7, OCT8, OCT-9, (OCT-4～OCT-6)",
                                   "No, OCT-1, OCT2, OCT3, OCT4, OCT6, OCT7, OCT8, OCT-9, (OCT-5)"};

void WriteStageTable(const DebugTables& debug, std::int32_t& debugSeq, int stage, std::int32_t pass, std::int32_t n,
                     const OctaveBands& acc, const Array1<double>& rest) {
  std::vector<int> columns;
  for (int k = 1; k <= stage; ++k) columns.push_back(k);
  for (int k = 10 - stage; k <= kOctaveCount; ++k) columns.push_back(k);
  std::vector<std::string> lines{kStageHead[stage]};
  for (std::int32_t i = 1; i <= n; ++i) {
    std::string line = std::to_string(i);
    for (int k : columns) line += "," + FormatNumber(acc[static_cast<std::size_t>(k)].Values[i], "0.000000");
    line += "," + FormatNumber(rest[i], "0.000000");
    lines.push_back(std::move(line));
  }
  WriteDebugTable(debug, Seq(debugSeq) + "_FFT_(" + kStagePair[stage] + ")_収束回数=" + FormatNumber(pass, "00") + ".csv",
                  lines);
}

void WriteFinalBandTables(const DebugTables& debug, std::int32_t n, double dx, const OctaveBands& bands) {
  for (int k = 1; k <= kOctaveCount; ++k) {
    std::vector<std::string> lines{"No, cycle, rPart, iPart"};
    const OctaveBand& band = bands[static_cast<std::size_t>(k)];
    // The second column gives the position of the sample along the profile, m.
    for (std::int32_t i = 1; i <= n; ++i)
      lines.push_back(std::to_string(i) + "," + FormatNumber((i - 1) * dx, "0.000") + "," +
                      FormatNumber(band.Values[i], "0.000000") + ",0.000000");  // the wave is real
    WriteDebugTable(debug, "ProfBand_" + FormatNumber(k, "00") + ".csv", lines);
  }
}

// prev / current standard deviation; a band with nothing in it cannot be judged.
double StdRatio(double previous, double deviation, int octave) {
  if (deviation == 0) RaiseDivisionByZero("standard deviation of octave " + std::to_string(octave) + " is 0");
  return previous / deviation;
}

class PeelingProgress {
 public:
  explicit PeelingProgress(ProgressSink& sink) : sink_(sink) {}
  void Pass(int stage, std::int32_t pass, std::int32_t maxPasses) {
    sink_.ProgressStart(kProgressTitle, std::string(kStageCaption[stage]) + std::to_string(pass) + " / " +
                                           std::to_string(maxPasses) + " ・・・・");
    // The bar moves by 10 at each pass and starts again from 0 after 100.
    value_ = value_ >= 100 ? 0 : value_ + 10;
    ReportProgress(sink_, value_);
  }

 private:
  ProgressSink& sink_;
  int value_ = 0;
};

struct PassDeviations {
  double Low = 0;   // of octave `stage` in this pass
  double High = 0;  // of octave 10 − stage
};

// One pass of a peeling stage over `rest`: the outer octaves (1..stage and 10 − stage..9) of this pass
// are added to their accumulators, and rest becomes the octaves between. With the debug tables on, all
// nine octaves are made one by one and written out; otherwise the octaves between come back together
// through one transform, which saves most of the work of the early stages.
PassDeviations PeelPass(const DebugTables& debug, int stage, std::int32_t pass, std::int32_t& debugSeq, OctaveSplitter& splitter,
                        OctaveBands& acc, Array1<double>& rest) {
  const int low = stage, high = 10 - stage;
  const std::int32_t n = splitter.Count();
  std::vector<int> outer;
  for (int k = 1; k <= kOctaveCount; ++k)
    if (k <= low || k >= high) outer.push_back(k);

  PassDeviations deviations;
  const auto take = [&](int k, const Array1<double>& wave) {
    Array1<double>& into = acc[static_cast<std::size_t>(k)].Values;
    for (std::int32_t j = 1; j <= n; ++j) into[j] += wave[j];
    if (k != low && k != high) return;
    SeriesStats stats;
    CalcSeriesStats(n, wave, stats);
    (k == low ? deviations.Low : deviations.High) = stats.StdDev;
  };

  if (debug.On) {
    OctaveBands bands;
    SplitOnce(debug, 1, debugSeq, pass, n, splitter, rest, bands);
    for (int k : outer) take(k, bands[static_cast<std::size_t>(k)].Values);
    for (std::int32_t j = 1; j <= n; ++j) {
      rest[j] = 0;
      for (int k = low + 1; k <= high - 1; ++k) rest[j] += bands[static_cast<std::size_t>(k)].Values[j];
    }
    return deviations;
  }
  splitter.Analyse(rest);
  const int jobs = static_cast<int>(outer.size()) + 1;
  OnTwoCores(jobs, splitter.Spaces(), [&](int index, Workspace& space) {
    if (index == jobs - 1) {
      splitter.Synthesise(low + 1, high - 1, space, rest.data());
      return;
    }
    const int k = outer[static_cast<std::size_t>(index)];
    space.Wave.resize(n);
    splitter.Synthesise(k, k, space, space.Wave.data());
    take(k, space.Wave);
  });
  return deviations;
}

void Peel(const DebugTables& debug, ProgressSink& sink, const AnalysisBlock& block, const FilterConvergence& limits,
          OctaveBands& result) {
  const std::int32_t n = block.Count;
  const double dx = 1.0 / block.SamplesPerMetre;
  sink.ProgressStart(kProgressTitle, "収束計算中・・・・");
  OctaveSplitter splitter(debug, n, block.FftLength1, block.FftLength2, block.Masks);
  PeelingProgress progress(sink);
  std::int32_t debugSeq = 0;

  OctaveBands acc;
  for (int k = 1; k <= kOctaveCount; ++k) acc[static_cast<std::size_t>(k)].Values.assign_zero(n);
  Array1<double> rest = block.Profile.Values;
  rest.resize(n);

  for (int stage = 1; stage <= 4; ++stage) {
    const int low = stage, high = 10 - stage;
    double prevLow = 1e30, prevHigh = 1e30;
    bool lowDone = false, highDone = false;
    for (std::int32_t i = 1; i <= limits.MaxPasses; ++i) {
      progress.Pass(stage, i, limits.MaxPasses);
      const PassDeviations deviations = PeelPass(debug, stage, i, debugSeq, splitter, acc, rest);
      if (debug.On) WriteStageTable(debug, debugSeq, stage, i, n, acc, rest);

      if (StdRatio(prevLow, deviations.Low, low) < limits.StdRatio) lowDone = true;
      prevLow = deviations.Low;
      if (StdRatio(prevHigh, deviations.High, high) < limits.StdRatio) highDone = true;
      prevHigh = deviations.High;
      if (lowDone && highDone) break;
    }
  }

  // The middle octave is what the last pass of the last stage left, as it stands.
  for (int k = 1; k <= kOctaveCount; ++k) {
    OctaveBand& band = result[static_cast<std::size_t>(k)];
    band.Values = k == 5 ? std::move(rest) : std::move(acc[static_cast<std::size_t>(k)].Values);
    Summarise(n, band);
  }
  if (debug.On) WriteFinalBandTables(debug, n, dx, result);
}

// Which octaves a settings list names; an octave counts once even when listed twice.
std::array<bool, 10> Named(const std::vector<std::int32_t>& list) {
  std::array<bool, 10> named{};
  for (int k = 1; k <= kOctaveCount; ++k) named[static_cast<std::size_t>(k)] = std::find(list.begin(), list.end(), k) != list.end();
  return named;
}

// Sums of the octaves named in the settings lists, each in ascending octave order.
void BuildSums(const AppSettings& settings, std::int32_t n, OctaveBandSet& set) {
  const std::array<bool, 10> inLong = Named(settings.LongOctaves), inShort = Named(settings.ShortOctaves);
  Array1<double> longSum(static_cast<std::size_t>(n)), shortSum(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i) {
    double l = 0, s = 0;
    for (std::size_t k = 1; k <= kOctaveCount; ++k) {
      const double v = set.Band[k].Values[i];
      if (inLong[k]) l += v;
      if (inShort[k]) s += v;
    }
    longSum[i] = l;
    shortSum[i] = s;
  }
  StoreWave(set.LongSum, std::move(longSum));
  StoreWave(set.ShortSum, std::move(shortSum));
}

}  // namespace

bool Cal_プロファイル分解_単体処理(Session& session, std::int32_t writeDebug, std::int32_t& debugSeq, std::int32_t iteration,
                         std::int32_t n, std::int32_t length1, std::int32_t length2,
                         const OctaveMasks& masks, const Array1<double>& source, OctaveBands& bands) {
  return Guarded(session, kModule, kSingleProc, [&] {
    const DebugTables debug = DebugTablesOf(session);
    OctaveSplitter splitter(debug, n, length1, length2, masks);
    SplitOnce(debug, writeDebug, debugSeq, iteration, n, splitter, source, bands);
  });
}

bool Cal_プロファイル分解_収束計算(Session& session, const AnalysisBlock& block, OctaveBands& bands,
                         const FilterConvergence& limits) {
  return Guarded(session, kModule, kConvergeProc, [&] {
    OctaveBands result;
    Peel(DebugTablesOf(session), session.Ui(), block, limits, result);
    bands = std::move(result);
  });
}

bool DecomposeProfile(Session& session, ProfileRecord& record, bool converge, const FilterConvergence& limits,
                      bool force) {
  OctaveBandSet& set = record.Analysis.Octave;
  if (set.Calculated && set.Converged == converge && !force) return true;
  if (record.Analysis.Count == 0 &&
      !Guarded(session, kModule, "PrepareProfile", [&] { PrepareProfile(DebugTablesOf(session), record); }))
    return false;

  EnsureOctaveMasks(record.Analysis);
  const AnalysisBlock& block = record.Analysis;
  ProgressScope display(session.Ui(), kProgressTitle, "しばらくお待ちください。");
  OctaveBands bands;
  std::int32_t debugSeq = 0;
  const bool done = converge ? Cal_プロファイル分解_収束計算(session, block, bands, limits)
                             : Cal_プロファイル分解_単体処理(session, 1, debugSeq, 0, block.Count, block.FftLength1,
                                                     block.FftLength2, block.Masks, block.Profile.Values,
                                                     bands);
  if (done) {
    set.Band = std::move(bands);
    BuildSums(session.Settings, block.Count, set);
    set.Calculated = true;
    set.Converged = converge;
    ReportProgress(session.Ui(), 100);
  }
  return done;
}

}  // namespace velmora
