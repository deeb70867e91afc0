#pragma once
// The files of one run: its private scratch tree, and the move of finished result files from the
// staging folder into the output folder, never leaving a half-written file there and never taking
// the name of a file that another run has just written.
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace velmora::cli {

// A new folder "velmora-XXXXXX" under $TMPDIR (else /tmp), readable by its owner only. Throws
// std::runtime_error naming the folder when it cannot be made.
std::filesystem::path MakeScratchTree();
// Removes the tree; errors are ignored (nothing useful can be done about them at exit).
void RemoveTree(const std::filesystem::path& folder) noexcept;

// `name` without the run's date stamp (the longest of its forms found, with one "_" beside it), so
// that repeated runs with --no-timestamp replace their own files; unchanged when it has none.
std::string WithoutStamp(const std::string& name, const std::tm& stamp);

// Moves `file` to `target`. With `replace`, an existing target is replaced in one step; without, a
// taken name gives way to the first free "stem(001).ext" .. "stem(999).ext". The target's folder is
// made when missing. Across file systems the file is copied beside the target first. Returns the
// final path; throws std::runtime_error naming the path and the reason.
std::filesystem::path PlaceFile(const std::filesystem::path& file, const std::filesystem::path& target, bool replace);

// Moves every file of `staging` (in name order) into `folder`, the run's stamp dropped from names
// with `noTimestamp`, replacing or taking free names as PlaceFile does; the final paths.
std::vector<std::string> PublishStaged(const std::filesystem::path& staging, const std::filesystem::path& folder,
                                       const std::tm& stamp, bool noTimestamp, bool replace);

// Appends the lines of `from` (when it exists) to `to`, making its folder. For the error log,
// which lives in the scratch tree and must outlive it.
void AppendFile(const std::filesystem::path& from, const std::filesystem::path& to) noexcept;

}  // namespace velmora::cli
