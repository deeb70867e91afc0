#pragma once

namespace velmora {

// Sum, extremes and like values of a profile's working samples.
struct ProfileStatistics {};

}  // namespace velmora
