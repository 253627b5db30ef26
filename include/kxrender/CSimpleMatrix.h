#pragma once
// A small instance transform applied before a render object draws its
// instanced shapes: a full matrix, a z move, a z move with z scale, or a
// translation.
#include <vector>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/Export.h"

/// An instance transform of a render object: the object's exact shapes are
/// drawn once under each of its matrices. Lengths are world units.
class KXRENDER_API CSimpleMatrix {
 public:
  /// Which transform the values hold.
  enum Kind { kNone = 0, kFull = 1, kZMove = 2, kZMoveZScale = 3, kTranslate = 4 };

  ///@{
  /// Makes this a full matrix, a move along z, a move along z with a z scale,
  /// or a translation.
  void setFullMatrix(const AcGeMatrix3d& m);
  void setZMove(float dz);
  void setZMoveAndZScale(float dz, float sz);
  void setTranslate(float x, float y, float z);
  ///@}

  /// Multiplies the current GL matrix by this transform.
  void MultOpenGLMatrix() const;
  /// The same transform as MultOpenGLMatrix applies, as a matrix.
  AcGeMatrix3d GetAcgeMatrix() const;

  ///@{
  /// The kind and its values (16 for a full matrix, column-major; else the arguments).
  int getKind() const { return m_kind; }
  const std::vector<float>& getValues() const { return m_values; }
  ///@}

 private:
  int m_kind = kNone;
  std::vector<float> m_values;
};
