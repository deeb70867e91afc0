// The measured profiles beside the repository load as their headers say. Expected counts, pitches
// and first samples are read off the files' own heads (see the data folder's README).
#include <gtest/gtest.h>

#include <filesystem>

#include "base/legacy_error.h"
#include "profile/erd_file.h"
#include "support/test_support.h"

namespace velmora {
namespace {

std::string SharedFile(const std::string& relative) {
  const auto path = testing::SharedDataDir() / relative;
  return std::filesystem::exists(path) ? path.string() : std::string();
}

TEST(SharedErdData, SingleChannelCopiesLoad) {
  const struct {
    const char* file;
    std::int32_t samples, header;
    double step, first;
    const char* shortName;
  } cases[] = {
      {"derived/basic_left_mm.erd", 25544, 25544, 0.063068210, -0.01127760, "LElev."},
      {"derived/basic_right_mm.erd", 25544, 25544, 0.063068210, -0.01524000, "RElev."},
      {"derived/Test_Run1_left_mm.erd", 159131, 159131, 0.0762, -10.8458, "LElev."},
      {"derived/Test_Run1_right_mm.erd", 159131, 159131, 0.0762, 0.381, "RElev."},
      {"derived/profile_1_derived_mm.erd", 2177, 2177, 0.25, 583137.0, "Elev"},
  };
  for (const auto& c : cases) {
    const std::string path = SharedFile(c.file);
    if (path.empty()) GTEST_SKIP() << "shared data not present: " << c.file;
    testing::ScriptedUi ui;
    ErdRecord rec;
    ASSERT_TRUE(ReadERD(path, rec)) << c.file;
    EXPECT_TRUE(ui.Messages().empty());
    EXPECT_EQ(rec.NumChannels, 1) << c.file;
    EXPECT_EQ(rec.NumSamples, c.samples) << c.file;
    EXPECT_EQ(rec.NumSamplesHeader, c.header) << c.file;
    EXPECT_DOUBLE_EQ(rec.StepSize, c.step) << c.file;
    EXPECT_DOUBLE_EQ(rec.Elevation[1], c.first) << c.file;
    EXPECT_EQ(rec.ShortName[1], c.shortName) << c.file;
    EXPECT_TRUE(rec.IsMetric) << c.file;
    EXPECT_TRUE(IsNoValue(rec.KpStart)) << c.file;
  }
}

TEST(SharedErdData, TwoNumbersOnADataLineIsAConversionErrorNamingTheFile) {
  const std::string path = SharedFile("freevryheid_iri/basic.erd");
  if (path.empty()) GTEST_SKIP() << "shared data not present";
  testing::ScriptedUi ui;
  ErdRecord rec;
  try {
    ReadERD(path, rec);
    FAIL() << "two channels on one line were accepted";
  } catch (const LegacyError& error) {
    const std::string text = error.what();
    EXPECT_EQ(error.Number(), ErrorNumber::TypeMismatch);
    EXPECT_NE(text.find(path), std::string::npos) << text;
    EXPECT_NE(text.find("18 行目"), std::string::npos) << text;  // 17 header lines up to END
  }
  // The header was taken in before the data failed: two channels in feet.
  EXPECT_EQ(rec.NumChannels, 2);
  EXPECT_EQ(rec.Title, "Track Run E1");
  EXPECT_DOUBLE_EQ(rec.StepSize, 0.2069167 * 0.3048);
  EXPECT_TRUE(ui.Messages().empty());
}

}  // namespace
}  // namespace velmora
