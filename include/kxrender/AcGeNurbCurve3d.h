#pragma once
#include "kxrender/AcGeSplineEnt3d.h"
#include "kxrender/Export.h"

/// Non-uniform rational B-spline. Defined by degree, knots, control points
/// and optional weights (all positive), or by fit points that a cubic is made
/// to pass through. The parameter runs from knot[degree] to
/// knot[numControlPoints]. Inconsistent data makes an empty curve: no start,
/// no end, no interval (isValid() false).
class KXRENDER_API AcGeNurbCurve3d : public AcGeSplineEnt3d {
public:
  static const int kMaxDegree = 25;  ///< Highest degree accepted; higher makes an invalid curve.

  AcGeNurbCurve3d() = default;
  /// From degree, knots and control points (and weights: a rational curve).
  /// Inconsistent counts make an invalid curve (isValid() false).
  AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& controlPoints,
                  bool isPeriodic = false);
  /// See the non-rational form.
  AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& controlPoints,
                  const AcGeDoubleArray& weights, bool isPeriodic = false);
  /// Cubic through the fit points (consecutive duplicates dropped), with
  /// chord-length parameters. An undefined end tangent is taken from the
  /// parabola through the first (last) three points.
  AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                  const AcGeVector3d& endTangent, bool startTangentDefined = true, bool endTangentDefined = true,
                  const AcGeTol& fitTolerance = AcGeContext::gTol);
  explicit AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeTol& fitTolerance = AcGeContext::gTol);  ///< Cubic through the fit points with both end tangents from the data.
  ///@{
  /// Copies.
  AcGeNurbCurve3d(const AcGeNurbCurve3d&) = default;
  AcGeNurbCurve3d& operator=(const AcGeNurbCurve3d&) = default;
  ///@}

  AcGe::EntityId type() const override { return AcGe::kNurbCurve3d; }
  AcGeEntity3d* copy() const override { return new AcGeNurbCurve3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kNurbCurve3d || AcGeSplineEnt3d::isKindOf(id); }

  bool isValid() const { return mValid; }  ///< False when construction got inconsistent data; such a curve has no points.
  int degree() const override { return mDegree; }
  int numControlPoints() const override { return mControlPoints.length(); }
  AcGePoint3d controlPointAt(int index) const override;
  int numKnots() const override { return mKnots.length(); }
  double knotAt(int index) const override;
  const AcGeKnotVector& knots() const { return mKnots; }  ///< The knot vector.
  bool isRational() const override { return !mWeights.isEmpty(); }
  int numWeights() const { return mWeights.length(); }  ///< Number of weights (0 when not rational).
  /// 1 for a non-rational curve.
  double weightAt(int index) const;

  bool hasFitData() const override { return mHasFitData; }
  ///@{
  /// Fit data of a curve built from fit points: count, point index (false
  /// outside or without fit data) and tolerance.
  int numFitPoints() const { return mHasFitData ? mFitPoints.length() : 0; }
  bool getFitPointAt(int index, AcGePoint3d& pnt) const;
  AcGeTol fitTolerance() const { return mFitTol; }
  ///@}

  void getInterval(double& lower, double& upper) const override;
  AcGePoint3d evalPoint(double param) const override;
  AcGeVector3d evalDeriv(double param) const override;
  int sampleSpans() const override;
  /// Box of the control points: the curve lies in their convex hull.
  AcGeBoundBlock3d boundBlock() const override;
  AcGeNurbCurve3d& transformBy(const AcGeMatrix3d& mat) override;

private:
  void validate();
  void interpolate(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                   const AcGeVector3d& endTangent, bool startDefined, bool endDefined);
  /// Point and first derivative at param.
  void evaluate(double param, AcGePoint3d& pnt, AcGeVector3d* deriv) const;

  int mDegree = 0;
  AcGeKnotVector mKnots;
  AcGePoint3dArray mControlPoints;
  AcGeDoubleArray mWeights;
  bool mValid = false;
  bool mHasFitData = false;
  AcGePoint3dArray mFitPoints;
  AcGeTol mFitTol;
};
