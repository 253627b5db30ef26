#pragma once
#include "kxrender/AcGeCurve2d.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/Export.h"

/// Circular arc in the plane. Angles are measured from the reference vector,
/// counter-clockwise, or clockwise for a clockwise arc; the arc runs from
/// startAng to endAng (end above start, at most one turn).
class KXRENDER_API AcGeCircArc2d : public AcGeCurve2d {
public:
  /// Unit circle.
  AcGeCircArc2d() = default;
  /// An arc about center of the given radius between the angles (radians).
  AcGeCircArc2d(const AcGePoint2d& center, double radius, double startAngle, double endAngle,
                const AcGeVector2d& refVec = AcGeVector2d::kXAxis, bool isClockWise = false) {
    set(center, radius, startAngle, endAngle, refVec, isClockWise);
  }
  ///@{
  /// Copies.
  AcGeCircArc2d(const AcGeCircArc2d&) = default;
  AcGeCircArc2d& operator=(const AcGeCircArc2d&) = default;
  ///@}

  AcGe::EntityId type() const override { return AcGe::kCircArc2d; }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kCircArc2d || AcGeCurve2d::isKindOf(id); }

  /// Replaces the arc as the constructor would make it.
  AcGeCircArc2d& set(const AcGePoint2d& center, double radius, double startAngle, double endAngle,
                     const AcGeVector2d& refVec = AcGeVector2d::kXAxis, bool isClockWise = false);

  ///@{
  /// Centre, radius, angles (radians), reference vector and sense.
  AcGePoint2d center() const { return mCenter; }
  double radius() const { return mRadius; }
  double startAng() const { return mStartAng; }
  double endAng() const { return mEndAng; }
  AcGeVector2d refVec() const { return mRefVec; }
  bool isClockWise() const { return mClockWise; }
  ///@}
  ///@{
  /// End points and arc length.
  AcGePoint2d startPoint() const { return evalPoint(mStartAng); }
  AcGePoint2d endPoint() const { return evalPoint(mEndAng); }
  double length() const { return std::fabs(mRadius) * (mEndAng - mStartAng); }
  ///@}

  void getInterval(double& lower, double& upper) const override { lower = mStartAng; upper = mEndAng; }
  AcGePoint2d evalPoint(double param) const override;
  bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;

private:
  AcGePoint2d mCenter;
  double mRadius = 1.0;
  double mStartAng = 0.0;
  double mEndAng = 2.0 * M_PI;
  AcGeVector2d mRefVec{1.0, 0.0};
  bool mClockWise = false;
};
