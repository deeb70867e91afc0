// velmora filter: the filter tab's Go over the files, one CSV of the filtered profile per file.
#include <map>

#include "command_session.h"

namespace velmora::cli {
namespace {

struct FilterOptions {
  std::vector<std::string> Files;
  std::string Type = "ma";
  std::string Kind = "highpass";
  std::string Long = "11";
  std::string Short = "11";
  std::string SlopeCut;
  bool Converge = false;
};

int RunFilterCommand(const CommonOptions& common, const FilterOptions& o) {
  auto session = OpenSession(common, o.Files, workbench::tab::Filter);
  if (!session) return 1;
  static const std::map<std::string, int> types{{"ma", 0}, {"fft", 1}, {"iri", 2}, {"slope", 3}};
  static const std::map<std::string, int> kinds{{"highpass", 0}, {"lowpass", 1}, {"bandpass", 2}, {"bandcut", 3}};
  workbench::Workbench& bench = session->Bench;
  bench.Filter.CalcType = types.at(o.Type);
  bench.Filter.Band = kinds.at(o.Kind);
  bench.Filter.LongCut = o.Long;
  bench.Filter.ShortCut = o.Short;
  bench.Filter.SlopeMode = !o.SlopeCut.empty();
  if (!o.SlopeCut.empty()) bench.Filter.SlopeCut = o.SlopeCut;
  bench.Filter.Converge = o.Converge;
  bench.DispGrp = true;
  {
    CliUi::FlagCheck check(session->Ui, {{"--long", "Long CutOff", "m"}, {"--short", "Short CutOff", "m"},
                                         {"--slope-cut", "Slope", "mm/m"}});
    if (!bench.StoreInputs(workbench::tab::Filter)) return 1;
  }
  if (!bench.Go(workbench::tab::Filter)) return 1;
  return Export(*session, {ExportKind::Profile, false, workbench::tab::Filter, {}}) ? 0 : 1;
}

}  // namespace

VELMORA_COMMAND("filter", "moving-average, FFT, slope or IRI filter of profiles, one CSV per file",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<FilterOptions>();
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--type", o->Type, "ma (moving average), fft, slope (mm/m) or iri (mm/m response)")
                      ->check(CLI::IsMember({"ma", "fft", "slope", "iri"}))->capture_default_str();
                  cmd.add_option("--kind", o->Kind, "pass kind of ma and fft")
                      ->check(CLI::IsMember({"highpass", "lowpass", "bandpass", "bandcut"}))->capture_default_str();
                  cmd.add_option("--long", o->Long, "long cut-off wavelength, m")->capture_default_str();
                  cmd.add_option("--short", o->Short, "short cut-off wavelength, m")->capture_default_str();
                  cmd.add_option("--slope-cut", o->SlopeCut,
                                 "slope: rebuild the profile without slopes of at least this, mm/m");
                  cmd.add_flag("--converge", o->Converge, "fft: convergent filtering (repeated passes)");
                  return [&common, o] { return RunFilterCommand(common, *o); };
                });

}  // namespace velmora::cli
