// Recorded calls of shape drawing: dispatch, line widths, wire frames,
// shaded polylines and the selection colours.
#include <cstdio>

#include "test_shape_render_fixture.h"

using namespace shapetest;

namespace {
std::string fmt(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.9g", v);
  return buf;
}
const std::string kPush = "glPushAttrib(2928)";  // 0x0B70
const std::string kDashOn = "glEnable(" + num(GL_LINE_STIPPLE) + ")";
const std::string kDash = "glLineStipple(1, 3855)";  // 0x0F0F
const std::string kDashOff = "glDisable(" + num(GL_LINE_STIPPLE) + ")";
}  // namespace

// ---- render: what is drawn at all ----

TEST(ShapeRenderDispatch, NothingWithoutPointsObjectOrSet) {
  SceneObject so;
  GLRecorder rec(false);
  const double scale = 1.0;

  CRenderShape unset;
  unset.render(2, &so.obj, &scale, false);
  EXPECT_TRUE(rec.calls().empty());

  // The triangulation is still there, but a polygon without its points is
  // not drawn.
  CRenderShape pgon = polygon(rect(0, 0, 10, 10));
  ASSERT_FALSE(pgon.getGlPts().empty());
  pgon.getPts().clear();
  for (int mode : {0, 2, 4}) pgon.render(mode, &so.obj, &scale, false);
  EXPECT_TRUE(rec.calls().empty());

  CRenderShape ok = polygon(rect(0, 0, 10, 10));
  ok.render(2, nullptr, &scale, false);
  CRenderObject orphan;
  ok.render(2, &orphan, &scale, false);
  EXPECT_TRUE(rec.calls().empty());
}

TEST(ShapeRenderDispatch, OffsetThenNormalThenTheDrawerOfTheMode) {
  SceneObject so;
  CRenderShape pgon = polygon(rect(0, 0, 200, 100));
  pgon.setUcs(AcGeVector3d(0, 0, 1));
  const std::string offset =
      "glPolygonOffset(" + fmt(pgon.getOffsetFactor()) + ", " + fmt(pgon.getOffsetUnits()) + ")";
  GLRecorder rec(false);
  pgon.render(0, &so.obj, nullptr, false);
  ASSERT_GE(rec.calls().size(), 3u);
  EXPECT_EQ(rec.calls()[0].text(), offset);
  EXPECT_EQ(rec.calls()[1].text(), "glNormal3d(0, 0, 1)");
  // Mode 0: line strips of the contour, no fill.
  EXPECT_EQ(rec.count("glDrawArrays"), 1u);
  EXPECT_EQ(rec.count("glBegin") + rec.count("glDrawElements"), 0u);

  for (int mode : {2, 4}) {
    rec.clear();
    pgon.render(mode, &so.obj, nullptr, false);
    EXPECT_EQ(rec.calls()[0].text(), offset);
    // After offset, normal, width, vertex pointer and colour.
    EXPECT_EQ(findText(rec, "glBegin(" + num(GL_TRIANGLE_STRIP) + ")"), 5) << mode;
  }
  for (int mode : {1, 3, 5, -1}) {
    rec.clear();
    pgon.render(mode, &so.obj, nullptr, false);
    EXPECT_EQ(texts(rec), (std::vector<std::string>{offset, "glNormal3d(0, 0, 1)"})) << mode;
  }
}

TEST(ShapeRenderDispatch, ShadowsKeepTheirOwnOffset) {
  SceneObject so;
  so.scene.setShadow(true);
  CRenderShape line = polyline({{0, 0, 0}, {5, 5, 0}});
  GLRecorder rec(false);
  line.render(2, &so.obj, nullptr, false);
  EXPECT_EQ(rec.count("glPolygonOffset"), 0u);
  EXPECT_EQ(rec.calls().front().name, "glNormal3d");
  EXPECT_EQ(rec.count("glDrawArrays"), 1u);
}

// ---- line width ----

TEST(ShapeRenderLineWidth, ScaledByViewOverFifteenAndClamped) {
  CRenderShape s = polyline({{0, 0, 0}, {1, 0, 0}});
  const double fifty = 50.0, twoHundred = 200.0;
  EXPECT_FLOAT_EQ(s.lineWidth(&fifty), 1.2f);  // not scaled by default
  s.setBorderWidth(1.2, true);
  EXPECT_FLOAT_EQ(s.lineWidth(&fifty), 4.0f);
  EXPECT_FLOAT_EQ(s.lineWidth(&twoHundred), 8.0f);  // 16 clamped to the maximum 8
  EXPECT_FLOAT_EQ(s.lineWidth(nullptr), 1.2f);
  s.setBorderMaxWidth(3.0);
  EXPECT_FLOAT_EQ(s.lineWidth(&fifty), 3.0f);

  SceneObject so;
  s.setBorderMaxWidth(8.0);
  GLRecorder rec(false);
  s.render(0, &so.obj, &fifty, false);
  EXPECT_EQ(findText(rec, "glLineWidth(4)"), 2);
  rec.clear();
  s.render(2, &so.obj, &twoHundred, false);
  EXPECT_EQ(countText(rec, "glLineWidth(8)"), 1u);
}

// ---- wire frame ----

TEST(ShapeRenderWireFrame, EveryContourAsALineStripInTheSceneAlpha) {
  SceneObject so;
  so.scene.setTransparent(100);
  CRenderShape s = polygon(rect(0, 0, 10, 10), {rect(2, 2, 4, 4), rect(6, 6, 8, 8)}, CColor(10, 20, 30, 255));
  s.getHoles().push_back({});  // an empty contour is still issued
  GLRecorder rec(false);
  s.renderWireFrame(&so.obj, nullptr, false);
  const std::string ptr = "glVertexPointer(3, " + num(GL_DOUBLE) + ", 0, 1)";
  const std::string strip5 = "glDrawArrays(" + num(GL_LINE_STRIP) + ", 0, 5)";
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glLineWidth(1.20000005)", "glColor4ub(10, 20, 30, 100)", ptr,
                                                  strip5, ptr, strip5, ptr, strip5, "glVertexPointer(3, " +
                                                  num(GL_DOUBLE) + ", 0, 0)", "glDrawArrays(3, 0, 0)"}));
}

TEST(ShapeRenderWireFrame, HitContoursAreDashed) {
  SceneObject so;
  CRenderShape s = polygon(rect(0, 0, 10, 10), {rect(2, 2, 4, 4)});
  s.setHit(true);
  GLRecorder rec(false);
  s.renderWireFrame(&so.obj, nullptr, false);
  const int on = findText(rec, kDashOn);
  ASSERT_GE(on, 0);
  EXPECT_EQ(rec.calls()[on + 1].text(), kDash);
  EXPECT_LT(on, rec.find("glDrawArrays"));
  EXPECT_EQ(rec.calls().back().text(), kDashOff);
  EXPECT_EQ(rec.count("glDrawArrays"), 2u);

  s.setHit(false);
  rec.clear();
  s.renderWireFrame(&so.obj, nullptr, false);
  EXPECT_EQ(rec.count("glLineStipple") + rec.count("glEnable") + rec.count("glDisable"), 0u);
}

// ---- shaded polyline ----

TEST(ShapeRenderPline, PlainLineIsPushedTowardsTheViewer) {
  SceneObject so;
  so.scene.setTransparent(200);
  CRenderShape s = polyline({{0, 0, 0}, {5, 0, 0}, {5, 5, 0}}, CColor(1, 2, 3, 255));
  GLRecorder rec(false);
  s.renderShaded_Pline(&so.obj, nullptr, false);
  EXPECT_EQ(texts(rec),
            (std::vector<std::string>{"glLineWidth(1.20000005)", "glVertexPointer(3, " + num(GL_DOUBLE) + ", 0, 1)",
                                      kPush, "glDepthRange(0.09995, 1)", "glColor4ub(1, 2, 3, 200)",
                                      "glDrawArrays(3, 0, 3)", "glPopAttrib()"}));
  EXPECT_TRUE(so.scene.getObjSetMgr()->outlineShapes().empty());
}

TEST(ShapeRenderPline, SelectedOrDottedLinesAreDeferred) {
  SceneObject so;
  CRenderShape hit = polyline({{0, 0, 0}, {5, 0, 0}});
  hit.setHit(true);
  CRenderShape lit = polyline({{0, 0, 0}, {5, 0, 0}});
  lit.setHighLight(true);
  CRenderShape dots = polyline({{0, 0, 0}, {5, 0, 0}});
  dots.setDotLine(true);
  GLRecorder rec(false);
  hit.renderShaded_Pline(&so.obj, nullptr, false);
  lit.renderShaded_Pline(&so.obj, nullptr, false);
  dots.renderShaded_Pline(&so.obj, nullptr, false);
  EXPECT_TRUE(rec.calls().empty());
  EXPECT_EQ(so.scene.getObjSetMgr()->outlineShapes(),
            (std::vector<const CRenderShape*>{&hit, &lit, &dots}));
}

// ---- selection colours ----

TEST(ShapeRenderColours, SelectionColourContrastsWithTheFill) {
  GLRecorder rec(false);
  CRenderShape::glSelclr(CColor(200, 200, 150, 255));  // 550: white
  CRenderShape::glSelclr(CColor(200, 200, 151, 255));  // 551: blue
  CRenderShape::glSelclr(CColor(0, 0, 0, 0));
  CRenderShape::glSelclr(CColor(255, 255, 255, 255));
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glColor3ub(255, 255, 255)", "glColor3ub(0, 0, 255)",
                                                  "glColor3ub(255, 255, 255)", "glColor3ub(0, 0, 255)"}));
}

TEST(ShapeRenderColours, BorderColourOfAHitShape) {
  GLRecorder rec(false);
  CRenderShape::glSetBorderClr(CColor(10, 20, 240, 255));
  CRenderShape::glSetBorderClr(CColor(10, 20, 229, 255));
  CRenderShape::glSetBorderClr(CColor(10, 20, 230, 255));
  CRenderShape::glSetBorderClr(CColor(255, 0, 255, 0));
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glColor3ub(245, 235, 240)", "glColor3ub(0, 0, 255)",
                                                  "glColor3ub(245, 235, 230)", "glColor3ub(0, 255, 255)"}));
}

TEST(ShapeRenderColours, DotLineStateSwitchesTheDash) {
  GLRecorder rec(false);
  CRenderShape::setDotLineState(nullptr);
  CRenderShape::backDotLineState(nullptr);
  EXPECT_EQ(texts(rec), (std::vector<std::string>{kDashOn, kDash, kDashOff}));
}
