#pragma once
// Decomposition of a profile into the nine wavelength octaves: a single pass (nine masks on one
// transform) or the peeling from the outside inwards with repeated passes.
#include <array>
#include <cstdint>

#include "analysis/fft_filter.h"
#include "base/one_based.h"
#include "base/session.h"
#include "results/analysis_block.h"
#include "results/octave_types.h"

namespace velmora {

struct ProfileRecord;

using OctaveBands = std::array<OctaveBand, 10>;

// One pass: folds source(1..n) out to length2 (length1, length2 from FftLength1/2 of n), one forward
// transform, then for each octave k the spectrum / length2 times masks[k] and an inverse transform
// (real: the masks are symmetric); bands[k] gets elements 1..n, extremes and statistics. Debug tables when
// writeDebug is not 0 and DebugLevel > 0, numbered by debugSeq (raised before each file).
// Errors are logged under the procedure's name; returns false then, with `bands` undefined.
bool Cal_プロファイル分解_単体処理(Session& session, std::int32_t writeDebug, std::int32_t& debugSeq, std::int32_t iteration,
                         std::int32_t n, std::int32_t length1, std::int32_t length2,
                         const OctaveMasks& masks, const Array1<double>& source, OctaveBands& bands);

// The peeling: stages s = 1..4 take the octave pairs (s, 10 − s) out of what is left, pass after pass,
// until the standard deviation of both stops shrinking by `limits.StdRatio` or `limits.MaxPasses` is
// reached; octave 5 is what remains. Without debug tables, the octaves between a stage's pair come back
// together through one transform. Reads the prepared profile of `block`, fills `bands` (only on
// success; errors are logged and give false). Progress goes to the session's display, which may stop
// it (Cancelled).
bool Cal_プロファイル分解_収束計算(Session& session, const AnalysisBlock& block, OctaveBands& bands,
                         const FilterConvergence& limits);

// The octave split of a registered profile, with LongSum and ShortSum from the settings lists.
// Prepares the profile first when that has not been done. Does nothing when the bands are valid for
// the same `converge` option, unless `force`. On failure the stored bands stay as they were.
// `limits` are those of ReadFilterConvergence, read by the caller.
bool DecomposeProfile(Session& session, ProfileRecord& record, bool converge, const FilterConvergence& limits,
                      bool force = false);

}  // namespace velmora
