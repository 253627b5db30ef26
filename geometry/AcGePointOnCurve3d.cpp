#include "kxrender/AcGePointOnCurve3d.h"

#include "kxrender/AcGeCurve3d.h"
#include "kxrender/AcGeMatrix3d.h"

AcGePointOnCurve3d& AcGePointOnCurve3d::setParameter(double param) {
  mParam = param;
  mHasParam = true;
  if (mCurve) mPoint = mCurve->evalPoint(param);
  return *this;
}

AcGePointOnCurve3d& AcGePointOnCurve3d::transformBy(const AcGeMatrix3d& mat) {
  mPoint.transformBy(mat);
  return *this;
}
