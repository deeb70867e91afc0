#include "analysis/iri_sections.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include <fmt/format.h>

#include "analysis/debug_table.h"
#include "analysis/iri.h"
#include "analysis/octave.h"
#include "base/common.h"
#include "base/error_log.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/number_helpers.h"
#include "base/user_interaction.h"
#include "profile/profile_list.h"

namespace velmora {
namespace {

constexpr double kKpTolerance = 1e-9;  // km

// A number as the program writes it into a message: up to 15 significant digits, no trailing zeros.
std::string NumberText(double value) { return fmt::format("{:.15G}", value); }

void Warn(Session& session, const std::string& text) { session.Ui().Inform(text, "警告"); }

// Mean |response(i)| over i = first..last, counting elements past the response's end as 0: the
// response is shorter than the points by the slope base, and those samples add nothing.
double AbsoluteSum(std::span<const double> response, std::int32_t responseCount, std::int32_t first,
                   std::int32_t last) {
  const std::int32_t end = std::min({last, responseCount, static_cast<std::int32_t>(response.size())});
  double sum = 0;
  for (std::int32_t i = std::max(first, 1); i <= end; ++i) sum += std::fabs(response[static_cast<std::size_t>(i - 1)]);
  return sum;
}

bool Reaches(double kp, double boundaryKp, bool backwards) {
  return backwards ? kp <= boundaryKp + kKpTolerance : kp >= boundaryKp - kKpTolerance;
}

// Merges the 10 m entries into units that close at `members` entries spanning exactly unitKm; the first
// unit runs up to the entry reaching `boundaryKp`. A unit stands at the slot of its last member.
void MergeSections(const Array1<SectionEntry>& sec10, double boundaryKp, int members, double unitKm,
                   bool backwards, bool skipPartialSections, Array1<SectionEntry>& units) {
  units.assign_zero(sec10.size());
  for (auto& unit : units) unit.Iri = kNoValue;
  bool firstUnit = true;
  double sum = 0;
  std::int32_t count = 0, memberCount = 0, lastSlot = 0;
  SectionEntry open;
  auto close = [&](std::int32_t slot, std::int16_t partial, bool keepValue) {
    open.Count = count;
    open.Iri = keepValue ? sum / count : kNoValue;
    open.Partial = partial;
    units[slot] = open;
    sum = 0;
    count = memberCount = 0;
    firstUnit = false;
  };
  for (std::ptrdiff_t j = 1; j <= sec10.size(); ++j) {
    const SectionEntry& member = sec10[j];
    if (member.Count == 0) continue;  // a slot left free by a skipped short section
    if (memberCount == 0) {
      open = SectionEntry{};
      open.KpFrom = member.KpFrom;
      open.Index = member.Index;
    }
    sum += std::fabs(member.Iri) * member.Count;
    count += member.Count;
    ++memberCount;
    open.KpTo = member.KpTo;
    lastSlot = static_cast<std::int32_t>(j);
    if (firstUnit) {
      if (Reaches(member.KpTo, boundaryKp, backwards)) close(lastSlot, -1, !skipPartialSections);
    } else if (memberCount == members &&
               std::fabs(std::fabs(member.KpTo - open.KpFrom) - unitKm) < kKpTolerance) {
      close(lastSlot, 0, true);
    }
  }
  // What is left is the short last unit, or a first unit that never reached its border.
  if (memberCount > 0 && (firstUnit || !skipPartialSections)) close(lastSlot, -1, !skipPartialSections);
}

std::string IriCell(const SectionEntry& entry) {
  return IsNoValue(entry.Iri) ? std::string() : FormatNumber(entry.Iri, "0.00000000");
}

std::string EntryHead(std::ptrdiff_t number, const SectionEntry& entry) {
  return std::to_string(number) + "," + FormatNumber(entry.KpFrom, "0.00000") + "," +
         FormatNumber(entry.KpTo, "0.00000") + "," + std::to_string(entry.Index) + "," +
         std::to_string(entry.Count);
}

// The units of one merged table, numbered in order.
void AppendUnitTable(const Array1<SectionEntry>& units, std::vector<std::string>& lines) {
  std::ptrdiff_t number = 0;
  for (const SectionEntry& unit : units)
    if (!IsNoValue(unit.Iri)) lines.push_back(EntryHead(++number, unit) + "," + IriCell(unit));
}

}  // namespace

bool CheckIriLength(Session& session, std::string_view text, std::span<ProfileRecord* const> list, double& value) {
  double largestPitch = 0, lastPitch = 0;
  std::int32_t smallestUsable = std::numeric_limits<std::int32_t>::max();
  const ProfileRecord* shortest = nullptr;
  for (const ProfileRecord* profile : list) {
    const double pitch = 1.0 / profile->SamplesPerMetre;
    const std::int32_t usable = profile->WorkCount - IriBaseSamples(kIriSlopeBaseLength, pitch);
    largestPitch = std::max(largestPitch, pitch);
    if (usable < smallestUsable) shortest = profile;
    smallestUsable = std::min(smallestUsable, usable);
    lastPitch = pitch;
  }
  const std::string trimmed = Trim(text);
  if (trimmed.empty()) {
    Warn(session, "IRIの評価値が指定されていません。");
    return false;
  }
  const auto parsed = ParseNumber(trimmed);
  if (!IsNumeric(trimmed) || !parsed) {
    Warn(session, "IRIの評価値は数値で指定して下さい。");
    return false;
  }
  if (*parsed < largestPitch) {
    Warn(session, NumberText(largestPitch) + " 以上で指定して下さい。");
    return false;
  }
  // The shortest profile's count times the last profile's pitch: only differs with mixed pitches.
  const double limit = (static_cast<double>(smallestUsable) - 1) * lastPitch;
  if (shortest && limit < largestPitch) {
    // No length would do: say which profile is too short rather than ask for a negative length.
    Warn(session, fmt::format("プロファイルが短すぎて IRI を計算できません ({} サンプル)。\r\n\r\nファイル名：{}",
                              shortest->WorkCount, shortest->FileName));
    return false;
  }
  if (!list.empty() && *parsed > limit) {
    Warn(session, NumberText(limit) + " 以下で指定して下さい。");
    return false;
  }
  value = *parsed;
  return true;
}

bool RunIri(Session& session, std::span<ProfileRecord* const> list, std::span<ProfileRecord* const> selected,
            const IriRunRequest& request, double& lastLength) {
  double length = 0;
  if (!CheckIriLength(session, request.LengthText, list, length)) return false;
  auto needsResponse = [&](const ProfileRecord& profile) {
    return length != lastLength || !profile.Analysis.Iri.IriWindowWave.Calculated;
  };
  // The band split comes first: it shows its own progress, which must not close ours.
  for (ProfileRecord* profile : selected)
    if (request.WithBands && needsResponse(*profile) && !DecomposeProfile(session, *profile, request.ConvergentBands, request.Limits)) return false;

  return Guarded(session, "basIRI", "RunIri", [&] {
    const DebugTables debug = DebugTablesOf(session);
    ProgressScope display(session.Ui(), "ＩＲＩ計算", "しばらくお待ちください。");
    IriParams params = request.Params;
    if (QuarterCarIsSingular(params))
      session.Ui().Message("Singular matrix", "", MsgIcon::None, MsgButtons::Ok, MsgAnswer::Ok);
    params.IriBaseLength = length;
    for (std::size_t i = 0; i < selected.size(); ++i) {
      ProfileRecord& profile = *selected[i];
      AnalysisBlock& block = profile.Analysis;
      if (needsResponse(profile)) CalcIriProfile(debug, block, params, request.WithBands);
      // The sections are cheap and follow the short-section option, so they are always laid anew.
      CalcFixedSections(profile.Erd.KpStart, 1.0 / block.SamplesPerMetre, profile.Erd.KpSign == 1, length,
                        block.Count, block.Profile.Values.span(), block.Iri.IriResponseCount,
                        block.Iri.IriResponseWave.span(), request.SkipPartialSections, block.Sections);
      if (debug.On)
        WriteDebugTable(debug, "IRI_Sections(" + ProfileList::NameOf(profile) + ").csv", SectionTableLines(block.Sections));
      ReportProgress(session.Ui(), static_cast<int>(100 * (i + 1) / selected.size()));
    }
    lastLength = length;
  });
}

void NextSectionBoundary(double kp, double dx, std::int32_t sectionLength, bool backwards, double& boundaryKp,
                         std::int32_t& count) {
  if (IsNoValue(kp)) kp = 0;
  const double m = kp * 1000;
  const double p = Kiriage(Kiriage(m / dx)) * dx;
  const double g = sectionLength == 10 ? 10.0 : 100.0;
  const double q = Int(m / g);
  double t;
  if (std::fabs(q * g - m) < 1e-9)
    t = Int(m);
  else
    t = backwards ? q * g : (q + 1) * g;
  if (sectionLength == 200) {
    std::int32_t c = CLng(t / 100);
    if (c % 2 != 0) c += backwards ? -1 : 1;
    t = c * 100.0;
  }
  boundaryKp = t / 1000;
  count = CLng(std::fabs(boundaryKp * 1000 - p) / dx + 1.0);
}

void CalcFixedSections(double kpStart, double dx, bool backwards, double evalLength, std::int32_t pointCount,
                       std::span<const double> values, std::int32_t responseCount,
                       std::span<const double> response, bool skipPartialSections, SectionIri& result) {
  const double sign = backwards ? -1.0 : 1.0;
  const double kmPerSample = dx / 1000 * sign;
  result = SectionIri{};
  const double kp0 = IsNoValue(kpStart) ? 0.0 : kpStart;
  if (static_cast<std::ptrdiff_t>(values.size()) < pointCount)
    RaiseSubscriptOutOfRange("IRI sections: " + std::to_string(pointCount) + " points, " +
                             std::to_string(values.size()) + " values");
  const std::int32_t perSection = IntLong(evalLength / dx + 0.5);
  if (perSection < 1)
    throw LegacyError(ErrorNumber::InvalidData, "IRI sections of " + NumberText(evalLength) +
                                                    " m at a pitch of " + NumberText(dx) + " m hold no sample");

  result.KpStart = kp0;
  result.KpStep = dx * sign;
  result.PointCount = pointCount;
  result.Points.assign_zero(pointCount);
  double running = kp0;
  for (std::int32_t i = 1; i <= pointCount; ++i) {
    SectionPoint& point = result.Points[i];
    point.Kp = running;
    point.KpNext = running + kmPerSample;
    point.Value = values[static_cast<std::size_t>(i - 1)];
    running = point.KpNext;
  }

  double b10 = 0, b100 = 0, b200 = 0;
  std::int32_t c10 = 0, c100 = 0, c200 = 0;
  NextSectionBoundary(kp0, dx, 10, backwards, b10, c10);
  NextSectionBoundary(kp0, dx, 100, backwards, b100, c100);
  NextSectionBoundary(kp0, dx, 200, backwards, b200, c200);

  // Full sections start at c10, c10 + W, ... while the start lies on the profile; the last such start
  // begins the short tail, so the sample on each border is counted on both sides of it.
  std::int32_t fullSections = 0, lastStart = c10, tailCount = 0;
  if (c10 <= pointCount) {
    fullSections = (pointCount - c10) / perSection;
    lastStart = c10 + fullSections * perSection;
    if (!skipPartialSections && lastStart < pointCount) tailCount = pointCount - lastStart + 1;
  } else {
    c10 = pointCount;  // a profile that ends before the first border is one short section
  }
  result.SectionCount = 1 + fullSections + (tailCount > 0 ? 1 : 0);
  result.Sec10.assign_zero(result.SectionCount);
  for (auto& entry : result.Sec10) entry.Iri = kNoValue;

  std::int32_t slot = 1;
  SectionEntry first{c10, kp0, kp0 + kmPerSample * c10, AbsoluteSum(response, responseCount, 1, c10) / c10, 1, -1};
  if (!skipPartialSections) result.Sec10[slot++] = first;
  double kpEnd = first.KpTo;
  for (std::int32_t k = 0; k < fullSections; ++k) {
    const std::int32_t start = c10 + k * perSection;
    const double sum = AbsoluteSum(response, responseCount, start, start + perSection - 1);
    result.Sec10[slot++] = {perSection, kpEnd, kpEnd + kmPerSample * perSection, sum / perSection, start, 0};
    kpEnd = result.Sec10[slot - 1].KpTo;
  }
  if (tailCount > 0) {
    // Summed up to the end of the response but divided by the samples of the points: low by design.
    const double sum = AbsoluteSum(response, responseCount, lastStart, responseCount);
    result.Sec10[slot] = {tailCount, kpEnd, kpEnd + kmPerSample * tailCount, sum / tailCount, lastStart, -1};
  }

  MergeSections(result.Sec10, b100, 10, 0.1, backwards, skipPartialSections, result.Sec100);
  MergeSections(result.Sec10, b200, 20, 0.2, backwards, skipPartialSections, result.Sec200);
}

std::vector<std::string> SectionTableLines(const SectionIri& sections) {
  std::vector<std::string> lines{"<< 10m固定（合計）>>",
                                 "No,KP(自),KP(至),Index,データ件数,IRI(10m固定),IRI(100m固定),IRI(200m固定)"};
  for (std::ptrdiff_t j = 1; j <= sections.Sec10.size(); ++j) {
    const SectionEntry& entry = sections.Sec10[j];
    lines.push_back(EntryHead(j, entry) + "," + IriCell(entry) + "," + IriCell(sections.Sec100.at(j)) + "," +
                    IriCell(sections.Sec200.at(j)));
  }
  lines.push_back("<< 100m固定（合計）>>");
  lines.push_back("No,KP(自),KP(至),Index,データ件数,IRI(100m固定)");
  AppendUnitTable(sections.Sec100, lines);
  lines.push_back("<< 200m固定 >>");
  lines.push_back("No,KP(自),KP(至),Index,データ件数,IRI(200m固定)");
  AppendUnitTable(sections.Sec200, lines);
  return lines;
}

}  // namespace velmora
