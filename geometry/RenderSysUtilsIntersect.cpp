// Intersections of points, lines, rays, triangles, boxes, arcs and faces.
#include <algorithm>
#include <cmath>

#include "RenderSysUtilsTol.h"
#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeCurveCurveInt3d.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeLineSeg2d.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/AcGeRay2d.h"
#include "kxrender/AcGeRay3d.h"
#include "kxrender/CRenderSysUtils.h"

using kxgeom::pointTol;

bool CRenderSysUtils::ptIntersectWithLine(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b,
                                          AcGePoint3d& out, double tol) {
  if (!AcGeLineSeg3d(a, b).isOn(p, pointTol(tol))) return false;
  out = p;
  return true;
}

bool CRenderSysUtils::plineIntersectWithLine(const std::vector<AcGePoint3d>& points, const AcGePoint3d& a,
                                             const AcGePoint3d& b, AcGePoint3d& out, double tol) {
  if (points.empty()) return false;
  if (points.size() == 1) return ptIntersectWithLine(points[0], a, b, out, tol);
  AcGeTol t = pointTol(tol);
  AcGeLineSeg3d line(a, b);
  for (size_t i = 1; i < points.size(); ++i) {
    AcGeLineSeg3d seg(points[i - 1], points[i]);
    AcGePoint3d ip;
    if (seg.intersectWith(line, ip, t)) {
      out = seg.closestPointTo(ip);
      return true;
    }
  }
  return false;
}

bool CRenderSysUtils::rayIntersectWithSeg(const AcGePoint3d& origin, const AcGeVector3d& direction,
                                          const AcGePoint3d& a, const AcGePoint3d& b, AcGePoint3d& out, double tol) {
  return AcGeRay3d(origin, direction).intersectWith(AcGeLineSeg3d(a, b), out, pointTol(tol));
}

bool CRenderSysUtils::rayIntersectWithSeg(const AcGePoint2d& origin, const AcGeVector2d& direction,
                                          const AcGePoint2d& a, const AcGePoint2d& b, AcGePoint2d& out, double tol) {
  return AcGeRay2d(origin, direction).intersectWith(AcGeLineSeg2d(a, b), out, pointTol(tol));
}

bool CRenderSysUtils::rayIntersectWithTriangle(const AcGePoint3d& origin, const AcGeVector3d& direction,
                                               const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c,
                                               AcGePoint3d* out) {
  // Moller-Trumbore: solve origin + t d = a + u e1 + v e2.
  AcGeVector3d e1 = b - a, e2 = c - a;
  AcGeVector3d pv = direction.crossProduct(e2);
  double det = e1.dotProduct(pv);
  double scale = e1.length() * e2.length() * direction.length();
  if (!(std::fabs(det) > 1e-12 * scale)) return false;  // parallel, or degenerate triangle or ray
  double inv = 1.0 / det;
  AcGeVector3d s = origin - a;
  double u = s.dotProduct(pv) * inv;
  const double slack = 1e-12;  // keeps hits exactly on an edge
  if (!(u >= -slack && u <= 1.0 + slack)) return false;
  AcGeVector3d q = s.crossProduct(e1);
  double v = direction.dotProduct(q) * inv;
  if (!(v >= -slack && u + v <= 1.0 + slack)) return false;
  double t = e2.dotProduct(q) * inv;
  if (!(t >= 0.0) || !std::isfinite(t)) return false;
  if (out) *out = origin + direction * t;
  return true;
}

bool CRenderSysUtils::rayIntersectWithBox(const AcGePoint3d& origin, const AcGeVector3d& direction,
                                          const AcGePoint3d& minPt, const AcGePoint3d& maxPt, AcGePoint3d* hit,
                                          double* distance, double* margin) {
  double grow = margin ? *margin : 0.01;
  AcGeVector3d g(grow, grow, grow);
  AcGePoint3d lo = minPt - g, hi = maxPt + g;
  bool inside = true;
  for (int i = 0; i < 3; ++i) inside = inside && origin[i] > lo[i] && origin[i] < hi[i];
  if (inside) {
    if (hit) *hit = origin;
    if (distance) *distance = 0.0;
    return true;
  }
  bool found = false;
  double bestT = 0.0;
  for (int axis = 0; axis < 3; ++axis) {
    if (direction[axis] == 0.0) continue;
    for (double value : {lo[axis], hi[axis]}) {
      double t = (value - origin[axis]) / direction[axis];
      if (!(t >= 0.0) || !std::isfinite(t)) continue;
      AcGePoint3d p = origin + direction * t;
      p[axis] = value;
      bool onFace = true;
      for (int k = 0; k < 3; ++k)
        if (k != axis) onFace = onFace && p[k] >= lo[k] && p[k] <= hi[k];
      if (!onFace) continue;
      if (!hit) return true;
      if (!found || t < bestT) {
        found = true;
        bestT = t;
        *hit = p;
      }
    }
  }
  if (found && distance) *distance = bestT * direction.length();
  return found;
}

bool CRenderSysUtils::arcIntersectWithLine(const AcGeCircArc3d& arc, const AcGePoint3d& a, const AcGePoint3d& b,
                                           int& count, AcGePoint3d& p1, AcGePoint3d& p2, double tol) {
  return arc.intersectWith(AcGeLine3d(a, b), count, p1, p2, pointTol(tol));
}

bool CRenderSysUtils::curveIntersectWithCurve(const AcGeCurve3d* c1, const AcGeCurve3d* c2,
                                              std::vector<AcGePoint3d>& points, double tol) {
  if (c1 == c2 || !c1 || !c2) return false;
  AcGeCurveCurveInt3d ints(*c1, *c2, AcGeVector3d::kIdentity, pointTol(tol));
  points.clear();
  for (int i = 0; i < ints.numIntPoints(); ++i) points.push_back(ints.intPoint(i));
  return !points.empty();
}

bool CRenderSysUtils::faceIntersectWithLine(const std::vector<AcGePoint3d>& outer, const AcGeVector3d& normal,
                                            const AcGePoint3d& origin, const AcGeVector3d& direction,
                                            AcGePoint3d& hit, double tol,
                                            const std::vector<std::vector<AcGePoint3d>>& holes, bool isRay) {
  if (outer.size() < 3) return false;
  AcGeVector3d n = normal;
  if (n.isZeroLength()) {
    for (size_t i = 1; i + 1 < outer.size(); ++i) n += (outer[i] - outer[0]).crossProduct(outer[i + 1] - outer[0]);
  }
  AcGePlane plane(outer[0], n);
  if (!plane.isValid()) return false;
  AcGePoint3d p;
  bool met = isRay ? AcGeRay3d(origin, direction).intersectWith(plane, p, pointTol(tol))
                   : AcGeLine3d(origin, direction).intersectWith(plane, p, pointTol(tol));
  if (!met) return false;
  // Decide inside-ness in the plane's own coordinates.
  AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(plane);
  auto flatten = [&](const std::vector<AcGePoint3d>& loop) {
    std::vector<AcGePoint3d> out(loop);
    for (AcGePoint3d& q : out) q.transformBy(toPlane);
    return out;
  };
  AcGePoint3d local = toPlane * p;
  if (!PtInArea(local, flatten(outer), tol, true)) return false;
  for (const std::vector<AcGePoint3d>& hole : holes)
    if (hole.size() >= 3 && PtInArea(local, flatten(hole), tol, false)) return false;
  hit = p;
  return true;
}

bool CRenderSysUtils::PtInArea(const AcGePoint3d& p, const std::vector<AcGePoint3d>& polygon, double tol,
                               bool onEdge) {
  size_t n = polygon.size();
  if (n == 0) return false;
  AcGeTol t = pointTol(tol);
  AcGePoint2d q(p.x, p.y);
  for (const AcGePoint3d& v : polygon)
    if (AcGePoint2d(v.x, v.y).isEqualTo(q, t)) return onEdge;
  for (size_t i = 0; i < n && n > 1; ++i) {
    const AcGePoint3d& a = polygon[i];
    const AcGePoint3d& b = polygon[(i + 1) % n];
    if (AcGeLineSeg2d(AcGePoint2d(a.x, a.y), AcGePoint2d(b.x, b.y)).isOn(q, t)) return onEdge;
  }
  if (n < 3) return false;
  int crossings = 0;
  for (size_t i = 0; i < n; ++i) {
    const AcGePoint3d& a = polygon[i];
    const AcGePoint3d& b = polygon[(i + 1) % n];
    bool aAbove = floatComp(a.y, p.y, tol) > 0, bAbove = floatComp(b.y, p.y, tol) > 0;
    if (aAbove == bAbove) continue;
    double x = a.x + (p.y - a.y) * (b.x - a.x) / (b.y - a.y);
    if (floatComp(x, p.x, tol) > 0) ++crossings;
  }
  return crossings % 2 == 1;
}
