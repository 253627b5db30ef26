#include "shapes/ContourCrossings.h"

#include <algorithm>
#include <cmath>

namespace {

struct Segment {
  double ax, ay, bx, by;
  size_t contour, index, count;  // to skip neighbours on the same contour
};

double cross(double ox, double oy, double ax, double ay, double bx, double by) {
  return (ax - ox) * (by - oy) - (ay - oy) * (bx - ox);
}

bool neighbours(const Segment& s, const Segment& t) {
  if (s.contour != t.contour) return false;
  const size_t d = s.index > t.index ? s.index - t.index : t.index - s.index;
  return d <= 1 || d == s.count - 1;
}

// The point where two segments cross properly (not at an end), if they do.
bool crossing(const Segment& s, const Segment& t, double& x, double& y) {
  const double d1 = cross(s.ax, s.ay, s.bx, s.by, t.ax, t.ay), d2 = cross(s.ax, s.ay, s.bx, s.by, t.bx, t.by);
  const double d3 = cross(t.ax, t.ay, t.bx, t.by, s.ax, s.ay), d4 = cross(t.ax, t.ay, t.bx, t.by, s.bx, s.by);
  if (!((d1 > 0 && d2 < 0) || (d1 < 0 && d2 > 0)) || !((d3 > 0 && d4 < 0) || (d3 < 0 && d4 > 0))) return false;
  const double u = d1 / (d1 - d2);
  x = t.ax + u * (t.bx - t.ax);
  y = t.ay + u * (t.by - t.ay);
  return true;
}

}  // namespace

bool contourCrossingsWithin(const std::vector<std::vector<AcGePoint3d>>& contours, size_t budget) {
  std::vector<Segment> segs;
  double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;
  for (size_t c = 0; c < contours.size(); ++c) {
    const std::vector<AcGePoint3d>& p = contours[c];
    for (size_t i = 0; i < p.size(); ++i) {
      const AcGePoint3d& a = p[i];
      const AcGePoint3d& b = p[(i + 1) % p.size()];
      segs.push_back({a.x, a.y, b.x, b.y, c, i, p.size()});
      x0 = std::min(x0, a.x), y0 = std::min(y0, a.y), x1 = std::max(x1, a.x), y1 = std::max(y1, a.y);
    }
  }
  if (segs.size() < 4 || !(x1 > x0) || !(y1 > y0)) return true;
  // A grid of about one cell per segment; each segment is entered in the
  // cells it passes through (sampled at half a cell), and a crossing is
  // counted in the cell that holds it, so only once.
  const size_t side = size_t(std::ceil(std::sqrt(double(segs.size()))));
  const double cw = (x1 - x0) / double(side), ch = (y1 - y0) / double(side);
  const auto cellOf = [&](double x, double y) {
    const size_t i = std::min(side - 1, size_t(std::max(0.0, (x - x0) / cw)));
    const size_t j = std::min(side - 1, size_t(std::max(0.0, (y - y0) / ch)));
    return j * side + i;
  };
  std::vector<std::vector<size_t>> cells(side * side);
  for (size_t k = 0; k < segs.size(); ++k) {
    const Segment& s = segs[k];
    const double steps = std::ceil(2.0 * std::max(std::fabs(s.bx - s.ax) / cw, std::fabs(s.by - s.ay) / ch));
    size_t last = size_t(-1);
    for (double n = 0; n <= steps; ++n) {
      const double u = steps > 0 ? n / steps : 0.0;
      const size_t cell = cellOf(s.ax + u * (s.bx - s.ax), s.ay + u * (s.by - s.ay));
      if (cell != last && (cells[cell].empty() || cells[cell].back() != k)) cells[cell].push_back(k);
      last = cell;
    }
  }
  size_t found = 0;
  for (size_t cell = 0; cell < cells.size(); ++cell) {
    const std::vector<size_t>& in = cells[cell];
    for (size_t a = 0; a < in.size(); ++a)
      for (size_t b = a + 1; b < in.size(); ++b) {
        double x, y;
        if (neighbours(segs[in[a]], segs[in[b]]) || !crossing(segs[in[a]], segs[in[b]], x, y)) continue;
        if (cellOf(x, y) == cell && ++found > budget) return false;
      }
  }
  return true;
}
