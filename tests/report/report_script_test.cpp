// The report script: operator cutting and binding, literals and quoting, argument splitting, the
// functions on a small hand-made slot table, the row gate and the error codes with their texts.
#include "report/report_script.h"

#include <gtest/gtest.h>

#include <random>

#include "base/common.h"
#include "base/legacy_error.h"
#include "support/test_support.h"

namespace velmora {
namespace {

// Two chosen profiles on a three-row grid (0, 0.1, 0.2 km); slot 1 has two 10 m sections and one
// 100 m section, slot 2 none. "ghost" is chosen but has no slot; "empty" is not chosen at all.
ExelScriptState SmallReport() {
  ExelScriptState state;
  state.ProfileTitles = {"road_a", "road_b", "road_c"};
  state.ProfileChoices = {{"p1P", 1}, {"p2P", 2}, {"ghostP", 3}};
  state.InputValues = {{"fromV", "0.1"}, {"toV", "0.15"}, {"blankV", " "}};
  state.UnitText = "km";
  state.SlotCount = 2;
  state.Slots.resize(2);
  for (int s = 1; s <= 2; ++s) {
    ExelProfileSlot& slot = state.Slots[s];
    slot.Name = s == 1 ? "p1" : "p2";
    slot.ProfileIndex = s;
    slot.RowCount = 3;
    slot.Distance = Array1<double>{0.0, 0.1, 0.2};
    slot.Rows.resize(3);
    for (int r = 1; r <= 3; ++r) {
      slot.Rows[r].All = 10.0 * s + r;  // 11, 12, 13 and 21, 22, 23
      slot.Rows[r].Long = -r;
      slot.Rows[r].Oct[3] = 0.5 * r;
    }
  }
  state.Slots[1].Rows[2].Iri10 = 4.25;
  state.Slots[1].Count10 = 2;
  state.Slots[1].Table10 = Array1<ExelSection>{{0.0, 1.1}, {0.01, 2.2}};
  state.Slots[1].Count100 = 1;
  state.Slots[1].Table100 = Array1<ExelSection>{{0.0, 3.3}};
  state.RowCursor = 2;
  state.GridFirst = 0.0;
  state.GridLast = 0.2;
  return state;
}

std::string Eval(ExelScriptState& state, std::string_view script) {
  return EvaluateScript(state, script, 0).ToText();
}

// A script on SmallReport() at the given cursors and the value it gives, as text.
struct ExpressionCase {
  const char* What;
  const char* Script;
  const char* Text;
  std::int32_t RowCursor = 2;
  std::int32_t Index10 = 1;
  bool Reversed = false;
};

class ScriptExpression : public ::testing::TestWithParam<ExpressionCase> {};

TEST_P(ScriptExpression, GivesTheHandWorkedValue) {
  ExelScriptState state = SmallReport();
  state.RowCursor = GetParam().RowCursor;
  state.Index10 = GetParam().Index10;
  state.Reversed = GetParam().Reversed;
  EXPECT_EQ(Eval(state, GetParam().Script), GetParam().Text) << GetParam().What;
  EXPECT_EQ(state.ErrorCode, "") << GetParam().What;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ScriptExpression,
    ::testing::Values(
        ExpressionCase{"sum", "1+2", "3"},
        ExpressionCase{"product binds tighter than the sum", "2*3+4", "10"},
        ExpressionCase{"and on the right too", "2+3*4", "14"},
        ExpressionCase{"comparison binds tightest: 1+(2=2), True reads as 0", "1+2=2", "1"},
        ExpressionCase{"cut at the minus first: (3+) - 2", "3+-2", "1"},
        ExpressionCase{"a leading minus is never cut at a sign", "-5+3", "-5+3"},
        ExpressionCase{"but a product is", "-5*3", "-15"},
        ExpressionCase{"an exponent's minus is a subtraction: 1 - 5", "1e-5", "-4"},
        ExpressionCase{"x>-1 is (x>) - 1, (x>) being False", "x>-1", "-1"},
        ExpressionCase{"left association of minus", "10 - 2 - 3", "5"},
        ExpressionCase{"left association of division", "8/2/2", "2"},
        ExpressionCase{"doubled parentheses", "((1+2))", "3"},
        ExpressionCase{"parentheses that do not pair outermost are kept", "(1+2)*(3+4)", "21"},
        ExpressionCase{"concatenation binds weakest", "1 & 2 + 3", "15"},
        ExpressionCase{"&& is &", "'a' && 'b'", "'a''b'"},
        ExpressionCase{"apostrophes hide operators and stay", "'a,b(c)+d'", "'a,b(c)+d'"},
        ExpressionCase{"double-quoted whole literal", "\"x+y\"", "x+y"},
        ExpressionCase{"two literals joined", "\"ab\" & \"cd\"", "abcd"},
        ExpressionCase{"two texts compare as text", "2 = 2.0", "False"},
        ExpressionCase{"a number and a text compare as numbers", "(1+1)=2", "True"},
        ExpressionCase{"greater or equal, two-character operator", "2>=2", "True"},
        ExpressionCase{"not equal", "a<>b", "True"},
        ExpressionCase{"a leaf is its own text", "abc", "abc"},
        ExpressionCase{"shortest text of a quotient, 15 digits", "1/3", "0.333333333333333"},
        ExpressionCase{"no binary noise in the text", "0.1+0.2", "0.3"},
        ExpressionCase{"a null added to 5 counts as 0", "#PROF(ALL, empty, , ) + 5", "5"},
        ExpressionCase{"a null compared by > is -99999", "#PROF(ALL, empty, , ) > -100000", "-100000"},
        ExpressionCase{"the ordering sees -99999", "#PROF(ALL, empty, , ) < 1", "True"},
        ExpressionCase{"a function name in any case", "#dist(10, from, to)", "0"},
        ExpressionCase{"#UNIT without parentheses", "#UNIT", "km"},
        ExpressionCase{"#UNIT ignores its arguments", "#unit(1, 2, 3)", "km"},
        ExpressionCase{"title cell of literals and the unit", "\"IRI [\" & #UNIT & \"]\"", "IRI [km]"},
        ExpressionCase{"double quotes do not hide a parenthesis", "1 & \")\"", "1 & \")\""},
        // The functions on the slot table: the series at the row cursor, no error for an unknown one.
        ExpressionCase{"#PROF of the chosen slot", "#PROF(ALL, p2, , )", "22"},
        ExpressionCase{"#PROF of the long wave", "#PROF(long, p1, , )", "-2"},
        ExpressionCase{"#PROF of an octave", "#PROF(3OCT, p1, , )", "1"},
        ExpressionCase{"#PROF of a band never filled stays null", "#PROF(2OCT, p1, , )", "-99999"},
        ExpressionCase{"#PROF of a name not chosen", "#PROF(ALL, empty, , )", "-99999"},
        ExpressionCase{"#PROF of a choice without a slot", "#PROF(ALL, ghost, , )", "-99999"},
        ExpressionCase{"#PROF of an unknown series", "#PROF(XYZ, p1, , )", "0"},
        ExpressionCase{"#PROF of two slots in one sum", "#PROF(ALL, p1, , ) - #PROF(ALL, p2, , )", "-10"},
        // The IRI of the row, and of the sections at the section cursor, forward and reversed (n - i + 1).
        ExpressionCase{"#IRI 10B of the row", "#IRI(10B, p1, , )", "4.25"},
        ExpressionCase{"#IRI 10A of the second section", "#IRI(10A, p1, , )", "2.2", 2, 2},
        ExpressionCase{"#IRI 10A reversed", "#IRI(10A, p1, , )", "1.1", 2, 2, true},
        ExpressionCase{"#IRI 10A past the last section", "#IRI(10a, p1, , )", "-99999", 2, 3},
        ExpressionCase{"#IRI 100A", "#IRI(100A, p1, , )", "3.3"},
        ExpressionCase{"#IRI 200A of a slot without them", "#IRI(200A, p1, , )", "-99999"},
        ExpressionCase{"#IRI 100A of a slot without sections", "#IRI(100A, p2, , )", "-99999"},
        ExpressionCase{"#IRI 10B of a name not chosen", "#IRI(10B, empty, , )", "-99999"},
        // Distances of the row and of the sections; past the end 1E+20 in the direction of travel.
        ExpressionCase{"#DIST of the row", "#DIST(, a, b)", "0.2", 3},
        ExpressionCase{"#DIST of the second 10 m section", "#DIST(10, a, b)", "0.01", 3, 2},
        ExpressionCase{"#DIST of a section reversed", "#DIST(10, a, b)", "0", 3, 2, true},
        ExpressionCase{"#DIST past the end", "#DIST(10, a, b)", "1E+20", 3, 3},
        ExpressionCase{"#DIST past the end reversed", "#DIST(10, a, b)", "-1E+20", 3, 3, true},
        ExpressionCase{"#GETPROFILENAME of a choice", "#GETPROFILENAME(p2)", "road_b"},
        ExpressionCase{"#GETPROFILENAME of a name not chosen", "#GETPROFILENAME(empty)", ""}));

// "#PROF(...) > -100000" holds a minus that is found as a subtraction: ((null > ) - 100000), the
// comparison with an empty right side (-99999 > 0) being False, hence 0 - 100000 above.

TEST(ScriptErrors, EmptyUnknownAndFirstErrorWins) {
  ExelScriptState state = SmallReport();
  EXPECT_EQ(Eval(state, "   "), "");
  EXPECT_EQ(state.ErrorCode, "CE0000");
  EXPECT_EQ(state.ErrorMessage, "スクリプト関連付け文字列が指定されていません。");

  EXPECT_EQ(Eval(state, "#foo(1)"), "");
  EXPECT_EQ(state.ErrorCode, "CE0001");
  EXPECT_EQ(state.ErrorMessage, "関数が定義されていません。関数名( #FOO ) ");

  // The left side fails first; the right one's own fault is never reached.
  Eval(state, "#FOO(1) & #DIST(50, a, b)");
  EXPECT_EQ(state.ErrorCode, "CE0001");
  // And an enclosing sum runs on empties.
  EXPECT_EQ(Eval(state, "1 + #BAR"), "0");  // the right side fails first, so the left is empty too
  EXPECT_EQ(state.ErrorCode, "CE0001");
}

struct ErrorCase {
  const char* Script;
  const char* Code;
  const char* Message;
};

class ScriptFunctionError : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(ScriptFunctionError, SetsCodeAndTextAndShowsIt) {
  ExelScriptState state = SmallReport();
  testing::ScriptedUi ui;
  state.Ui = &ui;
  EXPECT_EQ(EvaluateScript(state, GetParam().Script, 1).ToText(), "");
  EXPECT_EQ(state.ErrorCode, GetParam().Code);
  EXPECT_EQ(state.ErrorMessage, GetParam().Message);
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_EQ(ui.Messages()[0].Title, "コンパイルエラー");
  EXPECT_EQ(ui.Messages()[0].Text, GetParam().Message);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ScriptFunctionError,
    ::testing::Values(
        ErrorCase{"#DIST", "CE0021", "関数 #DIST の引数は３個で指定してください。[ #DIST(  ) ]"},
        ErrorCase{"#DIST(50, a, b)", "CE0021",
                  "関数 #DIST の第1引数は 10, 100, 200 のいずれかで指定してください。[ #DIST( 50, a, b ) ]"},
        ErrorCase{"#DIST(ten, a, b)", "CE0021",
                  "関数 #DIST の第1引数は 10, 100, 200 のいずれかで指定してください。[ #DIST( ten, a, b ) ]"},
        ErrorCase{"#PROF(ALL, p1, a)", "CE0021", "関数 #PROF の引数は４個で指定してください。[ #PROF( ALL, p1, a ) ]"},
        ErrorCase{"#IRI(10B)", "CE0021", "関数 #IRI の引数は４個で指定してください。[ #IRI( 10B ) ]"},
        ErrorCase{"#IRI(20A, p1, a, b)", "CE0021",
                  "関数 #IRI の第1引数は 10B, 10A, 100A, 200A のいずれかで指定してください。[ #IRI( 20A, p1, a, b ) ]"},
        ErrorCase{"#IRI(20A, nobody, a, b)", "CE0021",
                  "関数 #IRI の第1引数は 10B, 10A, 100A, 200A のいずれかで指定してください。[ #IRI( 20A, nobody, a, b ) ]"},
        ErrorCase{"#GETPROFILENAME(p1, p2)", "CE0021",
                  "関数 #GETPROFILENAME の引数は１個で指定してください。[ #GETPROFILENAME( p1, p2 ) ]"}));

TEST(ScriptErrors, RunTimeFaultsInsideFunctionsCarryTheirLabel) {
  ExelScriptState state = SmallReport();
  state.RowCursor = 7;  // beyond the three rows
  Eval(state, "#PROF(ALL, p1, , )");
  EXPECT_EQ(state.ErrorCode, "E0001");
  EXPECT_TRUE(state.ErrorMessage.ends_with(" [ funAT_PROF ]")) << state.ErrorMessage;
  Eval(state, "#IRI(10B, p1, , )");
  EXPECT_TRUE(state.ErrorMessage.ends_with(" [ funAT_10mIRI連続 ]")) << state.ErrorMessage;
  Eval(state, "#DIST(, , )");
  EXPECT_TRUE(state.ErrorMessage.ends_with(" [ funAT_DIST ]")) << state.ErrorMessage;

  state.ProfileTitles.resize(2);  // "ghost" chose position 3
  Eval(state, "#GETPROFILENAME(ghost)");
  EXPECT_EQ(state.ErrorCode, "CE0029");
  EXPECT_TRUE(state.ErrorMessage.ends_with(" [ funAT_Trim ]")) << state.ErrorMessage;
}

TEST(ScriptErrors, NoMessageWhenErrorsAreNotShownAndDivisionByZeroIsTheCallers) {
  ExelScriptState state = SmallReport();
  testing::ScriptedUi ui;
  state.Ui = &ui;
  EvaluateScript(state, "#FOO", 0);
  EXPECT_EQ(state.ErrorCode, "CE0001");
  EXPECT_TRUE(ui.Messages().empty());
  EXPECT_THROW(EvaluateScript(state, "1/0", 1), LegacyError);
  // A runaway chain of operators is refused rather than exhausting the stack.
  std::string chain = "1";
  for (int i = 0; i < kMaxScriptDepth + 10; ++i) chain += "+1";
  EXPECT_THROW(EvaluateScript(state, chain, 1), LegacyError);
  EXPECT_EQ(state.Depth, 0);
  chain.resize(2 * 100 + 1);  // 1+1+...: 101 ones
  EXPECT_EQ(EvaluateScript(state, chain, 1).ToText(), "101");
  EXPECT_THROW(EvaluateScript(state, "(1+1) = abc", 1), LegacyError);
}

TEST(ScriptFunctions, IriPastTheLastSectionFinishesTheGate) {
  ExelScriptState state = SmallReport();
  state.Index10 = 3;
  Eval(state, "#IRI(10A, p1, , )");
  EXPECT_TRUE(state.Finished);
}

TEST(ScriptFunctions, ProfileNameAndUnitLeaveTheGateAlone) {
  ExelScriptState state = SmallReport();
  for (const char* script : {"#GETPROFILENAME(p2)", "#GETPROFILENAME(empty)", "#UNIT"}) Eval(state, script);
  EXPECT_FALSE(state.Started);
  EXPECT_FALSE(state.Finished);
}

TEST(ScriptFunctions, GateOpensAndClosesOnTheParameterRange) {
  ExelScriptState state = SmallReport();
  const std::string cell = "#DIST(, from, to)";  // from 0.1 to 0.15
  state.RowCursor = 1;
  Eval(state, cell);
  EXPECT_FALSE(state.Started);
  state.RowCursor = 2;
  Eval(state, cell);
  EXPECT_TRUE(state.Started);
  EXPECT_FALSE(state.Finished);
  state.RowCursor = 3;
  Eval(state, cell);
  EXPECT_TRUE(state.Finished);
  // A parameter that is blank means no limit.
  ExelScriptState open = SmallReport();
  open.RowCursor = 1;
  Eval(open, "#DIST(, blank, blank)");
  EXPECT_TRUE(open.Started);
}

struct GateCase {
  const char* What;
  bool Reversed;
  const char* Start;
  const char* End;
  double Distance;
  bool Started;
  bool Finished;
};

class RowGate : public ::testing::TestWithParam<GateCase> {};

TEST_P(RowGate, SetsTheFlags) {
  const GateCase& c = GetParam();
  ExelScriptState state;
  state.GridFirst = 0;
  state.GridLast = 100;
  state.Reversed = c.Reversed;
  UpdateRowGate(state, c.Start, c.End, c.Distance);
  EXPECT_EQ(state.Started, c.Started) << c.What;
  EXPECT_EQ(state.Finished, c.Finished) << c.What;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RowGate,
    ::testing::Values(
        GateCase{"start reached within 1e-10", false, "5", "", 5 - 1e-11, true, false},
        GateCase{"before the start", false, "5", "", 4.9, false, false},
        GateCase{"on the end is not past it", false, "", "10", 10, true, false},
        GateCase{"no tolerance past the end", false, "", "10", 10 + 1e-11, true, true},
        GateCase{"past the grid's last row", false, "", "", 100.5, true, true},
        GateCase{"a text start reads as 0", false, "abc", "", 0, true, false},
        GateCase{"reversed: the end starts", true, "", "10", 10 + 1e-11, true, false},
        GateCase{"reversed: above the end", true, "", "10", 10.1, false, false},
        GateCase{"reversed: the start finishes", true, "5", "", 4.99, true, true},
        GateCase{"reversed: below the grid's first row", true, "", "", -0.5, true, true}));

// Any text at all ends in a value, a script error or a LegacyError for the caller: never a crash.
TEST(ScriptRobustness, RandomTextsOfTheLanguagesCharacters) {
  const std::string alphabet = "()'\",&+-*/=<>#  1e0.ADISTPROFIRUN10B";
  std::mt19937 random(20240305);
  std::uniform_int_distribution<std::size_t> pick(0, alphabet.size() - 1), length(0, 40);
  testing::ScriptedUi ui;
  int values = 0, errors = 0, failures = 0;
  for (int n = 0; n < 20000; ++n) {
    std::string script;
    for (std::size_t i = length(random); i > 0; --i) script += alphabet[pick(random)];
    ExelScriptState state = SmallReport();
    state.Ui = &ui;
    try {
      EvaluateScript(state, script, n % 2);
      (state.ErrorCode.empty() ? values : errors)++;
    } catch (const LegacyError&) {
      ++failures;
    }
    ASSERT_EQ(state.Depth, 0) << script;
  }
  EXPECT_GT(values, 0);
  EXPECT_GT(errors, 0);
  EXPECT_GT(failures, 0);
}

TEST(OperatorScan, RightMostOperatorInListOrderOutsideQuotesAndParentheses) {
  std::string left, right;
  EXPECT_EQ(FindLastOperator("a >= b", {"==", ">=", "<=", "=", "<>", ">", "<"}, left, right), ">=");
  EXPECT_EQ(left, "a");
  EXPECT_EQ(right, "b");
  EXPECT_EQ(FindLastOperator("a - b + c", {"+", "-"}, left, right), "+");
  EXPECT_EQ(left, "a - b");
  EXPECT_EQ(FindLastOperator("+5", {"+", "-"}, left, right), "+");
  EXPECT_EQ(left, "");
  EXPECT_EQ(right, "5");
  EXPECT_EQ(FindLastOperator("'x+y'", {"+", "-"}, left, right), "");
  EXPECT_EQ(FindLastOperator("#F(a+b)", {"+", "-"}, left, right), "");
}

TEST(ArgumentSplit, CommasOutsideQuotesAndParentheses) {
  std::vector<std::string> args;
  EXPECT_EQ(SplitArguments("", args), 1);
  EXPECT_EQ(args, std::vector<std::string>{""});
  EXPECT_EQ(SplitArguments(" a , 'b,c', f(d,e) ,", args), 4);
  EXPECT_EQ(args, (std::vector<std::string>{"a", "'b,c'", "f(d,e)", ""}));
}

TEST(ScriptValueText, NumbersBooleansAndEmpty) {
  // The past-the-end distance reads back through the numeric helper as the number it stands for.
  EXPECT_EQ(uDblVal("1E+20"), 1e20);
  EXPECT_EQ(uDblVal("-1E+20"), -1e20);
  EXPECT_EQ(ScriptValue::FromNumber(1e20).ToText(), "1E+20");
  EXPECT_EQ(ScriptValue::FromNumber(-2.5).ToText(), "-2.5");
  EXPECT_EQ(ScriptValue::FromNumber(123456789012345678.0).ToText(), "1.23456789012346E+17");
  EXPECT_EQ(ScriptValue::FromBoolean(true).ToText(), "True");
  EXPECT_EQ(ScriptValue().ToText(), "");
  EXPECT_EQ(ScriptValue::FromText(" 12.5abc").LeadingNumber(), 12.5);
  EXPECT_EQ(ScriptValue::FromText("3E2x").LeadingNumber(), 300);
  EXPECT_EQ(ScriptValue::FromText("abc").LeadingNumber(), 0);
}

TEST(ScriptLookups, InputsChoicesAndSlotsByName) {
  const ExelScriptState state = SmallReport();
  EXPECT_EQ(GetInputValue(state, "from"), "0.1");
  EXPECT_EQ(GetInputValue(state, "fromV"), "");  // the "V" is added to the name
  EXPECT_EQ(GetProfileChoice(state, "p2"), 2);
  EXPECT_EQ(GetProfileChoice(state, "empty"), -1);
  EXPECT_EQ(GetProfileSlot(state, "p2"), 2);
  EXPECT_EQ(GetProfileSlot(state, "ghost"), -1);
}

}  // namespace
}  // namespace velmora
