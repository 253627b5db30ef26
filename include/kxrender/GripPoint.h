#pragma once
#include "kxrender/CPoint.h"

class CRenderObject;

// A grip shown in the current frame: the object it belongs to, where it is
// on the screen, and its index among the object's grips.
struct GripPoint {
  CRenderObject* obj = nullptr;
  CPoint pt;
  int index = 0;
};
