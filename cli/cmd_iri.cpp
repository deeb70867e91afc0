// velmora iri: the IRI tab's Go over the files, the whole-profile IRI printed, the IRI files written;
// with --pair also the MRI and HRI of two wheel paths.
#include <optional>

#include <fmt/format.h>

#include "base/common.h"
#include "base/settings.h"
#include "command_session.h"
#include "iri_pair.h"
#include "messages.h"
#include "profile/profile_list.h"

namespace velmora::cli {
namespace {

struct IriOptions {
  std::vector<std::string> Files;
  std::vector<std::string> Pair;  // left, right: files or names of profiles among Files
  std::string Length = "10";
  bool Bands = false;
  bool SkipPartial = false;
  double Speed = 0;
  double Init = 0;
  bool Rms = false;
};

int RunIriCommand(const CommonOptions& common, const IriOptions& o) {
  auto session = OpenSession(common, WithPairFiles(o.Files, o.Pair), workbench::tab::Iri);
  if (!session) return 1;
  int pairStatus = kExitOk;
  std::optional<PairRows> pair;
  if (!o.Pair.empty() && !(pair = FindIriPair(*session, o.Pair, pairStatus))) return pairStatus;
  IriParams& params = session->Engine.CurrentConditions.Iri;
  if (o.Speed > 0) params.Speed = o.Speed;
  if (o.Init > 0) params.InitFilter = o.Init;
  if (o.Rms) params.PowerWeighting = 1;
  workbench::Workbench& bench = session->Bench;
  bench.Iri.EvalLength = o.Length;
  bench.Iri.SkipPartialSections = o.SkipPartial;
  bench.Iri.Bands = o.Bands;  // the octave split is the larger part of the work: only when asked for
  bench.DispGrp = true;
  if (!CheckIriLengthFlag(*session) || !bench.Go(workbench::tab::Iri)) return 1;

  for (int row : bench.Selection(workbench::tab::Iri)) {
    const ProfileRecord& record = bench.Profile(row);
    const std::string name = ProfileList::NameOf(record);
    const double iri = record.Analysis.Iri.IriWholeProfile;
    session->Run.Say(fmt::format("{}\tIRI {:.4f} mm/m", name, iri));
    session->Run.Result({{"profile", name}, {"file", record.FileName}, {"iri_mm_per_m", iri}});
  }
  using workbench::ExportRequest;
  ExportRequest request{ExportKind::IriWhole, false, workbench::tab::Iri, {}};
  bool ok = Export(*session, request);
  request.Kind = ExportKind::IriContinuous;
  request.Options.WithBands = o.Bands;
  ok = Export(*session, request) && ok;
  request.Kind = ExportKind::IriFixed;
  for (int interval : {10, 100, 200}) {
    request.Options.Interval = interval;
    ok = Export(*session, request) && ok;
  }
  if (pair) ReportIriPair(*session, *pair, ParseNumber(o.Length).value_or(0), o.SkipPartial);
  return ok ? 0 : 1;
}

}  // namespace

VELMORA_COMMAND("iri", "IRI (mm/m) of profiles: whole profile, continuous windows, fixed 10/100/200 m sections",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<IriOptions>();
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--pair", o->Pair,
                                 "two wheel paths of equal pitch (files or profile names): MRI and HRI (mm/m), "
                                 "whole and per section")
                      ->expected(2);
                  cmd.add_option("--length", o->Length, "evaluation length of windows and sections, m")
                      ->capture_default_str();
                  cmd.add_flag("--bands", o->Bands, "write the nine octave bands' IRI (mm/m) beside the profile's");
                  cmd.add_flag("--skip-partial", o->SkipPartial,
                               "leave out sections shorter than the evaluation length");
                  cmd.add_option("--speed", o->Speed, "simulation speed, km/h (default from Default.ini)");
                  cmd.add_option("--init", o->Init, "initialisation distance, m (default from Default.ini)");
                  cmd.add_flag("--rms", o->Rms, "RMS weighting of the window series instead of ARS");
                  return [&common, o] { return RunIriCommand(common, *o); };
                });

}  // namespace velmora::cli
