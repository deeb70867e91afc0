#pragma once
// Project\User.dat: the text part of a project file. It holds the profiles' sources, route names,
// dates and comments, their M-wave studies and the calculation conditions of the filter, IRI and
// repair-study tabs, in the system code page with CR LF. There is no quoting: a free text holding
// "," is written with the full-width "，" instead.
#include <cstddef>
#include <ctime>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/app_paths.h"
#include "base/conditions.h"
#include "base/session.h"
#include "report/project_record.h"

namespace velmora {

// A User.dat that cannot be taken: the text says what and where (line numbers from 1). A file of a
// later program version is told by its own message (`NewerVersion`).
class UserDataError : public std::runtime_error {
 public:
  explicit UserDataError(const std::string& text, bool newerVersion = false)
      : std::runtime_error(text), newerVersion_(newerVersion) {}
  bool NewerVersion() const noexcept { return newerVersion_; }

 private:
  bool newerVersion_;
};

// A free text as the file holds it: each "," written as "，".
std::string UserDataText(std::string_view text);

// The lines of User.dat (UTF-8, without line ends) for `project` and `conditions` at `now`. Paths
// are abbreviated by the folder macros of `paths`. `commaReplaced` tells whether a free text had
// its "," written as "，".
std::vector<std::string> UserDataLines(const AppPaths& paths, const ProjectRecord& project,
                                       const CalcConditions& conditions, const std::tm& now, bool& commaReplaced);

// The reader's position in the file's lines; `Next` is the index of the next line to read.
struct UserDataCursor {
  const std::vector<std::string>& Lines;
  std::size_t Next = 0;
};
// The next significant line, trimmed: empty lines and those beginning with "'" or "*" are passed
// over. Empty at the end of the file.
std::string uLineInput(UserDataCursor& cursor);

// Reads the lines into `project` (version, user text, profiles without their ERD data, studies into
// the set before adjustment) and the conditions the file holds into `conditions`; the others stay.
// Raises UserDataError for a file of a later major or minor version, for a line with too many or
// too few fields, a value that is not a number or a date, a count that does not match the lines,
// and a file that ends early.
void ParseUserData(const std::vector<std::string>& lines, const AppPaths& paths, ProjectRecord& project,
                   CalcConditions& conditions);

// Writes `path` (replacing it in one step). Tells the user once when a "," of a free text was
// written as "，". Run-time errors are logged under "funWriteUserData" and give false.
bool funWriteUserData(Session& session, const std::string& path, const ProjectRecord& project,
                      const CalcConditions& conditions);
// Reads `path` into `project` and `conditions`. A missing file, a newer version and a malformed
// file are told to the user (the file named) and give false; other run-time errors are logged
// under "funReadUserData".
bool funReadUserData(Session& session, const std::string& path, ProjectRecord& project, CalcConditions& conditions);

// The message for a malformed User.dat: what is wrong with the file named `shownName`.
std::string UserDataErrorText(const std::string& shownName, const UserDataError& error);

}  // namespace velmora
