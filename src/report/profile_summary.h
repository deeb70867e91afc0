#pragma once
// A one-line summary per profile of the main results: how long, how rough, and where the energy is.
#include <string>
#include <vector>

#include "profile/profile_record.h"

namespace velmora {

struct ProfileSummary {
  std::string Name;
  double LengthM = 0;        // (samples - 1) x pitch, m
  double PitchM = 0;         // m
  double WholeIri = 0;       // mm/m; the no value when not computed
  double MeanIri100 = 0;     // mm/m, mean over the 100 m fixed sections that carry a value, weighted by
                             // their sample counts; the no value when there is none
  int StrongestOctave = 0;   // 1..9, the band of largest standard deviation; 0 when not split
  double StrongestStdDev = 0;  // mm
};

// From the record's stored IRI, sections and octave split (nothing is computed here).
ProfileSummary SummarizeProfile(const ProfileRecord& record);

// A fixed-width text table: a head line, then one line per profile; values not computed show "-".
std::vector<std::string> SummaryTableLines(const std::vector<ProfileSummary>& rows);

}  // namespace velmora
