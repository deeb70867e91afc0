#include "iri_pair.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include <fmt/format.h>

#include "analysis/pair_roughness.h"
#include "base/legacy_format.h"
#include "base/path_helpers.h"
#include "base/text_encoding.h"
#include "messages.h"
#include "profile/profile_list.h"

namespace velmora::cli {
namespace {

bool IsFile(const std::string& argument) { return std::filesystem::is_regular_file(argument); }

// A pair member given as a file stands for the profile that file registered.
std::string ProfileNameOf(const std::string& argument) {
  return IsFile(argument) ? flGetFileNameNonExt(argument) : argument;
}

}  // namespace

std::vector<std::string> WithPairFiles(std::vector<std::string> files, const std::vector<std::string>& pair) {
  for (const std::string& member : pair)
    if (IsFile(member) && std::find(files.begin(), files.end(), member) == files.end()) files.push_back(member);
  return files;
}

int ReportIriPair(CommandSession& session, const std::vector<std::string>& pair, double evalLength, bool skipPartial) {
  RunContext& run = session.Run;
  const ProfileList& list = session.Bench.List();
  std::vector<const ProfileRecord*> paths;
  for (const std::string& member : pair) {
    const std::int32_t row = list.Find(ProfileNameOf(member));
    if (row == 0) {
      PrintProblem(run, "--pair", Tr("\"{}\" is neither a file nor a profile among the files", member));
      return kExitUsage;
    }
    paths.push_back(&list.Items[row]);
  }
  const AnalysisBlock& left = paths[0]->Analysis;
  const AnalysisBlock& right = paths[1]->Analysis;
  const double dx = 1.0 / left.SamplesPerMetre;
  // The half car averages the two paths sample by sample, so the samples must stand at one pitch.
  if (std::abs(left.SamplesPerMetre - right.SamplesPerMetre) > 1e-9 * left.SamplesPerMetre) {
    PrintProblem(run, "--pair", Tr("the two profiles differ in pitch: {} m and {} m", FormatNumber(dx, "0.000000"),
                                   FormatNumber(1.0 / right.SamplesPerMetre, "0.000000")));
    return kExitFailed;
  }
  PairRequest request;
  request.Params = session.Engine.CurrentConditions.Iri;
  request.EvalLength = evalLength;
  request.SkipPartialSections = skipPartial;
  request.KpStart = paths[0]->Erd.KpStart;
  request.Backwards = paths[0]->Erd.KpSign == 1;
  const PairRoughness result =
      CalcPairRoughness(left.Profile.Values.span().first(left.Count), right.Profile.Values.span().first(right.Count), dx, request);

  const std::string leftName = ProfileList::NameOf(*paths[0]), rightName = ProfileList::NameOf(*paths[1]);
  run.Say(fmt::format("{} + {}\tMRI {:.4f} mm/m\tHRI {:.4f} mm/m", leftName, rightName, result.Mri, result.Hri));
  run.Result({{"left", leftName}, {"right", rightName}, {"samples", result.Samples}, {"mri_mm_per_m", result.Mri},
              {"hri_mm_per_m", result.Hri}});
  const std::string name =
      fmt::format("{}_{}_MRI_HRI_{}.CSV", leftName, rightName, FormatDateTime(run.Stamp, "YYYYMMDDHHNNSS"));
  WriteSystemTextFile(run.Staging() / name, PairRoughnessLines(result));
  return kExitOk;
}

}  // namespace velmora::cli
