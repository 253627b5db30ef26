// Zoom to objects, orbit about the cursor point, and view redo.
#include <cmath>

#include "TopViewFixture.h"

namespace {

struct View { AcGeVector3d loc, fwd, up; double range; };
View viewOf(CSceneMgr& s) {
  return {s.camera()->GetVLocation(), s.camera()->GetVForward(), s.camera()->GetVUp(), s.dRange()};
}
bool same(const View& a, const View& b) {
  return a.loc.isEqualTo(b.loc) && a.fwd.isEqualTo(b.fwd) && a.up.isEqualTo(b.up) &&
         std::fabs(a.range - b.range) < 1e-9;
}

class ViewExtras : public TopViewFixture {};

}  // namespace

TEST_F(ViewExtras, ZoomToObjectsFramesTheirBoxes) {
  const unsigned a = set().addObject(rectObject(0, 0, 10, 5, 0));
  const unsigned b = set().addObject(rectObject(20, -5, 30, 0, 3));
  set().addObject(rectObject(100, 100, 110, 110, 0));
  set().freshBox();
  struct Row {
    double turn;  // about world z, then tilt: an oblique view
    double margin;
  } rows[] = {{0.0, 0.0}, {0.0, 0.25}, {0.6, 0.1}};
  for (const Row& r : rows) {
    scene.camera()->ReSet(AcGeVector3d(0, 0, 0), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
    scene.camera()->RotateCaremaRealWorldZ(r.turn, AcGePoint3d(0, 0, 0));
    scene.camera()->RotateCaremaRight(r.turn, AcGePoint3d(0, 0, 0));
    const size_t history = scene.cameraHistorySize();
    ASSERT_TRUE(scene.zoomToObjects({a, b, 999}, r.margin));
    EXPECT_EQ(scene.cameraHistorySize(), history + 1);
    scene.render();
    // Corners seen from the view centre: the furthest reaches the window
    // edge less the margin, on both sides of the centre alike.
    double reach = 0.0, left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
    for (unsigned id : {a, b}) {
      AcGePoint3d lo, hi;
      scene.getObj(id)->getBox(lo, hi);
      for (int c = 0; c < 8; ++c) {
        const AcGePoint3d p((c & 1 ? hi : lo).x, (c & 2 ? hi : lo).y, (c & 4 ? hi : lo).z);
        const CPoint s = scene.world2screen(p);
        reach = std::max({reach, std::fabs(s.x - 400.0) / 400.0, std::fabs(s.y - 300.0) / 300.0});
        left = std::min(left, double(s.x)), right = std::max(right, double(s.x));
        top = std::min(top, double(s.y)), bottom = std::max(bottom, double(s.y));
      }
    }
    EXPECT_NEAR(reach, 1.0 / (1.0 + r.margin), 0.005) << r.turn << " " << r.margin;
    EXPECT_NEAR(left + right, 800.0, 2.0);
    EXPECT_NEAR(top + bottom, 600.0, 2.0);
  }
  const View before = viewOf(scene);
  EXPECT_FALSE(scene.zoomToObjects({999}));
  EXPECT_TRUE(same(before, viewOf(scene)));
}

TEST_F(ViewExtras, CursorPivotIsThePickedPoint) {
  set().addObject(rectObject(-50, -50, 50, 50, 5));
  set().freshBox();
  scene.zoomE();
  scene.render();
  // Over the model: the point hit, which stays put on screen while orbiting.
  ASSERT_TRUE(scene.setCursorPivot(CPoint(300, 200)));
  AcGePoint3d pivot;
  ASSERT_TRUE(scene.getCursorPivot(pivot));
  EXPECT_NEAR(pivot.z, 5.0, 1e-6);
  const CPoint before = scene.world2screen(pivot);
  EXPECT_LE(std::abs(before.x - 300) + std::abs(before.y - 200), 2);
  scene.mouseCursorRotate(CSize(40, 30), false);
  scene.render();
  const CPoint after = scene.world2screen(pivot);
  EXPECT_LE(std::abs(after.x - before.x) + std::abs(after.y - before.y), 2);

  // Over empty space: the same turn as the free orbit.
  scene.zoom(200);
  scene.render();
  EXPECT_FALSE(scene.setCursorPivot(CPoint(5, 5)));
  EXPECT_FALSE(scene.getCursorPivot(pivot));
  const CCamera start = *scene.camera();
  scene.mouseFreeRotate(CSize(40, 30), CPoint(5, 5));
  const View free = viewOf(scene);
  *scene.camera() = start;
  scene.mouseCursorRotate(CSize(40, 30), false);
  EXPECT_TRUE(same(free, viewOf(scene)));
}

TEST_F(ViewExtras, RedoAfterUndoAndNewViewsClearIt) {
  const View v0 = viewOf(scene);
  scene.zoomW(CPoint(100, 100), CPoint(300, 250));
  const View v1 = viewOf(scene);
  scene.zoomW(CPoint(200, 100), CPoint(400, 300));
  const View v2 = viewOf(scene);
  scene.undoCamera();
  EXPECT_TRUE(same(viewOf(scene), v1));
  scene.undoCamera();
  EXPECT_TRUE(same(viewOf(scene), v0));
  EXPECT_TRUE(scene.redoCamera());
  EXPECT_TRUE(same(viewOf(scene), v1));
  EXPECT_TRUE(scene.redoCamera());
  EXPECT_TRUE(same(viewOf(scene), v2));
  EXPECT_FALSE(scene.redoCamera());
  // Undo, then a new view: recorded (zoom) or not (pan).
  for (int recorded = 0; recorded < 2; ++recorded) {
    scene.undoCamera();
    ASSERT_TRUE(scene.canRedoCamera());
    if (recorded)
      scene.zoom(2000);
    else
      scene.mouseMove(CSize(10, 0));
    const View now = viewOf(scene);
    EXPECT_FALSE(scene.canRedoCamera()) << recorded;
    EXPECT_FALSE(scene.redoCamera()) << recorded;
    EXPECT_TRUE(same(viewOf(scene), now));
  }
}
