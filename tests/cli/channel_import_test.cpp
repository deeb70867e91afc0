// velmora import of profilers' files: one ERD per wheel path in -o, the table of what was found
// printed before anything is registered, --channel, a folder at once, and the refusals that leave -o
// empty.
#include <filesystem>

#include "cli_fixture.h"
#include "support/checks.h"

namespace velmora {
namespace {

using testing::CliTest;
using testing::Texts;
using testing::WriteBytes;

// Two channels in feet at 0.5 ft; the header IRIs are the profiler's and only shown.
const std::string kFeetErd =
    "ERDFILEV2.00\r\n      2,      3,     -1,      1,      5,      0.5,     -1,\r\nTITLE   Track run\r\n"
    "SHORTNAMLElev.  RElev.  \r\nUNITSNAMft      ft      \r\nXUNITS  ft\r\nIRILWP   183\r\nIRIRWP   163\r\nEND     \r\n"
    "0.5 -1\r\n1 0\r\n-0.25 2\r\n";
const std::string kPro = "HEAD3,12182015\r\nCMET3,RSP\r\nDynatest,mil,LR,3,i\r\n30.4,-97.5\r\nComment\r\n"
                         "100,-100,0,30.4,-97.5\r\n200,50,0\r\n";

class ChannelImportTest : public CliTest {
 protected:
  std::string Quoted(const std::filesystem::path& path) const { return "'" + path.string() + "'"; }
};

TEST_F(ChannelImportTest, ErdChannelsBecomeProfilesInMillimetresAfterTheTableOfWhatWasFound) {
  WriteBytes(temp / "track.erd", kFeetErd);
  ASSERT_EQ(Run("import " + Quoted(temp / "track.erd")), 0) << Stderr();
  EXPECT_EQ(Written(), (Texts{"track_L.ERD", "track_R.ERD"}));
  const ErdRecord left = ErdOf(temp / "out" / "track_L.ERD"), right = ErdOf(temp / "out" / "track_R.ERD");
  EXPECT_EQ(left.Elevation, (Array1<double>{152.4, 304.8, -76.2}));  // ft × 304.8
  EXPECT_EQ(right.Elevation, (Array1<double>{-304.8, 0, 609.6}));
  EXPECT_EQ(left.StepSize, 0.1524);
  EXPECT_EQ(right.Title, "Track run R (track.erd)");
  // The table comes first, the written files after it.
  const std::string out = Stdout();
  const auto row = out.find((temp / "track.erd").string() + "\tERD\tLElev. RElev.\tft ft\tft\t0.152400\t3\t0.305\tIRILWP 183, IRIRWP 163\n");
  ASSERT_NE(row, std::string::npos) << out;
  EXPECT_LT(row, out.find("track_L.ERD"));
}

TEST_F(ChannelImportTest, AFolderImportsEveryProfilerFileInItAndTheChannelFlagChooses) {
  std::filesystem::create_directories(temp / "runs");
  WriteBytes(temp / "runs" / "a.erd", kFeetErd);
  WriteBytes(temp / "runs" / "b.PRO", kPro);
  WriteBytes(temp / "runs" / "notes.txt", "left,right\r\n1,2\r\n");  // neither: left alone
  ASSERT_EQ(Run("import " + Quoted(temp / "runs")), 0) << Stderr();
  EXPECT_EQ(Written(), (Texts{"a_L.ERD", "a_R.ERD", "b_L.ERD", "b_R.ERD"}));
  EXPECT_EQ(ErdOf(temp / "out" / "b_R.ERD").Elevation, (Array1<double>{-2.54, 1.27}));  // mil × 0.0254
  EXPECT_EQ(ErdOf(temp / "out" / "b_R.ERD").StepSize, 0.0762);                          // 3 in

  ASSERT_EQ(Run("import " + Quoted(temp / "runs") + " --channel 2", "right"), 0) << Stderr();
  EXPECT_EQ(Written("right"), (Texts{"a_R.ERD", "b_R.ERD"}));
}

TEST_F(ChannelImportTest, RefusalsNameTheFileAndLineAndRegisterNothing) {
  std::filesystem::create_directories(temp / "mixed");
  WriteBytes(temp / "mixed" / "a.erd", kFeetErd);
  WriteBytes(temp / "mixed" / "b.erd", "ERDFILEV2.00\r\n2, 1, -1, 1, 5, 0.1, -1,\r\nUNITSNAMmm mm\r\nXUNITS  m\r\nEND\r\n1\r\n");
  std::filesystem::create_directories(temp / "empty");
  const struct {
    std::string arguments;
    int status;
    std::string message;
  } cases[] = {
      {Quoted(temp / "mixed"), 1,
       "velmora: import: " + (temp / "mixed" / "b.erd").string() + ":6: 1 values on the line for 2 channels\n"},
      {Quoted(temp / "mixed" / "a.erd") + " --channel 3", 1,
       "velmora: import: " + (temp / "mixed" / "a.erd").string() + ":2: there is no channel 3: the file has 2 channels\n"},
      {Quoted(temp / "mixed" / "a.erd") + " --channel left", 2,
       "velmora: import: --channel: must be \"all\" or a channel number from 1\n"},
      {Quoted(temp / "empty"), 1,
       "velmora: import: " + (temp / "empty").string() + ": no ERD or PRO profile file in this folder\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments);
    EXPECT_EQ(Run("import " + c.arguments, "out", "en"), c.status);
    EXPECT_EQ(Stderr(), c.message);
    EXPECT_EQ(Stdout(), "");  // not even the table: nothing was found whole
    EXPECT_TRUE(Written().empty());
  }
}

TEST_F(ChannelImportTest, MeasuredFilesImportWithTheirOwnPitch) {
  const auto data = testing::SharedDataDir() / "freevryheid_iri";
  if (!std::filesystem::exists(data / "basic.erd") || !std::filesystem::exists(data / "Test_Run1.PRO"))
    GTEST_SKIP() << "no measured profiles here";
  ASSERT_EQ(Run("import " + Quoted(data / "basic.erd")), 0) << Stderr();
  ASSERT_EQ(Run("import " + Quoted(data / "Test_Run1.PRO"), "pro"), 0) << Stderr();
  EXPECT_EQ(Written(), (Texts{"basic_L.ERD", "basic_R.ERD"}));
  EXPECT_EQ(Written("pro"), (Texts{"Test_Run1_L.ERD", "Test_Run1_R.ERD"}));
  const ErdRecord right = ErdOf(temp / "pro" / "Test_Run1_R.ERD");
  EXPECT_EQ(right.NumSamples, 159131);
  EXPECT_EQ(right.StepSize, 0.0762);
  EXPECT_EQ(right.Elevation[1], 0.381);  // 15 mil
}

}  // namespace
}  // namespace velmora
