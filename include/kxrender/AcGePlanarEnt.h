#pragma once
#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGeSurface.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

class AcGeLinearEnt3d;

/// A flat surface: origin, unit normal and two unit in-plane axes forming a
/// right-handed frame (uAxis x vAxis = normal).
class KXRENDER_API AcGePlanarEnt : public AcGeSurface {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kPlanarEnt || AcGeSurface::isKindOf(id); }

  ///@{
  /// Unit normal, and the origin of the plane's frame.
  AcGeVector3d normal() const { return mNormal; }
  AcGePoint3d pointOnPlane() const { return mOrigin; }
  ///@}
  /// The plane's frame: origin and in-plane unit axes.
  void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& uAxis, AcGeVector3d& vAxis) const {
    origin = mOrigin; uAxis = mUAxis; vAxis = mVAxis;
  }
  /// a*x + b*y + c*z + d = 0 with (a, b, c) of unit length.
  void getCoefficients(double& a, double& b, double& c, double& d) const;
  /// A plane with a zero normal (from degenerate input) has no points.
  bool isValid() const { return mNormal.lengthSqrd() > 0.0; }

  double signedDistanceTo(const AcGePoint3d& pnt) const { return mNormal.dotProduct(pnt - mOrigin); }  ///< Distance from the plane, positive on the normal's side.
  AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& = AcGeContext::gTol) const override {
    return pnt - mNormal * signedDistanceTo(pnt);
  }
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  /// The point of a line, ray or segment (within its extent) on this plane.
  /// False when they are parallel, the entity lies in the plane, or it misses.
  bool intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const;
  ///@{
  /// Normals parallel within tol; coplanar: parallel and one origin on the other plane.
  bool isParallelTo(const AcGePlanarEnt& other, const AcGeTol& tol = AcGeContext::gTol) const;
  bool isCoplanarTo(const AcGePlanarEnt& other, const AcGeTol& tol = AcGeContext::gTol) const;
  ///@}

  /// Plane coordinates (along uAxis, vAxis) of a point, and back.
  AcGePoint2d paramOf(const AcGePoint3d& pnt) const {
    AcGeVector3d d = pnt - mOrigin;
    return AcGePoint2d(d.dotProduct(mUAxis), d.dotProduct(mVAxis));
  }
  AcGePoint3d evalPoint(const AcGePoint2d& param) const { return mOrigin + mUAxis * param.x + mVAxis * param.y; }  ///< See paramOf.

  AcGePlanarEnt& transformBy(const AcGeMatrix3d& mat) override;

protected:
  AcGePlanarEnt() = default;
  /// Frame from an origin and normal; the in-plane axes follow the arbitrary
  /// axis rule so that the same normal always gives the same axes.
  void setFrame(const AcGePoint3d& origin, const AcGeVector3d& normal);
  void setFrame(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis);  ///< Frame from an origin and two in-plane axes; normal uAxis x vAxis.

  AcGePoint3d mOrigin;  ///< Frame origin.
  AcGeVector3d mNormal{0.0, 0.0, 1.0};  ///< Unit normal.
  ///@{
  /// In-plane unit axes.
  AcGeVector3d mUAxis{1.0, 0.0, 0.0};
  AcGeVector3d mVAxis{0.0, 1.0, 0.0};
  ///@}
};
