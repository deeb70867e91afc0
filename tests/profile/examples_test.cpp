// The bundled example profiles load as examples/README.md describes them.
#include <gtest/gtest.h>

#include "profile/profile_reader.h"
#include "support/test_support.h"

namespace velmora {
namespace {

TEST(ExampleProfiles, LoadWithTheirCountsPitchesAndKp) {
  const struct {
    const char* file;
    std::int32_t samples;
    double step;
    const char* kp;
  } cases[] = {
      {"road_a_kp.erd", 3000, 0.1, "12.30000++"},
      {"road_b.erd", 5000, 0.05, ""},
      {"road_c_rough.erd", 3000, 0.1, ""},
  };
  for (const auto& c : cases) {
    testing::ScriptedUi ui;
    ProfileRecord profile;
    ASSERT_TRUE(ReadProfile((testing::SourceDir() / "examples" / c.file).string(), profile)) << c.file;
    EXPECT_EQ(profile.Erd.NumSamples, c.samples) << c.file;
    EXPECT_EQ(profile.Erd.NumSamplesHeader, c.samples) << c.file;
    EXPECT_DOUBLE_EQ(profile.Erd.StepSize, c.step) << c.file;
    EXPECT_EQ(profile.Erd.KpDisplay, c.kp) << c.file;
    EXPECT_EQ(profile.WorkCount, c.samples) << c.file;
  }
}

}  // namespace
}  // namespace velmora
