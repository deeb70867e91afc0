#pragma once
#include "profile/wave_series.h"

namespace velmora {

// Results of the filter tab kept per profile.
struct FilterResults {};

}  // namespace velmora
