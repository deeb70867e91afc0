#pragma once
#include "profile/wave_series.h"

namespace velmora {

// Quarter-car response and sliding-window IRI of a profile and of its bands.
struct IriResults {};
// IRI over the sections of the evaluation.
struct SectionIri {};

}  // namespace velmora
