// Area, bounding box and sphere, triangle counts and face planarity.
#include <algorithm>
#include <limits>
#include <cmath>

#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSysUtils.h"
#include "shapes/TextPlacement.h"

namespace {
bool isFinite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// Grows [lo, hi] by p; `any` says whether the box holds a point yet.
// Non-finite points are left out: one bad coordinate must not make the
// box, and with it culling and picking, meaningless.
void extend(const AcGePoint3d& p, bool& any, AcGePoint3d& lo, AcGePoint3d& hi, bool& broken) {
  if (!isFinite(p)) {
    broken = true;
    return;
  }
  if (!any) {
    lo = hi = p;
    any = true;
    return;
  }
  for (int i = 0; i < 3; ++i) {
    lo[i] = std::min(lo[i], p[i]);
    hi[i] = std::max(hi[i], p[i]);
  }
}
}  // namespace

void CRenderShape::calArea() {
  switch (m_type) {
    case kPline:
    case kText:
      m_area = 0.0f;
      break;
    case kPgon: {
      double a = CRenderSysUtils::calPolyArea(m_pts);
      for (const auto& h : m_holes) a -= CRenderSysUtils::calPolyArea(h);
      m_area = a > 0.0 ? static_cast<float>(a) : 0.0f;
      break;
    }
    case kFace:
      // A mesh has no outline to measure; its bounding sphere gives an
      // estimate, with pi taken as 3.14.
      m_area = static_cast<float>(double(m_sphereRadius) * 3.14 * double(m_sphereRadius));
      break;
    default:
      break;
  }
}

// The box is that of the contour points. A face mesh has none, so its
// vertices count; a text has none either, so the rectangle it is estimated
// to cover counts. Without points the box is the origin.
void CRenderShape::calBox() {
  m_boxMin = m_boxMax = AcGePoint3d::kOrigin;
  bool any = false, broken = false;
  if (m_type == kFace && m_meshVertices && !m_meshVertices->empty()) {
    for (const AcGePoint3d& p : *m_meshVertices) extend(p, any, m_boxMin, m_boxMax, broken);
  } else if (m_type == kText && m_textInfo) {
    AcGePoint3d corners[4];
    textBoxCorners(*m_textInfo, corners);
    for (const AcGePoint3d& p : corners) extend(p, any, m_boxMin, m_boxMax, broken);
  } else {
    for (const AcGePoint3d& p : m_pts) extend(p, any, m_boxMin, m_boxMax, broken);
  }
  // A point that is not finite makes the box unusable on purpose: objects
  // drop such shapes when they are completed.
  if (broken) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    m_boxMin = m_boxMax = AcGePoint3d(nan, nan, nan);
  }
  CRenderSysUtils::getSphere(m_boxMin, m_boxMax, m_sphereCenter, m_sphereRadius);
}

void CRenderShape::getTriIndex(std::vector<std::vector<unsigned>>& out) const {
  out.clear();
  out.reserve(m_strips.size());
  for (const auto& s : m_strips) out.emplace_back(s.begin(), s.end());
}

size_t CRenderShape::numTriangles() const {
  size_t n = 0;
  for (const auto& s : m_strips) n += s.size() > 2 ? s.size() - 2 : 0;
  if (m_meshTriangleIndices) n += m_meshTriangleIndices->size() / 3;
  return n;
}

bool CRenderShape::faceIsPlane() const {
  if (!m_meshNormals || m_meshNormals->empty()) return false;
  const AcGeVector3d& first = m_meshNormals->front();
  return std::all_of(m_meshNormals->begin(), m_meshNormals->end(),
                     [&](const AcGeVector3d& n) { return n.isCodirectionalTo(first); });
}
