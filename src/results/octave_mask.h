#pragma once
// The frequency mask that selects one octave in a spectrum of the folded-out profile.
#include <array>
#include <cstddef>
#include <cstdint>

namespace velmora {

// A mask of `length` positions. Position p looks at harmonic j = p in the lower half (p up to
// length / 2 + 1) and at j = length + 2 − p above, one bin above its own harmonic. The band's
// harmonics are one run first..last, because a harmonic's frequency grows with j, so the mask is kept
// as those two numbers rather than as `length` bytes: the ten masks of a 10^6-sample profile would
// take 21 MB.
class OctaveMask {
 public:
  OctaveMask() = default;
  OctaveMask(std::int32_t length, std::int32_t first, std::int32_t last)
      : length_(length), first_(first), last_(last) {}

  std::ptrdiff_t size() const noexcept { return length_; }
  // 1 when position p (1..size()) is in the band, else 0.
  std::uint8_t operator[](std::ptrdiff_t p) const noexcept {
    const std::ptrdiff_t j = p <= length_ / 2 + 1 ? p : length_ + 2 - p;
    return first_ <= j && j <= last_ ? 1 : 0;
  }

 private:
  std::int32_t length_ = 0;
  std::int32_t first_ = 1;
  std::int32_t last_ = 0;
};

// [1..10]: the masks of the band table, [0] unused.
using OctaveMasks = std::array<OctaveMask, 11>;

}  // namespace velmora
