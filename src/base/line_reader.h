#pragma once
// Reads a file line by line through one buffer, so that memory stays bounded whatever the file's size:
// a profile reader holds its samples and this buffer, never the whole file.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/legacy_error.h"

namespace velmora {

// Longest line any reader accepts: a line of a profile or a table is far shorter, so a longer one is
// a file that is not what it claims to be.
inline constexpr std::size_t kMaxLineBytes = std::size_t{1} << 20;

// A line longer than the limit asked for; the reader that asked decides what that means.
class LineTooLong : public LegacyError {
 public:
  using LegacyError::LegacyError;
};

class LineReader {
 public:
  // Opens `path`; a missing file, a folder or an unreadable file raises LegacyError naming it.
  explicit LineReader(const std::filesystem::path& path);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  // The next line without its ending (CR LF, LF or a lone CR; a final ending makes no extra empty
  // line), valid until the next call; nullopt at the end. A line longer than `limit` raises LineTooLong
  // naming the file and the line.
  std::optional<std::string_view> Next(std::size_t limit = kMaxLineBytes);
  long LineNumber() const { return line_; }  // 1-based number of the line last returned
  std::uintmax_t FileSize() const { return size_; }
  const std::string& Path() const { return path_; }

 private:
  bool Fill();  // reads more behind what is left; false at the end of the file

  std::string path_;
  std::FILE* file_ = nullptr;
  std::uintmax_t size_ = 0;
  std::string buffer_;
  std::size_t begin_ = 0, end_ = 0;
  bool eof_ = false;
  long line_ = 0;
};

// The one check every reader makes before opening: a missing file, a folder and an unreadable file
// each get their own message naming the file.
void CheckReadableFile(const std::filesystem::path& path);

}  // namespace velmora
