#pragma once
// The script language of spreadsheet reports: one expression per title or data cell of a column,
// evaluated by cutting the text at its operators and recursing, with no tokens and no tree. Binding
// runs the reverse of the usual order (concatenation weakest, comparison tightest), and the operators
// of one group associate to the left. The apostrophe quotes; a double-quoted text is a literal only
// when it is the whole expression.
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/one_based.h"
#include "base/user_interaction.h"
#include "report/exel_slots.h"

namespace velmora {

// The result of an evaluation: empty, text, a double or a boolean.
class ScriptValue {
 public:
  enum class Kind { Empty, Text, Number, Boolean };

  ScriptValue() = default;
  static ScriptValue FromText(std::string text);
  static ScriptValue FromNumber(double number);
  static ScriptValue FromBoolean(bool value);

  Kind Type() const { return kind_; }
  // Empty: ""; a double: its shortest text of at most 15 significant digits ("1E+20" style for
  // large and small ones); a boolean: "True" or "False".
  std::string ToText() const;
  // The leading number of ToText(): what the arithmetic and the ordering comparisons use.
  double LeadingNumber() const;
  bool IsText() const { return kind_ == Kind::Text || kind_ == Kind::Empty; }
  double Number() const { return number_; }
  bool Boolean() const { return boolean_; }
  const std::string& Text() const { return text_; }

 private:
  Kind kind_ = Kind::Empty;
  std::string text_;
  double number_ = 0;
  bool boolean_ = false;
};

// The context of the evaluations of one report, filled by the report driver.
struct ExelScriptState {
  std::string ErrorCode;      // empty, or the code of the first error since EvaluateScript began
  std::string ErrorMessage;
  std::int32_t ShowErrors = 0;  // non-zero: an error is shown as soon as it is set
  std::map<std::string, std::string> InputValues;        // key: parameter name & "V"
  std::map<std::string, std::int32_t> ProfileChoices;    // key: parameter name & "P"; 1-based list position
  Array1<ExelProfileSlot> Slots;  // slot 1 supplies every distance
  std::int32_t SlotCount = 0;
  std::int32_t RowCursor = 0;     // 1-based grid row
  std::int32_t Index10 = 1;       // 1-based cursors into the section tables
  std::int32_t Index100 = 1;
  std::int32_t Index200 = 1;
  double GridFirst = 0;           // distance of the grid's first and last row
  double GridLast = 0;
  bool Started = false;           // the gate flags of the current column
  bool Finished = false;
  std::string UnitText;           // "km", "m" or "KP"
  bool Reversed = false;          // the report runs from the last row to the first
  std::vector<std::string> ProfileTitles;  // the profile list's titles, in list order
  UserInteraction* Ui = nullptr;  // where errors are shown; none: they are only recorded
  std::int32_t Depth = 0;         // of the evaluation under way (a guard against runaway scripts)
};

// Deeper than this an expression is refused: each operator cut is one level, and no report column
// needs more than a few dozen.
inline constexpr std::int32_t kMaxScriptDepth = 500;

// Clears the error, stores `showErrors` and evaluates; an empty script is the error "CE0000".
ScriptValue EvaluateScript(ExelScriptState& state, std::string_view script, std::int32_t showErrors);
// The recursive evaluator. Division by zero, a comparison of a text that has no numeric reading
// with a number, and nesting beyond kMaxScriptDepth raise LegacyError: failures of the caller, not
// script errors.
ScriptValue EvaluateExpression(ExelScriptState& state, std::string_view text);

// Walks `text` from its end, outside apostrophes and parentheses, and at each character tries the
// operators in list order; the first match cuts the text into the trimmed `left` and `right`.
// Returns the operator found, or "" (left and right then untouched).
std::string FindLastOperator(std::string_view text, std::initializer_list<std::string_view> operators,
                             std::string& left, std::string& right);
// Cuts at the commas outside apostrophes and parentheses and trims each piece; "" is one argument.
std::int32_t SplitArguments(std::string_view text, std::vector<std::string>& args);

// Shows ErrorMessage ("コンパイルエラー") when ShowErrors is set.
void ReportScriptError(const ExelScriptState& state);
// Records the first error of an evaluation and reports it; later errors are ignored.
void SetScriptError(ExelScriptState& state, std::string code, std::string message);

std::string GetInputValue(const ExelScriptState& state, std::string_view name);       // "" when absent
std::int32_t GetProfileChoice(const ExelScriptState& state, std::string_view name);   // -1 when absent
std::int32_t GetProfileSlot(const ExelScriptState& state, std::string_view name);     // -1 when none

// Sets Started and Finished of the current column from a cell's distance: an empty start is
// -1e20, an empty end 1e20. The start test allows 1e-10, the finishing tests none.
void UpdateRowGate(ExelScriptState& state, std::string_view startText, std::string_view endText, double distance);

// The report functions (#DIST, #PROF, #IRI, #UNIT, #GETPROFILENAME) by upper-cased name; an unknown
// name is the error "CE0001". The result is text.
ScriptValue CallScriptFunction(ExelScriptState& state, const std::string& name, const std::string& argumentText);

}  // namespace velmora
