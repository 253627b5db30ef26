#pragma once
#include "kxrender/AcGeLinearEnt3d.h"
#include "kxrender/Export.h"

/// Half line from an origin along a direction.
class KXRENDER_API AcGeRay3d : public AcGeLinearEnt3d {
public:
  AcGeRay3d() = default;
  ///@{
  /// From origin along dir, or through a second point.
  AcGeRay3d(const AcGePoint3d& origin, const AcGeVector3d& dir) : AcGeLinearEnt3d(origin, dir) {}
  AcGeRay3d(const AcGePoint3d& origin, const AcGePoint3d& through) : AcGeLinearEnt3d(origin, through - origin) {}
  ///@}

  /// See the constructors.
  AcGeRay3d& set(const AcGePoint3d& origin, const AcGeVector3d& dir) { mPoint = origin; mVector = dir; return *this; }
  /// See the constructors.
  AcGeRay3d& set(const AcGePoint3d& origin, const AcGePoint3d& through) {
    mPoint = origin;
    mVector = through - origin;
    return *this;
  }

  AcGe::EntityId type() const override { return AcGe::kRay3d; }
  AcGeEntity3d* copy() const override { return new AcGeRay3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kRay3d || AcGeLinearEnt3d::isKindOf(id); }
  void getInterval(double& lower, double& upper) const override {
    lower = 0.0;
    upper = std::numeric_limits<double>::infinity();
  }
};
