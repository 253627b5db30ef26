// The snap index of a set: a two-dimensional tree of snap nodes with a
// short list of objects changed since it was built.
#include "objects/BjSnap.h"

#include <algorithm>
#include <cmath>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"

namespace {

const size_t kLeaf = 8;

double coord(const CSnapNode& n, int axis) { return axis == 0 ? n.pt.x : n.pt.y; }

bool finite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

void push(const AcGePoint3d& p, unsigned id, bool assist, std::vector<CSnapNode>& out) {
  // A point that is not finite has no place in the tree and cannot be seen.
  if (finite(p)) out.push_back(CSnapNode{p, id, assist});
}

}  // namespace

void CBjSnap::nodesOf(const CRenderObject& obj, std::vector<CSnapNode>& out) {
  const unsigned id = obj.getId();
  for (const AcGePoint3d& p : obj.getSnapPoints()) push(p, id, false, out);
  if (obj.getSnapPointsExa().empty()) return;
  for (const CSimpleMatrix* m : obj.getSmpMat()) {
    if (!m) continue;
    const AcGeMatrix3d place = m->GetAcgeMatrix();
    for (const AcGePoint3d& p : obj.getSnapPointsExa()) push(place * p, id, false, out);
  }
}

void CBjSnap::clear() {
  m_tree.clear();
  m_inTree.clear();
  m_replaced.clear();
  m_replacedNodes = 0;
  m_pending.clear();
  m_pendingNodes = 0;
  m_dirty.clear();
  m_assistDirty = false;
  m_rebuild = true;
}

void CBjSnap::refresh(const CObjectSetMgr& set) {
  // Many changes at once (a model loaded, snap data derived for all): one
  // build is cheaper than as many replacements.
  if (m_rebuild || m_dirty.size() > 64 + m_inTree.size() / 8) {
    rebuild(set);
    return;
  }
  std::vector<CSnapNode> nodes;
  for (unsigned id : m_dirty) {
    nodes.clear();
    if (const CRenderObject* obj = set.getObj(id)) nodesOf(*obj, nodes);
    replace(id, std::move(nodes));
    nodes = std::vector<CSnapNode>();
  }
  m_dirty.clear();
  if (m_assistDirty) {
    std::vector<std::pair<int, AcGePoint3d>> assist;
    set.getAssistPts(assist);
    nodes.clear();
    for (const auto& a : assist) push(a.second, 0, true, nodes);
    replace(kAssistKey, std::move(nodes));
    m_assistDirty = false;
  }
  // Queries scan the pending list and step over replaced nodes: keep both
  // a small part of the whole.
  if (m_pendingNodes + m_replacedNodes > 256 + m_tree.size() / 64) rebuild(set);
}

void CBjSnap::replace(Key key, std::vector<CSnapNode>&& nodes) {
  auto in = m_inTree.find(key);
  if (in != m_inTree.end() && m_replaced.insert(key).second) m_replacedNodes += in->second;
  auto old = m_pending.find(key);
  if (old != m_pending.end()) {
    m_pendingNodes -= old->second.size();
    m_pending.erase(old);
  }
  m_pendingNodes += nodes.size();
  // An owner without nodes still has its tree nodes replaced (by none).
  if (!nodes.empty()) m_pending.emplace(key, std::move(nodes));
}

void CBjSnap::rebuild(const CObjectSetMgr& set) {
  clear();
  m_rebuild = false;
  for (const auto& kv : set.objects())
    if (kv.second) nodesOf(*kv.second, m_tree);
  std::vector<std::pair<int, AcGePoint3d>> assist;
  set.getAssistPts(assist);
  for (const auto& a : assist) push(a.second, 0, true, m_tree);
  for (const CSnapNode& n : m_tree) ++m_inTree[keyOf(n)];
  build(0, m_tree.size(), 0);
}

void CBjSnap::build(size_t lo, size_t hi, int axis) {
  if (hi - lo <= kLeaf) return;
  const size_t mid = lo + (hi - lo) / 2;
  std::nth_element(m_tree.begin() + lo, m_tree.begin() + mid, m_tree.begin() + hi,
                   [axis](const CSnapNode& a, const CSnapNode& b) { return coord(a, axis) < coord(b, axis); });
  build(lo, mid, 1 - axis);
  build(mid + 1, hi, 1 - axis);
}

void CBjSnap::search(size_t lo, size_t hi, int axis, const double box[4], std::vector<CSnapNode>& out) const {
  auto take = [&](const CSnapNode& n) {
    if (n.pt.x < box[0] || n.pt.x > box[2] || n.pt.y < box[1] || n.pt.y > box[3]) return;
    if (!m_replaced.empty() && m_replaced.count(keyOf(n))) return;
    out.push_back(n);
  };
  while (hi - lo > kLeaf) {
    const size_t mid = lo + (hi - lo) / 2;
    const double split = coord(m_tree[mid], axis);
    take(m_tree[mid]);
    const bool left = box[axis] <= split, right = box[axis + 2] >= split;
    if (left && right) search(lo, mid, 1 - axis, box, out);
    if (right) {
      lo = mid + 1;
    } else if (left) {
      hi = mid;
    } else {
      return;
    }
    axis = 1 - axis;
  }
  for (size_t i = lo; i < hi; ++i) take(m_tree[i]);
}

void CBjSnap::query(double x0, double y0, double x1, double y1, std::vector<CSnapNode>& out) const {
  const double box[4] = {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
  if (!(box[0] <= box[2] && box[1] <= box[3])) return;  // NaN corners find nothing
  search(0, m_tree.size(), 0, box, out);
  for (const auto& kv : m_pending)
    for (const CSnapNode& n : kv.second)
      if (n.pt.x >= box[0] && n.pt.x <= box[2] && n.pt.y >= box[1] && n.pt.y <= box[3]) out.push_back(n);
}

size_t CBjSnap::size() const { return m_tree.size() - m_replacedNodes + m_pendingNodes; }
