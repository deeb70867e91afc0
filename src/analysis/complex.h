#pragma once
// Complex numbers as the frequency-domain code of the program uses them: two f64, real then
// imaginary, and one small free function per operation. Each is written out in the plain textbook
// form (no std::complex) so that every transform gives the same bits on every build.
#include <cmath>

namespace velmora {

struct Complex {
  double Re = 0;
  double Im = 0;
  friend bool operator==(const Complex&, const Complex&) = default;
};

inline Complex ComplexAdd(Complex a, Complex b) { return {a.Re + b.Re, a.Im + b.Im}; }
inline Complex ComplexSub(Complex a, Complex b) { return {a.Re - b.Re, a.Im - b.Im}; }
inline Complex ComplexMul(Complex a, Complex b) {
  return {a.Re * b.Re - a.Im * b.Im, a.Re * b.Im + a.Im * b.Re};
}
// sqrt(re² + im²), without the scaling of std::hypot.
inline double ComplexAbs(Complex a) { return std::sqrt(a.Re * a.Re + a.Im * a.Im); }
// exp(re) · (cos im, sin im).
inline Complex ComplexExp(Complex a) {
  const double magnitude = std::exp(a.Re);
  return {magnitude * std::cos(a.Im), magnitude * std::sin(a.Im)};
}

}  // namespace velmora
