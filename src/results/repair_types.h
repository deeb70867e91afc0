#pragma once
// Records of the repair-shape study: the three-wave split of a profile, the work rows of the M-wave
// straightening, the named studies of a profile and the study's results up to the ideal shape.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "base/common.h"
#include "results/wave_series.h"

namespace velmora {

// "No value" of the study's double fields and of the plan's KP fields; always compared exactly.
inline constexpr double MWaveSeed = -99999.0;

// L, M and S waves of one profile (mm, 1..n, the profile's length) with their statistics in each
// WaveSeries, and the boundaries (m) they were made with.
struct ThreeWaveSplit {
  WaveSeries LongWave;    // wavelengths longer than LongBoundary
  WaveSeries MiddleWave;  // between the boundaries
  WaveSeries ShortWave;   // shorter than ShortBoundary
  double LongBoundary = 0;
  double ShortBoundary = 0;
  bool Valid = false;     // current until a boundary, the IRI length or a band line changes
};

// Sign of the difference to a neighbour, as the debug table prints it; None where there is no neighbour.
enum class MWaveSign : char { None = '\0', Equal = '=', Plus = '+', Minus = '-' };

// Work record of one sample of the straightening.
struct MWaveRow {
  MWaveSign JudgeDown = MWaveSign::None;  // sign of M[i] - M[i-1]
  MWaveSign JudgeUp = MWaveSign::None;    // sign of M[i] - M[i+1]
  double Crest = MWaveSeed;               // M[i] where the sample is a crest
  std::int32_t CountDown = -1;            // samples since the last crest behind
  std::int32_t CountUp = -1;              // samples to the next crest ahead
  double StartHeight = MWaveSeed;         // height of the crest behind
  double EndHeight = MWaveSeed;           // height of the crest ahead
  double Rise = MWaveSeed;                // EndHeight - StartHeight
};

// One point of a study's point table: a crest or trough of M with the user's change of thickness.
struct StudyPoint {
  std::int32_t Index = 0;     // sample index, 1..n
  double Value = MWaveSeed;   // M' at the point (mm); MWaveSeed leaves the point out
  double Adjust = 0;          // thickness change the user gave, mm
  std::uint8_t Flag = 0;      // kPointTrough, kPointExcluded
};

// Bits of a study's flag byte, one byte per point.
inline constexpr std::uint8_t kPointTrough = 0x01;    // the point is a trough (else a crest)
inline constexpr std::uint8_t kPointExcluded = 0x02;  // the user took the point out of the line

// A study wave with its statistics (in Wave) and its IRI over the whole wave. The octave splits and
// window IRI of the study's waves are made again when a file shows them: kept for every wave they
// would hold a long profile many times over.
struct StudyWave {
  WaveSeries Wave;
  double IriWholeProfile = kNoValue;  // mm/m, with the study's IRI parameters
};

// What an M' wave gives: M' itself, the profile with only the middle wave repaired (S + M' + L), and
// the middle wave M'' of that profile split again.
struct MWaveOutcome {
  StudyWave MPrime;
  StudyWave Corrected;
  WaveSeries CorrectedMiddle;
};

// What S' was reduced with, so that its bands can be made again: the nine limits (mm, [1..9]) and,
// when the plan range is in use, its first and last sample.
struct ShortReduction {
  std::array<double, 10> Limits{};
  bool UseRange = false;
  std::int32_t RangeStart = 0;
  std::int32_t RangeEnd = 0;
};

// One named M-wave study of a profile. The first block is what the project file holds; the rest is
// working state made again when asked for.
struct StudyTarget {
  std::string Name;                    // unique within the profile; ends in "[厚]" or "[間]"
  bool Adjusted = false;               // changed by the user since its creation
  std::vector<std::uint8_t> Flags;     // per point, as calculated
  std::vector<double> Points;          // whole-number sample indices, as calculated
  std::vector<std::uint8_t> AdjFlags;  // the same after adjustment
  std::vector<double> AdjPoints;
  std::int32_t PlanA = 0;
  std::int32_t PlanB = 0;
  std::int32_t PlanC = 0;
  double PlanValue = 0;
  std::string PlanText;

  std::vector<double> Thickness;  // per adjusted point: the user's change of thickness, mm
  MWaveOutcome Outcome;           // Outcome.MPrime is M + UserAdjust, mm, 1..n
  bool Recalculated = false;      // MPrime rebuilt from the adjusted points
  std::int32_t Revision = 0;      // raised by each rebuild, so that the ideal shape sees a new MPrime
};

// The results of the study steps kept per profile, besides the ThreeWaveSplit.
struct RepairStudyData {
  // M-wave step.
  MWaveOutcome Calculated;            // from M' as straightened, without any study
  double ProfileIri = kNoValue;       // the profile's IRI (mm/m) with the study's parameters
  std::vector<StudyPoint> PointTable; // crests and troughs of M, ascending index
  bool MiddleValid = false;
  std::int32_t ChosenStudy = 0;       // row of lst_M波選択: 0 the calculated M', k the k-th study
  // S-wave step.
  WaveSeries ShortReduced;            // S'
  ShortReduction ShortReducedBy;
  bool ShortReducedValid = false;
  // Ideal shape L + M' + S'.
  StudyWave IdealShape;
  bool IdealValid = false;
};

}  // namespace velmora
