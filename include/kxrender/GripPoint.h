#pragma once
#include "kxrender/CPoint.h"

class CRenderObject;

/// A grip shown in the current frame: the object it belongs to, where it is
/// on the screen, and its index among the object's grips.
struct GripPoint {
  CRenderObject* obj = nullptr;  ///< The object (owned by its set).
  CPoint pt;  ///< Window pixel, top-left origin.
  int index = 0;  ///< Index in the object's gripPoint() list.
};
