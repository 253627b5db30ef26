// The screen tests of the geometric utilities that map world points to
// pixels through a scene. They live here so that the geometry library needs
// nothing from the scene above it.
#include <algorithm>
#include <climits>

#include "kxrender/CPoint.h"
#include "kxrender/CRect.h"
#include "kxrender/CRenderSysUtils.h"
#include "kxrender/CSceneMgr.h"

bool CRenderSysUtils::allInRect(const CSceneMgr* scene, const std::vector<AcGePoint3d>& points, const CRect& rect) {
  if (!scene) return false;
  for (const AcGePoint3d& p : points) {
    CPoint s;
    scene->world2screen(p, s);
    if (!ptInRect(s, rect)) return false;
  }
  return true;
}

int CRenderSysUtils::boxToFrustum(const CSceneMgr* scene, const AcGePoint3d& minPt, const AcGePoint3d& maxPt,
                                  const CRect& rect) {
  if (!scene) return 0;
  bool anyIn = false, anyOut = false;
  int left = INT_MAX, top = INT_MAX, right = INT_MIN, bottom = INT_MIN;
  for (int c = 0; c < 8; ++c) {
    AcGePoint3d corner((c & 1) ? maxPt.x : minPt.x, (c & 2) ? maxPt.y : minPt.y, (c & 4) ? maxPt.z : minPt.z);
    CPoint s;
    scene->world2screen(corner, s);
    left = std::min(left, s.x);
    top = std::min(top, s.y);
    right = std::max(right, s.x);
    bottom = std::max(bottom, s.y);
    (ptInRect(s, rect) ? anyIn : anyOut) = true;
    if (anyIn && anyOut) return 2;
  }
  if (anyIn) return 1;
  // No corner inside: the box's screen image may still enclose or cross it.
  if (rect.left > left && rect.top > top && rect.right < right && rect.bottom < bottom) return 3;
  if (rectIntersectWithRect(left, top, right, bottom, rect.left, rect.top, rect.right, rect.bottom)) return 2;
  return 0;
}
