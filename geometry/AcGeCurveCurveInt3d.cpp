#include "kxrender/AcGeCurveCurveInt3d.h"

#include <algorithm>
#include <limits>

#include "CurveNumerics.h"
#include "kxrender/AcGeCurve3d.h"
#include "kxrender/AcGeLinearEnt3d.h"
#include "kxrender/AcGeMatrix3d.h"

using kxgeom::isFinite;

// Finds the meeting points: analytic for two straight entities; otherwise
// both curves are cut into chords, chord pairs that come near each other
// (allowing for the bulge of each piece) seed a Gauss-Newton solve of
// C1(s) = C2(t), and converged solutions are merged.
class CurveIntersector {
public:
  CurveIntersector(AcGeCurveCurveInt3d& out, const AcGeCurve3d& c1, const AcGeCurve3d& c2, const AcGeVector3d& dir,
                   const AcGeTol& tol)
      : mOut(out), mC1(c1), mC2(c2), mDir(dir.normal()), mTol(tol) {}

  void run() {
    if (!(mTol.equalPoint() >= 0.0)) return;
    if (mC1.isKindOf(AcGe::kLinearEnt3d) && mC2.isKindOf(AcGe::kLinearEnt3d)) {
      linearPair(static_cast<const AcGeLinearEnt3d&>(mC1), static_cast<const AcGeLinearEnt3d&>(mC2));
      return;
    }
    double lo1, hi1, lo2, hi2;
    if (!range(mC1, mC2, lo1, hi1) || !range(mC2, mC1, lo2, hi2)) return;
    Chords a = chords(mC1, lo1, hi1), b = chords(mC2, lo2, hi2);
    if (a.pts.empty() || b.pts.empty()) return;
    mScale = std::max(a.size, b.size);
    for (size_t i = 0; i + 1 < a.pts.size(); ++i)
      for (size_t j = 0; j + 1 < b.pts.size(); ++j) {
        double reach = a.bulge[i] + b.bulge[j] + mTol.equalPoint() + 1e-12 * mScale;
        if (!boxesMeet(a, i, b, j, reach)) continue;
        double u, v;
        double d = chordDistance(a.pts[i], a.pts[i + 1], b.pts[j], b.pts[j + 1], u, v);
        if (!(d <= reach)) continue;
        double s = a.par[i] + u * (a.par[i + 1] - a.par[i]);
        double t = b.par[j] + v * (b.par[j + 1] - b.par[j]);
        refine(s, t, lo1, hi1, lo2, hi2);
      }
    std::sort(mOut.mPoints.begin(), mOut.mPoints.end(),
              [](const AcGeCurveCurveInt3d::Hit& x, const AcGeCurveCurveInt3d::Hit& y) { return x.param1 < y.param1; });
  }

private:
  struct Chords {
    std::vector<double> par;
    std::vector<AcGePoint3d> pts;
    std::vector<double> bulge;
    double size = 0.0;
  };

  AcGeVector3d project(const AcGeVector3d& v) const { return v - mDir * mDir.dotProduct(v); }

  // Parameter range of curve c worth searching: its interval, and for an
  // unbounded straight entity the stretch that passes the other's box.
  bool range(const AcGeCurve3d& c, const AcGeCurve3d& other, double& lo, double& hi) const {
    c.getInterval(lo, hi);
    if (std::isnan(lo) || std::isnan(hi) || !(lo <= hi)) return false;
    if (std::isfinite(lo) && std::isfinite(hi)) return true;
    AcGeBoundBlock3d box = other.boundBlock();
    AcGePoint3d bmin, bmax;
    box.getMinMaxPoints(bmin, bmax);
    if (box.isEmpty() || !isFinite(bmin) || !isFinite(bmax)) return false;
    AcGePoint3d p0 = c.evalPoint(0.0);
    AcGeVector3d v = project(c.evalPoint(1.0) - p0);
    double vv = v.lengthSqrd();
    if (!(vv > 0.0) || !std::isfinite(vv)) return false;
    double tmin = INFINITY, tmax = -INFINITY;
    for (int k = 0; k < 8; ++k) {
      AcGePoint3d corner((k & 1) ? bmax.x : bmin.x, (k & 2) ? bmax.y : bmin.y, (k & 4) ? bmax.z : bmin.z);
      double t = v.dotProduct(project(corner - p0)) / vv;
      tmin = std::min(tmin, t);
      tmax = std::max(tmax, t);
    }
    double pad = (mTol.equalPoint() + 1e-9 * (tmax - tmin) * std::sqrt(vv)) / std::sqrt(vv);
    lo = std::max(lo, tmin - pad);
    hi = std::min(hi, tmax + pad);
    return std::isfinite(lo) && std::isfinite(hi) && lo <= hi;
  }

  Chords chords(const AcGeCurve3d& c, double lo, double hi) const {
    Chords out;
    int spans = std::min(std::max(c.sampleSpans(), 1), 2048);
    double step = (hi - lo) / spans;
    AcGeBoundBlock3d box;
    for (int i = 0; i <= spans; ++i) {
      double t = (i == spans) ? hi : lo + i * step;
      AcGePoint3d p = c.evalPoint(t);
      if (!isFinite(p)) return Chords();
      AcGeVector3d pv = project(p.asVector());
      out.par.push_back(t);
      out.pts.push_back(AcGePoint3d(pv.x, pv.y, pv.z));
      box.extend(out.pts.back());
    }
    for (int i = 0; i < spans; ++i) {
      AcGeVector3d mid = project(c.evalPoint(0.5 * (out.par[i] + out.par[i + 1])).asVector());
      AcGePoint3d chordMid = out.pts[i] + (out.pts[i + 1] - out.pts[i]) * 0.5;
      double b = (AcGePoint3d(mid.x, mid.y, mid.z) - chordMid).length();
      out.bulge.push_back(2.0 * b + 1e-12 * out.pts[i].distanceTo(out.pts[i + 1]));
    }
    AcGePoint3d bmin, bmax;
    box.getMinMaxPoints(bmin, bmax);
    out.size = std::max(bmin.asVector().length(), bmax.asVector().length()) + bmin.distanceTo(bmax);
    return out;
  }

  static bool boxesMeet(const Chords& a, size_t i, const Chords& b, size_t j, double reach) {
    for (int k = 0; k < 3; ++k) {
      double aMin = std::min(a.pts[i][k], a.pts[i + 1][k]), aMax = std::max(a.pts[i][k], a.pts[i + 1][k]);
      double bMin = std::min(b.pts[j][k], b.pts[j + 1][k]), bMax = std::max(b.pts[j][k], b.pts[j + 1][k]);
      if (aMax + reach < bMin || bMax + reach < aMin) return false;
    }
    return true;
  }

  // Distance between segments p0p1 and q0q1, with the chord fractions of
  // the nearest points.
  static double chordDistance(const AcGePoint3d& p0, const AcGePoint3d& p1, const AcGePoint3d& q0,
                              const AcGePoint3d& q1, double& u, double& v) {
    AcGeVector3d d1 = p1 - p0, d2 = q1 - q0, r = p0 - q0;
    double a = d1.lengthSqrd(), e = d2.lengthSqrd(), f = d2.dotProduct(r);
    auto clamp01 = [](double x) { return std::min(std::max(x, 0.0), 1.0); };
    if (a == 0.0 && e == 0.0) { u = v = 0.0; return r.length(); }
    if (a == 0.0) { u = 0.0; v = clamp01(f / e); }
    else {
      double c = d1.dotProduct(r);
      if (e == 0.0) { v = 0.0; u = clamp01(-c / a); }
      else {
        double b = d1.dotProduct(d2), den = a * e - b * b;
        u = den > 0.0 ? clamp01((b * f - c * e) / den) : 0.0;
        v = (b * u + f) / e;
        if (v < 0.0) { v = 0.0; u = clamp01(-c / a); }
        else if (v > 1.0) { v = 1.0; u = clamp01((b - c) / a); }
      }
    }
    return ((p0 + d1 * u) - (q0 + d2 * v)).length();
  }

  AcGeVector3d gap(double s, double t) const { return project(mC1.evalPoint(s) - mC2.evalPoint(t)); }

  void refine(double s, double t, double lo1, double hi1, double lo2, double hi2) {
    for (int iter = 0; iter < 100; ++iter) {
      AcGeVector3d F = gap(s, t);
      AcGeVector3d a = project(mC1.evalDeriv(s)), b = -project(mC2.evalDeriv(t));
      double aa = a.lengthSqrd(), bb = b.lengthSqrd(), ab = a.dotProduct(b);
      // Slight damping keeps the step defined where the tangents are parallel.
      double damp = 1e-14 * (aa + bb) + 1e-300;
      aa += damp;
      bb += damp;
      double det = aa * bb - ab * ab;
      if (!(det > 0.0) || !isFinite(F)) return;
      double ra = -a.dotProduct(F), rb = -b.dotProduct(F);
      double ds = (ra * bb - rb * ab) / det, dt = (aa * rb - ab * ra) / det;
      if (!std::isfinite(ds) || !std::isfinite(dt)) return;
      double ns = std::min(std::max(s + ds, lo1), hi1), nt = std::min(std::max(t + dt, lo2), hi2);
      bool settled = std::fabs(ns - s) <= 1e-15 * (1.0 + std::fabs(s)) && std::fabs(nt - t) <= 1e-15 * (1.0 + std::fabs(t));
      s = ns;
      t = nt;
      if (settled) break;
    }
    AcGePoint3d p = mC1.evalPoint(s);
    if (!isFinite(p)) return;
    // No tolerance can be finer than the spacing of doubles at the point.
    double reachable = std::max(mTol.equalPoint(), 8.0 * std::numeric_limits<double>::epsilon() *
                                                       (std::fabs(p.x) + std::fabs(p.y) + std::fabs(p.z)));
    double residual = gap(s, t).length();
    if (!(residual <= reachable)) return;
    // A tangential contact converges to points spread along the contact;
    // points joined by a stretch where the curves stay together are one.
    double mergeRadius = 4.0 * std::sqrt(reachable * mScale) + reachable;
    for (const AcGeCurveCurveInt3d::Hit& h : mOut.mPoints) {
      double d = h.point.distanceTo(p);
      if (d <= reachable) return;
      if (d <= mergeRadius && gap(0.5 * (s + h.param1), 0.5 * (t + h.param2)).length() <= 4.0 * reachable)
        return;
    }
    mOut.mPoints.push_back({p, s, t});
  }

  void linearPair(const AcGeLinearEnt3d& l1, const AcGeLinearEnt3d& l2) {
    AcGePoint3d p1 = l1.evalPoint(0.0), p2 = l2.evalPoint(0.0);
    AcGeVector3d d1 = project(l1.evalPoint(1.0) - p1), d2 = project(l2.evalPoint(1.0) - p2);
    double len1 = d1.length(), len2 = d2.length();
    if (!(len1 > 0.0) || !(len2 > 0.0) || !std::isfinite(len1 * len2)) return;
    if (d1.crossProduct(d2).length() <= mTol.equalVector() * len1 * len2) return;  // parallel
    AcGeVector3d w = project(p1 - p2);
    double a = d1.dotProduct(d1), b = d1.dotProduct(d2), c = d2.dotProduct(d2);
    double d = d1.dotProduct(w), e = d2.dotProduct(w);
    double den = a * c - b * b;
    double s = (b * e - c * d) / den, t = (a * e - b * d) / den;
    if (!std::isfinite(s) || !std::isfinite(t)) return;
    if (!(gap(s, t).length() <= mTol.equalPoint())) return;
    if (!l1.isParamWithin(s, mTol) || !l2.isParamWithin(t, mTol)) return;
    mOut.mPoints.push_back({l1.evalPoint(s), s, t});
  }

  AcGeCurveCurveInt3d& mOut;
  const AcGeCurve3d& mC1;
  const AcGeCurve3d& mC2;
  AcGeVector3d mDir;
  AcGeTol mTol;
  double mScale = 1.0;
};

AcGeCurveCurveInt3d& AcGeCurveCurveInt3d::set(const AcGeCurve3d& curve1, const AcGeCurve3d& curve2,
                                              const AcGeVector3d& projectionDirection, const AcGeTol& tol) {
  mCurve1 = &curve1;
  mCurve2 = &curve2;
  mTol = tol;
  mPoints.clear();
  CurveIntersector(*this, curve1, curve2, projectionDirection, tol).run();
  return *this;
}

int AcGeCurveCurveInt3d::clampIndex(int index) const {
  return std::min(std::max(index, 0), static_cast<int>(mPoints.size()) - 1);
}

AcGePoint3d AcGeCurveCurveInt3d::intPoint(int index) const {
  if (mPoints.empty()) return AcGePoint3d();
  return mPoints[clampIndex(index)].point;
}

void AcGeCurveCurveInt3d::getIntParams(int index, double& param1, double& param2) const {
  if (mPoints.empty()) {
    param1 = param2 = 0.0;
    return;
  }
  const Hit& h = mPoints[clampIndex(index)];
  param1 = h.param1;
  param2 = h.param2;
}

bool AcGeCurveCurveInt3d::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  for (const Hit& h : mPoints)
    if (h.point.isEqualTo(pnt, tol)) return true;
  return false;
}

AcGeCurveCurveInt3d& AcGeCurveCurveInt3d::transformBy(const AcGeMatrix3d& mat) {
  for (Hit& h : mPoints) h.point.transformBy(mat);
  return *this;
}
