#include <epoxy/gl.h>

#include "SceneFixture.h"
#include "support/GLRecorder.h"

TEST(SceneDefaults, EveryMemberStartsAsDocumented) {
  CSceneMgr s;
  EXPECT_EQ(s.getWndHandle(), nullptr);
  EXPECT_EQ(s.getHRC(), nullptr);
  EXPECT_EQ(s.projectPlane(), CSceneMgr::PLANE_XY);
  EXPECT_EQ(s.dRange(), 150.0);
  EXPECT_EQ(s.GetOrbitStatus(), 0);
  EXPECT_FALSE(s.isShadow());
  EXPECT_EQ(s.getLightpos()[0], 10.0f);
  EXPECT_EQ(s.getLightpos()[3], 0.0f);
  EXPECT_TRUE(s.isLightOpen());
  EXPECT_EQ(s.getProjectionMatrix()[0], 0.0);
  EXPECT_EQ(s.getPickPixelPrecision(), 12);
  EXPECT_EQ(s.getBkColor(), 0UL);
  EXPECT_EQ(s.getBkColorRef(), CColor(0, 0, 0, 255));
  EXPECT_EQ(s.getTransparent(), 255);
  EXPECT_FALSE(s.openglSupportVertexBufferObject());
  EXPECT_FALSE(s.isBack());
  EXPECT_FALSE(s.isDrawGrip());
  EXPECT_FALSE(s.isAccelerate());
  EXPECT_EQ(s.getLastRenderTime(), 0UL);
  EXPECT_EQ(s.getRenderMode(), CRenderObject::RenderMode(2));
  EXPECT_EQ(s.getObjSetMgr()->getScene(), &s);
  EXPECT_EQ(s.camera()->GetVForward().z, -1.0);
  CSceneMgr* none = nullptr;
  EXPECT_EQ(none->getObjSetMgr(), nullptr);
  CRect rc;
  EXPECT_FALSE(s.GetViewRect(rc));
}

TEST(SceneDefaults, BackgroundPackingAndPartTransparencyIds) {
  CSceneMgr s;
  s.setBkColor(0xAA112233UL);
  EXPECT_EQ(s.getBkColorRef(), CColor(0x33, 0x22, 0x11, 255));
  EXPECT_EQ(s.getBkColor(), 0x112233UL);

  s.AddPartTransId(5);
  s.AddPartTransId(0);
  s.AddPartTransId(7);
  s.AddPartTransId(5);
  EXPECT_EQ(s.GetPartTransIds(), (std::vector<unsigned int>{5, 7}));
  s.SetPartTransIds({3, 9, 3});
  s.DelPartTransId(3);
  EXPECT_EQ(s.GetPartTransIds(), (std::vector<unsigned int>{9, 3}));
  s.DelPartTransId(42);
  s.ClearAllPartTransId();
  EXPECT_TRUE(s.GetPartTransIds().empty());
}

TEST(SceneDefaults, ConstructingClearsTheCurrentSceneAndCopiesAreDeep) {
  CSceneMgr a;
  CSceneMgr::m_currentScenePtr = &a;
  CSceneMgr b;
  EXPECT_EQ(CSceneMgr::getCurrentScenePtr(), nullptr);

  a.setRange(42.0);
  a.setBkColor(0x010203);
  a.camera()->MoveCameraUp(3.0);
  a.addGripPt(new GripPoint{nullptr, CPoint(4, 5), 1});
  a.addRemovedDispList(17);
  CSceneMgr c(a);
  EXPECT_EQ(c.dRange(), 42.0);
  EXPECT_EQ(c.getBkColor(), 0x010203UL);
  EXPECT_EQ(c.camera()->GetVLocation().y, 3.0);
  EXPECT_EQ(c.removedDispLists(), (std::vector<unsigned int>{17}));
  ASSERT_EQ(c.gripPts().size(), 1u);
  EXPECT_NE(c.gripPts().front(), a.gripPts().front());  // its own grip
  EXPECT_EQ(c.getObjSetMgr()->getScene(), &c);
  b = a;
  EXPECT_EQ(b.dRange(), 42.0);
  EXPECT_EQ(b.getObjSetMgr()->getScene(), &b);
}

TEST(SceneDefaults, CallbackOnlyWhenSet) {
  static int calls = 0;
  CSceneMgr s;
  s.SetModelCam();
  s.SetScene2ModelFunPtr([](CSceneMgr*) { ++calls; });
  s.SetModelCam();
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(s.setRange(10.0));  // setRange does not call back
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(s.scaleRange(2.0));  // scaleRange does
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(s.dRange(), 20.0);
}

TEST(SceneInit, RefusesMissingOrDestroyedWindows) {
  CSceneMgr s;
  EXPECT_FALSE(s.initializeRender(nullptr, true, true));
  HWND w = KxCreateOffscreenWindow(8, 8);
  KxDestroyWindow(w);
  EXPECT_FALSE(s.initializeRender(w, false, true));
  EXPECT_EQ(s.getHRC(), nullptr);
  int bogus = 0;
  EXPECT_FALSE(s.initializeRender(reinterpret_cast<HWND>(&bogus), false, true));
}

TEST(SceneInit, AnUnboundSceneSurvivesFrameCalls) {
  // Misuse by a host: no context is current, so GL calls go nowhere, but
  // nothing may crash and the state stays consistent.
  CSceneMgr s;
  s.setLightOpen(false);
  s.render();
  s.finish();
  s.draw3dOrbit();
  s.glRelease();
  EXPECT_FALSE(s.isLightOpen());
  EXPECT_NE(s.getLastRenderTime(), 0UL);
  EXPECT_EQ(s.getFrustumWidth(), 150.0);
}

TEST_F(SceneFixture, SecondSceneReusesTheProcessPixelFormat) {
  open(32, 32);
  const int format = CSceneMgr::g_nPixelFormat;
  ASSERT_GE(format, 1);
  EXPECT_TRUE(scene.openglSupportVertexBufferObject());
  HWND other = KxCreateOffscreenWindow(16, 16);
  CSceneMgr second;
  ASSERT_TRUE(second.initializeRender(other, true, true));
  EXPECT_EQ(CSceneMgr::g_nPixelFormat, format);
  EXPECT_EQ(GetPixelFormat(GetDC(other)), format);
  second.glRelease();
  EXPECT_EQ(second.getHRC(), nullptr);
  KxDestroyWindow(other);
  scene.restoreHRC();
}

TEST_F(SceneFixture, FrameClearsToTheBackgroundColour) {
  open(64, 48);
  scene.setBkColor(0x00FF8040UL);  // red 0x40, green 0x80, blue 0xFF
  scene.getBkColorRef().a = 0;     // ignored when clearing
  EXPECT_EQ(scene.getLastRenderTime(), 0UL);
  scene.render();
  EXPECT_EQ(CSceneMgr::getCurrentScenePtr(), &scene);
  scene.finish();
  EXPECT_NE(scene.getLastRenderTime(), 0UL);
  EXPECT_EQ(pixel(0, 0), (std::vector<uint8_t>{0x40, 0x80, 0xFF, 255}));
  EXPECT_EQ(pixel(63, 47), (std::vector<uint8_t>{0x40, 0x80, 0xFF, 255}));
  CRect rc;
  ASSERT_TRUE(scene.GetViewRect(rc));
  EXPECT_EQ(rc, CRect(0, 0, 64, 48));
}

TEST_F(SceneFixture, FrameOrderFromQueuedListsToCamera) {
  open(80, 60);
  const GLuint live = glGenLists(1);
  glNewList(live, GL_COMPILE);
  glEndList();
  scene.addRemovedDispList(live);
  scene.addRemovedDispList(999999);  // no longer a list: skipped quietly
  scene.addGripPt(new GripPoint{nullptr, CPoint(1, 1), 0});

  GLRecorder rec(true);
  scene.render();
  const auto& c = rec.calls();
  ASSERT_GE(c.size(), 8u);
  EXPECT_EQ(c[0].text(), "glIsList(" + std::to_string(live) + ")");
  EXPECT_EQ(c[1].text(), "glDeleteLists(" + std::to_string(live) + ", 1)");
  EXPECT_EQ(c[2].text(), "glIsList(999999)");
  EXPECT_EQ(c[3].text(), "glViewport(0, 0, 80, 60)");
  const int clearColor = rec.find("glClearColor");
  const int clear = rec.find("glClear");
  const int look = rec.find("gluLookAt");
  ASSERT_GT(clearColor, 3);
  EXPECT_EQ(clear, clearColor + 1);
  EXPECT_EQ(c[size_t(clear)].args[0], double(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT));
  EXPECT_EQ(look, clear + 1);
  EXPECT_EQ(c[size_t(look)].text(), "gluLookAt(0, 0, 0, 0, 0, -1, 0, 1, 0)");
  EXPECT_GT(rec.find("glGetDoublev"), look);  // the object set refreshes matrices after the camera
  EXPECT_EQ(rec.count("glDeleteLists"), 1u);
  EXPECT_TRUE(scene.removedDispLists().empty());
  EXPECT_TRUE(scene.gripPts().empty());
  EXPECT_FALSE(glIsList(live));
}

TEST_F(SceneFixture, StaticStateAndLight) {
  GLRecorder rec(true);
  open(16, 16);
  const int shade = rec.find("glShadeModel");
  ASSERT_GE(shade, 0);
  EXPECT_EQ(rec.calls()[size_t(shade)].args[0], double(GL_SMOOTH));
  EXPECT_EQ(rec.calls()[size_t(rec.find("glLineWidth"))].text(), "glLineWidth(1.10000002)");
  EXPECT_EQ(rec.calls()[size_t(rec.find("glDepthFunc"))].args[0], double(GL_LEQUAL));
  const int ambient = rec.find("glLightfv");
  EXPECT_EQ(rec.calls()[size_t(ambient)].text(),
            "glLightfv(" + std::to_string(GL_LIGHT0) + ", " + std::to_string(GL_AMBIENT) +
                ", 0.300000012, 0.300000012, 0.349999994, 1)");
  EXPECT_EQ(rec.calls()[size_t(rec.find("glMateriali"))].args[2], 64.0);
  EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
  EXPECT_TRUE(glIsEnabled(GL_COLOR_MATERIAL));
  EXPECT_FALSE(glIsEnabled(GL_BLEND));  // the passes switch blending on

  scene.setLightOpen(false);
  EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
  rec.clear();
  scene.lightInit();
  EXPECT_EQ(rec.count("glEnable") > 0, true);
  EXPECT_FALSE(glIsEnabled(GL_LIGHTING));  // kept off by the switch
  scene.setLightOpen(true);
  EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
}

TEST_F(SceneFixture, CloseAndRestoreTheContext) {
  open(16, 16);
  scene.closeHRC();
  EXPECT_EQ(wglGetCurrentContext(), nullptr);
  scene.closeHRC();  // nothing current: fine
  scene.restoreHRC();
  EXPECT_EQ(wglGetCurrentContext(), scene.getHRC());
  scene.addRemovedDispList(3);
  scene.glRelease();
  EXPECT_TRUE(scene.removedDispLists().empty());
  EXPECT_EQ(scene.getHRC(), nullptr);
  EXPECT_EQ(wglGetCurrentContext(), nullptr);
}
