#pragma once
#include <vector>

#include "kxrender/AcArray.h"
#include "kxrender/AcGeBoundBlock3d.h"
#include "kxrender/AcGeEntity3d.h"
#include "kxrender/AcGePointOnCurve3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

/// Parametric curve C(t) over an interval. Concrete curves supply the
/// evaluation and its first derivative; lengths, closest points and feet of
/// perpendiculars are then found numerically unless a curve knows better.
/// All numerical loops have fixed iteration limits, and non-finite input
/// yields the refusal documented per operation.
class KXRENDER_API AcGeCurve3d : public AcGeEntity3d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kCurve3d || AcGeEntity3d::isKindOf(id); }

  /// Parameter range; unbounded ends are +-infinity.
  virtual void getInterval(double& lower, double& upper) const = 0;
  virtual AcGePoint3d evalPoint(double param) const = 0;  ///< The curve point at param.
  /// dC/dt at param.
  virtual AcGeVector3d evalDeriv(double param) const = 0;
  /// How many equal pieces of the parameter range the numerical searches
  /// start from; curves with more wiggle ask for more.
  virtual int sampleSpans() const { return 64; }

  /// Parameter of the curve point nearest pnt (for a point on the curve, its
  /// own parameter).
  virtual double paramOf(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  /// Arc length between two parameters (in either order), clamped to the
  /// interval; 0 for non-finite input.
  virtual double length(double fromParam, double toParam, const AcGeTol& tol = AcGeContext::gTol) const;
  /// Parameter reached after length along the curve from fromParam, towards
  /// larger parameters when forward. Stops at the end of the curve; a
  /// negative or non-finite length leaves fromParam.
  virtual double paramAtLength(double fromParam, double length, bool forward = true,
                               const AcGeTol& tol = AcGeContext::gTol) const;

  ///@{
  /// The point at the lower (upper) end of the interval; false, pnt untouched,
  /// when that end is unbounded.
  bool hasStartPoint(AcGePoint3d& pnt) const;
  bool hasEndPoint(AcGePoint3d& pnt) const;
  ///@}
  bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const;  ///< Bounded, with start and end points equal within tol.

  /// Distance from pnt to the nearest curve point.
  double distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const {
    return closestPointTo(pnt, tol).distanceTo(pnt);
  }
  AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;  ///< The curve point nearest pnt.
  /// Nearest pair of points of two curves: this curve's point is returned,
  /// the other curve's is stored in pntOnOther.
  AcGePoint3d closestPointTo(const AcGeCurve3d& other, AcGePoint3d& pntOnOther,
                             const AcGeTol& tol = AcGeContext::gTol) const;
  /// The nearest curve point, as point and parameter on this curve.
  void getClosestPointTo(const AcGePoint3d& pnt, AcGePointOnCurve3d& pntOnCrv,
                         const AcGeTol& tol = AcGeContext::gTol) const;
  /// Foot of a perpendicular from pnt onto the curve within its extent. When
  /// several exist, the one nearest the parameter already held by pntOnCrv
  /// (when it refers to this curve) is chosen, else the one nearest pnt.
  bool getNormalPoint(const AcGePoint3d& pnt, AcGePointOnCurve3d& pntOnCrv,
                      const AcGeTol& tol = AcGeContext::gTol) const;
  /// numSample points evenly spread in parameter, both ends included. An
  /// unbounded curve or a count below 1 gives no points.
  void getSamplePoints(int numSample, AcArray<AcGePoint3d>& pointArray) const;
  /// A box that holds the curve.
  virtual AcGeBoundBlock3d boundBlock() const;

  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override {
    return distanceTo(pnt, tol) <= tol.equalPoint();
  }

  /// Parameters of the nearest point and of all feet of perpendiculars
  /// (within the extent, where the curve has a tangent). Curves with closed
  /// forms override these.
  virtual double closestParamTo(const AcGePoint3d& pnt) const;
  virtual void normalParams(const AcGePoint3d& pnt, std::vector<double>& params) const;  ///< See closestParamTo.

protected:
  ///@{
  /// Only derived curves are created and copied.
  AcGeCurve3d() = default;
  AcGeCurve3d(const AcGeCurve3d&) = default;
  AcGeCurve3d& operator=(const AcGeCurve3d&) = default;
  ///@}
};
