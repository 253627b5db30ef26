#pragma once
#include "kxrender/AcArray.h"
#include "kxrender/AcGeEntity2d.h"
#include "kxrender/Export.h"

/// Parametric curve in the plane.
class KXRENDER_API AcGeCurve2d : public AcGeEntity2d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kCurve2d || AcGeEntity2d::isKindOf(id); }

  virtual void getInterval(double& lower, double& upper) const = 0;  ///< Parameter range; unbounded ends are +-infinity.
  virtual AcGePoint2d evalPoint(double param) const = 0;  ///< The curve point at param.
  ///@{
  /// The point at the lower (upper) end of the interval; false, pnt untouched,
  /// when that end is unbounded.
  bool hasStartPoint(AcGePoint2d& pnt) const;
  bool hasEndPoint(AcGePoint2d& pnt) const;
  ///@}
  /// numSample points evenly spread in parameter, both ends included; none
  /// for an unbounded curve or a count below 1.
  void getSamplePoints(int numSample, AcArray<AcGePoint2d>& pointArray) const;

protected:
  ///@{
  /// Only derived curves are created and copied.
  AcGeCurve2d() = default;
  AcGeCurve2d(const AcGeCurve2d&) = default;
  AcGeCurve2d& operator=(const AcGeCurve2d&) = default;
  ///@}
};
