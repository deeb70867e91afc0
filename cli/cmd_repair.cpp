// velmora repair: the repair-shape study over the files (three-wave split, M wave, S wave, ideal
// shape), the IRI of each profile before and after printed, the study's result files written.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <set>

#include "base/common.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/text_encoding.h"
#include "command_session.h"
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
  std::string Long = "51.2";   // m
  std::string Short = "4";     // m
  std::string Length = "10";   // m
  std::string Lines;           // nine limits, mm, comma-separated; an empty entry is no limit
  std::string PlanRange;       // "KP1,KP2", km
  std::string Adjust;          // CSV of KP (km) and thickness change (mm)
  std::string Register;        // any of L, M, S, ideal
};

// A problem with what was typed or with a file: the message names it; the command stops before
// writing anything.
struct InputError {
  std::string Text;
};

// One line of the --adjust file: the KP of a point (km) and the change of thickness there (mm).
// The --adjust file: one "KP,thickness" pair per line (KP in km, thickness in mm, a fill positive);
// a first line that is not numeric is a head and skipped, blank lines are skipped.
std::vector<KpAdjustment> ReadAdjustments(const std::string& path) {
  if (!fs::is_regular_file(path)) throw InputError{path + ": no such file"};
  const std::vector<std::string> lines = ReadSystemTextLines(path);
  std::vector<KpAdjustment> out;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    if (Trim(lines[k]).empty()) continue;
    const std::vector<std::string> fields = uToken(lines[k], ",");
    const auto kp = fields.size() == 2 ? ParseNumber(Trim(fields[0])) : std::nullopt;
    const auto thickness = fields.size() == 2 ? ParseNumber(Trim(fields[1])) : std::nullopt;
    if (!kp || !thickness) {
      if (k == 0) continue;  // the head line
      throw InputError{path + ": line " + std::to_string(k + 1) + ": expected \"KP(km),thickness(mm)\", got \"" +
                       lines[k] + "\""};
    }
    out.push_back({*kp, *thickness});
  }
  if (out.empty()) throw InputError{path + ": no adjusted point"};
  return out;
}

std::vector<std::string> Split(const std::string& text) { return uToken(text, ","); }

double NumberOption(const std::string& option, const std::string& text) {
  const auto value = ParseNumber(Trim(text));
  if (!value) throw InputError{option + ": \"" + text + "\" is not a number"};
  return *value;
}

workbench::RepairTabInputs& FillForm(workbench::Workbench& bench, const RepairOptions& o) {
  workbench::RepairTabInputs& in = bench.Repair;
  in.Form.LongBoundary = o.Long;
  in.Form.ShortBoundary = o.Short;
  in.Form.IriLength = o.Length;
  in.Form.Lines.fill(std::string());
  if (!o.Lines.empty()) {
    const std::vector<std::string> lines = Split(o.Lines);
    if (lines.size() != 9) throw InputError{"--lines: nine limits are needed (mm), got " + std::to_string(lines.size())};
    for (std::size_t k = 0; k < 9; ++k) {
      if (!Trim(lines[k]).empty()) NumberOption("--lines", lines[k]);
      in.Form.Lines[k + 1] = Trim(lines[k]);
    }
  }
  return in;
}

void ApplyPlanRange(workbench::Workbench& bench, const std::string& text) {
  if (text.empty()) return;
  const std::vector<std::string> kps = Split(text);
  if (kps.size() != 2) throw InputError{"--plan-range: two KP values in km are needed, as KP1,KP2"};
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
    else throw InputError{"--register: \"" + w + "\" is none of L, M, S, ideal"};
  }
  return choice;
}

// Registers the chosen waves as profiles (files in the project's profile folder) and copies those
// files into the output folder.
bool RegisterWaves(workbench::Workbench& bench, const RegisterChoice& choice, const std::string& outputDir) {
  if (!choice.Any()) return true;
  const workbench::RegisteredWaves registered = workbench::RegisterStudyWaves(bench, choice.Waves, choice.Ideal);
  for (const std::string& name : registered.FileNames) {
    fs::copy_file(fs::path(ProjectProfileFolder(bench.Session())) / name, fs::path(outputDir) / name,
                  fs::copy_options::overwrite_existing);
    std::printf("registered\t%s\n", name.c_str());
  }
  return registered.Ok;
}

int RunRepairCommand(const CommonOptions& common, const RepairOptions& o) {
  try {
    const RegisterChoice registerChoice = ParseRegister(o.Register);
    std::vector<KpAdjustment> adjustments;
    if (!o.Adjust.empty()) adjustments = ReadAdjustments(o.Adjust);
    auto session = OpenSession(common, o.Files, workbench::tab::Profile);
    if (!session) return 1;
    workbench::Workbench& bench = session->Bench;
    bench.MnuBunseki();
    bench.DispGrp = true;
    workbench::RepairTabInputs& in = FillForm(bench, o);
    // A fresh study: the typed values are the study's own, so the first split resets nothing.
    if (!getParam_補修形状検討_3波分解(bench.Session(), in.Form, in.Stored)) return 1;
    ApplyPlanRange(bench, o.PlanRange);
    for (int t = ThreeWave; t <= IdealShape; ++t) bench.SelectAll(t);

    if (!bench.Go(ThreeWave) || !bench.Go(workbench::tab::MediumWave)) return 1;
    if (!adjustments.empty()) {
      bool applied = false;
      try {
        applied = workbench::AddKpThicknessStudies(bench, o.Adjust, adjustments);
      } catch (const LegacyError& error) {
        throw InputError{error.what()};  // a KP beside the road is a fault of the file, as a bad line is
      }
      if (!applied) return 1;
    }
    if (!bench.Go(workbench::tab::ShortWave) || !bench.Go(IdealShape)) return 1;

    for (int row : bench.Selection(IdealShape)) {
      const ProfileRecord& record = bench.Profile(row);
      std::printf("%s\tIRI %.4f mm/m\tcorrected %.4f mm/m\tideal %.4f mm/m\n", ProfileList::NameOf(record).c_str(),
                  record.RepairStudy.ProfileIri.IriWholeProfile, ChosenOutcome(record).Corrected.Iri.IriWholeProfile,
                  record.RepairStudy.IdealShape.Iri.IriWholeProfile);
    }
    const std::tm now = LocalNow();
    bool ok = true;
    using Kind = RepairExportKind;
    const std::pair<Kind, int> kinds[] = {{Kind::ThreeWaveProfile, ThreeWave},
                                          {Kind::ThreeWaveIri, ThreeWave},
                                          {Kind::ShortWave, workbench::tab::ShortWave},
                                          {Kind::ShortWaveIri, workbench::tab::ShortWave},
                                          {Kind::IdealShape, IdealShape}};
    for (const auto& [kind, tab] : kinds)
      ok = !workbench::MakeRepairResultFiles(bench, {kind, false, tab}, now).Files.empty() && ok;
    ok = RegisterWaves(bench, registerChoice, common.OutputDir) && ok;
    return ok ? 0 : 1;
  } catch (const InputError& error) {
    std::fprintf(stderr, "velmora repair: %s\n", error.Text.c_str());
    return 2;
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
      cmd.add_option("--long", o->Long, "long-wave boundary, m: longer wavelengths make the L wave")
          ->capture_default_str();
      cmd.add_option("--short", o->Short, "short-wave boundary, m: shorter wavelengths make the S wave")
          ->capture_default_str();
      cmd.add_option("--length", o->Length, "IRI base length of the study, m")->capture_default_str();
      cmd.add_option("--lines", o->Lines,
                     "band reduction limits of the S wave for octaves 1..9, mm, as l1,...,l9 (an empty entry: "
                     "no limit; default none)");
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
