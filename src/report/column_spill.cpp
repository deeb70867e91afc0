#include "report/column_spill.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include <fmt/format.h>

#include "base/legacy_error.h"

namespace velmora {

ColumnSpill::ColumnSpill(const std::filesystem::path& folder) {
  std::string name = (folder / "spill-XXXXXX").string();
  descriptor_ = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor_ < 0) RaiseFileError(ErrorNumber::PathNotFound, name, std::strerror(errno));
  file_ = name;
}

ColumnSpill::~ColumnSpill() {
  ::close(descriptor_);
  std::error_code ignored;
  std::filesystem::remove(file_, ignored);
}

void ColumnSpill::Append(std::span<const double> values) {
  const auto* bytes = reinterpret_cast<const char*>(values.data());
  const std::size_t size = values.size_bytes();
  for (std::size_t done = 0; done < size;) {
    const ssize_t wrote = ::pwrite(descriptor_, bytes + done, size - done, static_cast<off_t>(end_ + done));
    if (wrote < 0 && errno == EINTR) continue;
    // A full disk makes a short write first and ENOSPC on the next try.
    if (wrote <= 0) RaiseFileError(ErrorNumber::DiskFull, file_.string(), std::strerror(wrote < 0 ? errno : ENOSPC));
    done += static_cast<std::size_t>(wrote);
  }
  columns_.push_back({end_, values.size()});
  end_ += size;
}

void ColumnSpill::Read(std::size_t column, std::size_t first, std::span<double> out) const {
  const Placed& placed = columns_.at(column);
  if (first + out.size() > placed.Rows)
    RaiseSubscriptOutOfRange(fmt::format("{}: rows {}..{} of {}", file_.string(), first, first + out.size(), placed.Rows));
  auto* bytes = reinterpret_cast<char*>(out.data());
  const std::size_t size = out.size_bytes(), offset = placed.Offset + first * sizeof(double);
  for (std::size_t done = 0; done < size;) {
    const ssize_t got = ::pread(descriptor_, bytes + done, size - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) RaiseFileError(ErrorNumber::InputPastEnd, file_.string(), got < 0 ? std::strerror(errno) : "短すぎます");
    done += static_cast<std::size_t>(got);
  }
}

}  // namespace velmora
