#include "base/file_helpers.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "base/legacy_error.h"
#include "base/line_reader.h"
#include "base/text_encoding.h"
#include "base/path_helpers.h"

namespace velmora {
namespace fs = std::filesystem;
namespace {

char Lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }
std::size_t Utf8Length(std::string_view text, std::size_t at) {
  std::size_t n = 1;
  while (at + n < text.size() && (static_cast<unsigned char>(text[at + n]) & 0xC0) == 0x80) ++n;
  return n;
}

bool Match(std::string_view name, std::string_view pattern) {
  // Iterative glob with one back-tracking point for the last "*".
  std::size_t n = 0, p = 0, starP = std::string_view::npos, starN = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      starP = p++;
      starN = n;
    } else if (p < pattern.size() && pattern[p] == '?') {
      ++p;
      n += Utf8Length(name, n);
    } else if (p < pattern.size() && Lower(pattern[p]) == Lower(name[n])) {
      ++p;
      ++n;
    } else if (starP != std::string_view::npos) {
      p = starP + 1;
      starN += Utf8Length(name, starN);
      n = starN;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

[[noreturn]] void Fail(ErrorNumber number, const fs::path& path, std::string_view what, const std::error_code& ec) {
  RaiseFileError(number, path.string(), fmt::format("{} ({})", what, ec.message()));
}

// Through the one atomic writer: a copy that fails midway leaves the old target whole.
void CopyOver(const fs::path& from, const fs::path& to) {
  CheckReadableFile(from);
  std::FILE* in = std::fopen(from.c_str(), "rb");
  if (!in) RaiseFileError(ErrorNumber::PermissionDenied, from.string(), "ファイルを開けません。");
  try {
    SystemTextWriter out(to);
    std::string chunk(std::size_t{1} << 16, '\0');
    for (std::size_t got; (got = std::fread(chunk.data(), 1, chunk.size(), in)) > 0;)
      out.Bytes(std::string_view(chunk.data(), got));
    if (std::ferror(in)) RaiseFileError(ErrorNumber::InvalidData, from.string(), "ファイルを読めません。");
    out.Commit();
  } catch (...) {
    std::fclose(in);
    throw;
  }
  std::fclose(in);
}

void FindAll(const fs::path& folder, std::string_view pattern, std::vector<std::string>& found) {
  std::vector<fs::path> files, folders;
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    // Linked folders are not followed, so a link loop cannot make the walk endless.
    if (it->is_directory(typeError) && !it->is_symlink(typeError)) folders.push_back(it->path());
    else if (Match(it->path().filename().string(), pattern)) files.push_back(it->path());
  }
  if (ec) Fail(ErrorNumber::PermissionDenied, folder, "フォルダを読めません。", ec);
  std::sort(files.begin(), files.end());
  std::sort(folders.begin(), folders.end());
  for (const auto& file : files) found.push_back(file.string());
  for (const auto& sub : folders) FindAll(sub, pattern, found);
}

}  // namespace

bool MatchFilePattern(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  return Match(name, pattern);
}

bool DirCheck(std::string_view folder) {
  std::error_code ec;
  return !folder.empty() && fs::is_directory(fs::path(folder), ec);
}

void DeletePath(std::string_view folder, std::string_view pattern) {
  if (!DirCheck(folder)) return;
  std::error_code ec;
  std::vector<fs::path> doomed;
  for (fs::directory_iterator it(fs::path(folder), ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    if (!it->is_directory(typeError) && MatchFilePattern(it->path().filename().string(), pattern))
      doomed.push_back(it->path());
  }
  if (ec) Fail(ErrorNumber::PermissionDenied, fs::path(folder), "フォルダを読めません。", ec);
  for (const auto& file : doomed)
    if (!fs::remove(file, ec) && ec) Fail(ErrorNumber::PermissionDenied, file, "ファイルを削除できません。", ec);
}

void DeleteFile(std::string_view path) {
  std::error_code ec;
  const fs::path file(path);
  if (path.empty() || !fs::exists(fs::symlink_status(file, ec))) return;
  if (fs::is_directory(fs::symlink_status(file, ec)))
    RaiseFileError(ErrorNumber::PermissionDenied, file.string(), "ファイルではなくフォルダです。");
  if (!fs::remove(file, ec) && ec) Fail(ErrorNumber::PermissionDenied, file, "ファイルを削除できません。", ec);
}

void DeleteFolder(std::string_view folder) {
  if (!DirCheck(folder)) return;
  std::error_code ec;
  fs::remove_all(fs::path(folder), ec);
  if (ec) Fail(ErrorNumber::PermissionDenied, fs::path(folder), "フォルダを削除できません。", ec);
}

void uFileCopy_A(std::string_view from, std::string_view to) {
  if (to.empty() || !flSearchPath(from)) return;
  CopyOver(fs::path(from), fs::path(to));
}

void uFileMove(std::string_view from, std::string_view to) {
  if (to.empty() || !flSearchPath(from)) return;
  std::error_code ec;
  fs::rename(fs::path(from), fs::path(to), ec);
  if (ec == std::errc::cross_device_link) {
    CopyOver(fs::path(from), fs::path(to));
    DeleteFile(from);
  } else if (ec) {
    Fail(ErrorNumber::PermissionDenied, fs::path(to), "ファイルを移動できません。", ec);
  }
}

std::vector<std::string> uFileFindAll(std::string_view folder, std::string_view pattern) {
  std::vector<std::string> found;
  if (DirCheck(folder)) FindAll(fs::path(folder), pattern, found);
  return found;
}

std::string uFreeName(std::string_view folder, std::string_view name, std::string_view extension) {
  std::string suffix;
  if (!extension.empty()) suffix.append(".").append(extension);
  const std::string base = flAddDirSep(folder);
  std::string candidate = std::string(name) + suffix;
  std::error_code ec;
  for (int number = 1; fs::exists(fs::path(base + candidate), ec); ++number) {
    if (number > 999)
      RaiseFileError(ErrorNumber::PathNotFound, base + candidate, "空いている番号がありません (999 まで使用済み)。");
    candidate = fmt::format("{}({:03d}){}", name, number, suffix);
  }
  return candidate;
}

}  // namespace velmora
