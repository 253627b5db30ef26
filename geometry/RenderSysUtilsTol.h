#pragma once
#include "kxrender/AcGeTol.h"

namespace kxgeom {
// A default tolerance whose point tolerance is the caller's distance.
inline AcGeTol pointTol(double tol) {
  AcGeTol t;
  t.setEqualPoint(tol);
  return t;
}
}  // namespace kxgeom
