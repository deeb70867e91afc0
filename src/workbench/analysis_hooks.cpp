#include <algorithm>

#include <fmt/format.h>

#include "analysis/band_reduction.h"
#include "analysis/filter.h"
#include "analysis/iri_sections.h"
#include "analysis/octave.h"
#include "analysis/prepare_profile.h"
#include "analysis/psd.h"
#include "base/common.h"
#include "base/session.h"
#include "base/user_interaction.h"
#include "workbench/workbench.h"

namespace velmora::workbench {
namespace {

// The analysis block is prepared once per working profile; an edit of the profile clears Count.
void EnsurePrepared(const Session& session, ProfileRecord& record) {
  if (record.Analysis.Count != record.WorkCount || record.Analysis.Count == 0)
    PrepareProfile(DebugTablesOf(session), record);
}

// The limits of the repeated passes, read at every run so that an edited file counts at once.
FilterConvergence Limits(const Workbench& bench) { return ReadFilterConvergence(bench.Session().Paths); }

std::string IriKey(const IriParams& p) {
  return fmt::format("{}|{}|{}|{}|{}|{}|{}|{}", p.Speed, p.KsMs, p.CsMs, p.MuMs, p.KtMs, p.InitFilter,
                     p.PowerWeighting, p.IriBaseLength);
}

FilterSpec SpecOf(const FilterTabInputs& in) {
  FilterSpec filterSpec;
  filterSpec.CalcType = static_cast<FilterCalcType>(in.CalcType);
  filterSpec.Band = static_cast<FilterKind>(in.Band);
  filterSpec.SlopeMode = in.SlopeMode;
  filterSpec.LongCut = uDblVal(in.LongCut);
  filterSpec.ShortCut = uDblVal(in.ShortCut);
  filterSpec.SlopeCut = uDblVal(in.SlopeCut);
  filterSpec.Converge = in.Converge;
  return filterSpec;
}

std::string FilterKey(const FilterSpec& s, const IriParams& iri) {
  return fmt::format("{}|{}|{}|{}|{}|{}|{}|{}", static_cast<int>(s.CalcType), static_cast<int>(s.Band), s.SlopeMode,
                     s.LongCut, s.ShortCut, s.SlopeCut, s.Converge, IriKey(iri));
}

std::vector<ProfileRecord*> AllRecords(Workbench& bench) {
  std::vector<ProfileRecord*> all;
  for (int row = 1; row <= bench.ProfileCount(); ++row) all.push_back(&bench.Profile(row));
  return all;
}

void InstallFilter(Workbench& bench) {
  TabComputation c;
  c.StoreInputs = [&bench] { return CheckFilterSpec(bench.Session(), SpecOf(bench.Filter)) == FilterField::None; };
  c.InputKey = [&bench] { return FilterKey(SpecOf(bench.Filter), bench.Session().CurrentConditions.Iri); };
  c.ComputeRows = [&bench](const std::vector<ProfileRecord*>& rows) {
    for (ProfileRecord* record : rows) EnsurePrepared(bench.Session(), *record);
    return RunFilter(bench.Session(), SpecOf(bench.Filter), true, rows, bench.Session().CurrentConditions.Iri,
                     Limits(bench))
        .Completed;
  };
  bench.SetComputation(tab::Filter, std::move(c));
}

void InstallOctave(Workbench& bench) {
  TabComputation c;
  c.ProgressTitle = "プロファイル分解計算";
  c.InputKey = [&bench] { return fmt::format("{}", bench.Octave.Converge); };
  c.Compute = [&bench](ProfileRecord& record) {
    EnsurePrepared(bench.Session(), record);
    return DecomposeProfile(bench.Session(), record, bench.Octave.Converge, Limits(bench), true);
  };
  bench.SetComputation(tab::Octave, std::move(c));
}

// The sum of the reduced octaves named in a settings list (an octave listed twice counts once).
void SumOfOctaves(const BandReductionResult& result, std::int32_t n, const std::vector<std::int32_t>& octaves,
                  WaveSeries& sum) {
  Array1<double> values(static_cast<std::size_t>(n));
  for (std::size_t k = 1; k <= 9; ++k) {
    if (std::find(octaves.begin(), octaves.end(), static_cast<std::int32_t>(k)) == octaves.end()) continue;
    for (std::int32_t i = 1; i <= n; ++i) values[i] += result.Reduced[k].Values[i];
  }
  StoreWave(sum, std::move(values));
}

void InstallBandReduction(Workbench& bench) {
  TabComputation c;
  c.ProgressTitle = "バンド別低減計算";
  // A line that is not a number means no limit; nothing is refused here.
  c.StoreInputs = [&bench] {
    BandReductionLines& lines = bench.Session().CurrentConditions.BandLines;
    for (std::size_t k = 1; k <= 9; ++k) {
      const double limit = BandLimitFromText(bench.Band.Lines[k]);
      lines.Value[k] = limit == NoLimit ? kNoValue : limit;
    }
    return true;
  };
  c.InputKey = [&bench] {
    std::string key = fmt::format("{}", bench.Octave.Converge);
    for (double limit : BandLimitsFromTexts(bench.Band.Lines)) key += fmt::format("|{}", limit);
    return key;
  };
  c.Compute = [&bench](ProfileRecord& record) {
    EnsurePrepared(bench.Session(), record);
    if (!DecomposeProfile(bench.Session(), record, bench.Octave.Converge, Limits(bench))) return false;
    BandReductionBlock& block = record.Analysis.BandReduction;
    block.Calculated = false;
    block.Limits = BandLimitsFromTexts(bench.Band.Lines);
    const std::int32_t n = record.Analysis.Count;
    if (!Cal_バンド別低減(bench.Session(), block.Limits, n, record.Analysis.Octave, block.Result)) return false;
    SumOfOctaves(block.Result, n, bench.Session().Settings.LongOctaves, block.LongSum);
    SumOfOctaves(block.Result, n, bench.Session().Settings.ShortOctaves, block.ShortSum);
    block.Calculated = true;
    return true;
  };
  bench.SetComputation(tab::BandReduction, std::move(c));
}

void InstallPsd(Workbench& bench) {
  TabComputation c;
  c.ProgressTitle = "パワースペクトル計算";
  c.AllProfiles = true;
  c.StoreInputs = [&bench] {
    if (bench.Psd.Smooth && uLongVal(bench.Psd.BandsPerOctave) < 1) {
      bench.Session().Ui().Inform("BandsPerOctave値はゼロより大きく指定してください。", "警告");
      return false;
    }
    return true;
  };
  c.InputKey = [&bench] { return fmt::format("{}|{}", bench.Psd.WindowKind, bench.Psd.MirrorFill); };
  c.Compute = [&bench](ProfileRecord& record) {
    PsdResult& psd = record.Analysis.Psd;
    Array1<double> values;
    if (!PsdCalc(bench.Session(), record.WorkCount, record.WorkProfile, record.Erd.StepSize, bench.Psd.WindowKind,
                 bench.Psd.MirrorFill, values))
      return false;
    psd.PsdCount = static_cast<std::int32_t>(values.size());
    psd.PsdValues = std::move(values);
    psd.WindowKind = bench.Psd.WindowKind;
    psd.MirrorFill = bench.Psd.MirrorFill;
    psd.Calculated = true;
    return true;
  };
  bench.SetComputation(tab::Psd, std::move(c));
}

void InstallIri(Workbench& bench) {
  TabComputation c;
  c.StoreInputs = [&bench] {
    const std::vector<ProfileRecord*> all = AllRecords(bench);
    double length = 0;
    if (!CheckIriLength(bench.Session(), bench.Iri.EvalLength, all, length)) return false;
    bench.Session().CurrentConditions.Iri.IriBaseLength = length;
    return true;
  };
  c.InputKey = [&bench] {
    return IriKey(bench.Session().CurrentConditions.Iri) + fmt::format("|{}|{}|{}", bench.Iri.SkipPartialSections, bench.Octave.Converge, bench.Iri.Bands);
  };
  c.ComputeRows = [&bench](const std::vector<ProfileRecord*>& rows) {
    // The band IRIs need the octave split of each profile first.
    for (ProfileRecord* record : rows) {
      EnsurePrepared(bench.Session(), *record);
      if (bench.Iri.Bands && !DecomposeProfile(bench.Session(), *record, bench.Octave.Converge, Limits(bench))) return false;
    }
    IriRunRequest request;
    request.LengthText = bench.Iri.EvalLength;
    request.Params = bench.Session().CurrentConditions.Iri;
    request.SkipPartialSections = bench.Iri.SkipPartialSections;
    request.Limits = Limits(bench);
    request.WithBands = bench.Iri.Bands;
    double lastLength = kNoValue;  // the workbench has decided these rows need computing
    const std::vector<ProfileRecord*> all = AllRecords(bench);
    return RunIri(bench.Session(), all, rows, request, lastLength);
  };
  bench.SetComputation(tab::Iri, std::move(c));
}

}  // namespace

// Each analysis joins its tab here.
void InstallAnalyses(Workbench& bench) {
  InstallFilter(bench);
  InstallOctave(bench);
  InstallBandReduction(bench);
  InstallPsd(bench);
  InstallIri(bench);
  InstallEvaluation(bench);
  InstallRepair(bench);
}

}  // namespace velmora::workbench
