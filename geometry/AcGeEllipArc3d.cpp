#include "kxrender/AcGeEllipArc3d.h"

#include <algorithm>

#include "CurveNumerics.h"
#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeMatrix3d.h"

AcGeEllipArc3d& AcGeEllipArc3d::set(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                                    const AcGeVector3d& minorAxis, double majorRadius, double minorRadius,
                                    double startAngle, double endAngle) {
  mCenter = center;
  mMajorAxis = majorAxis.normal();
  if (mMajorAxis.lengthSqrd() == 0.0) mMajorAxis = AcGeVector3d::kXAxis;
  mMinorAxis = (minorAxis - mMajorAxis * minorAxis.dotProduct(mMajorAxis)).normal();
  if (mMinorAxis.lengthSqrd() == 0.0) mMinorAxis = AcGeVector3d::kZAxis.crossProduct(mMajorAxis).normal();
  if (mMinorAxis.lengthSqrd() == 0.0) mMinorAxis = mMajorAxis.perpVector();
  mMajorRadius = std::fabs(majorRadius);
  mMinorRadius = std::fabs(minorRadius);
  mStartAng = 0.0;
  mEndAng = 2.0 * M_PI;
  return setAngles(startAngle, endAngle);
}

AcGeEllipArc3d& AcGeEllipArc3d::set(const AcGeCircArc3d& arc) {
  AcGeVector3d ref = arc.refVec();
  return set(arc.center(), ref, arc.normal().crossProduct(ref), arc.radius(), arc.radius(), arc.startAng(),
             arc.endAng());
}

AcGeEllipArc3d& AcGeEllipArc3d::setAngles(double startAngle, double endAngle) {
  if (kxgeom::normalizeArcAngles(startAngle, endAngle)) {
    mStartAng = startAngle;
    mEndAng = endAngle;
  }
  return *this;
}

AcGePoint3d AcGeEllipArc3d::evalPoint(double t) const {
  return mCenter + mMajorAxis * (mMajorRadius * std::cos(t)) + mMinorAxis * (mMinorRadius * std::sin(t));
}

AcGeVector3d AcGeEllipArc3d::evalDeriv(double t) const {
  return mMinorAxis * (mMinorRadius * std::cos(t)) - mMajorAxis * (mMajorRadius * std::sin(t));
}

int AcGeEllipArc3d::sampleSpans() const {
  // A flat ellipse turns quickly near the ends of its major axis; the
  // parameter width of those turns shrinks with the ratio of the radii.
  double ratio = mMinorRadius > 0.0 ? mMajorRadius / mMinorRadius : 4096.0;
  if (!std::isfinite(ratio)) ratio = 4096.0;
  return 32 + static_cast<int>(std::min(4096.0, 8.0 * ratio));
}

AcGeBoundBlock3d AcGeEllipArc3d::boundBlock() const {
  return kxgeom::trigArcBox(mCenter, mMajorAxis * mMajorRadius, mMinorAxis * mMinorRadius, mStartAng, mEndAng);
}

AcGeEllipArc3d& AcGeEllipArc3d::transformBy(const AcGeMatrix3d& mat) {
  AcGePoint3d c = mat * mCenter;
  AcGeVector3d U = (mat * (mCenter + mMajorAxis * mMajorRadius)) - c;
  AcGeVector3d V = (mat * (mCenter + mMinorAxis * mMinorRadius)) - c;
  // C(t) = c + U cos t + V sin t with U, V conjugate. The principal axes lie
  // at tan(2 t0) = 2 U.V / (U.U - V.V); then t = s + t0.
  double t0 = 0.5 * std::atan2(2.0 * U.dotProduct(V), U.lengthSqrd() - V.lengthSqrd());
  AcGeVector3d A = U * std::cos(t0) + V * std::sin(t0);
  AcGeVector3d B = V * std::cos(t0) - U * std::sin(t0);
  if (B.lengthSqrd() > A.lengthSqrd()) {
    // Quarter turn so that the major axis is the longer one.
    AcGeVector3d oldA = A;
    A = B;
    B = -oldA;
    t0 += 0.5 * M_PI;
  }
  mCenter = c;
  double a = A.length(), b = B.length();
  if (a > 0.0) mMajorAxis = A / a;
  if (b > 0.0) mMinorAxis = B / b;
  else if (a > 0.0) mMinorAxis = mMajorAxis.perpVector();
  mMajorRadius = a;
  mMinorRadius = b;
  if (std::isfinite(t0)) {
    mStartAng -= t0;
    mEndAng -= t0;
  }
  return *this;
}
