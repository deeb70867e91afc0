// A long profile's whole IRI run, bands included, within a fixed budget of address space above what
// the program takes for a short one; and a clear refusal, with nothing written, when memory runs out.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "cli_fixture.h"

namespace velmora {
namespace {

constexpr std::int64_t kMegabyte = 1024;  // in the kilobytes of ulimit -v

std::vector<double> RoughRoad(std::size_t samples) {
  std::mt19937_64 random(5);
  std::normal_distribution<double> step(0.0, 0.05);
  std::vector<double> values(samples);
  double walk = 0;
  for (std::size_t i = 0; i < samples; ++i) values[i] = (walk += step(random)) + 2 * std::sin(0.0007 * static_cast<double>(i));
  return values;
}

class MemoryLimitTest : public testing::CliTest {
 protected:
  // The least address space, to the megabyte, in which the same command runs on a 20 m road: the
  // program, its libraries, threads and the allocator's first heap.
  std::int64_t StartUpKilobytes() {
    const std::string road = WriteErd("short", RoughRoad(2000), 0.01);
    std::int64_t fails = 8 * kMegabyte, runs = 1024 * kMegabyte;
    EXPECT_EQ(RunWithin(runs, "iri " + road + " --length 10 --bands"), 0) << Stderr();
    while (runs - fails > kMegabyte) {
      const std::int64_t middle = (fails + runs) / 2;
      (RunWithin(middle, "iri " + road + " --length 10 --bands") == 0 ? runs : fails) = middle;
    }
    std::filesystem::remove_all(temp / "out");
    return runs;
  }
};

TEST_F(MemoryLimitTest, IriWithBandsOfAMillionSamplesRunsIn300BytesPerSampleAndRefusesClearlyInLess) {
  const std::int64_t startUp = StartUpKilobytes();
  const std::string road = WriteErd("long", RoughRoad(1'000'000), 0.01);

  ASSERT_EQ(RunWithin(startUp + 300 * kMegabyte, "iri " + road + " --length 10 --bands"), 0) << Stderr();
  // Every window of the 10 m continuous table: 10^6 samples less the 25 of the 0.25 m slope base give
  // 999,975 responses, and each window spans 1,000 of them after the first: 998,975 rows and a head.
  const std::string table = testing::ReadBytes(WrittenWith("IRI(10m連続)"));
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 998'976);
  EXPECT_EQ(Written().size(), 5u);

  std::filesystem::remove_all(temp / "out");
  EXPECT_EQ(RunWithin(startUp + 100 * kMegabyte, "iri " + road + " --length 10 --bands"), 1);
  EXPECT_NE(Stderr().find("long.erd"), std::string::npos) << Stderr();
  EXPECT_NE(Stderr().find("メモリが不足しています。"), std::string::npos) << Stderr();
  EXPECT_TRUE(Written().empty());
}

}  // namespace
}  // namespace velmora
