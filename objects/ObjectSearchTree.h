#pragma once
// Spatial index over the boxes of a set's render objects.
//
// A bounding-volume tree is bulk-built over all entries; objects inserted or
// moved since the last build wait in a short pending list that queries scan
// linearly, and removed objects leave a tombstone. The tree is rebuilt when
// either grows past a fraction of the whole, so adding a 100,000-object
// model costs one O(n log n) build at the first query, and editing a few
// objects costs nothing until then.
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

class CRenderObject;

class CObjectSearchTree {
 public:
  struct Box {
    double min[3];
    double max[3];
  };

  void clear();
  void insert(CRenderObject* obj);
  void remove(CRenderObject* obj);
  // Re-reads the object's box.
  void update(CRenderObject* obj);
  size_t size() const { return m_where.size(); }

  // Objects whose boxes meet the XY rectangle (z ignored); appended to out.
  void queryXY(double x0, double y0, double x1, double y1, std::vector<CRenderObject*>& out) const;
  // Objects whose boxes are not wholly outside one of the planes (a, b, c,
  // d; a point is inside when a*x + b*y + c*z + d >= 0); appended to out.
  // With slots, each object's place in the tree goes to slots alongside:
  // places are fixed between rebuilds and neighbours lie close in space, so
  // runs of them group objects independently of the view. Objects waiting
  // outside the tree get kNoSlot.
  void queryPlanes(const std::vector<std::vector<double>>& planes, std::vector<CRenderObject*>& out,
                   std::vector<uint32_t>* slots = nullptr) const;
  static constexpr uint32_t kNoSlot = 0xFFFFFFFFu;
  // One past the last place a query can report.
  size_t slotCount() const { return m_entries.size(); }

 private:
  struct Entry {
    Box box;
    CRenderObject* obj;  // null: removed since the last build
    uint32_t handle;     // its object's place in m_places
  };
  struct Node {
    Box box;
    uint32_t first;  // entries first .. first + count - 1 lie under this node
    uint32_t count;
    uint32_t right;  // index of the right child (the left one is next); 0 for a leaf
  };
  struct Where {
    bool pending;
    uint32_t index;
  };

  static bool boxOf(const CRenderObject* obj, Box& box);
  void rebuildIfStale() const;
  void rebuild() const;
  uint32_t build(uint32_t first, uint32_t count) const;
  // classify(box): 0 outside, 1 partly inside, 2 wholly inside the query.
  template <class Classify>
  void walk(Classify classify, std::vector<CRenderObject*>& out, std::vector<uint32_t>* slots = nullptr) const;

  // Mutable: queries fold pending changes into the tree lazily.
  mutable std::vector<Entry> m_entries;
  mutable std::vector<Node> m_nodes;
  mutable std::vector<Entry> m_pending;
  // Object to a handle that stays while the object is known, and handle to
  // where its entry is: a rebuild moves every entry, and rewriting an
  // array costs far less than as many hash lookups.
  std::unordered_map<const CRenderObject*, uint32_t> m_where;
  mutable std::vector<Where> m_places;
  std::vector<uint32_t> m_freePlaces;
  mutable size_t m_tombstones = 0;
};
