#include "report/report_script.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>

#include "base/common.h"
#include "base/legacy_error.h"

namespace velmora {
namespace {

std::string_view TrimView(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Skip blanks, then an optional sign, digits, a point and an exponent for as long as they make a
// number; the rest is ignored and no number at all gives 0.
double LeadingNumberOf(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  const std::size_t begin = i;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  std::size_t digits = 0;
  while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++digits;
  if (i < text.size() && text[i] == '.') {
    ++i;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++digits;
  }
  if (digits == 0) return 0;
  std::size_t end = i;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
    std::size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
    const std::size_t exponentDigits = j;
    while (j < text.size() && std::isdigit(static_cast<unsigned char>(text[j]))) ++j;
    if (j > exponentDigits) end = j;
  }
  std::string number(text.substr(begin, end - begin));
  std::replace_if(number.begin(), number.end(), [](char c) { return c == 'd' || c == 'D'; }, 'E');
  return std::strtod(number.c_str(), nullptr);
}

// Arithmetic reads a null of the report tables as 0, so that a missing value does not swamp a sum.
double ArithmeticOperand(const ScriptValue& value) {
  const double number = value.LeadingNumber();
  return IsNoValue(number) ? 0.0 : number;
}

// "(a)" pairs its outer parentheses only when no closing one before the last comes back to depth 0.
bool OuterParenthesesPair(std::string_view text) {
  int depth = 0;
  bool quoted = false;
  for (std::size_t i = text.size() - 1; i >= 1; --i) {
    const char c = text[i];
    if (c == '\'') {
      quoted = !quoted;
    } else if (!quoted && c == ')') {
      ++depth;
    } else if (!quoted && c == '(') {
      --depth;
    }
    if (depth == 0) return false;
  }
  return true;
}

// Equality of two values as they are: two texts as text, otherwise as numbers.
bool ValuesEqual(const ScriptValue& left, const ScriptValue& right) {
  if (left.IsText() && right.IsText()) return left.Text() == right.Text();
  const auto numeric = [](const ScriptValue& v) {
    switch (v.Type()) {
      case ScriptValue::Kind::Number: return v.Number();
      case ScriptValue::Kind::Boolean: return v.Boolean() ? -1.0 : 0.0;
      case ScriptValue::Kind::Empty: return 0.0;
      case ScriptValue::Kind::Text: break;
    }
    const auto parsed = ParseNumber(v.Text());
    if (!parsed) throw LegacyError(ErrorNumber::TypeMismatch, "型が一致しません。 ( " + v.Text() + " )");
    return *parsed;
  };
  return numeric(left) == numeric(right);
}

ScriptValue Compare(ExelScriptState& state, const std::string& op, const std::string& leftText,
                    const std::string& rightText) {
  if (op == "==" || op == "=" || op == "<>") {
    const ScriptValue left = EvaluateExpression(state, leftText);
    const ScriptValue right = EvaluateExpression(state, rightText);
    return ScriptValue::FromBoolean(ValuesEqual(left, right) == (op != "<>"));
  }
  // Unlike the arithmetic, the ordering sees a null as -99999: it is a real value here.
  const double right = EvaluateExpression(state, rightText).LeadingNumber();
  const double left = EvaluateExpression(state, leftText).LeadingNumber();
  if (op == ">=") return ScriptValue::FromBoolean(left >= right);
  if (op == "<=") return ScriptValue::FromBoolean(left <= right);
  if (op == ">") return ScriptValue::FromBoolean(left > right);
  return ScriptValue::FromBoolean(left < right);
}

ScriptValue CallFunction(ExelScriptState& state, std::string_view text) {
  const std::size_t open = text.find('(');
  if (open == std::string_view::npos) return CallScriptFunction(state, UCase(text), "");
  const std::string name = UCase(TrimView(text.substr(0, open)));
  // The last character is taken for the closing parenthesis without looking at it.
  const std::size_t inner = text.size() - 1 > open ? text.size() - 1 - (open + 1) : 0;
  return CallScriptFunction(state, name, std::string(TrimView(text.substr(open + 1, inner))));
}

}  // namespace

ScriptValue ScriptValue::FromText(std::string text) {
  ScriptValue v;
  v.kind_ = Kind::Text;
  v.text_ = std::move(text);
  return v;
}

ScriptValue ScriptValue::FromNumber(double number) {
  ScriptValue v;
  v.kind_ = Kind::Number;
  v.number_ = number;
  return v;
}

ScriptValue ScriptValue::FromBoolean(bool value) {
  ScriptValue v;
  v.kind_ = Kind::Boolean;
  v.boolean_ = value;
  return v;
}

std::string ScriptValue::ToText() const {
  switch (kind_) {
    case Kind::Empty: return {};
    case Kind::Text: return text_;
    case Kind::Boolean: return boolean_ ? "True" : "False";
    case Kind::Number: break;
  }
  if (number_ == 0) return "0";  // also -0
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.15G", number_);
  return buffer;
}

double ScriptValue::LeadingNumber() const {
  if (kind_ == Kind::Number) return number_;
  if (kind_ == Kind::Empty) return 0;
  return LeadingNumberOf(kind_ == Kind::Text ? std::string_view(text_) : (boolean_ ? "True" : "False"));
}

ScriptValue EvaluateScript(ExelScriptState& state, std::string_view script, std::int32_t showErrors) {
  state.ErrorCode.clear();
  state.ErrorMessage.clear();
  state.ShowErrors = showErrors;
  if (TrimView(script).empty()) {
    SetScriptError(state, "CE0000", "スクリプト関連付け文字列が指定されていません。");
    return {};
  }
  return EvaluateExpression(state, script);
}

ScriptValue EvaluateExpression(ExelScriptState& state, std::string_view raw) {
  std::string_view text = TrimView(raw);
  if (!state.ErrorCode.empty()) return {};
  if (state.Depth >= kMaxScriptDepth)
    throw LegacyError(ErrorNumber::Overflow, "式が深すぎます (" + std::to_string(kMaxScriptDepth) +
                                                 " 段を超えました): " + std::string(CharLeft(text, 40)) + " ...");
  struct DepthScope {
    std::int32_t& depth;
    explicit DepthScope(std::int32_t& d) : depth(++d) {}
    ~DepthScope() { --depth; }
  } scope(state.Depth);

  if (text.size() >= 2 && text.front() == '"' && text.back() == '"' &&
      std::count(text.begin(), text.end(), '"') == 2)
    return ScriptValue::FromText(std::string(text.substr(1, text.size() - 2)));

  while (text.size() >= 2 && text.front() == '(' && text.back() == ')' && OuterParenthesesPair(text))
    text = TrimView(text.substr(1, text.size() - 2));

  std::string left, right;
  if (!FindLastOperator(text, {"&&", "&"}, left, right).empty()) {
    const ScriptValue l = EvaluateExpression(state, left);
    const ScriptValue r = EvaluateExpression(state, right);
    return ScriptValue::FromText(l.ToText() + r.ToText());
  }
  // A text that begins with a minus is never cut at a sign: "-5+3" stays a text.
  if (text.empty() || text.front() != '-') {
    const std::string op = FindLastOperator(text, {"+", "-"}, left, right);
    if (!op.empty()) {
      const double r = ArithmeticOperand(EvaluateExpression(state, right));
      const double l = ArithmeticOperand(EvaluateExpression(state, left));
      return ScriptValue::FromNumber(op == "+" ? l + r : l - r);
    }
  }
  if (const std::string op = FindLastOperator(text, {"*", "/"}, left, right); !op.empty()) {
    const double r = ArithmeticOperand(EvaluateExpression(state, right));
    const double l = ArithmeticOperand(EvaluateExpression(state, left));
    if (op == "*") return ScriptValue::FromNumber(l * r);
    if (r == 0) RaiseDivisionByZero(std::string(text));
    return ScriptValue::FromNumber(l / r);
  }
  if (const std::string op = FindLastOperator(text, {"==", ">=", "<=", "=", "<>", ">", "<"}, left, right);
      !op.empty())
    return Compare(state, op, left, right);

  if (text.empty() || text.front() != '#') return ScriptValue::FromText(std::string(text));
  return CallFunction(state, text);
}

std::string FindLastOperator(std::string_view text, std::initializer_list<std::string_view> operators,
                             std::string& left, std::string& right) {
  int depth = 0;
  bool quoted = false;
  for (std::size_t end = text.size(); end-- > 0;) {
    const char c = text[end];
    if (c == '\'') {
      quoted = !quoted;
    } else if (!quoted && c == ')') {
      ++depth;
    } else if (!quoted && c == '(') {
      --depth;
    } else if (!quoted && depth == 0) {
      for (std::string_view op : operators) {
        if (op.back() != c || op.size() > end + 1 || text.substr(end + 1 - op.size(), op.size()) != op) continue;
        left = TrimView(text.substr(0, end + 1 - op.size()));
        right = TrimView(text.substr(end + 1));
        return std::string(op);
      }
    }
  }
  return {};
}

std::int32_t SplitArguments(std::string_view text, std::vector<std::string>& args) {
  args.clear();
  int depth = 0;
  bool quoted = false;
  std::size_t pieceStart = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\'') {
      quoted = !quoted;
    } else if (!quoted && c == '(') {
      ++depth;
    } else if (!quoted && c == ')') {
      --depth;
    } else if (!quoted && depth == 0 && c == ',') {
      args.emplace_back(TrimView(text.substr(pieceStart, i - pieceStart)));
      pieceStart = i + 1;
    }
  }
  args.emplace_back(TrimView(text.substr(pieceStart)));
  return static_cast<std::int32_t>(args.size());
}

void ReportScriptError(const ExelScriptState& state) {
  if (state.ShowErrors != 0 && state.Ui != nullptr)
    state.Ui->Message(state.ErrorMessage, "コンパイルエラー", MsgIcon::Exclamation, MsgButtons::Ok, MsgAnswer::Ok);
}

void SetScriptError(ExelScriptState& state, std::string code, std::string message) {
  if (!state.ErrorCode.empty()) return;
  state.ErrorCode = std::move(code);
  state.ErrorMessage = std::move(message);
  ReportScriptError(state);
}

std::string GetInputValue(const ExelScriptState& state, std::string_view name) {
  const auto found = state.InputValues.find(std::string(name) + "V");
  return found == state.InputValues.end() ? std::string() : found->second;
}

std::int32_t GetProfileChoice(const ExelScriptState& state, std::string_view name) {
  const auto found = state.ProfileChoices.find(std::string(name) + "P");
  return found == state.ProfileChoices.end() ? -1 : found->second;
}

std::int32_t GetProfileSlot(const ExelScriptState& state, std::string_view name) {
  if (GetProfileChoice(state, name) < 0) return -1;
  for (std::int32_t slot = 1; slot <= state.SlotCount; ++slot)
    if (state.Slots.at(slot).Name == name) return slot;
  return -1;
}

}  // namespace velmora
