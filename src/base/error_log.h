#pragma once
// The error log every handler of the program shares, and the start marker.
#include <exception>
#include <new>
#include <string_view>

#include "base/session.h"

namespace velmora {

// Appends "<stamp>  [ module : proc ]  ERROR : <text>" to TempPath/Sorvik_Err.log and, unless
// `quiet`, shows "ERROR : <text>" in a message box titled "[ module : proc ]" (exclamation icon).
// The stamp is "YYYY/MM/DD HH:MM:SS". Before TempPath is known (early start-up) only the message is
// shown. When the log cannot be written, the message is still shown and then the log's own failure
// (a LegacyError naming the log file) is raised to the caller.
void ErrorLog(Session& session, std::string_view moduleName, std::string_view procName, const std::exception& error,
              bool quiet = false);
// Writes "<stamp> : [START]" into a new UserLocalPath/debug.log.
void DebugStart(const Session& session);

// Runs `operation` as an operation boundary: a run-time error goes to ErrorLog under the module and
// procedure names and the result is false. Returns true when the operation ended normally. A log
// that cannot be written raises to the caller, as any error of a handler does. Running out of memory
// is no fault of the procedure's data: it goes on up to the operation that can name the profiles, the
// memory being freed on the way.
template <class F>
bool Guarded(Session& session, std::string_view moduleName, std::string_view procName, F&& operation) {
  try {
    operation();
    return true;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    ErrorLog(session, moduleName, procName, error);
    return false;
  }
}

// As Guarded, for steps after which the program goes on whatever happened (start-up, settings that
// fall back to built-in values): a log that cannot be written is passed over, the message having
// been shown.
template <class F>
bool GuardedContinue(Session& session, std::string_view moduleName, std::string_view procName, F&& operation, bool quiet = false) {
  try {
    operation();
    return true;
  } catch (const std::exception& error) {
    try {
      ErrorLog(session, moduleName, procName, error, quiet);
    } catch (const std::exception&) {
      // The message has been shown (unless quiet); there is nowhere else to report to.
    }
    return false;
  }
}

}  // namespace velmora
