// Shape hit tests: each branch of the pick ray by kind and mode, edge
// distances, the face-mesh tree against a linear scan, and rectangle tests
// through a hand-made orthographic view.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "kxrender/CRenderSysUtils.h"
#include "shapes/FaceMeshBvh.h"
#include "shapes/PickTestView.h"
#include "shapes/PickVolume.h"
#include "shapes/ShapeTestUtil.h"

using namespace shapetest;

namespace {

// A face mesh whose triangles' corners are also its hit lines.
CRenderShape mesh(const Contour& v, const std::vector<int>& idx) {
  CRenderShape s = faceMesh(v, idx);
  for (size_t k = 0; k + 2 < idx.size(); k += 3)
    s.addHitLine({v[size_t(idx[k])], v[size_t(idx[k + 1])], v[size_t(idx[k + 2])]});
  return s;
}

// The line font's "口": a square of four strokes, 8 units high at (-4, -4).
CRenderShape mouth() { return textShape("口", AcGePoint3d(-4, -4, 0), CColor(), 8.0); }

// Straight down through (x, y).
bool down(const CRenderShape& s, double x, double y, int mode, bool solid, AcGePoint3d* at = nullptr) {
  AcGePoint3d hit(-1, -1, -1);
  const bool r = s.intersectRay(AcGePoint3d(x, y, 10), AcGePoint3d(x, y, -10), hit, 0.1, mode, solid);
  if (at) *at = hit;
  return r;
}

}  // namespace

// Polylines with and without solid and plain shaded faces are hit through
// their objects in the object pick tests; a hole in shading and in wire
// frame through the scene's pick tests.
TEST(ShapeRay, EachKindAndMode) {
  const CRenderShape line = polyline({{0, 0, 0}, {10, 0, 0}});
  const CRenderShape holed = polygon(rect(0, 0, 10, 10), {rect(4, 4, 6, 6)});
  // z 0 below, z 5 above, overlapping over x, y in 0..2.
  const CRenderShape twoDeep =
      mesh({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {0, 0, 5}, {4, 0, 5}, {0, 4, 5}}, {0, 1, 2, 3, 4, 5});
  CRenderShape noArrays;
  noArrays.setFaceType(false);
  const struct {
    const char* what;
    const CRenderShape& s;
    double x, y;
    int mode;
    bool solid, hit;
    double z;
  } rows[] = {
      {"outside every box", line, 50, 50, 2, true, false, 0},
      {"shaded without solid: edges only", holed, 2, 2, 2, false, false, 0},
      {"wire frame, middle of the face", holed, 2, 2, 0, true, false, 0},
      {"wire frame, near the outer edge", holed, 5, 0.08, 0, true, true, 0},
      {"mesh: nearer of two triangles", twoDeep, 1, 1, 2, true, true, 5},
      {"mesh wire frame: hit lines only", twoDeep, 1, 1, 0, true, false, 0},
      {"mesh wire frame: first hit line met", twoDeep, 2, 2.02, 0, true, true, 0},
      {"mesh without arrays", noArrays, 0, 0, 2, true, false, 0},
      {"text: on a glyph stroke", mouth(), -4, 0, 2, true, true, 0},
      {"text: inside the glyph's counter", mouth(), -1.5, -1, 2, true, false, 0},
  };
  for (const auto& r : rows) {
    AcGePoint3d at;
    EXPECT_EQ(down(r.s, r.x, r.y, r.mode, r.solid, &at), r.hit) << r.what;
    if (r.hit) EXPECT_NEAR(at.z, r.z, 1e-9) << r.what;
  }
}

TEST(ShapeRay, EdgeDistanceByKind) {
  const double far = std::numeric_limits<double>::max();
  const struct {
    const char* what;
    CRenderShape s;
    AcGePoint3d p;
    double d;
  } rows[] = {
      {"polyline: always on its edge", polyline({{0, 0, 0}, {1, 0, 0}}), {500, 500, 0}, 0.0},
      {"polygon: closing edge counts", polygon(rect(0, 0, 10, 10)), {-2, 5, 0}, 2.0},
      {"polygon: nearest hole edge", polygon(rect(0, 0, 10, 10), {rect(4, 4, 6, 6)}), {5, 5.5, 0}, 0.5},
      {"polygon: one-point outline", polygon({{1, 1, 0}}), {0, 0, 0}, 1e12},
      {"polygon: one-point hole is far", polygon(rect(0, 0, 10, 10), {{{5, 5, 0}}}), {5, 5, 0}, 5.0},
      {"mesh: its hit lines", mesh({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}}, {0, 1, 2}), {1, -3, 0}, 3.0},
      {"text: no edge", mouth(), {-4, 0, 0}, far},
  };
  for (const auto& r : rows) EXPECT_NEAR(r.s.ptNearDistToEdge(r.p), r.d, 1e-9) << r.what;
}

TEST(ShapeRay, BadGeometryNeverHits) {
  const double nan = std::nan("");
  CRenderShape broken = polygon({{0, 0, 0}, {nan, 0, 0}, {1, 1, 0}});
  EXPECT_FALSE(down(broken, 0.5, 0.2, 2, true));
  EXPECT_FALSE(down(broken, 0.5, 0.2, 0, true));
  // A bad vertex spoils the box, so the mesh is never hit; bad indices only
  // lose their own triangle.
  EXPECT_FALSE(down(mesh({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {nan, 0, 0}}, {0, 1, 2, 0, 3, 1}), 1, 1, 2, true));
  CRenderShape partly = mesh({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}}, {0, 1, 2});
  std::vector<int> badIndices{0, 1, 2, 0, 9, 1, 2, -1, 0};
  partly.setFaceTriangleIndexArray(&badIndices);
  AcGePoint3d at;
  EXPECT_TRUE(down(partly, 1, 1, 2, true, &at));
  EXPECT_FALSE(down(partly, 3.5, 3.5, 2, true));
  // A ray of zero length or with a NaN start.
  EXPECT_FALSE(partly.intersectRay(AcGePoint3d(1, 1, 0), AcGePoint3d(1, 1, 0), at, 0.1, 2, true));
  EXPECT_FALSE(partly.intersectRay(AcGePoint3d(nan, 1, 5), AcGePoint3d(1, 1, -5), at, 0.1, 2, true));
}

TEST(FaceMeshTree, AgreesWithALinearScan) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> u(-10, 10);
  Contour v;
  std::vector<int> idx;
  for (int t = 0; t < 3000; ++t) {
    const AcGePoint3d c(u(rng), u(rng), u(rng));
    for (int k = 0; k < 3; ++k) {
      v.emplace_back(c.x + u(rng) / 5, c.y + u(rng) / 5, c.z + u(rng) / 5);
      idx.push_back(int(v.size()) - 1);
    }
  }
  const CFaceMeshBvh tree(v, idx);
  int hits = 0;
  for (int r = 0; r < 400; ++r) {
    const AcGePoint3d o(u(rng) * 2, u(rng) * 2, u(rng) * 2);
    const AcGeVector3d d = AcGePoint3d(u(rng), u(rng), u(rng)) - o;
    bool found = false;
    AcGePoint3d best;
    for (size_t t = 0; t < idx.size(); t += 3) {
      AcGePoint3d p;
      if (CRenderSysUtils::rayIntersectWithTriangle(o, d, v[t], v[t + 1], v[t + 2], &p) &&
          (!found || o.distanceTo(p) < o.distanceTo(best)))
        best = p, found = true;
    }
    AcGePoint3d got;
    ASSERT_EQ(tree.nearestHit(o, d, got), found) << r;
    if (found) {
      EXPECT_NEAR(o.distanceTo(got), o.distanceTo(best), 1e-9) << r;
      ++hits;
    }
  }
  EXPECT_GT(hits, 50);
}

TEST(FaceMeshTree, DroppedWhenTheMeshChanges) {
  CRenderShape s = mesh({{0, 0, 0}, {4, 0, 0}, {0, 4, 0}}, {0, 1, 2});
  AcGePoint3d at;
  ASSERT_TRUE(down(s, 1, 1, 2, true, &at));  // builds the tree
  s.transformBy(AcGeMatrix3d::translation(AcGeVector3d(0, 0, 2)));
  ASSERT_TRUE(down(s, 1, 1, 2, true, &at));
  EXPECT_NEAR(at.z, 2.0, 1e-12);
  Contour moved{{10, 0, 0}, {14, 0, 0}, {10, 4, 0}};
  s.setFaceVertexArray(&moved);
  s.calBox();
  EXPECT_FALSE(down(s, 1, 1, 2, true));
  EXPECT_TRUE(down(s, 11, 1, 2, true));
  // A moved-in mesh brings its own tree: the old one would still answer at (1, 1).
  CRenderShape other = mesh({{20, 0, 0}, {24, 0, 0}, {20, 4, 0}}, {0, 1, 2});
  ASSERT_TRUE(down(other, 21, 1, 2, true));
  s = std::move(other);
  EXPECT_FALSE(down(s, 11, 1, 2, true));
  EXPECT_TRUE(down(s, 21, 1, 2, true));
}

// 200,000 triangles: the tree answers the one under the ray, on a sloped
// grid.
TEST(FaceMeshTree, BigMeshAnswersTheRightTriangle) {
  Contour v;
  std::vector<int> idx;
  const int nx = 200, ny = 500;
  for (int j = 0; j <= ny; ++j)
    for (int i = 0; i <= nx; ++i) v.emplace_back(i, j, i / 100.0);
  for (int j = 0; j < ny; ++j)
    for (int i = 0; i < nx; ++i) {
      const int a = j * (nx + 1) + i;
      idx.insert(idx.end(), {a, a + 1, a + nx + 2, a, a + nx + 2, a + nx + 1});
    }
  const CRenderShape big = mesh(v, idx);
  AcGePoint3d at;
  ASSERT_TRUE(down(big, 123.25, 321.75, 2, true, &at));
  EXPECT_NEAR(at.z, 1.2325, 1e-9);
}

using picktest::px;
using picktest::view;

TEST(ShapeRect, CrossingAndInsideByKind) {
  const CRenderShape diagonal = polyline({{-8, -8, 0}, {8, 8, 0}});
  const CRenderShape holed = polygon(rect(-8, -8, 8, 8), {rect(-2, -2, 2, 2)});
  const CRenderShape tri = mesh({{-8, -8, 0}, {8, -8, 0}, {-8, 8, 0}}, {0, 1, 2});
  const CRenderShape deep = polygon(rect(-1, -1, 1, 1, 150));  // beyond the far plane
  const struct {
    const char* what;
    const CRenderShape& s;
    CRect r;
    int mode;
    bool crosses, inside;
  } rows[] = {
      {"line's box only", diagonal, px(-7, 3, -3, 7), 2, false, false},
      {"line enclosed", diagonal, px(-9, -9, 9, 9), 2, true, true},
      {"rectangle within the face, shaded", holed, px(4, 4, 6, 6), 2, true, false},
      {"rectangle within the face, wire frame", holed, px(4, 4, 6, 6), 0, false, false},
      {"rectangle within the hole", holed, px(-1, -1, 1, 1), 2, false, false},
      {"rectangle across the hole's edge", holed, px(1, -1, 3, 1), 0, true, false},
      {"rectangle within the triangle, shaded", tri, px(-6, -6, -4, -4), 2, true, false},
      {"rectangle within the triangle, wire frame", tri, px(-6, -6, -4, -4), 0, false, false},
      {"rectangle beside the triangle", tri, px(4, 4, 6, 6), 2, false, false},
      {"triangle enclosed", tri, px(-9, -9, 9, 9), 2, true, true},
      {"beyond the far plane", deep, px(-9, -9, 9, 9), 2, false, false},
      {"text enclosed", mouth(), px(-9, -9, 9, 9), 2, true, true},
      {"rectangle within the glyph's counter", mouth(), px(-2, -2, 0, 0), 2, false, false},
      {"rectangle across a glyph stroke", mouth(), px(-5, -1, -3, 1), 2, true, false},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(r.s.intersectRect(r.r, view(), nullptr, r.mode), r.crosses) << r.what;
    EXPECT_EQ(r.s.allInRect(r.r, view(), nullptr), r.inside) << r.what;
  }
}

TEST(ShapeRect, BadViewDataSelectsNothing) {
  const CRenderShape s = polygon(rect(-1, -1, 1, 1));
  CPickVolume::ViewData nan = view();
  nan[1][0] = std::nan("");
  CPickVolume::ViewData noViewport = view();
  noViewport[2][2] = 0;
  for (const CPickVolume::ViewData& v : {nan, noViewport, CPickVolume::ViewData()}) {
    EXPECT_FALSE(s.intersectRect(px(-9, -9, 9, 9), v, nullptr, 2));
    EXPECT_FALSE(s.allInRect(px(-9, -9, 9, 9), v, nullptr));
  }
  // A reversed rectangle is the same rectangle.
  const CRect r = px(-9, -9, 9, 9);
  EXPECT_TRUE(s.allInRect(CRect(r.right, r.bottom, r.left, r.top), view(), nullptr));
}
