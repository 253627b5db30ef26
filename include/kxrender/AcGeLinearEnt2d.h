#pragma once
#include <limits>

#include "kxrender/AcGeEntity2d.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/Export.h"

/// Straight entity in the plane, p(t) = point + t * vector; see the 3D version.
class KXRENDER_API AcGeLinearEnt2d : public AcGeEntity2d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kLinearEnt2d || AcGeEntity2d::isKindOf(id); }

  AcGePoint2d pointOnLine() const { return mPoint; }  ///< The point at parameter 0.
  AcGeVector2d direction() const { return mVector.normal(); }  ///< Unit direction.
  virtual void getInterval(double& lower, double& upper) const = 0;  ///< Parameter range: per kind of line.
  AcGePoint2d evalPoint(double param) const { return mPoint + mVector * param; }  ///< pointOnLine() + param * the direction vector as given.
  double paramOf(const AcGePoint2d& pnt) const;  ///< Parameter of the foot of pnt on the infinite line.
  bool isParamWithin(double param, const AcGeTol& tol = AcGeContext::gTol) const;  ///< True when param lies in the interval, with tolerance.

  AcGePoint2d closestPointTo(const AcGePoint2d& pnt) const;  ///< The point of the entity (within its interval) nearest pnt.
  double distanceTo(const AcGePoint2d& pnt) const { return closestPointTo(pnt).distanceTo(pnt); }  ///< Distance from pnt to the entity.
  bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;

  /// Single meeting point within both extents; parallel entities (overlapping
  /// or not) give false.
  bool intersectWith(const AcGeLinearEnt2d& other, AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;

protected:
  AcGeLinearEnt2d() = default;
  AcGeLinearEnt2d(const AcGePoint2d& pnt, const AcGeVector2d& vec) : mPoint(pnt), mVector(vec) {}  ///< Through pnt along vec.

  AcGePoint2d mPoint;  ///< Point at parameter 0.
  AcGeVector2d mVector{1.0, 0.0};  ///< Direction vector (length: one parameter unit).
};
