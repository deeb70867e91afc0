// MRI and HRI of two wheel paths: the properties that follow from their definitions (one path twice,
// mirrored paths, a height offset, HRI never above MRI), the mean profile run through the engine on
// its own, and the measured wheel paths of basic.erd against the IRIs in its header.
#include "analysis/pair_roughness.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <vector>

#include "analysis/iri.h"
#include "analysis/iri_sections.h"
#include "profile/channel_file.h"
#include "support/test_support.h"

namespace velmora {
namespace {

constexpr double kInchesPerMileInMmPerM = 63.36;  // 1 mm/m is a thousandth of the 63 360 in of a mile

IriParams StandardCar() {
  IriParams p;  // rates 0: the engine's golden car, as Default.ini sets it
  p.InitFilter = 11;
  return p;
}

// Two rough paths that share the long waves and differ in the short ones.
std::vector<double> Path(std::size_t n, double dx, double phase) {
  std::vector<double> y(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double x = dx * static_cast<double>(i);
    y[i] = 8 * std::sin(2 * M_PI * x / 37.0) + 2 * std::sin(2 * M_PI * x / 3.1 + phase) + std::sin(2 * M_PI * x / 0.9 + 2 * phase);
  }
  return y;
}

// The sections of one profile as the IRI tab lays them, made here from the engine's parts.
SectionIri SectionsOf(const std::vector<double>& y, double dx, const PairRequest& request) {
  std::vector<double> response = y;
  auto n = static_cast<std::int32_t>(y.size());
  IriParams p = request.Params;
  IriResponse(response, n, dx, kIriSlopeBaseLength, 1.0, p.InitFilter, p.KtMs, p.KsMs, p.CsMs, p.MuMs, p.Speed);
  SectionIri s;
  CalcFixedSections(request.KpStart, dx, request.Backwards, request.EvalLength, static_cast<std::int32_t>(y.size()), y,
                    n, response, request.SkipPartialSections, s);
  return s;
}

// Every section's MRI is the mean of the paths' own sections and its HRI the section of the mean
// profile; HRI never exceeds MRI.
void ExpectSectionsOfTheDefinition(const PairRoughness& pair, const std::vector<double>& left,
                                   const std::vector<double>& right, double dx, const PairRequest& request) {
  std::vector<double> mean(pair.Samples);
  for (std::int32_t i = 0; i < pair.Samples; ++i) mean[i] = 0.5 * left[i] + 0.5 * right[i];
  const SectionIri l = SectionsOf({left.begin(), left.begin() + pair.Samples}, dx, request);
  const SectionIri r = SectionsOf({right.begin(), right.begin() + pair.Samples}, dx, request);
  const SectionIri h = SectionsOf(mean, dx, request);
  const Array1<SectionEntry>* tables[3][3] = {{&l.Sec10, &r.Sec10, &h.Sec10}, {&l.Sec100, &r.Sec100, &h.Sec100},
                                               {&l.Sec200, &r.Sec200, &h.Sec200}};
  for (int t = 0; t < 3; ++t) {
    std::size_t k = 0;
    for (std::ptrdiff_t j = 1; j <= tables[t][0]->size(); ++j) {
      const SectionEntry& entry = tables[t][0]->at(j);
      if (entry.Iri == kNoValue) continue;
      ASSERT_LT(k, pair.Sections[t].size()) << t;
      const PairSection& s = pair.Sections[t][k++];
      EXPECT_EQ(s.Index, entry.Index);
      EXPECT_EQ(s.Count, entry.Count);
      EXPECT_NEAR(s.Mri, (entry.Iri + tables[t][1]->at(j).Iri) / 2, 1e-12) << t << " " << j;
      EXPECT_NEAR(s.Hri, tables[t][2]->at(j).Iri, 1e-9) << t << " " << j;
      EXPECT_LE(s.Hri, s.Mri + 1e-12);
    }
    EXPECT_EQ(k, pair.Sections[t].size()) << t;
    EXPECT_FALSE(pair.Sections[t].empty()) << t;
  }
}

TEST(PairRoughnessTest, MriIsTheMeanOfTheTwoIrisAndHriTheIriOfTheMeanProfile) {
  const double dx = 0.1;
  const std::vector<double> left = Path(5000, dx, 0.0), right = Path(5200, dx, 1.3);  // the right runs on
  PairRequest request;
  request.Params = StandardCar();
  const PairRoughness pair = CalcPairRoughness(left, right, dx, request);
  ASSERT_EQ(pair.Samples, 5000);
  const double l = IriOfArray(5000, left, dx, request.Params), r = IriOfArray(5000, right, dx, request.Params);
  std::vector<double> mean(5000);
  for (std::size_t i = 0; i < mean.size(); ++i) mean[i] = (left[i] + right[i]) / 2;
  EXPECT_DOUBLE_EQ(pair.LeftIri, l);
  EXPECT_DOUBLE_EQ(pair.RightIri, r);
  EXPECT_DOUBLE_EQ(pair.Mri, (l + r) / 2);
  EXPECT_DOUBLE_EQ(pair.Hri, IriOfArray(5000, mean, dx, request.Params));
  EXPECT_LT(pair.Hri, pair.Mri);  // the short waves are out of phase and partly cancel
  ExpectSectionsOfTheDefinition(pair, left, right, dx, request);
}

TEST(PairRoughnessTest, PathsThatAgreeMirrorOrOnlyShiftGiveTheKnownHalfCar) {
  const double dx = 0.25;
  const std::vector<double> path = Path(2000, dx, 0.4);
  std::vector<double> mirrored(path.size()), raised(path.size());
  for (std::size_t i = 0; i < path.size(); ++i) mirrored[i] = -path[i], raised[i] = path[i] + 5.0;
  PairRequest request;
  request.Params = StandardCar();
  const double iri = IriOfArray(2000, path, dx, request.Params);
  const struct { const char* name; const std::vector<double>* right; double mri; double hri; } cases[] = {
      {"the same path twice", &path, iri, iri},
      {"mirrored: the axle stays level", &mirrored, iri, 0.0},  // (y - y) / 2 is a flat road
      {"raised 5 mm: no slope added", &raised, iri, iri},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const PairRoughness pair = CalcPairRoughness(path, *c.right, dx, request);
    EXPECT_NEAR(pair.Mri, c.mri, 1e-9);
    EXPECT_NEAR(pair.Hri, c.hri, 1e-9);
    for (const auto& table : pair.Sections)
      for (const PairSection& s : table) {
        EXPECT_NEAR(s.Mri, s.Left, 1e-9);
        EXPECT_NEAR(s.Hri, c.hri == 0.0 ? 0.0 : s.Left, 1e-9);
      }
  }
}

TEST(PairRoughnessTest, LinesCarryTheWholeProfileThenEverySection) {
  PairRoughness pair;
  pair.Samples = 3;
  pair.LeftIri = 2.5, pair.RightIri = 1.5, pair.Mri = 2.0, pair.Hri = 1.25;
  pair.Sections[1].push_back({1, 1601, 0.0, 0.1, 3.0, 1.0, 2.0, 0.5, false});
  const std::vector<std::string> expected = {
      "区間,No,KP(自),KP(至),Index,データ件数,IRI(左),IRI(右),MRI,HRI",
      "全区間,,,,1,3,2.50000000,1.50000000,2.00000000,1.25000000",
      "100m固定,1,0.00000,0.10000,1,1601,3.00000000,1.00000000,2.00000000,0.50000000"};
  EXPECT_EQ(PairRoughnessLines(pair), expected);
}

// basic.erd: its header gives IRILWP 183 and IRIRWP 163 in/mi, rounded to whole in/mi by the
// profiler's software; an independent standard computation (11 m start) gives 2.8918 and 2.5718 mm/m.
TEST(MeasuredPairRoughnessTest, BasicErdWheelPathsMatchTheirHeaderAndTheHalfCarIsSmoother) {
  const auto path = testing::SharedDataDir() / "freevryheid_iri" / "basic.erd";
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "no measured profiles here";
  const ChannelFile file = ReadChannelFile(path.string());
  ASSERT_EQ(file.ChannelCount(), 2);
  PairRequest request;
  request.Params = StandardCar();
  const PairRoughness pair = CalcPairRoughness(file.Heights[0], file.Heights[1], file.Pitch, request);
  ASSERT_EQ(pair.Samples, 25544);
  EXPECT_NEAR(pair.LeftIri * kInchesPerMileInMmPerM, 183.0, 183.0 * 0.005);
  EXPECT_NEAR(pair.RightIri * kInchesPerMileInMmPerM, 163.0, 163.0 * 0.005);
  // The program starts the model over K·dx rather than (K-1)·dx and averages over the response
  // (N less the base samples): over 1.6 km both move the IRI by far less than 1e-4 mm/m.
  EXPECT_NEAR(pair.LeftIri, 2.8918, 2e-4);
  EXPECT_NEAR(pair.RightIri, 2.5718, 2e-4);
  EXPECT_DOUBLE_EQ(pair.Mri, (pair.LeftIri + pair.RightIri) / 2);
  EXPECT_LT(pair.Hri, pair.Mri);
  ExpectSectionsOfTheDefinition(pair, file.Heights[0], file.Heights[1], file.Pitch, request);
}

}  // namespace
}  // namespace velmora
