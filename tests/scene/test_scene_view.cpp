// Projection, view range, the frustum behind the view and behind a screen
// rectangle, and the conversions between screen and world.
#include <cmath>
#include <limits>

#include "TopViewFixture.h"
#include "support/GLRecorder.h"

TEST(SceneProjection, RangeLimits) {
  CSceneMgr s;
  const struct { bool scale; double value; bool ok; double range; } rows[] = {
      {false, 1e-6, true, 1e-6}, {false, 1e15, true, 1e15},  {false, 0.0, false, 1e15}, {false, -1.0, false, 1e15},
      {false, NAN, false, 1e15}, {false, INFINITY, false, 1e15}, {true, 0.0, false, 1e15}, {true, 10.0, false, 1e15},
      {true, 1e-3, true, 1e12}};
  for (const auto& r : rows) {
    EXPECT_EQ(r.scale ? s.scaleRange(r.value) : s.setRange(r.value), r.ok) << r.scale << " " << r.value;
    EXPECT_EQ(s.dRange(), r.range) << r.scale << " " << r.value;
  }
}

namespace {
typedef std::vector<std::vector<double>> Planes;
double side(const std::vector<double>& p, const AcGePoint3d& q) { return p[0] * q.x + p[1] * q.y + p[2] * q.z + p[3]; }
bool insideAll(const Planes& planes, const AcGePoint3d& q) {
  for (const auto& p : planes)
    if (side(p, q) < 0.0) return false;
  return true;
}
}  // namespace

// The default 800 x 600 view, drawn once so matrices and viewport are read back.
class SceneConversion : public TopViewFixture {
 protected:
  // The point at `depth` between the near and far ends of the ray under (x, y).
  AcGePoint3d onRay(int x, int y, double depth) {
    AcGePoint3d nearPt, farPt;
    scene.getPointOfIntersectionThatEyeToNearFarFrustumPlane(CPoint(x, y), nearPt, farPt);
    return nearPt + (farPt - nearPt) * depth;
  }
};

TEST_F(SceneConversion, HalfExtentsDepthRangeAndZeroSizedClient) {
  GLRecorder rec(true);
  scene.setViewport();
  EXPECT_TRUE(scene.getFrustumWidth() == 200.0 && scene.getFrustumHeight() == 150.0 && scene.getPixelsPerUnit() == 4.0);
  EXPECT_DOUBLE_EQ(scene.getPickPrecision(), 12 * 200.0 / 800.0);
  // Default set box of +-10: its radius is far inside 100 x the larger extent.
  ASSERT_GE(rec.find("glOrtho"), 0);
  EXPECT_EQ(rec.calls()[size_t(rec.find("glOrtho"))].text(), "glOrtho(-200, 200, -150, 150, -40000, 40000)");
  ASSERT_TRUE(KxResizeOffscreenWindow(window, 300, 900));  // taller than wide
  scene.setViewport();
  EXPECT_TRUE(scene.getFrustumWidth() == 150.0 && scene.getFrustumHeight() == 450.0 && scene.getPixelsPerUnit() == 2.0);
  CSceneMgr unbound;  // without a window the client area is 0 x 0, which counts as 1 x 1
  rec.clear();
  unbound.setViewport();
  EXPECT_EQ(rec.calls()[0].text(), "glViewport(0, 0, 1, 1)");
  EXPECT_TRUE(unbound.getFrustumWidth() == 150.0 && unbound.getFrustumHeight() == 150.0);
}

TEST_F(SceneConversion, FrustumPlanesAreFiveUnitAndInward) {
  const auto& planes = scene.getFrustumPlanes();
  ASSERT_EQ(planes.size(), 5u);
  // Looking down -z from the origin with half extents 200 x 150: right,
  // left, bottom, top; the near plane lies 2 x 20000 behind the eye (the
  // orthographic near value is negative) and faces along the view.
  const struct { AcGePoint3d in, out; } rows[] = {{{190, 0, 0}, {210, 0, 0}},   {{-190, 0, 0}, {-210, 0, 0}},
                                                 {{0, -140, 0}, {0, -160, 0}}, {{0, 140, 0}, {0, 160, 0}},
                                                 {{0, 0, 39000}, {0, 0, 41000}}};
  for (size_t p = 0; p < 5; ++p) {
    EXPECT_TRUE(side(planes[p], rows[p].in) > 0.0 && side(planes[p], rows[p].out) < 0.0) << p;
    EXPECT_NEAR(std::sqrt(planes[p][0] * planes[p][0] + planes[p][1] * planes[p][1] + planes[p][2] * planes[p][2]), 1.0, 1e-6);
  }
}

TEST_F(SceneConversion, WorldToScreenFlipsYTruncatesAndClamps) {
  const LONG top = std::numeric_limits<LONG>::max(), bottom = std::numeric_limits<LONG>::min();
  const struct { AcGePoint3d world; CPoint screen; } rows[] = {
      {{0, 0, 0}, {400, 300}},      {{-200, 150, 0}, {0, 0}},   {{0, -150, 0}, {400, 600}},
      {{50.2, 25.2, 7}, {500, 250}},  // two pixels a unit; window coordinates are truncated
      {{-50.2, -25.2, 7}, {299, 351}},
      {{1e300, -1e300, 0}, {top, top}},  // far points clamp instead of overflowing
      {{-1e300, 1e300, 0}, {bottom, bottom}}, {{0, 1e12, 0}, {400, bottom}}};
  for (const auto& r : rows) {
    CPoint out;
    scene.world2screen(r.world, out);
    EXPECT_EQ(out, r.screen) << r.world.x << ", " << r.world.y;
    EXPECT_EQ(scene.world2screen(r.world), r.screen);
  }
}

TEST_F(SceneConversion, ScreenToWorldOnPlanesAndRoundTrip) {
  EXPECT_LT(scene.screen2world(CPoint(600, 200), CSceneMgr::PLANE_XY).distanceTo(AcGePoint3d(100, 50, 0)), 1e-4);
  // Looking down -z, the XZ and YZ planes are seen edge on: no meeting point.
  EXPECT_TRUE(scene.screen2world(CPoint(600, 200), CSceneMgr::PLANE_XZ).isEqualTo(AcGePoint3d::kOrigin));
  EXPECT_TRUE(scene.screen2world(CPoint(600, 200), CSceneMgr::ProjectPlane(9)).isEqualTo(AcGePoint3d::kOrigin));
  AcGePoint3d nearPt, farPt;
  scene.getPointOfIntersectionThatEyeToNearFarFrustumPlane(CPoint(123, 456), nearPt, farPt);
  const AcGePoint3d n = scene.screen2world(CPoint(123, 456), CSceneMgr::PLANE_NEAR);
  EXPECT_TRUE(n.isEqualTo(nearPt) && nearPt.z > farPt.z);  // near lies towards the eye (+z)
  const CPoint back = scene.world2screen(n);
  EXPECT_TRUE(std::abs(back.x - 123) <= 1 && std::abs(back.y - 456) <= 1);
  CCamera cam;  // screen right and up follow the camera
  EXPECT_TRUE(CSceneMgr::ScreenVectorTo3d(AcGeVector2d(1, 0), cam).isEqualTo(AcGeVector3d(1, 0, 0)));
  EXPECT_TRUE(CSceneMgr::ScreenVectorTo3d(AcGeVector2d(0, 2), cam).isEqualTo(AcGeVector3d(0, 2, 0)));
  cam.ReSet(AcGeVector3d(5, 5, 5), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 1, 0));  // looking along +y
  EXPECT_TRUE(CSceneMgr::ScreenVectorTo3d(AcGeVector2d(1, 0), cam).isEqualTo(AcGeVector3d(1, 0, 0)));
}

TEST_F(SceneConversion, RectangleGivesFiveInwardPlanesInFrustumOrderForAnyCornerPair) {
  Planes planes;
  scene.getFrustumPlaneFrom2Pt(CPoint(500, 100), CPoint(700, 250), planes);
  ASSERT_EQ(planes.size(), 5u);
  // Right, left, bottom, top (rows grow downwards): the point just past each
  // edge is outside that plane only.
  const CPoint past[] = {{710, 175}, {490, 175}, {600, 260}, {600, 90}};
  for (size_t p = 0; p < 4; ++p) {
    EXPECT_LT(side(planes[p], onRay(past[p].x, past[p].y, 0.5)), 0.0) << p;
    EXPECT_GT(side(planes[p], onRay(600, 175, 0.5)), 0.0) << p;
    EXPECT_NEAR(std::sqrt(planes[p][0] * planes[p][0] + planes[p][1] * planes[p][1] + planes[p][2] * planes[p][2]), 1.0, 1e-9);
  }
  // The near plane is the view's own: just inside it counts, just outside not.
  EXPECT_TRUE(insideAll(planes, onRay(600, 175, 1e-3)));
  EXPECT_FALSE(insideAll(planes, onRay(600, 175, -1e-3)));
  EXPECT_NEAR(planes[4][2], scene.getFrustumPlanes()[4][2], 1e-6);
  const CPoint corners[][2] = {{{700, 250}, {500, 100}}, {{500, 250}, {700, 100}}, {{700, 100}, {500, 250}}};
  for (const auto& c : corners) {
    Planes other;
    scene.getFrustumPlaneFrom2Pt(c[0], c[1], other);
    ASSERT_EQ(other.size(), 5u);
    for (size_t p = 0; p < 5; ++p)
      for (size_t k = 0; k < 4; ++k) EXPECT_NEAR(other[p][k], planes[p][k], 1e-9);
  }
  CSceneMgr unbound;  // never drawn: the stored matrices are all zero, so no planes
  unbound.getFrustumPlaneFrom2Pt(CPoint(1, 2), CPoint(3, 4), planes);
  EXPECT_TRUE(planes.empty());
}

TEST_F(SceneConversion, RectanglePlanesAgreeWithProjectionInATurnedView) {
  scene.camera()->RotateCaremaRight(-0.8, AcGePoint3d(2, 3, 0));
  scene.camera()->RotateCaremaRealWorldZ(0.5, AcGePoint3d(2, 3, 0));
  scene.render();
  Planes planes;
  scene.getFrustumPlaneFrom2Pt(CPoint(620, 80), CPoint(250, 410), planes);
  ASSERT_EQ(planes.size(), 5u);
  int in = 0, out = 0;
  for (double x = -120; x <= 120; x += 7.3)
    for (double y = -120; y <= 120; y += 6.1)
      for (double z = -60; z <= 60; z += 30) {
        const AcGePoint3d q(x, y, z);
        const CPoint s = scene.world2screen(q);
        if (std::abs(s.x - 250) <= 1 || std::abs(s.x - 620) <= 1 || std::abs(s.y - 80) <= 1 || std::abs(s.y - 410) <= 1)
          continue;  // screen coordinates are truncated
        const bool seen = s.x > 250 && s.x < 620 && s.y > 80 && s.y < 410;
        EXPECT_EQ(insideAll(planes, q), seen) << x << ", " << y << ", " << z;
        (seen ? in : out)++;
      }
  EXPECT_GT(in, 50);
  EXPECT_GT(out, 50);
}
