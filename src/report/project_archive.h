#pragma once
// The project file ".prj": the folder "Project" as a ZIP archive. Entries are named as the program
// has always stored them: "Project/User.dat", "Project/Profile/<name>.erd", with the folders
// "Project/Profile/" and "Project/Screening/" as entries of their own, names in the system code page
// (Shift-JIS) without the UTF-8 flag. Archives from elsewhere are read with "\" or "/" separators and
// with Shift-JIS or UTF-8 names.
#include <cstdint>
#include <filesystem>

namespace velmora {

// What an archive may hold before it is taken for a bomb.
struct ArchiveLimits {
  std::uint64_t MaxUnpackedBytes = std::uint64_t{2} << 30;  // all entries together
  std::uint64_t MaxEntries = 10000;
  std::uint64_t MaxRatio = 1000;  // unpacked size / packed size of one entry
};

// Packs `projectFolder` (its files and sub-folders, "*.bin" files left out) under the name
// "Project" into `target`. The archive is written beside the target under a new name, flushed, and
// then renamed over it: a save that fails or is stopped leaves the old file as it was. Failures
// raise LegacyError naming the target.
void PackProjectFolder(const std::filesystem::path& projectFolder, const std::filesystem::path& target);

// Unpacks `archive` into the existing, empty folder `destination`, and nothing outside it. Before
// anything is written every entry is checked: a name with "..", a leading "/" or "\" or a drive
// letter, a symbolic link, a name given twice, more than MaxEntries entries, more than
// MaxUnpackedBytes in all or an entry packed more than MaxRatio to one are refused. A file that is
// empty, not a ZIP archive, cut short, or whose entry fails its CRC is refused as well. Each refusal
// raises LegacyError(InvalidData) whose text names the entry and the reason (without the archive's
// name, which the caller's message carries). A file that fails its CRC is removed; the folders made
// by then stay in `destination`.
void UnpackProjectArchive(const std::filesystem::path& archive, const std::filesystem::path& destination,
                          const ArchiveLimits& limits = {});

}  // namespace velmora
