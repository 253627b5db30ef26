#include "kxrender/AcGeMatrix3d.h"

#include <algorithm>
#include <utility>

#include "kxrender/AcGePlane.h"

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& m) const {
  AcGeMatrix3d r;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      double s = 0.0;
      for (int k = 0; k < 4; ++k) s += entry[i][k] * m.entry[k][j];
      r.entry[i][j] = s;
    }
  return r;
}

AcGePoint3d operator*(const AcGeMatrix3d& m, const AcGePoint3d& p) {
  const double (*e)[4] = m.entry;
  double x = e[0][0] * p.x + e[0][1] * p.y + e[0][2] * p.z + e[0][3];
  double y = e[1][0] * p.x + e[1][1] * p.y + e[1][2] * p.z + e[1][3];
  double z = e[2][0] * p.x + e[2][1] * p.y + e[2][2] * p.z + e[2][3];
  double w = e[3][0] * p.x + e[3][1] * p.y + e[3][2] * p.z + e[3][3];
  // Affine matrices (the usual case) have w == 1; only projective ones divide.
  if (w != 1.0 && w != 0.0) { x /= w; y /= w; z /= w; }
  return AcGePoint3d(x, y, z);
}

AcGeVector3d operator*(const AcGeMatrix3d& m, const AcGeVector3d& v) {
  AcGeVector3d r(v);
  return r.transformBy(m);
}

bool AcGeMatrix3d::inverse(AcGeMatrix3d& result) const {
  // Gauss-Jordan with partial pivoting on [A | I].
  double a[4][8];
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) {
      if (!std::isfinite(entry[r][c])) return false;
      a[r][c] = entry[r][c];
      a[r][c + 4] = (r == c) ? 1.0 : 0.0;
    }
  for (int col = 0; col < 4; ++col) {
    int pivot = col;
    for (int r = col + 1; r < 4; ++r)
      if (std::fabs(a[r][col]) > std::fabs(a[pivot][col])) pivot = r;
    if (a[pivot][col] == 0.0) return false;
    if (pivot != col)
      for (int c = 0; c < 8; ++c) std::swap(a[pivot][c], a[col][c]);
    double inv = 1.0 / a[col][col];
    for (int c = 0; c < 8; ++c) a[col][c] *= inv;
    for (int r = 0; r < 4; ++r) {
      if (r == col || a[r][col] == 0.0) continue;
      double f = a[r][col];
      for (int c = 0; c < 8; ++c) a[r][c] -= f * a[col][c];
    }
  }
  AcGeMatrix3d out;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) {
      if (!std::isfinite(a[r][c + 4])) return false;
      out.entry[r][c] = a[r][c + 4];
    }
  result = out;
  return true;
}

AcGeMatrix3d AcGeMatrix3d::inverse() const {
  AcGeMatrix3d r;
  if (!inverse(r)) r.setToIdentity();
  return r;
}

AcGeMatrix3d& AcGeMatrix3d::transposeIt() {
  for (int r = 0; r < 4; ++r)
    for (int c = r + 1; c < 4; ++c) std::swap(entry[r][c], entry[c][r]);
  return *this;
}

double AcGeMatrix3d::det() const {
  // Elimination with partial pivoting; the sign follows the row swaps.
  double a[4][4];
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) a[r][c] = entry[r][c];
  double d = 1.0;
  for (int col = 0; col < 4; ++col) {
    int pivot = col;
    for (int r = col + 1; r < 4; ++r)
      if (std::fabs(a[r][col]) > std::fabs(a[pivot][col])) pivot = r;
    if (a[pivot][col] == 0.0) return 0.0;
    if (pivot != col) {
      for (int c = 0; c < 4; ++c) std::swap(a[pivot][c], a[col][c]);
      d = -d;
    }
    d *= a[col][col];
    for (int r = col + 1; r < 4; ++r) {
      double f = a[r][col] / a[col][col];
      for (int c = col; c < 4; ++c) a[r][c] -= f * a[col][c];
    }
  }
  return d;
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol) const {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) {
      // Translation entries are lengths; the rest are ratios.
      double limit = (c == 3 && r < 3) ? tol.equalPoint() : tol.equalVector();
      if (!(std::fabs(entry[r][c] - m.entry[r][c]) <= limit)) return false;
    }
  return true;
}

double AcGeMatrix3d::scale() const {
  double best = 0.0;
  for (int c = 0; c < 3; ++c) {
    double len = std::sqrt(entry[0][c] * entry[0][c] + entry[1][c] * entry[1][c] + entry[2][c] * entry[2][c]);
    best = std::max(best, len);
  }
  return best;
}

AcGeMatrix3d& AcGeMatrix3d::setToRotation(double ang, const AcGeVector3d& axis, const AcGePoint3d& center) {
  setToIdentity();
  AcGeVector3d k = axis.normal();
  if (k.lengthSqrd() == 0.0 || !std::isfinite(ang)) return *this;
  double c = std::cos(ang), s = std::sin(ang), t = 1.0 - c;
  entry[0][0] = t * k.x * k.x + c;       entry[0][1] = t * k.x * k.y - s * k.z; entry[0][2] = t * k.x * k.z + s * k.y;
  entry[1][0] = t * k.x * k.y + s * k.z; entry[1][1] = t * k.y * k.y + c;       entry[1][2] = t * k.y * k.z - s * k.x;
  entry[2][0] = t * k.x * k.z - s * k.y; entry[2][1] = t * k.y * k.z + s * k.x; entry[2][2] = t * k.z * k.z + c;
  // Keep the center fixed: t = c - R c.
  AcGeVector3d rc = AcGeVector3d(center.x, center.y, center.z).transformBy(*this);
  return setTranslation(AcGeVector3d(center.x - rc.x, center.y - rc.y, center.z - rc.z));
}

AcGeMatrix3d AcGeMatrix3d::rotation(double ang, const AcGeVector3d& axis, const AcGePoint3d& center) {
  AcGeMatrix3d m;
  return m.setToRotation(ang, axis, center);
}

AcGeMatrix3d& AcGeMatrix3d::setToScaling(double factor, const AcGePoint3d& center) {
  setToIdentity();
  for (int i = 0; i < 3; ++i) entry[i][i] = factor;
  return setTranslation(center.asVector() * (1.0 - factor));
}

AcGeMatrix3d AcGeMatrix3d::scaling(double factor, const AcGePoint3d& center) {
  AcGeMatrix3d m;
  return m.setToScaling(factor, center);
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePlane& plane) {
  setToIdentity();
  if (!plane.isValid()) return *this;
  // Householder reflection I - 2 n n^T about a plane through o.
  AcGeVector3d n = plane.normal();
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) entry[r][c] -= 2.0 * n[r] * n[c];
  double d = n.dotProduct(plane.pointOnPlane().asVector());
  return setTranslation(n * (2.0 * d));
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePoint3d& center) {
  setToScaling(-1.0, center);
  return *this;
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePlane& plane) {
  AcGeMatrix3d m;
  return m.setToMirroring(plane);
}

AcGeMatrix3d& AcGeMatrix3d::setCoordSystem(const AcGePoint3d& origin, const AcGeVector3d& xAxis,
                                           const AcGeVector3d& yAxis, const AcGeVector3d& zAxis) {
  setToIdentity();
  for (int r = 0; r < 3; ++r) {
    entry[r][0] = xAxis[r];
    entry[r][1] = yAxis[r];
    entry[r][2] = zAxis[r];
    entry[r][3] = origin[r];
  }
  return *this;
}

void AcGeMatrix3d::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& xAxis, AcGeVector3d& yAxis,
                                  AcGeVector3d& zAxis) const {
  for (int r = 0; r < 3; ++r) {
    xAxis[r] = entry[r][0];
    yAxis[r] = entry[r][1];
    zAxis[r] = entry[r][2];
    origin[r] = entry[r][3];
  }
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGePlane& plane) {
  AcGePoint3d o;
  AcGeVector3d u, v;
  plane.getCoordSystem(o, u, v);
  if (!plane.isValid()) return setToIdentity();
  return setCoordSystem(o, u, v, plane.normal());
}

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGePlane& plane) {
  AcGePoint3d o;
  AcGeVector3d u, v;
  plane.getCoordSystem(o, u, v);
  setToIdentity();
  if (!plane.isValid()) return *this;
  // The frame is orthonormal, so its inverse is its transpose.
  AcGeVector3d n = plane.normal();
  for (int c = 0; c < 3; ++c) {
    entry[0][c] = u[c];
    entry[1][c] = v[c];
    entry[2][c] = n[c];
  }
  AcGeVector3d ov = o.asVector();
  return setTranslation(AcGeVector3d(-u.dotProduct(ov), -v.dotProduct(ov), -n.dotProduct(ov)));
}

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGeVector3d& normal) {
  return setToWorldToPlane(AcGePlane(AcGePoint3d::kOrigin, normal));
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGeVector3d& normal) {
  return setToPlaneToWorld(AcGePlane(AcGePoint3d::kOrigin, normal));
}

AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGePlane& plane) {
  AcGeMatrix3d m;
  return m.setToWorldToPlane(plane);
}

AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGeVector3d& normal) {
  AcGeMatrix3d m;
  return m.setToWorldToPlane(normal);
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGePlane& plane) {
  AcGeMatrix3d m;
  return m.setToPlaneToWorld(plane);
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d& normal) {
  AcGeMatrix3d m;
  return m.setToPlaneToWorld(normal);
}

AcGeMatrix3d& AcGeMatrix3d::setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                               const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                               const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                               const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis) {
  // to-frame * inverse(from-frame); a degenerate from-frame gives identity.
  AcGeMatrix3d from, to, fromInv;
  from.setCoordSystem(fromOrigin, fromXAxis, fromYAxis, fromZAxis);
  to.setCoordSystem(toOrigin, toXAxis, toYAxis, toZAxis);
  if (!from.inverse(fromInv)) return setToIdentity();
  return *this = to * fromInv;
}

AcGeMatrix3d AcGeMatrix3d::alignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                         const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                         const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                         const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis) {
  AcGeMatrix3d m;
  return m.setToAlignCoordSys(fromOrigin, fromXAxis, fromYAxis, fromZAxis, toOrigin, toXAxis, toYAxis, toZAxis);
}
