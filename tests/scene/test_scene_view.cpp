#include <epoxy/gl.h>

#include <cmath>
#include <limits>

#include "SceneFixture.h"
#include "kxrender/CArchive.h"
#include "kxrender/CMemFile.h"
#include "support/GLRecorder.h"

TEST(SceneProjection, HalfExtentsDepthRangeAndZeroSizedClient) {
  HWND w = KxCreateOffscreenWindow(800, 600);
  CSceneMgr s;
  ASSERT_TRUE(s.initializeRender(w, false, false));
  GLRecorder rec(true);
  s.setViewport();
  EXPECT_EQ(s.getFrustumWidth(), 200.0);
  EXPECT_EQ(s.getFrustumHeight(), 150.0);
  EXPECT_EQ(s.getPixelsPerUnit(), 4.0);
  EXPECT_EQ(s.getViewWidth(), 800.0);
  EXPECT_DOUBLE_EQ(s.getPickPrecision(), 12 * 200.0 / 800.0);
  // Default set box of +-10: its radius is far inside 100 x the larger extent.
  const int ortho = rec.find("glOrtho");
  ASSERT_GE(ortho, 0);
  EXPECT_EQ(rec.calls()[size_t(ortho)].text(), "glOrtho(-200, 200, -150, 150, -40000, 40000)");

  ASSERT_TRUE(KxResizeOffscreenWindow(w, 300, 900));  // taller than wide
  s.setViewport();
  EXPECT_EQ(s.getFrustumWidth(), 150.0);
  EXPECT_EQ(s.getFrustumHeight(), 450.0);
  EXPECT_EQ(s.getPixelsPerUnit(), 2.0);
  s.glRelease();
  KxDestroyWindow(w);

  // Without a window the client area is 0 x 0, which counts as 1 x 1.
  CSceneMgr unbound;
  rec.clear();
  unbound.setViewport();
  EXPECT_EQ(rec.calls()[0].text(), "glViewport(0, 0, 1, 1)");
  EXPECT_EQ(unbound.getFrustumWidth(), 150.0);
  EXPECT_EQ(unbound.getFrustumHeight(), 150.0);
}

TEST(SceneProjection, RangeLimits) {
  CSceneMgr s;
  EXPECT_TRUE(s.setRange(1e-6));
  EXPECT_TRUE(s.setRange(1e15));
  EXPECT_FALSE(s.setRange(0.0));
  EXPECT_FALSE(s.setRange(-1.0));
  EXPECT_FALSE(s.setRange(NAN));
  EXPECT_FALSE(s.setRange(INFINITY));
  EXPECT_EQ(s.dRange(), 1e15);
  EXPECT_FALSE(s.scaleRange(0.0));
  EXPECT_FALSE(s.scaleRange(10.0));
  EXPECT_EQ(s.dRange(), 1e15);
  EXPECT_TRUE(s.scaleRange(1e-3));
  EXPECT_EQ(s.dRange(), 1e12);
}

class SceneConversion : public SceneFixture {
 protected:
  void SetUp() override {
    open(800, 600);
    scene.render();  // reads back matrices and viewport
  }
};

TEST_F(SceneConversion, FrustumPlanesAreInwardAndFive) {
  const auto& planes = scene.getFrustumPlanes();
  ASSERT_EQ(planes.size(), 5u);
  // Looking down -z from the origin with half extents 200 x 150: right plane
  // keeps x <= 200, left x >= -200, bottom y >= -150, top y <= 150.
  auto inside = [&](int p, double x, double y, double z) {
    const auto& v = planes[size_t(p)];
    return v[0] * x + v[1] * y + v[2] * z + v[3];
  };
  EXPECT_NEAR(inside(0, 200, 0, 0), 0.0, 1e-3);
  EXPECT_GT(inside(0, 190, 0, 0), 0.0);
  EXPECT_LT(inside(0, 210, 0, 0), 0.0);
  EXPECT_GT(inside(1, -190, 0, 0), 0.0);
  EXPECT_LT(inside(1, -210, 0, 0), 0.0);
  EXPECT_GT(inside(2, 0, -140, 0), 0.0);
  EXPECT_LT(inside(2, 0, -160, 0), 0.0);
  EXPECT_GT(inside(3, 0, 140, 0), 0.0);
  EXPECT_LT(inside(3, 0, 160, 0), 0.0);
  for (const auto& p : planes) EXPECT_NEAR(std::sqrt(p[0] * p[0] + p[1] * p[1] + p[2] * p[2]), 1.0, 1e-6);
  // The near plane lies 2 x 20000 behind the eye (the orthographic near
  // value is negative) and faces along the view, towards -z.
  EXPECT_LT(planes[4][2], 0.0);
  EXPECT_GT(inside(4, 0, 0, 39000), 0.0);
  EXPECT_LT(inside(4, 0, 0, 41000), 0.0);
}

TEST_F(SceneConversion, WorldToScreenFlipsYAtTheEdges) {
  EXPECT_EQ(scene.world2screen(AcGePoint3d(0, 0, 0)), CPoint(400, 300));
  EXPECT_EQ(scene.world2screen(AcGePoint3d(0, 150, 0)).y, 0);
  EXPECT_EQ(scene.world2screen(AcGePoint3d(0, -150, 0)).y, 600);
  EXPECT_EQ(scene.world2screen(AcGePoint3d(-200, 0, 0)).x, 0);
  // Two pixels a unit (300 units over 600 rows); window coordinates are
  // truncated, so stay clear of whole pixels.
  CPoint out;
  scene.world2screen(AcGePoint3d(50.2, 25.2, 7), out);
  EXPECT_EQ(out, CPoint(500, 250));
  scene.world2screen(AcGePoint3d(-50.2, -25.2, 7), out);
  EXPECT_EQ(out, CPoint(299, 351));
  // Far points clamp to the LONG range instead of overflowing.
  const LONG top = std::numeric_limits<LONG>::max(), bottom = std::numeric_limits<LONG>::min();
  EXPECT_EQ(scene.world2screen(AcGePoint3d(1e300, -1e300, 0)), CPoint(top, top));
  EXPECT_EQ(scene.world2screen(AcGePoint3d(-1e300, 1e300, 0)), CPoint(bottom, bottom));
  EXPECT_EQ(scene.world2screen(AcGePoint3d(0, 1e12, 0)).y, bottom);
}

TEST_F(SceneConversion, ScreenToWorldOnPlanesAndRoundTrip) {
  EXPECT_TRUE(scene.screen2world(CPoint(400, 300), CSceneMgr::PLANE_XY).isEqualTo(AcGePoint3d(0, 0, 0)));
  const AcGePoint3d p = scene.screen2world(CPoint(600, 200), CSceneMgr::PLANE_XY);
  EXPECT_NEAR(p.x, 100.0, 1e-4);
  EXPECT_NEAR(p.y, 50.0, 1e-4);
  EXPECT_NEAR(p.z, 0.0, 1e-9);
  // Looking down -z, the XZ and YZ planes are seen edge on: no meeting point.
  EXPECT_TRUE(scene.screen2world(CPoint(600, 200), CSceneMgr::PLANE_XZ).isEqualTo(AcGePoint3d::kOrigin));
  EXPECT_TRUE(scene.screen2world(CPoint(600, 200), CSceneMgr::ProjectPlane(9)).isEqualTo(AcGePoint3d::kOrigin));

  AcGePoint3d nearPt, farPt;
  scene.getPointOfIntersectionThatEyeToNearFarFrustumPlane(CPoint(123, 456), nearPt, farPt);
  const AcGePoint3d n = scene.screen2world(CPoint(123, 456), CSceneMgr::PLANE_NEAR);
  EXPECT_TRUE(n.isEqualTo(nearPt));
  EXPECT_GT(nearPt.z, farPt.z);  // near lies towards the eye (+z)
  const CPoint back = scene.world2screen(n);
  EXPECT_LE(std::abs(back.x - 123), 1);
  EXPECT_LE(std::abs(back.y - 456), 1);
}

TEST(ScreenVectorTo3d, ScreenRightAndUpFollowTheCamera) {
  CCamera cam;
  const AcGeVector3d right = CSceneMgr::ScreenVectorTo3d(AcGeVector2d(1, 0), cam);
  EXPECT_TRUE(right.isEqualTo(AcGeVector3d(1, 0, 0)));
  const AcGeVector3d up = CSceneMgr::ScreenVectorTo3d(AcGeVector2d(0, 2), cam);
  EXPECT_TRUE(up.isEqualTo(AcGeVector3d(0, 2, 0)));
  cam.ReSet(AcGeVector3d(5, 5, 5), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 1, 0));  // looking along +y
  EXPECT_TRUE(CSceneMgr::ScreenVectorTo3d(AcGeVector2d(1, 0), cam).isEqualTo(AcGeVector3d(1, 0, 0)));
}

TEST_F(SceneFixture, TripodStaysInTheLowerLeftSquare) {
  window = KxCreateOffscreenWindow(400, 300);
  ASSERT_TRUE(scene.initializeRender(window, false, true));
  scene.camera()->RotateCaremaRealWorldZ(-0.6, AcGePoint3d::kOrigin);
  scene.camera()->RotateCaremaRight(-0.9, AcGePoint3d::kOrigin);
  scene.render();
  scene.finish();
  std::vector<uint8_t> px;
  int w = 0, h = 0;
  ASSERT_TRUE(KxReadWindowPixels(window, px, w, h));
  int red = 0, green = 0, blue = 0, outside = 0;
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const uint8_t* p = &px[(size_t(y) * size_t(w) + size_t(x)) * 4];
      if (p[0] == 0 && p[1] == 0 && p[2] == 0) continue;
      if (x >= 100 || y < h - 100) ++outside;
      red += p[0] > 200 && p[1] < 60 && p[2] < 60;
      green += p[1] > 200 && p[0] < 60 && p[2] < 60;
      blue += p[2] > 200 && p[0] < 60 && p[1] < 60;
    }
  EXPECT_EQ(outside, 0);
  EXPECT_GT(red, 10);
  EXPECT_GT(green, 10);
  EXPECT_GT(blue, 10);
}
