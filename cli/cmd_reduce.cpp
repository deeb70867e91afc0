// velmora reduce: band reduction of the files. Each octave band is held within its limit line (mm):
// a half-wave whose peak exceeds the limit is scaled down to it; the reduced bands are summed.
#include <cstdio>

#include "base/common.h"
#include "base/settings.h"
#include <fmt/format.h>

#include "command_session.h"
#include "messages.h"
#include "profile/profile_list.h"

namespace velmora::cli {
namespace {

struct ReduceOptions {
  std::vector<std::string> Files;
  std::string Lines;  // nine texts joined by ","; empty: the lines of the conditions (Default.ini)
  bool Converge = false;
  BandFileOptions Extra;
};

int RunReduceCommand(const CommonOptions& common, const ReduceOptions& o) {
  std::optional<std::array<std::string, 10>> lines;
  if (!o.Lines.empty() && !(lines = NineLimits(*common.Run, o.Lines))) return kExitUsage;
  auto session = OpenSession(common, o.Files, workbench::tab::BandReduction);
  if (!session) return 1;
  workbench::Workbench& bench = session->Bench;
  if (lines) bench.Band.Lines = *lines;
  bench.Octave.Converge = o.Converge;
  bench.DispGrp = true;
  if (!bench.Go(workbench::tab::BandReduction)) return 1;

  for (int row : bench.Selection(workbench::tab::BandReduction)) {
    const ProfileRecord& record = bench.Profile(row);
    const WaveSeries& total = record.Analysis.BandReduction.Result.Total;
    const std::string name = ProfileList::NameOf(record);
    session->Run.Say(fmt::format("{}\treduced profile {:.3f} .. {:.3f} mm", name, total.Stats.Minimum, total.Stats.Maximum));
    session->Run.Result({{"profile", name}, {"reduced_min_mm", total.Stats.Minimum}, {"reduced_max_mm", total.Stats.Maximum}});
  }
  return ExportBandFiles(*session, workbench::tab::BandReduction, o.Extra,
                         {ExportKind::BandAll, ExportKind::BandOne, ExportKind::BandSum, ExportKind::BandLong,
                          ExportKind::BandShort})
             ? 0
             : 1;
}

}  // namespace

VELMORA_COMMAND("reduce", "band reduction: every octave band held within its limit line (mm), the bands summed (mm)",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<ReduceOptions>();
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--lines", o->Lines,
                                 "limits of octaves 1..9 in mm, e.g. 12,8,5,3,2,1.2,0.8,0.5,0.3; a blank entry is "
                                 "no limit (default: the lines of Default.ini)");
                  cmd.add_flag("--converge", o->Converge, "peel the octave bands pair by pair with repeated passes");
                  AddBandFileFlags(cmd, o->Extra);
                  return [&common, o] { return RunReduceCommand(common, *o); };
                });

}  // namespace velmora::cli
