#include "analysis/fft_kernels.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

namespace velmora::detail {
namespace {

// ---- Twiddles ---------------------------------------------------------------------------------

// The value of pi the transform has always used (not M_PI): kept so that results stay the same bits.
constexpr double kPi = 3.14159265358979;

// Twiddles of every stage of half-size m = 1, 2, 4, ...: w(m, k) = exp(−i · (k−1) · pi / m) stands at
// position m + k − 1, a stage's values side by side as the vectorised stages load them. A stage's
// twiddles do not depend on the transform length, so one table, grown to the largest length seen,
// serves every length. The inverse direction takes the same table conjugated as it is loaded: cos and
// sin are even and odd to the last bit, so those are the very values a table of its own would hold,
// and a long profile keeps one table of 16 bytes per point instead of two. The table is shared by all
// threads (the octave bands are transformed back on a second thread started for each pass, which would
// otherwise rebuild its own): a table, once built, is never changed, and a longer one replaces it for
// later calls while earlier calls keep theirs.
using Table = std::shared_ptr<const std::vector<Complex>>;

Table Grown(const Table& old, std::size_t needed) {
  auto table = std::make_shared<std::vector<Complex>>(needed);
  std::size_t m = 1;
  if (old) {
    std::copy(old->begin(), old->end(), table->begin());
    m = old->size();
  }
  for (; 2 * m <= needed; m *= 2) {
    for (std::size_t k = 1; k <= m; ++k) {
      const double theta =
          static_cast<double>(-static_cast<std::int64_t>(k - 1)) * kPi / static_cast<double>(m);
      (*table)[m + k - 1] = ComplexExp(Complex{0.0, theta});
    }
  }
  return table;
}

struct TwiddleCache {
  std::mutex Mutex;
  Table Kept;
};
TwiddleCache& Twiddles() {
  static TwiddleCache cache;
  return cache;
}

Table TwiddlesFor(std::int32_t n) {
  TwiddleCache& cache = Twiddles();
  const std::lock_guard<std::mutex> lock(cache.Mutex);
  const auto needed = static_cast<std::size_t>(n);
  if (!cache.Kept || cache.Kept->size() < needed) cache.Kept = Grown(cache.Kept, needed);
  return cache.Kept;
}

// ---- Bit reversal -----------------------------------------------------------------------------

constexpr std::array<std::uint8_t, 256> kReversedByte = [] {
  std::array<std::uint8_t, 256> table{};
  for (unsigned i = 0; i < 256; ++i)
    for (unsigned bit = 0; bit < 8; ++bit)
      if (i & (1u << bit)) table[i] |= static_cast<std::uint8_t>(0x80u >> bit);
  return table;
}();

// The lowest `bits` bits of i in the opposite order.
std::size_t Reverse(std::size_t i, int bits) {
  if (bits == 0) return 0;
  const std::uint32_t reversed = (std::uint32_t{kReversedByte[i & 0xFF]} << 24) |
                                 (std::uint32_t{kReversedByte[(i >> 8) & 0xFF]} << 16) |
                                 (std::uint32_t{kReversedByte[(i >> 16) & 0xFF]} << 8) |
                                 std::uint32_t{kReversedByte[(i >> 24) & 0xFF]};
  return reversed >> (32 - bits);
}

// An index is split into (high q bits, middle bits, low q bits); reversal maps (h, b, l) to
// (rev l, rev b, rev h). So the 2^q × 2^q elements sharing the middle part b trade places with those
// of the middle part rev b, as a transposed block. Copying each block's rows into a small buffer and
// writing rows back keeps the memory access sequential: a plain swap loop would jump across the whole
// array and, at power-of-two strides, miss the cache on almost every element. 2^5 rows of 512 bytes.
constexpr int kBlockBits = 5;
constexpr std::size_t kBlockSide = std::size_t{1} << kBlockBits;

struct BlockBuffers {
  Complex first[kBlockSide * kBlockSide];
  Complex second[kBlockSide * kBlockSide];
};

void CopyBlockOut(const Complex* block, std::size_t rowStride, std::size_t side, Complex* buffer) {
  for (std::size_t row = 0; row < side; ++row)
    std::memcpy(buffer + row * side, block + row * rowStride, side * sizeof(Complex));
}

// block(h, l) = buffer(rev l, rev h), the transposed and reversed content of the partner block.
void WriteBlockBack(Complex* block, std::size_t rowStride, std::size_t side, const Complex* buffer,
                    const std::size_t* reversed) {
  for (std::size_t h = 0; h < side; ++h) {
    Complex* row = block + h * rowStride;
    const Complex* column = buffer + reversed[h];
    for (std::size_t l = 0; l < side; ++l) row[l] = column[reversed[l] * side];
  }
}

// ---- Butterflies ------------------------------------------------------------------------------

// The butterflies are written once for a vector of complex values side by side (re, im, re, im, ..)
// and built twice: with two values per 32-byte AVX register where the processor has AVX2, and with one
// value per SSE2 register everywhere else. Vectors are passed by reference: a by-value 32-byte vector
// parameter draws GCC's note that its calling convention differs with and without AVX, which the
// always-inlined helpers never use. The same note on return values is what the pragma silences.
#pragma GCC diagnostic ignored "-Wpsabi"
using Wide = double __attribute__((vector_size(32)));
using Narrow = double __attribute__((vector_size(16)));
using WideMask = long long __attribute__((vector_size(32)));
using NarrowMask = long long __attribute__((vector_size(16)));

template <class V>
constexpr std::size_t kLanes = sizeof(V) / sizeof(Complex);

template <class V>
[[gnu::always_inline]] inline V Load(const Complex* p) {
  V v;
  std::memcpy(&v, p, sizeof v);
  return v;
}
template <class V>
[[gnu::always_inline]] inline void Store(Complex* p, const V& v) {
  std::memcpy(static_cast<void*>(p), &v, sizeof v);
}

// w · x lane by lane with the operations of ComplexMul (re = wr·xr − wi·xi, im = wr·xi + wi·xr), in
// the same order and without fused multiply-adds, so each lane gives the bits the scalar helper gives.
template <class V>
[[gnu::always_inline]] inline V Mul(const V& w, const V& x) {
  if constexpr (kLanes<V> == 2) {
    const V p = __builtin_shuffle(w, WideMask{0, 0, 2, 2}) * x;
    const V q = __builtin_shuffle(w, WideMask{1, 1, 3, 3}) * __builtin_shuffle(x, WideMask{1, 0, 3, 2});
    return __builtin_shuffle(p - q, p + q, WideMask{0, 5, 2, 7});
  } else {
    const V p = __builtin_shuffle(w, NarrowMask{0, 0}) * x;
    const V q = __builtin_shuffle(w, NarrowMask{1, 1}) * __builtin_shuffle(x, NarrowMask{1, 0});
    return __builtin_shuffle(p - q, p + q, NarrowMask{0, 3});
  }
}

// The twiddles of a vector, conjugated for the inverse direction: a product by −1 is exact, and turns
// sin(x) into sin(−x) bit for bit, the zero's sign included.
template <class V, bool Conjugate>
[[gnu::always_inline]] inline V LoadTwiddles(const Complex* w) {
  if constexpr (!Conjugate) {
    return Load<V>(w);
  } else if constexpr (kLanes<V> == 2) {
    return Load<V>(w) * V{1.0, -1.0, 1.0, -1.0};
  } else {
    return Load<V>(w) * V{1.0, -1.0};
  }
}

// One butterfly of a stage for the neighbouring k of a vector: upper + w·lower, upper − w·lower.
template <class V, bool Conjugate>
[[gnu::always_inline]] inline void Butterfly(Complex* upper, Complex* lower, const Complex* w) {
  const V u = Load<V>(upper);
  const V t = Mul(LoadTwiddles<V, Conjugate>(w), Load<V>(lower));
  Store(upper, u + t);
  Store(lower, u - t);
}

// Stages m and 2m together on the four quarters of a run of 4m: the values stay in registers between
// the two stages, so the run is read and written once instead of twice. Each value goes through
// exactly the operations the two separate stages would apply. w points at w(m, k).
template <class V, bool Conjugate>
[[gnu::always_inline]] inline void DoubleButterfly(Complex* p, std::size_t m, const Complex* w) {
  // w(m,k), w(2m,k), w(2m,k+m)
  const V w1 = LoadTwiddles<V, Conjugate>(w), w2 = LoadTwiddles<V, Conjugate>(w + m),
          w3 = LoadTwiddles<V, Conjugate>(w + 2 * m);
  const V a0 = Load<V>(p), a1 = Load<V>(p + m), a2 = Load<V>(p + 2 * m), a3 = Load<V>(p + 3 * m);
  const V t1 = Mul(w1, a1), t3 = Mul(w1, a3);
  const V b0 = a0 + t1, b1 = a0 - t1, b2 = a2 + t3, b3 = a2 - t3;
  const V u2 = Mul(w2, b2), u3 = Mul(w3, b3);
  Store(p, b0 + u2);
  Store(p + 2 * m, b0 - u2);
  Store(p + m, b1 + u3);
  Store(p + 3 * m, b1 - u3);
}

// Stages 1 and 2 on four neighbours x0..x3. Stage 1 multiplies by w(1, 0) = 1 exactly and is left
// out (that can only change the sign of a zero). w2 points at w(2, 0), w(2, 1).
template <class V, bool Conjugate>
[[gnu::always_inline]] inline void FirstTwoStages(Complex* p, const Complex* w2) {
  if constexpr (kLanes<V> == 2) {
    const V x01 = Load<V>(p), x23 = Load<V>(p + 2);
    const V even = __builtin_shuffle(x01, x23, WideMask{0, 1, 4, 5});  // x0, x2
    const V odd = __builtin_shuffle(x01, x23, WideMask{2, 3, 6, 7});   // x1, x3
    const V sum = even + odd, difference = even - odd;                 // (b0, b2), (b1, b3)
    const V upper = __builtin_shuffle(sum, difference, WideMask{0, 1, 4, 5});  // b0, b1
    const V lower = Mul(LoadTwiddles<V, Conjugate>(w2), __builtin_shuffle(sum, difference, WideMask{2, 3, 6, 7}));
    Store(p, upper + lower);
    Store(p + 2, upper - lower);
  } else {
    const V x0 = Load<V>(p), x1 = Load<V>(p + 1), x2 = Load<V>(p + 2), x3 = Load<V>(p + 3);
    const V b0 = x0 + x1, b1 = x0 - x1, b2 = x2 + x3, b3 = x2 - x3;
    const V u2 = Mul(LoadTwiddles<V, Conjugate>(w2), b2), u3 = Mul(LoadTwiddles<V, Conjugate>(w2 + 1), b3);
    Store(p, b0 + u2);
    Store(p + 2, b0 - u2);
    Store(p + 1, b1 + u3);
    Store(p + 3, b1 - u3);
  }
}

// All stages of half-size below 2^bits within one run of 2^bits elements (bits ≥ 2).
template <class V, bool Conjugate>
[[gnu::always_inline]] inline void RunStages(Complex* run, int bits, const Complex* twiddles) {
  const std::size_t length = std::size_t{1} << bits;
  std::size_t m = 4;
  if (bits % 2 == 0) {
    for (std::size_t i = 0; i < length; i += 4) FirstTwoStages<V, Conjugate>(run + i, twiddles + 2);
  } else {  // an odd count of stages: stage 4 joins the first two, the rest go in pairs
    for (std::size_t i = 0; i < length; i += 8) {
      FirstTwoStages<V, Conjugate>(run + i, twiddles + 2);
      FirstTwoStages<V, Conjugate>(run + i + 4, twiddles + 2);
      for (std::size_t k = 0; k < 4; k += kLanes<V>)
        Butterfly<V, Conjugate>(run + i + k, run + i + k + 4, twiddles + 4 + k);
    }
    m = 8;
  }
  for (; m < length; m *= 4)
    for (std::size_t base = 0; base < length; base += 4 * m)
      for (std::size_t k = 0; k < m; k += kLanes<V>)
        DoubleButterfly<V, Conjugate>(run + base + k, m, twiddles + m + k);
}

// Elements whose small stages are done together before moving on: 2^13 complex = 128 KiB, well inside
// the level-2 cache, so only the stages above it stream the whole array from memory.
constexpr int kRunBits = 13;

template <class V, bool Conjugate>
[[gnu::always_inline]] inline void AllStages(Complex* a, int bits, const Complex* twiddles) {
  const std::size_t n = std::size_t{1} << bits;
  const int runBits = std::min(bits, kRunBits);
  for (std::size_t start = 0; start < n; start += std::size_t{1} << runBits)
    RunStages<V, Conjugate>(a + start, runBits, twiddles);

  std::size_t m = std::size_t{1} << runBits;
  if ((bits - runBits) % 2 == 1) {  // one stage on its own, the others in pairs
    for (std::size_t base = 0; base < n; base += 2 * m)
      for (std::size_t k = 0; k < m; k += kLanes<V>)
        Butterfly<V, Conjugate>(a + base + k, a + base + k + m, twiddles + m + k);
    m *= 2;
  }
  for (; m < n; m *= 4)
    for (std::size_t base = 0; base < n; base += 4 * m)
      for (std::size_t k = 0; k < m; k += kLanes<V>) DoubleButterfly<V, Conjugate>(a + base + k, m, twiddles + m + k);
}

__attribute__((target("avx2"))) void AllStagesAvx2(Complex* a, int bits, const Complex* twiddles, bool conjugate) {
  if (conjugate)
    AllStages<Wide, true>(a, bits, twiddles);
  else
    AllStages<Wide, false>(a, bits, twiddles);
}
void AllStagesSse2(Complex* a, int bits, const Complex* twiddles, bool conjugate) {
  if (conjugate)
    AllStages<Narrow, true>(a, bits, twiddles);
  else
    AllStages<Narrow, false>(a, bits, twiddles);
}

}  // namespace

void BitReverse(Complex* a, int bits) {
  const int q = std::min(bits / 2, kBlockBits);
  const int middleBits = bits - 2 * q;
  const std::size_t side = std::size_t{1} << q;
  const std::size_t rowStride = std::size_t{1} << (bits - q);
  std::size_t reversed[kBlockSide];
  for (std::size_t i = 0; i < side; ++i) reversed[i] = Reverse(i, q);

  thread_local BlockBuffers buffers;
  for (std::size_t b = 0; b < (std::size_t{1} << middleBits); ++b) {
    const std::size_t rb = Reverse(b, middleBits);
    if (rb < b) continue;  // that pair was done from the other side
    Complex* block = a + (b << q);
    Complex* partner = a + (rb << q);
    CopyBlockOut(block, rowStride, side, buffers.first);
    if (rb == b) {
      WriteBlockBack(block, rowStride, side, buffers.first, reversed);
    } else {
      CopyBlockOut(partner, rowStride, side, buffers.second);
      WriteBlockBack(block, rowStride, side, buffers.second, reversed);
      WriteBlockBack(partner, rowStride, side, buffers.first, reversed);
    }
  }
}

void Butterflies(Complex* a, int bits, const Complex* twiddles, bool conjugate, Vectors vectors) {
  if (bits == 0) return;
  if (bits == 1) {  // w(1, 0) = 1
    const Complex sum = ComplexAdd(a[0], a[1]);
    a[1] = ComplexSub(a[0], a[1]);
    a[0] = sum;
    return;
  }
  static const bool hasAvx2 = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
  }();
  if (hasAvx2 && vectors == Vectors::Best)
    AllStagesAvx2(a, bits, twiddles, conjugate);
  else
    AllStagesSse2(a, bits, twiddles, conjugate);
}

void ReleaseTwiddles() {
  TwiddleCache& cache = Twiddles();
  const std::lock_guard<std::mutex> lock(cache.Mutex);
  cache.Kept.reset();
}

void Transform(Complex* a, int bits, std::int32_t sign, Vectors vectors) {
  BitReverse(a, bits);
  const Table twiddles = TwiddlesFor(std::int32_t{1} << bits);
  Butterflies(a, bits, twiddles->data(), sign > 0, vectors);
}

}  // namespace velmora::detail
