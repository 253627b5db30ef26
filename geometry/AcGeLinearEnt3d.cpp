#include "kxrender/AcGeLinearEnt3d.h"

#include <algorithm>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlanarEnt.h"

double AcGeLinearEnt3d::paramOf(const AcGePoint3d& pnt) const {
  double vv = mVector.lengthSqrd();
  if (vv == 0.0) return 0.0;
  return mVector.dotProduct(pnt - mPoint) / vv;
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

AcGePoint3d AcGeLinearEnt3d::closestPointTo(const AcGePoint3d& pnt) const {
  double lower, upper;
  getInterval(lower, upper);
  double t = std::min(std::max(paramOf(pnt), lower), upper);
  return evalPoint(t);
}

bool AcGeLinearEnt3d::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return closestPointTo(pnt).distanceTo(pnt) <= tol.equalPoint();
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
