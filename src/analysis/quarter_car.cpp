#include "analysis/quarter_car.h"

#include <cmath>
#include <string>

#include "base/legacy_error.h"

namespace velmora {

Matrix4 Matrix4::Identity() {
  Matrix4 m;
  for (int i = 1; i <= 4; ++i) m(i, i) = 1.0;
  return m;
}

void BuildQuarterCarMatrices(double k1, double k2, double c, double mu, Matrix4& a, Vector4& b,
                             Vector4& cVec) {
  a = Matrix4{};
  b = Vector4{};
  cVec = Vector4{};
  a(1, 2) = 1;
  a(3, 4) = 1;
  a(2, 1) = -k2;
  a(2, 2) = -c;
  a(2, 3) = k2;
  a(2, 4) = c;
  a(4, 1) = k2 / mu;
  a(4, 2) = c / mu;
  a(4, 3) = -(k1 + k2) / mu;
  a(4, 4) = -c / mu;
  b(4) = k1 / mu;
  cVec(1) = -1;
  cVec(3) = 1;
}

void BuildTransitionMatrix(double dt, Matrix4& a, const Vector4& b, Matrix4& st, Vector4& pr) {
  st = Matrix4::Identity();
  Matrix4 term = Matrix4::Identity();  // A^t dt^t / t!
  for (int t = 1;; ++t) {
    Matrix4 product;
    for (int i = 1; i <= 4; ++i)
      for (int j = 1; j <= 4; ++j) {
        double sum = 0;
        for (int k = 1; k <= 4; ++k) sum += term(i, k) * a(k, j);
        product(i, j) = sum;
      }
    bool changed = false;
    for (int i = 1; i <= 4; ++i)
      for (int j = 1; j <= 4; ++j) {
        term(i, j) = dt * product(i, j) / t;
        // A non-finite term would "change" ST forever: the legacy runtime stopped with overflow.
        if (!std::isfinite(term(i, j)))
          RaiseOverflow("quarter-car transition matrix, dt = " + std::to_string(dt) + " s");
        if (st(i, j) + term(i, j) != st(i, j)) changed = true;
        st(i, j) = st(i, j) + term(i, j);
      }
    if (!changed) break;
  }

  InvertMatrix(a);

  for (int i = 1; i <= 4; ++i) {
    pr(i) = 0;
    for (int j = 1; j <= 4; ++j) pr(i) = pr(i) - a(i, j) * b(j);
  }
  Matrix4 inverseTimesSt;
  for (int i = 1; i <= 4; ++i)
    for (int j = 1; j <= 4; ++j) {
      double sum = 0;
      for (int k = 1; k <= 4; ++k) sum += a(i, k) * st(k, j);
      inverseTimesSt(i, j) = sum;
    }
  for (int i = 1; i <= 4; ++i)
    for (int j = 1; j <= 4; ++j) pr(i) = pr(i) + inverseTimesSt(i, j) * b(j);
}

bool LuDecompose(Matrix4& a, PivotIndex& index, double& d, int n) {
  constexpr double kTiny = 1.0e-20;
  Vector4 scale;
  d = 1.0;
  for (int i = 1; i <= n; ++i) {
    double big = 0;
    for (int j = 1; j <= n; ++j) big = std::max(big, std::fabs(a(i, j)));
    if (big == 0) return false;
    scale(i) = 1.0 / big;
  }
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i < j; ++i) {
      double sum = a(i, j);
      for (int k = 1; k < i; ++k) sum -= a(i, k) * a(k, j);
      a(i, j) = sum;
    }
    double big = 0;
    int pivotRow = j;
    for (int i = j; i <= n; ++i) {
      double sum = a(i, j);
      for (int k = 1; k < j; ++k) sum -= a(i, k) * a(k, j);
      a(i, j) = sum;
      const double weighted = scale(i) * std::fabs(sum);
      if (weighted >= big) {  // a later row wins a tie
        big = weighted;
        pivotRow = i;
      }
    }
    if (pivotRow != j) {
      for (int k = 1; k <= n; ++k) std::swap(a(pivotRow, k), a(j, k));
      d = -d;
      scale(pivotRow) = scale(j);
    }
    index[static_cast<std::size_t>(j)] = pivotRow;
    if (a(j, j) == 0) a(j, j) = kTiny;
    if (j != n) {
      const double factor = 1.0 / a(j, j);
      for (int i = j + 1; i <= n; ++i) a(i, j) *= factor;
    }
  }
  return true;
}

void LuBackSubstitute(const Matrix4& a, const PivotIndex& index, Vector4& column, int n) {
  int firstNonZero = 0;
  for (int i = 1; i <= n; ++i) {
    const int row = index[static_cast<std::size_t>(i)];
    double sum = column(row);
    column(row) = column(i);
    if (firstNonZero != 0) {
      for (int j = firstNonZero; j < i; ++j) sum -= a(i, j) * column(j);
    } else if (sum != 0) {
      firstNonZero = i;
    }
    column(i) = sum;
  }
  for (int i = n; i >= 1; --i) {
    double sum = column(i);
    for (int j = i + 1; j <= n; ++j) sum -= a(i, j) * column(j);
    column(i) = sum / a(i, i);
  }
}

void InvertMatrix(Matrix4& a, int n) {
  // Identity rows until the decomposition records its swaps, so that a matrix refused as singular
  // still goes through the back-substitution without an invalid row number.
  PivotIndex index{0, 1, 2, 3, 4};
  double d = 1.0;
  LuDecompose(a, index, d, n);
  Matrix4 inverse;
  for (int j = 1; j <= n; ++j) {
    Vector4 column;
    column(j) = 1.0;
    LuBackSubstitute(a, index, column, n);
    for (int i = 1; i <= n; ++i) inverse(i, j) = column(i);
  }
  a = inverse;
}

void SimulateQuarterCar(std::span<double> y, std::int32_t n, const Matrix4& st, const Vector4& pr,
                        const Vector4& cVec, Vector4& x) {
  double x1 = x(1), x2 = x(2), x3 = x(3), x4 = x(4);
  const double c1 = cVec(1), c2 = cVec(2), c3 = cVec(3), c4 = cVec(4);
  for (std::int32_t i = 1; i <= n; ++i) {
    double& value = y[static_cast<std::size_t>(i - 1)];
    const double input = value;
    const double n1 = pr(1) * input + st(1, 1) * x1 + st(1, 2) * x2 + st(1, 3) * x3 + st(1, 4) * x4;
    const double n2 = pr(2) * input + st(2, 1) * x1 + st(2, 2) * x2 + st(2, 3) * x3 + st(2, 4) * x4;
    const double n3 = pr(3) * input + st(3, 1) * x1 + st(3, 2) * x2 + st(3, 3) * x3 + st(3, 4) * x4;
    const double n4 = pr(4) * input + st(4, 1) * x1 + st(4, 2) * x2 + st(4, 3) * x3 + st(4, 4) * x4;
    x1 = n1;
    x2 = n2;
    x3 = n3;
    x4 = n4;
    value = c2 * x2 + c1 * x1 + c3 * x3 + c4 * x4;
  }
  x(1) = x1;
  x(2) = x2;
  x(3) = x3;
  x(4) = x4;
}

}  // namespace velmora
