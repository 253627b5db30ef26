// Zoom, pan, orbit and the view history on a real off-screen scene.
#include <cmath>
#include <functional>

#include "SceneFixture.h"
#include "support/PrivateAccess.h"

// Reaches the history records and the fixed orbit pivot, which the host
// cannot set (only copying a scene does).
KX_PRIVATE_MEMBER(CameraStackOf, &CSceneMgr::m_cameraStack);
KX_PRIVATE_MEMBER(RotateCenterFlagOf, &CSceneMgr::m_bRotateCenter);
KX_PRIVATE_MEMBER(RotateCenterOf, &CSceneMgr::m_rotateCenter);
struct CSceneMgrTestAccess {
  static void age(CSceneMgr& s, long long seconds) { (s.*privateMember(CameraStackOf{})).back().time -= seconds; }
  static void fixPivot(CSceneMgr& s, const AcGePoint3d& p) {
    s.*privateMember(RotateCenterFlagOf{}) = true;
    s.*privateMember(RotateCenterOf{}) = p;
  }
};

namespace {

struct Seen {
  int calls = 0;
  CCamera camera;
  double range = 0.0;
};
Seen g_seen;
void remember(CSceneMgr* s) {
  ++g_seen.calls;
  g_seen.camera = *s->camera();
  g_seen.range = s->dRange();
}

bool sameView(const CCamera& a, const CCamera& b) {
  return a.GetVLocation().isEqualTo(b.GetVLocation()) && a.GetVUp().isEqualTo(b.GetVUp()) &&
         a.GetVForward().isEqualTo(b.GetVForward());
}

::testing::AssertionResult near(const AcGeVector3d& got, const AcGeVector3d& want, double tol = 1e-9) {
  if ((got - want).length() <= tol) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "(" << got.x << ", " << got.y << ", " << got.z << ") != (" << want.x << ", "
                                       << want.y << ", " << want.z << ")";
}

}  // namespace

class Navigation : public SceneFixture {
 protected:
  void SetUp() override {
    open(800, 600);
    scene.render();  // viewport, extents and matrices of the starting view
    g_seen = Seen();
    scene.SetScene2ModelFunPtr(remember);
  }
  // Redraws so that the conversions use the new view.
  void frame() { scene.render(); }
  AcGePoint3d onGround(int x, int y) { return scene.screen2world(CPoint(x, y), CSceneMgr::PLANE_XY); }
};

TEST_F(Navigation, ZoomByPerMilleAndRefusals) {
  scene.zoom(2000);
  EXPECT_EQ(scene.dRange(), 75.0);
  EXPECT_EQ(scene.cameraHistorySize(), 1u);
  scene.zoom(500);
  EXPECT_EQ(scene.dRange(), 150.0);
  EXPECT_EQ(g_seen.calls, 2);
  // Division by zero gives infinity, a negative factor a negative range:
  // both refused without a callback.
  scene.zoom(0);
  scene.zoom(-1000);
  EXPECT_EQ(scene.dRange(), 150.0);
  EXPECT_EQ(g_seen.calls, 2);
  scene.zoom(1000);
  EXPECT_EQ(scene.dRange(), 150.0);
  EXPECT_EQ(g_seen.calls, 3);
}

TEST_F(Navigation, HistoryDuplicatesMergesAndUndo) {
  CSceneMgr bare;  // empty history, no callback: nothing to undo, no crash
  bare.popCamera();
  EXPECT_EQ(bare.dRange(), 150.0);

  scene.popCamera();
  EXPECT_EQ(g_seen.calls, 0);

  scene.pushCamera(false);
  scene.pushCamera(false);  // same view again
  scene.setRange(150.0 + 5e-7);
  scene.pushCamera(false);  // a range within 1e-6 is the same view
  EXPECT_EQ(scene.cameraHistorySize(), 1u);
  scene.setRange(150.0 + 2e-6);
  scene.pushCamera(false);
  EXPECT_EQ(scene.cameraHistorySize(), 2u);

  // Merging needs both records to ask for it, within two seconds.
  scene.setRange(100.0);
  scene.pushCamera(true);
  EXPECT_EQ(scene.cameraHistorySize(), 3u);
  scene.setRange(90.0);
  scene.pushCamera(true);
  EXPECT_EQ(scene.cameraHistorySize(), 3u);  // merged: keeps range 100
  scene.setRange(80.0);
  CSceneMgrTestAccess::age(scene, 2);
  scene.pushCamera(true);  // exactly two seconds old: no longer merged
  EXPECT_EQ(scene.cameraHistorySize(), 4u);
  scene.setRange(70.0);
  CSceneMgrTestAccess::age(scene, -100);  // clock set back: still a burst
  scene.pushCamera(true);
  EXPECT_EQ(scene.cameraHistorySize(), 4u);
  scene.setRange(60.0);
  scene.pushCamera(false);
  EXPECT_EQ(scene.cameraHistorySize(), 5u);

  const double expected[] = {60.0, 80.0, 100.0, 150.0 + 2e-6, 150.0};
  for (double r : expected) {
    scene.setRange(1.0);
    scene.camera()->MoveCameraRight(7.0);
    scene.popCamera();
    EXPECT_EQ(scene.dRange(), r);
    EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(0, 0, 0)));
    EXPECT_TRUE(sameView(g_seen.camera, *scene.camera()));
  }
  EXPECT_EQ(scene.cameraHistorySize(), 0u);
  EXPECT_EQ(g_seen.calls, 5);
}

TEST_F(Navigation, WheelKeepsTheCursorPointAndMergesNotches) {
  const CPoint cursor(610, 140);  // off-screen windows sit at the screen origin
  const AcGePoint3d under = onGround(cursor.x, cursor.y);
  const AcGePoint3d centreBefore = onGround(400, 300);
  scene.mouseWheel(120, cursor);
  EXPECT_DOUBLE_EQ(scene.dRange(), 150.0 / 1.4);
  frame();
  const CPoint back = scene.world2screen(under);
  EXPECT_LE(std::abs(back.x - cursor.x), 1);
  EXPECT_LE(std::abs(back.y - cursor.y), 1);
  EXPECT_FALSE(onGround(400, 300).isEqualTo(centreBefore, AcGeTol()));  // not a zoom about the centre

  scene.mouseWheel(120, cursor);  // second notch within the merge window
  EXPECT_DOUBLE_EQ(scene.dRange(), 150.0 / 1.4 / 1.4);
  EXPECT_EQ(scene.cameraHistorySize(), 1u);
  EXPECT_EQ(g_seen.calls, 4);  // each notch: from the range change, then at the end
  scene.popCamera();
  EXPECT_EQ(scene.dRange(), 150.0);
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(0, 0, 0)));

  // Out is 1.6, not the inverse of in; the cursor point stays put too.
  scene.mouseWheel(-120, CPoint(100, 500));
  EXPECT_DOUBLE_EQ(scene.dRange(), 240.0);
  frame();
  const CPoint out = scene.world2screen(onGround(100, 500));
  EXPECT_LE(std::abs(out.x - 100), 1);
  EXPECT_LE(std::abs(out.y - 500), 1);
}

TEST_F(Navigation, OtherWheelDeltasOnlyRecord) {
  scene.camera()->MoveCameraUp(3.0);
  const CCamera before = *scene.camera();
  scene.mouseWheel(240, CPoint(700, 50));
  EXPECT_TRUE(sameView(*scene.camera(), before));
  EXPECT_EQ(scene.dRange(), 150.0);
  EXPECT_EQ(scene.cameraHistorySize(), 1u);
  EXPECT_EQ(g_seen.calls, 1);
  scene.popCamera();
  EXPECT_TRUE(sameView(*scene.camera(), before));
}

TEST_F(Navigation, ZoomToExtentsCentresOnTheModelBox) {
  scene.camera()->ReSet(AcGeVector3d(50, 20, 5), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0));
  const CCamera start = *scene.camera();
  // Nothing to measure, then a model that is a single point: no change, no call.
  scene.zoomE();
  auto* dot = new CRenderObject;
  CRenderShape s;
  s.set({AcGePoint3d(4, 4, 4)}, {}, CRenderShape::kPline, CColor(), AcGeVector3d::kZAxis, 1, 1, 0);
  dot->addShape(s);
  dot->endAddShape();
  const unsigned dotId = scene.getObjSetMgr()->addObject(dot);
  scene.zoomE();
  EXPECT_TRUE(sameView(*scene.camera(), start));
  EXPECT_EQ(scene.dRange(), 150.0);
  EXPECT_EQ(g_seen.calls, 0);

  scene.getObjSetMgr()->delObject(dotId);
  auto* box = new CRenderObject;
  s.set({AcGePoint3d(-10, -10, -10), AcGePoint3d(10, 10, 10)}, {}, CRenderShape::kPline, CColor(),
        AcGeVector3d::kZAxis, 1, 1, 0);
  box->addShape(s);
  box->endAddShape();
  scene.getObjSetMgr()->addObject(box);
  scene.zoomE();
  EXPECT_DOUBLE_EQ(scene.dRange(), std::sqrt(300.0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(0, 0, 0)));
  EXPECT_TRUE(near(scene.camera()->GetVForward(), AcGeVector3d(1, 0, 0)));
  EXPECT_EQ(scene.cameraHistorySize(), 0u);
  scene.setRange(5.0);
  scene.ZoomENew();
  EXPECT_DOUBLE_EQ(scene.dRange(), std::sqrt(300.0));
  EXPECT_EQ(g_seen.calls, 2);
}

TEST_F(Navigation, WorldWindowIsATopViewFittedByItsLongerHalf) {
  scene.camera()->RotateCaremaRight(0.7, AcGePoint3d::kOrigin);
  scene.zoomW(AcGePoint3d(10, 20, 7), AcGePoint3d(50, 40, -3));  // wide: hx 20
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(30, 30, 0)));
  EXPECT_TRUE(near(scene.camera()->GetVForward(), AcGeVector3d(0, 0, -1)));
  EXPECT_TRUE(near(scene.camera()->GetVUp(), AcGeVector3d(0, 1, 0)));
  EXPECT_EQ(scene.dRange(), 20.0);
  scene.zoomW(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 40, 0));  // tall in a wide window
  EXPECT_DOUBLE_EQ(scene.dRange(), 20.0 * 800 / 600);

  ASSERT_TRUE(KxResizeOffscreenWindow(window, 300, 900));
  scene.zoomW(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 40, 0));  // tall in a tall window
  EXPECT_EQ(scene.dRange(), 20.0);
  scene.zoomW(AcGePoint3d(0, 0, 0), AcGePoint3d(40, 10, 0));  // wide in a tall window
  EXPECT_DOUBLE_EQ(scene.dRange(), 20.0 * 900 / 300);
  EXPECT_EQ(g_seen.calls, 4);
  EXPECT_EQ(scene.cameraHistorySize(), 0u);

  // A rectangle of no extent: the camera is reset, the range refused, no
  // callback.
  scene.zoomW(AcGePoint3d(4, 4, 0), AcGePoint3d(4, 4, 9));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(4, 4, 0)));
  EXPECT_DOUBLE_EQ(scene.dRange(), 60.0);
  scene.zoomW(AcGePoint3d(NAN, 0, 0), AcGePoint3d(1, 1, 0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(4, 4, 0)));
  EXPECT_EQ(g_seen.calls, 4);
}

TEST_F(Navigation, ScreenWindowFillsTheView) {
  scene.zoomW(CPoint(300, 300), CPoint(300, 300));
  EXPECT_EQ(scene.cameraHistorySize(), 0u);
  EXPECT_EQ(g_seen.calls, 0);

  // Corners given bottom-right first; 200 x 150 is a quarter of each side.
  const AcGePoint3d centre = onGround(600, 175);
  scene.zoomW(CPoint(700, 250), CPoint(500, 100));
  EXPECT_DOUBLE_EQ(scene.dRange(), 37.5);
  EXPECT_EQ(scene.cameraHistorySize(), 1u);
  EXPECT_EQ(g_seen.calls, 2);  // once from the range change, once more at the end
  frame();
  const CPoint c = scene.world2screen(centre);
  EXPECT_LE(std::abs(c.x - 400), 1);
  EXPECT_LE(std::abs(c.y - 300), 1);
  // A line (no height) still zooms by its width.
  scene.zoomW(CPoint(100, 50), CPoint(500, 50));
  EXPECT_DOUBLE_EQ(scene.dRange(), 37.5 * 0.5);
}

TEST_F(Navigation, PanMovesTheGroundWithTheCursor) {
  // The host passes the previous cursor position minus the current one.
  const AcGePoint3d grabbed = onGround(300, 200);
  scene.mouseMove(CSize(-50, 30));  // cursor went to (350, 170)
  EXPECT_EQ(scene.dRange(), 150.0);
  EXPECT_EQ(scene.cameraHistorySize(), 0u);
  EXPECT_EQ(g_seen.calls, 1);
  frame();
  const CPoint now = scene.world2screen(grabbed);
  EXPECT_LE(std::abs(now.x - 350), 1);
  EXPECT_LE(std::abs(now.y - 170), 1);
}

// Drags of 240 pixels are a quarter turn in a 600 pixel high view.
TEST_F(Navigation, FreeOrbitInEachStatus) {
  const CCamera start = *scene.camera();  // at the origin, the pivot
  struct Case {
    int status;
    AcGeVector3d forward, up;
  } cases[] = {
      // Tilt about the side axis first, then turn about the new up axis.
      {CSceneMgr::ORBIT_FREE, {-1, 0, 0}, {0, 0, 1}},
      {CSceneMgr::ORBIT_RIGHT, {0, 1, 0}, {0, 0, 1}},
      {CSceneMgr::ORBIT_UP, {-1, 0, 0}, {0, 1, 0}},
      {7, {0, 0, -1}, {0, 1, 0}},
  };
  for (const Case& c : cases) {
    *scene.camera() = start;
    scene.SetOrbitStatus(c.status);
    scene.mouseFreeRotate(CSize(240, 240), CPoint(400, 300));
    EXPECT_TRUE(near(scene.camera()->GetVForward(), c.forward)) << c.status;
    EXPECT_TRUE(near(scene.camera()->GetVUp(), c.up)) << c.status;
  }
  EXPECT_EQ(g_seen.calls, 4);

  // Roll: the cursor sweeps a quarter turn round the view centre, from
  // right of it to below it (rows grow downwards).
  *scene.camera() = start;
  scene.SetOrbitStatus(CSceneMgr::ORBIT_FRONT);
  scene.mouseFreeRotate(CSize(-200, 200), CPoint(600, 300));
  EXPECT_TRUE(near(scene.camera()->GetVForward(), AcGeVector3d(0, 0, -1)));
  EXPECT_TRUE(near(scene.camera()->GetVUp(), AcGeVector3d(1, 0, 0)));
  EXPECT_EQ(scene.cameraHistorySize(), 0u);

  // Before any viewport there is no angle to compute: nothing happens.
  CSceneMgr bare;
  bare.mouseFreeRotate(CSize(10, 10), CPoint(0, 0));
  bare.mouseLimitRotate(CSize(10, 10), CPoint(0, 0));
  EXPECT_TRUE(near(bare.camera()->GetVForward(), AcGeVector3d(0, 0, -1)));
}

TEST_F(Navigation, PivotIsTheGroundPointOverTheModelElseTheBoxCentre) {
  scene.SetOrbitStatus(CSceneMgr::ORBIT_UP);
  const double half = 0.8 * 600 / 2;  // a half turn
  // Looking down at (3, 0): inside the +-10 box, so that is the pivot.
  scene.camera()->ReSet(AcGeVector3d(3, 0, 50), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  scene.mouseFreeRotate(CSize(int(2 * half), 0), CPoint(0, 0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(3, 0, -50), 1e-6));
  // Looking down at (30, 0), past the box: its centre is the pivot.
  scene.camera()->ReSet(AcGeVector3d(30, 0, 50), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  scene.mouseFreeRotate(CSize(int(2 * half), 0), CPoint(0, 0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(-30, 0, -50), 1e-6));
  // Looking along the ground never meets it: the centre again.
  scene.camera()->ReSet(AcGeVector3d(2, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0, 1, 0));
  scene.mouseFreeRotate(CSize(int(2 * half), 0), CPoint(0, 0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(-2, 0, 0), 1e-6));
}

TEST_F(Navigation, LimitedOrbitKeepsZUprightAndUsesTheFixedPivot) {
  scene.camera()->ReSet(AcGeVector3d(0, -40, 30), AcGeVector3d(0, 0.6, 0.8), AcGeVector3d(0, 0.8, -0.6));
  scene.mouseLimitRotate(CSize(130, -70), CPoint(1, 1));
  const CCamera& cam = *scene.camera();
  EXPECT_NEAR(cam.GetVUp().crossProduct(cam.GetVForward()).z, 0.0, 1e-12);  // no roll
  // The free orbit, by contrast, rolls a tilted view.
  scene.mouseFreeRotate(CSize(130, -70), CPoint(1, 1));
  EXPECT_GT(std::fabs(scene.camera()->GetVUp().crossProduct(scene.camera()->GetVForward()).z), 1e-3);

  // Fixed pivot: a quarter turn about z through (5, 5).
  *scene.camera() = CCamera();
  CSceneMgrTestAccess::fixPivot(scene, AcGePoint3d(5, 5, 0));
  scene.mouseLimitRotate(CSize(240, 0), CPoint(0, 0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(10, 0, 0), 1e-9));
  // ... which the free orbit ignores: it turns about the origin under the eye.
  *scene.camera() = CCamera();
  scene.SetOrbitStatus(CSceneMgr::ORBIT_UP);
  scene.mouseFreeRotate(CSize(240, 0), CPoint(0, 0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(0, 0, 0), 1e-9));
}

TEST_F(Navigation, CallbackSeesTheFinishedView) {
  const std::function<void()> ops[] = {
      [&] { scene.zoom(1500); },
      [&] { scene.zoomW(AcGePoint3d(1, 2, 0), AcGePoint3d(9, 5, 0)); },
      [&] { scene.zoomW(CPoint(10, 20), CPoint(300, 200)); },
      [&] { scene.mouseWheel(120, CPoint(50, 60)); },
      [&] { scene.mouseMove(CSize(13, -7)); },
      [&] { scene.mouseFreeRotate(CSize(13, -7), CPoint(5, 5)); },
      [&] { scene.mouseLimitRotate(CSize(-20, 9), CPoint(5, 5)); },
      [&] { scene.popCamera(); },
      [&] { scene.scaleRange(1.25); },
  };
  int expected = 0;
  for (const auto& op : ops) {
    g_seen.calls = 0;
    op();
    EXPECT_GE(g_seen.calls, 1) << expected;
    EXPECT_TRUE(sameView(g_seen.camera, *scene.camera())) << expected;
    EXPECT_EQ(g_seen.range, scene.dRange()) << expected;
    ++expected;
  }
  g_seen.calls = 0;
  scene.setRange(3.0);
  EXPECT_EQ(g_seen.calls, 0);
}
