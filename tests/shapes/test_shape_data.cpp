// A render shape's data: contours, copy rules, tags, polygon offsets, face
// mesh arrays (owned or shared), moving shapes as a whole, thickening
// meshes and texture coordinates.
#include <gtest/gtest.h>

#include "shapes/ShapeTestUtil.h"

using namespace shapetest;

namespace {
double signedXY(const Contour& c) {  // about +z
  double a = 0;
  for (size_t i = 0, j = c.size() - 1; i < c.size(); j = i++) a += c[j].x * c[i].y - c[i].x * c[j].y;
  return a / 2;
}
// The shape's box is exactly lo..hi.
bool boxIs(const CRenderShape& s, const AcGePoint3d& lo, const AcGePoint3d& hi) {
  AcGePoint3d a(9, 9, 9), b(9, 9, 9);
  s.getBox(a, b);
  return a.isEqualTo(lo) && b.isEqualTo(hi);
}
struct FaceShape : CRenderShape {  // opens the protected face-data calls
  using CRenderShape::copyFaceData;
  using CRenderShape::freeFaceData;
  using CRenderShape::isFaceDataNull;
};
// Unit cube corners with unit normals out along the diagonals.
struct Cube {
  std::vector<AcGePoint3d> v;
  std::vector<AcGeVector3d> n;
  std::vector<int> idx{0, 1, 2, 2, 1, 3};
  Cube() {
    for (int i = 0; i < 8; ++i) {
      v.emplace_back(i & 1, (i >> 1) & 1, (i >> 2) & 1);
      n.push_back((v.back() - AcGePoint3d(0.5, 0.5, 0.5)).normal());
    }
  }
  void give(CRenderShape& s) {
    s.setFaceType();
    s.setFaceVertexArray(&v);
    s.setFaceTriangleIndexArray(&idx);
    s.setFaceNormalArray(&n);
  }
};
}  // namespace

TEST(RenderShapeData, InitClearsStateButKeepsGeometry) {
  CRenderShape p = polygon(rect(0, 0, 2, 2));
  p.setXdata("k", "v");
  p.setHit(true);
  p.setBorderMaxWidth(3.0);  // also switches scaling on
  EXPECT_TRUE(p.isBorderWidthScaled());
  AcGePoint3d centre, kept;
  double radius = 0.0, keptRadius = 0.0;
  p.getSphere(centre, radius);
  p.Init();
  EXPECT_FALSE(p.getHit() || p.isBorderWidthScaled() || p.getArea() != 0.0 || p.getBorderMaxWidth() != 8.0f);
  EXPECT_TRUE(boxIs(p, AcGePoint3d::kOrigin, AcGePoint3d::kOrigin));
  CRenderShape(p).getSphere(kept, keptRadius);  // the sphere outlives the box, in copies too
  EXPECT_TRUE(kept == AcGePoint3d(1, 1, 0) && kept == centre && keptRadius == radius && radius > 1.41);
  EXPECT_TRUE(p.getShpType() == CRenderShape::kPgon && p.getPts().size() == 5 && p.is("k", "v"));
}

TEST(RenderShapeData, SetOrientsAndClosesContours) {
  const Contour cw = {{0, 0, 0}, {0, 4, 0}, {4, 4, 0}, {4, 0, 0}};
  CRenderShape s;
  s.set(cw, {rect(1, 1, 2, 2), {}}, CRenderShape::kPgon, CColor(200, 10, 20, 128), AcGeVector3d(0, 0, 7));
  EXPECT_TRUE(s.getUcs().isEqualTo(kUp) && s.getClr() == CColor(200, 10, 20, 128));
  ASSERT_TRUE(s.getPts().size() == 5 && s.getHoles().size() == 1 && s.getHoles()[0].size() == 5);  // empty hole dropped
  EXPECT_TRUE(s.getPts().back().isEqualTo(s.getPts().front()));
  EXPECT_TRUE(signedXY(s.getPts()) > 0 && signedXY(s.getHoles()[0]) < 0);
  s.set(cw, {}, CRenderShape::kPgon, CColor(), -kUp);  // seen from below
  EXPECT_LT(signedXY(s.getPts()), 0);
  Contour closed = rect(0, 0, 1, 1);  // closed within the global tolerance
  closed.emplace_back(0, AcGeContext::gTol.equalPoint() / 2, 0);
  EXPECT_EQ(polygon(closed).getPts().size(), 5u);
  CRenderShape two = polygon({{0, 0, 0}, {1, 0, 0}}, {{{0, 0, 0}, {1, 1, 0}, {0, 1, 0}}});  // under 3: nothing closed
  EXPECT_TRUE(two.getPts().size() == 2 && two.getHoles()[0].size() == 3);
  CRenderShape pl;
  pl.set(cw, {}, CRenderShape::kPline, CColor(), kUp);
  EXPECT_TRUE(pl.getPts() == cw && pl.getStrips().empty() && pl.getArea() == 0.0);
  CRenderShape again = polygon(rect(0, 0, 4, 4), {rect(1, 1, 2, 2)});  // own lists passed back in
  again.set(again.getPts(), again.getHoles(), CRenderShape::kPgon, CColor(), kUp);
  EXPECT_FLOAT_EQ(again.getArea(), 15.0f);
}

TEST(RenderShapeData, AreaAndOffsets) {
  EXPECT_EQ(polygon(rect(0, 0, 2, 2), {rect(-1, -1, 3, 3)}).getArea(), 0.0);  // never negative
  CRenderShape small, big;
  small.set(rect(0, 0, 100, 50), {}, CRenderShape::kPgon, CColor(), kUp, 3.0, 2.0, 0.25);
  EXPECT_TRUE(small.getOffsetUnits() == 1.0f && small.getOffsetFactor() == 1.5f && small.getZOffset() == 0.25f);
  big.set(rect(0, 0, 400, 400), {}, CRenderShape::kPgon, CColor(), kUp, 3.0, 2.0, 0.0);
  const float root = std::sqrt(std::sqrt(std::sqrt(std::sqrt(16.0f))));  // four float roots of 16
  EXPECT_TRUE(big.getOffsetUnits() == root * 2 && big.getOffsetFactor() == root * 3);
  big.setOffsetScale(10.0);
  big.setOffsetUnitScale(2.0);
  big.setOffsetUnitScale(2.0);
  EXPECT_TRUE(big.getOffsetFactor() == root * 10 && big.getOffsetUnits() == root * 8);
  EXPECT_EQ(polygon(rect(0, 0, 100, 100)).getOffsetUnits(), 1.0f);  // 1 is not above 1
}

TEST(RenderShapeData, ZOffsetByType) {
  CRenderShape pg = polygon(rect(1, 2, 3, 4, 5));  // all three coordinates of drawn vertices move
  const std::vector<double> before = pg.getGlPts();
  pg.setZOffset(0.5f);
  for (size_t i = 0; i < before.size(); ++i) EXPECT_EQ(pg.getGlPts()[i], before[i] + 0.5);
  EXPECT_TRUE(pg.getPts()[0].z == 5.0 && boxIs(pg, {1, 2, 5}, {3, 4, 5}) && pg.getZOffset() == 0.0f);
  CRenderShape pl, unset;
  pl.set({{1, 2, 3}, {4, 5, 6}}, {}, CRenderShape::kPline, CColor(), kUp);
  pl.setZOffset(1.0f);
  EXPECT_TRUE(pl.getPts()[0].isEqualTo(AcGePoint3d(1, 2, 4)) && pl.getPts()[1].isEqualTo(AcGePoint3d(4, 5, 7)));
  unset.setZOffset(3.0f);  // nothing to offset yet
  EXPECT_EQ(unset.getZOffset(), 0.0f);
}

TEST(RenderShapeData, TagKeysExactValuesIgnoreCase) {
  CRenderShape s;
  CString v;
  EXPECT_TRUE(s.setXdata("k", "abc") && s.is("k", "ABC"));
  EXPECT_FALSE(s.is("k", "abd") || s.is("K", "abc") || s.getXdata("K", v) || s.clearXdata("K"));
  EXPECT_TRUE(s.setXdata("k", "new") && s.getXdata("k", v) && v == "new" && s.clearXdata("k"));
  EXPECT_FALSE(s.clearXdata("k") || s.is("k", "new"));
  s.setFaceType(true);
  EXPECT_TRUE(s.getShpType() == CRenderShape::kFace && s.getXdata("nodepth", v) && v == "0.1");
}

TEST(RenderShapeData, CopyStartsWithoutDisplayListAssignmentKeepsOwn) {
  CRenderShape src = polygon(rect(0, 0, 3, 2), {rect(1, 0.5, 2, 1.5)}), target;
  src.setXdata("a", "b");
  src.getReservedContours().push_back(rect(0, 0, 1, 1));
  CRenderShapeTestAccess::setDisplayList(src, 11);
  CRenderShapeTestAccess::setDisplayList(target, 22);
  CRenderShape copy(src);
  EXPECT_EQ(copy.getFaceDisplayList(), 0u);
  EXPECT_TRUE(copy.getGlPts() == src.getGlPts() && copy.getStrips() == src.getStrips() && copy.is("a", "B"));
  EXPECT_TRUE(copy.getReservedContours().size() == 1 && copy.getFaceVertexArray() == nullptr);
  target = src;
  EXPECT_TRUE(target.getFaceDisplayList() == 22u && target.getHoles().size() == 1);
}

TEST(RenderShapeData, TextShapeOwnsAndPlacesItsText) {
  CRenderShape t = polygon(rect(0, 0, 1, 1));
  t.set(nullptr, CColor(), kUp);
  EXPECT_EQ(t.getShpType(), CRenderShape::kPgon);
  auto* info = new TextInfo;
  info->text = "口";
  info->font = "单线体";
  info->dir1 = AcGeVector3d(0, 2, 0);  // only its direction counts
  info->dir2 = AcGeVector3d(-1, 0, 0);
  info->position = AcGePoint3d(10, 20, 30);
  info->height = 3;
  t.set(info, CColor(), AcGeVector3d(0, 0, 5));
  EXPECT_TRUE(t.getShpType() == CRenderShape::kText && t.getTextInfo() == info && t.getUcs().isEqualTo(kUp));
  EXPECT_TRUE(t.getPts().empty() && t.getStrips().empty() && t.getArea() == 0.0);
  // Glyph x along dir1, y along dir2, z along their cross product, times
  // the height; glMatrix is the same, column-major.
  EXPECT_TRUE((info->placement * AcGePoint3d(1, 1, 1)).isEqualTo(AcGePoint3d(7, 23, 33)));
  EXPECT_TRUE(info->glMatrix[12] == 10.0f && info->glMatrix[13] == 20.0f && info->glMatrix[1] == 3.0f);
  // The glyph's box: x 0 to 0.635, y 0.053 to 0.793 in glyph units.
  EXPECT_TRUE(boxIs(t, {7.621, 20, 30}, {9.841, 21.905, 30}));
  t.transformBy(AcGeMatrix3d::scaling(2) * AcGeMatrix3d::rotation(M_PI / 2, kUp));  // dir1 to -x, dir2 to -y
  EXPECT_TRUE(info->height == 6.0 && info->position.isEqualTo(AcGePoint3d(-40, 20, 60)));
  EXPECT_TRUE(boxIs(t, {-43.81, 15.242, 60}, {-40, 19.682, 60}));
  CRenderShape copy(t);
  ASSERT_TRUE(copy.getTextInfo() && copy.getTextInfo() != info && copy.getTextInfo()->text == "口");
  copy = CRenderShape();
  EXPECT_EQ(copy.getTextInfo(), nullptr);
}

TEST(FaceData, OwnedArraysAreCopiesSharedOnesStayTheCallers) {
  Cube m, other;
  FaceShape s, sharer;
  s.setFaceVertexArray(&m.v);
  EXPECT_TRUE(s.isFaceDataNull());  // normals and indices are required
  m.give(s);
  s.setFaceVertexArray(nullptr);  // null changes nothing
  EXPECT_TRUE(!s.isFaceDataNull() && s.getFaceVertexArray() != &m.v && *s.getFaceVertexArray() == m.v);
  s.addHitLine({{0, 0, 0}, {4, 0, 0}});
  CRenderShape copy(s);
  EXPECT_TRUE(copy.getFaceNormalArray() != s.getFaceNormalArray() && *copy.getFaceNormalArray() == m.n);
  EXPECT_EQ(copy.getHitLine().size(), 1u);

  sharer.setShareVertexData();
  other.give(sharer);
  EXPECT_EQ(sharer.getFaceVertexArray(), &other.v);
  s.copyFaceData(sharer);  // pointers and (no) hit lines follow
  EXPECT_TRUE(s.getShareVertexData() && s.getFaceVertexArray() == &other.v && s.getHitLine().empty());
  {
    CRenderShape shared(sharer);
    EXPECT_EQ(shared.getFaceNormalArray(), &other.n);
  }
  s.freeFaceData();
  EXPECT_TRUE(s.isFaceDataNull() && other.v == Cube().v);  // let go, not deleted
}

TEST(FaceData, AreaPlanarityAndCounts) {
  CRenderShape s = faceMesh({{0, 0, 0}, {4, 0, 0}, {2, 0, 0}, {1, 0, 0}}, {0, 1, 2, 2, 1, 3});
  s.calArea();
  EXPECT_FLOAT_EQ(static_cast<float>(s.getArea()), 12.56f);  // radius 2, pi as 3.14
  EXPECT_EQ(s.numTriangles(), 2u);
  std::vector<AcGeVector3d> n = {{0, 0, 1}, {0, 0, 2}};
  s.setFaceNormalArray(&n);
  EXPECT_TRUE(s.faceIsPlane());  // lengths do not matter
  n.push_back(AcGeVector3d(0, 0.1, 1));
  s.setFaceNormalArray(&n);
  EXPECT_FALSE(s.faceIsPlane());
}

TEST(ShapeTransform, PolygonFollowsWithoutNewTriangulation) {
  CRenderShape s = polygon(rect(0, 0, 4, 3), {rect(1, 1, 2, 2)});
  s.addHitLine({{0, 0, 0}, {4, 0, 0}});
  const auto strips = s.getStrips();
  const std::vector<Tri> before = triangles(s);
  const AcGePoint3d hole0 = s.getHoles()[0][0];
  const AcGeVector3d t(10, -5, 2);
  s.transformBy(AcGeMatrix3d::translation(t));
  EXPECT_TRUE(s.getArea() == 11.0 && boxIs(s, {10, -5, 2}, {14, -2, 2}) && s.getStrips() == strips);
  EXPECT_TRUE(s.getHoles()[0][0].isEqualTo(hole0 + t) && s.getHitLine()[0][1].isEqualTo(AcGePoint3d(14, -5, 2)));
  for (size_t i = 0; i < before.size(); ++i) EXPECT_TRUE(triangles(s)[i].c.isEqualTo(before[i].c + t));
  s.transformBy(AcGeMatrix3d::scaling(3) * AcGeMatrix3d::rotation(M_PI / 2, AcGeVector3d(1, 0, 0)));
  EXPECT_TRUE(s.getUcs().isEqualTo(AcGeVector3d(0, -1, 0)));
  EXPECT_NEAR(s.getArea(), 99.0, 1e-4);
  for (const Tri& tri : triangles(s)) EXPECT_GT(tri.signedArea(s.getUcs()), 0);
}

TEST(ShapeTransform, FaceMeshesMoveAndThicken) {
  Cube cube;
  const Cube untouched;
  CRenderShape owned, shared;
  shared.setShareVertexData();
  cube.give(owned);
  cube.give(shared);
  owned.offsetFaceVertex(0.5);
  for (size_t i = 0; i < 8; ++i)  // half a unit out along each vertex normal
    EXPECT_TRUE((*owned.getFaceVertexArray())[i].isEqualTo(cube.v[i] + cube.n[i] * 0.5)) << i;
  owned.transformBy(AcGeMatrix3d::translation(AcGeVector3d(5, 0, 0)) * AcGeMatrix3d::rotation(M_PI, kUp));
  const AcGeVector3d n1 = cube.n[1] * 0.5;  // vertex 1 after the offset, turned half round z
  EXPECT_TRUE((*owned.getFaceVertexArray())[1].isEqualTo(AcGePoint3d(4 - n1.x, -n1.y, n1.z)));
  EXPECT_TRUE((*owned.getFaceNormalArray())[0].isEqualTo(AcGeVector3d(-cube.n[0].x, -cube.n[0].y, cube.n[0].z)));
  shared.transformBy(AcGeMatrix3d::translation(AcGeVector3d(0, 0, 7)));
  EXPECT_TRUE(cube.v == untouched.v && cube.n == untouched.n && boxIs(shared, {0, 0, 0}, {1, 1, 1}));
}

TEST(ShapeTransform, TextureCoordinatesPerTriangulatedVertex) {
  CRenderShape s = polygon(rect(0, 0, 4, 4), {rect(1, 1, 3, 3)});
  std::vector<AcGePoint2d> uv;  // for the outer contour only
  for (const AcGePoint3d& p : s.getPts()) uv.emplace_back(p.x / 4, p.y / 4 + 1);
  s.setTextureCoord(uv);
  const size_t vertices = s.getGlPts().size() / 3;
  ASSERT_EQ(s.getTexCoords().size(), 2 * vertices);
  for (size_t i = 0; i < vertices; ++i) {
    const AcGePoint3d p = vertex(s, i);
    const bool inner = p.x > 0.5 && p.x < 3.5 && p.y > 0.5 && p.y < 3.5;  // hole corners: no entry, (0, 0)
    EXPECT_TRUE(s.getTexCoords()[2 * i] == (inner ? 0.0f : float(p.x / 4)) && s.getTexCoords()[2 * i + 1] == (inner ? 0.0f : float(p.y / 4 + 1)));
  }
  for (const AcGePoint3d& p : s.getHoles()[0]) uv.emplace_back(p.x * 10, 0);  // then the holes, in order
  s.setTextureCoord(uv);
  for (size_t i = 0; i < vertices; ++i)
    if (vertex(s, i).x > 0.5 && vertex(s, i).x < 3.5) EXPECT_FLOAT_EQ(s.getTexCoords()[2 * i], vertex(s, i).x * 10);
  // In a wall's own plane; a new triangulation drops the old coordinates.
  CRenderShape wall = polygon({{0, 0, 0}, {2, 0, 0}, {2, 0, 1}, {0, 0, 1}}, {}, AcGeVector3d(0, -1, 0));
  wall.setTextureCoord({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}});
  for (size_t i = 0; i < 4; ++i) EXPECT_TRUE(vertex(wall, i).isEqualTo(wall.getPts()[size_t(wall.getTexCoords()[2 * i])]));
  wall.set(rect(0, 0, 1, 1), {}, CRenderShape::kPgon, CColor(), kUp);
  EXPECT_TRUE(wall.getTexCoords().empty());
}
