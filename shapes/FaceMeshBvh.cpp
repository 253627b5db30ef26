#include "shapes/FaceMeshBvh.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kxrender/CRenderSysUtils.h"

namespace {

const uint32_t kLeafSize = 4;

bool finite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// Entry distance of the ray into the box, or false when it misses. The
// box is padded a little so that a hit exactly on a triangle's edge, which
// the triangle test keeps, is never lost to rounding here.
bool enter(const CFaceMeshBvh::Box& b, const AcGePoint3d& o, const double inv[3], double& tEnter) {
  double lo = 0.0, hi = std::numeric_limits<double>::infinity();
  for (int k = 0; k < 3; ++k) {
    const double pad = 1e-9 * (1.0 + std::fabs(b.min[k]) + std::fabs(b.max[k]));
    double t0 = (b.min[k] - pad - o[k]) * inv[k], t1 = (b.max[k] + pad - o[k]) * inv[k];
    if (std::isnan(t0) || std::isnan(t1)) {
      // Ray parallel to this slab, starting on its boundary plane (0 * inf).
      if (o[k] < b.min[k] - pad || o[k] > b.max[k] + pad) return false;
      continue;
    }
    if (t0 > t1) std::swap(t0, t1);
    lo = std::max(lo, t0);
    hi = std::min(hi, t1);
    if (lo > hi) return false;
  }
  tEnter = lo;
  return true;
}

}  // namespace

CFaceMeshBvh::CFaceMeshBvh(const std::vector<AcGePoint3d>& vertices, const std::vector<int>& indices)
    : m_vertices(vertices) {
  const size_t n = vertices.size();
  m_tris.reserve(indices.size() / 3);
  for (size_t i = 0; i + 2 < indices.size(); i += 3) {
    std::array<uint32_t, 3> t;
    bool ok = true;
    for (int c = 0; c < 3 && ok; ++c) {
      const int v = indices[i + size_t(c)];
      ok = v >= 0 && size_t(v) < n && finite(vertices[size_t(v)]);
      t[size_t(c)] = static_cast<uint32_t>(v);
    }
    if (ok) m_tris.push_back(t);
  }
  if (m_tris.empty()) return;
  m_nodes.reserve(2 * m_tris.size() / kLeafSize + 2);
  build(0, static_cast<uint32_t>(m_tris.size()));
}

uint32_t CFaceMeshBvh::build(uint32_t first, uint32_t count) {
  const uint32_t index = static_cast<uint32_t>(m_nodes.size());
  Box box;
  for (int k = 0; k < 3; ++k) {
    box.min[k] = std::numeric_limits<double>::infinity();
    box.max[k] = -std::numeric_limits<double>::infinity();
  }
  for (uint32_t i = first; i < first + count; ++i)
    for (uint32_t v : m_tris[i]) {
      const AcGePoint3d& p = m_vertices[v];
      for (int k = 0; k < 3; ++k) {
        box.min[k] = std::min(box.min[k], p[k]);
        box.max[k] = std::max(box.max[k], p[k]);
      }
    }
  m_nodes.push_back(Node{box, first, count, 0});
  if (count <= kLeafSize) return index;
  int axis = 0;
  for (int k = 1; k < 3; ++k)
    if (box.max[k] - box.min[k] > box.max[axis] - box.min[axis]) axis = k;
  // Median split by box centre.
  const uint32_t half = count / 2;
  const auto begin = m_tris.begin() + first;
  std::nth_element(begin, begin + half, begin + count,
                   [this, axis](const std::array<uint32_t, 3>& a, const std::array<uint32_t, 3>& b) {
                     const auto c = [&](const std::array<uint32_t, 3>& t) {
                       const double x = m_vertices[t[0]][axis], y = m_vertices[t[1]][axis], z = m_vertices[t[2]][axis];
                       return std::min({x, y, z}) + std::max({x, y, z});
                     };
                     return c(a) < c(b);
                   });
  build(first, half);
  const uint32_t right = build(first + half, count - half);
  m_nodes[index].right = right;
  return index;
}

bool CFaceMeshBvh::nearestHit(const AcGePoint3d& origin, const AcGeVector3d& dir, AcGePoint3d& hit) const {
  if (m_nodes.empty() || !finite(origin) || !std::isfinite(dir.length()) || dir.isZeroLength()) return false;
  const double inv[3] = {1.0 / dir.x, 1.0 / dir.y, 1.0 / dir.z};
  const double len = dir.length();
  bool found = false;
  double best = std::numeric_limits<double>::infinity();  // distance from origin
  struct Item {
    uint32_t node;
    double t;
  };
  Item stack[64];
  int top = 0;
  double t0 = 0.0;
  if (!enter(m_nodes[0].box, origin, inv, t0)) return false;
  stack[top++] = Item{0, t0};
  while (top > 0) {
    const Item item = stack[--top];
    // Boxes are entered no later than any hit inside them: one that starts
    // beyond the best hit so far holds nothing nearer.
    if (item.t * len > best) continue;
    const Node& node = m_nodes[item.node];
    if (node.right == 0) {
      for (uint32_t i = node.first; i < node.first + node.count; ++i) {
        const std::array<uint32_t, 3>& t = m_tris[i];
        AcGePoint3d p;
        if (!CRenderSysUtils::rayIntersectWithTriangle(origin, dir, m_vertices[t[0]], m_vertices[t[1]],
                                                       m_vertices[t[2]], &p))
          continue;
        const double d = origin.distanceTo(p);
        if (d < best) {
          best = d;
          hit = p;
          found = true;
        }
      }
      continue;
    }
    const uint32_t left = item.node + 1, right = node.right;
    double tl = 0.0, tr = 0.0;
    const bool hl = enter(m_nodes[left].box, origin, inv, tl);
    const bool hr = enter(m_nodes[right].box, origin, inv, tr);
    // Push the farther child first so the nearer one is opened first.
    if (hl && hr && tl < tr) {
      stack[top++] = Item{right, tr};
      stack[top++] = Item{left, tl};
    } else {
      if (hl) stack[top++] = Item{left, tl};
      if (hr) stack[top++] = Item{right, tr};
    }
  }
  return found;
}
