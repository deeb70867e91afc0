#pragma once
// Columns of doubles parked in a scratch file, so that a table too big to hold at once can be written
// from a block of rows at a time. The file goes with the spill, whether the table was finished or not.
#include <cstddef>
#include <filesystem>
#include <span>
#include <vector>

namespace velmora {

class ColumnSpill {
 public:
  // A new empty scratch file of a name of its own in `folder`.
  explicit ColumnSpill(const std::filesystem::path& folder);
  ~ColumnSpill();
  ColumnSpill(const ColumnSpill&) = delete;
  ColumnSpill& operator=(const ColumnSpill&) = delete;

  // Writes `values` as the next column; a failed write raises a file error naming the file.
  void Append(std::span<const double> values);
  std::size_t Columns() const { return columns_.size(); }
  std::size_t Rows(std::size_t column) const { return columns_[column].Rows; }
  const std::filesystem::path& File() const { return file_; }
  // Values first .. first + out.size() - 1 (zero-based) of `column` into `out`; they must lie within
  // the column. Callers on several threads may read at once.
  void Read(std::size_t column, std::size_t first, std::span<double> out) const;

 private:
  struct Placed {
    std::size_t Offset;  // bytes from the start of the file
    std::size_t Rows;
  };
  std::filesystem::path file_;
  int descriptor_ = -1;
  std::size_t end_ = 0;
  std::vector<Placed> columns_;
};

}  // namespace velmora
