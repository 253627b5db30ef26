// Non-finite, zero, degenerate and huge input: defined answers, and no hang.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeCurveCurveInt3d.h"
#include "kxrender/AcGeEllipArc3d.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGeNurbCurve3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/AcGeRay3d.h"
#include "kxrender/CRenderSysUtils.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

std::vector<AcGePoint3d> badPoints() {
  return {AcGePoint3d(kNaN, 0, 0), AcGePoint3d(0, kInf, 0), AcGePoint3d(0, 0, -kInf), AcGePoint3d(1e15, -1e15, 1e15),
          AcGePoint3d(0, 0, 0)};
}

std::vector<AcGeVector3d> badVectors() {
  return {AcGeVector3d(), AcGeVector3d(kNaN, 1, 0), AcGeVector3d(kInf, 0, 0), AcGeVector3d(1e15, 1e15, 0),
          AcGeVector3d(1e-300, 0, 0)};
}

AcGeNurbCurve3d cubicThrough(const AcGePoint3d& a, const AcGePoint3d& b) {
  double knots[] = {0, 0, 0, 0, 1, 1, 1, 1};
  AcGePoint3dArray ctrl;
  ctrl.append(a);
  ctrl.append(a + (b - a) * 0.3 + AcGeVector3d(0, 1, 0));
  ctrl.append(a + (b - a) * 0.7 - AcGeVector3d(0, 1, 0));
  ctrl.append(b);
  return AcGeNurbCurve3d(3, AcGeKnotVector(8, knots), ctrl);
}

// Runs every curve query on c with bad points; none may hang or crash, and
// queries that report success must give finite points.
void exerciseCurve(const AcGeCurve3d& c) {
  for (const AcGePoint3d& p : badPoints()) {
    AcGePointOnCurve3d poc;
    if (c.getNormalPoint(p, poc)) {
      EXPECT_TRUE(std::isfinite(poc.point().x));
    }
    c.closestPointTo(p);
    c.distanceTo(p);
    c.paramOf(p);
    c.isOn(p);
    c.getClosestPointTo(p, poc);
  }
  for (double t : {kNaN, kInf, -kInf, 1e300, 0.0}) {
    c.length(t, 1.0);
    c.length(0.0, t);
    c.paramAtLength(t, 1.0, true);
    c.paramAtLength(0.0, t, false);
  }
  AcArray<AcGePoint3d> samples;
  c.getSamplePoints(17, samples);
  c.boundBlock();
  AcGeLineSeg3d probe(AcGePoint3d(-1, -1, 0), AcGePoint3d(1, 1, 0));
  AcGeCurveCurveInt3d ints(c, probe);
  for (int i = 0; i < ints.numIntPoints(); ++i) EXPECT_TRUE(std::isfinite(ints.intPoint(i).x));
  AcGePoint3d other;
  c.closestPointTo(probe, other);
}

}  // namespace

TEST(RobustnessTest, CurvesWithBadData) {
  std::vector<AcGeCircArc3d> arcs;
  std::vector<AcGeEllipArc3d> ellipses;
  std::vector<AcGeNurbCurve3d> nurbs;
  for (const AcGePoint3d& p : badPoints())
    for (const AcGeVector3d& v : badVectors()) {
      arcs.emplace_back(p, v, 1.0);
      arcs.emplace_back(p, AcGeVector3d::kZAxis, v, 0.0, 0.0, 1.0);
      ellipses.emplace_back(p, v, AcGeVector3d::kYAxis, 1e15, 1e-15);
      nurbs.push_back(cubicThrough(p, p + v));
    }
  arcs.emplace_back(AcGePoint3d(), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, kNaN, kNaN, kInf);
  arcs.emplace_back(AcGePoint3d(1, 1, 1), AcGePoint3d(1, 1, 1), AcGePoint3d(1, 1, 1));
  ellipses.emplace_back(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 0.0, 0.0);
  ellipses.emplace_back(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, kInf, kNaN);
  for (const AcGeCircArc3d& c : arcs) exerciseCurve(c);
  for (const AcGeEllipArc3d& c : ellipses) exerciseCurve(c);
  for (const AcGeNurbCurve3d& c : nurbs) exerciseCurve(c);
  exerciseCurve(AcGeNurbCurve3d());
  exerciseCurve(AcGeLine3d(AcGePoint3d(kNaN, 0, 0), AcGeVector3d()));
  exerciseCurve(AcGeRay3d(AcGePoint3d(1e15, 0, 0), AcGeVector3d(kInf, 0, 0)));
}

TEST(RobustnessTest, DegenerateCurvesGiveDefinedAnswers) {
  AcGeCircArc3d point(AcGePoint3d(1, 2, 3), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 0.0, 0.0, M_PI);
  AcGePointOnCurve3d poc;
  EXPECT_FALSE(point.getNormalPoint(AcGePoint3d(5, 5, 5), poc));
  EXPECT_EQ(point.length(0, M_PI), 0.0);
  EXPECT_EQ(point.paramAtLength(0.5, 1.0, true), 0.5);
  int n = 7;
  AcGePoint3d p1, p2;
  EXPECT_FALSE(point.intersectWith(AcGeLine3d(AcGePoint3d(), AcGePoint3d(1, 2, 3)), n, p1, p2));
  EXPECT_EQ(n, 0);
  EXPECT_TRUE(point.closestPointTo(AcGePoint3d(9, 9, 9)).isEqualTo(AcGePoint3d(1, 2, 3)));
  AcGeCircArc3d nanArc(AcGePoint3d(kNaN, 0, 0), AcGeVector3d::kZAxis, 1.0);
  EXPECT_FALSE(nanArc.intersectWith(AcGeLine3d(AcGePoint3d(), AcGeVector3d::kXAxis), n, p1, p2));
  EXPECT_EQ(AcGeCurveCurveInt3d(nanArc, AcGeCircArc3d()).numIntPoints(), 0);
  AcGeEllipArc3d flat(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 0.0, 0.0);
  EXPECT_FALSE(flat.getNormalPoint(AcGePoint3d(1, 1, 0), poc));
  EXPECT_EQ(flat.length(0, 2 * M_PI), 0.0);
}

TEST(RobustnessTest, InvalidNurbsDataGivesAnEmptyCurve) {
  auto array = [](std::vector<AcGePoint3d> pts) {
    AcGePoint3dArray a;
    for (const AcGePoint3d& p : pts) a.append(p);
    return a;
  };
  double knots[] = {0, 0, 1, 1}, decreasing[] = {0, 1, 0, 1};
  const AcGePoint3dArray two = array({{0, 0, 0}, {1, 0, 0}});
  AcGeDoubleArray zeroWeight;
  zeroWeight.append(1.0);
  zeroWeight.append(0.0);
  ASSERT_TRUE(AcGeNurbCurve3d(1, AcGeKnotVector(4, knots), two).isValid());
  const std::pair<const char*, AcGeNurbCurve3d> rows[] = {
      {"wrong knot count", AcGeNurbCurve3d(2, AcGeKnotVector(4, knots), two)},
      {"decreasing knots", AcGeNurbCurve3d(1, AcGeKnotVector(4, decreasing), two)},
      {"zero weight", AcGeNurbCurve3d(1, AcGeKnotVector(4, knots), two, zeroWeight)},
      {"coincident fit points", AcGeNurbCurve3d(array({{1, 1, 1}, {1, 1, 1}}))},
      {"NaN fit point", AcGeNurbCurve3d(array({{0, 0, 0}, {kNaN, 1, 1}}))},
      {"single fit point", AcGeNurbCurve3d(array({{0, 0, 0}}))},
  };
  for (const auto& [name, c] : rows) {
    AcGePoint3d p;
    AcGePointOnCurve3d poc;
    AcArray<AcGePoint3d> samples;
    c.getSamplePoints(4, samples);
    EXPECT_FALSE(c.isValid()) << name;
    EXPECT_FALSE(c.hasStartPoint(p)) << name;
    EXPECT_FALSE(c.getNormalPoint(AcGePoint3d(0.5, 1, 0), poc)) << name;
    EXPECT_EQ(c.length(0, 1), 0.0) << name;
    EXPECT_EQ(samples.length(), 0) << name;
  }
}

TEST(RobustnessTest, HugeCoordinatesStillWork) {
  AcGePoint3d far(1e15, 1e15, 0);
  AcGeCircArc3d a(far, AcGeVector3d::kZAxis, 1000.0);
  AcGeCircArc3d b(far + AcGeVector3d(1000, 0, 0), AcGeVector3d::kZAxis, 1000.0);
  AcGeTol tol;
  tol.setEqualPoint(1e-3);
  AcGeCurveCurveInt3d ints(a, b, AcGeVector3d::kIdentity, tol);
  EXPECT_EQ(ints.numIntPoints(), 2);
  EXPECT_NEAR(a.length(0, 2 * M_PI), 2000 * M_PI, 1e-9 * 2000 * M_PI);
  AcGeEllipArc3d e(far, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 2000.0, 1000.0);
  EXPECT_NEAR(e.distanceTo(far + AcGeVector3d(3000, 0, 0)), 1000.0, 1e-3);
}

// Far from zero a turn is below the angles' precision: the sweep still lies
// within one turn (1.5e109 once gave a sweep of -2e93).
TEST(RobustnessTest, ArcAnglesFarFromZeroSweepWithinATurn) {
  for (double start : {1e17, 1.5e109, 1e300, -1e300}) {
    AcGeCircArc3d arc(AcGePoint3d(), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 1.0, start, 0.0);
    EXPECT_GE(arc.endAng() - arc.startAng(), 0.0) << start;
    EXPECT_LE(arc.endAng() - arc.startAng(), 2.0 * M_PI) << start;
  }
}

TEST(RobustnessTest, ValueTypesAndPlanes) {
  for (const AcGeVector3d& v : badVectors()) {
    AcGeMatrix3d m = AcGeMatrix3d::rotation(1.0, v, AcGePoint3d());
    AcGeMatrix3d w = AcGeMatrix3d::worldToPlane(v);
    AcGeMatrix3d inv;
    m.inverse(inv);
    w.inverse(inv);
    AcGePlane plane(AcGePoint3d(), v);
    AcGePoint3d hit;
    plane.intersectWith(AcGeLine3d(AcGePoint3d(1, 1, 1), v), hit);
    AcGePoint3d(1, 2, 3).project(plane, v);
    AcGeVector3d r = AcGeVector3d::kXAxis;
    r.rotateBy(kNaN, v);
    AcGeMatrix3d::alignCoordSys(AcGePoint3d(), v, v, v, AcGePoint3d(), v, v, v);
    AcGeMatrix3d mirror;
    mirror.setToMirroring(plane);
  }
  AcGeMatrix3d nanRot = AcGeMatrix3d::rotation(kNaN, AcGeVector3d::kZAxis);
  EXPECT_TRUE(nanRot.isEqualTo(AcGeMatrix3d::kIdentity));
}

TEST(RobustnessTest, UtilitiesRefuseBadInput) {
  using U = CRenderSysUtils;
  using P = AcGePoint3d;
  const P x(1, 0, 0), y(0, 1, 0);
  const std::vector<P> tri = {P(), x, y};
  AcGePoint3d out(7, 7, 7);
  // The wrappers over segment and curve intersections refuse what those refuse (see AcGeLinearEnt3dTest).
  for (const AcGePoint3d& p : badPoints()) {
    if (std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z)) continue;
    EXPECT_FALSE(U::rayIntersectWithTriangle(p, AcGeVector3d(0, 0, 1), P(), x, y, &out));
    EXPECT_FALSE(U::rayIntersectWithBox(p, AcGeVector3d(1, 0, 0), P(), P(1, 1, 1), &out));
    // Only x and y take part in the area test.
    EXPECT_EQ(U::PtInArea(p, tri, 1e-6, true), std::isfinite(p.x) && std::isfinite(p.y));
    EXPECT_FALSE(U::faceIntersectWithLine(tri, AcGeVector3d::kZAxis, p, AcGeVector3d(0, 0, -1), out, 1e-6));
    AcGeLineSeg3d seg(p, P(1, 1, 1));
    AcGeCircArc3d arc;
    EXPECT_FALSE(U::DroopPoint(p, P(), &arc, out, 1e-6));
    U::getCurveMidPoint(&seg);
    std::vector<P> loop = {p, x, y};
    U::calPolyArea(loop);
    U::getPolygonArea(loop);
    U::polyClockWise(loop);
    U::cvtClock(loop, AcGeVector3d(kNaN, 0, 0), true);
    U::getAngle(p, P());
  }
  EXPECT_FALSE(U::sphereInFrustum(std::vector<std::vector<double>>(5, {1, 0, 0, 0}), AcGePoint3d(-kInf, 0, 0), 1.0));
  EXPECT_TRUE(out.isEqualTo(AcGePoint3d(7, 7, 7)));
  double nanMargin = kNaN;
  EXPECT_FALSE(U::rayIntersectWithBox(AcGePoint3d(-5, 0, 0), AcGeVector3d(1, 0, 0), AcGePoint3d(), AcGePoint3d(1, 1, 1),
                                      nullptr, nullptr, &nanMargin));
  EXPECT_FALSE(U::rayIntersectWithBox(AcGePoint3d(-5, 0.5, 0.5), AcGeVector3d(), AcGePoint3d(), AcGePoint3d(1, 1, 1)));
}
