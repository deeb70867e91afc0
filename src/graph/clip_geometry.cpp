#include "graph/clip_geometry.h"

#include <algorithm>
#include <cmath>

namespace velmora::graph {

double mlDistPointToPoint(double x1, double y1, double x2, double y2) { return std::hypot(x2 - x1, y2 - y1); }

int GetClipCode(double left, double right, double top, double bottom, double x, double y) {
  int code = 0;
  if (x < left) {
    code = 1;
  } else if (x > right) {
    code = 2;
  }
  if (y < top) code += 4;
  if (y > bottom) code += 8;
  return code;
}

int ClipLineToBox(double left, double top, double right, double bottom, double& x1, double& y1, double& x2,
                  double& y2) {
  int code1 = GetClipCode(left, right, top, bottom, x1, y1);
  int code2 = GetClipCode(left, right, top, bottom, x2, y2);
  while (code1 != 0 || code2 != 0) {
    if ((code1 & code2) != 0) return 0;
    const bool firstOutside = code1 != 0;
    const int code = firstOutside ? code1 : code2;
    double& x = firstOutside ? x1 : x2;
    double& y = firstOutside ? y1 : y2;
    if (x1 == x2) {
      y = (code & 4) != 0 ? top : bottom;
    } else if (y1 == y2) {
      x = (code & 1) != 0 ? left : right;
    } else if ((code & 1) != 0) {
      y = y1 + (y2 - y1) * (left - x1) / (x2 - x1);
      x = left;
    } else if ((code & 2) != 0) {
      y = y1 + (y2 - y1) * (right - x1) / (x2 - x1);
      x = right;
    } else if ((code & 4) != 0) {
      x = x1 + (x2 - x1) * (top - y1) / (y2 - y1);
      y = top;
    } else {
      x = x1 + (x2 - x1) * (bottom - y1) / (y2 - y1);
      y = bottom;
    }
    (firstOutside ? code1 : code2) = GetClipCode(left, right, top, bottom, x, y);
  }
  return 1;
}

bool PointInBox(double x, double y, double x1, double y1, double x2, double y2) {
  return std::min(x1, x2) <= x && x <= std::max(x1, x2) && std::min(y1, y2) <= y && y <= std::max(y1, y2);
}

bool BoxesOverlap(const Box& a, const Box& b) {
  const auto cornerIn = [](const Box& from, const Box& in) {
    return PointInBox(from.X1, from.Y1, in.X1, in.Y1, in.X2, in.Y2) ||
           PointInBox(from.X2, from.Y1, in.X1, in.Y1, in.X2, in.Y2) ||
           PointInBox(from.X1, from.Y2, in.X1, in.Y1, in.X2, in.Y2) ||
           PointInBox(from.X2, from.Y2, in.X1, in.Y1, in.X2, in.Y2);
  };
  return cornerIn(a, b) || cornerIn(b, a);
}

}  // namespace velmora::graph
