#pragma once
// Quadratic rational circle of radius r about c in the XY plane, exact with
// weights sqrt(2)/2 on the corner points.
#include <cmath>

#include "kxrender/AcGeNurbCurve3d.h"

inline AcGeNurbCurve3d nurbsCircle(const AcGePoint3d& c, double r) {
  const double w = std::sqrt(0.5);
  double knots[] = {0, 0, 0, 0.25, 0.25, 0.5, 0.5, 0.75, 0.75, 1, 1, 1};
  double xy[9][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
  AcGePoint3dArray pts;
  AcGeDoubleArray weights;
  for (int i = 0; i < 9; ++i) {
    pts.append(c + AcGeVector3d(xy[i][0], xy[i][1], 0) * r);
    weights.append(i % 2 ? w : 1.0);
  }
  return AcGeNurbCurve3d(2, AcGeKnotVector(12, knots), pts, weights);
}
