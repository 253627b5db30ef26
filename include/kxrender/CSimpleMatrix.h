#pragma once
// A small instance transform applied before a render object draws its
// instanced shapes: a full matrix, a z move, a z move with z scale, or a
// translation.
#include <vector>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/Export.h"

class KXRENDER_API CSimpleMatrix {
 public:
  enum Kind { kNone = 0, kFull = 1, kZMove = 2, kZMoveZScale = 3, kTranslate = 4 };

  void setFullMatrix(const AcGeMatrix3d& m);
  void setZMove(float dz);
  void setZMoveAndZScale(float dz, float sz);
  void setTranslate(float x, float y, float z);

  // Multiplies the current GL matrix by this transform.
  void MultOpenGLMatrix() const;
  // The same transform as MultOpenGLMatrix applies, as a matrix.
  AcGeMatrix3d GetAcgeMatrix() const;

  int getKind() const { return m_kind; }
  const std::vector<float>& getValues() const { return m_values; }

 private:
  int m_kind = kNone;
  std::vector<float> m_values;
};
