#include "kxrender/AcGeCircArc2d.h"

#include "CurveNumerics.h"

bool AcGeCurve2d::hasStartPoint(AcGePoint2d& pnt) const {
  double lower, upper;
  getInterval(lower, upper);
  if (!std::isfinite(lower)) return false;
  pnt = evalPoint(lower);
  return true;
}

bool AcGeCurve2d::hasEndPoint(AcGePoint2d& pnt) const {
  double lower, upper;
  getInterval(lower, upper);
  if (!std::isfinite(upper)) return false;
  pnt = evalPoint(upper);
  return true;
}

void AcGeCurve2d::getSamplePoints(int numSample, AcArray<AcGePoint2d>& pointArray) const {
  pointArray.removeAll();
  double lower, upper;
  getInterval(lower, upper);
  if (numSample < 1 || !std::isfinite(lower) || !std::isfinite(upper) || lower > upper) return;
  if (numSample == 1) {
    pointArray.append(evalPoint(lower));
    return;
  }
  double step = (upper - lower) / (numSample - 1);
  for (int i = 0; i < numSample; ++i) pointArray.append(evalPoint(i + 1 == numSample ? upper : lower + i * step));
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& center, double radius, double startAngle, double endAngle,
                                  const AcGeVector2d& refVec, bool isClockWise) {
  mCenter = center;
  mRadius = radius;
  mRefVec = refVec.normal();
  if (mRefVec.lengthSqrd() == 0.0) mRefVec = AcGeVector2d::kXAxis;
  mClockWise = isClockWise;
  if (kxgeom::normalizeArcAngles(startAngle, endAngle)) {
    mStartAng = startAngle;
    mEndAng = endAngle;
  }
  return *this;
}

AcGePoint2d AcGeCircArc2d::evalPoint(double param) const {
  // A clockwise arc turns the other way from the reference vector.
  AcGeVector2d dir = mRefVec;
  dir.rotateBy(mClockWise ? -param : param);
  return mCenter + dir * mRadius;
}

bool AcGeCircArc2d::isOn(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  AcGeVector2d v = pnt - mCenter;
  if (!(std::fabs(v.length() - std::fabs(mRadius)) <= tol.equalPoint())) return false;
  if (v.length() == 0.0) return true;  // zero-radius arc at its center
  double a = std::atan2(mRefVec.crossProduct(v), mRefVec.dotProduct(v));
  if (mClockWise) a = -a;
  const double turn = 2.0 * M_PI;
  double rel = std::fmod(a - mStartAng, turn);
  if (rel < 0.0) rel += turn;
  double slack = mRadius != 0.0 ? tol.equalPoint() / std::fabs(mRadius) : 0.0;
  return mStartAng + rel <= mEndAng + slack || rel >= turn - slack;
}
