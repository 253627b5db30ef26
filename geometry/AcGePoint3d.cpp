#include "kxrender/AcGePoint3d.h"

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlane.h"

AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& m) {
  return *this = m * *this;
}

AcGePoint3d& AcGePoint3d::rotateBy(double ang, const AcGeVector3d& axis, const AcGePoint3d& center) {
  AcGeVector3d v = (*this - center).rotateBy(ang, axis);
  return *this = center + v;
}

AcGePoint3d AcGePoint3d::project(const AcGePlane& plane, const AcGeVector3d& dir) const {
  AcGeVector3d n = plane.normal();
  double denom = n.dotProduct(dir);
  double dist = plane.signedDistanceTo(*this);
  double t = -dist / denom;
  if (!plane.isValid() || denom == 0.0 || !std::isfinite(t)) return *this;
  return *this + dir * t;
}

AcGePoint3d AcGePoint3d::orthoProject(const AcGePlane& plane) const {
  if (!plane.isValid()) return *this;
  return plane.closestPointTo(*this);
}
