#pragma once
#include "kxrender/AcGeLinearEnt3d.h"
#include "kxrender/Export.h"

/// Bounded segment; parameter 0 at the start and 1 at the end.
class KXRENDER_API AcGeLineSeg3d : public AcGeLinearEnt3d {
public:
  /// From the origin to (1, 0, 0).
  AcGeLineSeg3d() = default;
  ///@{
  /// The segment from start to end, or from start along vec (parameters 0 to 1); copies.
  AcGeLineSeg3d(const AcGePoint3d& start, const AcGePoint3d& end) : AcGeLinearEnt3d(start, end - start) {}
  AcGeLineSeg3d(const AcGePoint3d& start, const AcGeVector3d& vec) : AcGeLinearEnt3d(start, vec) {}
  AcGeLineSeg3d(const AcGeLineSeg3d&) = default;
  AcGeLineSeg3d& operator=(const AcGeLineSeg3d&) = default;
  ///@}

  /// See the constructor.
  AcGeLineSeg3d& set(const AcGePoint3d& start, const AcGePoint3d& end) {
    mPoint = start;
    mVector = end - start;
    return *this;
  }

  AcGe::EntityId type() const override { return AcGe::kLineSeg3d; }
  AcGeEntity3d* copy() const override { return new AcGeLineSeg3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kLineSeg3d || AcGeLinearEnt3d::isKindOf(id); }
  void getInterval(double& lower, double& upper) const override { lower = 0.0; upper = 1.0; }

  ///@{
  /// End points and middle.
  AcGePoint3d startPoint() const { return mPoint; }
  AcGePoint3d endPoint() const { return mPoint + mVector; }
  AcGePoint3d midPoint() const { return mPoint + mVector * 0.5; }
  ///@}
  using AcGeLinearEnt3d::length;
  double length() const { return mVector.length(); }  ///< Length.
};
