// The scratch file that holds columns of a table too big to keep: values come back bit for bit in
// blocks of any size, a point table made from it has the lines of one made from memory, a write that
// fails names the file, and the file is gone with the spill.
#include "report/column_spill.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <bit>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <limits>

#include "base/legacy_error.h"
#include "report/result_csv.h"
#include "support/test_support.h"

namespace velmora {
namespace {

std::vector<std::uint64_t> Bits(std::span<const double> values) {
  std::vector<std::uint64_t> bits;
  for (const double v : values) bits.push_back(std::bit_cast<std::uint64_t>(v));
  return bits;
}

// Values whose bits a text or rounding round trip would change.
const std::vector<double> kAwkward{-0.0, std::numeric_limits<double>::denorm_min(), 1.0 / 3.0,
                                   std::numeric_limits<double>::infinity(), -99999.0,
                                   std::bit_cast<double>(std::uint64_t{0x7ff8000000000123}), 1e300, -2.5,
                                   0.1, 7.0};

TEST(ColumnSpill, ColumnsComeBackBitForBitInBlocksOfAnySize) {
  testing::TempDir dir;
  ColumnSpill spill(dir.path());
  const std::vector<double> shorter{4.0, -1.0, 0.5};
  spill.Append(kAwkward);
  spill.Append(shorter);
  spill.Append({});
  ASSERT_EQ(spill.Columns(), 3u);
  EXPECT_EQ(spill.Rows(0), 10u);
  EXPECT_EQ(spill.Rows(1), 3u);
  EXPECT_EQ(spill.Rows(2), 0u);
  // 10 rows in blocks of 1, 3 (short last block of 1), 4 (last of 2) and all at once.
  for (const std::size_t block : {1u, 3u, 4u, 10u}) {
    for (std::size_t column = 0; column < 2; ++column) {
      const std::vector<double>& expected = column == 0 ? kAwkward : shorter;
      std::vector<double> back;
      for (std::size_t first = 0; first < expected.size(); first += block) {
        std::vector<double> part(std::min(block, expected.size() - first));
        spill.Read(column, first, part);
        back.insert(back.end(), part.begin(), part.end());
      }
      EXPECT_EQ(Bits(back), Bits(expected)) << "column " << column << ", blocks of " << block;
    }
  }
}

TEST(ColumnSpill, ReadPastAColumnsEndIsAnError) {
  testing::TempDir dir;
  ColumnSpill spill(dir.path());
  spill.Append(std::vector<double>{1.0, 2.0});
  spill.Append(std::vector<double>{3.0, 4.0, 5.0});
  std::vector<double> three(3);
  EXPECT_THROW(spill.Read(0, 0, three), LegacyError);  // column 0 has two rows, not the next column's
  EXPECT_THROW(spill.Read(1, 1, three), LegacyError);
}

TEST(ColumnSpill, FileIsInTheFolderAndGoesWithTheSpill) {
  testing::TempDir dir;
  std::filesystem::path file;
  {
    ColumnSpill spill(dir.path());
    spill.Append(kAwkward);
    file = spill.File();
    EXPECT_EQ(file.parent_path(), dir.path());
    EXPECT_EQ(std::filesystem::file_size(file), kAwkward.size() * sizeof(double));
    ColumnSpill second(dir.path());  // a name of its own beside the first
    EXPECT_NE(second.File(), file);
  }
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

TEST(ColumnSpill, MissingFolderNamesIt) {
  testing::TempDir dir;
  const std::filesystem::path missing = dir.path() / "gone";
  try {
    ColumnSpill spill(missing);
    FAIL() << "no error";
  } catch (const LegacyError& error) {
    EXPECT_NE(std::string(error.what()).find(missing.string()), std::string::npos) << error.what();
  }
}

// A file size limit stands in for a full disk: the write stops short the same way.
TEST(ColumnSpill, FailedWriteNamesTheFileAndLeavesNoFile) {
  testing::TempDir dir;
  rlimit old{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit small = old;
  small.rlim_cur = 4096;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  std::string message;
  std::filesystem::path file;
  {
    ColumnSpill spill(dir.path());
    file = spill.File();
    try {
      spill.Append(std::vector<double>(1000, 1.5));  // 8000 bytes
    } catch (const LegacyError& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::DiskFull);
      message = error.what();
    }
  }
  ::setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, oldHandler);
  EXPECT_NE(message.find(file.string()), std::string::npos) << message;
  EXPECT_FALSE(std::filesystem::exists(file));
}

// Long enough to cross the row writer's blocks, with spilled columns of unequal length.
TEST(ColumnSpill, PointTableFromSpilledColumnsHasTheLinesOfOneFromMemory) {
  testing::TempDir dir;
  const std::size_t rows = 16384 * 2 + 777;
  std::vector<double> a(rows), b(rows - 20000), c(rows);
  for (std::size_t i = 0; i < rows; ++i) {
    a[i] = std::sin(0.001 * static_cast<double>(i)) * 3.0;
    c[i] = static_cast<double>(i) * 0.125;
    if (i < b.size()) b[i] = i % 7 == 0 ? -99999.0 : 1.0 / static_cast<double>(i + 1);
  }
  ColumnSpill spill(dir.path());
  spill.Append(a);
  spill.Append(b);
  const PositionAxis axis;
  const ProfileGeometry geometry{0.25, 1.5, 0};
  const auto lines = [&](const std::vector<PointColumn>& columns) {
    return CollectLines([&](const LineOut& out) { WritePointCsv(out, axis, geometry, columns); });
  };
  const auto fromMemory = lines({{"A", a}, {"B", b}, {"C", c}});
  const auto fromSpill = lines({{"A", {}, &spill, 0}, {"B", {}, &spill, 1}, {"C", c}});
  ASSERT_EQ(fromMemory.size(), rows + 1);
  EXPECT_EQ(fromSpill, fromMemory);
}

}  // namespace
}  // namespace velmora
