#pragma once
// The transform on a plain 0-based array, and its two halves: the bit-reversal permutation and the
// butterflies. `Fft` checks the arguments first; tests and benchmarks reach the parts directly.
#include <cstdint>

#include "analysis/complex.h"

namespace velmora::detail {

// Puts a[i] at a[reverse(i)] for i = 0 .. 2^bits − 1, reverse taking the lowest `bits` bits in the
// opposite order (the 1-based permutation of the textbook loop, shifted by one). bits in 0..30.
void BitReverse(Complex* a, int bits);

// Which build of the butterflies runs: the fastest the processor supports (AVX2 where present), or
// the one every x86-64 processor runs, so that tests check both on any machine. Both give the bits
// of the textbook loop.
enum class Vectors { Best, Portable };

// All radix-2 butterfly stages m = 1, 2, 4, .. n/2 on a bit-reversed array of n = 2^bits elements.
// twiddles[m + k] = w(m, k) = exp(−i · k · pi / m), k = 0 .. m − 1, for every such m; `conjugate`
// takes them conjugated, for the inverse direction.
void Butterflies(Complex* a, int bits, const Complex* twiddles, bool conjugate, Vectors vectors = Vectors::Best);

// Both on a[0 .. 2^bits), for sign −1 or +1, with the shared twiddle table (built on first use of a
// length and kept).
void Transform(Complex* a, int bits, std::int32_t sign, Vectors vectors = Vectors::Best);

// Lets go of the shared table: transforms running keep theirs, the next one builds it again.
void ReleaseTwiddles();

}  // namespace velmora::detail
