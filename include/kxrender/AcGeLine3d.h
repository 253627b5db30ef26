#pragma once
#include "kxrender/AcGeLinearEnt3d.h"
#include "kxrender/Export.h"

/// Infinite line.
class KXRENDER_API AcGeLine3d : public AcGeLinearEnt3d {
public:
  /// The x axis.
  AcGeLine3d() = default;
  ///@{
  /// The infinite line through pnt along dir, or through p1 and p2.
  AcGeLine3d(const AcGePoint3d& pnt, const AcGeVector3d& dir) : AcGeLinearEnt3d(pnt, dir) {}
  AcGeLine3d(const AcGePoint3d& p1, const AcGePoint3d& p2) : AcGeLinearEnt3d(p1, p2 - p1) {}
  ///@}

  ///@{
  /// The coordinate axes.
  static const AcGeLine3d kXAxis;
  static const AcGeLine3d kYAxis;
  static const AcGeLine3d kZAxis;
  ///@}

  ///@{
  /// See the constructors.
  AcGeLine3d& set(const AcGePoint3d& pnt, const AcGeVector3d& dir) { mPoint = pnt; mVector = dir; return *this; }
  AcGeLine3d& set(const AcGePoint3d& p1, const AcGePoint3d& p2) { mPoint = p1; mVector = p2 - p1; return *this; }
  ///@}

  AcGe::EntityId type() const override { return AcGe::kLine3d; }
  AcGeEntity3d* copy() const override { return new AcGeLine3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kLine3d || AcGeLinearEnt3d::isKindOf(id); }
  void getInterval(double& lower, double& upper) const override {
    lower = -std::numeric_limits<double>::infinity();
    upper = std::numeric_limits<double>::infinity();
  }
};
