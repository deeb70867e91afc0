#pragma once
// The chosen profiles of a spreadsheet report laid on one common distance grid: what the column
// scripts read row by row and section by section. Every value starts as the no value (-99999).
#include <array>
#include <cstdint>
#include <string>

#include "base/common.h"
#include "base/one_based.h"

namespace velmora {

// One grid row of one profile: the measured profile, the long- and short-wave sums, the nine octave
// bands ([1..9], [0] unused) in mm, and the 10 m continuous IRI (mm/m) placed at its window's middle.
struct ExelRowData {
  double All = kNoValue;
  double Long = kNoValue;
  double Short = kNoValue;
  std::array<double, 10> Oct{kNoValue, kNoValue, kNoValue, kNoValue, kNoValue,
                             kNoValue, kNoValue, kNoValue, kNoValue, kNoValue};
  double Iri10 = kNoValue;
};

// One fixed section of a report: where it begins, in the grid's unit, and its IRI (mm/m).
struct ExelSection {
  double Distance = 0;
  double Iri = kNoValue;
};

struct ExelProfileSlot {
  std::string Name;              // the parameter that chose the profile
  std::int32_t ProfileIndex = 0;  // 1-based position in the profile list
  std::int32_t RowCount = 0;
  Array1<double> Distance;       // 1..RowCount, in the report's unit (km, m or KP)
  Array1<ExelRowData> Rows;      // 1..RowCount
  std::int32_t Count10 = 0;
  Array1<ExelSection> Table10;
  std::int32_t Count100 = 0;
  Array1<ExelSection> Table100;
  std::int32_t Count200 = 0;
  Array1<ExelSection> Table200;
  double StartPosition = 0;      // KP of the first sample, km (no value read as 0)
  double Pitch = 0;              // m
  bool Descending = false;       // the KP falls along the profile
};

}  // namespace velmora
