#pragma once
#include "kxrender/AcGeLinearEnt2d.h"
#include "kxrender/Export.h"

/// Bounded segment in the plane; parameter 0 at the start, 1 at the end.
class KXRENDER_API AcGeLineSeg2d : public AcGeLinearEnt2d {
public:
  AcGeLineSeg2d() = default;
  AcGeLineSeg2d(const AcGePoint2d& start, const AcGePoint2d& end) : AcGeLinearEnt2d(start, end - start) {}  ///< The segment from start to end (parameters 0 to 1).
  ///@{
  /// Copies.
  AcGeLineSeg2d(const AcGeLineSeg2d&) = default;
  AcGeLineSeg2d& operator=(const AcGeLineSeg2d&) = default;
  ///@}

  /// See the constructor.
  AcGeLineSeg2d& set(const AcGePoint2d& start, const AcGePoint2d& end) {
    mPoint = start;
    mVector = end - start;
    return *this;
  }

  AcGe::EntityId type() const override { return AcGe::kLineSeg2d; }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kLineSeg2d || AcGeLinearEnt2d::isKindOf(id); }
  void getInterval(double& lower, double& upper) const override { lower = 0.0; upper = 1.0; }  ///< 0 to 1.

  ///@{
  /// End points, middle and length.
  AcGePoint2d startPoint() const { return mPoint; }
  AcGePoint2d endPoint() const { return mPoint + mVector; }
  AcGePoint2d midPoint() const { return mPoint + mVector * 0.5; }
  double length() const { return mVector.length(); }
  ///@}
};
