// velmora repair: the repair-shape study over the files (three-wave split, M wave, S wave, ideal
// shape), the IRI of each profile before and after printed, the study's result files written.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

#include <fmt/format.h>
#include <filesystem>
#include <set>

#include "base/common.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/text_encoding.h"
#include "command_session.h"
#include "messages.h"
#include "repair/three_wave.h"
#include "profile/profile_list.h"
#include "repair/ideal_shape.h"
#include "repair/study_targets.h"
#include "workbench/repair_adjustments.h"
#include "workbench/repair_register.h"
#include "workbench/repair_result_files.h"

namespace velmora::cli {
namespace {

namespace fs = std::filesystem;
using workbench::tab::IdealShape;
using workbench::tab::ThreeWave;

struct RepairOptions {
  std::vector<std::string> Files;
  std::optional<std::string> Long;    // m; unset: from the settings
  std::optional<std::string> Short;   // m
  std::optional<std::string> Length;  // m
  std::string Lines;                  // nine limits, mm, comma-separated; an empty entry is no limit
  std::string PlanRange;       // "KP1,KP2", km
  std::string Adjust;          // CSV of KP (km) and thickness change (mm)
  std::string Register;        // any of L, M, S, ideal
};

// A problem with what was typed or with a file: the message names it; the command stops before
// writing anything.
struct InputError {
  std::string What;  // the file or flag
  std::string Why;
};

// One line of the --adjust file: the KP of a point (km) and the change of thickness there (mm).
// The --adjust file: one "KP,thickness" pair per line (KP in km, thickness in mm, a fill positive);
// a first line that is not numeric is a head and skipped, blank lines are skipped.
std::vector<KpAdjustment> ReadAdjustments(const std::string& path) {
  if (!fs::is_regular_file(path)) throw InputError{path, Tr("no such file")};
  const std::vector<std::string> lines = ReadSystemTextLines(path);
  std::vector<KpAdjustment> out;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    if (Trim(lines[k]).empty()) continue;
    const std::vector<std::string> fields = uToken(lines[k], ",");
    const auto kp = fields.size() == 2 ? ParseNumber(Trim(fields[0])) : std::nullopt;
    const auto thickness = fields.size() == 2 ? ParseNumber(Trim(fields[1])) : std::nullopt;
    if (!kp || !thickness) {
      if (k == 0) continue;  // the head line
      throw InputError{path, Tr("line {}: expected \"KP(km),thickness(mm)\", got \"{}\"", std::to_string(k + 1), lines[k])};
    }
    out.push_back({*kp, *thickness});
  }
  if (out.empty()) throw InputError{path, Tr("no adjusted point")};
  return out;
}

std::vector<std::string> Split(const std::string& text) { return uToken(text, ","); }

double NumberOption(const std::string& option, const std::string& text) {
  const auto value = ParseNumber(Trim(text));
  if (!value) throw InputError{option, Tr("\"{}\" is not a number", text)};
  return *value;
}

// The study's boxes: the boundaries, base length and band lines of the settings (Default.ini), each
// replaced by its flag when given.
workbench::RepairTabInputs& FillForm(workbench::Workbench& bench, const RepairOptions& o,
                                     const std::array<std::string, 10>* lines) {
  workbench::RepairTabInputs& in = bench.Repair;
  in.Form = ThreeWaveFormFromConditions(bench.Session().CurrentConditions);
  if (o.Long) in.Form.LongBoundary = *o.Long;
  if (o.Short) in.Form.ShortBoundary = *o.Short;
  if (o.Length) in.Form.IriLength = *o.Length;
  if (lines) in.Form.Lines = *lines;
  return in;
}

void ApplyPlanRange(workbench::Workbench& bench, const std::string& text) {
  if (text.empty()) return;
  const std::vector<std::string> kps = Split(text);
  if (kps.size() != 2) throw InputError{"--plan-range", Tr("two KP values in km are needed, as KP1,KP2")};
  const double start = NumberOption("--plan-range", kps[0]);
  const double end = NumberOption("--plan-range", kps[1]);
  bench.Repair.UsePlanRange = true;
  for (int row = 1; row <= bench.ProfileCount(); ++row) {
    ErdRecord& erd = bench.Profile(row).Erd;
    erd.RepairRangeOn = 1;
    erd.RepairRangeStart = start;
    erd.RepairRangeEnd = end;
  }
}

// The --register list: any of L, M, S, ideal.
struct RegisterChoice {
  WaveChoice Waves;
  bool Ideal = false;
  bool Any() const { return Waves.Long || Waves.Middle || Waves.Short || Ideal; }
};

RegisterChoice ParseRegister(const std::string& which) {
  RegisterChoice choice;
  if (which.empty()) return choice;
  for (const std::string& word : Split(which)) {
    const std::string w = Trim(word);
    if (w == "L") choice.Waves.Long = true;
    else if (w == "M") choice.Waves.Middle = true;
    else if (w == "S") choice.Waves.Short = true;
    else if (w == "ideal") choice.Ideal = true;
    else throw InputError{"--register", Tr("\"{}\" is none of L, M, S, ideal", w)};
  }
  return choice;
}

// Registers the chosen waves as profiles (files in the project's profile folder) and stages copies
// of those files for the output folder.
bool RegisterWaves(CommandSession& session, const RegisterChoice& choice) {
  if (!choice.Any()) return true;
  const workbench::RegisteredWaves registered = workbench::RegisterStudyWaves(session.Bench, choice.Waves, choice.Ideal);
  bool ok = registered.Ok;
  for (const std::string& name : registered.FileNames) ok = StageProjectProfile(session, name) && ok;
  return ok;
}

int RunRepairCommand(const CommonOptions& common, const RepairOptions& o) {
  try {
    const RegisterChoice registerChoice = ParseRegister(o.Register);
    std::optional<std::array<std::string, 10>> lines;
    if (!o.Lines.empty() && !(lines = NineLimits(*common.Run, o.Lines))) return kExitUsage;
    std::vector<KpAdjustment> adjustments;
    if (!o.Adjust.empty()) adjustments = ReadAdjustments(o.Adjust);
    auto session = OpenSession(common, o.Files, workbench::tab::Profile);
    if (!session) return 1;
    workbench::Workbench& bench = session->Bench;
    bench.MnuBunseki();
    bench.DispGrp = true;
    workbench::RepairTabInputs& in = FillForm(bench, o, lines ? &*lines : nullptr);
    // A fresh study: the typed values are the study's own, so the first split resets nothing.
    {
      CliUi::FlagCheck check(session->Ui, {{"--long", "長波側境界値", "m"},
                                           {"--short", "短波側境界値", "m"},
                                           {"--length", "IRI算出基準長", "m"},
                                           {"--lines", "", "mm"}});
      if (!getParam_補修形状検討_3波分解(bench.Session(), in.Form, in.Stored)) return 1;
    }
    ApplyPlanRange(bench, o.PlanRange);
    for (int t = ThreeWave; t <= IdealShape; ++t) bench.SelectAll(t);

    if (!bench.Go(ThreeWave) || !bench.Go(workbench::tab::MediumWave)) return 1;
    if (!adjustments.empty()) {
      bool applied = false;
      try {
        applied = workbench::AddKpThicknessStudies(bench, o.Adjust, adjustments);
      } catch (const LegacyError& error) {
        throw InputError{"", error.what()};  // a KP beside the road is a fault of the file, as a bad line is
      }
      if (!applied) return 1;
    }
    if (!bench.Go(workbench::tab::ShortWave) || !bench.Go(IdealShape)) return 1;

    for (int row : bench.Selection(IdealShape)) {
      const ProfileRecord& record = bench.Profile(row);
      const std::string name = ProfileList::NameOf(record);
      const double iri = record.RepairStudy.ProfileIri;
      const double corrected = ChosenOutcome(record).Corrected.IriWholeProfile;
      const double ideal = record.RepairStudy.IdealShape.IriWholeProfile;
      session->Run.Say(fmt::format("{}\tIRI {:.4f} mm/m\tcorrected {:.4f} mm/m\tideal {:.4f} mm/m", name, iri, corrected, ideal));
      session->Run.Result({{"profile", name},
                           {"iri_mm_per_m", iri},
                           {"corrected_iri_mm_per_m", corrected},
                           {"ideal_iri_mm_per_m", ideal}});
    }
    const std::tm now = session->Run.Stamp;
    bool ok = true;
    using Kind = RepairExportKind;
    const std::pair<Kind, int> kinds[] = {{Kind::ThreeWaveProfile, ThreeWave},
                                          {Kind::ThreeWaveIri, ThreeWave},
                                          {Kind::ShortWave, workbench::tab::ShortWave},
                                          {Kind::ShortWaveIri, workbench::tab::ShortWave},
                                          {Kind::IdealShape, IdealShape}};
    for (const auto& [kind, tab] : kinds)
      ok = !workbench::MakeRepairResultFiles(bench, {kind, false, tab}, now).Files.empty() && ok;
    ok = RegisterWaves(*session, registerChoice) && ok;
    return ok ? 0 : 1;
  } catch (const InputError& error) {
    PrintProblem(*common.Run, error.What, error.Why);
    return kExitUsage;
  }
}

}  // namespace

VELMORA_COMMAND(
    "repair",
    "repair-shape study: L/M/S split, M wave straightened crest to crest, S wave reduced by band lines, "
    "ideal shape L+M'+S' with its IRI (mm/m)",
    [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
      auto o = std::make_shared<RepairOptions>();
      AddFilesArgument(cmd, o->Files);
      cmd.add_option("--long", o->Long, "long-wave boundary, m: longer wavelengths make the L wave (default: Default.ini)");
      cmd.add_option("--short", o->Short, "short-wave boundary, m: shorter wavelengths make the S wave (default: Default.ini)");
      cmd.add_option("--length", o->Length, "IRI base length of the study, m (default 10)");
      cmd.add_option("--lines", o->Lines,
                     "band reduction limits of the S wave for octaves 1..9, mm, as l1,...,l9 (an empty entry: "
                     "no limit; default: Default.ini)");
      cmd.add_option("--plan-range", o->PlanRange,
                     "repair plan range as KP1,KP2 in km: the M wave is straightened and the S wave reduced "
                     "only inside it");
      cmd.add_option("--adjust", o->Adjust,
                     "CSV of adjusted points, one \"KP,thickness\" per line (KP in km, thickness change in mm, "
                     "a fill positive; a first line that is not numeric is a head): each moves the M-wave crest "
                     "or trough nearest that KP, and the ideal shape takes the adjusted M' wave");
      cmd.add_option("--register", o->Register,
                     "also write waves as ERD profiles (elevations in mm): any of L,M,S,ideal");
      return [&common, o] { return RunRepairCommand(common, *o); };
    });

}  // namespace velmora::cli
