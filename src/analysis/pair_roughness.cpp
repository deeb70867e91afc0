#include "analysis/pair_roughness.h"

#include <algorithm>

#include "analysis/iri.h"
#include "analysis/iri_sections.h"
#include "base/common.h"
#include "base/legacy_format.h"
#include "results/iri_types.h"

namespace velmora {
namespace {

// The IRI tab's section tables of one path: its response laid on the KP grid.
SectionIri SectionsOf(std::span<const double> profile, double dx, const PairRequest& request) {
  std::vector<double> response(profile.begin(), profile.end());
  auto n = static_cast<std::int32_t>(response.size());
  IriParams p = request.Params;
  IriResponse(response, n, dx, kIriSlopeBaseLength, 1.0, p.InitFilter, p.KtMs, p.KsMs, p.CsMs, p.MuMs, p.Speed);
  SectionIri sections;
  CalcFixedSections(request.KpStart, dx, request.Backwards, request.EvalLength, static_cast<std::int32_t>(profile.size()),
                    profile, n, response, request.SkipPartialSections, sections);
  return sections;
}

// The entries of one table that carry a value; the three paths share the grid, so their entries
// stand at the same slots.
std::vector<PairSection> PairTable(const Array1<SectionEntry>& left, const Array1<SectionEntry>& right,
                                   const Array1<SectionEntry>& half) {
  std::vector<PairSection> table;
  for (std::ptrdiff_t j = 1; j <= left.size(); ++j) {
    const SectionEntry& entry = left[j];
    if (IsNoValue(entry.Iri)) continue;
    PairSection section;
    section.Index = entry.Index;
    section.Count = entry.Count;
    section.KpFrom = entry.KpFrom;
    section.KpTo = entry.KpTo;
    section.Left = entry.Iri;
    section.Right = right.at(j).Iri;
    section.Mri = (section.Left + section.Right) / 2;
    section.Hri = half.at(j).Iri;
    section.Partial = entry.Partial != 0;
    table.push_back(section);
  }
  return table;
}

std::string PairLine(const std::string& head, double left, double right, double mri, double hri) {
  return head + "," + FormatNumber(left, "0.00000000") + "," + FormatNumber(right, "0.00000000") + "," +
         FormatNumber(mri, "0.00000000") + "," + FormatNumber(hri, "0.00000000");
}

}  // namespace

std::vector<double> HalfCarProfile(std::span<const double> left, std::span<const double> right) {
  const std::size_t n = std::min(left.size(), right.size());
  std::vector<double> half(n);
  for (std::size_t i = 0; i < n; ++i) half[i] = (left[i] + right[i]) / 2;
  return half;
}

PairRoughness CalcPairRoughness(std::span<const double> left, std::span<const double> right, double dx,
                                const PairRequest& request) {
  const std::size_t n = std::min(left.size(), right.size());
  left = left.first(n);
  right = right.first(n);
  const std::vector<double> half = HalfCarProfile(left, right);
  PairRoughness pair;
  pair.Samples = static_cast<std::int32_t>(n);
  pair.LeftIri = IriOfArray(pair.Samples, left, dx, request.Params);
  pair.RightIri = IriOfArray(pair.Samples, right, dx, request.Params);
  pair.Mri = (pair.LeftIri + pair.RightIri) / 2;
  pair.Hri = IriOfArray(pair.Samples, half, dx, request.Params);

  const SectionIri l = SectionsOf(left, dx, request), r = SectionsOf(right, dx, request), h = SectionsOf(half, dx, request);
  pair.Sections[0] = PairTable(l.Sec10, r.Sec10, h.Sec10);
  pair.Sections[1] = PairTable(l.Sec100, r.Sec100, h.Sec100);
  pair.Sections[2] = PairTable(l.Sec200, r.Sec200, h.Sec200);
  return pair;
}

std::vector<std::string> PairRoughnessLines(const PairRoughness& pair) {
  std::vector<std::string> lines{"区間,No,KP(自),KP(至),Index,データ件数,IRI(左),IRI(右),MRI,HRI"};
  lines.push_back(PairLine("全区間,,,,1," + std::to_string(pair.Samples), pair.LeftIri, pair.RightIri, pair.Mri, pair.Hri));
  constexpr const char* kTables[] = {"10m固定", "100m固定", "200m固定"};
  for (std::size_t t = 0; t < pair.Sections.size(); ++t) {
    int number = 0;
    for (const PairSection& s : pair.Sections[t])
      lines.push_back(PairLine(std::string(kTables[t]) + "," + std::to_string(++number) + "," +
                                   FormatNumber(s.KpFrom, "0.00000") + "," + FormatNumber(s.KpTo, "0.00000") + "," +
                                   std::to_string(s.Index) + "," + std::to_string(s.Count),
                               s.Left, s.Right, s.Mri, s.Hri));
  }
  return lines;
}

}  // namespace velmora
