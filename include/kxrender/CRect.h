#pragma once
#include "kxrender/CPoint.h"
#include "kxrender/CSize.h"

/// A window rectangle; right and bottom lie just outside it, as on Windows.
class CRect : public RECT {
 public:
  ///@{
  /// An empty rectangle at the origin, or the given edges.
  CRect() : RECT{0, 0, 0, 0} {}
  CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
  CRect(const RECT& r) : RECT(r) {}
  CRect(const CPoint& topLeft, const CPoint& bottomRight)
      : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}
  ///@}

  ///@{
  /// Sizes, corners and centre.
  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
  CSize Size() const { return CSize(Width(), Height()); }
  CPoint TopLeft() const { return CPoint(left, top); }
  CPoint BottomRight() const { return CPoint(right, bottom); }
  CPoint CenterPoint() const { return CPoint((left + right) / 2, (top + bottom) / 2); }
  ///@}
  ///@{
  /// Empty: no area; null: all four edges 0.
  bool IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
  bool IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
  ///@}
  /// Inside means left <= x < right and top <= y < bottom.
  bool PtInRect(const POINT& p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
  ///@{
  /// Replaces the edges.
  void SetRect(int l, int t, int r, int b) { *this = CRect(l, t, r, b); }
  void SetRectEmpty() { *this = CRect(); }
  ///@}
  /// Swaps edges so that left <= right and top <= bottom.
  void NormalizeRect() {
    if (left > right) swap(left, right);
    if (top > bottom) swap(top, bottom);
  }
  ///@{
  /// Moves the rectangle, or grows it by dx and dy on each side.
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
  ///@}
  ///@{
  /// All four edges compared.
  bool operator==(const CRect& o) const {
    return left == o.left && top == o.top && right == o.right && bottom == o.bottom;
  }
  bool operator!=(const CRect& o) const { return !(*this == o); }
  ///@}

 private:
  template <typename T>
  static void swap(T& a, T& b) {
    T t = a;
    a = b;
    b = t;
  }
};
