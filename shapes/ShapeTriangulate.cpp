// Triangle strips of a polygon with holes (divTringle).
#include <cmath>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSysUtils.h"
#include "shapes/ContourCrossings.h"
#include "shapes/PolygonTessellator.h"

namespace {
// Strip indices are 16 bits wide, so glPts may hold at most this many
// vertices. A triangulation that needs more is cut after the last whole
// strip that fits: the shape then shows part of its area rather than
// triangles through wrapped indices.
constexpr size_t kMaxVertices = 65536;

bool isFinite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

bool allFinite(const std::vector<AcGePoint3d>& c) {
  for (const AcGePoint3d& p : c)
    if (!isFinite(p)) return false;
  return true;
}

void appendPoint(std::vector<double>& glPts, const AcGePoint3d& p) {
  glPts.push_back(p.x);
  glPts.push_back(p.y);
  glPts.push_back(p.z);
}

// A closed convex quadrilateral needs no tessellator: both diagonals run
// inside it, so the strip first, second, fourth, third covers it exactly.
bool quadStrip(const std::vector<AcGePoint3d>& pts, const AcGeMatrix3d& toPlane, std::vector<double>& glPts,
               std::vector<std::vector<uint16_t>>& strips) {
  if (pts.size() != 5 || !pts[4].isEqualTo(pts[0])) return false;
  thread_local std::vector<AcGePoint3d> quad(4);
  for (int i = 0; i < 4; ++i) {
    quad[i] = toPlane * pts[i];
    quad[i].z = 0.0;
  }
  const AcGePoint3d mid02 = CRenderSysUtils::getMidPoint(quad[0], quad[2]);
  const AcGePoint3d mid13 = CRenderSysUtils::getMidPoint(quad[1], quad[3]);
  // A midpoint on an edge means a degenerate quadrilateral: leave it to the
  // tessellator, which drops what has no area.
  const double tol = CRenderSysUtils::PRECISION;
  if (!CRenderSysUtils::PtInArea(mid02, quad, tol, false) || !CRenderSysUtils::PtInArea(mid13, quad, tol, false))
    return false;
  glPts.reserve(12);
  for (int i : {0, 1, 3, 2}) appendPoint(glPts, pts[i]);
  strips.reserve(1);
  strips.push_back({0, 1, 2, 3});
  return true;
}

// The contour without its closing point, which would only be merged away.
void feedContour(PolygonTessellator& tess, const std::vector<AcGePoint3d>& c, const AcGeMatrix3d& toPlane) {
  size_t n = c.size();
  if (n > 1 && c[n - 1].isEqualTo(c[0])) --n;
  if (n < 3) return;  // a point or a segment bounds nothing
  tess.beginContour();
  for (size_t i = 0; i < n; ++i) {
    const AcGePoint3d q = toPlane * c[i];
    tess.addVertex(q.x, q.y);
  }
  tess.endContour();
}
// Big outlines whose edges cross each other more often than they have
// vertices are refused: they would keep the tessellator busy for hours.
bool crossingsBounded(const std::vector<AcGePoint3d>& pts, const std::vector<std::vector<AcGePoint3d>>& holes,
                      const AcGeMatrix3d& toPlane) {
  size_t n = pts.size();
  for (const auto& h : holes) n += h.size();
  if (n < 256) return true;  // at most 16,000 crossings: quick enough
  std::vector<std::vector<AcGePoint3d>> flat(holes.size() + 1);
  const auto project = [&](const std::vector<AcGePoint3d>& c, std::vector<AcGePoint3d>& out) {
    out.reserve(c.size());
    for (const AcGePoint3d& p : c) out.push_back(toPlane * p);
  };
  project(pts, flat[0]);
  for (size_t i = 0; i < holes.size(); ++i) project(holes[i], flat[i + 1]);
  return contourCrossingsWithin(flat, n + 1000);
}
}  // namespace

void CRenderShape::divTringle() {
  touchDrawStamp();
  m_glPts.clear();
  m_fillLifted = false;
  m_strips.clear();
  if (m_rare) m_rare->texCoords.clear();  // they belonged to the old vertices
  if (m_type != kPgon || m_pts.size() < 3) return;
  // No plane, no area: a zero or non-finite normal or coordinate leaves the
  // polygon without strips rather than with guessed ones.
  if (!allFinite(m_pts)) return;
  for (const auto& h : m_holes)
    if (!allFinite(h)) return;
  const AcGePlane plane(m_pts[0], m_ucs);
  if (!plane.isValid()) return;
  const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(plane);

  if (m_holes.empty() && quadStrip(m_pts, toPlane, m_glPts, m_strips)) return;
  if (!crossingsBounded(m_pts, m_holes, toPlane)) return;

  PolygonTessellator& tess = PolygonTessellator::local();
  if (!tess.beginPolygon()) return;
  feedContour(tess, m_pts, toPlane);
  for (const auto& h : m_holes) feedContour(tess, h, toPlane);
  if (!tess.endPolygon()) return;

  const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(plane);
  // Sized once: shapes keep these for life, so no spare capacity either.
  size_t total = 0, kept = 0;
  for (size_t s = 0; s < tess.stripCount() && total + tess.stripSize(s) <= kMaxVertices; ++s, ++kept)
    total += tess.stripSize(s);
  m_glPts.reserve(3 * total);
  m_strips.reserve(kept);
  size_t used = 0;
  for (size_t s = 0; s < tess.stripCount(); ++s) {
    const size_t n = tess.stripSize(s);
    if (used + n > kMaxVertices) break;
    const uint32_t* ids = tess.stripIds(s);
    std::vector<uint16_t> strip(n);
    for (size_t k = 0; k < n; ++k) {
      appendPoint(m_glPts, toWorld * AcGePoint3d(tess.vertexX(ids[k]), tess.vertexY(ids[k]), 0.0));
      strip[k] = static_cast<uint16_t>(used++);
    }
    m_strips.push_back(std::move(strip));
  }
}
