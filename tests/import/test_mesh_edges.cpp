// Crease normals, feature edges and IFC node names of imported meshes.
#include <gtest/gtest.h>

#include <cmath>

#include "import/IfcNodeName.h"
#include "import/MeshEdges.h"

using kximport::creaseNormals;
using kximport::featureLines;

namespace {

// A unit cube, outward triangles; `split` repeats the corners per triangle
// as STL files do.
void cube(std::vector<AcGePoint3d>& pts, std::vector<int>& tris, bool split) {
  pts.clear();
  for (int i = 0; i < 8; ++i) pts.emplace_back(i & 1, (i >> 1) & 1, (i >> 2) & 1);
  tris = {0, 2, 1, 1, 2, 3, 4, 5, 6, 5, 7, 6, 0, 1, 4, 1, 5, 4, 2, 6, 3, 3, 6, 7, 0, 4, 2, 2, 4, 6, 1, 3, 5, 3, 7, 5};
  if (!split) return;
  std::vector<AcGePoint3d> corners;
  for (int& i : tris) {
    corners.push_back(pts[i]);
    i = int(corners.size()) - 1;
  }
  pts = corners;
}

size_t segments(const std::vector<std::vector<AcGePoint3d>>& lines) {
  size_t n = 0;
  for (const auto& l : lines) n += l.size() - 1;
  return n;
}

}  // namespace

TEST(MeshEdges, FeatureEdgesByAngleAndBoundary) {
  struct Row {
    const char* what;
    bool split;
    double angle;
    size_t lines, segments;
  } rows[] = {
      {"cube, 30 degrees: the 12 edges, each a chain of its own (corners join 3)", false, 30.0, 12, 12},
      {"cube from per-triangle corners: the same after welding", true, 30.0, 12, 12},
      {"cube, 95 degrees: right angles are no features", false, 95.0, 0, 0},
  };
  for (const Row& r : rows) {
    std::vector<AcGePoint3d> pts;
    std::vector<int> tris;
    cube(pts, tris, r.split);
    const auto lines = featureLines(pts, tris, r.angle);
    EXPECT_EQ(lines.size(), r.lines) << r.what;
    EXPECT_EQ(segments(lines), r.segments) << r.what;
  }
  // A quad of two triangles: one closed loop round the boundary, without
  // the diagonal; a degenerate triangle adds nothing.
  const std::vector<AcGePoint3d> quad = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  // Corners repeated per triangle, one written -0.0: the same position.
  const std::vector<AcGePoint3d> split = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {-0.0, 0, -0.0}, {1, 1, 0}, {0, 1, 0}};
  EXPECT_EQ(featureLines(split, {0, 1, 2, 3, 4, 5}, 30.0).size(), 1u);
  const auto loop = featureLines(quad, {0, 1, 2, 0, 2, 3, 0, 0, 1}, 30.0);
  ASSERT_EQ(loop.size(), 1u);
  ASSERT_EQ(loop[0].size(), 5u);
  EXPECT_TRUE(loop[0].front().isEqualTo(loop[0].back()));
}

TEST(MeshEdges, CreaseNormalsSplitOnlyAtCreases) {
  struct Row {
    double crease;
    size_t vertices;
    double component;  // |x| = |y| = |z| of every normal
  } rows[] = {{30.0, 24, -1.0}, {100.0, 8, 1.0 / std::sqrt(3.0)}};
  for (const Row& r : rows) {
    std::vector<AcGePoint3d> pts;
    std::vector<int> tris;
    std::vector<AcGeVector3d> normals;
    cube(pts, tris, true);
    creaseNormals(pts, tris, normals, r.crease);
    ASSERT_EQ(pts.size(), r.vertices) << r.crease;
    ASSERT_EQ(normals.size(), r.vertices);
    for (size_t v = 0; v < pts.size(); ++v) {
      const AcGeVector3d out = pts[v] - AcGePoint3d(0.5, 0.5, 0.5);
      EXPECT_NEAR(normals[v].length(), 1.0, 1e-12);
      EXPECT_GT(normals[v].dotProduct(out), 0.0) << "normals point out of the cube";
      if (r.component > 0)
        for (double c : {normals[v].x, normals[v].y, normals[v].z}) EXPECT_NEAR(std::fabs(c), r.component, 1e-12);
      else  // a face normal: one axis only
        EXPECT_NEAR(std::fabs(normals[v].x) + std::fabs(normals[v].y) + std::fabs(normals[v].z), 1.0, 1e-12);
    }
    for (int i : tris) EXPECT_LT(size_t(i), pts.size());
  }
}

TEST(IfcNodeName, ClassNameAndGlobalId) {
  struct Row {
    const char* node;
    bool ok;
    const char* cls;
    const char* name;
    const char* guid;
  } rows[] = {
      {"IfcSlab_a_b_1pPHnf7cXCpPsNEnQf8_6B", true, "IfcSlab", "a_b", "1pPHnf7cXCpPsNEnQf8_6B"},
      {"IfcSpace_3W$Bbp9oH0XOExV9eOgg$n", true, "IfcSpace", "", "3W$Bbp9oH0XOExV9eOgg$n"},
      {"IfcMappedItem", false, "", "", ""},
      {"$RelAggregates", false, "", "", ""},
      {"IfcWall_x3W$Bbp9oH0XOExV9eOgg$n", false, "", "", ""},
  };
  for (const Row& r : rows) {
    kximport::IfcNodeName n;
    ASSERT_EQ(kximport::parseIfcNodeName(r.node, n), r.ok) << r.node;
    if (!r.ok) continue;
    EXPECT_EQ(n.ifcClass, r.cls);
    EXPECT_EQ(n.name, r.name);
    EXPECT_EQ(n.globalId, r.guid);
  }
}
