#include "run_files.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <fmt/format.h>

#include "base/legacy_format.h"

namespace velmora::cli {
namespace fs = std::filesystem;
namespace {

std::runtime_error Failure(const fs::path& path, const std::string& why) {
  return std::runtime_error(path.string() + ": " + why);
}

// Copies `file` into a new hidden file in `folder` (its name taken with mkstemp); its path.
fs::path CopyBeside(const fs::path& file, const fs::path& folder) {
  std::string pattern = (folder / ".velmora-XXXXXX").string();
  const int reserved = ::mkstemp(pattern.data());
  if (reserved < 0) throw Failure(folder, std::strerror(errno));
  ::close(reserved);
  std::error_code ec;
  fs::copy_file(file, pattern, fs::copy_options::overwrite_existing, ec);
  if (ec) {
    ::unlink(pattern.c_str());
    throw Failure(folder / file.filename(), ec.message());
  }
  return pattern;
}

fs::path Numbered(const fs::path& target, int k) {
  return target.parent_path() / fmt::format("{}({:03}){}", target.stem().string(), k, target.extension().string());
}

}  // namespace

fs::path MakeScratchTree() {
  const char* tmp = std::getenv("TMPDIR");
  std::string pattern = (fs::path(tmp && *tmp ? tmp : "/tmp") / "velmora-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw Failure(pattern, std::strerror(errno));
  return pattern;
}

void RemoveTree(const fs::path& folder) noexcept {
  std::error_code ec;
  fs::remove_all(folder, ec);
}

std::string WithoutStamp(const std::string& name, const std::tm& stamp) {
  for (const char* form : {"YYYYMMDDHHNNSS", "YYYYMMDDHHNN", "YYYYMMDDHH", "YYYYMMDD"}) {
    const std::string text = FormatDateTime(stamp, form);
    std::size_t at = name.find(text);
    if (at == std::string::npos) continue;
    std::size_t length = text.size();
    if (at > 0 && name[at - 1] == '_') --at, ++length;
    else if (at + length < name.size() && name[at + length] == '_') ++length;
    return name.substr(0, at) + name.substr(at + length);
  }
  return name;
}

fs::path PlaceFile(const fs::path& file, const fs::path& target, bool replace) {
  std::error_code ec;
  fs::create_directories(target.parent_path().empty() ? "." : target.parent_path(), ec);
  fs::path source = file;
  bool copied = false;
  const auto sameFileSystem = [&](int error) {
    if (error != EXDEV || copied) return false;
    source = CopyBeside(file, target.parent_path().empty() ? "." : target.parent_path());
    copied = true;
    return true;
  };
  if (replace) {
    while (::rename(source.c_str(), target.c_str()) != 0)
      if (!sameFileSystem(errno)) throw Failure(target, std::strerror(errno));
    if (copied) ::unlink(file.c_str());
    return target;
  }
  for (int k = 0; k <= 999;) {
    const fs::path candidate = k == 0 ? target : Numbered(target, k);
    if (::link(source.c_str(), candidate.c_str()) == 0) {
      ::unlink(source.c_str());
      if (copied) ::unlink(file.c_str());
      return candidate;
    }
    const int error = errno;
    if (error == EEXIST) ++k;
    else if (!sameFileSystem(error)) {
      if (copied) ::unlink(source.c_str());
      throw Failure(candidate, std::strerror(error));
    }
  }
  if (copied) ::unlink(source.c_str());
  throw Failure(target, "no free name up to (999)");
}

std::vector<std::string> PublishStaged(const fs::path& staging, const fs::path& folder, const std::tm& stamp,
                                       bool noTimestamp, bool replace) {
  std::vector<fs::path> files;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(staging, ec))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  std::vector<std::string> placed;
  for (const fs::path& file : files) {
    const std::string name = file.filename().string();
    const fs::path target = folder / (noTimestamp ? WithoutStamp(name, stamp) : name);
    placed.push_back(PlaceFile(file, target, replace).string());
  }
  return placed;
}

void AppendFile(const fs::path& from, const fs::path& to) noexcept {
  std::error_code ec;
  if (!fs::is_regular_file(from, ec) || fs::file_size(from, ec) == 0) return;
  fs::create_directories(to.parent_path(), ec);
  std::ifstream in(from, std::ios::binary);
  std::ofstream out(to, std::ios::binary | std::ios::app);
  out << in.rdbuf();
}

}  // namespace velmora::cli
