#pragma once
// The unit cube as triangles and as OBJ text, for the import and viewer tests.
#include <string>

// The 12 outward triangles of the unit cube, as corner triples; corner i lies at
// x = i & 1, y = i >> 1 & 1, z = i >> 2 & 1.
const int kCube[12][3] = {{0, 2, 1}, {1, 2, 3}, {4, 5, 6}, {5, 7, 6}, {0, 1, 4}, {1, 5, 4},
                          {2, 6, 3}, {3, 6, 7}, {0, 4, 2}, {2, 4, 6}, {1, 3, 5}, {3, 7, 5}};
inline float corner(int i, int axis) { return float((i >> axis) & 1); }

// " a b c" and a line end.
template <typename T>
std::string triple(T a, T b, T c) {
  return " " + std::to_string(a) + " " + std::to_string(b) + " " + std::to_string(c) + "\n";
}

// Object `name`: the cube stretched to `width` along x from `x0`, its vertices numbered from `base`, `material`
// written before its faces.
inline std::string cubeObj(const std::string& name, int base, float x0 = 0, float width = 1,
                           const std::string& material = "") {
  std::string s = "o " + name + "\n";
  for (int i = 0; i < 8; ++i) s += "v" + triple(x0 + width * corner(i, 0), corner(i, 1), corner(i, 2));
  s += material;
  for (const auto& t : kCube) s += "f" + triple(base + t[0], base + t[1], base + t[2]);
  return s;
}
