#pragma once
// The object pass of retained drawing: while a scope is open, objects too
// small on screen queue their point instead of drawing it, and the scope
// draws them all in one glBegin/glEnd when it closes; objects may replay
// lean lists, which assume the pass's depth range.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/CColor.h"

class CSceneMgr;

namespace kxretained {

class ObjectPassScope {
 public:
  explicit ObjectPassScope(const CSceneMgr* scene);
  ~ObjectPassScope();
  ObjectPassScope(const ObjectPassScope&) = delete;
  ObjectPassScope& operator=(const ObjectPassScope&) = delete;

 private:
  bool m_on = false;
};

// Whether a scope is open (retained drawing on, no shadow passes).
bool inObjectPass();
// False when no batch is open: the caller draws the point itself.
bool queuePoint(const CColor& color, const AcGePoint3d& centre);

}  // namespace kxretained
