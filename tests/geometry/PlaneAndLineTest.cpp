// Planes and straight entities in 2D and 3D.
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeLineSeg2d.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/AcGeRay2d.h"
#include "kxrender/AcGeRay3d.h"

namespace {
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
using P = AcGePoint3d;
using V = AcGeVector3d;
using Seg = AcGeLineSeg3d;
}  // namespace

TEST(AcGePlaneTest, ConstructorsAndDegeneratePlanes) {
  EXPECT_TRUE(AcGePlane().normal().isEqualTo(V::kZAxis));
  // Normal from (p2 - p1) x (p3 - p1): clockwise seen from +z gives -z.
  AcGePlane cw(P(0, 0, 1), P(0, 1, 1), P(1, 0, 1));
  EXPECT_TRUE(cw.normal().isEqualTo(-V::kZAxis) && cw.pointOnPlane().isEqualTo(P(0, 0, 1)));
  AcGePlane eq(0, 0, 2, -4);  // z = 2, normalised
  double a, b, c, d;
  eq.getCoefficients(a, b, c, d);
  EXPECT_TRUE(c == 1.0 && d == -2.0);
  EXPECT_TRUE(eq.isOn(P(5, -7, 2)));
  EXPECT_FALSE(eq.isOn(P(5, -7, 2.001)));
  for (const AcGePlane& bad : {AcGePlane(P(0, 0, 0), P(1, 1, 1), P(2, 2, 2)), AcGePlane(0, 0, 0, 1),
                               AcGePlane(kNaN, 0, 1, 0)}) {
    EXPECT_FALSE(bad.isValid());
    EXPECT_FALSE(bad.isOn(P(0, 0, 0)));
    P hit(7, 7, 7);
    EXPECT_FALSE(bad.intersectWith(AcGeLine3d(P(), V::kZAxis), hit));
    EXPECT_TRUE(hit.isEqualTo(P(7, 7, 7)));  // untouched
  }
}

TEST(AcGeLinearEnt3dTest, IntersectionsRespectExtentAndRefuseOverlapAndBadInput) {
  const AcGePlane plane(P(0, 0, 5), V::kZAxis);
  const Seg a(P(0, 0, 0), P(2, 2, 0)), x(P(0, 0, 0), P(2, 0, 0));
  const P none(9, 9, 9);
  struct Row {
    const char* name;
    std::function<bool(P&)> meet;
    P at;  // none: no intersection, output untouched
  };
  const Row rows[] = {
      {"plane, line", [&](P& p) { return plane.intersectWith(AcGeLine3d(P(1, 2, 0), V(0, 0, -1)), p); }, P(1, 2, 5)},
      {"plane, ray pointing away", [&](P& p) { return plane.intersectWith(AcGeRay3d(P(1, 2, 0), V(0, 0, -1)), p); }, none},
      {"plane, short segment", [&](P& p) { return plane.intersectWith(Seg(P(1, 2, 0), P(1, 2, 4.9)), p); }, none},
      {"segment ending on the plane", [&](P& p) { return Seg(P(1, 2, 0), P(1, 2, 5)).intersectWith(plane, p); },
       P(1, 2, 5)},
      {"plane, parallel line", [&](P& p) { return plane.intersectWith(AcGeLine3d(P(0, 0, 0), V::kXAxis), p); }, none},
      {"plane, zero direction", [&](P& p) { return plane.intersectWith(AcGeLine3d(P(), V()), p); }, none},
      {"plane, NaN line", [&](P& p) { return plane.intersectWith(AcGeLine3d(P(kNaN, 0, 0), V::kZAxis), p); }, none},
      {"crossing segments", [&](P& p) { return a.intersectWith(Seg(P(0, 2, 0), P(2, 0, 0)), p); }, P(1, 1, 0)},
      {"skew", [&](P& p) { return a.intersectWith(Seg(P(0, 2, 1), P(2, 0, 1)), p); }, none},
      {"stops short", [&](P& p) { return a.intersectWith(Seg(P(0, 2, 0), P(0.9, 1.1, 0)), p); }, none},
      {"ray towards", [&](P& p) { return a.intersectWith(AcGeRay3d(P(0, 2, 0), V(1, -1, 0)), p); }, P(1, 1, 0)},
      {"ray away", [&](P& p) { return a.intersectWith(AcGeRay3d(P(0, 2, 0), V(-1, 1, 0)), p); }, none},
      {"touching at an end", [&](P& p) { return a.intersectWith(Seg(P(2, 2, 0), P(3, 0, 0)), p); }, P(2, 2, 0)},
      {"collinear overlap", [&](P& p) { return x.intersectWith(Seg(P(1, 0, 0), P(3, 0, 0)), p); }, none},
      {"zero-length segment", [&](P& p) { return x.intersectWith(Seg(P(1, 0, 0), P(1, 0, 0)), p); }, none},
      {"NaN segment", [&](P& p) { return x.intersectWith(Seg(P(1, kNaN, 0), P(1, 1, 0)), p); }, none},
      {"infinite direction", [&](P& p) { return x.intersectWith(AcGeLine3d(P(1, -1, 0), V(kInf, 1, 0)), p); }, none},
  };
  for (const Row& r : rows) {
    P p = none;
    EXPECT_EQ(r.meet(p), !r.at.isEqualTo(none)) << r.name;
    EXPECT_TRUE(p.isEqualTo(r.at)) << r.name;
  }
  // Large coordinates still meet.
  AcGeTol loose;
  loose.setEqualPoint(1.0);
  P p;
  EXPECT_TRUE(AcGeLine3d(P(1e15, 0, 0), V(1, 1, 0)).intersectWith(AcGeLine3d(P(1e15, 2, 0), V(1, -1, 0)), p, loose));
  EXPECT_NEAR(p.y, 1.0, 0.5);
}

TEST(AcGeLinearEnt3dTest, IsOnUsesEqualPointOnlyAndKeepsToTheExtent) {
  const Seg seg(P(0, 0, 0), P(10, 0, 0));
  AcGeTol tol;
  tol.setEqualPoint(0.001);
  EXPECT_TRUE(seg.isOn(P(5, 0.0009, 0), tol));
  EXPECT_FALSE(seg.isOn(P(5, 0.0011, 0), tol));
  EXPECT_TRUE(seg.isOn(P(10.0009, 0, 0), tol));  // past the end, within the tolerance
  EXPECT_FALSE(seg.isOn(P(10.0011, 0, 0), tol));
  EXPECT_TRUE(AcGeLine3d(P(), V::kXAxis).isOn(P(-1e6, 0, 0)));
  EXPECT_FALSE(AcGeRay3d(P(), V::kXAxis).isOn(P(-1, 0, 0)));
  EXPECT_FALSE(seg.isOn(P(kNaN, 0, 0)));
  EXPECT_DOUBLE_EQ(Seg(P(1, 1, 1), P(4, 5, 1)).length(), 5.0);
}

TEST(AcGeLinearEnt2dTest, Intersections) {
  using P2 = AcGePoint2d;
  const AcGeLineSeg2d a(P2(0, 0), P2(4, 0));
  const std::pair<std::function<bool(P2&)>, P2> rows[] = {
      {[&](P2& p) { return a.intersectWith(AcGeLineSeg2d(P2(1, -1), P2(1, 3)), p); }, P2(1, 0)},
      {[&](P2& p) { return a.intersectWith(AcGeRay2d(P2(3, 5), AcGeVector2d(0, -1)), p); }, P2(3, 0)},
      {[&](P2& p) { return a.intersectWith(AcGeRay2d(P2(3, 5), AcGeVector2d(0, 1)), p); }, P2(9, 9)},
      {[&](P2& p) { return a.intersectWith(AcGeLineSeg2d(P2(2, 0), P2(6, 0)), p); }, P2(9, 9)},  // overlap
      {[&](P2& p) { return a.intersectWith(AcGeLineSeg2d(P2(5, -1), P2(5, 1)), p); }, P2(9, 9)},
      {[&](P2& p) { return a.intersectWith(AcGeLineSeg2d(P2(kNaN, -1), P2(5, 1)), p); }, P2(9, 9)},
  };
  for (size_t i = 0; i < std::size(rows); ++i) {
    P2 p(9, 9);
    EXPECT_EQ(rows[i].first(p), !rows[i].second.isEqualTo(P2(9, 9))) << i;
    EXPECT_TRUE(p.isEqualTo(rows[i].second)) << i;
  }
}
