#pragma once
#include "kxrender/AcGe.h"
#include "kxrender/AcGeContext.h"
#include "kxrender/AcGePoint2d.h"
#include "kxrender/Export.h"

/// Common base of the 2D geometry entities.
class KXRENDER_API AcGeEntity2d {
public:
  virtual ~AcGeEntity2d() = default;  ///< Entities are deleted through the base.

  virtual AcGe::EntityId type() const = 0;  ///< The entity's kind.
  virtual bool isKindOf(AcGe::EntityId id) const { return id == AcGe::kEntity2d; }  ///< True when this entity is of kind id or derives from it.
  virtual bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const = 0;  ///< The point lies on the entity within tol.equalPoint.

protected:
  ///@{
  /// Only derived entities are created and copied.
  AcGeEntity2d() = default;
  AcGeEntity2d(const AcGeEntity2d&) = default;
  AcGeEntity2d& operator=(const AcGeEntity2d&) = default;
  ///@}
};
