// Scene snap: the candidates and index nodes around the cursor, handed
// with the pick ray to the object set's snap search.
#include <algorithm>
#include <cmath>

#include "kxrender/CSceneMgr.h"
#include "objects/BjSnap.h"

bool CSceneMgr::snap(CPoint pt, int aperture, double tolerance, AcGePoint3d& result, CRenderObject::SnapMode& kind) {
  if (m_snapMode == 0 || aperture <= 0) return false;
  if (pt.x < 0 || pt.y < 0 || pt.x >= m_viewport[2] || pt.y >= m_viewport[3]) return false;
  // Wider than any screen: keeps the rectangle's corners inside the pixel range.
  aperture = std::min(aperture, 1 << 16);
  std::vector<unsigned int> ids;
  // Given right to left: the objects inside or crossing the aperture.
  if (!pick(CPoint(pt.x + aperture, pt.y + aperture), CPoint(pt.x - aperture, pt.y - aperture), ids)) return false;

  std::vector<CSnapNode> nodes;
  const AcGePoint3d w = screen2world(pt, PLANE_XY);
  const double r = m_viewWidth ? aperture * m_frustumWidth / m_viewWidth : 0.0;
  // A view along the XY plane has no cursor point on it: no nodes then.
  if (std::isfinite(w.x) && std::isfinite(w.y) && std::isfinite(r) && r > 0.0)
    m_objSetMgr.getSnapNodes(AcGePoint2d(w.x - r, w.y - r), AcGePoint2d(w.x + r, w.y + r), nodes);

  AcGePoint3d nearPt, farPt;
  getPointOfIntersectionThatEyeToNearFarFrustumPlane(pt, nearPt, farPt);
  return m_objSetMgr.snap(nearPt, farPt, aperture, tolerance, m_snapMode, ids, nodes, result, kind);
}
