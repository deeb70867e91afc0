#pragma once
// The preparation every frequency-domain analysis of a profile starts from.
#include <cstdint>

#include "base/one_based.h"
#include "base/session.h"
#include "results/analysis_block.h"

namespace velmora {

struct ProfileRecord;

// Fills the preparation fields of `block` from `profile` (mm, 1..n) at `pitch` (m): samples per
// metre, the count, the WaveSeries copy and FftLength1/FftLength2; drops the octave masks of an
// earlier preparation and marks the octave and PSD results stale. Writes "BandFilter.dat" and
// "Profile.csv" at DebugLevel > 0.
// n >= 1, pitch > 0 and profile.size() >= n, else LegacyError naming what is wrong.
void PrepareAnalysis(const DebugTables& debug, AnalysisBlock& block, std::int32_t n, const Array1<double>& profile, double pitch);

// The ten octave masks of the prepared block, made on first use: only the band splits need them,
// and at FftLength2 bytes each they would cost every other analysis their time and memory.
void EnsureOctaveMasks(AnalysisBlock& block);

// The same for a registered profile: WorkProfile, WorkCount and the ERD pitch of `record`.
void PrepareProfile(const DebugTables& debug, ProfileRecord& record);

}  // namespace velmora
