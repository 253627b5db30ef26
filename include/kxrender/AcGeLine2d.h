#pragma once
#include "kxrender/AcGeLinearEnt2d.h"
#include "kxrender/Export.h"

/// Infinite line in the plane.
class KXRENDER_API AcGeLine2d : public AcGeLinearEnt2d {
public:
  AcGeLine2d() = default;
  ///@{
  /// The infinite line through pnt along dir, or through p1 and p2.
  AcGeLine2d(const AcGePoint2d& pnt, const AcGeVector2d& dir) : AcGeLinearEnt2d(pnt, dir) {}
  AcGeLine2d(const AcGePoint2d& p1, const AcGePoint2d& p2) : AcGeLinearEnt2d(p1, p2 - p1) {}

  AcGeLine2d& set(const AcGePoint2d& pnt, const AcGeVector2d& dir) { mPoint = pnt; mVector = dir; return *this; }
  AcGeLine2d& set(const AcGePoint2d& p1, const AcGePoint2d& p2) { mPoint = p1; mVector = p2 - p1; return *this; }
  ///@}

  AcGe::EntityId type() const override { return AcGe::kLine2d; }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kLine2d || AcGeLinearEnt2d::isKindOf(id); }
  /// Unbounded both ways.
  void getInterval(double& lower, double& upper) const override {
    lower = -std::numeric_limits<double>::infinity();
    upper = std::numeric_limits<double>::infinity();
  }
};
