// Hit tests of one shape: the pick ray, the distance to its edges, and the
// rectangle selection tests, each on the geometry the shape kind shows.
#include <cmath>
#include <limits>

#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSysUtils.h"
#include "shapes/FaceMeshBvh.h"
#include "shapes/PickVolume.h"
#include "shapes/TextPlacement.h"

namespace {

typedef std::vector<std::vector<AcGePoint3d>> Contours;

// Glyph outlines of a text in glyph units, as the text render list caches
// them per (font, text).
const Contours& glyphContours(const TextInfo& t) {
  static const Contours none;
  const TextContourCacheValue* glyphs = textGlyphs(t);
  return glyphs ? glyphs->contours : none;
}

// The text's outlines placed in the world by its placement matrix.
Contours textContours(const CRenderShape& s) {
  Contours out;
  const TextInfo* t = s.getTextInfo();
  if (!t) return out;
  for (const auto& glyph : glyphContours(*t)) {
    out.emplace_back(glyph);
    for (AcGePoint3d& p : out.back()) p.transformBy(t->placement);
  }
  return out;
}

bool plineHit(const std::vector<AcGePoint3d>& pts, const AcGePoint3d& p1, const AcGePoint3d& p2, AcGePoint3d& hit,
              double tol) {
  return CRenderSysUtils::plineIntersectWithLine(pts, p1, p2, hit, tol);
}

bool anyPlineHit(const Contours& lines, const AcGePoint3d& p1, const AcGePoint3d& p2, AcGePoint3d& hit, double tol) {
  for (const auto& line : lines)
    if (plineHit(line, p1, p2, hit, tol)) return true;
  return false;
}

// Closed polyline distance; fewer than two points count as far away.
double loopDistance(const std::vector<AcGePoint3d>& pts, const AcGePoint3d& p) {
  if (pts.size() < 2) return 1e12;
  double best = std::numeric_limits<double>::max();
  for (size_t i = 0; i < pts.size(); ++i) {
    const AcGePoint3d& a = pts[i];
    const AcGePoint3d& b = pts[(i + 1) % pts.size()];
    best = std::min(best, AcGeLineSeg3d(a, b).distanceTo(p));
  }
  return best;
}

}  // namespace

const CFaceMeshBvh* CRenderShape::faceBvh() const {
  if (!meshVertices() || !meshTriangleIndices()) return rareOrNone().faceBvh.get();
  Rare& r = rare();
  if (!r.faceBvh) r.faceBvh = std::make_shared<const CFaceMeshBvh>(*meshVertices(), *meshTriangleIndices());
  return r.faceBvh.get();
}

bool CRenderShape::intersectRay(const AcGePoint3d& p1, const AcGePoint3d& p2, AcGePoint3d& hitPt, double tol, int mode,
                                bool solid) const {
  const AcGeVector3d dir = p2 - p1;
  double margin = tol;
  if (!CRenderSysUtils::rayIntersectWithBox(p1, dir, m_boxMin, m_boxMax, nullptr, nullptr, &margin)) return false;
  switch (m_type) {
    case kPline:
      return solid && plineHit(m_pts, p1, p2, hitPt, tol);
    case kPgon:
      if (mode != 0 && solid)
        // The outline's own normal: the stored one is only a display hint.
        return CRenderSysUtils::faceIntersectWithLine(m_pts, AcGeVector3d(0, 0, 0), p1, dir, hitPt, tol, m_holes);
      return plineHit(m_pts, p1, p2, hitPt, tol) || anyPlineHit(m_holes, p1, p2, hitPt, tol);
    case kText:
      return anyPlineHit(textContours(*this), p1, p2, hitPt, tol);
    case kFace: {
      if (isFaceDataNull()) return false;
      if (mode == 0 || !solid) return anyPlineHit(getHitLine(), p1, p2, hitPt, tol);
      const CFaceMeshBvh* bvh = faceBvh();
      return bvh && bvh->nearestHit(p1, dir, hitPt);
    }
    default:
      return false;
  }
}

double CRenderShape::ptNearDistToEdge(const AcGePoint3d& pt) const {
  double best = std::numeric_limits<double>::max();
  switch (m_type) {
    case kPline:
      return 0.0;
    case kPgon:
      best = loopDistance(m_pts, pt);
      for (const auto& h : m_holes) best = std::min(best, loopDistance(h, pt));
      return best;
    case kFace:
      for (const auto& line : getHitLine()) best = std::min(best, loopDistance(line, pt));
      return best;
    default:
      return best;
  }
}

bool CRenderShape::hasPickGeometry() const {
  switch (m_type) {
    case kPline:
    case kPgon:
      return !m_pts.empty();
    case kText:
      return !textContours(*this).empty();
    case kFace:
      return !isFaceDataNull() && !meshVertices()->empty();
    default:
      return false;
  }
}

bool CRenderShape::intersectVolume(const CPickVolume& v, int mode) const {
  if (!v.valid() || !hasPickGeometry()) return false;
  // The box settles shapes wholly outside or wholly inside at once; text
  // boxes are estimates, so texts always look at their outlines.
  if (m_type != kText) {
    const int c = v.classifyBox(m_boxMin, m_boxMax);
    if (c == 0) return false;
    if (c == 2) return true;
  }
  switch (m_type) {
    case kPline:
      return v.meetsPolyline(m_pts, false);
    case kPgon: {
      if (v.meetsPolyline(m_pts, true)) return true;
      for (const auto& h : m_holes)
        if (v.meetsPolyline(h, true)) return true;
      if (mode == 0) return false;
      // No edge meets the rectangle: it crosses the face only by lying
      // within it, and then its corner lines pierce the face.
      for (int i = 0; i < 4; ++i) {
        const AcGeVector3d along = v.cornerFar(i) - v.cornerNear(i);
        AcGePoint3d hit;
        if (CRenderSysUtils::faceIntersectWithLine(m_pts, AcGeVector3d(0, 0, 0), v.cornerNear(i), along, hit,
                                                   CRenderSysUtils::PRECISION, m_holes) &&
            v.cornerNear(i).distanceTo(hit) <= along.length())
          return true;
      }
      return false;
    }
    case kText:
      for (const auto& line : textContours(*this))
        if (v.meetsPolyline(line, false)) return true;
      return false;
    case kFace: {
      if (isFaceDataNull()) return false;
      if (mode == 0) {
        for (const auto& line : getHitLine())
          if (v.meetsPolyline(line, false)) return true;
        return false;
      }
      const CFaceMeshBvh* bvh = faceBvh();
      if (!bvh) return false;
      return bvh->any([&v](const CFaceMeshBvh::Box& b) { return v.classifyBox(b.min, b.max); },
                      [&v](const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
                        if (v.meetsSegment(a, b) || v.meetsSegment(b, c) || v.meetsSegment(c, a)) return true;
                        for (int i = 0; i < 4; ++i) {
                          const AcGeVector3d along = v.cornerFar(i) - v.cornerNear(i);
                          AcGePoint3d hit;
                          if (CRenderSysUtils::rayIntersectWithTriangle(v.cornerNear(i), along, a, b, c, &hit) &&
                              v.cornerNear(i).distanceTo(hit) <= along.length())
                            return true;
                        }
                        return false;
                      });
    }
    default:
      return false;
  }
}

bool CRenderShape::allInVolume(const CPickVolume& v) const {
  if (!v.valid() || !hasPickGeometry()) return false;
  switch (m_type) {
    case kPline:
    case kPgon:
      if (v.classifyBox(m_boxMin, m_boxMax) == 2) return true;
      if (!v.containsAll(m_pts)) return false;
      for (const auto& h : m_holes)
        if (!v.containsAll(h)) return false;
      return true;
    case kText: {
      const Contours lines = textContours(*this);
      for (const auto& line : lines)
        if (!v.containsAll(line)) return false;
      return true;
    }
    case kFace:
      if (v.classifyBox(m_boxMin, m_boxMax) == 2) return true;
      if (!v.containsAll(*meshVertices())) return false;
      for (const auto& line : getHitLine())
        if (!v.containsAll(line)) return false;
      return true;
    default:
      return false;
  }
}

bool CRenderShape::intersectRect(const CRect& rect, const std::vector<std::vector<double>>& view, CObjectSetMgr*,
                                 int mode) const {
  return intersectVolume(CPickVolume(rect, view), mode);
}

bool CRenderShape::allInRect(const CRect& rect, const std::vector<std::vector<double>>& view, CObjectSetMgr*) const {
  return allInVolume(CPickVolume(rect, view));
}
