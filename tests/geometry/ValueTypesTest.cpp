// Points, vectors, tolerances and matrices.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "kxrender/AcGeBoundBlock3d.h"
#include "kxrender/AcGeContext.h"
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePlane.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector2d.h"
#include "kxrender/AcGeVector3d.h"

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

// Points or vectors.
template <class T>
void expectNear(const T& a, const T& b, double eps) {
  EXPECT_NEAR(a.x, b.x, eps);
  EXPECT_NEAR(a.y, b.y, eps);
  EXPECT_NEAR(a.z, b.z, eps);
}

AcGeVector3d randomVector(std::mt19937& rng, double range) {
  std::uniform_real_distribution<double> d(-range, range);
  return AcGeVector3d(d(rng), d(rng), d(rng));
}

}  // namespace

static_assert(sizeof(AcGePoint3d) == 3 * sizeof(double), "points are passed to GL as flat arrays");

TEST(AcGeBoundBlock3dTest, EmptyUntilExtendedAndNaNBoundsNothing) {
  AcGeBoundBlock3d box;
  EXPECT_TRUE(box.isEmpty());
  EXPECT_TRUE(box.isDisjoint(box));
  box.extend(AcGeBoundBlock3d());  // an empty box adds nothing
  EXPECT_TRUE(box.isEmpty());
  box.extend(AcGePoint3d(NAN, 2, 3));  // the NaN coordinate is skipped: x still empty
  EXPECT_TRUE(box.isEmpty());
  box.extend(AcGePoint3d(1, -2, 3)).extend(AcGeBoundBlock3d(AcGePoint3d(5, 0, 0), AcGePoint3d(4, 1, 1)));
  AcGePoint3d lo, hi;
  box.getMinMaxPoints(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(1, -2, 0)));
  EXPECT_TRUE(hi.isEqualTo(AcGePoint3d(5, 2, 3)));
  // A box set from a NaN point is unusable for good.
  AcGeBoundBlock3d bad(AcGePoint3d(NAN, 0, 0), AcGePoint3d(NAN, 0, 0));
  bad.extend(AcGePoint3d(1, 1, 1));
  EXPECT_TRUE(bad.isEmpty());
  box.extend(bad);
  box.getMinMaxPoints(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(1, -2, 0)) && hi.isEqualTo(AcGePoint3d(5, 2, 3)));
}

TEST(AcGePoint3dTest, EqualityScaleAndProject) {
  AcGePoint3d p(1, 2, 3);
  AcGeTol tol;
  tol.setEqualPoint(0.5);
  EXPECT_TRUE(p.isEqualTo(AcGePoint3d(1.4, 2, 3), tol));
  EXPECT_FALSE(p.isEqualTo(AcGePoint3d(1.6, 2, 3), tol));
  EXPECT_FALSE(p.isEqualTo(AcGePoint3d(kNaN, 2, 3)));
  expectNear(AcGePoint3d(3, 3, 3).scaleBy(2.0, AcGePoint3d(1, 1, 1)), AcGePoint3d(5, 5, 5), 1e-15);
  // Oblique projection moves x by z; a direction parallel to the plane leaves the point.
  expectNear(AcGePoint3d(1, 2, 3).project(AcGePlane::kXYPlane, AcGeVector3d(1, 0, -1)), AcGePoint3d(4, 2, 0), 1e-14);
  expectNear(AcGePoint3d(1, 2, 3).project(AcGePlane::kXYPlane, AcGeVector3d(1, 0, 0)), AcGePoint3d(1, 2, 3), 0);
}

TEST(AcGeVector3dTest, NormalOfZeroAndNonFinite) {
  expectNear(AcGeVector3d(1e-13, 0, 0).normal(), AcGeVector3d(), 0);
  expectNear(AcGeVector3d(kNaN, 1, 0).normal(), AcGeVector3d(), 0);
  expectNear(AcGeVector3d(kInf, 0, 0).normal(), AcGeVector3d(), 0);
  // Squares overflow but the direction is still defined.
  expectNear(AcGeVector3d(1e300, 1e300, 0).normal(), AcGeVector3d(M_SQRT1_2, M_SQRT1_2, 0), 1e-15);
}

TEST(AcGeVector3dTest, CrossAnglesAndDirections) {
  expectNear(AcGeVector3d::kYAxis.crossProduct(AcGeVector3d::kXAxis), -AcGeVector3d::kZAxis, 0);
  EXPECT_NEAR(AcGeVector3d(1, 0, 0).angleTo(AcGeVector3d(-1, 0, 0)), M_PI, 1e-15);
  EXPECT_NEAR(AcGeVector3d(1, 0, 0).angleTo(AcGeVector3d(0, -2, 0)), M_PI / 2, 1e-15);
  EXPECT_NEAR(AcGeVector3d(1, 0, 0).angleTo(AcGeVector3d(1, 1e-9, 0)), 1e-9, 1e-20);
  EXPECT_TRUE(AcGeVector3d(1, 1, 0).isCodirectionalTo(AcGeVector3d(5, 5, 0)));
  EXPECT_FALSE(AcGeVector3d(1, 1, 0).isCodirectionalTo(AcGeVector3d(-5, -5, 0)));
  EXPECT_FALSE(AcGeVector3d().isCodirectionalTo(AcGeVector3d()));
  EXPECT_TRUE(AcGeVector3d(1, 1, 0).isParallelTo(AcGeVector3d(-5, -5, 0)));
  EXPECT_TRUE(AcGeVector3d(1, 0, 0).isEqualTo(AcGeVector3d(1 + 1e-13, 0, 0)));
  EXPECT_FALSE(AcGeVector3d(1, 0, 0).isEqualTo(AcGeVector3d(1 + 1e-11, 0, 0)));
  AcGeVector3d v = AcGeVector3d::kXAxis;  // right-hand rule; a zero axis leaves it alone
  expectNear(v.rotateBy(M_PI / 2, AcGeVector3d::kZAxis).rotateBy(1.0, AcGeVector3d()), AcGeVector3d::kYAxis, 1e-15);
  EXPECT_EQ(AcGeVector2d(1, -0.0).angle(), 0.0);  // not 2 pi
  EXPECT_NEAR(AcGeVector2d(1, 0).angleTo(AcGeVector2d(0, -1)), M_PI / 2, 1e-15);
}

TEST(AcGeMatrix3dTest, KnownMatricesMoveAPointWhereExpected) {
  const AcGeMatrix3d t = AcGeMatrix3d::translation(AcGeVector3d(1, 2, 3));
  const AcGeMatrix3d r = AcGeMatrix3d::rotation(M_PI / 2, AcGeVector3d::kZAxis);
  AcGeMatrix3d about, pre = r, post = r, moved = r, mirror, aniso;
  about.setToRotation(M_PI / 2, AcGeVector3d::kZAxis, AcGePoint3d(1, 1, 0));
  pre.preMultBy(t);  // t * r: rotate first, then translate
  post.postMultBy(t);  // r * t
  moved.setTranslation(AcGeVector3d(5, 0, 0));
  mirror.setToMirroring(AcGePlane(AcGePoint3d(0, 0, 2), AcGeVector3d(0, 0, 1)));
  const struct {
    const char* name;
    AcGeMatrix3d m;
    AcGePoint3d from, to;
  } rows[] = {
      {"rotation about a centre", about, {2, 1, 5}, {1, 2, 5}},
      {"pre-multiplied", pre, {1, 0, 0}, {1, 3, 3}},
      {"post-multiplied", post, {1, 0, 0}, {-2, 2, 3}},
      {"translation replaced", moved, {1, 0, 0}, {5, 1, 0}},
      {"mirroring", mirror, {1, 1, 5}, {1, 1, -1}},
      {"scaling about a point", AcGeMatrix3d::scaling(3.0, AcGePoint3d(1, 1, 1)), {2, 1, 1}, {4, 1, 1}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    expectNear(row.m * row.from, row.to, 1e-15);
  }
  // Vectors ignore the translation.
  AcGeVector3d v = AcGeVector3d::kXAxis;
  expectNear(v.transformBy(about), AcGeVector3d::kYAxis, 1e-15);
  EXPECT_NEAR(mirror.det(), -1.0, 1e-15);
  aniso.entry[1][1] = 7.0;
  aniso.entry[0][0] = -9.0;
  EXPECT_DOUBLE_EQ(aniso.scale(), 9.0);  // the largest axis, by magnitude
}

TEST(AcGeMatrix3dTest, SingularInverseIsRefused) {
  AcGeMatrix3d m;
  m.entry[2][2] = 0.0;
  AcGeMatrix3d out = AcGeMatrix3d::translation(AcGeVector3d(9, 9, 9));
  EXPECT_FALSE(m.inverse(out));
  EXPECT_EQ(out.entry[0][3], 9.0);  // untouched
  EXPECT_TRUE(m.inverse().isEqualTo(AcGeMatrix3d::kIdentity));
  AcGeMatrix3d bad;
  bad.entry[0][1] = kNaN;
  EXPECT_TRUE(bad.isSingular());
}

TEST(AcGeMatrix3dTest, RandomFramesRotationsAndInverses) {
  std::mt19937 rng(12345);
  for (int i = 0; i < 200; ++i) {
    const AcGePoint3d o = AcGePoint3d::kOrigin + randomVector(rng, 100.0), a = o + randomVector(rng, 100.0);
    const AcGePoint3d b = AcGePoint3d::kOrigin + randomVector(rng, 100.0);
    const AcGeVector3d x = randomVector(rng, 1.0), y = randomVector(rng, 1.0);
    // A rotation keeps lengths and turns no space inside out.
    const AcGeMatrix3d m = AcGeMatrix3d::rotation(std::uniform_real_distribution<double>(-10, 10)(rng), x, o);
    EXPECT_NEAR((m * a).distanceTo(m * b), a.distanceTo(b), 1e-12 * (1.0 + a.distanceTo(b)));
    EXPECT_NEAR(m.det(), 1.0, 1e-12);
    // A general affine matrix times its inverse is the identity.
    AcGeMatrix3d g, inv;
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 4; ++c) g.entry[r][c] = std::uniform_real_distribution<double>(-5, 5)(rng);
    ASSERT_TRUE(g.inverse(inv));
    EXPECT_TRUE((inv * g).isEqualTo(AcGeMatrix3d::kIdentity, AcGeTol(1e-9, 1e-9)));
    // A plane's origin goes to the world origin, its normal to +z, its points to z = 0.
    const AcGePlane plane(o, x);
    const AcGeMatrix3d w2p = AcGeMatrix3d::worldToPlane(plane);
    expectNear(AcGeMatrix3d::planeToWorld(plane) * (w2p * a), a, 1e-9);
    expectNear(w2p * o, AcGePoint3d::kOrigin, 1e-9);
    expectNear(AcGeVector3d(plane.normal()).transformBy(w2p), AcGeVector3d::kZAxis, 1e-12);
    // Aligning frames maps origin and axes, a left-handed target included.
    const AcGeVector3d tx = randomVector(rng, 2.0), ty = randomVector(rng, 2.0), tz = ty.crossProduct(tx);
    const AcGeMatrix3d f = AcGeMatrix3d::alignCoordSys(o, x, y, x.crossProduct(y), b, tx, ty, tz);
    expectNear(f * o, b, 1e-9);
    expectNear(f * (o + x), b + tx, 1e-8);
    expectNear(f * (o + y), b + ty, 1e-8);
    expectNear(f * (o + x.crossProduct(y)), b + tz, 1e-8);
  }
  EXPECT_TRUE(AcGeMatrix3d::worldToPlane(AcGePlane::kXYPlane).isEqualTo(AcGeMatrix3d::kIdentity));
  // A flat "from" frame cannot be aligned: identity.
  const AcGeVector3d &X = AcGeVector3d::kXAxis, &Y = AcGeVector3d::kYAxis, &Z = AcGeVector3d::kZAxis;
  EXPECT_TRUE(AcGeMatrix3d::alignCoordSys({}, X, X, Z, {1, 1, 1}, X, Y, Z).isEqualTo(AcGeMatrix3d::kIdentity));
}
