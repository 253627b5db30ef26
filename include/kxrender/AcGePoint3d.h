#pragma once
#include <cmath>

#include "kxrender/AcGeContext.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

class AcGeMatrix3d;
class AcGePlane;

/// Position in space. Exactly three contiguous doubles: arrays of points are
/// handed to OpenGL as flat coordinate arrays.
class KXRENDER_API AcGePoint3d {
public:
  ///@{
  /// Coordinates, world units.
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  ///@}

  ///@{
  /// The origin, or (xx, yy, zz).
  constexpr AcGePoint3d() = default;
  constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
  ///@}

  static const AcGePoint3d kOrigin;  ///< (0, 0, 0).

  AcGePoint3d& set(double xx, double yy, double zz) { x = xx; y = yy; z = zz; return *this; }  ///< Sets the coordinates.
  AcGeVector3d asVector() const { return AcGeVector3d(x, y, z); }  ///< The vector from the origin to this point.

  /// Distance to p.
  double distanceTo(const AcGePoint3d& p) const {
    double dx = x - p.x, dy = y - p.y, dz = z - p.z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
  }
  /// True when within tol.equalPoint of p.
  bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }

  /// p := M * p with w = 1.
  AcGePoint3d& transformBy(const AcGeMatrix3d& mat);
  /// p := origin + factor * (p - origin).
  AcGePoint3d& scaleBy(double factor, const AcGePoint3d& origin = kOrigin) {
    x = origin.x + factor * (x - origin.x);
    y = origin.y + factor * (y - origin.y);
    z = origin.z + factor * (z - origin.z);
    return *this;
  }
  AcGePoint3d& rotateBy(double ang, const AcGeVector3d& axis, const AcGePoint3d& center = kOrigin);  ///< Rotation by ang radians about axis through center, right-hand rule.
  /// Parallel projection along dir onto the plane. When dir is parallel to the
  /// plane (or zero) there is no such point and the point itself is returned.
  AcGePoint3d project(const AcGePlane& plane, const AcGeVector3d& dir) const;
  /// Foot of the perpendicular on the plane.
  AcGePoint3d orthoProject(const AcGePlane& plane) const;

  ///@{
  /// Point plus or minus vector, point minus point (a vector), scaling of the
  /// coordinates; == compares with isEqualTo; [0], [1], [2] are x, y, z.
  AcGePoint3d operator+(const AcGeVector3d& v) const { return AcGePoint3d(x + v.x, y + v.y, z + v.z); }
  AcGePoint3d operator-(const AcGeVector3d& v) const { return AcGePoint3d(x - v.x, y - v.y, z - v.z); }
  AcGeVector3d operator-(const AcGePoint3d& p) const { return AcGeVector3d(x - p.x, y - p.y, z - p.z); }
  AcGePoint3d& operator+=(const AcGeVector3d& v) { x += v.x; y += v.y; z += v.z; return *this; }
  AcGePoint3d& operator-=(const AcGeVector3d& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
  AcGePoint3d operator*(double s) const { return AcGePoint3d(x * s, y * s, z * s); }
  AcGePoint3d operator/(double s) const { return AcGePoint3d(x / s, y / s, z / s); }
  bool operator==(const AcGePoint3d& p) const { return isEqualTo(p); }
  bool operator!=(const AcGePoint3d& p) const { return !isEqualTo(p); }
  double operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
  double& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
  ///@}
};

/// s * p, coordinate-wise.
inline AcGePoint3d operator*(double s, const AcGePoint3d& p) { return p * s; }
