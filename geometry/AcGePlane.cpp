#include "kxrender/AcGePlane.h"

#include "kxrender/AcGeLinearEnt3d.h"
#include "kxrender/AcGeMatrix3d.h"

void AcGePlanarEnt::setFrame(const AcGePoint3d& origin, const AcGeVector3d& normal) {
  mOrigin = origin;
  mNormal = normal.normal();
  if (mNormal.lengthSqrd() == 0.0) {
    mUAxis = mVAxis = AcGeVector3d();
    return;
  }
  // Arbitrary axis rule: cross with world Y for near-vertical normals, with
  // world Z otherwise. The XY plane thus keeps the world axes.
  mUAxis = mNormal.perpVector();
  mVAxis = mNormal.crossProduct(mUAxis);
}

void AcGePlanarEnt::setFrame(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) {
  mOrigin = origin;
  mNormal = uAxis.crossProduct(vAxis).normal();
  if (mNormal.lengthSqrd() == 0.0) {
    mUAxis = mVAxis = AcGeVector3d();
    return;
  }
  mUAxis = uAxis.normal();
  mVAxis = mNormal.crossProduct(mUAxis);
}

void AcGePlanarEnt::getCoefficients(double& a, double& b, double& c, double& d) const {
  a = mNormal.x;
  b = mNormal.y;
  c = mNormal.z;
  d = -mNormal.dotProduct(mOrigin.asVector());
}

bool AcGePlanarEnt::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  return isValid() && std::fabs(signedDistanceTo(pnt)) <= tol.equalPoint();
}

bool AcGePlanarEnt::intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& pnt, const AcGeTol& tol) const {
  return line.intersectWith(*this, pnt, tol);
}

bool AcGePlanarEnt::isParallelTo(const AcGePlanarEnt& other, const AcGeTol& tol) const {
  return mNormal.isParallelTo(other.mNormal, tol);
}

bool AcGePlanarEnt::isCoplanarTo(const AcGePlanarEnt& other, const AcGeTol& tol) const {
  return isParallelTo(other, tol) && isOn(other.mOrigin, tol);
}

AcGePlanarEnt& AcGePlanarEnt::transformBy(const AcGeMatrix3d& mat) {
  AcGePoint3d o = mOrigin;
  AcGePoint3d pu = mOrigin + mUAxis, pv = mOrigin + mVAxis;
  o.transformBy(mat);
  pu.transformBy(mat);
  pv.transformBy(mat);
  setFrame(o, pu - o, pv - o);
  return *this;
}

AcGePlane& AcGePlane::set(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3) {
  setFrame(p1, p2 - p1, p3 - p1);
  return *this;
}

AcGePlane& AcGePlane::set(double a, double b, double c, double d) {
  AcGeVector3d n(a, b, c);
  double len2 = n.lengthSqrd();
  if (!(len2 > 0.0) || !std::isfinite(len2) || !std::isfinite(d)) {
    setFrame(AcGePoint3d(), AcGeVector3d());
    return *this;
  }
  // The point of the plane nearest the world origin.
  setFrame(AcGePoint3d() + n * (-d / len2), n);
  return *this;
}
