#pragma once
#include <vector>

#include "kxrender/AcGeEntity3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

class AcGeCurve3d;

/// The points where two curves meet, within tol.equalPoint. With a non-zero
/// projection direction the curves are compared as seen along it (points are
/// reported on the first curve); the zero vector asks for true 3D meetings.
/// Results are ordered by the first curve's parameter. Overlapping pieces
/// report the meeting points found on them, not the overlap as a range.
class KXRENDER_API AcGeCurveCurveInt3d : public AcGeEntity3d {
public:
  AcGeCurveCurveInt3d() = default;
  /// Intersects the two curves (kept by reference: they must outlive this object).
  AcGeCurveCurveInt3d(const AcGeCurve3d& curve1, const AcGeCurve3d& curve2,
                      const AcGeVector3d& projectionDirection = AcGeVector3d::kIdentity,
                      const AcGeTol& tol = AcGeContext::gTol) {
    set(curve1, curve2, projectionDirection, tol);
  }

  AcGe::EntityId type() const override { return AcGe::kCurveCurveInt3d; }
  AcGeEntity3d* copy() const override { return new AcGeCurveCurveInt3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kCurveCurveInt3d || AcGeEntity3d::isKindOf(id); }

  /// Intersects two other curves.
  AcGeCurveCurveInt3d& set(const AcGeCurve3d& curve1, const AcGeCurve3d& curve2,
                           const AcGeVector3d& projectionDirection = AcGeVector3d::kIdentity,
                           const AcGeTol& tol = AcGeContext::gTol);

  ///@{
  /// The curves and the tolerance used.
  const AcGeCurve3d* curve1() const { return mCurve1; }
  const AcGeCurve3d* curve2() const { return mCurve2; }
  AcGeTol tolerance() const { return mTol; }
  ///@}
  int numIntPoints() const { return static_cast<int>(mPoints.size()); }  ///< Number of intersection points.
  /// An index past the end reads the last point; no points read the origin.
  AcGePoint3d intPoint(int index) const;
  void getIntParams(int index, double& param1, double& param2) const;  ///< Parameters of intersection index on each curve; the index is clamped, and with no intersection both are 0.

  /// True when pnt is one of the meeting points.
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGeCurveCurveInt3d& transformBy(const AcGeMatrix3d& mat) override;

private:
  struct Hit {
    AcGePoint3d point;
    double param1;
    double param2;
  };
  int clampIndex(int index) const;

  const AcGeCurve3d* mCurve1 = nullptr;
  const AcGeCurve3d* mCurve2 = nullptr;
  AcGeTol mTol;
  std::vector<Hit> mPoints;

  friend class CurveIntersector;
};
