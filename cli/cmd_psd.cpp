// velmora psd: the PSD of the files (raw, smoothed, and the ratio to the first file).
#include "base/common.h"
#include "command_session.h"

namespace velmora::cli {
namespace {

struct PsdOptions {
  std::vector<std::string> Files;
  std::string Window = "hanning";
  std::string Fill = "mirror";
  std::string Smooth = "0";
  bool Ratio = false;
};

int RunPsdCommand(const CommonOptions& common, const PsdOptions& o) {
  auto session = OpenSession(common, o.Files, workbench::tab::Psd);
  if (!session) return 1;
  workbench::Workbench& bench = session->Bench;
  bench.Psd.WindowKind = o.Window == "none" ? 0 : o.Window == "hanning" ? 1 : 2;
  bench.Psd.MirrorFill = o.Fill == "mirror";
  const int smooth = std::stoi(o.Smooth);
  bench.Psd.Smooth = smooth != 0;
  bench.Psd.BandsPerOctave = std::to_string(smooth);
  bench.Psd.Ratio = o.Ratio;
  bench.DispGrp = true;
  // The PSD tab has no Go: a click in its list computes and shows.
  if (!bench.ListClick(workbench::tab::Psd, bench.Selection(workbench::tab::Psd))) return 1;

  workbench::ExportRequest request{ExportKind::PsdRaw, false, workbench::tab::Psd, {}};
  request.Options.WindowKind = bench.Psd.WindowKind;
  request.Options.MirrorFill = bench.Psd.MirrorFill;
  request.Options.BandsPerOctave = smooth;
  request.Options.Smoothed = smooth != 0;
  bool ok = Export(*session, request);
  if (smooth != 0) {
    request.Kind = ExportKind::PsdSmoothed;
    ok = Export(*session, request) && ok;
  }
  if (o.Ratio) {
    request.Kind = ExportKind::PsdRatio;
    ok = Export(*session, request) && ok;
  }
  return ok ? 0 : 1;
}

}  // namespace

VELMORA_COMMAND("psd", "power spectral density of profiles (mm² per cycle/m), smoothed, and ratios to the first",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<PsdOptions>();
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--window", o->Window, "window over the transform length")
                      ->check(CLI::IsMember({"none", "hanning", "hamming"}))->capture_default_str();
                  cmd.add_option("--fill", o->Fill, "fill up to a power of two: mirror (point-symmetric) or zero")
                      ->check(CLI::IsMember({"mirror", "zero"}))->capture_default_str();
                  cmd.add_option("--smooth", o->Smooth, "also write the spectrum smoothed to N points per octave")
                      ->check(WholeNumberFrom(1));
                  cmd.add_flag("--ratio", o->Ratio, "gain sqrt(PSD/PSD of the first file) of each further file");
                  return [&common, o] { return RunPsdCommand(common, *o); };
                });

}  // namespace velmora::cli
