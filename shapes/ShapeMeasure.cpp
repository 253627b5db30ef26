// Area, bounding box and sphere, triangle counts and face planarity.
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

#include "kxrender/AcGeBoundBlock3d.h"
#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSysUtils.h"
#include "shapes/TextPlacement.h"

namespace {
bool isFinite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// Grows the box by p. Non-finite points are left out of it and only
// flagged: the caller turns a flagged box into an unusable one.
void extend(const AcGePoint3d& p, AcGeBoundBlock3d& box, bool& broken) {
  if (isFinite(p)) {
    box.extend(p);
  } else {
    broken = true;
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
      // A float holds areas up to 3.4e38; a bigger one would become infinite
      // and so would the polygon offset derived from it.
      m_area = a > 0.0 ? static_cast<float>(std::min(a, double(FLT_MAX))) : 0.0f;
      break;
    }
    case kFace: {
      // A mesh has no outline to measure; its bounding sphere gives an
      // estimate, with pi taken as 3.14.
      AcGePoint3d centre;
      double r = 0.0;
      getSphere(centre, r);
      m_area = static_cast<float>(std::min(r * 3.14 * r, double(FLT_MAX)));
      break;
    }
    default:
      break;
  }
}

// The box is that of the contour points. A face mesh has none, so its
// vertices count; a text has none either, so the rectangle it is estimated
// to cover counts. Without points the box is the origin.
void CRenderShape::calBox() {
  touchDrawStamp();
  m_boxMin = m_boxMax = AcGePoint3d::kOrigin;
  AcGeBoundBlock3d box;
  bool broken = false;
  if (m_type == kFace && meshVertices() && !meshVertices()->empty()) {
    for (const AcGePoint3d& p : *meshVertices()) extend(p, box, broken);
  } else if (m_type == kText && m_textInfo) {
    AcGePoint3d corners[4];
    textBoxCorners(*m_textInfo, corners);
    for (const AcGePoint3d& p : corners) extend(p, box, broken);
  } else {
    for (const AcGePoint3d& p : m_pts) extend(p, box, broken);
  }
  if (!box.isEmpty()) box.getMinMaxPoints(m_boxMin, m_boxMax);
  // A point that is not finite makes the box unusable on purpose: objects
  // drop such shapes when they are completed.
  if (broken) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    m_boxMin = m_boxMax = AcGePoint3d(nan, nan, nan);
  }
  if (m_rare) m_rare->sphereKept = false;  // the box gives it again
}

void CRenderShape::getSphere(AcGePoint3d& centre, double& radius) const {
  float r = 0.0f;
  if (m_rare && m_rare->sphereKept) {
    centre = m_rare->sphereCenter;
    r = m_rare->sphereRadius;
  } else {
    CRenderSysUtils::getSphere(m_boxMin, m_boxMax, centre, r);
  }
  radius = r;
}

void CRenderShape::getTriIndex(std::vector<std::vector<unsigned>>& out) const {
  out.clear();
  out.reserve(m_strips.size());
  for (const auto& s : m_strips) out.emplace_back(s.begin(), s.end());
}

size_t CRenderShape::numTriangles() const {
  size_t n = 0;
  for (const auto& s : m_strips) n += s.size() > 2 ? s.size() - 2 : 0;
  if (meshTriangleIndices()) n += meshTriangleIndices()->size() / 3;
  return n;
}

bool CRenderShape::faceIsPlane() const {
  if (!meshNormals() || meshNormals()->empty()) return false;
  const AcGeVector3d& first = meshNormals()->front();
  return std::all_of(meshNormals()->begin(), meshNormals()->end(),
                     [&](const AcGeVector3d& n) { return n.isCodirectionalTo(first); });
}
