// Triangle strips of polygons with holes, checked against the region they
// must fill: the triangle areas add up to the polygon's area, each triangle
// turns the polygon's way, and no triangle lies outside the filled region.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/CRenderShape.h"
#include "shapes/ShapeTestUtil.h"
#include "support/GLRecorder.h"

using namespace shapetest;

namespace {
// Contours given in a local XY frame, placed by `toWorld` (z: the normal).
CRenderShape placed(const Contour& outer, const Contours& holes, const AcGeMatrix3d& toWorld) {
  auto place = [&](Contour c) {
    for (AcGePoint3d& p : c) p.transformBy(toWorld);
    return c;
  };
  Contours worldHoles;
  for (const Contour& h : holes) worldHoles.push_back(place(h));
  return polygon(place(outer), worldHoles, AcGeVector3d(toWorld(0, 2), toWorld(1, 2), toWorld(2, 2)));
}

// The strips fill exactly the odd-parity region of the local contours:
// areas add up, every triangle has area and turns about the normal, and no
// centroid lies outside the region.
void expectFills(const CRenderShape& s, const Contour& outer, const Contours& holes, double area,
                 const AcGeMatrix3d& toWorld = AcGeMatrix3d::kIdentity) {
  Contours all = holes;
  all.insert(all.begin(), outer);
  const AcGeMatrix3d toLocal = toWorld.inverse();
  const size_t vertices = s.getGlPts().size() / 3;
  for (const auto& strip : s.getStrips())
    for (uint16_t i : strip) ASSERT_LT(i, vertices);
  const std::vector<Tri> tris = triangles(s);
  ASSERT_FALSE(tris.empty());
  double sum = 0;
  for (const Tri& t : tris) {
    sum += t.area();
    ASSERT_GT(t.signedArea(s.getUcs()), 0.0);
    if (t.area() < 1e-9 * area) continue;  // a sliver's centroid sits on an edge
    const AcGePoint3d c = toLocal * t.centroid();
    ASSERT_NEAR(c.z, 0.0, 1e-9 * std::sqrt(area));
    ASSERT_TRUE(oddInside(c.x, c.y, all)) << c.x << ", " << c.y;
  }
  EXPECT_NEAR(sum, area, 1e-9 * area);
}
}  // namespace

TEST(Triangulation, ConvexQuadIsOneStripWithoutTessellatorOthersTakeIt) {
  GLRecorder rec(/*forward=*/true);
  // Given clockwise, stored counter-clockwise; one strip whose triangles
  // (first, second, fourth; fourth, second, third) fill the quad.
  CRenderShape s = polygon({{0, 0, 0}, {0, 3, 0}, {5, 4, 0}, {4, 0, 0}});
  EXPECT_EQ(rec.count("gluNewTess") + rec.count("gluTessBeginPolygon"), 0u);
  ASSERT_EQ(s.getStrips(), (std::vector<std::vector<uint16_t>>{{0, 1, 2, 3}}));
  expectFills(s, s.getPts(), {}, 15.5);

  Contour dart = {{0, 0, 0}, {4, 0, 0}, {2, 1, 0}, {2, 4, 0}};  // concave: no fast strip
  expectFills(polygon(dart), dart, {}, 5.0);
  EXPECT_EQ(rec.count("gluTessBeginPolygon"), 1u);
  CRenderShape ring = polygon(rect(0, 0, 4, 4), {rect(1, 1, 2, 2)});  // holes always take the tessellator
  EXPECT_EQ(rec.count("gluTessBeginPolygon"), 2u);
  std::vector<std::vector<unsigned>> idx;  // the strips again, as unsigned indices
  ring.getTriIndex(idx);
  ASSERT_EQ(idx.size(), ring.getStrips().size());
  for (size_t i = 0; i < idx.size(); ++i)
    EXPECT_TRUE(std::equal(idx[i].begin(), idx[i].end(), ring.getStrips()[i].begin()));
  EXPECT_EQ(ring.numTriangles(), triangles(ring).size());
}

TEST(Triangulation, PlansAndCrossingContoursFillByParity) {
  // A floor with a round column, a room and a stair well given clockwise.
  Contours rooms = {ngon(2.5, 24, 0.1, 5, 6), rect(11, 1.5, 19, 10.5), rect(22, 4, 28, 8)};
  std::reverse(rooms.back().begin(), rooms.back().end());
  const double floorArea = 6000 - ngonArea(2.5, 24) - 72 - 24;
  Contour comb = {{0, 0, 0}, {20, 0, 0}, {20, 2, 0}};  // ten teeth of 1 x 5 on a 20 x 2 back
  for (double t = 18; t >= 0; t -= 2) comb.insert(comb.end(), {{t + 1, 2, 0}, {t + 1, 7, 0}, {t, 7, 0}, {t, 2, 0}});
  Contour collinear;
  for (int i = 0; i < 10; ++i) collinear.emplace_back(i, 0, 0);
  for (int i = 0; i < 4; ++i) collinear.emplace_back(10, i, 0);
  for (int i = 10; i > 0; --i) collinear.emplace_back(i, 4, 0);
  for (int i = 4; i > 0; --i) collinear.emplace_back(0, i, 0);
  Contour dup, hole = rect(-1, -1, 1, 1);  // every point twice; a hole closed, with a corner repeated
  for (const AcGePoint3d& p : ngon(5, 7)) dup.insert(dup.end(), {p, p});
  hole.insert(hole.begin() + 2, hole[2]);
  hole.push_back(hole[0]);
  const double R = 10, r = R * std::cos(0.4 * M_PI) / std::cos(0.2 * M_PI);
  Contour star;  // a pentagram in one line
  for (int k = 0; k < 5; ++k) star.emplace_back(R * std::cos(M_PI / 2 + k * 0.8 * M_PI), R * std::sin(M_PI / 2 + k * 0.8 * M_PI), 0);
  const struct { const char* what; Contour outer; Contours holes; double area; } rows[] = {
      {"floor", rect(0, 0, 100, 60), rooms, floorArea},
      {"comb", comb, {}, 90.0},
      {"holes on the edge and at a corner", rect(0, 0, 10, 10), {rect(0, 3, 4, 6), rect(5, 5, 7, 7), rect(7, 7, 9, 9)}, 80.0},
      {"collinear points", collinear, {}, 40.0},
      {"repeated points", dup, {hole}, ngonArea(5, 7) - 4},
      {"overlapping holes: the common part is filled again", rect(0, 0, 10, 10), {rect(1, 1, 5, 5), rect(3, 3, 7, 7)}, 76.0},
      {"pentagram: points filled, the middle (wound twice) not", star, {},
       5 * R * r * std::sin(0.2 * M_PI) - 2.5 * r * r * std::sin(0.4 * M_PI)}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    expectFills(polygon(row.outer, row.holes), row.outer, row.holes, row.area);
  }
}

TEST(Triangulation, WallsAndRoofs) {
  const Contour wall = rect(0, 0, 6, 3);
  const Contours openings = {rect(1, 1, 2.5, 2), rect(3.5, 0, 4.5, 2.2)};  // window, door
  AcGeMatrix3d south, east;  // normals -y and +x
  south.setCoordSystem(AcGePoint3d(100, 50, 0), AcGeVector3d(1, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0, -1, 0));
  east.setCoordSystem(AcGePoint3d(-7, 3, 2), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0));
  for (const AcGeMatrix3d& m : {south, east}) expectFills(placed(wall, openings, m), wall, openings, 14.3, m);
  // Pitched 35 degrees, turned 20 in plan, with a skylight.
  const Contour roof = {{0, 0, 0}, {12, 0, 0}, {12, 5, 0}, {6, 7, 0}, {0, 5, 0}};
  const AcGeMatrix3d m = AcGeMatrix3d::translation(AcGeVector3d(10, 20, 9)) *
                         AcGeMatrix3d::rotation(0.35, kUp, AcGePoint3d(3, 3, 0)) *
                         AcGeMatrix3d::rotation(0.61, AcGeVector3d(1, 0, 0));
  expectFills(placed(roof, {rect(2, 1, 4, 3)}, m), roof, {rect(2, 1, 4, 3)}, 68.0, m);
}

TEST(Triangulation, MoreThan65536VerticesStopsAtWholeStrips) {
  Contours holes;  // 130 x 130 small holes: far more strip vertices than 16 bits name
  for (int i = 0; i < 130; ++i)
    for (int j = 0; j < 130; ++j) holes.push_back(rect(10 * i + 3, 10 * j + 3, 10 * i + 7, 10 * j + 7));
  CRenderShape s = polygon(rect(0, 0, 1300, 1300), holes);
  const size_t vertices = s.getGlPts().size() / 3;
  EXPECT_LE(vertices, 65536u);
  EXPECT_GT(vertices, 60000u);
  size_t next = 0;  // each strip has its own run of vertices
  for (const auto& strip : s.getStrips())
    for (uint16_t i : strip) ASSERT_EQ(i, next++);
  EXPECT_EQ(next, vertices);
  double sum = 0;  // what is drawn is right, only incomplete
  for (const Tri& t : triangles(s)) {
    sum += t.area();
    const double cx = std::fmod(t.centroid().x, 10.0), cy = std::fmod(t.centroid().y, 10.0);
    ASSERT_FALSE(cx > 3 && cx < 7 && cy > 3 && cy < 7);
    ASSERT_GT(t.signedArea(kUp), 0);
  }
  EXPECT_GT(sum, 0.0);
  EXPECT_LT(sum, 1300.0 * 1300 - 130 * 130 * 16);
}

TEST(Triangulation, BadInputGivesNoStrips) {
  const double nan = std::nan(""), inf = INFINITY;
  auto none = [](const CRenderShape& s) { return s.getStrips().empty() && s.getGlPts().empty(); };
  CRenderShape s = polygon({{0, 0, 0}, {nan, 1, 0}, {1, 1, 0}, {1, 0, 0}});
  EXPECT_TRUE(none(s) && s.getArea() == 0.0);
  AcGePoint3d lo, hi;
  s.getBox(lo, hi);  // the bad point spoils the box, so objects drop the shape
  EXPECT_TRUE(std::isnan(lo.x) && std::isnan(hi.z));
  EXPECT_TRUE(none(polygon({{0, 0, 0}, {inf, 1, 0}, {1, 1, 0}})));
  EXPECT_TRUE(none(polygon(rect(0, 0, 4, 4), {{{1, 1, 0}, {2, 1, -inf}, {2, 2, 0}}})));
  for (const Contour& c : std::vector<Contour>{{}, {{0, 0, 0}}, {{0, 0, 0}, {1, 1, 0}}, {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}},
                                               {{0, 0, 0}, {1, 1, 0}, {3, 3, 0}}, {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}, {3, 0, 0}}})
    EXPECT_TRUE(none(polygon(c))) << c.size();
  EXPECT_TRUE(none(polygon(rect(0, 0, 2, 2), {rect(0, 0, 2, 2)})));  // cancelled by its hole
  for (const AcGeVector3d& n : {AcGeVector3d(0, 0, 0), AcGeVector3d(nan, 0, 1), AcGeVector3d(inf, 0, 0)}) {
    EXPECT_TRUE(none(polygon(rect(0, 0, 1, 1), {rect(0.2, 0.2, 0.4, 0.4)}, n)));
    EXPECT_TRUE(none(polygon(rect(0, 0, 1, 1), {}, n)));
  }
  // Beyond what the tessellator takes: refused, not clamped.
  EXPECT_TRUE(none(polygon(rect(0, 0, 1e200, 1e200), {rect(1e199, 1e199, 2e199, 2e199)})));
}

TEST(Triangulation, HugeCoordinatesStillTriangulate) {
  Contour outer = rect(-1e15, -1e15, 1e15, 1e15), hole = rect(0, 0, 5e14, 5e14);
  expectFills(polygon(outer), outer, {}, 4e30);
  expectFills(polygon(outer, {hole}), outer, {hole}, 4e30 - 2.5e29);
  // A room far off the origin, where coordinates lie on a 1/8 grid.
  Contour room = rect(1e15, 1e15, 1e15 + 64, 1e15 + 32), column = rect(1e15 + 8, 1e15 + 8, 1e15 + 16, 1e15 + 16);
  expectFills(polygon(room, {column}), room, {column}, 64 * 32 - 64);
}
