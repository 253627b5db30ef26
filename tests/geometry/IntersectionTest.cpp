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
using P = AcGePoint3d;
using V = AcGeVector3d;
}  // namespace

TEST(AcGeCurveCurveInt3dTest, KnownConfigurationsMeetWhereExpected) {
  const AcGeCircArc3d unit(P(0, 0, 0), V::kZAxis, 1.0), shifted(P(1, 0, 0), V::kZAxis, 1.0),
      tangent(P(3, 0, 0), V::kZAxis, 2.0), apart(P(5, 0, 0), V::kZAxis, 1.0), lifted(P(1, 0, 1), V::kZAxis, 1.0),
      corner(P(1, 1, 0), V::kZAxis, 1.0);
  const AcGeEllipArc3d wide(P(), V::kXAxis, V::kYAxis, 2.0, 1.0), tall(P(), V::kYAxis, -V::kXAxis, 2.0, 1.0),
      flat(P(), V::kXAxis, V::kYAxis, 100.0, 0.01);
  const AcGeNurbCurve3d nurbs = nurbsCircle(P(), 1.0);
  const AcGeLineSeg3d diagonal(P(0, 0, 0), P(2, 2, 0)), along(P(1, 1, 0), P(3, 3, 0)),
      nearMiss(P(1.0005, -1, 0), P(1.0005, 1, 0));
  const AcGeLine3d vertical(P(60, 0, 0), V::kYAxis), crossing(P(0, 2, 0), V(1, -1, 0));
  const double h = std::sqrt(3.0) / 2, e = 2.0 / std::sqrt(5.0);
  const struct {
    const char* name;
    const AcGeCurve3d &a, &b;
    std::vector<P> pts;
    double eps;
  } rows[] = {
      {"crossing circles", unit, shifted, {{0.5, h, 0}, {0.5, -h, 0}}, 1e-12},
      {"tangent circles", unit, tangent, {{1, 0, 0}}, 1e-4},
      {"circles apart", unit, apart, {}, 0},
      {"circles crossing only seen from above", unit, lifted, {}, 0},
      {"crossed ellipses", wide, tall, {{e, e, 0}, {-e, e, 0}, {-e, -e, 0}, {e, -e, 0}}, 1e-12},
      {"flat ellipse and a line", flat, vertical, {{60, 0.008, 0}, {60, -0.008, 0}}, 1e-12},
      {"NURBS circle and an arc", nurbs, corner, {{1, 0, 0}, {0, 1, 0}}, 1e-12},
      {"segment and line", diagonal, crossing, {{1, 1, 0}}, 1e-12},
      {"collinear overlap", diagonal, along, {}, 0},
      {"near miss at the default tolerance", unit, nearMiss, {}, 0},
  };
  for (const auto& r : rows) {
    AcGeCurveCurveInt3d ints(r.a, r.b);
    ASSERT_EQ(ints.numIntPoints(), int(r.pts.size())) << r.name;
    for (const P& p : r.pts) {
      bool found = false;
      for (int i = 0; i < ints.numIntPoints(); ++i) found = found || ints.intPoint(i).distanceTo(p) <= r.eps;
      EXPECT_TRUE(found) << r.name << ": " << p.x << ", " << p.y;
    }
  }
  // Ordered by the first curve's parameter, both parameters on the point.
  AcGeCurveCurveInt3d two(unit, shifted);
  double s0, t0, s1, t1;
  two.getIntParams(0, s0, t0);
  two.getIntParams(1, s1, t1);
  EXPECT_LT(s0, s1);
  EXPECT_TRUE(unit.evalPoint(s0).isEqualTo(shifted.evalPoint(t0)));
  // Projected along z the lifted circle crosses twice, on the first curve;
  // an index past the end reads the last point.
  AcGeCurveCurveInt3d seen(unit, lifted, V::kZAxis);
  EXPECT_EQ(seen.numIntPoints(), 2);
  EXPECT_EQ(seen.intPoint(5).z, 0.0);
  AcGeTol loose;
  loose.setEqualPoint(0.001);
  EXPECT_GE(AcGeCurveCurveInt3d(unit, nearMiss, V::kIdentity, loose).numIntPoints(), 1);
  AcGeCurveCurveInt3d empty;
  EXPECT_EQ(empty.numIntPoints(), 0);
  EXPECT_TRUE(empty.intPoint(0).isEqualTo(P::kOrigin));
}
