#include "kxrender/AcGeCircArc3d.h"

#include <algorithm>

#include "CurveNumerics.h"
#include "kxrender/AcGeLinearEnt3d.h"
#include "kxrender/AcGeMatrix3d.h"

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& center, const AcGeVector3d& normal, double radius) {
  AcGeVector3d n = normal.normal();
  return set(center, n, n.perpVector(), radius, 0.0, 2.0 * M_PI);
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& center, const AcGeVector3d& normal, const AcGeVector3d& refVec,
                                  double radius, double startAngle, double endAngle) {
  mCenter = center;
  mNormal = normal.normal();
  if (mNormal.lengthSqrd() == 0.0) {
    // No plane: keep a point-like arc at the center.
    mNormal = AcGeVector3d::kZAxis;
    radius = 0.0;
  }
  // The reference vector is kept in the plane of the arc.
  AcGeVector3d ref = refVec - mNormal * refVec.dotProduct(mNormal);
  mRefVec = ref.normal();
  if (mRefVec.lengthSqrd() == 0.0) mRefVec = mNormal.perpVector();
  mRadius = radius;
  mStartAng = 0.0;
  mEndAng = 2.0 * M_PI;
  return setAngles(startAngle, endAngle);
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& start, const AcGePoint3d& mid, const AcGePoint3d& end) {
  // Circumcenter: c = p3 + ((|a|^2 b - |b|^2 a) x (a x b)) / (2 |a x b|^2).
  AcGeVector3d a = start - end, b = mid - end;
  AcGeVector3d axb = a.crossProduct(b);
  double den = 2.0 * axb.lengthSqrd();
  AcGeVector3d offset = (b * a.lengthSqrd() - a * b.lengthSqrd()).crossProduct(axb) / den;
  AcGePoint3d center = end + offset;
  AcGeVector3d normal = (mid - start).crossProduct(end - mid).normal();
  if (!(den > 0.0) || !kxgeom::isFinite(center) || normal.lengthSqrd() == 0.0) {
    mCenter = start;
    mNormal = AcGeVector3d::kZAxis;
    mRefVec = AcGeVector3d::kXAxis;
    mRadius = 0.0;
    mStartAng = mEndAng = 0.0;
    return *this;
  }
  mCenter = center;
  mNormal = normal;
  mRadius = start.distanceTo(center);
  mRefVec = (start - center).normal();
  mStartAng = 0.0;
  mEndAng = 2.0 * M_PI;
  double endAngle = angleOf(end);
  mEndAng = endAngle;
  return *this;
}

AcGeCircArc3d& AcGeCircArc3d::setAngles(double startAngle, double endAngle) {
  if (kxgeom::normalizeArcAngles(startAngle, endAngle)) {
    mStartAng = startAngle;
    mEndAng = endAngle;
  }
  return *this;
}

AcGePoint3d AcGeCircArc3d::evalPoint(double t) const {
  return mCenter + (mRefVec * std::cos(t) + perpVec() * std::sin(t)) * mRadius;
}

AcGeVector3d AcGeCircArc3d::evalDeriv(double t) const {
  return (perpVec() * std::cos(t) - mRefVec * std::sin(t)) * mRadius;
}

double AcGeCircArc3d::angleOf(const AcGePoint3d& pnt) const {
  AcGeVector3d v = pnt - mCenter;
  double a = std::atan2(v.dotProduct(perpVec()), v.dotProduct(mRefVec));
  if (!std::isfinite(a)) return mStartAng;
  const double turn = 2.0 * M_PI;
  double rel = std::fmod(a - mStartAng, turn);
  if (rel < 0.0) rel += turn;
  if (rel >= turn) rel = 0.0;
  return mStartAng + rel;
}

double AcGeCircArc3d::length(double fromParam, double toParam, const AcGeTol&) const {
  double a = std::min(std::max(fromParam, mStartAng), mEndAng);
  double b = std::min(std::max(toParam, mStartAng), mEndAng);
  double len = std::fabs(b - a) * std::fabs(mRadius);
  return std::isfinite(len) ? len : 0.0;
}

double AcGeCircArc3d::paramAtLength(double fromParam, double length, bool forward, const AcGeTol&) const {
  double r = std::fabs(mRadius);
  if (!(r > 0.0) || !std::isfinite(r) || !(length >= 0.0) || !std::isfinite(length) || !std::isfinite(fromParam))
    return fromParam;
  double t = fromParam + (forward ? length : -length) / r;
  return std::min(std::max(t, mStartAng), mEndAng);
}

double AcGeCircArc3d::closestParamTo(const AcGePoint3d& pnt) const {
  AcGeVector3d v = pnt - mCenter;
  double x = v.dotProduct(mRefVec), y = v.dotProduct(perpVec());
  // Every arc point is equally near a point on the axis: take the start.
  if (!(mRadius != 0.0) || (x == 0.0 && y == 0.0) || !std::isfinite(x) || !std::isfinite(y)) return mStartAng;
  double a = angleOf(pnt);
  if (a <= mEndAng) return a;
  // Outside the sweep the nearer end is the one nearer in angle.
  return (a - mEndAng) <= (mStartAng + 2.0 * M_PI - a) ? mEndAng : mStartAng;
}

void AcGeCircArc3d::normalParams(const AcGePoint3d& pnt, std::vector<double>& params) const {
  params.clear();
  if (!(mRadius != 0.0) || !std::isfinite(mRadius) || !kxgeom::isFinite(pnt)) return;
  AcGeVector3d v = pnt - mCenter;
  double x = v.dotProduct(mRefVec), y = v.dotProduct(perpVec());
  if (x == 0.0 && y == 0.0) {
    params.push_back(mStartAng);  // on the axis every radius is perpendicular
    return;
  }
  double a = angleOf(pnt);
  const double slack = 1e-14 * (1.0 + std::fabs(mEndAng));
  for (double t : {a, a + M_PI, a - M_PI}) {
    if (t >= mStartAng - slack && t <= mEndAng + slack) params.push_back(std::min(std::max(t, mStartAng), mEndAng));
  }
  // A full circle lists its seam point once.
  if (params.size() > 2) params.pop_back();
}

bool AcGeCircArc3d::intersectWith(const AcGeLinearEnt3d& line, int& numInt, AcGePoint3d& p1, AcGePoint3d& p2,
                                  const AcGeTol& tol) const {
  numInt = 0;
  double r = std::fabs(mRadius);
  AcGePoint3d P = line.evalPoint(0.0);
  AcGeVector3d V = line.evalPoint(1.0) - P;
  double vLen = V.length();
  if (!(r > 0.0) || !std::isfinite(r) || !(vLen > 0.0) || !kxgeom::isFinite(P) || !kxgeom::isFinite(V) ||
      !kxgeom::isFinite(mCenter))
    return false;

  std::vector<double> candidates;
  double h = (P - mCenter).dotProduct(mNormal);
  double dn = V.dotProduct(mNormal);
  if (std::fabs(dn) > tol.equalVector() * vLen) {
    // Crossing the arc's plane: at most one point, which must be on the circle.
    double t = -h / dn;
    AcGePoint3d X = P + V * t;
    if (std::fabs(X.distanceTo(mCenter) - r) <= tol.equalPoint()) candidates.push_back(t);
  } else if (std::fabs(h) <= tol.equalPoint()) {
    // In the plane: |w + tV| = r with w from the center to the line's point.
    AcGeVector3d w = (P - mNormal * h) - mCenter;
    double A = V.lengthSqrd();
    double tm = -V.dotProduct(w) / A;
    double dmin = (w + V * tm).length();
    if (std::fabs(dmin - r) <= tol.equalPoint()) {
      candidates.push_back(tm);  // tangent
    } else if (dmin < r) {
      double half = std::sqrt((r - dmin) * (r + dmin)) / vLen;
      candidates.push_back(tm - half);
      candidates.push_back(tm + half);
    }
  }

  const double angSlack = tol.equalPoint() / r;
  for (double t : candidates) {
    if (!line.isParamWithin(t, tol)) continue;
    AcGePoint3d X = P + V * t;
    double a = angleOf(X);
    bool inSweep = a <= mEndAng + angSlack || a >= mStartAng + 2.0 * M_PI - angSlack;
    if (!inSweep) continue;
    if (numInt == 0) {
      p1 = X;
      numInt = 1;
    } else if (!X.isEqualTo(p1, tol)) {
      p2 = X;
      numInt = 2;
    }
  }
  return numInt > 0;
}

AcGeBoundBlock3d AcGeCircArc3d::boundBlock() const {
  return kxgeom::trigArcBox(mCenter, mRefVec * mRadius, perpVec() * mRadius, mStartAng, mEndAng);
}

AcGeCircArc3d& AcGeCircArc3d::transformBy(const AcGeMatrix3d& mat) {
  // Images of the center and of two perpendicular radii; a similarity keeps
  // them perpendicular and equally long.
  AcGePoint3d c = mat * mCenter;
  AcGeVector3d u = (mat * (mCenter + mRefVec * mRadius)) - c;
  AcGeVector3d v = (mat * (mCenter + perpVec() * mRadius)) - c;
  mCenter = c;
  double newRadius = u.length();
  AcGeVector3d n = u.crossProduct(v).normal();
  if (newRadius > 0.0 && n.lengthSqrd() > 0.0) {
    mRefVec = u / newRadius;
    mNormal = n;
  }
  mRadius = newRadius;
  return *this;
}
