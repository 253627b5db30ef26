#pragma once
#include "kxrender/AcArray.h"

/// Non-decreasing knot values of a spline.
class AcGeKnotVector {
public:
  AcGeKnotVector() = default;
  /// size knots copied from knots, or from an array.
  AcGeKnotVector(int size, const double* knots) {
    for (int i = 0; i < size; ++i) mKnots.append(knots[i]);
  }
  explicit AcGeKnotVector(const AcGeDoubleArray& knots) : mKnots(knots) {}  ///< See the pointer form.

  ///@{
  /// Number of knots, and whether there are none.
  int length() const { return mKnots.length(); }
  bool isEmpty() const { return mKnots.isEmpty(); }
  ///@}
  ///@{
  /// Knot i, unchecked.
  double operator[](int i) const { return mKnots[i]; }
  double& operator[](int i) { return mKnots[i]; }
  ///@}
  int append(double knot) { return mKnots.append(knot); }  ///< Appends a knot; returns its index.
  const double* asArrayPtr() const { return mKnots.asArrayPtr(); }  ///< The knots, contiguous.
  ///@{
  /// First and last knot; 0 when empty.
  double startParam() const { return mKnots.isEmpty() ? 0.0 : mKnots.first(); }
  double endParam() const { return mKnots.isEmpty() ? 0.0 : mKnots.last(); }
  ///@}

private:
  AcGeDoubleArray mKnots;
};
