// Points, distances, angles, areas and orientation.
#include <algorithm>
#include <cmath>

#include "kxrender/AcGeBoundBlock3d.h"
#include "kxrender/AcGeLineSeg2d.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/CRenderSysUtils.h"

double CRenderSysUtils::PRECISION = 1e-6;

AcGePoint3d CRenderSysUtils::getMidPoint(const AcGePoint3d& a, const AcGePoint3d& b) {
  return AcGePoint3d((a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2);
}

double CRenderSysUtils::getDist(const AcGePoint3d& a, const AcGePoint3d& b) { return a.distanceTo(b); }

void CRenderSysUtils::getMinMaxPt(const std::vector<AcGePoint3d>& points, AcGePoint3d& minPt, AcGePoint3d& maxPt) {
  if (points.empty()) return;
  // Started from the first point, so a NaN there stays in the result.
  AcGeBoundBlock3d box(points[0], points[0]);
  for (const AcGePoint3d& p : points) box.extend(p);
  box.getMinMaxPoints(minPt, maxPt);
}

void CRenderSysUtils::getSphere(const AcGePoint3d& minPt, const AcGePoint3d& maxPt, AcGePoint3d& center,
                                float& radius) {
  center = getMidPoint(minPt, maxPt);
  radius = static_cast<float>(center.distanceTo(minPt));
}

AcGeVector3d CRenderSysUtils::getNormal(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3) {
  // Second edge from p2, not from p1: callers' winding relies on it.
  return (p2 - p1).crossProduct(p3 - p2);
}

double CRenderSysUtils::getAngle(const AcGePoint3d& a, const AcGePoint3d& b) {
  AcGeVector3d v = b - a;
  if (!(v.length() >= 1e-10)) return 0.0;
  double ang = v.angleTo(AcGeVector3d::kXAxis);
  // z takes part in the angle but not in the choice of side.
  return v.y >= 0.0 ? ang : 2.0 * M_PI - ang;
}

double CRenderSysUtils::getAngle(const AcGePoint2d& a, const AcGePoint2d& b) {
  AcGeVector2d v = b - a;
  if (!(v.length() >= 1e-10)) return 0.0;
  double ang = v.angleTo(AcGeVector2d::kXAxis);
  return v.y >= 0.0 ? ang : 2.0 * M_PI - ang;
}

int CRenderSysUtils::floatComp(double a, double b, double tol) {
  double d = a - b;
  if (d > tol) return 1;
  if (d < -tol) return -1;
  return 0;
}

double CRenderSysUtils::getTriangleArea(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
  AcGeVector2d ab(b.x - a.x, b.y - a.y), ac(c.x - a.x, c.y - a.y);
  double base = ab.length();
  if (!(base > 0.0)) return 0.0;
  double height = std::fabs(ab.crossProduct(ac)) / base;
  return base * height / 2.0;
}

double CRenderSysUtils::getPolygonArea(const std::vector<AcGePoint3d>& points) {
  size_t n = points.size();
  if (n < 3) return 0.0;
  // All points on the chord from first to last: a flat outline.
  AcGeLineSeg2d chord(AcGePoint2d(points[0].x, points[0].y), AcGePoint2d(points[n - 1].x, points[n - 1].y));
  bool flat = true;
  for (size_t i = 1; i + 1 < n && flat; ++i) flat = chord.isOn(AcGePoint2d(points[i].x, points[i].y));
  if (flat) return 0.0;
  double sum = 0.0;
  for (size_t i = 0; i < n; ++i) {
    const AcGePoint3d& prev = points[(i + n - 1) % n];
    const AcGePoint3d& next = points[(i + 1) % n];
    sum += points[i].y * (prev.x - next.x);
  }
  return std::fabs(sum / 2.0);
}

bool CRenderSysUtils::polyClockWise(const std::vector<AcGePoint3d>& points) {
  size_t n = points.size();
  if (n < 3) return false;
  if (points[n - 1].isEqualTo(points[0])) --n;  // closing point
  if (n < 3) return false;
  double sum = 0.0;
  for (size_t i = 0; i < n; ++i) {
    const AcGePoint3d& p = points[i];
    const AcGePoint3d& q = points[(i + 1) % n];
    sum += p.x * q.y - q.x * p.y;
  }
  // Zero area counts as clockwise.
  return sum / 2.0 <= 0.0;
}

void CRenderSysUtils::cvtClock(std::vector<AcGePoint3d>& points, const AcGeVector3d& normal, bool clockwise) {
  if (points.empty()) return;
  // Scratch kept per thread: building a model orients every contour, and a
  // copy each would be an allocation each.
  thread_local std::vector<AcGePoint3d> local;
  local.assign(points.begin(), points.end());
  AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(AcGePlane(points[0], normal));
  for (AcGePoint3d& p : local) p.transformBy(toPlane);
  if (polyClockWise(local) != clockwise) std::reverse(points.begin(), points.end());
  if (local.capacity() > 4096) std::vector<AcGePoint3d>().swap(local);  // keep no huge contour's room
}

double CRenderSysUtils::calPolyArea(const std::vector<AcGePoint3d>& points) {
  if (points.size() < 3) return 0.0;
  // Newell's vector sum: twice the area times the unit normal. Measured
  // from the first point to keep large coordinates from cancelling.
  AcGeVector3d sum;
  const AcGePoint3d& o = points[0];
  for (size_t i = 1; i + 1 < points.size(); ++i) sum += (points[i] - o).crossProduct(points[i + 1] - o);
  double area = sum.length() / 2.0;
  return std::isfinite(area) ? area : 0.0;
}
