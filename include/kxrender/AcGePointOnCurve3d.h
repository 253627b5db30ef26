#pragma once
#include "kxrender/AcGePointEnt3d.h"
#include "kxrender/Export.h"

class AcGeCurve3d;

/// A parameter on a curve and the point there. The curve is not owned; the
/// point is kept so that it stays readable after the curve is gone.
class KXRENDER_API AcGePointOnCurve3d : public AcGePointEnt3d {
public:
  AcGePointOnCurve3d() = default;
  ///@{
  /// On curve (not owned), without or with a parameter (evaluated).
  explicit AcGePointOnCurve3d(const AcGeCurve3d& curve) : mCurve(&curve) {}
  AcGePointOnCurve3d(const AcGeCurve3d& curve, double param) { setCurve(curve); setParameter(param); }
  ///@}

  AcGe::EntityId type() const override { return AcGe::kPointOnCurve3d; }
  AcGeEntity3d* copy() const override { return new AcGePointOnCurve3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kPointOnCurve3d || AcGePointEnt3d::isKindOf(id); }

  ///@{
  /// The curve (or null), the parameter, whether one is set, and the point.
  const AcGeCurve3d* curve() const { return mCurve; }
  double parameter() const { return mParam; }
  bool hasParameter() const { return mHasParam; }
  AcGePoint3d point() const { return mPoint; }
  AcGePoint3d point3d() const override { return mPoint; }
  ///@}

  AcGePointOnCurve3d& setCurve(const AcGeCurve3d& curve) { mCurve = &curve; return *this; }  ///< Sets the curve (not owned; it must outlive this object while used).
  /// Sets the parameter and evaluates the curve there (when one is set).
  AcGePointOnCurve3d& setParameter(double param);
  /// Sets all three at once, without evaluating.
  AcGePointOnCurve3d& set(const AcGeCurve3d* curve, double param, const AcGePoint3d& pnt) {
    mCurve = curve;
    mParam = param;
    mHasParam = true;
    mPoint = pnt;
    return *this;
  }
  AcGePointOnCurve3d& transformBy(const AcGeMatrix3d& mat) override;

private:
  const AcGeCurve3d* mCurve = nullptr;
  double mParam = 0.0;
  bool mHasParam = false;
  AcGePoint3d mPoint;
};
