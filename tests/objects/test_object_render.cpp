// Render passes and object drawing, checked by recorded GL calls and by
// real frames read back from Mesa.
#include <epoxy/gl.h>

#include <array>
#include <cstdlib>

#include "ObjectHelpers.h"
#include "kxrender/CSceneMgr.h"
#include "scene/SceneFixture.h"
#include "support/GLRecorder.h"

namespace {

// Fails unless the calls with these texts occur in this order.
void expectSubsequence(const GLRecorder& rec, const std::vector<std::string>& expected) {
  size_t at = 0;
  for (const std::string& e : expected) {
    while (at < rec.calls().size() && rec.calls()[at].text() != e) ++at;
    ASSERT_LT(at++, rec.calls().size()) << "missing in order: " << e;
  }
}

size_t countText(const GLRecorder& rec, const std::string& text) {
  size_t n = 0;
  for (const GLCall& c : rec.calls()) n += c.text() == text;
  return n;
}

size_t colourCalls(const GLRecorder& rec, int r, int g, int b) {
  return countText(rec, "glColor4ub(" + std::to_string(r) + ", " + std::to_string(g) + ", " + std::to_string(b) +
                            ", 255)");
}

bool near(const std::vector<uint8_t>& px, int r, int g, int b, int tol = 3) {
  return px.size() == 4 && std::abs(px[0] - r) <= tol && std::abs(px[1] - g) <= tol && std::abs(px[2] - b) <= tol;
}

}  // namespace

TEST(ObjectSetPasses, ASetWithoutASceneMakesNoGLCalls) {
  CObjectSetMgr set;
  set.addObject(rectObject(0, 0, 1, 1));
  GLRecorder rec(false);
  set.render();
  set.renderObjs(0);
  set.renderObjs(std::vector<CRenderObject*>{set.getObj(1)}, 0);
  EXPECT_TRUE(rec.calls().empty());
}

class ObjectFrame : public SceneFixture {
 protected:
  void SetUp() override {
    open(64, 64);
    scene.setLightOpen(false);  // exact colours in the frame
    scene.setRange(10.0);
    scene.setRetainedDraw(false);  // every frame makes the per-shape calls
  }
};

TEST_F(ObjectFrame, FrameOrderPushesTheDepthRangeAndDrawsOutlinesLast) {
  set().addObject(rectObject(-5, -5, 5, 5));
  GLRecorder rec(true);
  scene.render();
  expectSubsequence(rec, {"glPushAttrib(2928)", "glDepthRange(0.1, 1)", "glEnable(32823)", "glDepthRange(0.09995, 1)",
                          "glNormal3f(0, 0, 1)", "glPopAttrib()", "glDisable(32823)", "glLineWidth(1.20000005)"});
}

TEST_F(ObjectFrame, StaticObjectsAreReplayedWhenVisibleAndNotAccelerating) {
  const unsigned list = set().addStaticObject(CStaticObject::createStaticObject());
  auto replays = [&] {
    GLRecorder rec(true);
    scene.render();
    return countText(rec, "glCallList(" + std::to_string(list) + ")");
  };
  EXPECT_EQ(replays(), 1u);
  set().setStaticObjectVisible(list, false);
  EXPECT_EQ(replays(), 0u);
  set().setStaticObjectVisible(list, true);
  scene.setAccelerate(true);
  EXPECT_EQ(replays(), 0u);
}

TEST_F(ObjectFrame, ShadowModeRunsTheStencilPassesInOrder) {
  set().addObject(rectObject(-5, -5, 5, 5));
  scene.setShadow(true);
  GLRecorder rec(true);
  scene.render();
  expectSubsequence(rec, {"glColorMask(0, 0, 0, 0)", "glStencilOp(7680, 34055, 7680)", "glCullFace(1028)",
                          "glStencilOp(7680, 34056, 7680)", "glCullFace(1029)", "glColorMask(1, 1, 1, 1)",
                          "glStencilFunc(514, 0, 4.2949673e+09)", "glEnable(16384)", "glDisable(2960)"});
  // The object is drawn in the unlit pass and again in the lit one, and
  // shadows leave the polygon offset to their own passes.
  EXPECT_EQ(colourCalls(rec, 200, 100, 50), 2u);
  EXPECT_EQ(rec.count("glPolygonOffset"), 0u);
}

TEST_F(ObjectFrame, ObjectsDrawInTheirColoursAndBackOutsideAndEdgeOnFacesAreSkipped) {
  set().addObject(rectObject(-8, -8, 0, 0, 0, CColor(255, 0, 0, 255)));
  set().addObject(rectObject(0, 0, 8, 8, 0, CColor(0, 255, 0, 255)));
  CRenderObject* outside = rectObject(500, 500, 510, 510, 0, CColor(0, 0, 255, 255));
  set().addObject(outside);
  // Looking down -z: a face whose normal points away, and one seen edge on.
  CRenderShape away = rectShape(-8, 0, 0, 8, 0, CColor(255, 255, 0, 255));
  away.setUcs(AcGeVector3d(0, 0, -1));
  CRenderObject* turned = objectOf({away});
  set().addObject(turned);
  set().addObject(objectOf({wallShape(0, -8, 8, -8, 8, true, CColor(0, 255, 255, 255))}));
  GLRecorder rec(true);
  frame();
  EXPECT_TRUE(near(pixel(16, 48), 255, 0, 0));  // lower left quadrant
  EXPECT_TRUE(near(pixel(48, 16), 0, 255, 0));  // upper right
  EXPECT_TRUE(near(pixel(16, 16), 0, 0, 0));    // the turned face is culled
  EXPECT_FALSE(outside->renderedFlag1());
  EXPECT_EQ(colourCalls(rec, 0, 0, 255) + colourCalls(rec, 255, 255, 0) + colourCalls(rec, 0, 255, 255), 0u);
  turned->getShape(0).setUcs(AcGeVector3d(0, 0, 1));
  frame();
  EXPECT_TRUE(near(pixel(16, 16), 255, 255, 0));
}

TEST_F(ObjectFrame, TransparencyBlendsBackToFrontAndPartTransparencyOnlyTheListed) {
  // A large face and a small one in front of or behind it: drawn larger
  // first, the centre holds both colours; the other way round the far face
  // would fail the depth test there.
  const struct {
    const char* name;
    double bigZ;
    bool onlyBig;  // part transparency for the big face alone
    int centre[3], edge[3];
  } rows[] = {
      {"all blended, big face behind", -2, false, {128, 0, 64}, {0, 0, 128}},
      {"only the big face, in front", 2, true, {128, 0, 128}, {0, 0, 128}},
  };
  for (const auto& r : rows) {
    set().clear();
    const unsigned big = set().addObject(rectObject(-8, -8, 8, 8, r.bigZ, CColor(0, 0, 255, 255)));
    set().addObject(rectObject(-4, -4, 4, 4, -r.bigZ, CColor(255, 0, 0, 255)));
    scene.setTransparent(128);
    scene.SetPartTrans(r.onlyBig);
    scene.SetPartTransIds({big, 999});
    frame();
    const std::vector<uint8_t> c = pixel(32, 32), e = pixel(8, 8);
    EXPECT_TRUE(near(c, r.centre[0], r.centre[1], r.centre[2], 4)) << r.name << ": " << int(c[0]) << "," << int(c[2]);
    EXPECT_TRUE(near(e, r.edge[0], r.edge[1], r.edge[2], 4)) << r.name << ": " << int(e[0]) << "," << int(e[2]);
  }
  // Part transparency with no ids draws everything opaque.
  scene.SetPartTransIds({});
  frame();
  EXPECT_TRUE(near(pixel(32, 32), 0, 0, 255));
}

TEST_F(ObjectFrame, ASmallObjectIsOnePointAndNothingWhenNearlyTransparent) {
  // 64 px over 20 units: radius 0.35 units is about 2 px, below 11.
  set().addObject(rectObject(-0.25, -0.25, 0.25, 0.25, 0, CColor(0, 255, 255, 255)));
  GLRecorder rec(true);
  frame();
  expectSubsequence(rec, {"glPointSize(3)", "glBegin(0)", "glColor4ub(0, 255, 255, 255)", "glVertex3d(0, 0, 0)",
                          "glEnd()"});
  EXPECT_TRUE(near(pixel(32, 32), 0, 255, 255));
  rec.clear();
  scene.setTransparent(29);
  frame();
  EXPECT_EQ(rec.count("glVertex3d"), 0u);
}

TEST_F(ObjectFrame, LevelOfDetailSwitchesAtItsThresholdsWithSlack) {
  // Large enough to stay above the single-point size at 4 units per pixel.
  CRenderObject* o = rectObject(-40, -40, 40, 40, 0, CColor(255, 0, 0, 255));
  o->setLodLevel(2);
  o->getLodShpss(0).push_back(rectShape(-40, -40, 40, 40, 0, CColor(0, 255, 0, 255)));
  o->getLodShpss(1).push_back(rectShape(-40, -40, 40, 40, 0, CColor(0, 0, 255, 255)));
  o->getLodUnitsPerPixel(0) = 1.0f;
  o->getLodUnitsPerPixel(1) = 4.0f;
  o->setMaxUnitsPerPixel(5.0);
  set().addObject(o);
  // Units per pixel = range / 64; {units per pixel, colour at the centre}.
  const std::pair<double, std::array<int, 3>> rows[] = {
      {0.5, {255, 0, 0}},        // the full shapes
      {3.9999, {0, 255, 0}},     // below 4 by more than the slack: level 0
      {3.9999999, {0, 0, 255}},  // within the slack: level 1
      {6.0, {0, 0, 0}},          // past the coarsest view: not drawn
  };
  for (const auto& r : rows) {
    scene.setRange(r.first * 64);
    frame();
    EXPECT_TRUE(near(pixel(32, 32), r.second[0], r.second[1], r.second[2])) << r.first;
  }
  // The coarsest view itself is not drawn.
  GLRecorder rec(false);
  double upp = 5.0, ppu = 0.2;
  o->render(true, &upp, &ppu, nullptr);
  EXPECT_TRUE(rec.calls().empty());
  upp = 4.99;
  o->render(true, &upp, &ppu, nullptr);
  EXPECT_EQ(colourCalls(rec, 0, 0, 255), 1u);
}

TEST_F(ObjectFrame, InstancedShapesAreDrawnOncePerMatrixAndNotWithoutOne) {
  CRenderObject* o =
      objectOf({rectShape(-2, -2, 2, 2, 0, CColor(255, 0, 0, 255)), rectShape(-1, -1, 1, 1, 1, CColor(0, 255, 0, 255)),
                rectShape(4, 4, 6, 6, 0, CColor(0, 0, 255, 255))});
  o->setExaGeoShapNum(2);  // the first two
  set().addObject(o);
  frame();
  EXPECT_TRUE(near(pixel(32, 32), 0, 0, 0) && near(pixel(48, 16), 0, 0, 255));  // without a matrix: plain shapes only
  for (float dx : {-5.0f, 5.0f}) addShift(*o, dx);
  GLRecorder rec(true);
  frame();
  EXPECT_EQ(colourCalls(rec, 255, 0, 0), 2u);
  EXPECT_EQ(rec.count("glPushMatrix"), rec.count("glPopMatrix"));
  EXPECT_TRUE(near(pixel(32 - 16, 32 + 4), 255, 0, 0));  // left copy
  EXPECT_TRUE(near(pixel(32 + 16, 32 - 3), 0, 255, 0));   // right copy, inner shape
  EXPECT_TRUE(near(pixel(32, 32), 0, 0, 0));              // nothing untransformed
}

TEST_F(ObjectFrame, GripsOfAHitObjectAreDrawnAndRecordedInTheScene) {
  CRenderObject* o = rectObject(-5, -5, 5, 5);
  for (double at : {0.0, 5.0}) o->gripPoint().push_back(CGripPoint(AcGePoint3d(at, at, 0), AcGeVector3d(1, 0, 0)));
  set().addObject(o);
  o->hit(true);
  scene.setDrawGrip(true);
  GLRecorder rec(true);
  frame();
  expectSubsequence(rec, {"glPointSize(11)", "glColor3ub(0, 172, 255)", "glBegin(0)", "glVertex3d(0, 0, 0)",
                          "glVertex3d(5, 5, 0)", "glEnd()"});
  ASSERT_EQ(scene.gripPts().size(), 2u);
  const GripPoint* second = scene.gripPts().back();
  EXPECT_TRUE(second->obj == o && second->index == 1 && second->pt.x == 48 && second->pt.y == 16);
}

TEST_F(ObjectFrame, XorTrackingAndAcceleratedCullingOfSmallObjects) {
  CRenderObject* o = rectObject(-5, -5, 5, 5);
  o->setTrackerXor(true);
  set().addObject(o);
  // Accelerating: (10 + 10) units * 64 px / 10 = 128 px is kept; a 9-unit
  // object (115 px) is dropped.
  set().addObject(rectObject(-4.5, -4.5, 0, 0, 1, CColor(1, 2, 3, 255)));
  scene.setAccelerate(true);
  GLRecorder rec(true);
  frame();
  expectSubsequence(rec, {"glEnable(3058)", "glLogicOp(5382)", "glDisable(3058)"});
  EXPECT_TRUE(o->renderedFlag1());
  EXPECT_EQ(colourCalls(rec, 1, 2, 3), 0u);
}
