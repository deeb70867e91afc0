// The functions of the report script and the row gate they drive. Arguments are never evaluated:
// they are keywords, numbers or parameter names as written.
#include <string>
#include <vector>

#include "base/common.h"
#include "base/legacy_error.h"
#include "report/report_script.h"

namespace velmora {
namespace {

// Beyond the last section the gate must see a distance outside any grid, so the column finishes.
constexpr double kPastTheEnd = 1e20;

ScriptValue TextOf(double value) { return ScriptValue::FromText(ScriptValue::FromNumber(value).ToText()); }

ScriptValue ArgumentCountError(ExelScriptState& state, std::string_view function, std::string_view count,
                               const std::string& argumentText) {
  SetScriptError(state, "CE0021",
                 "関数 " + std::string(function) + " の引数は" + std::string(count) + "個で指定してください。[ " +
                     std::string(function) + "( " + argumentText + " ) ]");
  return {};
}

const Array1<ExelSection>* SectionTable(const ExelProfileSlot& slot, std::int32_t length, std::int32_t& count) {
  switch (length) {
    case 10: count = slot.Count10; return &slot.Table10;
    case 100: count = slot.Count100; return &slot.Table100;
    case 200: count = slot.Count200; return &slot.Table200;
    default: return nullptr;
  }
}

std::int32_t SectionCursor(const ExelScriptState& state, std::int32_t length) {
  return length == 10 ? state.Index10 : length == 100 ? state.Index100 : state.Index200;
}

// The entry at the section cursor, walked from the end when the report is reversed; null past the end.
const ExelSection* CurrentSection(const ExelScriptState& state, const ExelProfileSlot& slot, std::int32_t length) {
  std::int32_t count = 0;
  const Array1<ExelSection>* table = SectionTable(slot, length, count);
  const std::int32_t cursor = SectionCursor(state, length);
  if (cursor > count) return nullptr;
  return &table->at(state.Reversed ? count - cursor + 1 : cursor);
}

double SectionDistance(const ExelScriptState& state, std::int32_t length) {
  const ExelSection* section = CurrentSection(state, state.Slots.at(1), length);
  if (section != nullptr) return section->Distance;
  return state.Reversed ? -kPastTheEnd : kPastTheEnd;
}

double RowDistance(const ExelScriptState& state) { return state.Slots.at(1).Distance.at(state.RowCursor); }

// Runs a function body; a run-time failure inside it becomes a script error with its label.
template <class Body>
ScriptValue Guarded(ExelScriptState& state, std::string_view code, std::string_view label, Body body) {
  try {
    return body();
  } catch (const std::exception& e) {
    SetScriptError(state, std::string(code), std::string(e.what()) + " [ " + std::string(label) + " ]");
    return {};
  }
}

ScriptValue GateAndReturn(ExelScriptState& state, const std::vector<std::string>& args, std::size_t startArg,
                          double distance, double value) {
  UpdateRowGate(state, GetInputValue(state, args[startArg]), GetInputValue(state, args[startArg + 1]), distance);
  return TextOf(value);
}

ScriptValue Dist(ExelScriptState& state, const std::string& argumentText) {
  std::vector<std::string> args;
  if (SplitArguments(argumentText, args) != 3) return ArgumentCountError(state, "#DIST", "３", argumentText);
  double value = 0;
  if (Trim(args[0]).empty()) {
    value = RowDistance(state);
  } else {
    const std::int32_t interval = uLongVal(args[0]);
    if (interval != 10 && interval != 100 && interval != 200) {
      SetScriptError(state, "CE0021",
                     "関数 #DIST の第1引数は 10, 100, 200 のいずれかで指定してください。[ #DIST( " + argumentText + " ) ]");
      return {};
    }
    value = SectionDistance(state, interval);
  }
  return GateAndReturn(state, args, 1, value, value);
}

double RowSeries(const ExelRowData& row, const std::string& keyword) {
  if (keyword == "ALL") return row.All;
  if (keyword == "LONG") return row.Long;
  if (keyword == "SHORT") return row.Short;
  if (keyword.size() == 4 && keyword[0] >= '1' && keyword[0] <= '9' && keyword.substr(1) == "OCT")
    return row.Oct[static_cast<std::size_t>(keyword[0] - '0')];
  return 0;  // an unknown keyword is no error here, unlike in #IRI
}

ScriptValue Prof(ExelScriptState& state, const std::string& argumentText) {
  std::vector<std::string> args;
  if (SplitArguments(argumentText, args) != 4) return ArgumentCountError(state, "#PROF", "４", argumentText);
  const std::int32_t slot = GetProfileSlot(state, args[1]);
  const double value =
      slot < 0 ? kNoValue : RowSeries(state.Slots.at(slot).Rows.at(state.RowCursor), UCase(args[0]));
  return GateAndReturn(state, args, 2, RowDistance(state), value);
}

std::int32_t IriSectionLength(const std::string& keyword) {
  if (keyword == "10A") return 10;
  if (keyword == "100A") return 100;
  if (keyword == "200A") return 200;
  return 0;
}

ScriptValue Iri(ExelScriptState& state, const std::string& argumentText) {
  std::vector<std::string> args;
  if (SplitArguments(argumentText, args) != 4) return ArgumentCountError(state, "#IRI", "４", argumentText);
  const std::string keyword = UCase(args[0]);
  const std::int32_t length = IriSectionLength(keyword);
  const std::int32_t slot = GetProfileSlot(state, args[1]);
  double value = kNoValue;
  if (slot >= 0 && keyword == "10B") {
    value = state.Slots.at(slot).Rows.at(state.RowCursor).Iri10;
  } else if (slot >= 0 && length > 0) {
    const ExelSection* section = CurrentSection(state, state.Slots.at(slot), length);
    if (section != nullptr) value = section->Iri;
  }
  // The keyword is checked here, so that it is checked whether or not the profile was chosen.
  if (keyword != "10B" && length == 0) {
    SetScriptError(state, "CE0021",
                   "関数 #IRI の第1引数は 10B, 10A, 100A, 200A のいずれかで指定してください。[ #IRI( " + argumentText +
                       " ) ]");
    return {};
  }
  const double distance = keyword == "10B" ? RowDistance(state) : SectionDistance(state, length);
  return GateAndReturn(state, args, 2, distance, value);
}

ScriptValue ProfileName(ExelScriptState& state, const std::string& argumentText) {
  std::vector<std::string> args;
  if (SplitArguments(argumentText, args) != 1) return ArgumentCountError(state, "#GETPROFILENAME", "１", argumentText);
  const std::int32_t choice = GetProfileChoice(state, args[0]);
  if (choice < 0) return ScriptValue::FromText("");
  if (choice < 1 || static_cast<std::size_t>(choice) > state.ProfileTitles.size())
    RaiseSubscriptOutOfRange(std::to_string(choice));
  return ScriptValue::FromText(state.ProfileTitles[static_cast<std::size_t>(choice - 1)]);
}

}  // namespace

ScriptValue CallScriptFunction(ExelScriptState& state, const std::string& name, const std::string& argumentText) {
  if (name == "#DIST") return Guarded(state, "E0001", "funAT_DIST", [&] { return Dist(state, argumentText); });
  if (name == "#PROF") return Guarded(state, "E0001", "funAT_PROF", [&] { return Prof(state, argumentText); });
  if (name == "#IRI") return Guarded(state, "E0001", "funAT_10mIRI連続", [&] { return Iri(state, argumentText); });
  if (name == "#UNIT") return ScriptValue::FromText(state.UnitText);
  if (name == "#GETPROFILENAME")
    return Guarded(state, "CE0029", "funAT_Trim", [&] { return ProfileName(state, argumentText); });
  SetScriptError(state, "CE0001", "関数が定義されていません。関数名( " + name + " ) ");
  return {};
}

void UpdateRowGate(ExelScriptState& state, std::string_view startText, std::string_view endText, double distance) {
  const double start = Trim(startText).empty() ? -kPastTheEnd : uDblVal(startText);
  const double end = Trim(endText).empty() ? kPastTheEnd : uDblVal(endText);
  if (!state.Reversed) {
    if (distance + 1e-10 >= start) state.Started = true;
    if (distance > end || distance > state.GridLast) state.Finished = true;
  } else {
    if (distance - 1e-10 <= end) state.Started = true;
    if (distance < start || distance < state.GridFirst) state.Finished = true;
  }
}

}  // namespace velmora
