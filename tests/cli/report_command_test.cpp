// velmora report: the scripted report from the example template over two hand-written profiles, the
// fixed export, and the flags it refuses.
#include <gtest/gtest.h>

#include "cli_fixture.h"
#include "support/test_support.h"

namespace velmora::testing {
namespace {

// 201 samples at 0.25 m (0..50 m): a ramp of 0.5 mm per sample, and a constant 3 mm.
std::vector<double> Rising() {
  std::vector<double> v;
  for (int i = 0; i <= 200; ++i) v.push_back(0.5 * i);
  return v;
}

class ReportCommand : public CliTest {
 protected:
  std::string Template() const { return "'" + (SourceDir() / "examples/report/iri_report.xlsm").string() + "'"; }
  std::string Profiles() const {
    return WriteErd("rising", Rising(), 0.25) + " " + WriteErd("level", std::vector<double>(201, 3.0), 0.25);
  }
};

TEST_F(ReportCommand, WritesTheWorkbookAndItsInterfaceFile) {
  ASSERT_EQ(Run("report " + Template() + " " + Profiles() +
                " --param before=rising --param 補修後プロファイル=level --param start=10 --param end=10.5 --no-timestamp"),
            0)
      << Stderr();
  EXPECT_EQ(Written(), (Texts{"iri_report.xlsm", "iri_report_INTERFACE.dat"}));
  const Texts lines = LinesOf("_INTERFACE.dat");
  ASSERT_EQ(lines.size(), 5u) << ::testing::PrintToString(lines);
  EXPECT_EQ(lines[0], "4,10,4,2,データ");  // titles and the rows at 10, 10.25 and 10.5 m
  EXPECT_EQ(lines[1].rfind("距離[m],rising,level,差分(後-前),", 0), 0u) << lines[1];
  // At 10 m, sample 41 of the ramp: 20 mm; the level road 3 mm; after minus before -17 mm.
  EXPECT_EQ(lines[2].rfind("10.00000000,20.00000000,3.00000000,-17.00000000,", 0), 0u) << lines[2];
  EXPECT_EQ(lines[4].rfind("10.50000000,21.00000000,3.00000000,-18.00000000,", 0), 0u) << lines[4];
}

TEST_F(ReportCommand, FixedExportOfOneProfile) {
  ASSERT_EQ(Run("report --fixed " + WriteErd("rising", Rising(), 0.25) + " --no-timestamp"), 0) << Stderr();
  EXPECT_EQ(Written(), (Texts{"帳表(補修前後).xlsm"}));
}

TEST_F(ReportCommand, RefusesUnknownParametersAndReportsMissingChoices) {
  EXPECT_EQ(Run("report " + Template() + " " + Profiles() + " --param colour=red", "out", "en"), 2);
  EXPECT_NE(Stderr().find("--param: iri_report.xlsm has no parameter \"colour\""), std::string::npos) << Stderr();
  EXPECT_EQ(Run("report " + Template() + " " + Profiles() + " --param before=nobody", "out", "en"), 2);
  EXPECT_EQ(Run("report " + Template() + " " + Profiles(), "out", "en"), 1);
  EXPECT_NE(Stderr().find("no profile is chosen for the report"), std::string::npos) << Stderr();
  EXPECT_TRUE(Written().empty());
}

}  // namespace
}  // namespace velmora::testing
