#include "kxrender/CTextureCoord.h"

#include <algorithm>

#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGePlane.h"

namespace {
// A flat rectangle (before any outline is set) has no place to measure in.
double ratio(double num, double den) { return den != 0.0 ? num / den : 0.0; }
}  // namespace

bool CTextureCoord::setPts(const std::vector<AcGePoint3d>& pts) {
  if (pts.size() < 3) return false;
  AcGeTol tol;
  tol.setEqualPoint(1e-5);
  const AcGeLine3d line(pts[0], pts[1]);
  const AcGeVector3d u = pts[1] - pts[0];
  size_t off = 2;
  while (off < pts.size() && line.isOn(pts[off], tol)) ++off;
  if (off == pts.size()) return false;
  const AcGeVector3d normal = u.crossProduct(pts[off] - pts[0]).normal();
  // Two equal first points make every other point "off" the line but span
  // nothing with it.
  if (normal.isZeroLength()) return false;

  m_worldToPlane.setToWorldToPlane(AcGePlane(pts[0], normal));
  // The first point lands on the plane's origin, so starting the rectangle
  // there still gives the outline's own bounds.
  m_ptMin = m_ptMax = AcGePoint3d::kOrigin;
  for (const AcGePoint3d& p : pts) {
    const AcGePoint3d q = m_worldToPlane * p;
    m_ptMin.x = std::min(m_ptMin.x, q.x);
    m_ptMin.y = std::min(m_ptMin.y, q.y);
    m_ptMax.x = std::max(m_ptMax.x, q.x);
    m_ptMax.y = std::max(m_ptMax.y, q.y);
  }
  return true;
}

// t runs down from the top edge so that the picture's first row lies along
// the top. A negative v is dropped (t then runs 0..1) while u is used
// whatever its sign; existing drawings depend on this asymmetry.
AcGePoint2d CTextureCoord::getTextureCoord(const AcGePoint3d& p) const {
  const AcGePoint3d q = m_worldToPlane * p;
  const double w = m_ptMax.x - m_ptMin.x, h = m_ptMax.y - m_ptMin.y;
  const double s = ratio((q.x - m_ptMin.x) * m_fU, w);
  const double t = m_fV >= 0.0f ? ratio((m_ptMax.y - q.y) * m_fV, h) : ratio(m_ptMax.y - q.y, h);
  return AcGePoint2d(s, t);
}

AcGePoint2d CTextureCoord::getTextureCoord2(const AcGePoint3d& p) const {
  const AcGePoint3d q = m_worldToPlane * p;
  return AcGePoint2d(ratio(q.x - m_ptMin.x, m_ptMax.x - m_ptMin.x), ratio(m_ptMax.y - q.y, m_ptMax.y - m_ptMin.y));
}
