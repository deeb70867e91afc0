#pragma once
// Text inside the program is UTF-8. Files in the "system code page" are Shift-JIS (CP932) with CR LF;
// these functions are the only place where the two meet.
#include <cstdio>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// UTF-8 → CP932. A character CP932 cannot hold becomes "?", as the platform's conversion did.
std::string ToSystemCodePage(std::string_view utf8);
// The same, appended to `out` (one buffer for a whole file).
void AppendSystemCodePage(std::string_view utf8, std::string& out);
// CP932 → UTF-8. Invalid bytes raise LegacyError(InvalidData) naming `source` (a file name) and the
// byte offset.
std::string FromSystemCodePage(std::string_view cp932, std::string_view source = {});
// The same for texts where a stray byte must not cost the whole file (header lines, titles): a byte
// that is not Shift-JIS becomes U+FFFD, and `replaced` tells whether any did.
std::string FromSystemCodePageReplacing(std::string_view cp932, bool& replaced);

// The whole file as UTF-8 lines, read line by line. Lines end at CR LF, LF or a lone CR; the ending is
// not kept, and a final line ending does not make an extra empty line. A missing, unreadable or folder
// path, or a line longer than kMaxLineBytes, raises LegacyError naming the file.
std::vector<std::string> ReadSystemTextLines(const std::filesystem::path& path);

// Writes the lines, each followed by CR LF, in CP932. The file is written beside its target and then
// renamed over it, so a failure never leaves a half-written file in place of the old one.
void WriteSystemTextFile(const std::filesystem::path& path, const std::vector<std::string>& lines);

// The same line by line, for tables too long to hold as lines: each line is converted into a buffer
// that goes to the file beside the target (made new, never an existing file taken over) as it fills. Commit renames it over the target; a writer
// destroyed without Commit (an error on the way) removes it, and the old target stays whole.
// How far Commit flushes before the rename: to the disk (the files a user keeps), or only to the
// system (copies in the scratch tree, which the next start wipes: waiting for the disk buys nothing).
enum class FlushTo { Disk, System };

class SystemTextWriter {
 public:
  explicit SystemTextWriter(std::filesystem::path path, FlushTo flush = FlushTo::Disk);
  ~SystemTextWriter();
  SystemTextWriter(const SystemTextWriter&) = delete;
  SystemTextWriter& operator=(const SystemTextWriter&) = delete;

  void Line(std::string_view utf8);
  void Bytes(std::string_view bytes);  // as they are, for files that are not text (ERD writes)
  void Commit();

 private:
  void Flush();
  void StartWriteback();

  std::filesystem::path path_;
  std::string temp_;
  std::FILE* file_;
  FlushTo flush_;
  std::string buffer_;
  bool failed_ = false;
  int error_ = 0;
  std::uint64_t written_ = 0;  // bytes handed to the file
  std::uint64_t queued_ = 0;   // of which the disk has been asked to write
};

// Appends one line + CR LF (log files: opened and closed for every line).
void AppendSystemTextLine(const std::filesystem::path& path, std::string_view line);

// Raw byte access for readers that parse as they go, with the same error rules.
std::string ReadFileBytes(const std::filesystem::path& path);
void WriteFileBytesAtomically(const std::filesystem::path& path, std::string_view bytes, FlushTo flush = FlushTo::Disk);

}  // namespace velmora
