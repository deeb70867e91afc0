#pragma once
// Roughness of two wheel paths of one lane taken together (ASTM E1926 and the road-profiling
// literature): the Mean Roughness Index (MRI), the mean of the left and the right IRI over the same
// sections, and the Half-car Roughness Index (HRI), the IRI of the sample-by-sample mean of the two
// paths, which stands for a car whose axle averages them. The quarter car is linear, so the response
// to the mean profile is the mean of the two responses, and HRI <= MRI: the two paths' uneven parts
// partly cancel.
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "base/common.h"
#include "base/conditions.h"

namespace velmora {

// One section's four values, mm/m; the KP and sample ranges are those of the IRI tab's sections.
struct PairSection {
  std::int32_t Index = 0;   // first sample
  std::int32_t Count = 0;   // samples
  double KpFrom = 0;        // km
  double KpTo = 0;
  double Left = 0;
  double Right = 0;
  double Mri = 0;
  double Hri = 0;
  bool Partial = false;     // shorter than the nominal length
};

struct PairRoughness {
  std::int32_t Samples = 0;  // the two paths' common samples
  double LeftIri = 0;        // whole profiles, mm/m, as the IRI tab's whole-profile value
  double RightIri = 0;
  double Mri = 0;
  double Hri = 0;
  // The sections of the evaluation length, of 100 m and of 200 m, in KP order.
  std::array<std::vector<PairSection>, 3> Sections;
};

struct PairRequest {
  IriParams Params;                  // the IRI tab's model and power weighting
  double EvalLength = 10;            // m
  bool SkipPartialSections = false;
  double KpStart = kNoValue;         // km of the first sample; unset counts as 0
  bool Backwards = false;            // the KP falls along the profile
};

// The sample-by-sample mean of two paths over their common samples, mm.
std::vector<double> HalfCarProfile(std::span<const double> left, std::span<const double> right);

// MRI and HRI of `left` and `right` (mm, both at pitch dx m) over their common samples, whole and on
// the sections of the IRI tab. The common length must exceed the 0.25 m slope base.
PairRoughness CalcPairRoughness(std::span<const double> left, std::span<const double> right, double dx,
                                const PairRequest& request);

// The result as CSV lines: a heading, the whole profile, then every section of the three tables
// (KP "0.00000", IRI "0.00000000").
std::vector<std::string> PairRoughnessLines(const PairRoughness& pair);

}  // namespace velmora
