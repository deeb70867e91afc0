#include "base/line_reader.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fmt/format.h>

namespace velmora {
namespace {
constexpr std::size_t kChunk = std::size_t{1} << 16;
}

void CheckReadableFile(const std::filesystem::path& path) {
  namespace fs = std::filesystem;
  std::error_code ec;
  const fs::file_status status = fs::status(path, ec);
  if (!fs::exists(status)) RaiseFileError(ErrorNumber::FileNotFound, path.string(), "ファイルが見つかりません。");
  if (fs::is_directory(status))
    RaiseFileError(ErrorNumber::PermissionDenied, path.string(), "ファイルではなくフォルダです。");
  if (::access(path.c_str(), R_OK) != 0)
    RaiseFileError(ErrorNumber::PermissionDenied, path.string(), "ファイルを開けません。");
}

LineReader::LineReader(const std::filesystem::path& path) : path_(path.string()) {
  CheckReadableFile(path);
  file_ = std::fopen(path.c_str(), "rb");
  if (!file_) RaiseFileError(ErrorNumber::PermissionDenied, path_, "ファイルを開けません。");
  std::error_code ec;
  size_ = std::filesystem::file_size(path, ec);
  buffer_.resize(kChunk);
}

LineReader::~LineReader() {
  if (file_) std::fclose(file_);
}

bool LineReader::Fill() {
  if (eof_) return false;
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (end_ == buffer_.size()) buffer_.resize(buffer_.size() * 2);
  const std::size_t got = std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, file_);
  if (got == 0) {
    if (std::ferror(file_)) RaiseFileError(ErrorNumber::InvalidData, path_, "ファイルを読めません。");
    eof_ = true;
    return false;
  }
  end_ += got;
  return true;
}

std::optional<std::string_view> LineReader::Next(std::size_t limit) {
  std::size_t scanned = 0;  // bytes behind begin_ known to hold no line end
  for (;;) {
    const char* base = buffer_.data();
    std::size_t at = static_cast<std::size_t>(
        std::find_if(base + begin_ + scanned, base + end_, [](char c) { return c == '\r' || c == '\n'; }) - base);
    if (at - begin_ > limit) {
      throw LineTooLong(ErrorNumber::InvalidData,
                        fmt::format("{}: {} 行目が長すぎます ({} バイトを超えています)。", path_, line_ + 1, limit));
    }
    if (at < end_) {
      // A CR at the end of what is read may be the first half of CR LF: read on before deciding.
      if (buffer_[at] == '\r' && at + 1 == end_ && !eof_) {
        scanned = at - begin_;
        Fill();
        at = begin_ + scanned;
      }
      const std::string_view line(buffer_.data() + begin_, at - begin_);
      begin_ = at + ((buffer_[at] == '\r' && at + 1 < end_ && buffer_[at + 1] == '\n') ? 2 : 1);
      ++line_;
      return line;
    }
    scanned = end_ - begin_;
    if (!Fill()) {
      if (end_ == begin_) return std::nullopt;
      const std::string_view line(buffer_.data() + begin_, end_ - begin_);
      begin_ = end_;
      ++line_;
      return line;
    }
  }
}

}  // namespace velmora
