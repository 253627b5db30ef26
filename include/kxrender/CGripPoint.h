#pragma once
// A grip of a render object: a position and a direction. Its index in the
// object's grip list identifies it to the scene.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/Export.h"

/// A grip of a render object: a position (world units) and a direction. Its
/// index in the object's grip list identifies it to the scene.
class KXRENDER_API CGripPoint {
 public:
  ///@{
  /// At the origin with a zero direction, or at pos along dir.
  CGripPoint() = default;
  CGripPoint(const AcGePoint3d& pos, const AcGeVector3d& dir) : m_pos(pos), m_dir(dir) {}
  ///@}
  ///@{
  /// Position and direction.
  const AcGePoint3d& getPos() const { return m_pos; }
  void setPos(const AcGePoint3d& p) { m_pos = p; }
  const AcGeVector3d& getDir() const { return m_dir; }
  void setDir(const AcGeVector3d& d) { m_dir = d; }
  ///@}

 private:
  AcGePoint3d m_pos;
  AcGeVector3d m_dir;
};
