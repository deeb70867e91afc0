// velmora iri --pair: MRI and HRI printed beside the IRIs of the two paths and written whole and per
// section, and the two wheel paths of basic.erd imported and paired. The refusals of --pair are among
// the command lines of cli_test.cpp.
#include <cmath>
#include <filesystem>
#include <regex>
#include <sstream>

#include "cli_fixture.h"
#include "support/checks.h"

namespace velmora {
namespace {

using testing::CliTest;
using testing::Texts;

std::vector<double> Wave(std::size_t n, double dx, double phase) {
  std::vector<double> y(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double x = dx * static_cast<double>(i);
    y[i] = 6 * std::sin(2 * M_PI * x / 23.0) + 1.5 * std::sin(2 * M_PI * x / 2.7 + phase);
  }
  return y;
}

// The printed IRI of a profile, or of MRI / HRI ("basic_L + basic_R\tMRI 2.7318 mm/m\tHRI ...").
double Printed(const std::string& out, const std::string& pattern) {
  std::smatch match;
  if (!std::regex_search(out, match, std::regex(pattern + " ([0-9.]+) mm/m"))) {
    ADD_FAILURE() << pattern << " not in " << out;
    return 0;
  }
  return std::stod(match[1]);
}

// Every row of the pair file: MRI the mean of its two IRIs, HRI not above MRI; the whole-profile
// row's values returned (left, right, MRI, HRI).
std::vector<double> CheckPairFile(const std::filesystem::path& file) {
  const Texts lines = ReadSystemTextLines(file);
  EXPECT_EQ(lines.at(0), "区間,No,KP(自),KP(至),Index,データ件数,IRI(左),IRI(右),MRI,HRI");
  std::vector<double> whole;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    std::vector<double> v;
    std::stringstream row(lines[i]);
    for (std::string cell; std::getline(row, cell, ',');) v.push_back(cell.empty() ? 0 : std::atof(cell.c_str()));
    const std::size_t n = v.size();
    EXPECT_NEAR(v[n - 2], (v[n - 4] + v[n - 3]) / 2, 1e-8) << lines[i];
    EXPECT_LE(v[n - 1], v[n - 2] + 1e-8) << lines[i];
    if (i == 1) whole.assign(v.end() - 4, v.end());
  }
  EXPECT_GT(lines.size(), 3u);
  return whole;
}

TEST_F(CliTest, PairAddsMriAndHriToTheIrisOfItsTwoPaths) {
  const std::string left = WriteErd("lane_L", Wave(2000, 0.1, 0.0), 0.1);
  const std::string right = WriteErd("lane_R", Wave(2000, 0.1, 2.0), 0.1);
  ASSERT_EQ(Run("iri --pair " + left + " " + right), 0) << Stderr();
  const std::string out = Stdout();
  const double l = Printed(out, "lane_L\tIRI"), r = Printed(out, "lane_R\tIRI");
  const double mri = Printed(out, "lane_L \\+ lane_R\tMRI"), hri = Printed(out, "\tHRI");
  EXPECT_NEAR(mri, (l + r) / 2, 1e-4);  // printed to four places
  EXPECT_LT(hri, mri);
  const std::vector<double> whole = CheckPairFile(WrittenWith("lane_L_lane_R_MRI_HRI_"));
  EXPECT_NEAR(whole[0], l, 5e-5);
  EXPECT_NEAR(whole[2], mri, 5e-5);
  EXPECT_NEAR(whole[3], hri, 5e-5);
  // The paths' own IRI files are there as without --pair.
  EXPECT_EQ(Written().size(), 10u);

  // By profile name among the files, as well.
  ASSERT_EQ(Run("iri " + left + " " + right + " --pair lane_L lane_R", "byname"), 0) << Stderr();
  EXPECT_NEAR(Printed(Stdout(), "\tMRI"), mri, 1e-12);
}

// basic.erd's header gives IRILWP 183 and IRIRWP 163 in/mi (1 mm/m = 63.36 in/mi).
TEST_F(CliTest, BasicErdImportedAndPairedAgreesWithItsHeader) {
  const auto basic = testing::SharedDataDir() / "freevryheid_iri" / "basic.erd";
  if (!std::filesystem::exists(basic)) GTEST_SKIP() << "no measured profiles here";
  ASSERT_EQ(Run("import '" + basic.string() + "'", "paths"), 0) << Stderr();
  ASSERT_EQ(Run("iri '" + (temp / "paths").string() + "' --pair basic_L basic_R"), 0) << Stderr();
  const std::string out = Stdout();
  const double l = Printed(out, "basic_L\tIRI"), r = Printed(out, "basic_R\tIRI");
  EXPECT_NEAR(l * 63.36, 183, 183 * 0.005);
  EXPECT_NEAR(r * 63.36, 163, 163 * 0.005);
  const std::vector<double> whole = CheckPairFile(WrittenWith("basic_L_basic_R_MRI_HRI_"));
  EXPECT_NEAR(whole[2], (l + r) / 2, 1e-4);
  EXPECT_LT(whole[3], whole[2]);
}

}  // namespace
}  // namespace velmora
