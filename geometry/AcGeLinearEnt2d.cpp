#include "kxrender/AcGeLinearEnt2d.h"

#include <algorithm>

double AcGeLinearEnt2d::paramOf(const AcGePoint2d& pnt) const {
  double vv = mVector.lengthSqrd();
  if (vv == 0.0) return 0.0;
  return mVector.dotProduct(pnt - mPoint) / vv;
}

bool AcGeLinearEnt2d::isParamWithin(double param, const AcGeTol& tol) const {
  double lower, upper;
  getInterval(lower, upper);
  double len = mVector.length();
  if (std::isnan(param)) return false;
  if (len == 0.0) return true;
  double slack = tol.equalPoint() / len;
  return param >= lower - slack && param <= upper + slack;
}

AcGePoint2d AcGeLinearEnt2d::closestPointTo(const AcGePoint2d& pnt) const {
  double lower, upper;
  getInterval(lower, upper);
  double t = std::min(std::max(paramOf(pnt), lower), upper);
  return evalPoint(t);
}

bool AcGeLinearEnt2d::isOn(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  return closestPointTo(pnt).distanceTo(pnt) <= tol.equalPoint();
}

bool AcGeLinearEnt2d::intersectWith(const AcGeLinearEnt2d& other, AcGePoint2d& pnt, const AcGeTol& tol) const {
  const AcGeVector2d& d1 = mVector;
  const AcGeVector2d& d2 = other.mVector;
  double len1 = d1.length(), len2 = d2.length();
  if (!(len1 > 0.0) || !(len2 > 0.0) || !std::isfinite(len1 * len2)) return false;
  double cross = d1.crossProduct(d2);
  if (!(std::fabs(cross) > tol.equalVector() * len1 * len2)) return false;  // parallel
  AcGeVector2d w = other.mPoint - mPoint;
  double s = w.crossProduct(d2) / cross;
  double t = w.crossProduct(d1) / cross;
  if (!std::isfinite(s) || !std::isfinite(t)) return false;
  if (!isParamWithin(s, tol) || !other.isParamWithin(t, tol)) return false;
  pnt = evalPoint(s);
  return true;
}
