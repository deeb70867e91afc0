#pragma once
// Extension of a profile beyond both ends by folding it out like the doors of a cabinet (観音開き),
// so that the ends of the road do not act as steps in a transform. Samples in mm, arrays 1-based.
#include <cstdint>
#include <string_view>

#include "base/one_based.h"
#include "base/session.h"

namespace velmora {

// The elementary fold. dest gets foldCount + n + foldCount elements (returned in outCount too):
// foldCount mirrored samples, source(1..n), foldCount mirrored samples. The end samples themselves
// are not repeated: dest(foldCount) mirrors source(2), dest(1) mirrors source(foldCount + 1).
// Point-symmetric mirrors through the end sample (2·end − s, a ramp stays a ramp); line-symmetric
// repeats s. Needs 0 ≤ foldCount ≤ n − 1 and n ≤ source.size(), else "subscript out of range".
// At DebugLevel > 0 writes dest to Debug/debugName ("観音開きデータ.csv" when blank).
void MirrorExtend(const DebugTables& debug, bool pointSymmetric, std::int32_t foldCount, std::int32_t n, const Array1<double>& source,
                  std::int32_t& outCount, Array1<double>& dest, std::string_view debugName = {});

// Extension for the FFT filters: point-symmetric to length1 (the larger half of length1 − n on the
// left, the surplus sample cut on the right), then line-symmetric by (length2 − length1)/2 at each end,
// so dest has length2 elements (length1 and length2 from FftLength1/FftLength2 of n). source(i) stands
// at dest(i + offset). Errors are raised.
void FoldOutForFft(const DebugTables& debug, std::int32_t n, std::int32_t length1, std::int32_t length2,
                   const Array1<double>& source, std::int32_t& offset, Array1<double>& dest);
// The same as a procedure of its own: an error is logged under its name and the result is false.
bool subFFT計算用_観音開き作成(Session& session, std::int32_t n, std::int32_t length1, std::int32_t length2,
                            const Array1<double>& source, std::int32_t& offset, Array1<double>& dest);

// Extension for the PSD: only the point-symmetric stage, dest has `length` elements; a plain copy
// when length equals n. Errors as above.
bool subPSD計算用_観音開き作成(Session& session, std::int32_t n, std::int32_t length, const Array1<double>& source,
                            std::int32_t& offset, Array1<double>& dest);

}  // namespace velmora
