#pragma once
#include <cmath>

#include "kxrender/AcGeContext.h"
#include "kxrender/Export.h"

/// Direction and displacement in the plane.
class KXRENDER_API AcGeVector2d {
public:
  ///@{
  /// Components.
  double x = 0.0;
  double y = 0.0;
  ///@}

  ///@{
  /// The zero vector, or (xx, yy).
  constexpr AcGeVector2d() = default;
  constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}
  ///@}

  ///@{
  /// The zero vector and the unit axes.
  static const AcGeVector2d kIdentity;
  static const AcGeVector2d kXAxis;
  static const AcGeVector2d kYAxis;
  ///@}

  AcGeVector2d& set(double xx, double yy) { x = xx; y = yy; return *this; }  ///< Sets the components.

  ///@{
  /// Length, squared length, scalar product.
  double length() const { return std::sqrt(x * x + y * y); }
  double lengthSqrd() const { return x * x + y * y; }
  double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
  ///@}
  /// z component of the 3D cross product: positive when v lies counter-clockwise.
  double crossProduct(const AcGeVector2d& v) const { return x * v.y - y * v.x; }

  /// Counter-clockwise angle from the positive x axis, in [0, 2*pi).
  double angle() const {
    double a = std::atan2(y, x);
    if (a < 0.0) a += 2.0 * M_PI;
    if (a >= 2.0 * M_PI) a = 0.0;
    return a;
  }
  /// Unsigned angle between the two vectors, in [0, pi].
  double angleTo(const AcGeVector2d& v) const {
    return std::atan2(std::fabs(crossProduct(v)), dotProduct(v));
  }

  ///@{
  /// Unit vector (zero for a vector no longer than tol.equalVector), in place
  /// or not; the opposite vector.
  AcGeVector2d normal(const AcGeTol& tol = AcGeContext::gTol) const {
    double len = length();
    if (!(len > tol.equalVector()) || !std::isfinite(len)) return AcGeVector2d();
    return AcGeVector2d(x / len, y / len);
  }
  AcGeVector2d& normalize(const AcGeTol& tol = AcGeContext::gTol) { return *this = normal(tol); }
  AcGeVector2d& negate() { x = -x; y = -y; return *this; }
  ///@}
  AcGeVector2d perpVector() const { return AcGeVector2d(-y, x); }  ///< This vector turned a quarter counter-clockwise.
  /// Turns by ang radians counter-clockwise.
  AcGeVector2d& rotateBy(double ang) {
    double c = std::cos(ang), s = std::sin(ang);
    return set(c * x - s * y, s * x + c * y);
  }

  ///@{
  /// Comparisons within tol.
  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const { return length() <= tol.equalVector(); }
  bool isEqualTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool isParallelTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    AcGeVector2d a = normal(tol), b = v.normal(tol);
    if (a.isZeroLength() || b.isZeroLength()) return false;
    return std::fabs(a.crossProduct(b)) <= tol.equalVector();
  }
  bool isCodirectionalTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    AcGeVector2d a = normal(tol), b = v.normal(tol);
    if (a.isZeroLength() || b.isZeroLength()) return false;
    return (a - b).length() <= tol.equalVector();
  }
  ///@}

  ///@{
  /// Component-wise arithmetic; == compares with isEqualTo; [0] is x, else y.
  AcGeVector2d operator+(const AcGeVector2d& v) const { return AcGeVector2d(x + v.x, y + v.y); }
  AcGeVector2d operator-(const AcGeVector2d& v) const { return AcGeVector2d(x - v.x, y - v.y); }
  AcGeVector2d operator-() const { return AcGeVector2d(-x, -y); }
  AcGeVector2d operator*(double s) const { return AcGeVector2d(x * s, y * s); }
  AcGeVector2d operator/(double s) const { return AcGeVector2d(x / s, y / s); }
  AcGeVector2d& operator+=(const AcGeVector2d& v) { x += v.x; y += v.y; return *this; }
  AcGeVector2d& operator-=(const AcGeVector2d& v) { x -= v.x; y -= v.y; return *this; }
  AcGeVector2d& operator*=(double s) { x *= s; y *= s; return *this; }
  AcGeVector2d& operator/=(double s) { x /= s; y /= s; return *this; }
  bool operator==(const AcGeVector2d& v) const { return isEqualTo(v); }
  bool operator!=(const AcGeVector2d& v) const { return !isEqualTo(v); }
  double operator[](int i) const { return i == 0 ? x : y; }
  double& operator[](int i) { return i == 0 ? x : y; }
  ///@}
};

/// s * v.
inline AcGeVector2d operator*(double s, const AcGeVector2d& v) { return v * s; }
