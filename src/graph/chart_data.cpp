#include "graph/chart_data.h"

#include <algorithm>
#include <cmath>

namespace velmora::graph {

double PitchOf(const ProfileRecord& profile) {
  return profile.SamplesPerMetre > 0 ? 1.0 / profile.SamplesPerMetre : profile.Erd.StepSize;
}

double ProfileLength(const ProfileRecord& profile) {
  return std::fmax(PitchOf(profile), (profile.WorkCount - 1) * PitchOf(profile));
}

std::span<const double> Samples(const Array1<double>& values, std::ptrdiff_t count) {
  const std::ptrdiff_t n = std::min<std::ptrdiff_t>(count, values.size());
  return n <= 0 ? std::span<const double>{} : std::span<const double>(&values[1], static_cast<std::size_t>(n));
}

std::span<const double> Samples(const WaveSeries& wave) { return Samples(wave.Values, wave.Values.size()); }

double FirstIriWindowAt(const ProfileRecord& profile) {
  // Window values m = responses - window + 1, responses = samples - base: the first window ends at
  // sample base + window = samples - m + 1, whose distance is (samples - m) pitches.
  return (profile.WorkCount - profile.Analysis.Iri.IriWindowCount) * PitchOf(profile);
}

}  // namespace velmora::graph
