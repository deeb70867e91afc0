#pragma once
#include "profile/wave_series.h"

namespace velmora {

// The raw PSD of a profile.
struct PsdResult {};

}  // namespace velmora
