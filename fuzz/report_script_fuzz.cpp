// The report script on any text: a value or a script error, never a crash.
#include "fuzz_support.h"
#include "base/legacy_error.h"
#include "report/report_script.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  ExelScriptState state;
  state.UnitText = "m";
  state.ProfileTitles = {"before", "after"};
  state.InputValues["startV"] = "0";
  state.InputValues["endV"] = "100";
  try {
    EvaluateScript(state, std::string_view(reinterpret_cast<const char*>(data), size), 0);
  } catch (const LegacyError&) {
  }
  return 0;
}
