// velmora octave: the octave split of the files, one CSV with the nine bands and the sums per file,
// and on request the bands one by one and the sums in files of their own.
#include "command_session.h"

namespace velmora::cli {
namespace {

struct OctaveOptions {
  std::vector<std::string> Files;
  bool Converge = false;
  BandFileOptions Extra;
};

int RunOctaveCommand(const CommonOptions& common, const OctaveOptions& o) {
  auto session = OpenSession(common, o.Files, workbench::tab::Octave);
  if (!session) return 1;
  session->Bench.Octave.Converge = o.Converge;
  session->Bench.DispGrp = true;
  if (!session->Bench.Go(workbench::tab::Octave)) return 1;
  return ExportBandFiles(*session, workbench::tab::Octave, o.Extra,
                         {ExportKind::OctaveAll, ExportKind::OctaveBand, ExportKind::OctaveSum, ExportKind::OctaveLong,
                          ExportKind::OctaveShort})
             ? 0
             : 1;
}

}  // namespace

VELMORA_COMMAND("octave", "split profiles into nine octave bands (51.2-102.4 m down to 0.2-0.4 m), values in mm",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<OctaveOptions>();
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_flag("--converge", o->Converge, "peel the bands pair by pair with repeated passes");
                  AddBandFileFlags(cmd, o->Extra);
                  return [&common, o] { return RunOctaveCommand(common, *o); };
                });

}  // namespace velmora::cli
