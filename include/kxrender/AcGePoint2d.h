#pragma once
#include <cmath>

#include "kxrender/AcGeContext.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/Export.h"

/// Position in the plane.
class KXRENDER_API AcGePoint2d {
public:
  double x = 0.0;
  double y = 0.0;

  constexpr AcGePoint2d() = default;
  constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}

  static const AcGePoint2d kOrigin;

  AcGePoint2d& set(double xx, double yy) { x = xx; y = yy; return *this; }
  AcGeVector2d asVector() const { return AcGeVector2d(x, y); }

  double distanceTo(const AcGePoint2d& p) const { return std::hypot(x - p.x, y - p.y); }
  bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  AcGePoint2d& scaleBy(double factor, const AcGePoint2d& origin = kOrigin) {
    x = origin.x + factor * (x - origin.x);
    y = origin.y + factor * (y - origin.y);
    return *this;
  }
  AcGePoint2d& rotateBy(double ang, const AcGePoint2d& center = kOrigin) {
    AcGeVector2d v = (*this - center).rotateBy(ang);
    return *this = center + v;
  }

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
};

inline AcGePoint2d operator*(double s, const AcGePoint2d& p) { return p * s; }
