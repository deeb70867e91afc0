#include "base/text_encoding.h"

#include <fcntl.h>
#include <iconv.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <random>

#include <fmt/format.h>

#include "base/legacy_error.h"
#include "base/line_reader.h"

namespace velmora {
namespace {

class Converter {
 public:
  Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {
    if (handle_ == reinterpret_cast<iconv_t>(-1))
      throw LegacyError(ErrorNumber::InvalidData, fmt::format("iconv: {} → {} is not available", from, to));
  }
  ~Converter() { iconv_close(handle_); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // Converts as much as it can; returns false at the first byte sequence that cannot be converted,
  // leaving `consumed` at its offset.
  bool Convert(std::string_view in, std::string& out, std::size_t& consumed) {
    char* src = const_cast<char*>(in.data());
    std::size_t left = in.size();
    out.resize(in.size() * 2 + 16);
    std::size_t produced = 0;
    bool ok = true;
    while (left > 0) {
      char* dst = out.data() + produced;
      std::size_t room = out.size() - produced;
      std::size_t r = iconv(handle_, &src, &left, &dst, &room);
      produced = out.size() - room;
      if (r != static_cast<std::size_t>(-1)) break;
      if (errno == E2BIG) {
        out.resize(out.size() * 2);
        continue;
      }
      ok = false;  // EILSEQ or EINVAL (truncated sequence at the end)
      break;
    }
    out.resize(produced);
    consumed = in.size() - left;
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    return ok;
  }

 private:
  iconv_t handle_;
};

std::size_t Utf8SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if ((lead >> 5) == 0x6) return 2;
  if ((lead >> 4) == 0xE) return 3;
  if ((lead >> 3) == 0x1E) return 4;
  return 1;
}

// A new file beside `path` under a name no other file has, created exclusively so that two writers
// can never share it; the name is returned in `name`.
std::FILE* CreateTempBeside(const std::filesystem::path& path, std::string& name) {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  for (int attempt = 0; attempt < 100; ++attempt) {
    name = path.string() + fmt::format(".tmp{:08x}", static_cast<unsigned>(random()));
    const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) return ::fdopen(fd, "wb");
    if (errno != EEXIST) break;
  }
  return nullptr;
}

}  // namespace

namespace {

// Converts one run of text that holds non-ASCII characters; what CP932 lacks becomes '?'.
void AppendConverted(Converter& converter, std::string_view utf8, std::string& result) {
  while (!utf8.empty()) {
    std::string part;
    std::size_t consumed = 0;
    bool ok = converter.Convert(utf8, part, consumed);
    result += part;
    if (ok) break;
    result += '?';  // the platform's default character for what CP932 lacks
    consumed += Utf8SequenceLength(static_cast<unsigned char>(utf8[consumed]));
    utf8.remove_prefix(std::min(consumed, utf8.size()));
  }
}

}  // namespace

// ASCII is the same in CP932, so runs of it are copied as they are and only the rest goes through
// the converter: result files are ASCII but for their head lines.
void AppendSystemCodePage(std::string_view utf8, std::string& result) {
  std::optional<Converter> converter;
  const auto ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  while (!utf8.empty()) {
    const auto other = std::find_if_not(utf8.begin(), utf8.end(), ascii);
    result.append(utf8.begin(), other);
    utf8.remove_prefix(static_cast<std::size_t>(other - utf8.begin()));
    if (utf8.empty()) break;
    const auto next = std::find_if(utf8.begin(), utf8.end(), ascii);
    if (!converter) converter.emplace("CP932", "UTF-8");
    AppendConverted(*converter, utf8.substr(0, static_cast<std::size_t>(next - utf8.begin())), result);
    utf8.remove_prefix(static_cast<std::size_t>(next - utf8.begin()));
  }
}

std::string ToSystemCodePage(std::string_view utf8) {
  std::string result;
  result.reserve(utf8.size());
  AppendSystemCodePage(utf8, result);
  return result;
}

namespace {

bool IsAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

Converter& FromCp932() {
  static thread_local Converter converter("UTF-8", "CP932");
  return converter;
}

}  // namespace

std::string FromSystemCodePage(std::string_view cp932, std::string_view source) {
  if (IsAscii(cp932)) return std::string(cp932);
  std::string result;
  std::size_t consumed = 0;
  if (!FromCp932().Convert(cp932, result, consumed)) {
    throw LegacyError(ErrorNumber::InvalidData,
                      fmt::format("{}: Shift-JIS として読めないバイトがあります (オフセット {}: 0x{:02X})",
                                  source.empty() ? "(text)" : source, consumed,
                                  static_cast<unsigned char>(cp932[consumed])));
  }
  return result;
}

std::string FromSystemCodePageReplacing(std::string_view cp932, bool& replaced) {
  replaced = false;
  if (IsAscii(cp932)) return std::string(cp932);
  std::string result, part;
  while (!cp932.empty()) {
    std::size_t consumed = 0;
    const bool whole = FromCp932().Convert(cp932, part, consumed);
    result += part;
    if (whole) break;
    result += "\xEF\xBF\xBD";  // U+FFFD REPLACEMENT CHARACTER
    replaced = true;
    cp932.remove_prefix(consumed + 1);
  }
  return result;
}

std::string ReadFileBytes(const std::filesystem::path& path) {
  CheckReadableFile(path);
  std::ifstream in(path, std::ios::binary);
  if (!in) RaiseFileError(ErrorNumber::PermissionDenied, path.string(), "ファイルを開けません。");
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) RaiseFileError(ErrorNumber::InvalidData, path.string(), "ファイルを読めません。");
  return bytes;
}

std::vector<std::string> ReadSystemTextLines(const std::filesystem::path& path) {
  LineReader reader(path);
  std::vector<std::string> lines;
  while (const auto line = reader.Next()) {
    if (IsAscii(*line)) {
      lines.emplace_back(*line);
      continue;
    }
    std::string text;
    std::size_t consumed = 0;
    if (!FromCp932().Convert(*line, text, consumed)) {
      throw LegacyError(ErrorNumber::InvalidData,
                        fmt::format("{}: {} 行目に Shift-JIS として読めないバイトがあります (0x{:02X})。", path.string(),
                                    reader.LineNumber(), static_cast<unsigned char>((*line)[consumed])));
    }
    lines.push_back(std::move(text));
  }
  return lines;
}

void WriteFileBytesAtomically(const std::filesystem::path& path, std::string_view bytes, FlushTo flush) {
  SystemTextWriter file(path, flush);
  file.Bytes(bytes);
  file.Commit();
}

void WriteSystemTextFile(const std::filesystem::path& path, const std::vector<std::string>& lines) {
  SystemTextWriter file(path);
  for (const auto& line : lines) file.Line(line);
  file.Commit();
}

namespace {
constexpr std::size_t kWriteBuffer = 1 << 16;
constexpr std::uint64_t kWritebackStep = 8 << 20;
}

SystemTextWriter::SystemTextWriter(std::filesystem::path path, FlushTo flush)
    : path_(std::move(path)), file_(CreateTempBeside(path_, temp_)), flush_(flush) {
  if (!file_) RaiseFileError(ErrorNumber::PathNotFound, path_.string(), std::strerror(errno));
  buffer_.reserve(kWriteBuffer + 256);
}

SystemTextWriter::~SystemTextWriter() {
  if (!file_) return;
  std::fclose(file_);
  std::remove(temp_.c_str());
}

void SystemTextWriter::Line(std::string_view utf8) {
  AppendSystemCodePage(utf8, buffer_);
  buffer_ += "\r\n";
  if (buffer_.size() >= kWriteBuffer) Flush();
}

void SystemTextWriter::Bytes(std::string_view bytes) {
  Flush();
  if (!failed_ && std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) {
    failed_ = true;
    error_ = errno;
  }
  written_ += bytes.size();
}

void SystemTextWriter::Flush() {
  if (!failed_ && std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) {
    failed_ = true;
    error_ = errno;
  }
  written_ += buffer_.size();
  buffer_.clear();
  if (flush_ == FlushTo::Disk && written_ - queued_ >= kWritebackStep) StartWriteback();
}

// Hands what has been written so far to the disk without waiting for it, so that the disk works while
// the rest of the file is made and Commit's wait for the disk is short. Only a hint: a failure here is
// found by Commit's fsync.
void SystemTextWriter::StartWriteback() {
  if (failed_ || std::fflush(file_) != 0) return;
  ::sync_file_range(::fileno(file_), static_cast<off64_t>(queued_), static_cast<off64_t>(written_ - queued_),
                    SYNC_FILE_RANGE_WRITE);
  queued_ = written_;
}

void SystemTextWriter::Commit() {
  Flush();
  bool ok = !failed_ && std::fflush(file_) == 0 && (flush_ == FlushTo::System || ::fsync(::fileno(file_)) == 0);
  const int saved = failed_ ? error_ : errno;
  ok = (std::fclose(file_) == 0) && ok;
  file_ = nullptr;
  if (!ok) {
    std::remove(temp_.c_str());
    RaiseFileError(ErrorNumber::DiskFull, path_.string(), std::strerror(saved));
  }
  if (std::rename(temp_.c_str(), path_.c_str()) != 0) {
    const int err = errno;
    std::remove(temp_.c_str());
    RaiseFileError(ErrorNumber::PermissionDenied, path_.string(), std::strerror(err));
  }
}

void AppendSystemTextLine(const std::filesystem::path& path, std::string_view line) {
  std::FILE* file = std::fopen(path.c_str(), "ab");
  if (!file) RaiseFileError(ErrorNumber::PathNotFound, path.string(), std::strerror(errno));
  const std::string bytes = ToSystemCodePage(line) + "\r\n";
  bool ok = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  ok = (std::fclose(file) == 0) && ok;
  if (!ok) RaiseFileError(ErrorNumber::DiskFull, path.string(), "書き込めません。");
}

}  // namespace velmora
