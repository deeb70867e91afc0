#pragma once
#include "profile/wave_series.h"

namespace velmora {

// The nine octave bands of a profile with the long-wave and short-wave sums.
struct OctaveBandSet {};

}  // namespace velmora
