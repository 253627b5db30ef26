#include "objects/ObjectSearchTree.h"

#include <algorithm>
#include <cmath>

#include "kxrender/CRenderObject.h"

namespace {

const uint32_t kLeafSize = 8;
const uint32_t kUnindexed = 0xFFFFFFFFu;

void widen(CObjectSearchTree::Box& a, const CObjectSearchTree::Box& b) {
  for (int k = 0; k < 3; ++k) {
    a.min[k] = std::min(a.min[k], b.min[k]);
    a.max[k] = std::max(a.max[k], b.max[k]);
  }
}

bool meetsXY(const CObjectSearchTree::Box& b, double x0, double y0, double x1, double y1) {
  return b.max[0] >= x0 && b.min[0] <= x1 && b.max[1] >= y0 && b.min[1] <= y1;
}

bool insideXY(const CObjectSearchTree::Box& b, double x0, double y0, double x1, double y1) {
  return b.min[0] >= x0 && b.max[0] <= x1 && b.min[1] >= y0 && b.max[1] <= y1;
}

// 0: wholly outside one plane; 1: crosses; 2: wholly inside every plane.
int classify(const CObjectSearchTree::Box& b, const std::vector<std::vector<double>>& planes) {
  int result = 2;
  for (const std::vector<double>& p : planes) {
    if (p.size() < 4) continue;
    // The corner farthest along the normal decides "outside", the nearest
    // one "inside".
    double far = p[3], near = p[3];
    for (int k = 0; k < 3; ++k) {
      const double hi = p[k] * b.max[k], lo = p[k] * b.min[k];
      far += std::max(hi, lo);
      near += std::min(hi, lo);
    }
    if (far < 0.0) return 0;
    if (near < 0.0) result = 1;
  }
  return result;
}

}  // namespace

bool CObjectSearchTree::boxOf(const CRenderObject* obj, Box& box) {
  const AcGePoint3d& lo = obj->ptMin();
  const AcGePoint3d& hi = obj->ptMax();
  const double v[6] = {lo.x, lo.y, lo.z, hi.x, hi.y, hi.z};
  for (double d : v)
    if (!std::isfinite(d)) return false;
  for (int k = 0; k < 3; ++k) {
    box.min[k] = std::min(v[k], v[k + 3]);
    box.max[k] = std::max(v[k], v[k + 3]);
  }
  return true;
}

void CObjectSearchTree::clear() {
  m_entries.clear();
  m_nodes.clear();
  m_pending.clear();
  m_where.clear();
  m_places.clear();
  m_freePlaces.clear();
  m_tombstones = 0;
}

void CObjectSearchTree::insert(CRenderObject* obj) {
  if (!obj) return;
  // An object without a finite box is known (so remove works) but never
  // found, and stays out of the tree where it would upset the ordering.
  const auto placed = m_where.try_emplace(obj, 0u);
  if (!placed.second) return;
  uint32_t handle = static_cast<uint32_t>(m_places.size());
  if (m_freePlaces.empty()) {
    m_places.push_back(Where{false, kUnindexed});
  } else {
    handle = m_freePlaces.back();
    m_freePlaces.pop_back();
    m_places[handle] = Where{false, kUnindexed};
  }
  placed.first->second = handle;
  Entry e{};
  if (!boxOf(obj, e.box)) return;
  e.obj = obj;
  e.handle = handle;
  m_places[handle] = Where{true, static_cast<uint32_t>(m_pending.size())};
  m_pending.push_back(e);
}

void CObjectSearchTree::remove(CRenderObject* obj) {
  auto it = m_where.find(obj);
  if (it == m_where.end()) return;
  const uint32_t handle = it->second;
  const Where w = m_places[handle];
  m_where.erase(it);
  m_freePlaces.push_back(handle);
  if (w.index == kUnindexed) return;
  if (w.pending) {
    // Swap the last pending entry into the hole.
    const Entry last = m_pending.back();
    m_pending.pop_back();
    if (w.index < m_pending.size()) {
      m_pending[w.index] = last;
      m_places[last.handle].index = w.index;
    }
  } else {
    m_entries[w.index].obj = nullptr;
    ++m_tombstones;
  }
}

void CObjectSearchTree::update(CRenderObject* obj) {
  if (!obj || !m_where.count(obj)) return;
  remove(obj);
  insert(obj);
}

void CObjectSearchTree::rebuildIfStale() const {
  const size_t n = m_entries.size();
  if (m_pending.size() > 64 + n / 16 || m_tombstones > 64 + n / 4) rebuild();
}

void CObjectSearchTree::rebuild() const {
  std::vector<Entry> live;
  live.reserve(m_entries.size() + m_pending.size());
  for (const Entry& e : m_entries)
    if (e.obj) live.push_back(e);
  live.insert(live.end(), m_pending.begin(), m_pending.end());
  m_entries.swap(live);
  m_pending.clear();
  m_tombstones = 0;
  m_nodes.clear();
  if (!m_entries.empty()) {
    m_nodes.reserve(2 * m_entries.size() / kLeafSize + 1);
    build(0, static_cast<uint32_t>(m_entries.size()));
  }
  for (uint32_t i = 0; i < m_entries.size(); ++i) m_places[m_entries[i].handle] = Where{false, i};
}

uint32_t CObjectSearchTree::build(uint32_t first, uint32_t count) const {
  const uint32_t index = static_cast<uint32_t>(m_nodes.size());
  m_nodes.push_back(Node{});
  Box box = m_entries[first].box;
  for (uint32_t i = first + 1; i < first + count; ++i) widen(box, m_entries[i].box);
  m_nodes[index].box = box;
  m_nodes[index].first = first;
  m_nodes[index].count = count;
  m_nodes[index].right = 0;
  if (count <= kLeafSize) return index;
  // Split at the median centre along the longest axis.
  int axis = 0;
  double longest = -1.0;
  for (int k = 0; k < 3; ++k) {
    const double len = box.max[k] - box.min[k];
    if (len > longest) longest = len, axis = k;
  }
  const uint32_t half = count / 2;
  std::nth_element(m_entries.begin() + first, m_entries.begin() + first + half, m_entries.begin() + first + count,
                   [axis](const Entry& a, const Entry& b) {
                     return a.box.min[axis] + a.box.max[axis] < b.box.min[axis] + b.box.max[axis];
                   });
  build(first, half);
  const uint32_t right = build(first + half, count - half);
  m_nodes[index].right = right;
  return index;
}

template <class Classify>
void CObjectSearchTree::walk(Classify classifyBox, std::vector<CRenderObject*>& out,
                             std::vector<uint32_t>* slots) const {
  rebuildIfStale();
  if (!m_nodes.empty()) {
    uint32_t stack[64];
    int top = 0;
    stack[top++] = 0;
    while (top > 0) {
      const Node& node = m_nodes[stack[--top]];
      const int c = classifyBox(node.box);
      if (c == 0) continue;
      const bool all = c == 2;
      if (all || node.right == 0) {
        for (uint32_t i = node.first; i < node.first + node.count; ++i) {
          const Entry& e = m_entries[i];
          if (!e.obj || !(all || classifyBox(e.box) != 0)) continue;
          out.push_back(e.obj);
          if (slots) slots->push_back(i);
        }
        continue;
      }
      // Depth is bounded by log2 of the entry count: median splits.
      stack[top++] = node.right;
      stack[top++] = static_cast<uint32_t>(&node - m_nodes.data()) + 1;
    }
  }
  for (const Entry& e : m_pending)
    if (classifyBox(e.box) != 0) {
      out.push_back(e.obj);
      if (slots) slots->push_back(kNoSlot);
    }
}

void CObjectSearchTree::queryXY(double x0, double y0, double x1, double y1, std::vector<CRenderObject*>& out) const {
  if (x0 > x1) std::swap(x0, x1);
  if (y0 > y1) std::swap(y0, y1);
  walk(
      [&](const Box& b) {
        if (!meetsXY(b, x0, y0, x1, y1)) return 0;
        return insideXY(b, x0, y0, x1, y1) ? 2 : 1;
      },
      out);
}

void CObjectSearchTree::queryPlanes(const std::vector<std::vector<double>>& planes,
                                    std::vector<CRenderObject*>& out, std::vector<uint32_t>* slots) const {
  walk([&](const Box& b) { return classify(b, planes); }, out, slots);
}
