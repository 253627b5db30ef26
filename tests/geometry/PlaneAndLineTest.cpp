// Planes and straight entities in 2D and 3D.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeLineSeg2d.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/AcGeRay2d.h"
#include "kxrender/AcGeRay3d.h"

namespace {
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
}  // namespace

TEST(AcGePlaneTest, Constructors) {
  EXPECT_TRUE(AcGePlane().normal().isEqualTo(AcGeVector3d::kZAxis));
  // Normal from (p2 - p1) x (p3 - p1): clockwise seen from +z gives -z.
  AcGePlane cw(AcGePoint3d(0, 0, 1), AcGePoint3d(0, 1, 1), AcGePoint3d(1, 0, 1));
  EXPECT_TRUE(cw.normal().isEqualTo(-AcGeVector3d::kZAxis));
  EXPECT_TRUE(cw.pointOnPlane().isEqualTo(AcGePoint3d(0, 0, 1)));

  AcGePlane eq(0, 0, 2, -4);  // z = 2
  double a, b, c, d;
  eq.getCoefficients(a, b, c, d);
  EXPECT_DOUBLE_EQ(c, 1.0);
  EXPECT_DOUBLE_EQ(d, -2.0);
  EXPECT_TRUE(eq.isOn(AcGePoint3d(5, -7, 2)));
  EXPECT_FALSE(eq.isOn(AcGePoint3d(5, -7, 2.001)));
}

TEST(AcGePlaneTest, DegeneratePlanesHaveNoPoints) {
  AcGePlane collinear(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 1), AcGePoint3d(2, 2, 2));
  EXPECT_FALSE(collinear.isValid());
  EXPECT_FALSE(collinear.isOn(AcGePoint3d(0, 0, 0)));
  AcGePlane zero(0, 0, 0, 1);
  EXPECT_FALSE(zero.isValid());
  AcGePlane nan(kNaN, 0, 1, 0);
  EXPECT_FALSE(nan.isValid());
  AcGePoint3d hit(7, 7, 7);
  EXPECT_FALSE(zero.intersectWith(AcGeLine3d(AcGePoint3d(), AcGeVector3d::kZAxis), hit));
  EXPECT_TRUE(hit.isEqualTo(AcGePoint3d(7, 7, 7)));
}

TEST(AcGePlaneTest, IntersectWithLinearRespectsExtent) {
  AcGePlane plane(AcGePoint3d(0, 0, 5), AcGeVector3d::kZAxis);
  AcGePoint3d hit;
  EXPECT_TRUE(plane.intersectWith(AcGeLine3d(AcGePoint3d(1, 2, 0), AcGeVector3d(0, 0, -1)), hit));
  EXPECT_TRUE(hit.isEqualTo(AcGePoint3d(1, 2, 5)));
  // The ray points away, the segment stops short.
  EXPECT_FALSE(plane.intersectWith(AcGeRay3d(AcGePoint3d(1, 2, 0), AcGeVector3d(0, 0, -1)), hit));
  EXPECT_FALSE(plane.intersectWith(AcGeLineSeg3d(AcGePoint3d(1, 2, 0), AcGePoint3d(1, 2, 4.9)), hit));
  EXPECT_TRUE(AcGeLineSeg3d(AcGePoint3d(1, 2, 0), AcGePoint3d(1, 2, 5)).intersectWith(plane, hit));
  // Parallel, and lying in the plane.
  EXPECT_FALSE(plane.intersectWith(AcGeLine3d(AcGePoint3d(0, 0, 5), AcGeVector3d::kXAxis), hit));
  EXPECT_FALSE(plane.intersectWith(AcGeLine3d(AcGePoint3d(0, 0, 0), AcGeVector3d::kXAxis), hit));
  EXPECT_FALSE(plane.intersectWith(AcGeLine3d(AcGePoint3d(0, 0, 0), AcGeVector3d()), hit));
  EXPECT_FALSE(plane.intersectWith(AcGeLine3d(AcGePoint3d(kNaN, 0, 0), AcGeVector3d::kZAxis), hit));
}

TEST(AcGeLinearEnt3dTest, IsOnUsesEqualPointOnly) {
  AcGeLineSeg3d seg(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
  AcGeTol tol;
  tol.setEqualPoint(0.001);
  EXPECT_TRUE(seg.isOn(AcGePoint3d(5, 0.0009, 0), tol));
  EXPECT_FALSE(seg.isOn(AcGePoint3d(5, 0.0011, 0), tol));
  // Beyond the end of the segment, but on the carrier line.
  EXPECT_TRUE(seg.isOn(AcGePoint3d(10.0009, 0, 0), tol));
  EXPECT_FALSE(seg.isOn(AcGePoint3d(10.0011, 0, 0), tol));
  EXPECT_TRUE(AcGeLine3d(AcGePoint3d(), AcGeVector3d::kXAxis).isOn(AcGePoint3d(-1e6, 0, 0)));
  EXPECT_FALSE(AcGeRay3d(AcGePoint3d(), AcGeVector3d::kXAxis).isOn(AcGePoint3d(-1, 0, 0)));
  EXPECT_FALSE(seg.isOn(AcGePoint3d(kNaN, 0, 0)));
}

TEST(AcGeLinearEnt3dTest, SegmentAccessors) {
  AcGeLineSeg3d seg;
  seg.set(AcGePoint3d(1, 1, 1), AcGePoint3d(4, 5, 1));
  EXPECT_DOUBLE_EQ(seg.length(), 5.0);
  EXPECT_TRUE(seg.midPoint().isEqualTo(AcGePoint3d(2.5, 3, 1)));
  EXPECT_TRUE(seg.direction().isEqualTo(AcGeVector3d(0.6, 0.8, 0)));
  EXPECT_FALSE(seg.isKindOf(AcGe::kRay3d));
  seg.transformBy(AcGeMatrix3d::translation(AcGeVector3d(0, 0, 2)));
  EXPECT_TRUE(seg.endPoint().isEqualTo(AcGePoint3d(4, 5, 3)));
}

TEST(AcGeLinearEnt3dTest, IntersectWithOtherLinear) {
  AcGePoint3d p;
  AcGeLineSeg3d a(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 2, 0));
  AcGeLineSeg3d b(AcGePoint3d(0, 2, 0), AcGePoint3d(2, 0, 0));
  ASSERT_TRUE(a.intersectWith(b, p));
  EXPECT_TRUE(p.isEqualTo(AcGePoint3d(1, 1, 0)));
  // Skew lines miss; short segments miss; rays respect their origin.
  AcGeLineSeg3d lifted(AcGePoint3d(0, 2, 1), AcGePoint3d(2, 0, 1));
  EXPECT_FALSE(a.intersectWith(lifted, p));
  EXPECT_FALSE(a.intersectWith(AcGeLineSeg3d(AcGePoint3d(0, 2, 0), AcGePoint3d(0.9, 1.1, 0)), p));
  EXPECT_TRUE(a.intersectWith(AcGeRay3d(AcGePoint3d(0, 2, 0), AcGeVector3d(1, -1, 0)), p));
  EXPECT_FALSE(a.intersectWith(AcGeRay3d(AcGePoint3d(0, 2, 0), AcGeVector3d(-1, 1, 0)), p));
  // Touching at an end point counts.
  EXPECT_TRUE(a.intersectWith(AcGeLineSeg3d(AcGePoint3d(2, 2, 0), AcGePoint3d(3, 0, 0)), p));
  EXPECT_TRUE(p.isEqualTo(AcGePoint3d(2, 2, 0)));
}

TEST(AcGeLinearEnt3dTest, CollinearOverlapAndDegenerateGiveFalse) {
  AcGePoint3d p(9, 9, 9);
  AcGeLineSeg3d a(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 0, 0));
  EXPECT_FALSE(a.intersectWith(AcGeLineSeg3d(AcGePoint3d(1, 0, 0), AcGePoint3d(3, 0, 0)), p));
  EXPECT_FALSE(a.intersectWith(AcGeLineSeg3d(AcGePoint3d(1, 0, 0), AcGePoint3d(1, 0, 0)), p));
  EXPECT_FALSE(a.intersectWith(AcGeLineSeg3d(AcGePoint3d(1, kNaN, 0), AcGePoint3d(1, 1, 0)), p));
  EXPECT_FALSE(a.intersectWith(AcGeLine3d(AcGePoint3d(1, -1, 0), AcGeVector3d(kInf, 1, 0)), p));
  EXPECT_TRUE(p.isEqualTo(AcGePoint3d(9, 9, 9)));
  // Large coordinates still meet.
  AcGeLine3d far1(AcGePoint3d(1e15, 0, 0), AcGeVector3d(1, 1, 0));
  AcGeLine3d far2(AcGePoint3d(1e15, 2, 0), AcGeVector3d(1, -1, 0));
  AcGeTol loose;
  loose.setEqualPoint(1.0);
  EXPECT_TRUE(far1.intersectWith(far2, p, loose));
  EXPECT_NEAR(p.y, 1.0, 0.5);
}

TEST(AcGeLinearEnt2dTest, Intersections) {
  AcGePoint2d p;
  AcGeLineSeg2d a(AcGePoint2d(0, 0), AcGePoint2d(4, 0));
  ASSERT_TRUE(a.intersectWith(AcGeLineSeg2d(AcGePoint2d(1, -1), AcGePoint2d(1, 3)), p));
  EXPECT_TRUE(p.isEqualTo(AcGePoint2d(1, 0)));
  EXPECT_TRUE(a.intersectWith(AcGeRay2d(AcGePoint2d(3, 5), AcGeVector2d(0, -1)), p));
  EXPECT_TRUE(p.isEqualTo(AcGePoint2d(3, 0)));
  EXPECT_FALSE(a.intersectWith(AcGeRay2d(AcGePoint2d(3, 5), AcGeVector2d(0, 1)), p));
  EXPECT_FALSE(a.intersectWith(AcGeLineSeg2d(AcGePoint2d(2, 0), AcGePoint2d(6, 0)), p));
  EXPECT_FALSE(a.intersectWith(AcGeLineSeg2d(AcGePoint2d(5, -1), AcGePoint2d(5, 1)), p));
  EXPECT_FALSE(a.intersectWith(AcGeLineSeg2d(AcGePoint2d(kNaN, -1), AcGePoint2d(5, 1)), p));
  EXPECT_DOUBLE_EQ(AcGeLineSeg2d(AcGePoint2d(1, 1), AcGePoint2d(4, 5)).length(), 5.0);
}
