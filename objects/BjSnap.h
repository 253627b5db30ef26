#pragma once
// The snap index: every snap node of a set (an object's snap points, its
// exact snap points placed under each of its instance matrices, and the
// set's assist points) in a two-dimensional tree over x and y, so that the
// nodes around the cursor are found in time that follows how many are
// found, not the size of the model.
//
// Changes are only marked (an id, or the assist points); refresh() reads
// the marked objects again, and keeps them in a short list beside the
// tree with their old tree nodes skipped, until that list grows past a
// fraction of the whole and the tree is rebuilt. Marking never reads the
// object, so an object may be marked while it is being deleted.
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kxrender/AcGePoint3d.h"

class CObjectSetMgr;
class CRenderObject;

struct CSnapNode {
  AcGePoint3d pt;
  unsigned objId;  // the owner; not meaningful for an assist point
  bool assist;
};

class CBjSnap {
 public:
  // Past a share of the whole, the next refresh rebuilds anyway: a model
  // being loaded then costs no set of its ids.
  void markDirty(unsigned id) {
    if (m_rebuild) return;
    m_dirty.insert(id);
    if (m_dirty.size() > 64 + m_inTree.size() / 8) {
      m_rebuild = true;
      m_dirty.clear();
    }
  }
  void markAssistDirty() { m_assistDirty = true; }
  // Everything is read again at the next refresh.
  void markAll() { m_rebuild = true; }
  void clear();
  // Folds the marked changes in, reading the objects and assist points of set.
  void refresh(const CObjectSetMgr& set);
  // Nodes whose x and y lie in the rectangle (corners in any order, edges
  // included); appended to out. Call refresh first.
  void query(double x0, double y0, double x1, double y1, std::vector<CSnapNode>& out) const;
  // Live nodes: in the tree and not replaced, plus the pending ones.
  size_t size() const;

  // The nodes of one object as it is drawn: snap points, and exact snap
  // points under each instance matrix (none without one); appended to out.
  static void nodesOf(const CRenderObject& obj, std::vector<CSnapNode>& out);

 private:
  typedef uint64_t Key;  // an object id, or kAssistKey
  static constexpr Key kAssistKey = Key(1) << 32;
  static Key keyOf(const CSnapNode& n) { return n.assist ? kAssistKey : n.objId; }

  void rebuild(const CObjectSetMgr& set);
  void replace(Key key, std::vector<CSnapNode>&& nodes);
  void build(size_t lo, size_t hi, int axis);
  void search(size_t lo, size_t hi, int axis, const double box[4], std::vector<CSnapNode>& out) const;

  std::vector<CSnapNode> m_tree;                              // implicit tree: median of each range splits it
  std::unordered_map<Key, size_t> m_inTree;                   // node count per owner in the tree
  std::unordered_set<Key> m_replaced;                         // owners whose tree nodes are out of date
  size_t m_replacedNodes = 0;                                 // tree nodes they hold
  std::unordered_map<Key, std::vector<CSnapNode>> m_pending;  // their current nodes
  size_t m_pendingNodes = 0;
  std::unordered_set<unsigned> m_dirty;
  bool m_assistDirty = false;
  bool m_rebuild = true;
};
