// Curve-curve intersections of known configurations.
#include <gtest/gtest.h>

#include <cmath>

#include "geometry/NurbsCircle.h"
#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeCurveCurveInt3d.h"
#include "kxrender/AcGeEllipArc3d.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeLineSeg3d.h"

namespace {

bool hasPoint(const AcGeCurveCurveInt3d& ints, const AcGePoint3d& p, double eps) {
  for (int i = 0; i < ints.numIntPoints(); ++i)
    if (ints.intPoint(i).distanceTo(p) <= eps) return true;
  return false;
}

}  // namespace

TEST(AcGeCurveCurveInt3dTest, CirclesMeetTwiceOnceOrNowhere) {
  AcGeCircArc3d a(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1.0);
  AcGeCircArc3d b(AcGePoint3d(1, 0, 0), AcGeVector3d::kZAxis, 1.0);
  AcGeCurveCurveInt3d ints(a, b);
  ASSERT_EQ(ints.numIntPoints(), 2);
  EXPECT_TRUE(hasPoint(ints, AcGePoint3d(0.5, std::sqrt(3.0) / 2, 0), 1e-12));
  EXPECT_TRUE(hasPoint(ints, AcGePoint3d(0.5, -std::sqrt(3.0) / 2, 0), 1e-12));
  // Ordered by the first curve's parameter.
  double s0, t0, s1, t1;
  ints.getIntParams(0, s0, t0);
  ints.getIntParams(1, s1, t1);
  EXPECT_LT(s0, s1);
  EXPECT_TRUE(a.evalPoint(s0).isEqualTo(b.evalPoint(t0)));
  // Tangent circles meet once.
  AcGeCurveCurveInt3d tangent(a, AcGeCircArc3d(AcGePoint3d(3, 0, 0), AcGeVector3d::kZAxis, 2.0));
  ASSERT_EQ(tangent.numIntPoints(), 1);
  EXPECT_NEAR(tangent.intPoint(0).distanceTo(AcGePoint3d(1, 0, 0)), 0.0, 1e-4);
  AcGeCircArc3d far(AcGePoint3d(5, 0, 0), AcGeVector3d::kZAxis, 1.0);
  EXPECT_EQ(AcGeCurveCurveInt3d(a, far).numIntPoints(), 0);
  // Same circle lifted off the plane: crossing as seen from above only.
  AcGeCircArc3d lifted(AcGePoint3d(1, 0, 1), AcGeVector3d::kZAxis, 1.0);
  EXPECT_EQ(AcGeCurveCurveInt3d(a, lifted).numIntPoints(), 0);
  AcGeCurveCurveInt3d seen(a, lifted, AcGeVector3d::kZAxis);
  EXPECT_EQ(seen.numIntPoints(), 2);
  EXPECT_EQ(seen.intPoint(5).z, 0.0);  // index past the end reads the last
}

TEST(AcGeCurveCurveInt3dTest, CrossedEllipses) {
  AcGeEllipArc3d a(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 2.0, 1.0);
  AcGeEllipArc3d b(AcGePoint3d(), AcGeVector3d::kYAxis, -AcGeVector3d::kXAxis, 2.0, 1.0);
  AcGeCurveCurveInt3d ints(a, b);
  ASSERT_EQ(ints.numIntPoints(), 4);
  double x = 2.0 / std::sqrt(5.0);
  for (double sx : {-1.0, 1.0})
    for (double sy : {-1.0, 1.0}) EXPECT_TRUE(hasPoint(ints, AcGePoint3d(sx * x, sy * x, 0), 1e-12));
  // A flat ellipse against a line through it.
  AcGeEllipArc3d flat(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 100.0, 0.01);
  AcGeLine3d vertical(AcGePoint3d(60, 0, 0), AcGeVector3d::kYAxis);
  AcGeCurveCurveInt3d lineHits(flat, vertical);
  ASSERT_EQ(lineHits.numIntPoints(), 2);
  EXPECT_TRUE(hasPoint(lineHits, AcGePoint3d(60, 0.008, 0), 1e-12));
  EXPECT_TRUE(hasPoint(lineHits, AcGePoint3d(60, -0.008, 0), 1e-12));
}

TEST(AcGeCurveCurveInt3dTest, NurbsCircleAgainstLineAndArc) {
  AcGeNurbCurve3d c = nurbsCircle(AcGePoint3d(), 1.0);
  AcGeLineSeg3d seg(AcGePoint3d(-2, 0.6, 0), AcGePoint3d(2, 0.6, 0));
  AcGeCurveCurveInt3d ints(c, seg);
  ASSERT_EQ(ints.numIntPoints(), 2);
  EXPECT_TRUE(hasPoint(ints, AcGePoint3d(0.8, 0.6, 0), 1e-12));
  EXPECT_TRUE(hasPoint(ints, AcGePoint3d(-0.8, 0.6, 0), 1e-12));
  AcGeCircArc3d arc(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, 1.0);
  AcGeCurveCurveInt3d withArc(c, arc);
  ASSERT_EQ(withArc.numIntPoints(), 2);
  EXPECT_TRUE(hasPoint(withArc, AcGePoint3d(1, 0, 0), 1e-12));
  EXPECT_TRUE(hasPoint(withArc, AcGePoint3d(0, 1, 0), 1e-12));
}

TEST(AcGeCurveCurveInt3dTest, StraightEntities) {
  AcGeLineSeg3d a(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 2, 0));
  AcGeLine3d b(AcGePoint3d(0, 2, 0), AcGeVector3d(1, -1, 0));
  AcGeCurveCurveInt3d ints(a, b);
  ASSERT_EQ(ints.numIntPoints(), 1);
  EXPECT_TRUE(ints.intPoint(0).isEqualTo(AcGePoint3d(1, 1, 0)));
  AcGeLineSeg3d overlap(AcGePoint3d(1, 1, 0), AcGePoint3d(3, 3, 0));
  EXPECT_EQ(AcGeCurveCurveInt3d(a, overlap).numIntPoints(), 0);
  AcGeCurveCurveInt3d empty;
  EXPECT_EQ(empty.numIntPoints(), 0);
  EXPECT_TRUE(empty.intPoint(0).isEqualTo(AcGePoint3d::kOrigin));
}

TEST(AcGeCurveCurveInt3dTest, ToleranceDecidesNearMisses) {
  AcGeCircArc3d a(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1.0);
  AcGeLineSeg3d seg(AcGePoint3d(1.0005, -1, 0), AcGePoint3d(1.0005, 1, 0));
  EXPECT_EQ(AcGeCurveCurveInt3d(a, seg).numIntPoints(), 0);
  AcGeTol loose;
  loose.setEqualPoint(0.001);
  EXPECT_GE(AcGeCurveCurveInt3d(a, seg, AcGeVector3d::kIdentity, loose).numIntPoints(), 1);
}
