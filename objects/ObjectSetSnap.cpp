// The object set's snap search: the snap points, snap curves and grips of
// the candidate objects as they are drawn, and the index nodes, judged on
// screen around the cursor.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderSysUtils.h"
#include "kxrender/CSceneMgr.h"
#include "objects/BjSnap.h"

namespace {

typedef CRenderObject::SnapMode Kind;

bool finite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// Rank of a kind: exact points first, then the middles of things, then
// feet of perpendiculars, then points merely on a curve.
int rank(Kind k) {
  switch (k) {
    case CRenderObject::kSnapMidPoint:
    case CRenderObject::kSnapCenter:
      return 1;
    case CRenderObject::kSnapPerpendicular:
      return 2;
    case CRenderObject::kSnapNearest:
      return 3;
    default:
      return 0;
  }
}

// World to window coordinates with the scene's stored matrices (y up, as
// OpenGL has it: distances on screen do not care).
class Projector {
 public:
  explicit Projector(const CSceneMgr& scene) {
    const double* p = scene.getProjectionMatrix();
    const double* mv = scene.getModelViewMatrix();
    for (int c = 0; c < 4; ++c)
      for (int r = 0; r < 4; ++r) {
        double s = 0.0;
        for (int k = 0; k < 4; ++k) s += p[k * 4 + r] * mv[c * 4 + k];
        m_m[c * 4 + r] = s;
      }
    for (int i = 0; i < 4; ++i) m_vp[i] = scene.getViewport()[i];
  }
  bool project(const AcGePoint3d& p, double& x, double& y) const {
    const double* m = m_m;
    const double w = m[3] * p.x + m[7] * p.y + m[11] * p.z + m[15];
    if (!(w != 0.0)) return false;
    const double nx = (m[0] * p.x + m[4] * p.y + m[8] * p.z + m[12]) / w;
    const double ny = (m[1] * p.x + m[5] * p.y + m[9] * p.z + m[13]) / w;
    x = m_vp[0] + (nx + 1.0) * 0.5 * m_vp[2];
    y = m_vp[1] + (ny + 1.0) * 0.5 * m_vp[3];
    return std::isfinite(x) && std::isfinite(y);
  }

 private:
  double m_m[16];
  double m_vp[4];
};

// A snap curve placed in the world: a segment by its ends (the common
// case, kept free of allocation), or any other curve.
struct Placed {
  bool seg;
  AcGePoint3d a, b;
  const AcGeCurve3d* curve;
  AcGePoint3d near;  // its point nearest the pick ray
  double d2;         // and that point's squared distance from the cursor on screen
  // Where its part within the aperture can lie: a box, and an interval of
  // depth along the ray.
  AcGePoint3d lo, hi;
  double t0, t1;
};

bool overlap(const Placed& p, const Placed& q) {
  return p.lo.x <= q.hi.x && q.lo.x <= p.hi.x && p.lo.y <= q.hi.y && q.lo.y <= p.hi.y && p.lo.z <= q.hi.z &&
         q.lo.z <= p.hi.z;
}

class Search {
 public:
  Search(const Projector& view, const AcGePoint3d& nearPt, const AcGeVector3d& dir, int aperture, double tol,
         unsigned long mask)
      : m_view(view), m_origin(nearPt), m_dir(dir), m_mask(mask), m_tol(tol) {
    m_reach2 = double(aperture) * double(aperture);
    m_ok = view.project(nearPt, m_cx, m_cy);
    // The aperture in world units, across the ray (an orthographic view
    // scales alike in every direction).
    const AcGeVector3d across =
        (std::fabs(dir.x) < 0.9 ? AcGeVector3d::kXAxis : AcGeVector3d::kYAxis).crossProduct(dir).normal();
    double x, y;
    if (m_ok && view.project(nearPt + across, x, y)) {
      const double perUnit = std::hypot(x - m_cx, y - m_cy);
      if (perUnit > 0.0) m_reachWorld = aperture / perUnit * 1.001 + CRenderSysUtils::PRECISION;
    }
  }
  bool ok() const { return m_ok; }
  void setHiddenBeyond(double d) { m_hitDistance = d; }
  void setFirstPoint(const AcGePoint3d& p) {
    m_hasFirst = true;
    m_first = p;
  }

  bool wants(Kind k) const { return (m_mask & k) != 0; }

  // Behind the face the ray meets first.
  bool hidden(const AcGePoint3d& p) const { return (p - m_origin).dotProduct(m_dir) > m_hitDistance + m_tol; }

  // Whether p lies within the aperture on screen; d2 its squared distance.
  bool inReach(const AcGePoint3d& p, double& d2) const {
    double x, y;
    if (!finite(p) || !m_view.project(p, x, y)) return false;
    d2 = (x - m_cx) * (x - m_cx) + (y - m_cy) * (y - m_cy);
    return d2 <= m_reach2;
  }

  // Crossings can win only as near as the best exact point found so far:
  // the curves farther from the cursor need not be paired (in a dense view
  // that leaves few). Keeps those in curves, with their spans narrowed
  // alike, less those wholly out of sight.
  void keepCrossingCandidates(std::vector<Placed>& curves) {
    const double limit2 = m_found && m_rank == 0 ? m_d2 : m_reach2;
    curves.erase(std::remove_if(curves.begin(), curves.end(), [limit2](const Placed& c) { return c.d2 > limit2; }),
                 curves.end());
    if (m_reach2 > 0.0) m_spanWorld = m_reachWorld * std::sqrt(limit2 / m_reach2) + CRenderSysUtils::PRECISION;
    for (Placed& c : curves) span(c);
    // Parts wholly behind the first face cannot cross where it is seen.
    const double limit = m_hitDistance + m_tol;
    curves.erase(std::remove_if(curves.begin(), curves.end(), [limit](const Placed& c) { return c.t0 > limit; }),
                 curves.end());
  }

  void offer(const AcGePoint3d& p, Kind k) {
    if (!wants(k) || !finite(p) || hidden(p)) return;
    double x, y;
    if (!m_view.project(p, x, y)) return;
    const double d2 = (x - m_cx) * (x - m_cx) + (y - m_cy) * (y - m_cy);
    if (!(d2 <= m_reach2)) return;
    const int r = rank(k);
    if (m_found && (r > m_rank || (r == m_rank && (d2 > m_d2 || (d2 == m_d2 && k >= m_kind))))) return;
    m_found = true;
    m_rank = r;
    m_d2 = d2;
    m_kind = k;
    m_point = p;
  }

  // The curve's ends, middle, centre, perpendicular foot and nearest
  // point; true when it passes within the aperture (then it takes part in
  // intersections).
  bool offerCurve(Placed& c) {
    if (!c.seg) offerCentre(*c.curve);
    // A segment wholly behind the first face offers nothing and crosses
    // nothing that can be seen.
    if (c.seg && hidden(c.a) && hidden(c.b)) return false;
    if (c.seg) {
      c.near = segmentNearRay(c.a, c.b);
    } else {
      AcGePoint3d onRay;
      c.near = c.curve->closestPointTo(AcGeLine3d(m_origin, m_dir), onRay);
    }
    if (!inReach(c.near, c.d2)) return false;
    offer(c.near, CRenderObject::kSnapNearest);
    if (c.seg) {
      offer(c.a, CRenderObject::kSnapEndPoint);
      offer(c.b, CRenderObject::kSnapEndPoint);
      offer(c.a + (c.b - c.a) * 0.5, CRenderObject::kSnapMidPoint);
      if (m_hasFirst && wants(CRenderObject::kSnapPerpendicular)) {
        const AcGeVector3d d = c.b - c.a;
        const double len2 = d.dotProduct(d);
        const double s = len2 > 0.0 ? (m_first - c.a).dotProduct(d) / len2 : -1.0;
        if (s >= 0.0 && s <= 1.0) offer(c.a + d * s, CRenderObject::kSnapPerpendicular);
      }
      return true;
    }
    AcGePoint3d start, end;
    const bool open = c.curve->hasStartPoint(start) && c.curve->hasEndPoint(end);
    if (open) {
      offer(start, CRenderObject::kSnapEndPoint);
      offer(end, CRenderObject::kSnapEndPoint);
      if (wants(CRenderObject::kSnapMidPoint))
        offer(CRenderSysUtils::getCurveMidPoint(c.curve), CRenderObject::kSnapMidPoint);
    }
    AcGePoint3d foot;
    if (m_hasFirst && wants(CRenderObject::kSnapPerpendicular) &&
        CRenderSysUtils::DroopPoint(m_first, c.near, c.curve, foot, CRenderSysUtils::PRECISION))
      offer(foot, CRenderObject::kSnapPerpendicular);
    return true;
  }

  // Fills the box and depth interval of the curve's part within the
  // aperture (a segment's part inside the cylinder of the aperture about
  // the ray; another curve's whole bounding block).
  void span(Placed& c) const {
    const double eps = CRenderSysUtils::PRECISION;
    AcGePoint3d p0, p1;
    if (c.seg) {
      const AcGeVector3d d = c.b - c.a, w = c.a - m_origin;
      const AcGeVector3d dn = d - m_dir * d.dotProduct(m_dir), wn = w - m_dir * w.dotProduct(m_dir);
      const double qa = dn.dotProduct(dn), qb = wn.dotProduct(dn), qc = wn.dotProduct(wn) - m_spanWorld * m_spanWorld;
      double s0 = 0.0, s1 = 1.0;
      const double disc = qb * qb - qa * qc;
      if (qa > 0.0 && disc >= 0.0 && std::isfinite(disc)) {
        s0 = std::max(0.0, (-qb - std::sqrt(disc)) / qa);
        s1 = std::min(1.0, (-qb + std::sqrt(disc)) / qa);
        if (!(s0 <= s1)) s0 = 0.0, s1 = 1.0;
      }
      p0 = c.a + d * s0;
      p1 = c.a + d * s1;
    } else {
      c.curve->boundBlock().getMinMaxPoints(p0, p1);
    }
    c.lo.set(std::min(p0.x, p1.x) - eps, std::min(p0.y, p1.y) - eps, std::min(p0.z, p1.z) - eps);
    c.hi.set(std::max(p0.x, p1.x) + eps, std::max(p0.y, p1.y) + eps, std::max(p0.z, p1.z) + eps);
    c.t0 = c.t1 = (c.lo - m_origin).dotProduct(m_dir);
    for (int k = 1; k < 8; ++k) {
      const AcGePoint3d corner((k & 1) ? c.hi.x : c.lo.x, (k & 2) ? c.hi.y : c.lo.y, (k & 4) ? c.hi.z : c.lo.z);
      const double t = (corner - m_origin).dotProduct(m_dir);
      c.t0 = std::min(c.t0, t);
      c.t1 = std::max(c.t1, t);
    }
  }

  void offerCrossings(const Placed& p, const Placed& q) {
    if (p.seg && q.seg) {
      AcGePoint3d at;
      if (segmentsMeet(p.a, p.b, q.a, q.b, at)) offer(at, CRenderObject::kSnapIntersection);
      return;
    }
    const AcGeLineSeg3d ps(p.a, p.b), qs(q.a, q.b);
    const AcGeCurve3d* c1 = p.seg ? &ps : p.curve;
    const AcGeCurve3d* c2 = q.seg ? &qs : q.curve;
    std::vector<AcGePoint3d> points;
    CRenderSysUtils::curveIntersectWithCurve(c1, c2, points, CRenderSysUtils::PRECISION);
    for (const AcGePoint3d& at : points) offer(at, CRenderObject::kSnapIntersection);
  }

  bool result(AcGePoint3d& p, Kind& k) const {
    if (!m_found) return false;
    p = m_point;
    k = m_kind;
    return true;
  }

 private:
  void offerCentre(const AcGeCurve3d& c) {
    if (wants(CRenderObject::kSnapCenter) && c.type() == AcGe::kCircArc3d)
      offer(static_cast<const AcGeCircArc3d&>(c).center(), CRenderObject::kSnapCenter);
  }

  // The point of segment a-b nearest the line of the pick ray.
  AcGePoint3d segmentNearRay(const AcGePoint3d& a, const AcGePoint3d& b) const {
    const AcGeVector3d d = b - a, w = a - m_origin;
    const double du = d.dotProduct(m_dir), denom = d.dotProduct(d) - du * du;
    // Seen end on (or of no length), every point lies at the same place on
    // screen: the start will do.
    double s = denom > 0.0 ? (du * w.dotProduct(m_dir) - w.dotProduct(d)) / denom : 0.0;
    s = std::min(1.0, std::max(0.0, s));
    return a + d * s;
  }

  // Where segments a1-b1 and a2-b2 meet within the system precision;
  // parallel and zero-length segments have no single crossing.
  static bool segmentsMeet(const AcGePoint3d& a1, const AcGePoint3d& b1, const AcGePoint3d& a2, const AcGePoint3d& b2,
                           AcGePoint3d& at) {
    const double eps = CRenderSysUtils::PRECISION;
    const AcGeVector3d d1 = b1 - a1, d2 = b2 - a2, r = a1 - a2;
    const double a = d1.dotProduct(d1), e = d2.dotProduct(d2), b = d1.dotProduct(d2);
    const double c = d1.dotProduct(r), f = d2.dotProduct(r);
    if (!(a > eps * eps && e > eps * eps)) return false;
    const double denom = a * e - b * b;
    if (!(denom > 1e-12 * a * e)) return false;
    const double s = (b * f - c * e) / denom, t = (a * f - b * c) / denom;
    const double ls = std::sqrt(a), lt = std::sqrt(e);
    if (s * ls < -eps || (s - 1.0) * ls > eps || t * lt < -eps || (t - 1.0) * lt > eps) return false;
    const AcGePoint3d p = a1 + d1 * s, q = a2 + d2 * t;
    if (!(p.distanceTo(q) <= eps)) return false;
    at = p + (q - p) * 0.5;
    return true;
  }

  const Projector& m_view;
  AcGePoint3d m_origin;
  AcGeVector3d m_dir;
  unsigned long m_mask;
  double m_tol;
  double m_reach2 = 0.0;
  double m_reachWorld = std::numeric_limits<double>::infinity();
  double m_spanWorld = std::numeric_limits<double>::infinity();
  double m_cx = 0.0, m_cy = 0.0;
  bool m_ok = false;
  double m_hitDistance = std::numeric_limits<double>::infinity();
  bool m_hasFirst = false;
  AcGePoint3d m_first;
  bool m_found = false;
  int m_rank = 0;
  double m_d2 = 0.0;
  Kind m_kind = CRenderObject::kSnapNone;
  AcGePoint3d m_point;
};

// Appends the object's snap curves as drawn: the ordinary ones as they
// are, the exact ones under each instance matrix (copies kept in owned).
void placeCurves(const CRenderObject& obj, std::vector<Placed>& out, std::vector<std::unique_ptr<AcGeCurve3d>>& owned) {
  auto place = [&](const AcGeCurve3d* c, const AcGeMatrix3d* m) {
    if (!c) return;
    if (c->type() == AcGe::kLineSeg3d) {
      const AcGeLineSeg3d& s = static_cast<const AcGeLineSeg3d&>(*c);
      AcGePoint3d a = s.startPoint(), b = s.endPoint();
      if (m) {
        a = *m * a;
        b = *m * b;
      }
      out.push_back(Placed{true, a, b, nullptr, AcGePoint3d(), 0.0, AcGePoint3d(), AcGePoint3d(), 0.0, 0.0});
      return;
    }
    if (m) {
      owned.emplace_back(static_cast<AcGeCurve3d*>(c->copy()));
      owned.back()->transformBy(*m);
      c = owned.back().get();
    }
    out.push_back(
        Placed{false, AcGePoint3d(), AcGePoint3d(), c, AcGePoint3d(), 0.0, AcGePoint3d(), AcGePoint3d(), 0.0, 0.0});
  };
  for (const AcGeCurve3d* c : obj.getSnapCurves()) place(c, nullptr);
  if (obj.getSnapCurvesExa().empty()) return;
  for (const CSimpleMatrix* sm : obj.getSmpMat()) {
    if (!sm) continue;
    const AcGeMatrix3d m = sm->GetAcgeMatrix();
    for (const AcGeCurve3d* c : obj.getSnapCurvesExa()) place(c, &m);
  }
}

}  // namespace

bool CObjectSetMgr::snap(const AcGePoint3d& nearPt, const AcGePoint3d& farPt, int aperture, double tolerance,
                         unsigned long mask, const std::vector<unsigned>& ids, const std::vector<CSnapNode>& nodes,
                         AcGePoint3d& result, CRenderObject::SnapMode& kind) const {
  mask &= CRenderObject::kSnapAll;
  if (mask == 0 || aperture <= 0 || !m_scene || !finite(nearPt) || !finite(farPt)) return false;
  const AcGeVector3d ray = farPt - nearPt;
  const double length = ray.length();
  if (!(length > 0.0)) return false;
  const AcGeVector3d dir = ray / length;
  if (!(tolerance >= 0.0)) tolerance = 0.0;

  const Projector view(*m_scene);
  Search search(view, nearPt, dir, aperture, tolerance, mask);
  if (!search.ok()) return false;
  AcGePoint3d first;
  if (m_scene->getSnapFirstPt(first) && finite(first)) search.setFirstPoint(first);

  std::vector<const CRenderObject*> objs;
  objs.reserve(ids.size());
  for (unsigned id : ids) {
    const CRenderObject* o = getObj(id);
    if (o && o->isVisible()) objs.push_back(o);
  }
  // What the ray meets first hides what lies behind it; wire frames hide
  // nothing.
  if (int(m_renderMode) != 0) {
    double nearest = std::numeric_limits<double>::infinity();
    for (const CRenderObject* o : objs) {
      double d = 0.0;
      AcGePoint3d at;
      unsigned shape = 0;
      if (o->intersectRay(nearPt, farPt, CRenderSysUtils::PRECISION, true, d, at, shape) && d < nearest) nearest = d;
    }
    search.setHiddenBeyond(nearest);
  }

  std::vector<Placed> curves, nearCurves;
  std::vector<std::unique_ptr<AcGeCurve3d>> owned;
  for (const CRenderObject* o : objs) {
    if (search.wants(CRenderObject::kSnapNode)) {
      for (const AcGePoint3d& p : o->getSnapPoints()) search.offer(p, CRenderObject::kSnapNode);
      if (!o->getSnapPointsExa().empty())
        for (const CSimpleMatrix* sm : o->getSmpMat()) {
          if (!sm) continue;
          const AcGeMatrix3d m = sm->GetAcgeMatrix();
          for (const AcGePoint3d& p : o->getSnapPointsExa()) search.offer(m * p, CRenderObject::kSnapNode);
        }
    }
    if (search.wants(CRenderObject::kSnapGrip))
      for (const CGripPoint& g : o->gripPoint()) search.offer(g.getPos(), CRenderObject::kSnapGrip);
    curves.clear();
    placeCurves(*o, curves, owned);
    for (Placed& c : curves)
      if (search.offerCurve(c)) nearCurves.push_back(c);
  }
  if (search.wants(CRenderObject::kSnapNode))
    for (const CSnapNode& n : nodes) {
      if (!n.assist) {
        const CRenderObject* o = getObj(n.objId);
        if (!o || !o->isVisible()) continue;
      }
      search.offer(n.pt, CRenderObject::kSnapNode);
    }
  // A crossing within the aperture lies on the parts of two curves that
  // pass there, at one depth along the ray: a sweep over depth meets only
  // the pairs that may cross (curves of storeys seen one behind the other
  // never pair up).
  if (search.wants(CRenderObject::kSnapIntersection)) {
    search.keepCrossingCandidates(nearCurves);
    std::sort(nearCurves.begin(), nearCurves.end(), [](const Placed& p, const Placed& q) { return p.t0 < q.t0; });
    for (size_t i = 0; i < nearCurves.size(); ++i)
      for (size_t j = i + 1; j < nearCurves.size() && nearCurves[j].t0 <= nearCurves[i].t1; ++j)
        if (overlap(nearCurves[i], nearCurves[j])) search.offerCrossings(nearCurves[i], nearCurves[j]);
  }

  return search.result(result, kind);
}
