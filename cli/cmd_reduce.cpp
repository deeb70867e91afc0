// velmora reduce: band reduction of the files. Each octave band is held within its limit line (mm):
// a half-wave whose peak exceeds the limit is scaled down to it; the reduced bands are summed.
#include <cstdio>

#include "base/common.h"
#include "base/settings.h"
#include "command_session.h"
#include "profile/profile_list.h"

namespace velmora::cli {
namespace {

struct ReduceOptions {
  std::vector<std::string> Files;
  std::string Lines;  // nine texts joined by ","; empty: the lines of the conditions (Default.ini)
  bool Converge = false;
  BandFileOptions Extra;
};

// The nine limit texts of --lines; a blank text means no limit. A text that is neither blank nor a
// number is refused here rather than silently taken as no limit: on a command line it is a typo.
bool ParseLines(const std::string& text, std::array<std::string, 10>& lines) {
  std::vector<std::string> parts{""};
  for (char c : text) {
    if (c == ',')
      parts.emplace_back();
    else
      parts.back() += c;
  }
  if (parts.size() != 9) {
    std::fprintf(stderr, "velmora reduce: --lines wants nine limits (mm) separated by commas, got \"%s\"\n",
                 text.c_str());
    return false;
  }
  for (std::size_t k = 1; k <= 9; ++k) {
    const std::string line = Trim(parts[k - 1]);
    if (!line.empty() && !IsNumeric(line)) {
      std::fprintf(stderr, "velmora reduce: --lines: limit %zu \"%s\" is not a number (mm)\n", k, line.c_str());
      return false;
    }
    lines[k] = line;
  }
  return true;
}

int RunReduceCommand(const CommonOptions& common, const ReduceOptions& o) {
  std::array<std::string, 10> lines{};
  if (!o.Lines.empty() && !ParseLines(o.Lines, lines)) return 2;
  auto session = OpenSession(common, o.Files, workbench::tab::BandReduction);
  if (!session) return 1;
  workbench::Workbench& bench = session->Bench;
  if (!o.Lines.empty()) bench.Band.Lines = lines;
  bench.Octave.Converge = o.Converge;
  bench.DispGrp = true;
  if (!bench.Go(workbench::tab::BandReduction)) return 1;

  for (int row : bench.Selection(workbench::tab::BandReduction)) {
    const ProfileRecord& record = bench.Profile(row);
    const WaveSeries& total = record.Analysis.BandReduction.Result.Total;
    std::printf("%s\treduced profile %.3f .. %.3f mm\n", ProfileList::NameOf(record).c_str(), total.Stats.Minimum,
                total.Stats.Maximum);
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
