// Zoom, pan, orbit and the view history on a real off-screen scene, and
// what they do to the drawn overlays (the axis tripod and the orbit guide).
#include <cmath>
#include <functional>

#include "TopViewFixture.h"
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
// What the host's callback saw: how often it ran, and the view the last time.
struct Seen { int calls = 0; CCamera camera; double range = 0.0; } g_seen;
void remember(CSceneMgr* s) { g_seen = {g_seen.calls + 1, *s->camera(), s->dRange()}; }

bool sameView(const CCamera& a, const CCamera& b) {
  return a.GetVLocation().isEqualTo(b.GetVLocation()) && a.GetVUp().isEqualTo(b.GetVUp()) &&
         a.GetVForward().isEqualTo(b.GetVForward());
}

bool near(const AcGeVector3d& got, const AcGeVector3d& want, double tol = 1e-9) { return (got - want).length() <= tol; }
}  // namespace

class Navigation : public TopViewFixture {
 protected:
  void SetUp() override {
    TopViewFixture::SetUp();  // viewport, extents and matrices of the starting view
    g_seen = Seen();
    scene.SetScene2ModelFunPtr(remember);
  }
  // The host's callback ran last on the finished view.
  bool sawFinishedView() { return sameView(g_seen.camera, *scene.camera()) && g_seen.range == scene.dRange(); }
};

TEST_F(Navigation, ZoomPanAndWheelKeepTheirPointsRecordAndCallBack) {
  const CPoint none(-1, -1);
  const struct {
    const char* what;
    std::function<void(CSceneMgr&)> op;
    CPoint from, to;  // the ground point under `from` is drawn at `to` after
    double range;
    int history, calls;  // -1: not checked
  } rows[] = {
      {"zoom in per mille", [](CSceneMgr& s) { s.zoom(2000); }, {400, 300}, {400, 300}, 75.0, 1, 1},
      // Division by zero gives infinity: refused like any range out of bounds.
      {"zoom by 0", [](CSceneMgr& s) { s.zoom(0); }, {400, 300}, {400, 300}, 150.0, -1, 0},
      {"scale", [](CSceneMgr& s) { s.scaleRange(1.25); }, {400, 300}, {400, 300}, 187.5, -1, 1},
      // Each notch calls back from the range change, then at the end;
      // off-screen windows sit at the screen origin.
      {"two notches in one burst",
       [](CSceneMgr& s) {
         s.mouseWheel(120, CPoint(610, 140));
         s.render();  // the host redraws between notches
         s.mouseWheel(120, CPoint(610, 140));
       },
       {610, 140}, {610, 140}, 150.0 / 1.4 / 1.4, 1, 4},
      {"wheel out by 1.6, not 1/1.4", [](CSceneMgr& s) { s.mouseWheel(-120, CPoint(100, 500)); }, {100, 500},
       {100, 500}, 240.0, 1, 2},
      {"other wheel deltas only record", [](CSceneMgr& s) { s.mouseWheel(240, CPoint(700, 50)); }, {700, 50}, {700, 50},
       150.0, 1, 1},
      // Corners bottom-right first; 200 x 150 is a quarter of each side.
      {"screen window", [](CSceneMgr& s) { s.zoomW(CPoint(700, 250), CPoint(500, 100)); }, {600, 175}, {400, 300}, 37.5,
       1, 2},
      {"screen line zooms by its width", [](CSceneMgr& s) { s.zoomW(CPoint(100, 50), CPoint(500, 50)); }, none, none,
       75.0, 1, 2},
      {"screen point", [](CSceneMgr& s) { s.zoomW(CPoint(300, 300), CPoint(300, 300)); }, {300, 300}, {300, 300}, 150.0,
       0, 0},
      // The host passes the previous cursor position minus the current one.
      {"pan", [](CSceneMgr& s) { s.mouseMove(CSize(-50, 30)); }, {300, 200}, {350, 170}, 150.0, 0, 1}};
  for (const auto& r : rows) {
    while (scene.cameraHistorySize()) scene.popCamera();
    *scene.camera() = CCamera();
    scene.setRange(150.0);
    frame();
    g_seen = Seen();
    const AcGePoint3d grabbed = scene.screen2world(r.from, CSceneMgr::PLANE_XY);
    r.op(scene);
    EXPECT_DOUBLE_EQ(scene.dRange(), r.range) << r.what;
    if (r.history >= 0) EXPECT_EQ(scene.cameraHistorySize(), size_t(r.history)) << r.what;
    EXPECT_EQ(g_seen.calls, r.calls) << r.what;
    if (r.calls) EXPECT_TRUE(sawFinishedView()) << r.what;
    if (r.from.x < 0) continue;
    frame();  // the conversions use the new view
    const CPoint at = scene.world2screen(grabbed);
    EXPECT_TRUE(std::abs(at.x - r.to.x) <= 1 && std::abs(at.y - r.to.y) <= 1) << r.what << ": " << at.x << ", " << at.y;
  }
}

TEST_F(Navigation, HistoryDuplicatesMergesAndUndo) {
  scene.popCamera();  // empty history: nothing to undo, no callback
  EXPECT_EQ(g_seen.calls, 0);
  // A range within 1e-6 is the same view; merging needs both records to ask
  // for it, within two seconds (a clock set back still counts).
  const struct { double range; bool merge; long long ageBefore; size_t size; } pushes[] = {
      {150.0, false, 0, 1},  {150.0, false, 0, 1}, {150.0 + 5e-7, false, 0, 1}, {150.0 + 2e-6, false, 0, 2},
      {100.0, true, 0, 3},   {90.0, true, 0, 3},   {80.0, true, 2, 4},          {70.0, true, -100, 4},
      {60.0, false, 0, 5}};
  for (const auto& p : pushes) {
    scene.setRange(p.range);
    if (p.ageBefore) CSceneMgrTestAccess::age(scene, p.ageBefore);
    scene.pushCamera(p.merge);
    EXPECT_EQ(scene.cameraHistorySize(), p.size) << p.range;
  }
  for (double r : {60.0, 80.0, 100.0, 150.0 + 2e-6, 150.0}) {  // a merged burst keeps its first view
    scene.setRange(1.0);
    scene.camera()->MoveCameraRight(7.0);
    scene.popCamera();
    EXPECT_EQ(scene.dRange(), r);
    EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(0, 0, 0)));
    EXPECT_TRUE(sawFinishedView());
  }
  EXPECT_EQ(g_seen.calls, 5);
}

TEST_F(Navigation, ZoomToExtentsCentresOnTheModelBox) {
  scene.camera()->ReSet(AcGeVector3d(50, 20, 5), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0));
  const CCamera start = *scene.camera();
  scene.zoomE();  // nothing to measure, then a model that is a single point: no change, no call
  const unsigned dot = scene.getObjSetMgr()->addObject(object({AcGePoint3d(4, 4, 4)}));
  scene.zoomE();
  EXPECT_TRUE(sameView(*scene.camera(), start) && scene.dRange() == 150.0 && g_seen.calls == 0);
  scene.getObjSetMgr()->delObject(dot);
  scene.getObjSetMgr()->addObject(object({AcGePoint3d(-10, -10, -10), AcGePoint3d(10, 10, 10)}));
  scene.zoomE();
  EXPECT_DOUBLE_EQ(scene.dRange(), std::sqrt(300.0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(0, 0, 0)));
  EXPECT_TRUE(near(scene.camera()->GetVForward(), AcGeVector3d(1, 0, 0)));
  EXPECT_EQ(scene.cameraHistorySize(), 0u);
  scene.setRange(5.0);
  scene.ZoomENew();
  EXPECT_DOUBLE_EQ(scene.dRange(), std::sqrt(300.0));
  EXPECT_TRUE(g_seen.calls == 2 && sawFinishedView());
}

TEST_F(Navigation, WorldWindowIsATopViewFittedByItsLongerHalf) {
  scene.camera()->RotateCaremaRight(0.7, AcGePoint3d::kOrigin);
  scene.zoomW(AcGePoint3d(10, 20, 7), AcGePoint3d(50, 40, -3));  // wide: hx 20
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(30, 30, 0)));
  EXPECT_TRUE(near(scene.camera()->GetVForward(), AcGeVector3d(0, 0, -1)));
  EXPECT_TRUE(near(scene.camera()->GetVUp(), AcGeVector3d(0, 1, 0)));
  EXPECT_TRUE(scene.dRange() == 20.0 && sawFinishedView());
  const struct { int w, h; double x, y, range; } rows[] = {
      {800, 600, 10, 40, 20.0 * 800 / 600},  // tall in a wide window
      {300, 900, 10, 40, 20.0},              // tall in a tall window
      {300, 900, 40, 10, 20.0 * 900 / 300}};  // wide in a tall window
  for (const auto& r : rows) {
    ASSERT_TRUE(KxResizeOffscreenWindow(window, r.w, r.h));
    scene.zoomW(AcGePoint3d(0, 0, 0), AcGePoint3d(r.x, r.y, 0));
    EXPECT_DOUBLE_EQ(scene.dRange(), r.range) << r.w << " x " << r.h;
  }
  EXPECT_EQ(g_seen.calls, 4);
  EXPECT_EQ(scene.cameraHistorySize(), 0u);
  // A rectangle of no extent: the camera is reset, the range refused, no
  // callback; NaN changes nothing.
  scene.zoomW(AcGePoint3d(4, 4, 0), AcGePoint3d(4, 4, 9));
  scene.zoomW(AcGePoint3d(NAN, 0, 0), AcGePoint3d(1, 1, 0));
  EXPECT_TRUE(near(scene.camera()->GetVLocation(), AcGeVector3d(4, 4, 0)));
  EXPECT_DOUBLE_EQ(scene.dRange(), 60.0);
  EXPECT_EQ(g_seen.calls, 4);
}

// Drags of 240 pixels are a quarter turn in a 600 pixel high view.
TEST_F(Navigation, FreeOrbitInEachStatus) {
  const struct { int status; CSize drag; CPoint at; AcGeVector3d forward, up; } cases[] = {
      // Tilt about the side axis first, then turn about the new up axis.
      {CSceneMgr::ORBIT_FREE, {240, 240}, {400, 300}, {-1, 0, 0}, {0, 0, 1}},
      {CSceneMgr::ORBIT_RIGHT, {240, 240}, {400, 300}, {0, 1, 0}, {0, 0, 1}},
      {CSceneMgr::ORBIT_UP, {240, 240}, {400, 300}, {-1, 0, 0}, {0, 1, 0}},
      {7, {240, 240}, {400, 300}, {0, 0, -1}, {0, 1, 0}},
      // Roll: the cursor sweeps a quarter turn round the view centre, from
      // right of it to below it (rows grow downwards).
      {CSceneMgr::ORBIT_FRONT, {-200, 200}, {600, 300}, {0, 0, -1}, {1, 0, 0}}};
  for (const auto& c : cases) {
    *scene.camera() = CCamera();  // at the origin, the pivot
    g_seen.calls = 0;
    scene.SetOrbitStatus(c.status);
    scene.mouseFreeRotate(c.drag, c.at);
    EXPECT_TRUE(near(scene.camera()->GetVForward(), c.forward)) << c.status;
    EXPECT_TRUE(near(scene.camera()->GetVUp(), c.up)) << c.status;
    EXPECT_TRUE(g_seen.calls == 1 && sawFinishedView()) << c.status;
  }
  EXPECT_EQ(scene.cameraHistorySize(), 0u);
  // Before any viewport there is no angle to compute: nothing happens.
  CSceneMgr bare;
  bare.mouseFreeRotate(CSize(10, 10), CPoint(0, 0));
  bare.mouseLimitRotate(CSize(10, 10), CPoint(0, 0));
  EXPECT_TRUE(near(bare.camera()->GetVForward(), AcGeVector3d(0, 0, -1)));
}

TEST_F(Navigation, PivotIsTheGroundPointOverTheModelElseTheBoxCentre) {
  scene.SetOrbitStatus(CSceneMgr::ORBIT_UP);
  const struct { AcGeVector3d eye, up, forward, after; } rows[] = {
      {{3, 0, 50}, {0, 1, 0}, {0, 0, -1}, {3, 0, -50}},     // over (3, 0), inside the +-10 box: the pivot
      {{30, 0, 50}, {0, 1, 0}, {0, 0, -1}, {-30, 0, -50}},  // over (30, 0), past the box: its centre
      {{2, 0, 0}, {0, 0, 1}, {0, 1, 0}, {-2, 0, 0}}};       // along the ground, never meeting it: the centre
  for (const auto& r : rows) {
    scene.camera()->ReSet(r.eye, r.up, r.forward);
    scene.mouseFreeRotate(CSize(480, 0), CPoint(0, 0));  // a half turn
    EXPECT_TRUE(near(scene.camera()->GetVLocation(), r.after, 1e-6));
  }
}

TEST_F(Navigation, LimitedOrbitKeepsZUprightAndUsesTheFixedPivot) {
  scene.camera()->ReSet(AcGeVector3d(0, -40, 30), AcGeVector3d(0, 0.6, 0.8), AcGeVector3d(0, 0.8, -0.6));
  scene.mouseLimitRotate(CSize(130, -70), CPoint(1, 1));
  const CCamera& cam = *scene.camera();
  EXPECT_NEAR(cam.GetVUp().crossProduct(cam.GetVForward()).z, 0.0, 1e-12);  // no roll
  EXPECT_TRUE(sawFinishedView());
  // Fixed pivot: a quarter turn about z through (5, 5).
  *scene.camera() = CCamera();
  CSceneMgrTestAccess::fixPivot(scene, AcGePoint3d(5, 5, 0));
  scene.mouseLimitRotate(CSize(240, 0), CPoint(0, 0));
  EXPECT_TRUE(near(cam.GetVLocation(), AcGeVector3d(10, 0, 0)));
}

class OverlayPixels : public SceneFixture {
 protected:
  void SetUp() override {
    open(400, 300, true);
    scene.camera()->RotateCaremaRealWorldZ(-0.6, AcGePoint3d::kOrigin);
    scene.camera()->RotateCaremaRight(-0.9, AcGePoint3d::kOrigin);
  }
  void draw(bool guide = false) {
    scene.render();
    if (guide) scene.draw3dOrbit();
    scene.finish();
    ASSERT_TRUE(KxReadWindowPixels(window, px, w, h));
  }
  // Whether pixel (x, y) is lit in channel c alone.
  bool pure(int x, int y, int c) const {
    const uint8_t* p = &px[(size_t(y) * size_t(w) + size_t(x)) * 4];
    return p[c] > 200 && p[(c + 1) % 3] < 60 && p[(c + 2) % 3] < 60;
  }
  // Counts the pure red, green and blue pixels, and the lit ones outside the
  // lower-left 100 x 100 corner.
  int count(int pureRgb[3]) const {
    int outside = 0;
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) {
        const uint8_t* p = &px[(size_t(y) * size_t(w) + size_t(x)) * 4];
        outside += (p[0] || p[1] || p[2]) && (x >= 100 || y < h - 100);
        for (int c = 0; c < 3; ++c) pureRgb[c] += pure(x, y, c);
      }
    return outside;
  }
  std::vector<uint8_t> px;
  int w = 0, h = 0;
};

TEST_F(OverlayPixels, TripodStaysInTheLowerLeftCornerAndTurnsOnlyWithOrbits) {
  draw();
  int axes[3] = {0, 0, 0};
  EXPECT_EQ(count(axes), 0);
  for (int c = 0; c < 3; ++c) EXPECT_GT(axes[c], 10) << "axis " << c;
  const std::vector<uint8_t> before = px;
  scene.mouseMove(CSize(-120, 80));
  scene.mouseWheel(120, CPoint(300, 40));
  draw();
  EXPECT_TRUE(px == before);
  scene.mouseFreeRotate(CSize(60, 25), CPoint(200, 150));
  draw();
  int turned[3] = {0, 0, 0};
  EXPECT_EQ(count(turned), 0);
  EXPECT_GT(turned[0] + turned[1] + turned[2], 30);
  EXPECT_FALSE(px == before);
}

TEST_F(OverlayPixels, OrbitGuideSpansFourFifthsOfTheShorterSide) {
  ASSERT_TRUE(KxResizeOffscreenWindow(window, 500, 300));
  scene.zoomW(CPoint(10, 10), CPoint(200, 90));  // the guide ignores the view's place
  draw(true);
  ASSERT_EQ(w, 500);
  // Radius 0.8 x 150 = 120 pixels. On the row 50 pixels above the centre
  // only the big circle is met (the small ones at its ends reach 12
  // pixels), at 250 -/+ sqrt(120^2 - 50^2).
  int first = -1, last = -1;
  for (int x = 0; x < w; ++x)
    if (pure(x, 100, 1)) {
      if (first < 0) first = x;
      last = x;
    }
  const double reach = std::sqrt(120.0 * 120.0 - 50.0 * 50.0);
  EXPECT_NEAR(first, 250 - reach, 2.0);
  EXPECT_NEAR(last, 250 + reach, 2.0);
  int top = 0;  // the top small circle ends 132 up
  while (top < h && !pure(250, top, 1)) ++top;
  EXPECT_NEAR(top, 150 - 132, 2.0);
}
