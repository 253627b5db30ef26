#pragma once
// Bounding-volume tree over the triangles of one face mesh, so that a pick
// ray or a screen rectangle meets a big mesh in logarithmic time instead of
// walking every triangle. Built once from a copy of the shape's arrays and
// never changed: the shape drops it whenever its mesh changes.
#include <array>
#include <cstdint>
#include <vector>

#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"

class CFaceMeshBvh {
 public:
  struct Box {
    double min[3];
    double max[3];
  };

  // Triangles whose indices fall outside the vertex array, or whose
  // corners are not finite, are left out: they can never be hit.
  CFaceMeshBvh(const std::vector<AcGePoint3d>& vertices, const std::vector<int>& indices);

  size_t size() const { return m_tris.size(); }

  // The hit nearest to origin (by distance) of the ray origin + t * dir,
  // t >= 0, over every triangle, as a linear scan with
  // CRenderSysUtils::rayIntersectWithTriangle would find it.
  bool nearestHit(const AcGePoint3d& origin, const AcGeVector3d& dir, AcGePoint3d& hit) const;

  // Walks the tree: classify(box) answers 0 (nothing under the box
  // matters), 1 (look inside) or 2 (the box settles it: stop with true);
  // test(a, b, c) is asked for the triangles of the leaves reached, and
  // true from it stops the walk with true.
  template <class Classify, class Test>
  bool any(Classify classify, Test test) const {
    if (m_nodes.empty()) return false;
    uint32_t stack[64];
    int top = 0;
    stack[top++] = 0;
    while (top > 0) {
      const Node& node = m_nodes[stack[--top]];
      const int c = classify(node.box);
      if (c == 0) continue;
      if (c == 2) return true;
      if (node.right == 0) {
        for (uint32_t i = node.first; i < node.first + node.count; ++i) {
          const std::array<uint32_t, 3>& t = m_tris[i];
          if (test(m_vertices[t[0]], m_vertices[t[1]], m_vertices[t[2]])) return true;
        }
        continue;
      }
      stack[top++] = node.right;
      stack[top++] = static_cast<uint32_t>(&node - m_nodes.data()) + 1;
    }
    return false;
  }

 private:
  struct Node {
    Box box;
    uint32_t first;
    uint32_t count;
    uint32_t right;  // the right child; the left one follows its parent; 0 for a leaf
  };
  uint32_t build(uint32_t first, uint32_t count);

  std::vector<AcGePoint3d> m_vertices;
  std::vector<std::array<uint32_t, 3>> m_tris;  // in tree order
  std::vector<Node> m_nodes;
};
