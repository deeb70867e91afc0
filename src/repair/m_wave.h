#pragma once
// Straightening of the middle wave: its crests are joined by straight lines (M'), within a plan range
// given in KP; the crests and troughs as the points of the plan; M' rebuilt from adjusted points.
#include <cstdint>
#include <vector>

#include "base/one_based.h"
#include "base/session.h"
#include "results/repair_types.h"
#include "results/wave_series.h"

namespace velmora {

// The plan range of a profile in KP, with the profile's own KP data.
struct PlanRange {
  bool Use = false;
  double StartKp = MWaveSeed;  // km; MWaveSeed: not given
  double EndKp = MWaveSeed;    // km; MWaveSeed: not given
  double FirstKp = 0;          // KP of sample 1, km
  double PitchM = 0;           // sample pitch, m (pitch/1000 is the spacing in km)
  std::int32_t KpSign = 0;     // 0: KP grows along the profile, 1: it falls
};

// The plan range as sample indices S <= E, and whether each end was given inside the profile.
struct PlanIndices {
  std::int32_t S = 1;
  std::int32_t E = 1;
  bool StartGiven = false;
  bool EndGiven = false;
};

// One crest or trough of M.
struct MWaveExtremum {
  std::int32_t Index = 0;  // 1..n
  double Value = 0;        // M there, mm
};

// Passes 1 and 2 on M[1..n] (mm): the signs, crests, counts and crest heights of every sample.
// With `withTroughs` 1 the troughs count as crests too.
Array1<MWaveRow> BuildMWaveRows(const Array1<double>& m, std::int32_t withTroughs);
// Pass 3: fills Rise in `rows` and returns the wave joined from crest to crest (mm, 1..n).
Array1<double> JoinCrests(const Array1<double>& m, Array1<MWaveRow>& rows);
// Pass 4: straight run-in from S to the first crest and run-out from the last crest to E; outside
// [S, E] the wave keeps M. A run-in or run-out of zero length raises division by zero.
Array1<double> ApplyPlanRange(const Array1<double>& m, const Array1<MWaveRow>& rows,
                              const Array1<double>& joined, const PlanIndices& plan);

// The plan range in sample indices for a profile of n samples. Ends not given or outside the
// profile are cut back to the profile's ends and then count as not given.
PlanIndices PlanRangeIndices(std::int32_t n, const PlanRange& plan);
bool set補修計画範囲情報(Session& session, std::int32_t n, const PlanRange& plan, PlanIndices& indices);

// M' of M[1..n] (mm) with its statistics into `out`. False after an error, which is in the log.
bool Cal_補修形状_M波の直線化(Session& session, std::int32_t n, const Array1<double>& m, std::int32_t withTroughs,
                              const PlanRange& plan, WaveSeries& out);

// The crests and the troughs of M[1..n], in ascending index.
bool Cal_補修形状_M波の山谷情報(Session& session, std::int32_t n, const Array1<double>& m, std::vector<MWaveExtremum>& crests,
                                std::vector<MWaveExtremum>& troughs);

// M rebuilt through the kept points (value + adjustment), ascending index, straight between
// neighbouring points; outside the first and last point it stays M. Duplicate indices raise division
// by zero.
Array1<double> RebuildFromPoints(const Array1<double>& m, std::vector<StudyPoint> points);
// The same into the study's MPrime with statistics, and its Recalculated flag set.
bool Cal_補修形状_M波の再計算(Session& session, const Array1<double>& m, const std::vector<StudyPoint>& points,
                              StudyTarget& target);

}  // namespace velmora
