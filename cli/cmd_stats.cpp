// velmora stats: the statistics tab's run over the files and its pages saved as CSV files into -o.
#include <algorithm>
#include <cstdio>

#include "base/common.h"
#include <fmt/format.h>

#include "command_session.h"
#include "messages.h"

namespace velmora::cli {
namespace {

struct StatsOptions {
  std::vector<std::string> Files;
  std::vector<std::string> Bands = {"full"};
  std::vector<std::string> Stats = {"mean", "sd", "max", "min", "spread"};
  std::vector<std::string> IriLengths;
  std::vector<std::string> Order = {"profile", "band", "stat"};
  bool NoProfile = false;
};

const std::vector<std::string> kBandWords = {"full", "long", "short", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
const std::vector<std::string> kStatWords = {"mean", "sd", "max", "min", "spread"};
const std::vector<std::string> kLengthWords = {"10c", "10", "100", "200"};

// Ticks the members named in `words` ("all" ticks every one).
template <std::size_t N>
std::array<bool, N> Ticks(const std::vector<std::string>& words, const std::vector<std::string>& names) {
  std::array<bool, N> ticks{};
  for (const std::string& word : words)
    for (std::size_t k = 0; k < N; ++k)
      if (word == "all" || word == names[k]) ticks[k] = true;
  return ticks;
}

// The ordering lists of both pages from one list of words; the IRI list gets its length level after
// the profile when the words leave it out.
void SetOrder(workbench::Workbench& bench, const std::vector<std::string>& words) {
  bench.StatisticsSortProfile.clear();
  bench.StatisticsSortIri.clear();
  for (const std::string& word : words) {
    const std::string level = word == "profile" ? "プロファイル" : word == "band" ? "帯域" : word == "stat" ? "統計値" : "IRI算出基準長";
    if (word != "length") bench.StatisticsSortProfile.push_back(level);
    bench.StatisticsSortIri.push_back(level);
  }
  if (std::find(words.begin(), words.end(), "length") == words.end()) {
    const auto profile = std::find(bench.StatisticsSortIri.begin(), bench.StatisticsSortIri.end(), "プロファイル");
    bench.StatisticsSortIri.insert(profile == bench.StatisticsSortIri.end() ? profile : profile + 1, "IRI算出基準長");
  }
}

int RunStatsCommand(const CommonOptions& common, const StatsOptions& o) {
  if (o.NoProfile && o.IriLengths.empty()) {
    PrintProblem(*common.Run, "--no-profile", Tr("nothing to compute: --no-profile needs --iri-lengths"));
    return kExitUsage;
  }
  auto session = OpenSession(common, o.Files, workbench::tab::Statistics);
  if (!session) return 1;
  workbench::Workbench& bench = session->Bench;
  StatisticsSelection& s = bench.Evaluation.Statistics.Selection;
  if (!o.NoProfile) {
    s.ProfileBands = Ticks<12>(o.Bands, kBandWords);
    s.ProfileMeasures = Ticks<5>(o.Stats, kStatWords);
  }
  if (!o.IriLengths.empty()) {
    s.IriBands = Ticks<12>(o.Bands, kBandWords);
    s.IriMeasures = Ticks<5>(o.Stats, kStatWords);
    s.IriLengths = Ticks<4>(o.IriLengths, kLengthWords);
    s.IriBandsHeader = true;  // the IRI side is wanted: an empty group is refused, not skipped
  }
  SetOrder(bench, o.Order);
  bench.DispGrp = true;
  if (!bench.Go(workbench::tab::Statistics)) return 1;
  for (const StatisticsPage& page : bench.Evaluation.Statistics.Results.Pages)
    if (!page.Empty())
      session->Run.Say(fmt::format("{}\t{} columns, {} rows", page.Caption, page.Width() - 1, page.RowCount()));
  return workbench::SaveStatisticsTab(bench) ? 0 : 1;
}

}  // namespace

VELMORA_COMMAND("stats", "statistics of the band-split profiles (mm) and their IRI (mm/m), whole length and "
                         "10/100/200 m sections on a KP grid common to all files",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<StatsOptions>();
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--bands", o->Bands,
                                 "bands: full, long, short, 1..9 (octave 1 = 51.2-102.4 m wavelength), or all")
                      ->delimiter(',')->check(CLI::IsMember({"all", "full", "long", "short", "1", "2", "3", "4", "5",
                                                             "6", "7", "8", "9"}))
                      ->capture_default_str();
                  cmd.add_option("--stats", o->Stats,
                                 "statistics: mean, sd (population standard deviation), max, min, spread "
                                 "(max - min), or all; in mm for the profile, mm/m for the IRI")
                      ->delimiter(',')->check(CLI::IsMember({"all", "mean", "sd", "max", "min", "spread"}))
                      ->capture_default_str();
                  cmd.add_option("--iri-lengths", o->IriLengths,
                                 "IRI evaluation lengths in m: 10c (10 m continuous), 10, 100, 200 (fixed "
                                 "sections), or all; none given: no IRI statistics")
                      ->delimiter(',')->check(CLI::IsMember({"all", "10c", "10", "100", "200"}));
                  cmd.add_option("--order", o->Order,
                                 "column order, most significant first: profile, band, stat (and length for the "
                                 "IRI pages)")
                      ->delimiter(',')->check(CLI::IsMember({"profile", "band", "stat", "length"}))
                      ->capture_default_str();
                  cmd.add_flag("--no-profile", o->NoProfile, "only the IRI statistics");
                  return [&common, o] { return RunStatsCommand(common, *o); };
                });

}  // namespace velmora::cli
