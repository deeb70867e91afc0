#pragma once
#include "profile/wave_series.h"

namespace velmora {

// L, M and S waves of one profile with their boundaries.
struct ThreeWaveSplit {};
// One named M-wave study.
struct StudyTarget {};

}  // namespace velmora
