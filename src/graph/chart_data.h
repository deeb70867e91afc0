#pragma once
// What the charts read from a profile record: its pitch and length, its 1-based series as spans, and
// where its IRI window values lie along it.
#include <span>

#include "profile/profile_record.h"

namespace velmora::graph {

// Pitch in m.
double PitchOf(const ProfileRecord& profile);
// Distance from the first sample to the last, m (at least one pitch).
double ProfileLength(const ProfileRecord& profile);
// Elements 1..count (or as many as there are) as a span.
std::span<const double> Samples(const Array1<double>& values, std::ptrdiff_t count);
std::span<const double> Samples(const WaveSeries& wave);
// Distance (m) of the first IRI window value: each value stands at the end of its window, and the
// windows start after the responses' base length, so value k is at this + (k - 1) pitches.
double FirstIriWindowAt(const ProfileRecord& profile);

}  // namespace velmora::graph
