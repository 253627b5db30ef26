#pragma once
// Growing an axis-aligned box point by point; the first point sets it.
#include <algorithm>

#include "kxrender/AcGePoint3d.h"

namespace kxobjects {

inline void widen(AcGePoint3d& lo, AcGePoint3d& hi, const AcGePoint3d& p, bool& first) {
  if (first) {
    lo = hi = p;
    first = false;
    return;
  }
  lo.x = std::min(lo.x, p.x), lo.y = std::min(lo.y, p.y), lo.z = std::min(lo.z, p.z);
  hi.x = std::max(hi.x, p.x), hi.y = std::max(hi.y, p.y), hi.z = std::max(hi.z, p.z);
}

}  // namespace kxobjects
