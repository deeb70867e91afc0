// The ERD reader on any bytes: no crash, no sample that is not finite, and whatever it accepts the
// writer writes and the reader takes back with the same count and the values to the precision written.
#include <cfloat>
#include <cmath>

#include "fuzz_support.h"
#include "base/legacy_error.h"
#include "profile/erd_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace velmora;
  const std::string path = fuzz::WriteInput(data, size, "input.erd");
  SilentInteraction ui = fuzz::QuietInteraction();
  Session session(ui);
  ErdRecord rec;
  try {
    if (!ReadERD(session, path, rec)) return 0;
  } catch (const LegacyError&) {
    return 0;  // refused with a message: what a bad file should get
  }
  for (const double v : rec.Elevation) fuzz::Require(std::isfinite(v), "a sample that is not finite was accepted");
  fuzz::Require(IsWritablePitch(rec.StepSize), "a pitch the writer cannot write was accepted");

  const std::string copy = (fuzz::Folder() / "copy.erd").string();
  rec.NumSamples = static_cast<std::int32_t>(rec.Elevation.size());
  WriteERD(copy, rec);
  ErdRecord back;
  fuzz::Require(ReadERD(session, copy, back), "the reader refused what the writer wrote");
  fuzz::Require(back.Elevation.size() == rec.Elevation.size(), "the count changed on the way round");
  for (std::ptrdiff_t i = 1; i <= rec.NumSamples; ++i) {
    const double v = rec.Elevation[i];
    fuzz::Require(std::fabs(back.Elevation[i] - v) <= 5e-9 + std::fabs(v) * (5e-15 + 2 * DBL_EPSILON),
                  "a sample changed beyond the precision written");
  }
  return 0;
}
