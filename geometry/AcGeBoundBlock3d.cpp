#include "kxrender/AcGeBoundBlock3d.h"

#include <algorithm>

#include "kxrender/AcGeMatrix3d.h"

AcGeBoundBlock3d::AcGeBoundBlock3d() : mMin(INFINITY, INFINITY, INFINITY), mMax(-INFINITY, -INFINITY, -INFINITY) {}

AcGeBoundBlock3d& AcGeBoundBlock3d::set(const AcGePoint3d& p1, const AcGePoint3d& p2) {
  mMin.set(std::min(p1.x, p2.x), std::min(p1.y, p2.y), std::min(p1.z, p2.z));
  mMax.set(std::max(p1.x, p2.x), std::max(p1.y, p2.y), std::max(p1.z, p2.z));
  return *this;
}

AcGeBoundBlock3d& AcGeBoundBlock3d::extend(const AcGePoint3d& pnt) {
  for (int i = 0; i < 3; ++i) {
    if (std::isnan(pnt[i])) continue;  // a NaN coordinate bounds nothing
    mMin[i] = std::min(mMin[i], pnt[i]);
    mMax[i] = std::max(mMax[i], pnt[i]);
  }
  return *this;
}

AcGeBoundBlock3d& AcGeBoundBlock3d::extend(const AcGeBoundBlock3d& other) {
  if (other.isEmpty()) return *this;
  return extend(other.mMin).extend(other.mMax);
}

AcGeBoundBlock3d& AcGeBoundBlock3d::swell(double distance) {
  if (isEmpty() || !std::isfinite(distance)) return *this;
  mMin -= AcGeVector3d(distance, distance, distance);
  mMax += AcGeVector3d(distance, distance, distance);
  return *this;
}

bool AcGeBoundBlock3d::contains(const AcGePoint3d& pnt) const {
  return pnt.x >= mMin.x && pnt.x <= mMax.x && pnt.y >= mMin.y && pnt.y <= mMax.y && pnt.z >= mMin.z &&
         pnt.z <= mMax.z;
}

bool AcGeBoundBlock3d::isDisjoint(const AcGeBoundBlock3d& other) const {
  if (isEmpty() || other.isEmpty()) return true;
  for (int i = 0; i < 3; ++i)
    if (mMax[i] < other.mMin[i] || other.mMax[i] < mMin[i]) return true;
  return false;
}

bool AcGeBoundBlock3d::isOn(const AcGePoint3d& pnt, const AcGeTol& tol) const {
  AcGeBoundBlock3d grown(*this);
  return grown.swell(tol.equalPoint()).contains(pnt);
}

AcGeBoundBlock3d& AcGeBoundBlock3d::transformBy(const AcGeMatrix3d& mat) {
  if (isEmpty()) return *this;
  AcGeBoundBlock3d out;
  for (int c = 0; c < 8; ++c) {
    AcGePoint3d corner((c & 1) ? mMax.x : mMin.x, (c & 2) ? mMax.y : mMin.y, (c & 4) ? mMax.z : mMin.z);
    out.extend(mat * corner);
  }
  return *this = out;
}
