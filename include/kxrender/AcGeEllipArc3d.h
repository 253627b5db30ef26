#pragma once
#include "kxrender/AcGeCurve3d.h"
#include "kxrender/Export.h"

class AcGeCircArc3d;

/// Elliptic arc: C(t) = center + majorRadius * cos t * majorAxis +
/// minorRadius * sin t * minorAxis for startAng <= t <= endAng. The angles
/// are parametric angles, counter-clockwise about majorAxis x minorAxis.
class KXRENDER_API AcGeEllipArc3d : public AcGeCurve3d {
public:
  /// Unit circle in the XY plane.
  AcGeEllipArc3d() = default;
  /// An arc of the ellipse with these axes (unit vectors) and radii, between
  /// the parametric angles.
  AcGeEllipArc3d(const AcGePoint3d& center, const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis,
                 double majorRadius, double minorRadius, double startAngle = 0.0, double endAngle = 2.0 * M_PI) {
    set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
  }
  explicit AcGeEllipArc3d(const AcGeCircArc3d& arc) { set(arc); }  ///< The same curve as a circular arc.
  ///@{
  /// Copies.
  AcGeEllipArc3d(const AcGeEllipArc3d&) = default;
  AcGeEllipArc3d& operator=(const AcGeEllipArc3d&) = default;
  ///@}

  AcGe::EntityId type() const override { return AcGe::kEllipArc3d; }
  AcGeEntity3d* copy() const override { return new AcGeEllipArc3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kEllipArc3d || AcGeCurve3d::isKindOf(id); }

  /// The minor axis is made perpendicular to the major axis.
  AcGeEllipArc3d& set(const AcGePoint3d& center, const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis,
                      double majorRadius, double minorRadius, double startAngle = 0.0,
                      double endAngle = 2.0 * M_PI);
  AcGeEllipArc3d& set(const AcGeCircArc3d& arc);  ///< The same curve as a circular arc.
  AcGeEllipArc3d& setAngles(double startAngle, double endAngle);  ///< Sets the parametric angles (radians).

  ///@{
  /// Centre, axes, plane normal, radii, angles and end points.
  AcGePoint3d center() const { return mCenter; }
  AcGeVector3d majorAxis() const { return mMajorAxis; }
  AcGeVector3d minorAxis() const { return mMinorAxis; }
  AcGeVector3d normal() const { return mMajorAxis.crossProduct(mMinorAxis); }
  double majorRadius() const { return mMajorRadius; }
  double minorRadius() const { return mMinorRadius; }
  double startAng() const { return mStartAng; }
  double endAng() const { return mEndAng; }
  AcGePoint3d startPoint() const { return evalPoint(mStartAng); }
  AcGePoint3d endPoint() const { return evalPoint(mEndAng); }
  ///@}

  void getInterval(double& lower, double& upper) const override { lower = mStartAng; upper = mEndAng; }
  AcGePoint3d evalPoint(double param) const override;
  AcGeVector3d evalDeriv(double param) const override;
  int sampleSpans() const override;
  AcGeBoundBlock3d boundBlock() const override;
  /// Exact for the affine maps; the axes are re-derived from the images of
  /// two conjugate half diameters.
  AcGeEllipArc3d& transformBy(const AcGeMatrix3d& mat) override;

private:
  AcGePoint3d mCenter;
  AcGeVector3d mMajorAxis{1.0, 0.0, 0.0};
  AcGeVector3d mMinorAxis{0.0, 1.0, 0.0};
  double mMajorRadius = 1.0;
  double mMinorRadius = 1.0;
  double mStartAng = 0.0;
  double mEndAng = 2.0 * M_PI;
};
