#pragma once
#include "kxrender/Export.h"

/// Distance tolerance for points and for vectors. Points are equal when their
/// distance is at most equalPoint; vectors when their difference is at most
/// equalVector long.
class KXRENDER_API AcGeTol {
public:
  ///@{
  /// Default tolerances 1e-10 (points) and 1e-12 (vectors), or the given ones.
  constexpr AcGeTol() = default;
  constexpr AcGeTol(double equalPoint, double equalVector) : mEqualPoint(equalPoint), mEqualVector(equalVector) {}
  ///@}

  ///@{
  /// The two tolerances, world units.
  double equalPoint() const { return mEqualPoint; }
  double equalVector() const { return mEqualVector; }
  void setEqualPoint(double val) { mEqualPoint = val; }
  void setEqualVector(double val) { mEqualVector = val; }
  ///@}

private:
  double mEqualPoint = 1e-10;
  double mEqualVector = 1e-12;
};
