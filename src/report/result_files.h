#pragma once
// The result files of one export: every CSV and ERD file of the analyses' results is written here,
// named by the kind's "FileExportName" pattern (or its built-in name) with the time of the export.
#include <ctime>
#include <string>
#include <vector>

#include "base/session.h"
#include "profile/profile_record.h"
#include "report/position_axis.h"
#include "report/repair_export.h"
#include "report/result_export.h"

namespace velmora {

struct ResultFileRequest {
  ExportKind Kind = ExportKind::Profile;
  bool Erd = false;  // ERD files (one-column kinds only), else CSV
  ExportOptions Options;
};

// Writes the files of `request` for `profiles` (in order) into `folder`, adding each path to `written`
// as it is written. A file that cannot be written raises; the files written before it stay, and so do
// their paths.
void WriteResultFiles(Session& session, const ResultFileRequest& request, const PositionAxis& axis,
                      const std::vector<ProfileRecord*>& profiles, const std::string& folder, const std::tm& now,
                      std::vector<std::string>& written);

// The same for a repair-study kind over the study's profiles; `iri` are the study's IRI parameters.
void WriteRepairResultFiles(Session& session, RepairExportKind kind, bool erd, const PositionAxis& axis,
                            const IriParams& iri, const std::vector<const ProfileRecord*>& profiles,
                            const std::string& folder, const std::tm& now, std::vector<std::string>& written);

}  // namespace velmora
