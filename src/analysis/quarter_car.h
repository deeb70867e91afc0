#pragma once
// The quarter-car model of the roughness index: its system matrices, the exact state transition over
// one sampling interval, and the run of the model over a slope series. Matrices and vectors are
// indexed 1..4 as the model's equations are written. State order: sprung-mass displacement, its rate,
// unsprung-mass displacement, its rate.
#include <array>
#include <cstdint>
#include <span>

#include "base/session.h"

namespace velmora {

class Matrix4 {
 public:
  double& operator()(int i, int j) { return cells_[static_cast<std::size_t>((i - 1) * 4 + (j - 1))]; }
  double operator()(int i, int j) const { return cells_[static_cast<std::size_t>((i - 1) * 4 + (j - 1))]; }
  static Matrix4 Identity();
  friend bool operator==(const Matrix4&, const Matrix4&) = default;

 private:
  std::array<double, 16> cells_{};
};

class Vector4 {
 public:
  double& operator()(int i) { return cells_[static_cast<std::size_t>(i - 1)]; }
  double operator()(int i) const { return cells_[static_cast<std::size_t>(i - 1)]; }
  friend bool operator==(const Vector4&, const Vector4&) = default;

 private:
  std::array<double, 4> cells_{};
};

using PivotIndex = std::array<int, 5>;  // [1..4]: the row swapped with row j at column j

// System matrix A, input vector B and output vector C of the model for the rates over sprung mass:
// k1 tyre spring, k2 suspension spring, c damper, mu unsprung over sprung mass (all 1/s² or 1/s).
// Entries not named by the model are exactly 0.
void BuildQuarterCarMatrices(double k1, double k2, double c, double mu, Matrix4& a, Vector4& b,
                             Vector4& cVec);

// ST = exp(A·dt) by its Taylor series, summed until a term no longer changes any element of ST, and
// PR = A⁻¹(ST − I)B, the state response to a unit input held over dt seconds. `a` is replaced by its
// inverse. A series that overflows raises LegacyError(Overflow).
void BuildTransitionMatrix(double dt, Matrix4& a, const Vector4& b, Matrix4& st, Vector4& pr);

// In-place inverse of the n×n leading block (n = 4 in every use) by Crout decomposition with scaled
// partial pivoting and one back-substitution per column of the identity.
void InvertMatrix(Matrix4& a, int n = 4);
// Crout LU decomposition in place; `index` records the row swaps, `d` the permutation's sign (±1).
// A row of zeros stops it with the matrix as it stands: false ("Singular matrix", which the caller of
// the IRI says before the calculation goes on; see QuarterCarIsSingular).
bool LuDecompose(Matrix4& a, PivotIndex& index, double& d, int n = 4);
// Solves (LU)x = column in place for a matrix decomposed by LuDecompose.
void LuBackSubstitute(const Matrix4& a, const PivotIndex& index, Vector4& column, int n = 4);

// Runs the model over slope elements y(1..n) (mm/m), starting from state `x`, which it advances.
// Each y(i) is replaced by the output C·X after the model has taken in that element.
void SimulateQuarterCar(std::span<double> y, std::int32_t n, const Matrix4& st, const Vector4& pr,
                        const Vector4& cVec, Vector4& x);

}  // namespace velmora
