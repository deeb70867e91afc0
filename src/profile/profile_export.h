#pragma once
// Export of registered profiles: each as an ERD file under a free name, or all side by side in one
// CSV whose header rows carry the ERD header lines.
#include <string>
#include <vector>

#include "base/session.h"
#include "profile/profile_record.h"

namespace velmora {

// The CSV lines (UTF-8, no line ends) for the records side by side, one column each: eleven quoted
// header rows (the ERD header lines), then row i holds every record's sample i in mm formatted
// "0.00000000", an empty field where a record is shorter.
std::vector<std::string> ProfileCsvLines(const std::vector<const ErdRecord*>& records);

// Writes the CSV to `path` (Shift-JIS, CR LF). With a CsvProfileLimit above 0 and more records than
// it, the records are spread over several files: `path`, then free names "<stem>(001).<ext>", ...
// Returns the paths written, in order.
std::vector<std::string> WriteProfileCsv(Session& session, const std::string& path, const std::vector<const ErdRecord*>& records);

// Writes each profile as "<name>.ERD" in `folder`, numbered "<name>(001).ERD" ... when the name is
// taken. Returns the paths written.
std::vector<std::string> ExportProfilesAsErd(const std::string& folder, const std::vector<const ProfileRecord*>& profiles);

}  // namespace velmora
