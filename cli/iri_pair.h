#pragma once
// velmora iri --pair LEFT RIGHT: the two wheel paths of a lane together, as MRI (the mean of their
// IRIs) and HRI (the IRI of their sample-by-sample mean), whole and on the IRI tab's sections.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "command_session.h"

namespace velmora::cli {

// The FILE arguments with those of the pair that name files and are not among them yet, appended.
std::vector<std::string> WithPairFiles(std::vector<std::string> files, const std::vector<std::string>& pair);

// The rows of the two profiles in the list (given by file or by profile name), left first.
using PairRows = std::array<std::int32_t, 2>;

// Before the Go: finds the two profiles and checks that their pitches agree. Nothing, with the
// message on stderr and `status` set, when one is missing (usage) or the pitches differ (failed).
std::optional<PairRows> FindIriPair(CommandSession& session, const std::vector<std::string>& pair, int& status);

// After the IRI tab's Go: prints MRI and HRI and writes "<left>_<right>_MRI_HRI_<time>.CSV" (whole
// profile and every section).
void ReportIriPair(CommandSession& session, const PairRows& rows, double evalLength, bool skipPartial);

}  // namespace velmora::cli
