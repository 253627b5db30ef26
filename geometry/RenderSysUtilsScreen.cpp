// Screen-space tests on window pixels and frustum culling. The tests that
// map world points through a scene live with the scene (scene/).
#include <algorithm>

#include "kxrender/CPoint.h"
#include "kxrender/CRect.h"
#include "kxrender/CRenderSysUtils.h"

namespace {

long long orient(const POINT& a, const POINT& b, const POINT& c) {
  return static_cast<long long>(b.x - a.x) * (c.y - a.y) - static_cast<long long>(b.y - a.y) * (c.x - a.x);
}

bool onSegment(const POINT& a, const POINT& b, const POINT& p) {
  return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
         p.y <= std::max(a.y, b.y);
}

// Exact integer test; touching and collinear overlap count.
bool segmentsMeet(const POINT& a, const POINT& b, const POINT& c, const POINT& d) {
  long long o1 = orient(a, b, c), o2 = orient(a, b, d), o3 = orient(c, d, a), o4 = orient(c, d, b);
  if (((o1 > 0 && o2 < 0) || (o1 < 0 && o2 > 0)) && ((o3 > 0 && o4 < 0) || (o3 < 0 && o4 > 0))) return true;
  return (o1 == 0 && onSegment(a, b, c)) || (o2 == 0 && onSegment(a, b, d)) || (o3 == 0 && onSegment(c, d, a)) ||
         (o4 == 0 && onSegment(c, d, b));
}

}  // namespace

bool CRenderSysUtils::ptInRect(const CPoint& p, const CRect& rect) {
  return rect.left <= p.x && p.x <= rect.right && rect.top <= p.y && p.y <= rect.bottom;
}

bool CRenderSysUtils::rectIntersectWithRect(int l1, int t1, int r1, int b1, int l2, int t2, int r2, int b2) {
  return !(r1 < l2 || l1 > r2 || b1 < t2 || t1 > b2);
}

bool CRenderSysUtils::segIntersectWithRectSide(const CPoint& a, const CPoint& b, const CRect& rect) {
  POINT lt{rect.left, rect.top}, rt{rect.right, rect.top}, rb{rect.right, rect.bottom}, lb{rect.left, rect.bottom};
  return segmentsMeet(a, b, lt, rt) || segmentsMeet(a, b, rt, rb) || segmentsMeet(a, b, rb, lb) ||
         segmentsMeet(a, b, lb, lt);
}

bool CRenderSysUtils::segIntersectWithRect(const CPoint& a, const CPoint& b, const CRect& rect) {
  return ptInRect(a, rect) || ptInRect(b, rect) || segIntersectWithRectSide(a, b, rect);
}

bool CRenderSysUtils::sphereInFrustum(const std::vector<std::vector<double>>& planes, const AcGePoint3d& center,
                                      double radius) {
  // Five planes only: the sixth (far) plane is never consulted, so nothing
  // is culled for being too far away.
  size_t count = std::min<size_t>(planes.size(), 5);
  for (size_t i = 0; i < count; ++i) {
    const std::vector<double>& pl = planes[i];
    if (pl.size() < 4) continue;
    if (pl[0] * center.x + pl[1] * center.y + pl[2] * center.z + pl[3] <= -radius) return false;
  }
  return true;
}

CRenderSysUtils::BOXFACE CRenderSysUtils::rayIntersectWithYZ() {
  // Slab test of a ray against the slab -50 <= x <= 50 between two YZ
  // planes, over the ray parameters -1e10 .. 1e10. The built-in ray starts
  // at x = 2 and runs parallel to the planes (its x speed is below
  // PRECISION), so it stays inside without crossing a face.
  const double tMin = -1e10, tMax = 1e10, slabLow = -50.0, slabHigh = 50.0, originX = 2.0, speedX = 0.0;
  if (std::fabs(speedX) < PRECISION) return (originX < slabLow || originX > slabHigh) ? BOXFACE_OUTSIDE : BOXFACE_INSIDE;
  double t1 = (slabLow - originX) / speedX, t2 = (slabHigh - originX) / speedX;
  if (t1 > t2) std::swap(t1, t2);
  return (t2 < tMin || t1 > tMax) ? BOXFACE_OUTSIDE : BOXFACE_CROSSING;
}
