#pragma once
#include "kxrender/AcArray.h"

/// Non-decreasing knot values of a spline.
class AcGeKnotVector {
public:
  AcGeKnotVector() = default;
  AcGeKnotVector(int size, const double* knots) {
    for (int i = 0; i < size; ++i) mKnots.append(knots[i]);
  }
  explicit AcGeKnotVector(const AcGeDoubleArray& knots) : mKnots(knots) {}

  int length() const { return mKnots.length(); }
  bool isEmpty() const { return mKnots.isEmpty(); }
  double operator[](int i) const { return mKnots[i]; }
  double& operator[](int i) { return mKnots[i]; }
  int append(double knot) { return mKnots.append(knot); }
  const double* asArrayPtr() const { return mKnots.asArrayPtr(); }
  double startParam() const { return mKnots.isEmpty() ? 0.0 : mKnots.first(); }
  double endParam() const { return mKnots.isEmpty() ? 0.0 : mKnots.last(); }

private:
  AcGeDoubleArray mKnots;
};
