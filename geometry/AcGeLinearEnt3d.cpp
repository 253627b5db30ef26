#include "kxrender/AcGeLinearEnt3d.h"

#include <algorithm>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlanarEnt.h"

double AcGeLinearEnt3d::paramOf(const AcGePoint3d& pnt, const AcGeTol&) const {
  double vv = mVector.lengthSqrd();
  if (vv == 0.0) return 0.0;
  return mVector.dotProduct(pnt - mPoint) / vv;
}

double AcGeLinearEnt3d::closestParamTo(const AcGePoint3d& pnt) const {
  double lower, upper;
  getInterval(lower, upper);
  return std::min(std::max(paramOf(pnt), lower), upper);
}

void AcGeLinearEnt3d::normalParams(const AcGePoint3d& pnt, std::vector<double>& params) const {
  params.clear();
  if (mVector.lengthSqrd() == 0.0) return;  // no direction, no perpendicular
  double t = paramOf(pnt);
  double lower, upper;
  getInterval(lower, upper);
  if (t >= lower && t <= upper && std::isfinite(t)) params.push_back(t);
}

double AcGeLinearEnt3d::length(double fromParam, double toParam, const AcGeTol&) const {
  double lower, upper;
  getInterval(lower, upper);
  double a = std::min(std::max(fromParam, lower), upper);
  double b = std::min(std::max(toParam, lower), upper);
  double len = std::fabs(b - a) * mVector.length();
  return std::isfinite(len) ? len : 0.0;
}

double AcGeLinearEnt3d::paramAtLength(double fromParam, double length, bool forward, const AcGeTol&) const {
  double speed = mVector.length();
  if (!(length >= 0.0) || !std::isfinite(length) || !(speed > 0.0) || !std::isfinite(speed) ||
      !std::isfinite(fromParam))
    return fromParam;
  double lower, upper;
  getInterval(lower, upper);
  double t = fromParam + (forward ? length : -length) / speed;
  return std::min(std::max(t, lower), upper);
}

AcGeBoundBlock3d AcGeLinearEnt3d::boundBlock() const {
  double lower, upper;
  getInterval(lower, upper);
  AcGeBoundBlock3d box(evalPoint(lower == -INFINITY ? 0.0 : lower), evalPoint(upper == INFINITY ? 0.0 : upper));
  AcGePoint3d lo, hi;
  box.getMinMaxPoints(lo, hi);
  // An unbounded end runs off to infinity in every coordinate it moves in.
  for (int i = 0; i < 3; ++i) {
    if (mVector[i] == 0.0) continue;
    bool up = mVector[i] > 0.0;
    if (upper == INFINITY) (up ? hi[i] : lo[i]) = up ? INFINITY : -INFINITY;
    if (lower == -INFINITY) (up ? lo[i] : hi[i]) = up ? -INFINITY : INFINITY;
  }
  return AcGeBoundBlock3d(lo, hi);
}

bool AcGeLinearEnt3d::intersectWith(const AcGeLinearEnt3d& other, AcGePoint3d& pnt, const AcGeTol& tol) const {
  const AcGeVector3d& d1 = mVector;
  const AcGeVector3d& d2 = other.mVector;
  double len1 = d1.length(), len2 = d2.length();
  if (!(len1 > 0.0) || !(len2 > 0.0) || !std::isfinite(len1 * len2)) return false;
  // Parallel within the vector tolerance: no single meeting point.
  if (d1.crossProduct(d2).length() <= tol.equalVector() * len1 * len2) return false;

  // Closest points of the two carrier lines.
  AcGeVector3d w = mPoint - other.mPoint;
  double a = d1.dotProduct(d1), b = d1.dotProduct(d2), c = d2.dotProduct(d2);
  double d = d1.dotProduct(w), e = d2.dotProduct(w);
  double den = a * c - b * b;
  if (!(den > 0.0)) return false;
  double s = (b * e - c * d) / den;
  double t = (a * e - b * d) / den;
  if (!std::isfinite(s) || !std::isfinite(t)) return false;
  AcGePoint3d q1 = evalPoint(s), q2 = other.evalPoint(t);
  if (!(q1.distanceTo(q2) <= tol.equalPoint())) return false;  // skew
  if (!isParamWithin(s, tol) || !other.isParamWithin(t, tol)) return false;
  pnt = q1;
  return true;
}

bool AcGeLinearEnt3d::intersectWith(const AcGePlanarEnt& plane, AcGePoint3d& pnt, const AcGeTol& tol) const {
  if (!plane.isValid()) return false;
  AcGeVector3d n = plane.normal();
  double len = mVector.length();
  double denom = n.dotProduct(mVector);
  // Parallel to the plane, or lying in it: no single point.
  if (!(std::fabs(denom) > tol.equalVector() * len)) return false;
  double t = n.dotProduct(plane.pointOnPlane() - mPoint) / denom;
  if (!std::isfinite(t) || !isParamWithin(t, tol)) return false;
  AcGePoint3d p = evalPoint(t);
  if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) return false;
  pnt = p;
  return true;
}

AcGeLinearEnt3d& AcGeLinearEnt3d::transformBy(const AcGeMatrix3d& mat) {
  AcGePoint3d end = mPoint + mVector;
  mPoint.transformBy(mat);
  end.transformBy(mat);
  mVector = end - mPoint;
  return *this;
}

bool AcGeLinearEnt3d::isParamWithin(double param, const AcGeTol& tol) const {
  double lower, upper;
  getInterval(lower, upper);
  double len = mVector.length();
  if (std::isnan(param)) return false;
  if (len == 0.0) return true;  // every parameter names the same point
  double slack = tol.equalPoint() / len;
  return param >= lower - slack && param <= upper + slack;
}
