// Feet of perpendiculars and midpoints of curves.
#include <algorithm>
#include <cmath>

#include "RenderSysUtilsTol.h"
#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeEllipArc3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/CRenderSysUtils.h"

using kxgeom::pointTol;

bool CRenderSysUtils::DroopPoint(const AcGePoint3d& p, const AcGePoint3d& ref, const AcGeCurve3d* curve,
                                 AcGePoint3d& foot, double tol) {
  if (!curve) return false;
  AcGeTol t = pointTol(tol);
  AcGePoint3d from = p;
  bool isCircle = curve->type() == AcGe::kCircArc3d;
  if (isCircle || curve->type() == AcGe::kEllipArc3d) {
    // A perpendicular onto a planar arc is taken within its plane.
    AcGePoint3d center = isCircle ? static_cast<const AcGeCircArc3d*>(curve)->center()
                                  : static_cast<const AcGeEllipArc3d*>(curve)->center();
    AcGeVector3d normal = isCircle ? static_cast<const AcGeCircArc3d*>(curve)->normal()
                                   : static_cast<const AcGeEllipArc3d*>(curve)->normal();
    AcGePlane plane(center, normal);
    if (!plane.isValid()) return false;
    from = p.orthoProject(plane);
    // From the center of a circle every radius is perpendicular.
    if (isCircle && from.isEqualTo(center, t) && static_cast<const AcGeCircArc3d*>(curve)->radius() != 0.0) {
      foot = curve->closestPointTo(ref, t);
      return true;
    }
  }
  // The parameter of ref is the guess that picks among several feet.
  AcGePointOnCurve3d poc(*curve, curve->paramOf(ref, t));
  if (!curve->getNormalPoint(from, poc, t)) return false;
  foot = poc.point();
  return true;
}

AcGePoint3d CRenderSysUtils::getCurveMidPoint(const AcGeCurve3d* curve) {
  AcGePoint3d start, end;
  if (!curve || !curve->hasStartPoint(start) || !curve->hasEndPoint(end)) return AcGePoint3d::kOrigin;
  AcGeTol t = pointTol(PRECISION);
  double p0 = curve->paramOf(start, t), p1 = curve->paramOf(end, t);
  if (curve->type() == AcGe::kEllipArc3d) {
    double half = curve->length(p0, p1, t) / 2.0;
    return curve->evalPoint(curve->paramAtLength(p0, half, true, t));
  }
  // The middle parameter, which on a curve of varying speed is not the
  // middle by length.
  return curve->evalPoint(std::min(p0, p1) + std::fabs(p1 - p0) / 2.0);
}
