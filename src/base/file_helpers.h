#pragma once
// Files and folders: existence, deletion by pattern, copy and move that never leave a half-written
// target, recursive search and free names. Failures raise LegacyError naming the path and the reason.
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// True when `pattern` matches the whole file `name`: "*" any run of characters, "?" one character,
// letters compared without regard to case (as the program's patterns were written for a file system
// that ignores case). "*.*" matches every name, with or without a ".".
bool MatchFilePattern(std::string_view name, std::string_view pattern);

// True when the folder exists.
bool DirCheck(std::string_view folder);
// Deletes the files directly in `folder` (not in its sub-folders) whose names match `pattern`.
// Nothing when the folder does not exist.
void DeletePath(std::string_view folder, std::string_view pattern);
// Deletes the file when it exists.
void DeleteFile(std::string_view path);
// Deletes the folder with everything in it; silent when it does not exist.
void DeleteFolder(std::string_view folder);
// Copies with overwrite; nothing when the source is missing or the target is empty. The copy is
// written beside the target and renamed over it, so a failed copy leaves the old target whole.
void uFileCopy_A(std::string_view from, std::string_view to);
// Renames `from` to `to`, replacing an existing target; nothing when the source is missing or the
// target is empty. Across file systems it copies and then deletes the source.
void uFileMove(std::string_view from, std::string_view to);
// Full paths of the files under `folder` and its sub-folders whose names match `pattern`: the files
// of a folder in name order, then those of each sub-folder in name order. Empty when the folder is
// missing.
std::vector<std::string> uFileFindAll(std::string_view folder, std::string_view pattern);
// "name.extension" when no such file is in `folder`, else the first free "name(001).extension" up to
// "name(999).extension". An empty extension gives no ".". Raises when all 999 are taken.
std::string uFreeName(std::string_view folder, std::string_view name, std::string_view extension);

}  // namespace velmora
