#pragma once
// The sliding-window IRI: the power mean of a response series over a window that moves one sample at
// a time. Kept apart from the profile layer so that it works on any plain series.
#include <cstdint>
#include <span>
#include <vector>

namespace velmora {

// Power mean (mean of |r(j)|^p over j = 1..count)^(1/p) of a signed response (mm/m), p = 1 or 2.
// count >= 1 and r.size() >= count.
double IriPowerMean(std::span<const double> r, std::int32_t count, int power);

// Window values t(i) = (mean of |r(j)|^p over j = i..i + firstEnd - 1)^(1/p) for i = 1, 2, ..., the
// first window always taken and the last one ending at element `count`. Returns t(1..m),
// m = max(1, count - firstEnd + 1), then zeros up to `atLeast` values: a caller that keeps a longer
// series gets it without a second array.
// firstEnd >= 1; r must hold at least max(count, firstEnd) elements, otherwise
// LegacyError(SubscriptOutOfRange) is raised.
//
// Runs in O(count) with a compensated running sum that is recomputed from scratch at regular
// intervals, so that each value stays within 1e-12 relative of the sum taken window by window.
std::vector<double> SlidingWindowIri(std::span<const double> r, std::int32_t count,
                                     std::int32_t firstEnd, int power, std::int32_t atLeast = 0);

}  // namespace velmora
