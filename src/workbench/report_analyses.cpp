#include "workbench/report_analyses.h"

namespace velmora::workbench {

GoOutcome RunReportAnalyses(Workbench& bench, const std::function<bool()>& checkInputs) {
  const IriTabInputs kept = bench.Iri;
  const std::vector<int> rows = bench.Selection(tab::Iri);
  bench.Iri.EvalLength = "10";
  bench.Iri.Bands = true;
  bench.SelectAll(tab::Iri);
  const GoOutcome outcome = !checkInputs || checkInputs() ? bench.RunGo(tab::Iri) : GoOutcome::Failed;
  bench.Iri = kept;
  bench.Select(tab::Iri, rows);
  return outcome;
}

}  // namespace velmora::workbench
