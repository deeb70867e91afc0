#pragma once
// What every spreadsheet report reads of the profiles, made through the IRI tab's Go: the octave split
// and the IRI with 10 m windows, for every registered profile. The report command and the report tab
// both run it.
#include <functional>

#include "workbench/workbench.h"

namespace velmora::workbench {

// The IRI tab's Go with 10 m windows and the band IRIs over every profile. The tab's boxes and its
// selection are put back afterwards: its results then hold for 10 m and are made again on its next Go
// when its boxes say otherwise. `checkInputs` (may be empty) is the front end's own look at the inputs
// so set, before the Go; false stops there, as a failure.
GoOutcome RunReportAnalyses(Workbench& bench, const std::function<bool()>& checkInputs = {});

}  // namespace velmora::workbench
