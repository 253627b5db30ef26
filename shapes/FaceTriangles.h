// The corners of a face mesh's whole triangles. One bad index drops its
// triangle instead of reading outside the vertex or normal arrays, so the
// per-shape drawers and the retained writer skip the same triangles.
#pragma once

#include <cstddef>
#include <vector>

template <class Corner>
void forEachFaceCorner(const std::vector<int>& idx, size_t vertices, size_t normals, Corner corner) {
  auto valid = [&](int i) { return i >= 0 && static_cast<size_t>(i) < vertices && static_cast<size_t>(i) < normals; };
  for (size_t t = 0; t + 3 <= idx.size(); t += 3) {
    if (!valid(idx[t]) || !valid(idx[t + 1]) || !valid(idx[t + 2])) continue;
    for (size_t k = 0; k < 3; ++k) corner(static_cast<size_t>(idx[t + k]));
  }
}
