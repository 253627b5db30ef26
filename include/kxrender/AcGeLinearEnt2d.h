#pragma once
#include <limits>

#include "kxrender/AcGeEntity2d.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/Export.h"

/// Straight entity in the plane, p(t) = point + t * vector; see the 3D version.
class KXRENDER_API AcGeLinearEnt2d : public AcGeEntity2d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kLinearEnt2d || AcGeEntity2d::isKindOf(id); }

  AcGePoint2d pointOnLine() const { return mPoint; }
  AcGeVector2d direction() const { return mVector.normal(); }
  virtual void getInterval(double& lower, double& upper) const = 0;
  AcGePoint2d evalPoint(double param) const { return mPoint + mVector * param; }
  double paramOf(const AcGePoint2d& pnt) const;
  bool isParamWithin(double param, const AcGeTol& tol = AcGeContext::gTol) const;

  AcGePoint2d closestPointTo(const AcGePoint2d& pnt) const;
  double distanceTo(const AcGePoint2d& pnt) const { return closestPointTo(pnt).distanceTo(pnt); }
  bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;

  /// Single meeting point within both extents; parallel entities (overlapping
  /// or not) give false.
  bool intersectWith(const AcGeLinearEnt2d& other, AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;

protected:
  AcGeLinearEnt2d() = default;
  AcGeLinearEnt2d(const AcGePoint2d& pnt, const AcGeVector2d& vec) : mPoint(pnt), mVector(vec) {}

  AcGePoint2d mPoint;
  AcGeVector2d mVector{1.0, 0.0};
};
