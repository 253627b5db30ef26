// Analytic checks of arcs, ellipses and NURBS curves.
#include <gtest/gtest.h>

#include <cmath>

#include "geometry/NurbsCircle.h"
#include "kxrender/AcGeCircArc2d.h"
#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeEllipArc3d.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGeNurbCurve3d.h"

TEST(AcGeCircArc3dTest, EvaluationAndAngles) {
  AcGeCircArc3d arc(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 2.0, 0.0, M_PI / 2);
  EXPECT_TRUE(arc.startPoint().isEqualTo(AcGePoint3d(3, 1, 0)));
  EXPECT_TRUE(arc.endPoint().isEqualTo(AcGePoint3d(1, 3, 0)));
  // Start above end is brought into order by a whole turn.
  arc.setAngles(3 * M_PI / 2, M_PI / 2);
  EXPECT_DOUBLE_EQ(arc.startAng(), 3 * M_PI / 2);
  EXPECT_DOUBLE_EQ(arc.endAng(), 5 * M_PI / 2);
  // A negative normal turns the other way.
  AcGeCircArc3d cw(AcGePoint3d(), -AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 1.0, 0.0, M_PI / 2);
  EXPECT_TRUE(cw.endPoint().isEqualTo(AcGePoint3d(0, -1, 0)));
}

TEST(AcGeCircArc3dTest, ThroughThreePoints) {
  AcGeCircArc3d arc(AcGePoint3d(2, 0, 0), AcGePoint3d(0, 2, 0), AcGePoint3d(-2, 0, 0));
  EXPECT_TRUE(arc.center().isEqualTo(AcGePoint3d(0, 0, 0)));
  EXPECT_NEAR(arc.radius(), 2.0, 1e-14);
  EXPECT_NEAR(arc.endAng() - arc.startAng(), M_PI, 1e-14);
  EXPECT_FALSE(arc.isOn(AcGePoint3d(0, -2, 0)));  // so the half turn is the upper one
  // The same three points the other way round sweep the lower half.
  AcGeCircArc3d lower(AcGePoint3d(2, 0, 0), AcGePoint3d(0, -2, 0), AcGePoint3d(-2, 0, 0));
  EXPECT_TRUE(lower.isOn(AcGePoint3d(0, -2, 0)));
  EXPECT_FALSE(lower.isOn(AcGePoint3d(0, 2, 0)));
  AcGeCircArc3d collinear(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(2, 0, 0));
  EXPECT_EQ(collinear.radius(), 0.0);
}

TEST(AcGeCircArc3dTest, LengthAndParamAtLength) {
  AcGeCircArc3d arc(AcGePoint3d(), AcGeVector3d(1, 1, 1), AcGeVector3d(1, -1, 0), 3.0, 0.5, 2.5);
  EXPECT_NEAR(arc.length(0.5, 2.5), 6.0, 1e-13);
  EXPECT_NEAR(arc.length(2.5, 0.5), 6.0, 1e-13);
  EXPECT_NEAR(arc.length(0.0, 9.0), 6.0, 1e-13);  // clamped to the sweep
  EXPECT_NEAR(arc.paramAtLength(0.5, 3.0, true), 1.5, 1e-14);
  EXPECT_NEAR(arc.paramAtLength(2.5, 3.0, false), 1.5, 1e-14);
  EXPECT_NEAR(arc.paramAtLength(0.5, 100.0, true), 2.5, 1e-14);
}

TEST(AcGeCircArc3dTest, ClosestAndNormalPoints) {
  AcGeCircArc3d arc(AcGePoint3d(), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 1.0, 0.0, M_PI / 2);
  AcGePoint3d p(3, 3, 5);
  EXPECT_TRUE(arc.closestPointTo(p).isEqualTo(AcGePoint3d(M_SQRT1_2, M_SQRT1_2, 0)));
  // Outside the sweep the nearer end wins.
  EXPECT_TRUE(arc.closestPointTo(AcGePoint3d(1, -0.1, 0)).isEqualTo(AcGePoint3d(1, 0, 0)));
  EXPECT_TRUE(arc.closestPointTo(AcGePoint3d(-1, 0.1, 0)).isEqualTo(AcGePoint3d(0, 1, 0)));
  AcGePointOnCurve3d poc;
  ASSERT_TRUE(arc.getNormalPoint(AcGePoint3d(2, 2, 0), poc));
  EXPECT_TRUE(poc.point().isEqualTo(AcGePoint3d(M_SQRT1_2, M_SQRT1_2, 0)));
  EXPECT_FALSE(arc.getNormalPoint(AcGePoint3d(-2, 2, 0), poc));  // feet outside the sweep
  arc.getClosestPointTo(AcGePoint3d(0, 5, 0), poc);
  EXPECT_TRUE(poc.point().isEqualTo(AcGePoint3d(0, 1, 0)));
  EXPECT_NEAR(poc.parameter(), M_PI / 2, 1e-15);
  EXPECT_NEAR(arc.paramOf(AcGePoint3d(0, 1, 0)), M_PI / 2, 1e-15);
}

TEST(AcGeCircArc3dTest, IntersectWithLine) {
  const AcGeCircArc3d circle(AcGePoint3d(1, 0, 0), AcGeVector3d::kZAxis, 2.0);
  const AcGeCircArc3d upper(AcGePoint3d(1, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 2.0, 0.0, M_PI);
  const AcGeLine3d up(AcGePoint3d(1, -5, 0), AcGeVector3d::kYAxis), tangent(AcGePoint3d(3, 0, 0), AcGeVector3d::kYAxis),
      onCircle(AcGePoint3d(-1, 0, 4), AcGeVector3d::kZAxis), inside(AcGePoint3d(0, 0, 4), AcGeVector3d::kZAxis);
  const AcGeLineSeg3d shortSeg(AcGePoint3d(1, -5, 0), AcGePoint3d(1, 1, 0));
  // {arc, line, count, a point}: through, tangent, crossing the plane on the
  // circle and inside it, and the half arc keeping what lies on it.
  const std::tuple<const AcGeCircArc3d&, const AcGeLinearEnt3d&, int, AcGePoint3d> rows[] = {
      {circle, up, 2, {1, -2, 0}}, {circle, tangent, 1, {3, 0, 0}}, {circle, onCircle, 1, {-1, 0, 0}},
      {circle, inside, 0, {}},     {upper, up, 1, {1, 2, 0}},       {upper, shortSeg, 0, {}},
  };
  for (const auto& [arc, line, count, first] : rows) {
    int n = -1;
    AcGePoint3d p1, p2;
    EXPECT_EQ(arc.intersectWith(line, n, p1, p2), count > 0);
    EXPECT_EQ(n, count);
    if (count) EXPECT_TRUE(p1.isEqualTo(first) || (count == 2 && p2.isEqualTo(first))) << p1.x << "," << p1.y;
    if (count == 2) EXPECT_NEAR(p1.y, -p2.y, 1e-14);
  }
}

TEST(AcGeCircArc3dTest, BoundBlockAndSamples) {
  AcGeCircArc3d arc(AcGePoint3d(), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 1.0, M_PI / 4, 3 * M_PI / 4);
  AcGePoint3d lo, hi;
  arc.boundBlock().getMinMaxPoints(lo, hi);
  EXPECT_NEAR(hi.y, 1.0, 1e-15);  // the top of the circle lies inside the sweep
  EXPECT_NEAR(lo.y, M_SQRT1_2, 1e-15);
  EXPECT_NEAR(lo.x, -M_SQRT1_2, 1e-15);
  AcArray<AcGePoint3d> pts;
  pts.append(AcGePoint3d(9, 9, 9));
  arc.getSamplePoints(5, pts);
  ASSERT_EQ(pts.length(), 5);
  EXPECT_TRUE(pts[0].isEqualTo(arc.startPoint()));
  EXPECT_TRUE(pts[2].isEqualTo(AcGePoint3d(0, 1, 0)));
  EXPECT_TRUE(pts[4].isEqualTo(arc.endPoint()));
  arc.getSamplePoints(0, pts);
  EXPECT_EQ(pts.length(), 0);
}

TEST(AcGeEllipArc3dTest, PerimeterAgainstKnownValues) {
  // {minor radius, perimeter} with major radius 3, from the arithmetic-geometric mean.
  const std::pair<double, double> rows[] = {{3.0, 6 * M_PI}, {0.9, 13.157730208706727}, {0.003, 12.000046764314062}};
  for (const auto& [minor, exact] : rows) {
    AcGeEllipArc3d e(AcGePoint3d(5, -2, 1), AcGeVector3d(1, 1, 0), AcGeVector3d(-1, 1, 1), 3.0, minor);
    EXPECT_NEAR(e.length(0.0, 2 * M_PI), exact, 1e-10 * exact) << "minor " << minor;
    // By symmetry each quarter is a quarter of the whole.
    EXPECT_NEAR(e.length(M_PI / 2, M_PI), exact / 4, 1e-10 * exact) << "minor " << minor;
    EXPECT_NEAR(e.paramAtLength(0.0, exact / 4, true), M_PI / 2, 1e-9) << "minor " << minor;
    EXPECT_NEAR(e.paramAtLength(2 * M_PI, exact / 2, false), M_PI, 1e-9) << "minor " << minor;
  }
  // On a partial arc paramAtLength inverts length, clamped to the arc.
  AcGeEllipArc3d e(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 10.0, 1.0, 0.3, 5.0);
  for (double len : {0.0, 0.1, 3.7, 12.0, 25.0}) {
    double t = e.paramAtLength(0.3, len, true);
    EXPECT_NEAR(e.length(0.3, t), len, 1e-9 * (1 + len));
  }
  double total = e.length(0.3, 5.0);
  EXPECT_DOUBLE_EQ(e.paramAtLength(0.3, total * 2, true), 5.0);
  EXPECT_DOUBLE_EQ(e.paramAtLength(1.0, -1.0, true), 1.0);
}

TEST(AcGeEllipArc3dTest, ClosestAndNormalPoints) {
  AcGeEllipArc3d e(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 4.0, 1.0);
  EXPECT_TRUE(e.closestPointTo(AcGePoint3d(10, 0, 3)).isEqualTo(AcGePoint3d(4, 0, 0)));
  // A general point: the nearest point is a foot, and no sample is nearer.
  AcGePoint3d p(3, 2, 0);
  AcGePoint3d q = e.closestPointTo(p);
  double t = e.paramOf(q);
  EXPECT_NEAR(e.evalDeriv(t).normal().dotProduct((q - p).normal()), 0.0, 1e-12);
  EXPECT_TRUE(e.isOn(q));
  for (int i = 0; i < 1000; ++i) EXPECT_GE(e.evalPoint(i * 2 * M_PI / 1000).distanceTo(p), q.distanceTo(p) - 1e-12);
  // From inside, near the center, four feet exist; the guess picks one.
  AcGePointOnCurve3d poc(e, M_PI / 2);
  ASSERT_TRUE(e.getNormalPoint(AcGePoint3d(0.1, 0.05, 0), poc));
  EXPECT_GT(poc.point().y, 0.5);
  poc.setParameter(M_PI);
  ASSERT_TRUE(e.getNormalPoint(AcGePoint3d(0.1, 0.05, 0), poc));
  EXPECT_LT(poc.point().x, -3.9);
}

TEST(AcGeEllipArc3dTest, BoxAndTransforms) {
  AcGeEllipArc3d e(AcGePoint3d(1, 1, 1), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 2.0, 1.0);
  AcGePoint3d lo, hi;
  e.boundBlock().getMinMaxPoints(lo, hi);
  EXPECT_NEAR(lo.x, -1.0, 1e-15);
  EXPECT_NEAR(hi.y, 2.0, 1e-15);
  // A non-uniform scale turns the ellipse into one with swapped axes.
  AcGeMatrix3d m;
  m.entry[1][1] = 4.0;
  const AcGeEllipArc3d before(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 2.0, 1.0, 0.2, 1.0);
  AcGeEllipArc3d s = before;
  s.transformBy(m);
  EXPECT_NEAR(s.majorRadius(), 4.0, 1e-14);
  EXPECT_NEAR(s.minorRadius(), 2.0, 1e-14);
  EXPECT_TRUE(s.startPoint().isEqualTo(m * before.startPoint()));
  EXPECT_NEAR(s.distanceTo(m * before.evalPoint(0.7)), 0.0, 1e-12);
  // A turned and scaled arc keeps its shape: radius, end and normal follow.
  AcGeCircArc3d arc(AcGePoint3d(1, 0, 0), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 1.0, 0.0, M_PI / 2);
  const AcGeMatrix3d t = AcGeMatrix3d::rotation(M_PI / 2, AcGeVector3d::kXAxis) * AcGeMatrix3d::scaling(2.0);
  const AcGePoint3d end = t * arc.endPoint();
  arc.transformBy(t);
  EXPECT_NEAR(arc.radius(), 2.0, 1e-14);
  EXPECT_TRUE(arc.endPoint().isEqualTo(end));
  EXPECT_TRUE(arc.normal().isEqualTo(-AcGeVector3d::kYAxis));
}

TEST(AcGeNurbCurve3dTest, RationalCircleIsExact) {
  AcGeNurbCurve3d c = nurbsCircle(AcGePoint3d(2, 3, 0), 5.0);
  ASSERT_TRUE(c.isValid());
  for (int i = 0; i <= 100; ++i) EXPECT_NEAR(c.evalPoint(i / 100.0).distanceTo(AcGePoint3d(2, 3, 0)), 5.0, 1e-12);
  EXPECT_NEAR(c.length(0.0, 1.0), 10 * M_PI, 1e-9 * 10 * M_PI);
  EXPECT_NEAR(c.length(0.0, 0.25), 2.5 * M_PI, 1e-9 * 10 * M_PI);
  // The derivative agrees with a central difference.
  double h = 1e-6;
  AcGeVector3d fd = (c.evalPoint(0.4 + h) - c.evalPoint(0.4 - h)) / (2 * h);
  EXPECT_NEAR((fd - c.evalDeriv(0.4)).length(), 0.0, 1e-6 * fd.length());
  AcGePoint3d q = c.closestPointTo(AcGePoint3d(2 + 30, 3 + 40, 7));
  EXPECT_TRUE(q.isEqualTo(AcGePoint3d(2 + 3, 3 + 4, 0), AcGeTol(1e-9, 1e-12)));
  EXPECT_TRUE(c.isClosed());
  double half = c.paramAtLength(0.0, 5 * M_PI, true);
  EXPECT_TRUE(c.evalPoint(half).isEqualTo(AcGePoint3d(-3, 3, 0), AcGeTol(1e-9, 1e-12)));
}

TEST(AcGeNurbCurve3dTest, FitPointsAreInterpolated) {
  AcGePoint3dArray fit;
  for (int i = 0; i <= 6; ++i) fit.append(AcGePoint3d(i, std::sin(i * 0.7), 0.1 * i * i));
  fit.append(fit.last());  // a repeated point is dropped
  AcGeNurbCurve3d c(fit, AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0));
  ASSERT_TRUE(c.isValid());
  EXPECT_TRUE(c.hasFitData());
  EXPECT_EQ(c.numFitPoints(), 7);
  EXPECT_EQ(c.degree(), 3);
  EXPECT_EQ(c.numControlPoints(), 9);
  for (int i = 0; i < c.numFitPoints(); ++i) {
    AcGePoint3d q;
    ASSERT_TRUE(c.getFitPointAt(i, q));
    EXPECT_NEAR(c.distanceTo(q), 0.0, 1e-9);
  }
  EXPECT_TRUE(c.evalDeriv(c.knotAt(0)).normal().isEqualTo(AcGeVector3d::kXAxis, AcGeTol(1e-10, 1e-12)));
  EXPECT_TRUE(c.evalDeriv(c.knotAt(c.numKnots() - 1)).normal().isEqualTo(AcGeVector3d::kYAxis, AcGeTol(1e-10, 1e-12)));
  // Without tangents, points on a line give the line itself: only the chord is that short.
  AcGePoint3dArray straight;
  for (double x : {0.0, 1.0, 3.0, 4.0}) straight.append(AcGePoint3d(x, 2 * x, 0));
  AcGeNurbCurve3d line(straight);
  EXPECT_NEAR(line.length(line.knotAt(0), line.knotAt(line.numKnots() - 1)), 4 * std::sqrt(5.0), 1e-12);
}

TEST(AcGeCircArc2dTest, SamplesFollowDirection) {
  AcGeCircArc2d ccw(AcGePoint2d(1, 1), 2.0, 0.0, M_PI / 2);
  AcGeCircArc2d cw(AcGePoint2d(1, 1), 2.0, 0.0, M_PI / 2, AcGeVector2d::kXAxis, true);
  AcArray<AcGePoint2d> a, b;
  ccw.getSamplePoints(3, a);
  cw.getSamplePoints(3, b);
  ASSERT_EQ(a.length(), 3);
  ASSERT_EQ(b.length(), 3);
  EXPECT_TRUE(a[2].isEqualTo(AcGePoint2d(1, 3)));
  EXPECT_TRUE(b[2].isEqualTo(AcGePoint2d(1, -1)));
  EXPECT_TRUE(a[1].isEqualTo(AcGePoint2d(1 + M_SQRT2, 1 + M_SQRT2)));
  EXPECT_TRUE(cw.isOn(AcGePoint2d(1 + M_SQRT2, 1 - M_SQRT2)));
  EXPECT_FALSE(cw.isOn(AcGePoint2d(1 + M_SQRT2, 1 + M_SQRT2)));
}
