#pragma once
// The IRI as a road manager reads it: the check of the evaluation length, the run over the selected
// profiles, and the fixed 10 m, 100 m and 200 m sections laid on the kilometre-post grid.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/fft_filter.h"
#include "base/session.h"
#include "profile/profile_record.h"
#include "results/iri_types.h"

namespace velmora {

// Checks the evaluation-length text (m) against every profile of the list: blank, not numeric, below
// the largest pitch, or above what the shortest response allows each show their warning ("警告") and
// give false. On success `value` holds the length.
bool CheckIriLength(Session& session, std::string_view text, std::span<ProfileRecord* const> list, double& value);

// The inputs of one IRI run of the IRI tab.
struct IriRunRequest {
  std::string LengthText;            // the evaluation-length box, m
  IriParams Params;                  // the tab's parameters; IriBaseLength is taken from LengthText
  bool SkipPartialSections = false;  // "評価区間長に満たない区間のIRI算出を" "しない"
  bool ConvergentBands = false;      // the octave tab's convergence option, for a missing band split
  FilterConvergence Limits;          // of that split
  // The nine band IRIs and their sums (which need the octave split); without them only the
  // profile's own response, windows and sections are computed.
  bool WithBands = true;
};

// Checks the length, then computes for each selected profile its response, window series, band
// windows and fixed sections, when the length changed since `lastLength` or the profile has no result
// yet; a missing octave split is made first. Returns false when the length was refused or an error
// went to the error log; `lastLength` keeps the last length run.
bool RunIri(Session& session, std::span<ProfileRecord* const> list, std::span<ProfileRecord* const> selected,
            const IriRunRequest& request, double& lastLength);

// The first grid line at or beyond `kp` (km; kNoValue counts as 0) in the direction of travel, for
// sections of `sectionLength` m (10, 100 or 200; the 200 m grid lies on even hundreds). `count` is the
// number of samples at pitch dx (m) from the first sample up to that line, both ends included.
void NextSectionBoundary(double kp, double dx, std::int32_t sectionLength, bool backwards, double& boundaryKp,
                         std::int32_t& count);

// Fills `result` with one point per sample (KP and the caller's `values`) and the 10 m, 100 m and
// 200 m section tables of the signed `response` (mm/m; responseCount elements): mean |response| per
// section of evalLength m, merged into 100 m and 200 m units weighted by sample count.
void CalcFixedSections(double kpStart, double dx, bool backwards, double evalLength, std::int32_t pointCount,
                       std::span<const double> values, std::int32_t responseCount,
                       std::span<const double> response, bool skipPartialSections, SectionIri& result);

// The three section tables as CSV lines (KP "0.00000", IRI "0.00000000").
std::vector<std::string> SectionTableLines(const SectionIri& sections);

}  // namespace velmora
