// The text import on any bytes, with the options taken from the input's first byte: no crash, and
// every profile it writes holds finite samples and reads back.
#include <cmath>

#include "fuzz_support.h"
#include "base/legacy_error.h"
#include "profile/erd_file.h"
#include "profile/profile_list.h"
#include "profile/text_import.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  if (size == 0) return 0;
  const std::uint8_t flags = data[0];
  const std::string path = fuzz::WriteInput(data + 1, size - 1, "input.csv");
  ImportOptions options;
  options.Comma = flags & 1;
  options.Tab = flags & 2;
  options.Semicolon = flags & 4;
  options.Space = flags & 8;
  options.Header = flags & 16;
  options.TitleFromHeader = flags & 32;
  options.Pitch = (flags & 64) ? "0.01" : "0.25";
  SilentInteraction ui = fuzz::QuietInteraction();
  Session session(ui);
  const std::filesystem::path temp = fuzz::Folder() / "Temp";
  std::filesystem::create_directories(temp);
  session.Paths.TempPath = temp.string();
  try {
    const ImportPreview preview = BuildImportPreview(path, options);
    if (CheckImport(session, preview, options) >= 0) return 0;
    if (preview.Columns > 50) return 0;  // one file per column: keep each run short
    ProfileList list;
    for (const std::string& written : WriteImportedProfiles(session, path, preview, options, list)) {
      ErdRecord rec;
      fuzz::Require(ReadERD(session, written, rec), "an imported profile does not read back");
      for (const double v : rec.Elevation) fuzz::Require(std::isfinite(v), "an imported sample is not finite");
      std::filesystem::remove(written);
    }
  } catch (const LegacyError&) {
  }
  return 0;
}
