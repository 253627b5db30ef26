#pragma once
#include "kxrender/AcGePlanarEnt.h"
#include "kxrender/Export.h"

/// Unbounded plane.
class KXRENDER_API AcGePlane : public AcGePlanarEnt {
public:
  /// The XY plane.
  AcGePlane() = default;
  AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal) { set(origin, normal); }  ///< Through origin with this normal.
  /// Through three points: origin p1, normal (p2 - p1) x (p3 - p1).
  AcGePlane(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3) { set(p1, p2, p3); }
  /// Origin and two in-plane axes; normal uAxis x vAxis.
  AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) { set(origin, uAxis, vAxis); }
  /// a*x + b*y + c*z + d = 0.
  AcGePlane(double a, double b, double c, double d) { set(a, b, c, d); }
  ///@{
  /// Copies.
  AcGePlane(const AcGePlane&) = default;
  AcGePlane& operator=(const AcGePlane&) = default;
  ///@}

  ///@{
  /// The coordinate planes through the origin.
  static const AcGePlane kXYPlane;
  static const AcGePlane kYZPlane;
  static const AcGePlane kZXPlane;
  ///@}

  AcGe::EntityId type() const override { return AcGe::kPlane; }
  AcGeEntity3d* copy() const override { return new AcGePlane(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kPlane || AcGePlanarEnt::isKindOf(id); }

  /// Replaces the plane as the matching constructor makes it.
  AcGePlane& set(const AcGePoint3d& origin, const AcGeVector3d& normal) { setFrame(origin, normal); return *this; }
  ///@{
  /// See the matching constructor.
  AcGePlane& set(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3);
  AcGePlane& set(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) {
    setFrame(origin, uAxis, vAxis);
    return *this;
  }
  AcGePlane& set(double a, double b, double c, double d);
  ///@}
};
