// The velmora program end to end on the bundled examples: exit status and the files it writes.
#include "cli_fixture.h"

namespace velmora {
namespace {

using testing::CliTest;
using testing::ReadBytes;
using testing::WriteBytes;

TEST_F(CliTest, IriWritesTheWholeContinuousAndFixedFiles) {
  ASSERT_EQ(Run("iri " + Example("road_b.erd") + " --length 10 --bands"), 0) << ReadBytes(temp / "stderr.txt");
  const auto names = Written();
  ASSERT_EQ(names.size(), 5u);
  EXPECT_EQ(names[0].rfind("IRI(", 0), 0u);  // Shift-JIS name bytes of "IRI(全区間)_"
  // Sorted by bytes: 100m, 10m fixed, 10m continuous, 200m. Names are UTF-8; contents Shift-JIS.
  EXPECT_EQ(names[1].rfind("road_b_IRI(100m固定)_", 0), 0u);
  EXPECT_EQ(names[2].rfind("road_b_IRI(10m固定)_", 0), 0u);
  EXPECT_EQ(names[3].rfind("road_b_IRI(10m連続)_", 0), 0u);
  EXPECT_EQ(names[4].rfind("road_b_IRI(200m固定)_", 0), 0u);
  const std::string out = ReadBytes(temp / "stdout.txt");
  EXPECT_EQ(out.rfind("road_b\tIRI ", 0), 0u) << out;
  const std::string continuous = ReadBytes(temp / "out" / names[3]);
  EXPECT_EQ(continuous.rfind("Start(m), End(m), Mid(m), IRI(mm/m), IRI(OCT-1)", 0), 0u);
}

TEST_F(CliTest, OctaveAndFilterOnTwoProfiles) {
  ASSERT_EQ(Run("octave " + Example("road_a_kp.erd") + " " + Example("road_b.erd")), 0) << ReadBytes(temp / "stderr.txt");
  EXPECT_EQ(Written().size(), 2u);
  ASSERT_EQ(Run("filter " + Example("road_b.erd") + " --type ma --kind bandpass --long 50 --short 5"), 0)
      << ReadBytes(temp / "stderr.txt");
  const auto names = Written();
  ASSERT_EQ(names.size(), 3u);
  ASSERT_EQ(names[1].rfind("road_b_MABP_50-5m_", 0), 0u) << names[1];
  // 5000 samples at 0.05 m (examples/README.md): a head line and one line per sample.
  const std::string text = ReadBytes(temp / "out" / names[1]);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5001);
  EXPECT_EQ(text.rfind("Distance(m), Elevetion(mm)\r\n0.00000, ", 0), 0u);
}

TEST_F(CliTest, BadInputEndsWithAMessageAndNoFiles) {
  EXPECT_NE(Run("iri '" + (temp / "missing.erd").string() + "'"), 0);
  EXPECT_NE(ReadBytes(temp / "stderr.txt").find("missing.erd"), std::string::npos);
  WriteBytes(temp / "bad.erd", "not an ERD file\r\n");
  EXPECT_NE(Run("octave '" + (temp / "bad.erd").string() + "'"), 0);
  EXPECT_NE(ReadBytes(temp / "stderr.txt").find("bad.erd"), std::string::npos);
  EXPECT_NE(Run("filter " + Example("road_b.erd") + " --kind lowpass --short 0"), 0);
  EXPECT_NE(ReadBytes(temp / "stderr.txt").find("Short CutOff wavelength > 0.0 で指定して下さい。"), std::string::npos);
  EXPECT_TRUE(Written().empty());
}

}  // namespace
}  // namespace velmora
