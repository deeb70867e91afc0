#pragma once
// The filter tab's operation: checks the cut-offs, then filters every profile it is given into the
// profile's FilterWave.
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/fft_filter.h"
#include "base/session.h"
#include "results/filter_types.h"
#include "results/iri_types.h"

namespace velmora {

struct ProfileRecord;

// The input a failed check sends the focus back to.
enum class FilterField { None, LongCut, ShortCut, SlopeCut };

// Short name in file names: "MAHP".."MABC", "FTHP".."FTBC", "IRI", "Slope", "SLHC".
std::string FilterShortName(const FilterSpec& filterSpec);
// Text for files and legends: the pass kind name for moving average and Fourier, empty otherwise.
std::string FilterLegendText(const FilterSpec& filterSpec);

// The cut-off checks of the tab. On a fault shows its message (title "エラー") and names the field.
FilterField CheckFilterSpec(Session& session, const FilterSpec& filterSpec);

struct FilterRunOutcome {
  FilterField Focus = FilterField::None;  // a check failed: nothing was calculated
  bool Completed = false;                 // every profile filtered (or already up to date)
};

// "実行" of the filter tab over `profiles` (the selected ones, or the current one). Each must have
// been prepared for analysis. Without `force` a profile whose FilterWave was calculated with the same
// filterSpec (and, for the IRI type, the same `iri`) is left alone. A run-time error is logged and ends the
// run; the profile being filtered then keeps its previous result.
FilterRunOutcome RunFilter(Session& session, const FilterSpec& filterSpec, bool force,
                           const std::vector<ProfileRecord*>& profiles, const IriParams& iri,
                           const FilterConvergence& limits);

}  // namespace velmora
