#pragma once
// The slope filter: the profile's slopes, or the profile rebuilt without its steep slopes.
#include <cstdint>

#include "base/one_based.h"
#include "results/analysis_block.h"

namespace velmora {

// y(1..n) elevations in mm at pitch dx m. Without cut: the slopes s(i) = (y(i+1) − y(i)) / dx in mm/m
// (0 when dx is 0), s(n) = 0. With cut: every |s(i)| ≥ cut is set to 0 and the profile is rebuilt
// from y(1) by summing dx · s, so a step stays removed at all later points. Any length the profile
// has; n beyond y raises subscript out of range.
Array1<double> SlopeSeries(std::int32_t n, const Array1<double>& y, double dx, bool cutMode, double cut);

// The slope filter of the block's prepared profile into Filter.SlopeWave (with statistics).
void SlopeFilter(AnalysisBlock& block, bool cutMode, double cut);

}  // namespace velmora
