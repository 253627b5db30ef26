#pragma once
#include "kxrender/AcGeEntity3d.h"
#include "kxrender/Export.h"

/// Base of the surfaces; the engine only uses planes.
class KXRENDER_API AcGeSurface : public AcGeEntity3d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kSurface || AcGeEntity3d::isKindOf(id); }
  /// Nearest point of the surface.
  virtual AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const = 0;
  /// Distance from pnt to the surface.
  double distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const {
    return closestPointTo(pnt, tol).distanceTo(pnt);
  }
};
