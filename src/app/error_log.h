#pragma once
// The error log every handler of the program shares, and the start marker.
#include <exception>
#include <string_view>

namespace velmora {

// Appends "<stamp>  [ module : proc ]  ERROR : <text>" to TempPath/Sorvik_Err.log and, unless
// `quiet`, shows the text in a message box titled "[ module : proc ]".
void ErrorLog(std::string_view moduleName, std::string_view procName, const std::exception& error,
              bool quiet = false);
// Writes "<stamp> : [START]" into a new UserLocalPath/debug.log.
void DebugStart();

// Runs `operation` as an operation boundary: a run-time error goes to ErrorLog under the module and
// procedure names and the result is false. Returns true when the operation ended normally.
template <class F>
bool Guarded(std::string_view moduleName, std::string_view procName, F&& operation) {
  try {
    operation();
    return true;
  } catch (const std::exception& error) {
    ErrorLog(moduleName, procName, error);
    return false;
  }
}

}  // namespace velmora
