#pragma once
// One elevation profile as an ERD file holds it, and one registered profile of the project with the
// result blocks of every analysis.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "base/common.h"
#include "base/one_based.h"
#include "results/analysis_block.h"
#include "results/repair_types.h"
#include "results/statistics_types.h"

namespace velmora {

struct ErdRecord {
  std::int32_t NumChannels = kNoValueLong;       // 1 or 2 as declared by the file
  std::int32_t NumSamples = kNoValueLong;        // samples really read
  std::int32_t NumSamplesHeader = kNoValueLong;  // samples declared on line 2
  std::int32_t FormatCode = kNoValueLong;        // always 5
  double StepSize = kNoValue;                    // pitch in m, after unit conversion
  std::string Title;                             // TITLE text before the first "｜"
  std::string DistanceUnit;                      // XUNITS as read
  std::array<std::string, 3> UnitsName;          // [1], [2]: the channels' UNITSNAM columns
  std::array<std::string, 3> ShortName;          // [1], [2]: the channels' SHORTNAM columns
  bool IsMetric = false;
  double SlopeUnitScale = 0;                     // 1000 metric, 63360 feet
  std::string SlopeUnitName;                     // " m/km" or " in/mi"
  std::string YLabel;                            // GENNAME
  std::string XLabel;                            // XLABEL
  Array1<double> Elevation;                      // mm, 1..NumSamples
  double KpStart = kNoValue;                     // km at the first sample
  std::int32_t KpSign = 0;                       // 0: KP grows along the profile, 1: it falls
  std::int32_t Lane = 0;                         // 1 up, -1 down, 0 none
  std::string KpText;
  std::string KpDisplay;
  std::int32_t RepairRangeOn = 0;
  double RepairRangeStart = kNoValue;
  double RepairRangeEnd = kNoValue;
  std::string RepairRangeText;
};

struct ProfileRecord {
  std::int32_t SourceType = 0;  // 0 ERD file, 1 PMS file
  std::string FilePath;
  std::string FileName;         // with extension; without it, the profile's name in all lists
  ErdRecord Erd;
  std::string RouteName;
  std::int32_t MeasureDate = 0;  // whole days since 1899-12-30
  std::string Comment;
  double SamplesPerMetre = 0;
  std::int32_t WorkCount = 0;
  Array1<double> WorkProfile;    // the working copy every analysis reads, mm
  ProfileStatistics Statistics;
  AnalysisBlock Analysis;
  ThreeWaveSplit ThreeWave;
  std::vector<StudyTarget> Studies;
  RepairStudyData RepairStudy;  // results of the study steps after the split
};

}  // namespace velmora
