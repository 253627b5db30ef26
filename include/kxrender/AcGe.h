#pragma once
// Entity kinds reported by type(). The values only need to be distinct; the
// engine compares them against the named kinds.
/// Geometry library names outside the classes.
namespace AcGe {
/// Entity kinds reported by type(); the values are only distinct.
enum EntityId {
  kEntity2d,
  kEntity3d,
  kPointEnt3d,
  kPointOnCurve3d,
  kBoundBlock3d,
  kCurveCurveInt3d,
  kSurface,
  kPlanarEnt,
  kPlane,
  kCurve3d,
  kLinearEnt3d,
  kLine3d,
  kLineSeg3d,
  kRay3d,
  kCircArc3d,
  kEllipArc3d,
  kSplineEnt3d,
  kNurbCurve3d,
  kCurve2d,
  kLinearEnt2d,
  kLine2d,
  kLineSeg2d,
  kRay2d,
  kCircArc2d
};
}  // namespace AcGe
