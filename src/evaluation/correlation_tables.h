#pragma once
// The two result tables of the cross-correlation ("クロス表", "単一表") and the CSV text of one
// measure. Cells are the texts as shown; the means are taken from those texts, so they work on the
// rounded figures.
#include <cstdint>
#include <string>
#include <vector>

#include "evaluation/cross_correlation.h"

namespace velmora {

using TextTable = std::vector<std::vector<std::string>>;  // rows of cells, all rows equally wide

// The text of `measure` (0..5) for the pair (i, j), i < j: "0.00000", the shift as a whole number.
// The error rates (value[j] - value[i]) / value[i] raise division by zero when value[i] is 0.
std::string MeasureText(const CorrelationResults& results, std::int32_t measure, std::int32_t i, std::int32_t j);

// Names across and down, the "IRI値"/"PSD値" rows when shown, the pairs below the diagonal
// (column i holds profile i with the profiles behind it), then "平均(基準)" and "平均(全体)". With
// fewer than two profiles there is no pair and the table is its head alone.
TextTable BuildCrossTable(const CorrelationResults& results, std::int32_t measure);

// One row per pair, grouped by the first profile: name, IRI and PSD value (when shown), "組み合わせ"
// with the second profile's name and values, "算出値", and the group's mean on its first row.
TextTable BuildSingleTable(const CorrelationResults& results, std::int32_t measure);

// The table the options ask for (layout and measure).
TextTable BuildCorrelationTable(const CorrelationResults& results);

// The lines of the CSV file of one measure: caption line, single-table block, cross-table block.
std::vector<std::string> CorrelationCsvLines(const CorrelationResults& results, std::int32_t measure);

}  // namespace velmora
