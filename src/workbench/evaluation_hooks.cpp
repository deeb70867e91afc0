// The statistics and cross-correlation tabs joined to their computations. Both work on the whole
// selection at once, so the key of each row holds the selection too: a changed selection, option or
// profile makes every selected row stale and the run is made again over all of them.
#include <fmt/format.h>

#include "analysis/octave.h"
#include "base/file_export_name.h"
#include "base/session.h"
#include "base/user_interaction.h"
#include "report/evaluation_files.h"
#include "workbench/workbench.h"

namespace velmora::workbench {
namespace {

std::string Joined(const std::vector<int>& rows) {
  return fmt::format("{}", fmt::join(rows, ","));
}

template <std::size_t N>
std::string Bits(const std::array<bool, N>& group) {
  std::string bits;
  for (bool on : group) bits += on ? '1' : '0';
  return bits;
}

std::string IriParamsKey(const IriParams& p) {
  return fmt::format("{}|{}|{}|{}|{}|{}|{}", p.Speed, p.KsMs, p.CsMs, p.MuMs, p.KtMs, p.InitFilter,
                     p.PowerWeighting);
}

std::vector<std::int32_t> Rows(const Workbench& bench, int tab) {
  const std::vector<int>& rows = bench.Selection(tab);
  return {rows.begin(), rows.end()};
}

StatisticsSelection SelectionOf(const Workbench& bench) {
  StatisticsSelection selection = bench.Evaluation.Statistics.Selection;
  selection.ProfileOrder = bench.StatisticsSortProfile;
  selection.IriOrder = bench.StatisticsSortIri;
  return selection;
}

CorrelationPsdOptions PsdOptionsOf(const Workbench& bench) {
  return {bench.Psd.WindowKind, bench.Psd.MirrorFill};
}

void InstallStatistics(Workbench& bench) {
  TabComputation c;
  c.StoreInputs = [&bench] {
    StatisticsSelection selection = SelectionOf(bench);
    return CheckStatisticsSelection(bench.Session(), static_cast<std::int32_t>(bench.Selection(tab::Statistics).size()), selection);
  };
  c.InputKey = [&bench] {
    const StatisticsSelection s = SelectionOf(bench);
    return fmt::format("{}|{}{}{}{}{}{}{}|{}|{}|{}|{}|{}", Joined(bench.Selection(tab::Statistics)),
                       Bits(s.ProfileBands), s.ProfileBandsHeader, Bits(s.ProfileMeasures), Bits(s.IriBands),
                       s.IriBandsHeader, Bits(s.IriMeasures), Bits(s.IriLengths), fmt::join(s.ProfileOrder, ","),
                       fmt::join(s.IriOrder, ","), IriParamsKey(bench.Session().CurrentConditions.Iri),
                       bench.Iri.SkipPartialSections, bench.Octave.Converge);
  };
  c.ComputeRows = [&bench](const std::vector<ProfileRecord*>&) {
    const std::vector<std::int32_t> rows = Rows(bench, tab::Statistics);
    const FilterConvergence limits = ReadFilterConvergence(bench.Session().Paths);
    // The band series come from the octave tab's split, made here when it is missing or stale.
    for (std::int32_t row : rows)
      if (!DecomposeProfile(bench.Session(), bench.Profile(row), bench.Octave.Converge, limits)) return false;
    StatisticsRequest request;
    request.Iri = bench.Session().CurrentConditions.Iri;
    request.SkipPartialSections = bench.Iri.SkipPartialSections;
    request.ConvergentOctaves = bench.Octave.Converge;
    request.Limits = limits;
    ProgressScope display(bench.Session().Ui(), "統計値計算", std::string(kPleaseWait));
    StatisticsResults& results = bench.Evaluation.Statistics.Results;
    results = {};  // a failed run leaves no pages of an earlier one
    const bool ok = RunStatisticsOnSplit(bench.Session(), bench.List(), rows, SelectionOf(bench), request, results);
    ReportProgress(bench.Session().Ui(), 100);
    return ok;
  };
  bench.SetComputation(tab::Statistics, std::move(c));
}

void InstallVerification(Workbench& bench) {
  TabComputation c;
  c.StoreInputs = [&bench] {
    CorrelationOptions options = bench.Evaluation.Verification.Options;
    CorrelationSelection selection;
    const std::vector<std::int32_t> rows = Rows(bench, tab::Verification);
    return CheckCorrelationOptions(bench.Session(), bench.List(), rows, options, selection);
  };
  c.InputKey = [&bench] {
    const CorrelationOptions& o = bench.Evaluation.Verification.Options;
    return fmt::format("{}|{}|{}|{}|{}|{}|{}|{}|{}|{}|{}|{}", Joined(bench.Selection(tab::Verification)),
                       o.MaxShiftMode, o.MaxShiftText, o.Measure, o.FilterMode, o.TableLayout, o.Alignment,
                       o.ShowIri, o.ShowPsd, IriParamsKey(bench.Session().CurrentConditions.Iri), bench.Psd.WindowKind,
                       bench.Psd.MirrorFill);
  };
  c.ComputeRows = [&bench](const std::vector<ProfileRecord*>&) {
    CorrelationResults& results = bench.Evaluation.Verification.Results;
    results = {};
    return RunCrossCorrelation(bench.Session(), bench.List(), Rows(bench, tab::Verification), bench.Evaluation.Verification.Options,
                               bench.Session().CurrentConditions.Iri, results, false, PsdOptionsOf(bench));
  };
  bench.SetComputation(tab::Verification, std::move(c));
}

}  // namespace

void InstallEvaluation(Workbench& bench) {
  InstallStatistics(bench);
  InstallVerification(bench);
}

bool SaveStatisticsTab(Workbench& bench) {
  const std::vector<int>& rows = bench.Selection(tab::Statistics);
  const std::string first = rows.empty() ? std::string() : ProfileList::NameOf(bench.Profile(rows.front()));
  return SaveStatistics(bench.Session(), bench.Evaluation.Statistics.Results, first, FileExportPattern(bench.Session(), "統計値"));
}

bool SaveVerificationTab(Workbench& bench) {
  const VerificationTab& tab = bench.Evaluation.Verification;
  return SaveCrossCorrelation(bench.Session(), bench.List(), Rows(bench, tab::Verification), tab.Results, bench.Session().CurrentConditions.Iri,
                              FileExportPattern(bench.Session(), "相互相関"), PsdOptionsOf(bench));
}

std::vector<std::string> RegisterShiftedProfilesTab(Workbench& bench) {
  return RegisterShiftedProfiles(bench.Session(), bench.List(), bench.Evaluation.Verification.Results,
                                 [&bench](const std::vector<std::string>& paths) {
                                   return bench.RegisterFiles(paths, true);
                                 });
}

}  // namespace velmora::workbench
