#pragma once
#include "kxrender/AcGeEntity3d.h"
#include "kxrender/Export.h"

/// Base of the point entities.
class KXRENDER_API AcGePointEnt3d : public AcGeEntity3d {
public:
  bool isKindOf(AcGe::EntityId id) const override { return id == AcGe::kPointEnt3d || AcGeEntity3d::isKindOf(id); }
  virtual AcGePoint3d point3d() const = 0;  ///< The point.
  bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override {
    return point3d().isEqualTo(pnt, tol);
  }
};
