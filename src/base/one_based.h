#pragma once
// A zero-filled array indexed from 1, so that index formulas read as the algorithms write them.
// operator[] is unchecked (hot loops); at() raises "subscript out of range" like the legacy runtime.
#include <cassert>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "base/legacy_error.h"

namespace velmora {

template <class T>
class Array1 {
 public:
  Array1() = default;
  explicit Array1(std::size_t n) : items_(n) {}
  Array1(std::initializer_list<T> values) : items_(values) {}
  explicit Array1(std::vector<T> values) : items_(std::move(values)) {}

  T& operator[](std::ptrdiff_t i) {
    assert(i >= 1 && static_cast<std::size_t>(i) <= items_.size());
    return items_[static_cast<std::size_t>(i - 1)];
  }
  const T& operator[](std::ptrdiff_t i) const {
    assert(i >= 1 && static_cast<std::size_t>(i) <= items_.size());
    return items_[static_cast<std::size_t>(i - 1)];
  }
  T& at(std::ptrdiff_t i) {
    Check(i);
    return items_[static_cast<std::size_t>(i - 1)];
  }
  const T& at(std::ptrdiff_t i) const {
    Check(i);
    return items_[static_cast<std::size_t>(i - 1)];
  }

  // Size n (the highest valid index); "ReDim Preserve": existing values kept, new ones zero.
  std::ptrdiff_t size() const noexcept { return static_cast<std::ptrdiff_t>(items_.size()); }
  bool empty() const noexcept { return items_.empty(); }
  void resize(std::ptrdiff_t n) { items_.resize(static_cast<std::size_t>(n < 0 ? 0 : n)); }
  // "ReDim" without Preserve: size n, all zero.
  void assign_zero(std::ptrdiff_t n) { items_.assign(static_cast<std::size_t>(n < 0 ? 0 : n), T{}); }
  void clear() noexcept { items_.clear(); }

  T* data() noexcept { return items_.data(); }
  const T* data() const noexcept { return items_.data(); }
  std::span<T> span() noexcept { return items_; }
  std::span<const T> span() const noexcept { return items_; }
  std::vector<T>& vector() noexcept { return items_; }
  const std::vector<T>& vector() const noexcept { return items_; }
  auto begin() noexcept { return items_.begin(); }
  auto end() noexcept { return items_.end(); }
  auto begin() const noexcept { return items_.begin(); }
  auto end() const noexcept { return items_.end(); }

  friend bool operator==(const Array1&, const Array1&) = default;

 private:
  void Check(std::ptrdiff_t i) const {
    if (i < 1 || static_cast<std::size_t>(i) > items_.size())
      RaiseSubscriptOutOfRange(std::to_string(i) + " / 1.." + std::to_string(items_.size()));
  }
  std::vector<T> items_;
};

}  // namespace velmora
