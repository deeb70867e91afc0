// The settings reader on any bytes as Default.ini: no crash, whatever the file holds.
#include "fuzz_support.h"
#include "base/ini_file.h"
#include "base/legacy_error.h"
#include "base/settings_io.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  SilentInteraction ui = fuzz::QuietInteraction();
  Session session(ui);
  session.Paths.AppPath = fuzz::Folder().string();
  session.Paths.DefaultIniFileName = "Default.ini";
  const std::string path = fuzz::WriteInput(data, size, "Default.ini");
  try {
    const IniDocument document = IniDocument::Load(path);
    (void)document.Get("IRI", "Length");
  } catch (const LegacyError&) {
  }
  const int groups[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  try {
    LoadDefaultGroups(session, groups, true);
  } catch (const LegacyError&) {
  }
  return 0;
}
