#include "repair/ideal_shape.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>

#include <fmt/format.h>

#include "analysis/band_reduction.h"
#include "analysis/debug_table.h"
#include "analysis/iri.h"
#include "analysis/octave.h"
#include "analysis/prepare_profile.h"
#include "base/file_export_name.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/macros.h"
#include "base/settings.h"
#include "base/user_interaction.h"
#include "profile/erd_file.h"
#include "repair/study_targets.h"

namespace velmora {
namespace {

constexpr const char* kModule = "bas補修形状計算";
constexpr const char* kWait = "しばらくお待ちください。";

// A step whose callee has already logged its failure: ends the step without a second log entry.
struct StepFailed {};
void Need(bool ok) {
  if (!ok) throw StepFailed{};
}

bool GuardedStep(Session& session, const char* proc, const std::function<void()>& step) {
  try {
    step();
    return true;
  } catch (const StepFailed&) {
    return false;
  } catch (const std::exception& error) {
    ErrorLog(session, kModule, proc, error);
    return false;
  }
}

// One progress display for the length of a scope.
class Progress {
 public:
  Progress(ProgressSink& sink, const char* caption) : sink_(sink) { sink_.ProgressStart(caption, kWait); }
  ~Progress() { sink_.ProgressExit(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  static void Step(ProgressSink& sink, int step, int of) {
    ReportProgress(sink, CLng(static_cast<double>(step) / of * 100));
  }

 private:
  ProgressSink& sink_;
};

double PitchOf(const ProfileRecord& record) { return record.Erd.StepSize; }

ProfileRecord& RecordAt(StudyRun& run, std::int32_t row) {
  if (row < 1 || static_cast<std::size_t>(row) > run.Profiles.size())
    RaiseSubscriptOutOfRange(fmt::format("プロファイル行 {} / {}", row, run.Profiles.size()));
  return run.Profiles[static_cast<std::size_t>(row - 1)];
}

bool CheckedParams(Session& session, const StudyRun& run, ThreeWaveParams& params) {
  return getParam_補修形状検討_3波分解(session, run.Form, params);
}

// Runs `step` for every selected profile; true when none failed.
bool ForEachSelected(Session& session, StudyRun& run, const char* proc, const std::function<void(ProfileRecord&, std::size_t)>& step) {
  bool ok = true;
  for (std::size_t k = 0; k < run.Selected.size(); ++k)
    ok = GuardedStep(session, proc, [&] { step(RecordAt(run, run.Selected[k]), k); }) && ok;
  return ok;
}

Array1<double> SumOf(const Array1<double>& a, const Array1<double>& b, const Array1<double>& c) {
  Array1<double> sum(static_cast<std::size_t>(a.size()));
  for (std::ptrdiff_t i = 1; i <= a.size(); ++i) sum[i] = a[i] + b[i] + c[i];
  return sum;
}

// The IRI (mm/m) of a whole study wave; a failure is in the log already.
double WholeIri(Session& session, const Array1<double>& wave, double pitch, const IriParams& iri) {
  IriResults results;
  Need(StudyWaveIri(session, wave, pitch, iri, results));
  return results.IriWholeProfile;
}

// M' and what follows from it, in the five steps the study's progress counts.
void ComputeOutcome(Session& session, const ProfileRecord& record, const ThreeWaveParams& params, Array1<double> mPrime,
                    MWaveOutcome& out, const std::function<void(int)>& step) {
  const ThreeWaveSplit& split = record.ThreeWave;
  const double pitch = PitchOf(record);
  const IriParams iri = StudyIriParams(session, params.IriLength);
  MWaveOutcome result;
  StoreWave(result.MPrime.Wave, std::move(mPrime));
  step(1);
  // Added in the order S, M', L.
  StoreWave(result.Corrected.Wave, SumOf(split.ShortWave.Values, result.MPrime.Wave.Values, split.LongWave.Values));
  step(2);
  {
    WaveSeries correctedLong, correctedShort;  // only the middle wave of the second split is shown
    Need(Cal_補修形状3波分解_SUB(session, params.LongBoundary, params.ShortBoundary, record.WorkCount, pitch,
                                 result.Corrected.Wave.Values, correctedLong, result.CorrectedMiddle, correctedShort));
  }
  step(3);
  result.MPrime.IriWholeProfile = WholeIri(session, result.MPrime.Wave.Values, pitch, iri);
  step(4);
  result.Corrected.IriWholeProfile = WholeIri(session, result.Corrected.Wave.Values, pitch, iri);
  step(5);
  out = std::move(result);
}

// The M-wave step of one profile, eight progress steps.
void MiddleWaveStep(Session& session, ProfileRecord& record, const ThreeWaveParams& params, bool usePlanRange) {
  const ThreeWaveSplit& split = record.ThreeWave;
  const double pitch = PitchOf(record);
  const IriParams iri = StudyIriParams(session, params.IriLength);
  const std::int32_t n = record.WorkCount;
  auto step = [&session](int s) { Progress::Step(session.Ui(), s, 8); };
  RepairStudyData& study = record.RepairStudy;
  study.MiddleValid = false;

  step(1);
  WaveSeries straightened;
  Need(Cal_補修形状_M波の直線化(session, n, split.MiddleWave.Values, 0, PlanRangeOf(record, usePlanRange), straightened));
  step(2);
  ComputeOutcome(session, record, params, std::move(straightened.Values), study.Calculated, [&](int s) { step(2 + s); });
  study.ProfileIri = WholeIri(session, record.WorkProfile, pitch, iri);
  std::vector<MWaveExtremum> crests, troughs;
  Need(Cal_補修形状_M波の山谷情報(session, n, split.MiddleWave.Values, crests, troughs));
  const Array1<double>& mPrime = study.Calculated.MPrime.Wave.Values;
  study.PointTable.clear();
  for (const MWaveExtremum& c : crests) study.PointTable.push_back({c.Index, mPrime[c.Index], 0, 0});
  for (const MWaveExtremum& t : troughs) study.PointTable.push_back({t.Index, mPrime[t.Index], 0, kPointTrough});
  std::stable_sort(study.PointTable.begin(), study.PointTable.end(),
                   [](const StudyPoint& a, const StudyPoint& b) { return a.Index < b.Index; });
  study.MiddleValid = true;
  step(8);
}

void WriteAdjustmentTable(Session& session, const Array1<double>& m, const Array1<double>& adjust, const Array1<double>& mPrime) {
  std::vector<std::string> lines{"No, M波, User厚調整値, M'波(M+厚調整)"};
  const char* pattern = "0.000000000000000";
  for (std::ptrdiff_t i = 1; i <= m.size(); ++i)
    lines.push_back(fmt::format("{},{},{},{}", i, FormatNumber(m[i], pattern), FormatNumber(adjust[i], pattern),
                                FormatNumber(mPrime[i], pattern)));
  WriteDebugTable(DebugTablesOf(session), "補修計画_M+Use厚調整.csv", lines);
}

// File name of a registered wave (without folder), from the pattern or the built-in form.
std::string RegisteredName(const Session& session, const std::string& pattern, const std::string& profileName,
                           const std::string& builtInMark, const std::string& kindLetter) {
  const std::tm now = NameTimeOf(session);
  if (Trim(pattern).empty()) return profileName + builtInMark + FormatDateTime(now, "YYYYMMDDHHNNSS") + ".ERD";
  std::string name = uExpandDate(pattern, now);
  name = uReplaceMacro(name, "$(PROFILENAME)$", profileName);
  if (!kindLetter.empty()) name = uReplaceMacro(name, "$(波形種別)$", kindLetter);
  return name + ".ERD";
}

// Writes one wave of a profile as an ERD file in the project's profile folder; returns its path.
std::string WriteWaveErd(Session& session, const ProfileRecord& record, const WaveSeries& wave, const std::string& fileName,
                         const std::string& titleMark) {
  ErdRecord erd = record.Erd;
  erd.Elevation = wave.Values;
  erd.NumSamples = static_cast<std::int32_t>(wave.Values.size());
  erd.NumSamplesHeader = erd.NumSamples;
  erd.Title = record.Erd.Title + titleMark;
  std::filesystem::create_directories(ProjectProfileFolder(session));
  const std::string path = ProjectProfileFolder(session) + "/" + fileName;
  Need(WriteERD(path, erd));
  return path;
}

bool RegisterAll(Session& session, ProfileList& list, const std::vector<std::string>& paths) {
  return paths.empty() || AddProfileList(session, list, paths, true);
}

}  // namespace

IriParams StudyIriParams(Session& session, double iriLength) {
  IriParams params = session.CurrentConditions.RepairIri;
  params.IriBaseLength = iriLength;
  return params;
}

PlanRange PlanRangeOf(const ProfileRecord& record, bool use) {
  PlanRange plan;
  plan.Use = use && record.Erd.RepairRangeOn != 0;
  plan.StartKp = record.Erd.RepairRangeStart;  // the no value of the record is the study's seed
  plan.EndKp = record.Erd.RepairRangeEnd;
  plan.FirstKp = IsNoValue(record.Erd.KpStart) ? 0.0 : record.Erd.KpStart;
  plan.PitchM = record.Erd.StepSize;
  plan.KpSign = record.Erd.KpSign;
  return plan;
}

bool StudyWaveOctave(Session& session, const Array1<double>& wave, double pitch, std::int32_t writeDebug,
                     OctaveBands& bands) {
  return GuardedStep(session, "StudyWaveOctave", [&] {
    const auto n = static_cast<std::int32_t>(wave.size());
    AnalysisBlock block;
    PrepareAnalysis(DebugTablesOf(session), block, n, wave, pitch);
    block.Profile = {};  // the split reads `wave` itself: its copy would only add to the peak
    EnsureOctaveMasks(block);
    std::int32_t seq = 0;
    Need(Cal_プロファイル分解_単体処理(session, writeDebug, seq, 0, n, block.FftLength1, block.FftLength2, block.Masks, wave,
                                     bands));
  });
}

bool StudyWaveIri(Session& session, const Array1<double>& wave, double pitch, const IriParams& iri, IriResults& out) {
  return GuardedStep(session, "StudyWaveIri", [&] {
    AnalysisBlock block;
    PrepareAnalysis(DebugTablesOf(session), block, static_cast<std::int32_t>(wave.size()), wave, pitch);
    CalcIriProfile(DebugTablesOf(session), block, iri, false);
    out = std::move(block.Iri);
  });
}

bool ReduceShortWave(Session& session, const ProfileRecord& record, const ShortReduction& by, BandReductionResult& out) {
  OctaveBandSet octave;
  return StudyWaveOctave(session, record.ThreeWave.ShortWave.Values, PitchOf(record), 0, octave.Band) &&
         Cal_バンド別低減(session, by.Limits, record.WorkCount, octave, out, by.UseRange, by.RangeStart, by.RangeEnd);
}

bool cmdGo_3波長分解(Session& session, StudyRun& run, ThreeWaveRun* result) {
  ThreeWaveParams params;
  if (run.Selected.empty() || !CheckedParams(session, run, params)) return false;
  const ThreeWaveRun done = PubCal_補修形状検討_3波分解(session, run.Profiles, run.Selected, params, *run.Stored);
  if (result != nullptr) *result = done;
  return done.Ok;
}

bool cmdGo_中波長(Session& session, StudyRun& run) {
  ThreeWaveParams params;
  if (run.Selected.empty() || !CheckedParams(session, run, params)) return false;
  bool ok = PubCal_補修形状検討_3波分解(session, run.Profiles, run.Selected, params, *run.Stored).Ok;
  {
    Progress progress(session.Ui(), "Ｍ波の計算");
    ok = ForEachSelected(session, run, "cmdGo_中波長", [&](ProfileRecord& record, std::size_t) {
           if (record.ThreeWave.Valid) MiddleWaveStep(session, record, params, run.UsePlanRange);
         }) && ok;
  }
  Progress progress(session.Ui(), "Ｍ波の検討処理中");
  return ForEachSelected(session, run, "cmdGo_中波長", [&](ProfileRecord& record, std::size_t) {
           if (!record.RepairStudy.MiddleValid) return;
           for (StudyTarget& target : record.Studies) Need(CalcStudyAdjustment(session, record, target, run.Form));
         }) && ok;
}

bool cmdGo_短波長(Session& session, StudyRun& run) {
  ThreeWaveParams params;
  if (run.Selected.empty() || !CheckedParams(session, run, params)) return false;
  bool ok;
  {
    Progress progress(session.Ui(), "補修形状の中波長計算");
    ok = PubCal_補修形状検討_3波分解(session, run.Profiles, run.Selected, params, *run.Stored).Ok;
  }
  Progress progress(session.Ui(), "検討処理中");
  const std::array<double, 10> limits = BandLimitsFromTexts(params.Lines);
  return ForEachSelected(session, run, "cmdGo_短波長", [&](ProfileRecord& record, std::size_t k) {
           Progress::Step(session.Ui(), static_cast<int>(k + 1), static_cast<int>(run.Selected.size()));
           if (!record.ThreeWave.Valid) return;
           RepairStudyData& study = record.RepairStudy;
           study.ShortReducedValid = false;
           const PlanRange plan = PlanRangeOf(record, run.UsePlanRange);
           PlanIndices range;
           Need(set補修計画範囲情報(session, record.WorkCount, plan, range));
           const ShortReduction by{limits, plan.Use, range.S, range.E};
           BandReductionResult reduced;
           Need(ReduceShortWave(session, record, by, reduced));
           study.ShortReduced = std::move(reduced.Total);
           study.ShortReducedBy = by;
           study.ShortReducedValid = true;
         }) && ok;
}

bool cmdGo_理想形状(Session& session, StudyRun& run) {
  ThreeWaveParams params;
  if (run.Selected.empty() || !CheckedParams(session, run, params)) return false;
  const IriParams iri = StudyIriParams(session, params.IriLength);
  auto ready = [](const ProfileRecord& r) {
    return r.ThreeWave.Valid && r.RepairStudy.MiddleValid && r.RepairStudy.ShortReducedValid;
  };
  bool ok;
  {
    Progress progress(session.Ui(), "オリジナルプロファイルの計算");
    ok = ForEachSelected(session, run, "cmdGo_理想形状", [&](ProfileRecord& record, std::size_t) {
      if (!ready(record)) return;
      record.RepairStudy.ProfileIri = WholeIri(session, record.WorkProfile, PitchOf(record), iri);
    });
  }
  {
    Progress progress(session.Ui(), "理想形状案の計算");
    ok = ForEachSelected(session, run, "cmdGo_理想形状", [&](ProfileRecord& record, std::size_t) {
           RepairStudyData& study = record.RepairStudy;
           study.IdealValid = false;
           if (!ready(record)) return;
           const Array1<double>& mPrime = ChosenMPrime(record);
           // Added in the order L, M', S'.
           StoreWave(study.IdealShape.Wave, SumOf(record.ThreeWave.LongWave.Values, mPrime, study.ShortReduced.Values));
           // Its octave split is shown by no chart or file: it is made for the debug tables alone.
           if (DebugTablesOf(session).On) {
             OctaveBands bands;
             Need(StudyWaveOctave(session, study.IdealShape.Wave.Values, PitchOf(record), 1, bands));
           }
         }) && ok;
  }
  Progress progress(session.Ui(), "ＩＲＩ計算");
  return ForEachSelected(session, run, "cmdGo_理想形状", [&](ProfileRecord& record, std::size_t) {
           RepairStudyData& study = record.RepairStudy;
           if (!ready(record) || !study.IdealShape.Wave.Calculated) return;
           study.IdealShape.IriWholeProfile = WholeIri(session, study.IdealShape.Wave.Values, PitchOf(record), iri);
           study.IdealValid = true;
         }) && ok;
}

bool CalcStudyAdjustment(Session& session, ProfileRecord& record, StudyTarget& target, const ThreeWaveForm& form) {
  ThreeWaveParams params;
  if (!getParam_補修形状検討_3波分解(session, form, params)) return false;
  return GuardedStep(session, "CalcStudyAdjustment", [&] {
    if (!record.RepairStudy.MiddleValid) throw LegacyError(ErrorNumber::InvalidData, "Ｍ波が計算されていません");
    const Array1<double>& m = record.ThreeWave.MiddleWave.Values;
    const Array1<double> adjust = UserAdjustOf(m, record.RepairStudy.Calculated.MPrime.Wave.Values, target);
    Array1<double> mPrime(static_cast<std::size_t>(m.size()));
    for (std::ptrdiff_t i = 1; i <= m.size(); ++i) mPrime[i] = m[i] + adjust[i];
    if (DebugTablesOf(session).On) WriteAdjustmentTable(session, m, adjust, mPrime);
    target.Recalculated = false;
    ComputeOutcome(session, record, params, std::move(mPrime), target.Outcome, [&session](int s) { Progress::Step(session.Ui(), s, 5); });
    target.Recalculated = true;
    ++target.Revision;
  });
}

const MWaveOutcome& ChosenOutcome(const ProfileRecord& record) {
  const std::int32_t row = record.RepairStudy.ChosenStudy;
  if (row >= 1 && static_cast<std::size_t>(row) <= record.Studies.size()) {
    const StudyTarget& target = record.Studies[static_cast<std::size_t>(row - 1)];
    if (target.Recalculated) return target.Outcome;
  }
  return record.RepairStudy.Calculated;
}

const Array1<double>& ChosenMPrime(const ProfileRecord& record) { return ChosenOutcome(record).MPrime.Wave.Values; }

bool cmdProfile登録_3波分解(Session& session, StudyRun& run, ProfileList& list, const WaveChoice& waves, const std::string& pattern) {
  if (!cmdGo_3波長分解(session, run)) return false;
  std::vector<std::string> paths;
  const bool written = ForEachSelected(session, run, "cmdProfile登録_3波分解", [&](ProfileRecord& record, std::size_t) {
    if (!record.ThreeWave.Valid) return;
    const std::string name = ProfileList::NameOf(record);
    const struct {
      bool on;
      const WaveSeries& wave;
      const char* letter;
    } kinds[] = {{waves.Long, record.ThreeWave.LongWave, "L"},
                 {waves.Middle, record.ThreeWave.MiddleWave, "M"},
                 {waves.Short, record.ThreeWave.ShortWave, "S"}};
    for (const auto& kind : kinds)
      if (kind.on)
        paths.push_back(WriteWaveErd(session, record, kind.wave,
                                     RegisteredName(session, pattern, name, std::string("_") + kind.letter + "波_", kind.letter),
                                     std::string("(") + kind.letter + ")"));
  });
  return RegisterAll(session, list, paths) && written;
}

bool cmdProfile登録_理想形状(Session& session, StudyRun& run, ProfileList& list, const std::string& pattern) {
  std::vector<std::string> paths;
  const bool written = ForEachSelected(session, run, "cmdProfile登録_理想形状", [&](ProfileRecord& record, std::size_t) {
    if (!record.RepairStudy.IdealValid) return;
    paths.push_back(WriteWaveErd(session, record, record.RepairStudy.IdealShape.Wave,
                                 RegisteredName(session, pattern, ProfileList::NameOf(record), "_理想形状案_", ""),
                                 "(理想形状案)"));
  });
  return RegisterAll(session, list, paths) && written;
}

}  // namespace velmora
