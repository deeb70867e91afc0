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

std::optional<PairRows> FindIriPair(CommandSession& session, const std::vector<std::string>& pair, int& status) {
  RunContext& run = session.Run;
  const ProfileList& list = session.Bench.List();
  PairRows rows{};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i] = list.Find(ProfileNameOf(pair.at(i)));
    if (rows[i] == 0) {
      PrintProblem(run, "--pair", Tr("\"{}\" is neither a file nor a profile among the files", pair[i]));
      status = kExitUsage;
      return std::nullopt;
    }
  }
  // The half car averages the two paths sample by sample, so the samples must stand at one pitch.
  const double left = list.Items[rows[0]].SamplesPerMetre, right = list.Items[rows[1]].SamplesPerMetre;
  if (std::abs(left - right) > 1e-9 * left) {
    PrintProblem(run, "--pair", Tr("the two profiles differ in pitch: {} m and {} m", FormatNumber(1.0 / left, "0.000000"),
                                   FormatNumber(1.0 / right, "0.000000")));
    status = kExitFailed;
    return std::nullopt;
  }
  return rows;
}

void ReportIriPair(CommandSession& session, const PairRows& rows, double evalLength, bool skipPartial) {
  RunContext& run = session.Run;
  const ProfileRecord& leftPath = session.Bench.List().Items[rows[0]];
  const ProfileRecord& rightPath = session.Bench.List().Items[rows[1]];
  const AnalysisBlock& left = leftPath.Analysis;
  const AnalysisBlock& right = rightPath.Analysis;
  PairRequest request;
  request.Params = session.Engine.CurrentConditions.Iri;
  request.EvalLength = evalLength;
  request.SkipPartialSections = skipPartial;
  request.KpStart = leftPath.Erd.KpStart;
  request.Backwards = leftPath.Erd.KpSign == 1;
  const PairRoughness result = CalcPairRoughness(left.Profile.Values.span().first(left.Count),
                                                 right.Profile.Values.span().first(right.Count),
                                                 1.0 / left.SamplesPerMetre, request);

  const std::string leftName = ProfileList::NameOf(leftPath), rightName = ProfileList::NameOf(rightPath);
  run.Say(fmt::format("{} + {}\tMRI {:.4f} mm/m\tHRI {:.4f} mm/m", leftName, rightName, result.Mri, result.Hri));
  run.Result({{"left", leftName}, {"right", rightName}, {"samples", result.Samples}, {"mri_mm_per_m", result.Mri},
              {"hri_mm_per_m", result.Hri}});
  const std::string name =
      fmt::format("{}_{}_MRI_HRI_{}.CSV", leftName, rightName, FormatDateTime(run.Stamp, "YYYYMMDDHHNNSS"));
  WriteSystemTextFile(run.Staging() / name, PairRoughnessLines(result));
}

}  // namespace velmora::cli
