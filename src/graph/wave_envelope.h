#pragma once
// A long wave drawn as its envelope: per pixel column the lowest and highest sample that falls into
// it, so that 10^6 samples cost one pass and a few thousand line points and no peak is lost.
#include <cstddef>
#include <span>
#include <vector>

namespace velmora::graph {

struct PolylinePoints {
  std::vector<double> X;
  std::vector<double> Y;
};

// Samples y[i] at x = x0 + i*dx, over the x range [left, right] cut into `columns` columns. Each
// column that holds samples gives two points at its centre, its minimum and maximum, ordered so that
// the line continues from the previous column's last value; samples outside the range and values that
// are not finite are skipped. columns >= 1, right > left.
PolylinePoints ColumnEnvelope(double x0, double dx, std::span<const double> y, double left, double right,
                              int columns);

}  // namespace velmora::graph
