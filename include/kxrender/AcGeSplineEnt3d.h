#pragma once
#include "kxrender/AcGeCurve3d.h"
#include "kxrender/AcGeKnotVector.h"
#include "kxrender/Export.h"

/// Base of the spline curves: degree, control points, knots, fit data.
class KXRENDER_API AcGeSplineEnt3d : public AcGeCurve3d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kSplineEnt3d || AcGeCurve3d::isKindOf(id); }

  ///@{
  /// Degree, order (degree + 1), control points and knots (an index outside
  /// is clamped; none gives a zero value), whether fit data is kept, whether weights are used.
  virtual int degree() const = 0;
  int order() const { return degree() + 1; }
  virtual int numControlPoints() const = 0;
  virtual AcGePoint3d controlPointAt(int index) const = 0;
  virtual int numKnots() const = 0;
  virtual double knotAt(int index) const = 0;
  virtual bool hasFitData() const = 0;
  virtual bool isRational() const = 0;
  ///@}
};
