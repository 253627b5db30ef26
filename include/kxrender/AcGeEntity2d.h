#pragma once
#include "kxrender/AcGe.h"
#include "kxrender/AcGeContext.h"
#include "kxrender/AcGePoint2d.h"
#include "kxrender/Export.h"

/// Common base of the 2D geometry entities.
class KXRENDER_API AcGeEntity2d {
public:
  virtual ~AcGeEntity2d() = default;

  virtual AcGe::EntityId type() const = 0;
  virtual bool isKindOf(AcGe::EntityId id) const { return id == AcGe::kEntity2d; }
  virtual bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const = 0;

protected:
  AcGeEntity2d() = default;
  AcGeEntity2d(const AcGeEntity2d&) = default;
  AcGeEntity2d& operator=(const AcGeEntity2d&) = default;
};
