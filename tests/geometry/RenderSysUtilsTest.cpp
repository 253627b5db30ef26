// The static geometric utilities.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "kxrender/AcGeCircArc3d.h"
#include "kxrender/AcGeEllipArc3d.h"
#include "kxrender/AcGeLine3d.h"
#include "kxrender/AcGeLineSeg3d.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGeNurbCurve3d.h"
#include "kxrender/CPoint.h"
#include "kxrender/CRect.h"
#include "kxrender/CRenderSysUtils.h"
#include "kxrender/CString.h"
#include "kxrender/CStringArray.h"
#include "platform/Win32System.h"

using U = CRenderSysUtils;
using P = AcGePoint3d;
using V = AcGeVector3d;

namespace {

std::vector<AcGePoint3d> square(bool ccw, bool closed) {
  std::vector<AcGePoint3d> pts = {P(0, 0, 0), P(1, 0, 0), P(1, 1, 0), P(0, 1, 0)};
  if (!ccw) std::reverse(pts.begin(), pts.end());
  if (closed) pts.push_back(pts[0]);
  return pts;
}

}  // namespace

TEST(RenderSysUtilsTest, FloatCompBoundsAndSphere) {
  // |d| == tol is equal.
  const double cases[][3] = {{1.0, 0.9, 1}, {0.9, 1.0, -1}, {1.0, 1.0 + 1e-6, 0}};
  for (const auto& c : cases) EXPECT_EQ(U::floatComp(c[0], c[1], 1e-6), int(c[2])) << c[0] << " " << c[1];
  // The box starts from the first point: a NaN there stays, a later one is skipped.
  AcGePoint3d lo(9, 9, 9), hi(9, 9, 9);
  U::getMinMaxPt({}, lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(9, 9, 9)));
  U::getMinMaxPt({AcGePoint3d(1, 5, -2), AcGePoint3d(3, -1, NAN), AcGePoint3d(2, 2, 7)}, lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(1, -1, -2)));
  EXPECT_TRUE(hi.isEqualTo(AcGePoint3d(3, 5, 7)));
  U::getMinMaxPt({AcGePoint3d(NAN, 0, 0), AcGePoint3d(1, 1, 1)}, lo, hi);
  EXPECT_TRUE(std::isnan(lo.x) && std::isnan(hi.x) && hi.y == 1.0);
  AcGePoint3d c;
  float r = 0;
  U::getSphere(AcGePoint3d(0, 0, 0), AcGePoint3d(2, 2, 1), c, r);
  EXPECT_TRUE(c.isEqualTo(AcGePoint3d(1, 1, 0.5)));
  EXPECT_FLOAT_EQ(r, 1.5f);
}

TEST(RenderSysUtilsTest, NormalUsesTheSecondEdgeAndAnglesPickTheirSide) {
  // (p2 - p1) x (p3 - p2), not (p2 - p1) x (p3 - p1): the lengths differ.
  EXPECT_TRUE(U::getNormal(P(0, 0, 0), P(2, 0, 0), P(5, 3, 0)).isEqualTo(AcGeVector3d(0, 0, 6)));
  // {to, angle from the origin}; z takes part: straight up is pi/2.
  const std::pair<P, double> rows[] = {
      {P(0, -1, 0), 1.5 * M_PI}, {P(0, 0, 0), 0.0}, {P(0, 0, 1), M_PI / 2}, {P(1, -1e-9, 1), 2 * M_PI - M_PI / 4}};
  for (const auto& r : rows) EXPECT_NEAR(U::getAngle(P(0, 0, 0), r.first), r.second, 1e-8) << r.first.y;
  EXPECT_NEAR(U::getAngle(AcGePoint2d(0, 0), AcGePoint2d(0, -1)), 1.5 * M_PI, 1e-15);
  EXPECT_EQ(U::getAngle(AcGePoint2d(0, 0), AcGePoint2d(5e-11, 0)), 0.0);
}

TEST(RenderSysUtilsTest, AreasAndOrientation) {
  EXPECT_NEAR(U::getTriangleArea(P(0, 0, 5), P(4, 0, 0), P(1, 3, 9)), 6.0, 1e-14);
  EXPECT_EQ(U::getTriangleArea(P(1, 1, 0), P(1, 1, 3), P(2, 2, 0)), 0.0);
  // {points, unsigned area, clockwise}: collinear points count as clockwise;
  // three points whose last closes the first leave two, not enough.
  const std::tuple<std::vector<P>, double, bool> rows[] = {
      {square(true, true), 1, false},           {square(false, false), 1, true},
      {{P(0, 0, 0), P(1, 1, 0), P(2, 2, 0)}, 0, true}, {{P(0, 0, 0), P(1, 1, 0)}, 0, false},
      {{P(0, 0, 0), P(1, 0, 0), P(0, 0, 0)}, 0, false}};
  for (const auto& [pts, area, clockwise] : rows) {
    EXPECT_NEAR(U::getPolygonArea(pts), area, 1e-15) << pts.size() << clockwise;
    EXPECT_EQ(U::polyClockWise(pts), clockwise) << pts.size() << area;
  }
  // calPolyArea measures in the polygon's own plane, far from the origin too.
  std::vector<P> wall = {P(0, 0, 0), P(2, 0, 0), P(2, 0, 3), P(0, 0, 3)};
  EXPECT_NEAR(U::calPolyArea(wall), 6.0, 1e-14);
  for (P& p : wall) p.transformBy(AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 2, 3), P(1e6, -1e6, 5e5)));
  EXPECT_NEAR(U::calPolyArea(wall), 6.0, 1e-6);
  EXPECT_EQ(U::calPolyArea({P(), P(1, 0, 0)}), 0.0);
}

TEST(RenderSysUtilsTest, CvtClockReversesOnlyTheOrder) {
  const std::vector<P> ccw = square(true, false), wall = {P(0, 0, 0), P(1, 0, 0), P(1, 0, 1), P(0, 0, 1)};
  // {points, seen along, wanted clockwise, reversed}: a counter-clockwise
  // square seen from +z is clockwise seen from -z.
  const std::tuple<std::vector<P>, V, bool, bool> rows[] = {
      {ccw, V::kZAxis, false, false}, {ccw, V::kZAxis, true, true},      {ccw, -V::kZAxis, true, false},
      {wall, V(0, -1, 0), false, false}, {wall, V(0, 1, 0), false, true}};
  for (const auto& [pts, normal, clockwise, reversed] : rows) {
    std::vector<P> got = pts;
    U::cvtClock(got, normal, clockwise);
    std::vector<P> want = pts;
    if (reversed) std::reverse(want.begin(), want.end());
    EXPECT_EQ(got, want) << normal.y << normal.z << clockwise;
  }
}

TEST(RenderSysUtilsTest, PointAndPolylineAgainstSegment) {
  AcGePoint3d out;
  EXPECT_TRUE(U::ptIntersectWithLine(P(1, 0.0009, 0), P(0, 0, 0), P(2, 0, 0), out, 0.001));
  EXPECT_TRUE(out.isEqualTo(P(1, 0.0009, 0)));

  const std::vector<P> pline = {P(0, 0, 0), P(2, 0, 0), P(2, 2, 0)};
  EXPECT_FALSE(U::plineIntersectWithLine({}, P(), P(1, 1, 1), out, 1e-6));
  ASSERT_TRUE(U::plineIntersectWithLine(pline, P(3, 1, 0), P(1, 1, 0), out, 1e-6));
  EXPECT_TRUE(out.isEqualTo(P(2, 1, 0)));
  // The first segment in order wins.
  ASSERT_TRUE(U::plineIntersectWithLine(pline, P(1, -1, 0), P(3, 1, 0), out, 1e-6));
  EXPECT_TRUE(out.isEqualTo(P(2, 0, 0)));
  ASSERT_TRUE(U::plineIntersectWithLine({P(1, 1, 1)}, P(0, 0, 0), P(2, 2, 2), out, 1e-6));
  EXPECT_TRUE(out.isEqualTo(P(1, 1, 1)));
}

TEST(RenderSysUtilsTest, RayAgainstSegmentAndTriangle) {
  AcGePoint3d out;
  EXPECT_TRUE(U::rayIntersectWithSeg(P(0, 0, 0), V(1, 0, 0), P(3, -1, 0), P(3, 1, 0), out, 1e-6));
  EXPECT_TRUE(out.isEqualTo(P(3, 0, 0)));
  AcGePoint2d o2;
  EXPECT_TRUE(
      U::rayIntersectWithSeg(AcGePoint2d(0, 0), AcGeVector2d(1, 1), AcGePoint2d(2, 0), AcGePoint2d(0, 2), o2, 1e-6));
  EXPECT_TRUE(o2.isEqualTo(AcGePoint2d(1, 1)));

  const P a(0, 0, 0), b(2, 0, 0), c(0, 2, 0);
  EXPECT_TRUE(U::rayIntersectWithTriangle(P(0.5, 0.5, 5), V(0, 0, -1), a, b, c, &out));
  EXPECT_TRUE(out.isEqualTo(P(0.5, 0.5, 0)));
  EXPECT_TRUE(U::rayIntersectWithTriangle(P(0.5, 0.5, -5), V(0, 0, 1), a, b, c));  // back face
  EXPECT_FALSE(U::rayIntersectWithTriangle(P(0.5, 0.5, 5), V(0, 0, 1), a, b, c));  // behind
  EXPECT_FALSE(U::rayIntersectWithTriangle(P(1.5, 1.5, 5), V(0, 0, -1), a, b, c));
  EXPECT_TRUE(U::rayIntersectWithTriangle(P(1, 1, 5), V(0, 0, -1), a, b, c));  // on the edge
  EXPECT_FALSE(U::rayIntersectWithTriangle(P(0.5, 0.5, 5), V(0, 0, -1), a, b, b));
}

TEST(RenderSysUtilsTest, RayAgainstBoxWithMargin) {
  AcGePoint3d hit;
  double dist = -1, noMargin = 0.0;
  auto box = [&](P from, V dir, double* margin = nullptr) {
    return U::rayIntersectWithBox(from, dir, P(0, 0, 0), P(1, 1, 1), &hit, &dist, margin);
  };
  // The box is grown by 0.01 unless a margin is given.
  EXPECT_TRUE(box(P(1.005, 0.5, 0.5), V(1, 0, 0)));
  EXPECT_FALSE(box(P(1.005, 0.5, 0.5), V(1, 0, 0), &noMargin));
  ASSERT_TRUE(box(P(-5, 0.5, 0.5), V(2, 0, 0)));
  EXPECT_TRUE(hit.isEqualTo(P(-0.01, 0.5, 0.5)));
  EXPECT_NEAR(dist, 4.99, 1e-12);  // along the ray in length units
  ASSERT_TRUE(box(P(5, 0.5, 0.5), V(-1, 0, 0)));
  EXPECT_TRUE(hit.isEqualTo(P(1.01, 0.5, 0.5)));
  EXPECT_FALSE(box(P(-5, 1.02, 0.5), V(1, 0, 0)));  // just past the grown edge
  EXPECT_TRUE(box(P(-5, 1.009, 0.5), V(1, 0, 0)));
  EXPECT_FALSE(box(P(-5, 0.5, 0.5), V(-1, 0, 0)));
}

TEST(RenderSysUtilsTest, ArcAndCurveIntersections) {
  AcGeCircArc3d circle(AcGePoint3d(), AcGeVector3d::kZAxis, 1.0);
  int count = 0;
  AcGePoint3d p1, p2;
  ASSERT_TRUE(U::arcIntersectWithLine(circle, AcGePoint3d(-3, 0, 0), AcGePoint3d(-2, 0, 0), count, p1, p2, 1e-6));
  EXPECT_EQ(count, 2);  // the line, not the segment from a to b
  std::vector<AcGePoint3d> pts = {AcGePoint3d(7, 7, 7)};
  EXPECT_FALSE(U::curveIntersectWithCurve(&circle, &circle, pts, 1e-6));
  EXPECT_EQ(pts.size(), 1u);  // untouched
  AcGeLineSeg3d seg(AcGePoint3d(0, -2, 0), AcGePoint3d(0, 2, 0));
  ASSERT_TRUE(U::curveIntersectWithCurve(&circle, &seg, pts, 1e-6));
  EXPECT_EQ(pts.size(), 2u);
  AcGeLineSeg3d away(AcGePoint3d(5, -2, 0), AcGePoint3d(5, 2, 0));
  EXPECT_FALSE(U::curveIntersectWithCurve(circle, away, pts, 1e-6));
  EXPECT_TRUE(pts.empty());
}

TEST(RenderSysUtilsTest, PtInAreaAndFace) {
  const std::vector<P> sq = square(true, true);
  EXPECT_TRUE(U::PtInArea(P(0.5, 0.5, 3), sq, 1e-6, false));
  EXPECT_FALSE(U::PtInArea(P(1.5, 0.5, 0), sq, 1e-6, true));
  EXPECT_TRUE(U::PtInArea(P(1, 0.5, 0), sq, 1e-6, true));  // on an edge
  EXPECT_FALSE(U::PtInArea(P(1, 0.5, 0), sq, 1e-6, false));
  EXPECT_FALSE(U::PtInArea(P(0, 0, 0), sq, 1e-6, false));  // on a vertex
  // The ray towards +x passes exactly through a vertex of a diamond.
  const std::vector<P> diamond = {P(0, -1, 0), P(1, 0, 0), P(0, 1, 0), P(-1, 0, 0)};
  EXPECT_TRUE(U::PtInArea(P(0, 0, 0), diamond, 1e-6, false));
  EXPECT_FALSE(U::PtInArea(P(-2, 0, 0), diamond, 1e-6, false));

  const std::vector<P> outer = {P(0, 0, 1), P(4, 0, 1), P(4, 4, 1), P(0, 4, 1)};
  const std::vector<std::vector<P>> holes = {{P(1, 1, 1), P(2, 1, 1), P(2, 2, 1), P(1, 2, 1)}};
  AcGePoint3d hit;
  auto face = [&](P from, double dz, AcGeVector3d normal = AcGeVector3d::kZAxis, bool solid = true) {
    return U::faceIntersectWithLine(outer, normal, from, AcGeVector3d(0, 0, dz), hit, 1e-6, holes, solid);
  };
  ASSERT_TRUE(face(P(3, 3, 9), -1));
  EXPECT_TRUE(hit.isEqualTo(P(3, 3, 1)));
  EXPECT_FALSE(face(P(1.5, 1.5, 9), -1));  // in the hole
  EXPECT_FALSE(face(P(5, 3, 9), -1));
  EXPECT_FALSE(face(P(3, 3, 9), 1));                        // pointing away
  EXPECT_TRUE(face(P(3, 3, 9), 1, AcGeVector3d(), false));  // the plane from the points
}

TEST(RenderSysUtilsTest, DroopPointOnArcsAndCurves) {
  AcGeCircArc3d arc(AcGePoint3d(), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis, 2.0, 0.0, M_PI);
  AcGePoint3d foot;
  ASSERT_TRUE(U::DroopPoint(AcGePoint3d(1, 1, 5), AcGePoint3d(), &arc, foot, 1e-6));
  EXPECT_TRUE(foot.isEqualTo(AcGePoint3d(M_SQRT2, M_SQRT2, 0), AcGeTol(1e-9, 1e-12)));
  // Below the chord's side of the circle the only foot is on the other side.
  ASSERT_TRUE(U::DroopPoint(AcGePoint3d(1, -1, 0), AcGePoint3d(), &arc, foot, 1e-6));
  EXPECT_TRUE(foot.isEqualTo(AcGePoint3d(-M_SQRT2, M_SQRT2, 0), AcGeTol(1e-9, 1e-12)));
  // From the center: the foot nearest the reference point.
  ASSERT_TRUE(U::DroopPoint(AcGePoint3d(0, 0, 3), AcGePoint3d(-5, 0.1, 0), &arc, foot, 1e-6));
  EXPECT_LT(foot.x, -1.9);
  // An ellipse seen from inside: ref picks between the feet.
  AcGeEllipArc3d e(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 4.0, 1.0);
  ASSERT_TRUE(U::DroopPoint(AcGePoint3d(0.1, 0.05, 2), AcGePoint3d(0, -2, 0), &e, foot, 1e-6));
  EXPECT_LT(foot.y, -0.9);
  AcGeLineSeg3d seg(AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0));
  ASSERT_TRUE(U::DroopPoint(AcGePoint3d(1, 3, 3), AcGePoint3d(), &seg, foot, 1e-6));
  EXPECT_TRUE(foot.isEqualTo(AcGePoint3d(1, 0, 0)));
  EXPECT_FALSE(U::DroopPoint(AcGePoint3d(5, 3, 3), AcGePoint3d(), &seg, foot, 1e-6));
  EXPECT_FALSE(U::DroopPoint(AcGePoint3d(1, 3, 3), AcGePoint3d(), nullptr, foot, 1e-6));
}

TEST(RenderSysUtilsTest, CurveMidPointByParameterExceptEllipse) {
  AcGeLineSeg3d seg(AcGePoint3d(0, 0, 0), AcGePoint3d(4, 2, 0));
  EXPECT_TRUE(U::getCurveMidPoint(&seg).isEqualTo(AcGePoint3d(2, 1, 0)));
  // A cubic whose speed varies: the middle parameter is not the middle by length.
  double knots[] = {0, 0, 0, 0, 1, 1, 1, 1};
  AcGePoint3dArray ctrl;
  for (double x : {0.0, 0.1, 0.2, 10.0}) ctrl.append(AcGePoint3d(x, 0, 0));
  AcGeNurbCurve3d fast(3, AcGeKnotVector(8, knots), ctrl);
  EXPECT_TRUE(U::getCurveMidPoint(&fast).isEqualTo(fast.evalPoint(0.5), AcGeTol(1e-9, 1e-12)));
  // An elliptic arc is halved by length.
  AcGeEllipArc3d e(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, 5.0, 1.0, 0.0, M_PI / 2);
  AcGePoint3d mid = U::getCurveMidPoint(&e);
  double t = e.paramOf(mid);
  EXPECT_NEAR(e.length(0.0, t), e.length(t, M_PI / 2), 1e-6);  // the middle parameter would fail this
  EXPECT_TRUE(U::getCurveMidPoint(nullptr).isEqualTo(AcGePoint3d::kOrigin));
  AcGeLine3d infinite(AcGePoint3d(1, 1, 1), AcGeVector3d::kXAxis);
  EXPECT_TRUE(U::getCurveMidPoint(&infinite).isEqualTo(AcGePoint3d::kOrigin));
}

TEST(RenderSysUtilsTest, ScreenRectanglesIncludeTheirEdges) {
  const CRect r(10, 20, 30, 40);
  for (auto p :
       {std::make_pair(CPoint(10, 20), true), {CPoint(30, 40), true}, {CPoint(31, 40), false}, {CPoint(20, 19), false}})
    EXPECT_EQ(U::ptInRect(p.first, r), p.second) << p.first.x << "," << p.first.y;
  EXPECT_TRUE(U::rectIntersectWithRect(0, 0, 10, 10, 10, 10, 20, 20));  // touching corners
  EXPECT_FALSE(U::rectIntersectWithRect(0, 0, 10, 10, 11, 0, 20, 10));
  EXPECT_FALSE(U::rectIntersectWithRect(0, 0, 10, 10, 0, 11, 10, 20));
  // Segments against (10, 10, 20, 20): {a, b, meets the rectangle, meets a side}.
  struct Seg {
    CPoint a, b;
    bool rect, side;
  };
  const CRect sq(10, 10, 20, 20);
  const Seg segs[] = {{{12, 12}, {15, 15}, true, false},  // inside
                      {{0, 0}, {30, 5}, false, false},    // below
                      {{0, 30}, {10, 20}, true, true},    // touches a corner
                      {{5, 10}, {25, 10}, true, true},    // along the top side
                      {{0, 30}, {9, 21}, false, false}};  // stops short of the corner
  for (const Seg& g : segs) {
    EXPECT_EQ(U::segIntersectWithRect(g.a, g.b, sq), g.rect) << g.a.x << "," << g.a.y;
    EXPECT_EQ(U::segIntersectWithRectSide(g.a, g.b, sq), g.side) << g.a.x << "," << g.a.y;
  }
}

TEST(RenderSysUtilsTest, SphereInFrustumUsesFivePlanes) {
  std::vector<std::vector<double>> planes(5, {0, 0, 1, 10});  // z > -10
  planes.push_back({0, 0, -1, -100});                         // sixth: z < -100 only
  EXPECT_TRUE(U::sphereInFrustum(planes, AcGePoint3d(0, 0, 0), 1.0));
  planes[4] = {1, 0, 0, 0};  // fifth: x > 0
  EXPECT_FALSE(U::sphereInFrustum(planes, AcGePoint3d(-2, 0, 0), 1.0));
  EXPECT_TRUE(U::sphereInFrustum(planes, AcGePoint3d(-0.5, 0, 0), 1.0));
  EXPECT_FALSE(U::sphereInFrustum(planes, AcGePoint3d(-1, 0, 0), 1.0));  // touching from outside
  EXPECT_EQ(U::rayIntersectWithYZ(), CRenderSysUtils::BOXFACE_INSIDE);
}

TEST(RenderSysUtilsTest, MatrixConversionsAreColumnMajor) {
  AcGeMatrix3d m = AcGeMatrix3d::rotation(0.3, AcGeVector3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  double d[16];
  float f[16];
  U::convertMatrixTo16(m, d);
  U::convertMatrixTo16(m, f);
  AcGeMatrix3d back, backF;
  U::convert16ToMatrix(d, back);
  U::convert16ToMatrix(f, backF);
  for (int k = 0; k < 16; ++k) {
    EXPECT_EQ(d[k], m.entry[k % 4][k / 4]) << k;  // translation in elements 12..14
    EXPECT_FLOAT_EQ(f[k], float(m.entry[k % 4][k / 4])) << k;
    EXPECT_NEAR(backF.entry[k % 4][k / 4], m.entry[k % 4][k / 4], 1e-6) << k;
  }
  EXPECT_TRUE(back.isEqualTo(m));
}

TEST(RenderSysUtilsTest, Str2StrArrKeepsEmptyPiecesAndAppends) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"", {}}, {"abc", {"abc"}}, {"a,,b", {"a", "", "b"}}, {",x,", {"", "x", ""}}};
  for (const auto& c : cases) {
    CStringArray arr;
    arr.Add(CString("kept"));
    U::Str2StrArr(CString(c.first), arr, ',');
    std::vector<std::string> got;
    for (int i = 1; i < arr.GetSize(); ++i) got.push_back(arr[i].str());
    EXPECT_EQ(got, c.second) << c.first;
  }
}

TEST(RenderSysUtilsTest, Gb2312ToUnicodeInTheActiveCodePage) {
  UINT previous = GetACP();
  ASSERT_TRUE(KxSetAnsiCodePage(936));
  unsigned char zhong[2] = {0xD6, 0xD0};  // GBK for U+4E2D
  unsigned short out = 0;
  EXPECT_EQ(U::Gb2312ToUnicode(&out, zhong), 1);
  EXPECT_EQ(out, 0x4E2D);
  KxSetAnsiCodePage(previous);
  EXPECT_EQ(U::Gb2312ToUnicode(nullptr, zhong), 0);
}
