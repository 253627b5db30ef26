#pragma once
#include "kxrender/CPoint.h"
#include "kxrender/CSize.h"

/// A window rectangle; right and bottom lie just outside it, as on Windows.
class CRect : public RECT {
 public:
  CRect() : RECT{0, 0, 0, 0} {}
  CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
  CRect(const RECT& r) : RECT(r) {}
  CRect(const CPoint& topLeft, const CPoint& bottomRight)
      : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
  CSize Size() const { return CSize(Width(), Height()); }
  CPoint TopLeft() const { return CPoint(left, top); }
  CPoint BottomRight() const { return CPoint(right, bottom); }
  CPoint CenterPoint() const { return CPoint((left + right) / 2, (top + bottom) / 2); }
  bool IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
  bool IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
  /// Inside means left <= x < right and top <= y < bottom.
  bool PtInRect(const POINT& p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
  void SetRect(int l, int t, int r, int b) { *this = CRect(l, t, r, b); }
  void SetRectEmpty() { *this = CRect(); }
  void NormalizeRect() {
    if (left > right) swap(left, right);
    if (top > bottom) swap(top, bottom);
  }
  void OffsetRect(int dx, int dy) {
    left += dx;
    right += dx;
    top += dy;
    bottom += dy;
  }
  void InflateRect(int dx, int dy) {
    left -= dx;
    right += dx;
    top -= dy;
    bottom += dy;
  }
  bool operator==(const CRect& o) const {
    return left == o.left && top == o.top && right == o.right && bottom == o.bottom;
  }
  bool operator!=(const CRect& o) const { return !(*this == o); }

 private:
  template <typename T>
  static void swap(T& a, T& b) {
    T t = a;
    a = b;
    b = t;
  }
};
