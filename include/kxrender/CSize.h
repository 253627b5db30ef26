#pragma once
#include "kxrender/Win32Types.h"

/// A size or a movement in pixels (cx across, cy down).
class CSize : public SIZE {
 public:
  ///@{
  /// (0, 0) or (w, h); compared, added and subtracted member by member.
  CSize() : SIZE{0, 0} {}
  CSize(int w, int h) : SIZE{w, h} {}
  bool operator==(const CSize& o) const { return cx == o.cx && cy == o.cy; }
  bool operator!=(const CSize& o) const { return !(*this == o); }
  CSize operator+(const CSize& o) const { return CSize(cx + o.cx, cy + o.cy); }
  CSize operator-(const CSize& o) const { return CSize(cx - o.cx, cy - o.cy); }
  ///@}
};
