#pragma once
#include "kxrender/AcArray.h"
#include "kxrender/AcGeEntity2d.h"
#include "kxrender/Export.h"

/// Parametric curve in the plane.
class KXRENDER_API AcGeCurve2d : public AcGeEntity2d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kCurve2d || AcGeEntity2d::isKindOf(id); }

  virtual void getInterval(double& lower, double& upper) const = 0;
  virtual AcGePoint2d evalPoint(double param) const = 0;
  bool hasStartPoint(AcGePoint2d& pnt) const;
  bool hasEndPoint(AcGePoint2d& pnt) const;
  /// numSample points evenly spread in parameter, both ends included; none
  /// for an unbounded curve or a count below 1.
  void getSamplePoints(int numSample, AcArray<AcGePoint2d>& pointArray) const;

protected:
  AcGeCurve2d() = default;
  AcGeCurve2d(const AcGeCurve2d&) = default;
  AcGeCurve2d& operator=(const AcGeCurve2d&) = default;
};
