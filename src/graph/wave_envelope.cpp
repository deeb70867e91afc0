#include "graph/wave_envelope.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace velmora::graph {

PolylinePoints ColumnEnvelope(double x0, double dx, std::span<const double> y, double left, double right,
                              int columns) {
  PolylinePoints points;
  const double width = (right - left) / columns;
  int column = -1;
  double low = 0, high = 0;
  double last = std::numeric_limits<double>::quiet_NaN();
  const auto flush = [&] {
    if (column < 0) return;
    const double centre = left + (column + 0.5) * width;
    // From the end nearer the previous value, so columns join without a long diagonal.
    const bool fromHigh = !std::isnan(last) && std::fabs(last - high) < std::fabs(last - low);
    points.X.insert(points.X.end(), {centre, centre});
    points.Y.push_back(fromHigh ? high : low);
    points.Y.push_back(fromHigh ? low : high);
    last = points.Y.back();
  };
  for (std::size_t i = 0; i < y.size(); ++i) {
    const double x = x0 + static_cast<double>(i) * dx;
    if (x < left || x > right || !std::isfinite(y[i])) continue;
    const int at = std::min(columns - 1, static_cast<int>((x - left) / width));
    if (at != column) {
      flush();
      column = at;
      low = high = y[i];
    } else {
      // The values are finite here: plain comparisons, in this loop over every sample.
      if (y[i] < low) low = y[i];
      if (y[i] > high) high = y[i];
    }
  }
  flush();
  return points;
}

}  // namespace velmora::graph
