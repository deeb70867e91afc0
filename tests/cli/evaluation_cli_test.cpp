// velmora stats and velmora xcorr end to end on ERD files written here: exit status, the files in -o
// and their first lines, and the shifted copy.
#include "cli_fixture.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

using testing::CliTest;
using testing::Ramp;
using testing::Road;
using testing::Texts;

TEST_F(CliTest, StatsWritesOnePagePerFileWithFiguresByHand) {
  const std::string a = WriteErd("A", Ramp(400), 0.25, 1.0);
  const std::string b = WriteErd("B", Ramp(400, true), 0.25, 1.0);
  ASSERT_EQ(Run("stats " + a + " " + b + " --bands full --stats mean,sd --order stat,profile,band"), 0) << Stderr();
  testing::ExpectHeads(Written(), Texts(4, "統計値_"));
  EXPECT_NE(Stdout().find("10m(Prof)"), std::string::npos);
  const Texts whole = LinesOf("統計値_全区間(Prof)_");
  ASSERT_EQ(whole.size(), 4u);
  EXPECT_EQ(whole[0], "プロファイル,A,B,A,B");
  EXPECT_EQ(whole[1], "帯域,全波長,全波長,全波長,全波長");
  // Means 200.5 and 799.5; the deviation of 400 equally spaced values sqrt((400² - 1) / 12) = 115.46969...
  EXPECT_EQ(whole[3].rfind("全区間,200.50000000,799.50000000,115.4696", 0), 0u) << whole[3];

  // The IRI side only, on a flat road: the quarter car does not move at all.
  const std::string flat = WriteErd("F", std::vector<double>(400, 5.0), 0.25, 1.0);
  ASSERT_EQ(Run("stats " + flat + " --no-profile --bands full --stats mean --iri-lengths 10c,100", "iri"), 0) << Stderr();
  const Texts iri = LinesOf("統計値_全区間(IRI)_", "iri");
  ASSERT_GE(iri.size(), 5u);
  EXPECT_EQ(iri[0], "プロファイル,F,F");
  EXPECT_EQ(iri[1], "IRI算出基準長,10m連続,100m固定");
  EXPECT_EQ(iri[4], "全区間,0.00000000,0.00000000");
}

TEST_F(CliTest, XcorrPrintsTheTableWritesSixFilesAndTheShiftedCopy) {
  // A's feature at index k lies at k + 3 in B: the shift against A is 3 and the copy is "B-3P".
  const std::string a = WriteErd("A", Road(400, 3), 0.25, 1.0);
  const std::string b = WriteErd("B", Road(400), 0.25, 1.0);
  ASSERT_EQ(Run("xcorr " + a + " " + b + " --filter none --measure shift --register-shifted"), 0) << Stderr();
  // One row per profile under the names; only B's row under A's column holds a pair.
  EXPECT_EQ(Stdout().rfind("\tA\tB\nA\t\t\nB\t3\t\n平均(基準)\t3.00000\t0.00000\n", 0), 0u) << Stdout();
  EXPECT_NE(Stdout().find((temp / "out" / "B-3P.ERD").string() + "\n"), std::string::npos) << Stdout();
  const Texts names = Written();
  ASSERT_EQ(names.size(), 7u);
  EXPECT_EQ(names[0], "B-3P.ERD");
  EXPECT_EQ(LinesOf("CC_ずらし量_")[0], ",,,,,,,ずらし量");
  const ErdRecord copy = ErdOf(temp / "out" / "B-3P.ERD");
  EXPECT_NEAR(copy.KpStart, 1.0 - 3 * 0.25 / 1000, 1e-9);  // km
  EXPECT_EQ(copy.Title, "B(-3P)");
}

}  // namespace
}  // namespace velmora
