#pragma once
// The statistics tab (7) and the verification tab (14) as the workbench holds them: the controls'
// values and the results of the last run, which stay for display, the saves and the registration of
// shifted copies.
#include <string>
#include <vector>

#include "evaluation/cross_correlation.h"
#include "evaluation/statistics.h"

namespace velmora::workbench {

class Workbench;

// Tab 7: the check boxes (the two ordering lists are the workbench's StatisticsSortProfile and
// StatisticsSortIri) and the eight pages of the last run.
struct StatisticsTab {
  StatisticsSelection Selection;
  StatisticsResults Results;
};

// Tab 14: the controls and the matrix, IRI and PSD values of the last run.
struct VerificationTab {
  CorrelationOptions Options;
  CorrelationResults Results;
};

struct EvaluationTabs {
  StatisticsTab Statistics;
  VerificationTab Verification;
};

// cmdSave統計値: the pages of the last run, one CSV file each, into the folder the user picks. False
// when nothing was written.
bool SaveStatisticsTab(Workbench& bench);
// cmdSave相互相関: the six CSV files of the last run. False when nothing was written.
bool SaveVerificationTab(Workbench& bench);
// cmd精度検証ずらし量登録: copies of the later profiles moved by their shift against the first,
// registered through the workbench. The new profiles' names; empty when none was made.
std::vector<std::string> RegisterShiftedProfilesTab(Workbench& bench);

}  // namespace velmora::workbench
