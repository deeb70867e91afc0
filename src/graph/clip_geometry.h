#pragma once
// The small plane geometry of clipping: region codes, the Cohen-Sutherland line clip, boxes.
namespace velmora::graph {

double mlDistPointToPoint(double x1, double y1, double x2, double y2);

// Region code of (x, y) against a box whose top is its smaller y: 1 left of it or 2 right of it
// (never both), plus 4 above top, plus 8 below bottom; 0 inside or on an edge.
int GetClipCode(double left, double right, double top, double bottom, double x, double y);

// Cuts the line (x1, y1)-(x2, y2) to the box in place. 1 when a part lies in the box, 0 when the line
// misses it (the ends are then not meaningful and the caller skips the line).
int ClipLineToBox(double left, double top, double right, double bottom, double& x1, double& y1, double& x2,
                  double& y2);

struct Box {
  double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;  // two opposite corners in any order
};

// Edges included; the corners may be given in any order.
bool PointInBox(double x, double y, double x1, double y1, double x2, double y2);
// True when a corner of one box lies in the other; boxes crossing like a plus sign do not count.
bool BoxesOverlap(const Box& a, const Box& b);

}  // namespace velmora::graph
