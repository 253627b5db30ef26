#pragma once
// The default top view of an 800 x 600 scene (world x to the right, y up)
// with builders for hand-placed objects, shared by the pick and snap tests.
#include "SceneFixture.h"
#include "objects/ObjectHelpers.h"

class TopViewFixture : public SceneFixture {
 protected:
  void SetUp() override {
    open(800, 600);
    scene.render();
  }

 public:  // reached from table rows' builders
  // World point on z = 0 under window position (x, y), fractions allowed.
  AcGePoint3d at(double x, double y) {
    const AcGePoint3d o = scene.screen2world(CPoint(0, 0), CSceneMgr::PLANE_XY);
    const AcGeVector3d ex = scene.screen2world(CPoint(1, 0), CSceneMgr::PLANE_XY) - o;
    const AcGeVector3d ey = scene.screen2world(CPoint(0, 1), CSceneMgr::PLANE_XY) - o;
    return o + ex * x + ey * y;
  }
  // The window rectangle (x0, y0)-(x1, y1) lifted to height z.
  Pts rect(double x0, double y0, double x1, double y1, double z = 0) {
    const AcGeVector3d up(0, 0, z);
    return {at(x0, y0) + up, at(x1, y0) + up, at(x1, y1) + up, at(x0, y1) + up};
  }
};
