#pragma once
#include "kxrender/AcGeCurve3d.h"
#include "kxrender/Export.h"

class AcGeLinearEnt3d;

/// Circular arc: C(t) = center + radius * (cos t * refVec + sin t * (normal x refVec))
/// for startAng <= t <= endAng (radians, counter-clockwise about the normal).
class KXRENDER_API AcGeCircArc3d : public AcGeCurve3d {
public:
  /// Unit circle in the XY plane.
  AcGeCircArc3d() = default;
  /// Full circle; the reference vector follows the arbitrary axis rule.
  AcGeCircArc3d(const AcGePoint3d& center, const AcGeVector3d& normal, double radius) { set(center, normal, radius); }
  /// An arc about center in the plane with this normal, angles (radians)
  /// measured counter-clockwise from refVec.
  AcGeCircArc3d(const AcGePoint3d& center, const AcGeVector3d& normal, const AcGeVector3d& refVec, double radius,
                double startAngle, double endAngle) {
    set(center, normal, refVec, radius, startAngle, endAngle);
  }
  /// Arc from start through mid to end.
  AcGeCircArc3d(const AcGePoint3d& start, const AcGePoint3d& mid, const AcGePoint3d& end) { set(start, mid, end); }
  ///@{
  /// Copies.
  AcGeCircArc3d(const AcGeCircArc3d&) = default;
  AcGeCircArc3d& operator=(const AcGeCircArc3d&) = default;
  ///@}

  AcGe::EntityId type() const override { return AcGe::kCircArc3d; }
  AcGeEntity3d* copy() const override { return new AcGeCircArc3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kCircArc3d || AcGeCurve3d::isKindOf(id); }

  /// A full circle, or an arc as the constructor makes it.
  AcGeCircArc3d& set(const AcGePoint3d& center, const AcGeVector3d& normal, double radius);
  /// See the constructor.
  AcGeCircArc3d& set(const AcGePoint3d& center, const AcGeVector3d& normal, const AcGeVector3d& refVec,
                     double radius, double startAngle, double endAngle);
  /// Three points on a line (or coincident) leave a zero-radius arc at start.
  AcGeCircArc3d& set(const AcGePoint3d& start, const AcGePoint3d& mid, const AcGePoint3d& end);
  AcGeCircArc3d& setRadius(double radius) { mRadius = radius; return *this; }  ///< Sets the radius.
  /// End is brought above start by whole turns; at most one full turn.
  AcGeCircArc3d& setAngles(double startAngle, double endAngle);

  ///@{
  /// Centre, plane normal, reference vector, radius, angles (radians) and end points.
  AcGePoint3d center() const { return mCenter; }
  AcGeVector3d normal() const { return mNormal; }
  AcGeVector3d refVec() const { return mRefVec; }
  double radius() const { return mRadius; }
  double startAng() const { return mStartAng; }
  double endAng() const { return mEndAng; }
  AcGePoint3d startPoint() const { return evalPoint(mStartAng); }
  AcGePoint3d endPoint() const { return evalPoint(mEndAng); }
  ///@}

  /// Meeting points of a line, ray or segment with the arc: count 0, 1 (a
  /// tangent, or a line crossing the arc's plane) or 2.
  bool intersectWith(const AcGeLinearEnt3d& line, int& numInt, AcGePoint3d& p1, AcGePoint3d& p2,
                     const AcGeTol& tol = AcGeContext::gTol) const;

  void getInterval(double& lower, double& upper) const override { lower = mStartAng; upper = mEndAng; }
  AcGePoint3d evalPoint(double param) const override;
  AcGeVector3d evalDeriv(double param) const override;
  int sampleSpans() const override { return 16; }
  double length(double fromParam, double toParam, const AcGeTol& tol = AcGeContext::gTol) const override;
  double paramAtLength(double fromParam, double length, bool forward = true,
                       const AcGeTol& tol = AcGeContext::gTol) const override;
  double closestParamTo(const AcGePoint3d& pnt) const override;
  void normalParams(const AcGePoint3d& pnt, std::vector<double>& params) const override;
  AcGeBoundBlock3d boundBlock() const override;
  AcGeCircArc3d& transformBy(const AcGeMatrix3d& mat) override;

  /// Angle of a point's projection on the arc's plane, in [startAng, startAng + 2pi).
  double angleOf(const AcGePoint3d& pnt) const;

private:
  AcGeVector3d perpVec() const { return mNormal.crossProduct(mRefVec); }

  AcGePoint3d mCenter;
  AcGeVector3d mNormal{0.0, 0.0, 1.0};
  AcGeVector3d mRefVec{1.0, 0.0, 0.0};
  double mRadius = 1.0;
  double mStartAng = 0.0;
  double mEndAng = 2.0 * M_PI;
};
