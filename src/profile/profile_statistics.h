#pragma once
// The statistics a profile carries from the moment it is read.
#include <span>

#include "results/statistics_types.h"

namespace velmora {

// Count, sum, mean, population deviation, extremes and spread of elevations (mm); all 0 for none.
ProfileStatistics CalcProfileStatistics(std::span<const double> values);

}  // namespace velmora
