#pragma once
// velmora iri --pair LEFT RIGHT: the two wheel paths of a lane together, as MRI (the mean of their
// IRIs) and HRI (the IRI of their sample-by-sample mean), whole and on the IRI tab's sections.
#include <string>
#include <vector>

#include "command_session.h"

namespace velmora::cli {

// The FILE arguments with those of the pair that name files and are not among them yet, appended.
std::vector<std::string> WithPairFiles(std::vector<std::string> files, const std::vector<std::string>& pair);

// After the IRI tab's Go: finds the two profiles (by file or by profile name), checks that their
// pitches agree, prints MRI and HRI and writes "<left>_<right>_MRI_HRI_<time>.CSV" (whole profile
// and every section). The exit status.
int ReportIriPair(CommandSession& session, const std::vector<std::string>& pair, double evalLength, bool skipPartial);

}  // namespace velmora::cli
