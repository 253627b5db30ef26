#pragma once
#include "kxrender/Win32Types.h"

/// A window pixel position: origin at the top left, y down.
class CPoint : public POINT {
 public:
  ///@{
  /// (0, 0), (px, py), or a copy of p.
  CPoint() : POINT{0, 0} {}
  CPoint(int px, int py) : POINT{px, py} {}
  CPoint(const POINT& p) : POINT(p) {}
  ///@}
  ///@{
  /// Setting, offsetting, comparing, adding and subtracting positions.
  void SetPoint(int px, int py) {
    x = px;
    y = py;
  }
  void Offset(int dx, int dy) {
    x += dx;
    y += dy;
  }
  bool operator==(const CPoint& o) const { return x == o.x && y == o.y; }
  bool operator!=(const CPoint& o) const { return !(*this == o); }
  CPoint operator+(const CPoint& o) const { return CPoint(x + o.x, y + o.y); }
  CPoint operator-(const CPoint& o) const { return CPoint(x - o.x, y - o.y); }
  CPoint operator-() const { return CPoint(-x, -y); }
  CPoint& operator+=(const CPoint& o) {
    x += o.x;
    y += o.y;
    return *this;
  }
  CPoint& operator-=(const CPoint& o) {
    x -= o.x;
    y -= o.y;
    return *this;
  }
  ///@}
};
