// The project archive on any bytes: no crash, and nothing written outside the folder it unpacks into.
#include <algorithm>

#include "fuzz_support.h"
#include "base/legacy_error.h"
#include "report/project_archive.h"

namespace {

// Every path under `folder`, to tell whether anything appeared beside the unpacking folder.
std::vector<std::string> Listing(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  std::error_code ec;
  for (std::filesystem::recursive_directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
    names.push_back(it->path().string());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const std::filesystem::path outside = fuzz::Folder() / "outside";
  const std::filesystem::path inside = outside / "unpacked";
  std::error_code ec;
  std::filesystem::remove_all(outside, ec);
  std::filesystem::create_directories(inside);
  const std::string path = fuzz::WriteInput(data, size, "input.prj");
  try {
    UnpackProjectArchive(path, inside);
  } catch (const LegacyError&) {
  }
  for (const std::string& name : Listing(outside))
    fuzz::Require(name.starts_with(inside.string()), "an archive wrote outside its folder");
  return 0;
}
