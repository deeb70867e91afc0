#pragma once
// Ini files ("[section]" and "key=value" lines) in Shift-JIS with CR LF, read and written with the
// rules of the platform's profile calls the program was built on:
//  - section and key names are compared without regard to ASCII case and surrounding blanks;
//  - a value ends at a NUL byte, is trimmed of blanks and tabs, and one pair of enclosing quotes ("..." or '...') is
//    dropped; the first of repeated sections or keys counts;
//  - lines starting with ";" and lines that are neither a section head nor a key are ignored;
//  - writing replaces only the line of the key (or adds one at the end of its section, or adds the
//    section at the end of the file, or creates the file); every other byte stays as it was. The file
//    is written beside itself and renamed over, so a failed write leaves the old file whole.
// A missing file reads as empty. A file that cannot be read, or holds bytes that are not Shift-JIS,
// raises LegacyError naming the file (and the line); writing to such a file changes nothing.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

class IniDocument {
 public:
  // An empty document that will be written to `path`.
  explicit IniDocument(std::filesystem::path path);
  // Reads `path`; an absent file gives an empty document.
  static IniDocument Load(const std::filesystem::path& path);

  // The value of a key (possibly empty), or nullopt when the section or key is absent.
  std::optional<std::string> Get(std::string_view section, std::string_view key) const;
  // Sets a key, keeping every other line. Names may not be empty, and no text may hold a line
  // break; a section name may not hold "]" and a key name not "=" (raises LegacyError otherwise).
  void Set(std::string_view section, std::string_view key, std::string_view value);
  // Writes the document to its file atomically.
  void Save() const;

  const std::filesystem::path& path() const { return path_; }

 private:
  struct Line {
    std::string raw;      // the bytes as in the file, without the line ending
    std::string ending;   // "\r\n", "\n", "\r" or "" for a last line without one
    std::string section;  // for a section head: its trimmed name
    std::string key;      // for a key line: its trimmed name
    std::string value;    // for a key line: the trimmed, unquoted value
    bool isSection = false;
    bool isKey = false;
  };
  static Line ParseLine(std::string raw, std::string ending, const std::filesystem::path& path, std::size_t number);
  // Index of the head of the first section named `section`, or npos.
  std::size_t FindSection(std::string_view section) const;

  std::filesystem::path path_;
  std::vector<Line> lines_;
};

// One value from a file, as above: nullopt for a missing file, section or key.
std::optional<std::string> ReadIniValue(const std::filesystem::path& path, std::string_view section,
                                        std::string_view key);
// Sets one key in a file (created when missing; its folder must exist).
void WriteIniValue(const std::filesystem::path& path, std::string_view section, std::string_view key,
                   std::string_view value);

}  // namespace velmora
