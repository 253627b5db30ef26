#pragma once
#include "kxrender/AcGe.h"
#include "kxrender/AcGeContext.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/Export.h"

class AcGeMatrix3d;

/// Common base of the 3D geometry entities: kind query and rigid operations.
/// Entities hold their data by value; the virtual interface needs no heap.
class KXRENDER_API AcGeEntity3d {
public:
  virtual ~AcGeEntity3d() = default;  ///< Entities are deleted through the base.

  virtual AcGe::EntityId type() const = 0;  ///< The entity's kind.
  /// True when this entity is of kind id or derives from it.
  virtual bool isKindOf(AcGe::EntityId id) const { return id == AcGe::kEntity3d; }
  virtual AcGeEntity3d& transformBy(const AcGeMatrix3d& mat) = 0;  ///< Applies mat to the entity in place; returns it.
  /// A heap copy of the same kind; the caller owns it.
  virtual AcGeEntity3d* copy() const = 0;
  /// The point lies on the entity within tol.equalPoint.
  virtual bool isOn(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const = 0;

protected:
  ///@{
  /// Only derived entities are created and copied.
  AcGeEntity3d() = default;
  AcGeEntity3d(const AcGeEntity3d&) = default;
  AcGeEntity3d& operator=(const AcGeEntity3d&) = default;
  ///@}
};
