#pragma once
#include "kxrender/AcGeEntity3d.h"
#include "kxrender/Export.h"

/// Axis-aligned box, the one box type of the engine. A default box is empty:
/// it holds no point, its minimum is +inf and its maximum -inf on every axis,
/// so that the first point it is extended by becomes the whole box. A box
/// with a NaN bound is unusable: isEmpty() is true for it.
class KXRENDER_API AcGeBoundBlock3d : public AcGeEntity3d {
public:
  AcGeBoundBlock3d();
  AcGeBoundBlock3d(const AcGePoint3d& p1, const AcGePoint3d& p2) { set(p1, p2); }  ///< The box spanned by two opposite corners, in either order.

  AcGe::EntityId type() const override { return AcGe::kBoundBlock3d; }
  AcGeEntity3d* copy() const override { return new AcGeBoundBlock3d(*this); }
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kBoundBlock3d || AcGeEntity3d::isKindOf(id); }

  /// The box spanned by two opposite corners, in any order.
  AcGeBoundBlock3d& set(const AcGePoint3d& p1, const AcGePoint3d& p2);
  /// Grows the box to hold pnt; a NaN coordinate bounds nothing and is
  /// skipped, while a NaN bound already in the box stays.
  AcGeBoundBlock3d& extend(const AcGePoint3d& pnt);
  /// Grows the box to hold other; an empty (or unusable) other adds nothing.
  AcGeBoundBlock3d& extend(const AcGeBoundBlock3d& other);
  AcGeBoundBlock3d& swell(double distance);  ///< Grows the box by distance on every side.
  void getMinMaxPoints(AcGePoint3d& minPoint, AcGePoint3d& maxPoint) const { minPoint = mMin; maxPoint = mMax; }  ///< The lower and upper corners.
  bool isEmpty() const { return !(mMin.x <= mMax.x && mMin.y <= mMax.y && mMin.z <= mMax.z); }  ///< True for a box with a lower corner above its upper one on some axis.
  bool contains(const AcGePoint3d& pnt) const;  ///< True when pnt lies in the box or on its faces.
  bool isDisjoint(const AcGeBoundBlock3d& other) const;  ///< True when the boxes share no point.
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  /// The box of the transformed corners.
  AcGeBoundBlock3d& transformBy(const AcGeMatrix3d& mat) override;

private:
  AcGePoint3d mMin;
  AcGePoint3d mMax;
};
