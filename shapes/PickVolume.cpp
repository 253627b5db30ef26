#include "shapes/PickVolume.h"

#include <algorithm>
#include <cmath>

namespace {

// Points on a plane within this distance (relative to the plane's offset)
// still count as inside: rectangle edges are included.
const double kSlack = 1e-9;

bool allFinite(const std::vector<double>& v, size_t n) {
  if (v.size() < n) return false;
  for (size_t i = 0; i < n; ++i)
    if (!std::isfinite(v[i])) return false;
  return true;
}

}  // namespace

CPickVolume::ViewData CPickVolume::makeViewData(const double* modelView, const double* projection,
                                                const int* viewport) {
  ViewData v(3);
  v[0].assign(modelView, modelView + 16);
  v[1].assign(projection, projection + 16);
  v[2] = {double(viewport[0]), double(viewport[1]), double(viewport[2]), double(viewport[3])};
  return v;
}

CPickVolume::CPickVolume(const CRect& rect, const ViewData& view, const AcGeMatrix3d* instance) {
  if (view.size() < 3 || !allFinite(view[0], 16) || !allFinite(view[1], 16) || !allFinite(view[2], 4)) return;
  const std::vector<double>& vp = view[2];
  if (!(vp[2] > 0.0) || !(vp[3] > 0.0)) return;
  // Clip matrix C = P * M (* instance), entry [row][col].
  double c[4][4];
  for (int r = 0; r < 4; ++r)
    for (int col = 0; col < 4; ++col) {
      double s = 0.0;
      for (int k = 0; k < 4; ++k) s += view[1][size_t(4 * k + r)] * view[0][size_t(4 * col + k)];
      c[r][col] = s;
    }
  if (instance) {
    double t[4][4];
    for (int r = 0; r < 4; ++r)
      for (int col = 0; col < 4; ++col) {
        double s = 0.0;
        for (int k = 0; k < 4; ++k) s += c[r][k] * instance->entry[k][col];
        t[r][col] = s;
      }
    std::copy(&t[0][0], &t[0][0] + 16, &c[0][0]);
  }
  const double left = std::min(rect.left, rect.right), right = std::max(rect.left, rect.right);
  const double top = std::min(rect.top, rect.bottom), bottom = std::max(rect.top, rect.bottom);
  // Window x to normalised device x; window rows grow downwards, GL's up.
  auto ndcX = [&](double x) { return 2.0 * (x - vp[0]) / vp[2] - 1.0; };
  auto ndcY = [&](double y) { return 2.0 * (vp[3] - y - vp[1]) / vp[3] - 1.0; };
  const double x0 = ndcX(left), x1 = ndcX(right), y0 = ndcY(bottom), y1 = ndcY(top);
  // Inside in clip space: x - x0 w >= 0, x1 w - x >= 0, likewise y, and
  // -w <= z <= w. Each is a row combination h . (C p).
  const double rows[6][4] = {{1, 0, 0, -x0}, {-1, 0, 0, x1}, {0, 1, 0, -y0},
                             {0, -1, 0, y1}, {0, 0, 1, 1},   {0, 0, -1, 1}};
  for (int p = 0; p < 6; ++p) {
    double h[4] = {0, 0, 0, 0};
    for (int col = 0; col < 4; ++col)
      for (int r = 0; r < 4; ++r) h[col] += rows[p][r] * c[r][col];
    const double len = std::sqrt(h[0] * h[0] + h[1] * h[1] + h[2] * h[2]);
    if (!(len > 0.0) || !std::isfinite(len)) return;
    for (double& v : h) v /= len;
    std::copy(h, h + 4, m_planes[p]);
  }
  AcGeMatrix3d clip, inv;
  for (int r = 0; r < 4; ++r)
    for (int col = 0; col < 4; ++col) clip.entry[r][col] = c[r][col];
  if (!clip.inverse(inv)) return;
  const double cx[4] = {x0, x1, x1, x0}, cy[4] = {y1, y1, y0, y0};
  for (int i = 0; i < 4; ++i)
    for (int depth = 0; depth < 2; ++depth) {
      const double q[4] = {cx[i], cy[i], depth ? 1.0 : -1.0, 1.0};
      double w[4] = {0, 0, 0, 0};
      for (int r = 0; r < 4; ++r)
        for (int k = 0; k < 4; ++k) w[r] += inv.entry[r][k] * q[k];
      if (!(std::fabs(w[3]) > 0.0)) return;
      (depth ? m_far : m_near)[i] = AcGePoint3d(w[0] / w[3], w[1] / w[3], w[2] / w[3]);
    }
  m_valid = true;
}

std::vector<std::vector<double>> CPickVolume::planes() const {
  std::vector<std::vector<double>> out;
  if (m_valid)
    for (const auto& h : m_planes) out.emplace_back(h, h + 4);
  return out;
}

bool CPickVolume::contains(const AcGePoint3d& p) const {
  if (!m_valid) return false;
  for (int i = 0; i < 6; ++i)
    if (!(side(i, p) >= -kSlack * (1.0 + std::fabs(m_planes[i][3])))) return false;
  return true;
}

bool CPickVolume::meetsSegment(const AcGePoint3d& a, const AcGePoint3d& b) const {
  if (!m_valid) return false;
  double t0 = 0.0, t1 = 1.0;
  for (int i = 0; i < 6; ++i) {
    const double slack = kSlack * (1.0 + std::fabs(m_planes[i][3]));
    const double da = side(i, a) + slack, db = side(i, b) + slack;
    if (std::isnan(da) || std::isnan(db)) return false;
    if (da < 0.0 && db < 0.0) return false;
    if (da < 0.0)
      t0 = std::max(t0, da / (da - db));
    else if (db < 0.0)
      t1 = std::min(t1, da / (da - db));
    if (t0 > t1) return false;
  }
  return true;
}

bool CPickVolume::meetsPolyline(const std::vector<AcGePoint3d>& pts, bool closed) const {
  if (pts.size() == 1) return contains(pts[0]);
  for (size_t i = 1; i < pts.size(); ++i)
    if (meetsSegment(pts[i - 1], pts[i])) return true;
  return closed && pts.size() > 2 && meetsSegment(pts.back(), pts.front());
}

bool CPickVolume::containsAll(const std::vector<AcGePoint3d>& pts) const {
  for (const AcGePoint3d& p : pts)
    if (!contains(p)) return false;
  return true;
}

int CPickVolume::classifyBox(const double min[3], const double max[3]) const {
  if (!m_valid) return 0;
  int result = 2;
  for (int i = 0; i < 6; ++i) {
    const double* h = m_planes[i];
    double far = h[3], near = h[3];
    for (int k = 0; k < 3; ++k) {
      const double hi = h[k] * max[k], lo = h[k] * min[k];
      far += std::max(hi, lo);
      near += std::min(hi, lo);
    }
    const double slack = kSlack * (1.0 + std::fabs(h[3]));
    if (!(far >= -slack)) return 0;  // NaN boxes are outside too
    if (!(near >= -slack)) result = 1;
  }
  return result;
}

int CPickVolume::classifyBox(const AcGePoint3d& min, const AcGePoint3d& max) const {
  const double lo[3] = {std::min(min.x, max.x), std::min(min.y, max.y), std::min(min.z, max.z)};
  const double hi[3] = {std::max(min.x, max.x), std::max(min.y, max.y), std::max(min.z, max.z)};
  return classifyBox(lo, hi);
}
