#pragma once
// The CSV files of the statistics and verification tabs: the folder question, one file per page or
// measure named by the "FileExportName" pattern of the kind, and the closing box.
#include <filesystem>
#include <span>
#include <string>

#include "base/session.h"
#include "evaluation/cross_correlation.h"
#include "evaluation/statistics.h"

namespace velmora {

// Asks for the folder of the CSV files through the file dialog (only the folder of the answer
// counts), starting from the folder remembered last time, and remembers the new one. Empty when
// cancelled.
std::filesystem::path AskCsvFolder(Session& session);

// "データ保存": the files are in `folder`.
void ShowCsvSaved(Session& session, const std::filesystem::path& folder);

// "保存": one CSV file per page that holds data, in a folder the user picks. `namePattern` is the
// "FileExportName" setting (may be empty); the first selected profile's name stands for
// "$(PROFILENAME)$". False when nothing was written.
bool SaveStatistics(Session& session, const StatisticsResults& results, const std::string& firstProfileName,
                    const std::string& namePattern);

// "保存": re-runs without the IRI filter when the results used it, asks for the folder and writes six
// CSV files, one per measure. `namePattern` is the "FileExportName" setting of the kind (may be
// empty). False when nothing was written (no results, check refused, cancelled, or an error, which
// is logged as "cmdSave相互相関_Click"; files already written stay).
bool SaveCrossCorrelation(Session& session, const ProfileList& list, std::span<const std::int32_t> selectedRows,
                          const CorrelationResults& results, const IriParams& iri, const std::string& namePattern,
                          const CorrelationPsdOptions& psd = {});

}  // namespace velmora
