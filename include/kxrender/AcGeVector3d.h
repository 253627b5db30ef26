#pragma once
#include <cmath>

#include "kxrender/AcGeContext.h"
#include "kxrender/Export.h"

class AcGeMatrix3d;

/// Direction and displacement in space.
class KXRENDER_API AcGeVector3d {
public:
  ///@{
  /// Components.
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  ///@}

  ///@{
  /// The zero vector, or (xx, yy, zz).
  constexpr AcGeVector3d() = default;
  constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
  ///@}

  /// kIdentity is the zero vector: callers pass it as "no direction".
  static const AcGeVector3d kIdentity;
  ///@{
  /// Unit vectors along the axes.
  static const AcGeVector3d kXAxis;
  static const AcGeVector3d kYAxis;
  static const AcGeVector3d kZAxis;
  ///@}

  AcGeVector3d& set(double xx, double yy, double zz) { x = xx; y = yy; z = zz; return *this; }  ///< Sets the components.

  ///@{
  /// Length and squared length.
  double length() const { return std::sqrt(x * x + y * y + z * z); }
  double lengthSqrd() const { return x * x + y * y + z * z; }
  ///@}
  double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }  ///< Scalar product.
  /// Right-handed: this x v.
  AcGeVector3d crossProduct(const AcGeVector3d& v) const {
    return AcGeVector3d(y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x);
  }
  /// Unsigned angle in [0, pi]; atan2 keeps small and near-pi angles accurate.
  double angleTo(const AcGeVector3d& v) const {
    return std::atan2(crossProduct(v).length(), dotProduct(v));
  }
  /// Angle from this to v counter-clockwise about reference, in [0, 2*pi).
  double angleTo(const AcGeVector3d& v, const AcGeVector3d& reference) const {
    double a = angleTo(v);
    if (crossProduct(v).dotProduct(reference) < 0.0) a = 2.0 * M_PI - a;
    return a >= 2.0 * M_PI ? 0.0 : a;
  }

  /// Unit vector in the same direction; a vector no longer than equalVector
  /// (or not finite) gives the zero vector.
  AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const;
  ///@{
  /// In place: normal(tol), or the opposite vector.
  AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol) { return *this = normal(tol); }
  AcGeVector3d& negate() { x = -x; y = -y; z = -z; return *this; }
  ///@}
  /// Some unit vector perpendicular to this one (zero for the zero vector).
  AcGeVector3d perpVector() const;

  /// Rotation by ang radians about axis, right-hand rule. A zero axis leaves
  /// the vector unchanged.
  AcGeVector3d& rotateBy(double ang, const AcGeVector3d& axis);
  /// Applies the linear 3x3 part of the matrix; translation is ignored.
  AcGeVector3d& transformBy(const AcGeMatrix3d& mat);

  ///@{
  /// Comparisons within tol.equalVector (lengths) or its angle equivalent
  /// (directions); the zero vector is parallel and perpendicular to nothing.
  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const { return length() <= tol.equalVector(); }
  bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const {
    return std::fabs(length() - 1.0) <= tol.equalVector();
  }
  bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isParallelTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
  ///@}

  ///@{
  /// Component-wise arithmetic; == compares with isEqualTo; [0], [1], [2] are
  /// x, y, z (other indices give z).
  AcGeVector3d operator+(const AcGeVector3d& v) const { return AcGeVector3d(x + v.x, y + v.y, z + v.z); }
  AcGeVector3d operator-(const AcGeVector3d& v) const { return AcGeVector3d(x - v.x, y - v.y, z - v.z); }
  AcGeVector3d operator-() const { return AcGeVector3d(-x, -y, -z); }
  AcGeVector3d operator*(double s) const { return AcGeVector3d(x * s, y * s, z * s); }
  AcGeVector3d operator/(double s) const { return AcGeVector3d(x / s, y / s, z / s); }
  AcGeVector3d& operator+=(const AcGeVector3d& v) { x += v.x; y += v.y; z += v.z; return *this; }
  AcGeVector3d& operator-=(const AcGeVector3d& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
  AcGeVector3d& operator*=(double s) { x *= s; y *= s; z *= s; return *this; }
  AcGeVector3d& operator/=(double s) { x /= s; y /= s; z /= s; return *this; }
  bool operator==(const AcGeVector3d& v) const { return isEqualTo(v); }
  bool operator!=(const AcGeVector3d& v) const { return !isEqualTo(v); }
  double operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
  double& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
  ///@}
};

/// s * v.
inline AcGeVector3d operator*(double s, const AcGeVector3d& v) { return v * s; }
