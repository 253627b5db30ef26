#pragma once
// The single-point batch of retained drawing: while a scope is open, objects
// too small on screen queue their point instead of drawing it, and the
// scope draws them all in one glBegin/glEnd when it closes.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/CColor.h"

class CSceneMgr;

namespace kxretained {

class PointBatchScope {
 public:
  explicit PointBatchScope(const CSceneMgr* scene);
  ~PointBatchScope();
  PointBatchScope(const PointBatchScope&) = delete;
  PointBatchScope& operator=(const PointBatchScope&) = delete;

 private:
  bool m_on = false;
};

// False when no batch is open: the caller draws the point itself.
bool queuePoint(const CColor& color, const AcGePoint3d& centre);

}  // namespace kxretained
