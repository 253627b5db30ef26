#pragma once
#include <limits>

#include "kxrender/AcGeCurve3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

class AcGePlanarEnt;

/// Straight entity p(t) = point + t * vector. Lines, rays and segments differ
/// only in the parameter range they accept: all of t, t >= 0, 0 <= t <= 1.
class KXRENDER_API AcGeLinearEnt3d : public AcGeCurve3d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kLinearEnt3d || AcGeCurve3d::isKindOf(id); }

  /// The entity's first point (origin of a line or ray, start of a segment).
  AcGePoint3d pointOnLine() const { return mPoint; }
  /// Unit direction; zero for a degenerate entity.
  AcGeVector3d direction() const { return mVector.normal(); }

  AcGePoint3d evalPoint(double param) const override { return mPoint + mVector * param; }
  AcGeVector3d evalDeriv(double) const override { return mVector; }
  int sampleSpans() const override { return 1; }
  /// Parameter of the foot of the perpendicular on the infinite carrier line.
  double paramOf(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  double length(double fromParam, double toParam, const AcGeTol& tol = AcGeContext::gTol) const override;
  double paramAtLength(double fromParam, double length, bool forward = true,
                       const AcGeTol& tol = AcGeContext::gTol) const override;
  double closestParamTo(const AcGePoint3d& pnt) const override;
  void normalParams(const AcGePoint3d& pnt, std::vector<double>& params) const override;
  AcGeBoundBlock3d boundBlock() const override;
  /// True when param lies in the range, widened by the point tolerance.
  bool isParamWithin(double param, const AcGeTol& tol = AcGeContext::gTol) const;

  /// Single meeting point of two linear entities within both extents. Parallel
  /// (including overlapping collinear) and skew entities give false.
  bool intersectWith(const AcGeLinearEnt3d& other, AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  bool intersectWith(const AcGePlanarEnt& plane, AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;  ///< The point where the entity meets the plane; false when parallel or outside the interval.
  /// Directions parallel within tol.
  bool isParallelTo(const AcGeLinearEnt3d& other, const AcGeTol& tol = AcGeContext::gTol) const {
    return mVector.isParallelTo(other.mVector, tol);
  }

  AcGeLinearEnt3d& transformBy(const AcGeMatrix3d& mat) override;

protected:
  AcGeLinearEnt3d() = default;
  AcGeLinearEnt3d(const AcGePoint3d& pnt, const AcGeVector3d& vec) : mPoint(pnt), mVector(vec) {}  ///< Through pnt along vec.

  AcGePoint3d mPoint;  ///< Point at parameter 0.
  AcGeVector3d mVector{1.0, 0.0, 0.0};  ///< Direction vector (length: one parameter unit).
};
