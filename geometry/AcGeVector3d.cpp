#include "kxrender/AcGeVector3d.h"

#include <algorithm>

#include "kxrender/AcGeMatrix3d.h"

AcGeVector3d AcGeVector3d::normal(const AcGeTol& tol) const {
  double len = length();
  if (std::isinf(len)) {
    // Finite components whose squares overflow: rescale before measuring.
    double big = std::max({std::fabs(x), std::fabs(y), std::fabs(z)});
    if (!std::isfinite(big)) return AcGeVector3d();
    AcGeVector3d scaled = *this / big;
    return scaled / scaled.length();
  }
  if (!(len > tol.equalVector())) return AcGeVector3d();  // zero, tiny or NaN
  return AcGeVector3d(x / len, y / len, z / len);
}

AcGeVector3d AcGeVector3d::perpVector() const {
  AcGeVector3d n = normal();
  if (n.lengthSqrd() == 0.0) return AcGeVector3d();
  // Cross with the world axis least aligned with the vector.
  const double limit = 1.0 / 64.0;
  AcGeVector3d axis = (std::fabs(n.x) < limit && std::fabs(n.y) < limit) ? kYAxis : kZAxis;
  return axis.crossProduct(n).normal();
}

AcGeVector3d& AcGeVector3d::rotateBy(double ang, const AcGeVector3d& axis) {
  AcGeVector3d k = axis.normal();
  if (k.lengthSqrd() == 0.0) return *this;
  // Rodrigues: v cos + (k x v) sin + k (k . v)(1 - cos).
  double c = std::cos(ang), s = std::sin(ang);
  AcGeVector3d v = *this;
  *this = v * c + k.crossProduct(v) * s + k * (k.dotProduct(v) * (1.0 - c));
  return *this;
}

AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& m) {
  const double (*e)[4] = m.entry;
  return set(e[0][0] * x + e[0][1] * y + e[0][2] * z,
             e[1][0] * x + e[1][1] * y + e[1][2] * z,
             e[2][0] * x + e[2][1] * y + e[2][2] * z);
}

bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol) const {
  AcGeVector3d a = normal(tol), b = v.normal(tol);
  if (a.lengthSqrd() == 0.0 || b.lengthSqrd() == 0.0) return false;
  return (a - b).length() <= tol.equalVector();
}

bool AcGeVector3d::isParallelTo(const AcGeVector3d& v, const AcGeTol& tol) const {
  AcGeVector3d a = normal(tol), b = v.normal(tol);
  if (a.lengthSqrd() == 0.0 || b.lengthSqrd() == 0.0) return false;
  return a.crossProduct(b).length() <= tol.equalVector();
}

bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol) const {
  AcGeVector3d a = normal(tol), b = v.normal(tol);
  if (a.lengthSqrd() == 0.0 || b.lengthSqrd() == 0.0) return false;
  return std::fabs(a.dotProduct(b)) <= tol.equalVector();
}
