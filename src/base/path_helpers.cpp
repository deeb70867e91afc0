#include "base/path_helpers.h"

#include <filesystem>
#include <system_error>

#include "base/common.h"

namespace velmora {
namespace {
// Byte offset of the last separator, or npos. Both separators are ASCII, so byte offsets in UTF-8
// text are safe.
std::size_t LastSeparator(std::string_view path) { return path.find_last_of("/\\"); }
}  // namespace

std::string flGetFileName(std::string_view path) {
  const std::size_t sep = LastSeparator(path);
  return std::string(sep == std::string_view::npos ? path : path.substr(sep + 1));
}

std::string flGetFileNameNonExt(std::string_view path) {
  std::string name = flGetFileName(path);
  const std::size_t dot = name.rfind('.');
  if (dot != std::string::npos) name.resize(dot);
  return name;
}

std::string flGetPathName(std::string_view path) {
  const std::size_t sep = LastSeparator(path);
  return sep == std::string_view::npos ? std::string() : std::string(path.substr(0, sep));
}

std::string flGetExtension(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  const std::size_t sep = LastSeparator(path);
  if (dot == std::string_view::npos || (sep != std::string_view::npos && dot < sep)) return {};
  return std::string(path.substr(dot + 1));
}

std::string flAddDirSep(std::string_view path) {
  std::string out(path);
  if (out.empty() || (out.back() != '/' && out.back() != '\\')) out += '/';
  return out;
}

bool flSearchPath(std::string_view path) {
  std::error_code ec;
  return !path.empty() && std::filesystem::is_regular_file(std::filesystem::path(path), ec);
}

std::size_t flInStrRev(std::string_view text, std::string_view find) {
  const std::size_t at = text.rfind(find);
  if (at == std::string_view::npos || find.empty()) return 0;
  return CharLength(text.substr(0, at)) + 1;
}

std::string flStrRev(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t end = text.size();
  while (end > 0) {
    std::size_t begin = end - 1;
    while (begin > 0 && (static_cast<unsigned char>(text[begin]) & 0xC0) == 0x80) --begin;
    out.append(text.substr(begin, end - begin));
    end = begin;
  }
  return out;
}

}  // namespace velmora
