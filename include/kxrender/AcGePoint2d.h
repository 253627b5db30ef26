#pragma once
#include <cmath>

#include "kxrender/AcGeContext.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/Export.h"

/// Position in the plane.
class KXRENDER_API AcGePoint2d {
public:
  ///@{
  /// Coordinates.
  double x = 0.0;
  double y = 0.0;
  ///@}

  ///@{
  /// The origin, or (xx, yy).
  constexpr AcGePoint2d() = default;
  constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}
  ///@}

  static const AcGePoint2d kOrigin;  ///< (0, 0).

  AcGePoint2d& set(double xx, double yy) { x = xx; y = yy; return *this; }  ///< Sets the coordinates.
  AcGeVector2d asVector() const { return AcGeVector2d(x, y); }  ///< The vector from the origin.

  double distanceTo(const AcGePoint2d& p) const { return std::hypot(x - p.x, y - p.y); }  ///< Distance to p.
  /// True within tol.equalPoint.
  bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  ///@{
  /// Scales about origin; turns ang radians counter-clockwise about center.
  AcGePoint2d& scaleBy(double factor, const AcGePoint2d& origin = kOrigin) {
    x = origin.x + factor * (x - origin.x);
    y = origin.y + factor * (y - origin.y);
    return *this;
  }
  AcGePoint2d& rotateBy(double ang, const AcGePoint2d& center = kOrigin) {
    AcGeVector2d v = (*this - center).rotateBy(ang);
    return *this = center + v;
  }
  ///@}

  ///@{
  /// Point plus or minus vector, point minus point, scaling; == compares with
  /// isEqualTo; [0] is x, else y.
  AcGePoint2d operator+(const AcGeVector2d& v) const { return AcGePoint2d(x + v.x, y + v.y); }
  AcGePoint2d operator-(const AcGeVector2d& v) const { return AcGePoint2d(x - v.x, y - v.y); }
  AcGeVector2d operator-(const AcGePoint2d& p) const { return AcGeVector2d(x - p.x, y - p.y); }
  AcGePoint2d& operator+=(const AcGeVector2d& v) { x += v.x; y += v.y; return *this; }
  AcGePoint2d& operator-=(const AcGeVector2d& v) { x -= v.x; y -= v.y; return *this; }
  AcGePoint2d operator*(double s) const { return AcGePoint2d(x * s, y * s); }
  AcGePoint2d operator/(double s) const { return AcGePoint2d(x / s, y / s); }
  bool operator==(const AcGePoint2d& p) const { return isEqualTo(p); }
  bool operator!=(const AcGePoint2d& p) const { return !isEqualTo(p); }
  double operator[](int i) const { return i == 0 ? x : y; }
  double& operator[](int i) { return i == 0 ? x : y; }
  ///@}
};

/// s * p, coordinate-wise.
inline AcGePoint2d operator*(double s, const AcGePoint2d& p) { return p * s; }
