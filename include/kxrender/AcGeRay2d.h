#pragma once
#include "kxrender/AcGeLinearEnt2d.h"
#include "kxrender/Export.h"

/// Half line in the plane.
class KXRENDER_API AcGeRay2d : public AcGeLinearEnt2d {
public:
  AcGeRay2d() = default;
  ///@{
  /// From origin along dir, or through a second point.
  AcGeRay2d(const AcGePoint2d& origin, const AcGeVector2d& dir) : AcGeLinearEnt2d(origin, dir) {}
  AcGeRay2d(const AcGePoint2d& origin, const AcGePoint2d& through) : AcGeLinearEnt2d(origin, through - origin) {}
  ///@}

  /// See the constructors.
  AcGeRay2d& set(const AcGePoint2d& origin, const AcGeVector2d& dir) { mPoint = origin; mVector = dir; return *this; }
  /// See the constructors.
  AcGeRay2d& set(const AcGePoint2d& origin, const AcGePoint2d& through) {
    mPoint = origin;
    mVector = through - origin;
    return *this;
  }

  AcGe::EntityId type() const override { return AcGe::kRay2d; }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kRay2d || AcGeLinearEnt2d::isKindOf(id); }
  /// 0 to infinity.
  void getInterval(double& lower, double& upper) const override {
    lower = 0.0;
    upper = std::numeric_limits<double>::infinity();
  }
};
