// Render passes and object drawing, checked by recorded GL calls and by
// real frames read back from Mesa.
#include <epoxy/gl.h>

#include <cstdlib>

#include "ObjectHelpers.h"
#include "kxrender/CSceneMgr.h"
#include "scene/SceneFixture.h"
#include "support/GLRecorder.h"

namespace {

// Indices of the calls whose text equals each expected entry, in order;
// fails when one is missing.
void expectSubsequence(const GLRecorder& rec, const std::vector<std::string>& expected) {
  size_t at = 0;
  for (const std::string& e : expected) {
    bool found = false;
    for (; at < rec.calls().size(); ++at) {
      if (rec.calls()[at].text() == e) {
        found = true;
        ++at;
        break;
      }
    }
    ASSERT_TRUE(found) << "missing in order: " << e;
  }
}

size_t countText(const GLRecorder& rec, const std::string& text) {
  size_t n = 0;
  for (const GLCall& c : rec.calls()) n += c.text() == text;
  return n;
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
  }
  CObjectSetMgr& set() { return *scene.getObjSetMgr(); }
  void frame() {
    scene.render();
    scene.finish();
  }
};

TEST_F(ObjectFrame, FrameOrderPushesTheDepthRangeMaskAndDrawsOutlinesLast) {
  set().addObject(rectObject(-5, -5, 5, 5));
  GLRecorder rec(true);
  scene.render();
  expectSubsequence(rec, {"glRenderMode(7168)", "glEnable(2977)", "glGetDoublev(2982, 1)", "glPushAttrib(2928)",
                          "glDepthRange(0.1, 1)", "glDisable(2896)", "glEnable(32823)", "glLineWidth(1)",
                          "glEnableClientState(32884)", "glDisable(3042)", "glPointSize(3)",
                          "glDisableClientState(32884)", "glDisable(3042)", "glEnable(2852)", "glLineStipple(1, 3855)",
                          "glPushAttrib(2928)", "glDepthRange(0.09995, 1)", "glNormal3f(0, 0, 1)", "glPopAttrib()",
                          "glLineWidth(1.20000005)", "glDisable(2852)", "glDisable(32823)", "glPopAttrib()",
                          "glLineWidth(1.20000005)"});
}

TEST_F(ObjectFrame, StaticObjectsAreReplayedUnlessAccelerating) {
  CStaticObject* st = CStaticObject::createStaticObject();
  st->beginBuild();
  st->begin(CRenderSystem::kPoints);
  st->point(1, 2, 3);
  st->end();
  st->endBuild();
  const unsigned list = set().addStaticObject(st);
  const std::string call = "glCallList(" + std::to_string(list) + ")";
  {
    GLRecorder rec(true);
    scene.render();
    EXPECT_EQ(countText(rec, call), 1u);
  }
  set().setStaticObjectVisible(list, false);
  {
    GLRecorder rec(true);
    scene.render();
    EXPECT_EQ(countText(rec, call), 0u);
  }
  set().setStaticObjectVisible(list, true);
  scene.setAccelerate(true);
  {
    GLRecorder rec(true);
    scene.render();
    EXPECT_EQ(countText(rec, call), 0u);
  }
  set().delStaticObject(list);
  EXPECT_TRUE(set().staticObjects().empty());
}

TEST_F(ObjectFrame, HitOutlinesUseTheContrastRuleAndTheLineStipple) {
  auto faceObject = [](const CColor& c) {
    CRenderObject* o = new CRenderObject;
    CRenderShape s = faceTriangle(c);
    s.setBorderWidth(2.5, false);
    o->addShape(s);
    o->endAddShape();
    o->hit(true);
    return o;
  };
  set().addObject(faceObject(CColor(200, 200, 200, 255)));
  GLRecorder rec(true);
  scene.render();
  const int stipple = rec.find("glLineStipple");
  ASSERT_GE(stipple, 0);
  EXPECT_GE(rec.find("glLineWidth", stipple), 0);
  expectSubsequence(rec, {"glLineStipple(1, 3855)", "glLineWidth(2.5)", "glColor3ub(0, 0, 255)", "glBegin(3)",
                          "glVertex3d(0, 8, 0)", "glEnd()"});
  rec.clear();
  set().getObj(1)->setShapeColor(0, CColor(100, 100, 100, 255));
  scene.render();
  expectSubsequence(rec, {"glLineStipple(1, 3855)", "glColor3ub(255, 255, 255)", "glBegin(3)"});
}

TEST_F(ObjectFrame, ShadowModeRunsTheStencilPassesInOrder) {
  set().addObject(rectObject(-5, -5, 5, 5));
  scene.setShadow(true);
  GLRecorder rec(true);
  scene.render();
  expectSubsequence(rec, {"glDisable(16384)", "glEnable(16384)", "glColorMask(0, 0, 0, 0)", "glDepthMask(0)",
                          "glDepthFunc(513)", "glEnable(2960)", "glStencilOp(7680, 34055, 7680)",
                          "glEnable(2884)", "glCullFace(1028)", "glStencilOp(7680, 34056, 7680)",
                          "glCullFace(1029)", "glDepthMask(1)", "glDepthFunc(515)", "glColorMask(1, 1, 1, 1)",
                          "glStencilOp(7680, 7680, 7680)", "glDisable(2884)", "glStencilFunc(514, 0, 4.2949673e+09)",
                          "glEnable(16384)", "glDepthFunc(513)", "glDisable(2960)"});
  // The object is drawn in the unlit pass and again in the lit one.
  EXPECT_EQ(countText(rec, "glColor4ub(200, 100, 50, 255)"), 2u);
  // Shadows leave the polygon offset to their own passes.
  EXPECT_EQ(rec.count("glPolygonOffset"), 0u);
}

TEST_F(ObjectFrame, ObjectsDrawInTheirOwnColoursAndOutsideObjectsAreCulled) {
  set().addObject(rectObject(-8, -8, 0, 0, 0, CColor(255, 0, 0, 255)));
  set().addObject(rectObject(0, 0, 8, 8, 0, CColor(0, 255, 0, 255)));
  CRenderObject* outside = rectObject(500, 500, 510, 510, 0, CColor(0, 0, 255, 255));
  set().addObject(outside);
  GLRecorder rec(true);
  frame();
  EXPECT_TRUE(near(pixel(16, 48), 255, 0, 0));  // lower left quadrant
  EXPECT_TRUE(near(pixel(48, 16), 0, 255, 0));  // upper right
  EXPECT_TRUE(near(pixel(48, 48), 0, 0, 0));
  EXPECT_FALSE(outside->renderedFlag1());
  EXPECT_EQ(countText(rec, "glColor4ub(0, 0, 255, 255)"), 0u);
}

TEST_F(ObjectFrame, TransparentObjectsAreDrawnLargerFacesFirst) {
  // A large far face and a small near one: blended back to front the
  // centre holds both colours; the other way round the far face would fail
  // the depth test there.
  set().addObject(rectObject(-4, -4, 4, 4, 2, CColor(255, 0, 0, 255)));
  set().addObject(rectObject(-8, -8, 8, 8, -2, CColor(0, 0, 255, 255)));
  scene.setTransparent(128);
  frame();
  const std::vector<uint8_t> centre = pixel(32, 32), edge = pixel(8, 8);
  EXPECT_TRUE(near(centre, 128, 0, 64, 4)) << int(centre[0]) << "," << int(centre[1]) << "," << int(centre[2]);
  EXPECT_TRUE(near(edge, 0, 0, 128, 4)) << int(edge[0]) << "," << int(edge[1]) << "," << int(edge[2]);
}

TEST_F(ObjectFrame, PartTransparencyBlendsOnlyTheListedObjects) {
  const unsigned glass = set().addObject(rectObject(-8, -8, 8, 8, 2, CColor(0, 0, 255, 255)));
  set().addObject(rectObject(-4, -4, 4, 4, -2, CColor(255, 0, 0, 255)));
  scene.setTransparent(128);
  scene.SetPartTrans(true);
  scene.SetPartTransIds({glass, 999});
  frame();
  EXPECT_TRUE(near(pixel(32, 32), 128, 0, 128, 4));  // glass over the opaque red face
  EXPECT_TRUE(near(pixel(8, 8), 0, 0, 128, 4));
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
  expectSubsequence(rec, {"glNormal3f(0, 0, 1)", "glPointSize(3)", "glPolygonOffset(0, 0)", "glBegin(0)",
                          "glColor4ub(0, 255, 255, 255)", "glVertex3d(0, 0, 0)", "glEnd()"});
  EXPECT_TRUE(near(pixel(32, 32), 0, 255, 255));
  EXPECT_TRUE(near(pixel(36, 32), 0, 0, 0));
  rec.clear();
  scene.setTransparent(29);
  frame();
  EXPECT_EQ(rec.count("glVertex3d"), 0u);
  EXPECT_TRUE(near(pixel(32, 32), 0, 0, 0));
}

TEST_F(ObjectFrame, BackFacesAreCulledAndEdgeOnFacesToo) {
  // Looking down -z: a face whose normal points away is skipped.
  CRenderObject* away = new CRenderObject;
  CRenderShape s;
  s.set({{-8, -8, 0}, {8, -8, 0}, {8, 8, 0}, {-8, 8, 0}}, {}, CRenderShape::kPgon, CColor(255, 255, 0, 255),
        AcGeVector3d(0, 0, -1));
  away->addShape(s);
  away->endAddShape();
  set().addObject(away);
  CRenderObject* edgeOn = new CRenderObject;
  edgeOn->addShape(wallShape(0, -8, 8, -8, 8, true, CColor(0, 255, 0, 255)));
  edgeOn->endAddShape();
  set().addObject(edgeOn);
  GLRecorder rec(true);
  frame();
  EXPECT_EQ(countText(rec, "glColor4ub(255, 255, 0, 255)"), 0u);
  EXPECT_EQ(countText(rec, "glColor4ub(0, 255, 0, 255)"), 0u);
  EXPECT_TRUE(near(pixel(20, 20), 0, 0, 0));
  away->getShape(0).setUcs(AcGeVector3d(0, 0, 1));
  frame();
  EXPECT_TRUE(near(pixel(20, 20), 255, 255, 0));
}

TEST_F(ObjectFrame, LevelOfDetailSwitchesAtItsThresholdsWithSlack) {
  // Large enough to stay above the single-point size at 4 units per pixel.
  CRenderObject* o = rectObject(-40, -40, 40, 40, 0, CColor(255, 0, 0, 255));
  o->setLodLevel(2);
  o->getLodShpss(0).push_back(rectShape(-40, -40, 40, 40, 0, CColor(0, 255, 0, 255)));
  o->getLodShpss(1).push_back(rectShape(-40, -40, 40, 40, 0, CColor(0, 0, 255, 255)));
  o->getLodUnitsPerPixel(0) = 1.0f;
  o->getLodUnitsPerPixel(1) = 4.0f;
  set().addObject(o);
  // units per pixel = range / 64 on a 64 px window.
  scene.setRange(0.5 * 64);
  frame();
  EXPECT_TRUE(near(pixel(32, 32), 255, 0, 0));  // 0.5: the full shapes
  scene.setRange(3.9999 * 64);
  frame();
  EXPECT_TRUE(near(pixel(32, 32), 0, 255, 0));  // below 4 by more than the slack: level 0
  scene.setRange(3.9999999 * 64);
  frame();
  EXPECT_TRUE(near(pixel(32, 32), 0, 0, 255));  // within the slack: level 1
  // From the coarsest view on (equality included) the object is not drawn.
  o->setMaxUnitsPerPixel(5.0);
  scene.setRange(6.0 * 64);
  frame();
  EXPECT_TRUE(near(pixel(32, 32), 0, 0, 0));
  GLRecorder rec(false);
  double upp = 5.0, ppu = 0.2;
  o->render(true, &upp, &ppu, nullptr);
  EXPECT_TRUE(rec.calls().empty());
  upp = 4.99;
  o->render(true, &upp, &ppu, nullptr);
  EXPECT_EQ(countText(rec, "glColor4ub(0, 0, 255, 255)"), 1u);
}

TEST_F(ObjectFrame, InstancedShapesAreDrawnOncePerMatrixAndNotWithoutOne) {
  CRenderObject* o = new CRenderObject;
  o->addShape(rectShape(-2, -2, 2, 2, 0, CColor(255, 0, 0, 255)));
  o->addShape(rectShape(-1, -1, 1, 1, 1, CColor(0, 255, 0, 255)));
  o->addShape(rectShape(4, 4, 6, 6, 0, CColor(0, 0, 255, 255)));
  o->setExaGeoShapNum(2);
  o->endAddShape();
  set().addObject(o);
  {
    GLRecorder rec(true);
    frame();
    EXPECT_EQ(countText(rec, "glColor4ub(255, 0, 0, 255)"), 0u);
    EXPECT_EQ(countText(rec, "glColor4ub(0, 0, 255, 255)"), 1u);
  }
  CSimpleMatrix* a = new CSimpleMatrix;
  a->setTranslate(-5, 0, 0);
  CSimpleMatrix* b = new CSimpleMatrix;
  b->setTranslate(5, 0, 0);
  o->addSmpMat(a);
  o->addSmpMat(b);
  GLRecorder rec(true);
  frame();
  EXPECT_EQ(countText(rec, "glColor4ub(255, 0, 0, 255)"), 2u);
  EXPECT_EQ(countText(rec, "glColor4ub(0, 255, 0, 255)"), 2u);
  EXPECT_EQ(rec.count("glPushMatrix"), rec.count("glPopMatrix"));
  EXPECT_TRUE(near(pixel(32 - 16, 32 + 4), 255, 0, 0));  // left copy
  EXPECT_TRUE(near(pixel(32 + 16, 32 - 3), 0, 255, 0));   // right copy, inner shape
  EXPECT_TRUE(near(pixel(32, 32), 0, 0, 0));              // nothing untransformed
}

TEST_F(ObjectFrame, GripsOfAHitObjectAreDrawnAndRecordedInTheScene) {
  CRenderObject* o = rectObject(-5, -5, 5, 5);
  o->gripPoint().push_back(CGripPoint(AcGePoint3d(0, 0, 0), AcGeVector3d(1, 0, 0)));
  o->gripPoint().push_back(CGripPoint(AcGePoint3d(5, 5, 0), AcGeVector3d(1, 0, 0)));
  set().addObject(o);
  frame();
  EXPECT_TRUE(scene.gripPts().empty());  // not hit
  o->hit(true);
  frame();
  EXPECT_TRUE(scene.gripPts().empty());  // grip display off
  scene.setDrawGrip(true);
  GLRecorder rec(true);
  frame();
  expectSubsequence(rec, {"glPointSize(11)", "glColor3ub(0, 172, 255)", "glBegin(0)", "glVertex3d(0, 0, 0)",
                          "glVertex3d(5, 5, 0)", "glEnd()"});
  ASSERT_EQ(scene.gripPts().size(), 2u);
  const GripPoint* second = scene.gripPts().back();
  EXPECT_EQ(second->obj, o);
  EXPECT_EQ(second->index, 1);
  EXPECT_EQ(second->pt.x, 48);
  EXPECT_EQ(second->pt.y, 16);
}

TEST_F(ObjectFrame, XorTrackingAndAcceleratedCullingOfSmallObjects) {
  CRenderObject* o = rectObject(-5, -5, 5, 5);
  o->setTrackerXor(true);
  set().addObject(o);
  {
    GLRecorder rec(true);
    frame();
    expectSubsequence(rec, {"glEnable(3058)", "glLogicOp(5382)", "glDisable(3058)"});
  }
  // Accelerating: (10 + 10) units * 64 px / 10 = 128 px is kept; a 9-unit
  // object (115 px) is dropped.
  scene.setAccelerate(true);
  CRenderObject* small = rectObject(-4.5, -4.5, 0, 0, 1, CColor(1, 2, 3, 255));
  set().addObject(small);
  GLRecorder rec(true);
  frame();
  EXPECT_TRUE(o->renderedFlag1());
  EXPECT_EQ(countText(rec, "glColor4ub(1, 2, 3, 255)"), 0u);
}

TEST_F(ObjectFrame, DeletedObjectsHandTheirDisplayListsToTheScene) {
  CRenderObject* o = new CRenderObject;
  o->addShape(faceTriangle());
  o->endAddShape();
  const unsigned id = set().addObject(o);
  frame();
  const unsigned list = o->getShape(0).getFaceDisplayList();
  ASSERT_NE(list, 0u);
  set().delObject(id);
  ASSERT_EQ(scene.removedDispLists().size(), 1u);
  EXPECT_EQ(scene.removedDispLists()[0], list);
  GLRecorder rec(true);
  frame();
  EXPECT_EQ(countText(rec, "glDeleteLists(" + std::to_string(list) + ", 1)"), 1u);
}

TEST_F(ObjectFrame, BadObjectsAndEmptySetsDrawWithoutHarm) {
  frame();  // empty set
  CRenderObject* nanObj = new CRenderObject;
  CRenderShape s;
  const double nan = std::nan("");
  s.set({{nan, nan, nan}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {}, CRenderShape::kPgon, CColor(), AcGeVector3d(0, 0, 1));
  nanObj->addShape(s);
  nanObj->endAddShape();
  set().addObject(nanObj);
  set().addObject(new CRenderObject);
  CRenderObject* noNormals = new CRenderObject;
  CRenderShape f;
  f.setFaceType(false);
  std::vector<AcGePoint3d> v{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  std::vector<int> tri{0, 1, 2};
  f.setFaceVertexArray(&v);
  f.setFaceTriangleIndexArray(&tri);
  noNormals->addShape(f);
  noNormals->endAddShape();
  set().addObject(noNormals);
  set().delObject(12345);
  frame();
  EXPECT_TRUE(near(pixel(32, 32), 0, 0, 0));
  EXPECT_EQ(kgl->GetError(), static_cast<GLenum>(GL_NO_ERROR));
}
