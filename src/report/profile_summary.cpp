#include "report/profile_summary.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/common.h"
#include "profile/profile_list.h"

namespace velmora {
namespace {

std::string Cell(double value, int decimals) {
  return IsNoValue(value) ? std::string("-") : fmt::format("{:.{}f}", value, decimals);
}

}  // namespace

ProfileSummary SummarizeProfile(const ProfileRecord& record) {
  ProfileSummary s;
  s.Name = ProfileList::NameOf(record);
  s.PitchM = record.Erd.StepSize;
  s.LengthM = std::max(record.WorkCount - 1, 0) * record.Erd.StepSize;
  const AnalysisBlock& block = record.Analysis;
  s.WholeIri = block.Iri.IriWholeProfile;

  // Weighted by the samples of each section, so that a short first or last piece of the KP grid
  // counts for its length only.
  double sum = 0;
  double samples = 0;
  for (const SectionEntry& entry : block.Sections.Sec100)
    if (!IsNoValue(entry.Iri) && entry.Count > 0) {
      sum += entry.Iri * entry.Count;
      samples += entry.Count;
    }
  s.MeanIri100 = samples > 0 ? sum / samples : kNoValue;

  if (block.Octave.Calculated)
    for (std::size_t k = 1; k <= 9; ++k) {
      const double deviation = block.Octave.Band[k].Stats.StdDev;
      // The first of equal deviations is kept.
      if (s.StrongestOctave == 0 || deviation > s.StrongestStdDev) {
        s.StrongestOctave = static_cast<int>(k);
        s.StrongestStdDev = deviation;
      }
    }
  return s;
}

std::vector<std::string> SummaryTableLines(const std::vector<ProfileSummary>& rows) {
  std::size_t nameWidth = 7;
  for (const ProfileSummary& row : rows) nameWidth = std::max(nameWidth, CharLength(row.Name));
  // Japanese names take two columns on a terminal; padding counts characters, which is near enough.
  auto padded = [nameWidth](const std::string& name) {
    return name + std::string(nameWidth - std::min(nameWidth, CharLength(name)), ' ');
  };
  std::vector<std::string> lines;
  lines.push_back(padded("Profile") +
                  "  Length(m)  Pitch(m)  IRI(mm/m)  IRI100m-mean(mm/m)  Strongest octave (SD mm)");
  for (const ProfileSummary& row : rows) {
    const std::string octave = row.StrongestOctave == 0
                                   ? std::string("-")
                                   : fmt::format("OCT-{} ({:.3f})", row.StrongestOctave, row.StrongestStdDev);
    lines.push_back(fmt::format("{}  {:>9}  {:>8}  {:>9}  {:>18}  {}", padded(row.Name), Cell(row.LengthM, 2),
                                Cell(row.PitchM, 3), Cell(row.WholeIri, 3), Cell(row.MeanIri100, 3), octave));
  }
  return lines;
}

}  // namespace velmora
