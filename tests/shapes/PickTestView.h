#pragma once
// A fixed orthographic view for rectangle-selection tests: x, y in -10..10
// onto a 200 x 200 viewport, so world (x, y) is pixel (100 + 10 x,
// 100 - 10 y); depth -100..100.
#include "kxrender/CRect.h"
#include "shapes/PickVolume.h"

namespace picktest {
inline CPickVolume::ViewData view() {
  const double mv[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  const double pr[16] = {0.1, 0, 0, 0, 0, 0.1, 0, 0, 0, 0, -0.01, 0, 0, 0, 0, 1};
  const int vp[4] = {0, 0, 200, 200};
  return CPickVolume::makeViewData(mv, pr, vp);
}
// The pixel rectangle of world x0..x1, y0..y1.
inline CRect px(double x0, double y0, double x1, double y1) {
  return CRect(int(100 + 10 * x0), int(100 - 10 * y1), int(100 + 10 * x1), int(100 - 10 * y0));
}
}  // namespace picktest
