#pragma once
// Reduction of each octave band so that no half-wave exceeds its limit line, and the sum of the
// reduced bands: what a profile would look like with every band held within its limit.
#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "base/session.h"
#include "results/band_reduction_types.h"
#include "results/octave_types.h"
#include "results/wave_series.h"

namespace velmora {

struct BandReductionLines;

// The limit a blank or non-numeric line stands for, mm.
inline constexpr double NoLimit = 99999.0;

// The limit of one line text: trimmed, the value when numeric, NoLimit otherwise.
double BandLimitFromText(std::string_view text);

// Scales every half-wave of `wave` (mm; a run of samples of one sign, 0 counting as positive) whose
// peak |value| exceeds `limit` by limit/peak, so that its peak becomes the limit; a half-wave within
// the limit keeps its values exactly. outMin/outMax: extremes of the result (0 for an empty wave).
void ReduceHalfWaves(double limit, std::span<double> wave, double& outMin, double& outMax);

// Puts back `original` outside the range rangeStart..rangeEnd (1-based sample numbers), widened to the
// zero crossings of `reduced` that enclose it, so that no half-wave is cut in two. Both spans hold n
// samples; a range sample outside 1..n raises "subscript out of range".
void RestoreOutsideRange(std::span<const double> original, std::span<double> reduced,
                         std::int32_t rangeStart, std::int32_t rangeEnd);

// Reduces the real parts of bands.Band[1..9] (n samples each) against limits[1..9] (mm) into
// result.Reduced and sums all nine into result.Total. With useRange only the half-waves that meet
// rangeStart..rangeEnd stay reduced. Errors are logged under "Cal_バンド別低減" and give false.
bool Cal_バンド別低減(Session& session, const std::array<double, 10>& limits, std::int32_t n, const OctaveBandSet& bands,
                  BandReductionResult& result, bool useRange = false, std::int32_t rangeStart = 0,
                  std::int32_t rangeEnd = 0);

// The nine limits from the line texts of the controls ([1..9]) or from stored conditions, where the
// no value stands for an empty line.
std::array<double, 10> BandLimitsFromTexts(const std::array<std::string, 10>& lines);
std::array<double, 10> BandLimitsFromLines(const BandReductionLines& lines);

}  // namespace velmora
