// The User.dat reader on any bytes: no crash, and what it accepts is written and read back.
#include "fuzz_support.h"
#include "base/conditions.h"
#include "base/legacy_error.h"
#include "report/project_record.h"
#include "report/user_data.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const std::string path = fuzz::WriteInput(data, size, "User.dat");
  SilentInteraction ui = fuzz::QuietInteraction();
  Session session(ui);
  ProjectRecord project;
  CalcConditions conditions;
  try {
    if (!funReadUserData(session, path, project, conditions)) return 0;
  } catch (const LegacyError&) {
    return 0;
  }
  const std::string copy = (fuzz::Folder() / "copy.dat").string();
  fuzz::Require(funWriteUserData(session, copy, project, conditions), "an accepted User.dat cannot be written");
  ProjectRecord back;
  CalcConditions backConditions;
  fuzz::Require(funReadUserData(session, copy, back, backConditions), "a written User.dat does not read back");
  fuzz::Require(back.Profiles.Count() == project.Profiles.Count(), "the profile count changed on the way round");
  return 0;
}
