// Recorded calls of shape drawing: dispatch, line widths, wire frames,
// shaded polylines and the selection colours.
#include <cstdio>

#include "test_shape_render_fixture.h"

using namespace shapetest;

TEST(ShapeRenderDispatch, NothingWithoutPointsTriangulationObjectOrSet) {
  SceneObject so;
  CRenderObject orphan;
  const double scale = 1.0;
  CRenderShape unset, ok = polygon(rect(0, 0, 10, 10)), pointless = polygon(rect(0, 0, 10, 10));
  ASSERT_FALSE(pointless.getGlPts().empty());
  pointless.getPts().clear();  // triangulated, but without its points it is not drawn
  GLRecorder rec(false);
  unset.render(2, &so.obj, &scale, false);
  unset.renderShaded_Pgon(&so.obj, nullptr, false);
  for (int mode : {0, 2, 4}) pointless.render(mode, &so.obj, &scale, false);
  for (CRenderObject* obj : {static_cast<CRenderObject*>(nullptr), &orphan}) {
    ok.render(2, obj, &scale, false);
    ok.renderShaded_Pgon(obj, nullptr, false);
  }
  EXPECT_TRUE(rec.calls().empty());
}

TEST(ShapeRenderDispatch, OffsetThenNormalThenTheDrawerOfTheMode) {
  SceneObject so;
  CRenderShape pgon = polygon(rect(0, 0, 200, 100));
  char offset[96];
  std::snprintf(offset, sizeof offset, "glPolygonOffset(%.9g, %.9g)", pgon.getOffsetFactor(), pgon.getOffsetUnits());
  // Mode 0: line strips of the contour; 2 and 4: a fill after offset,
  // normal, width, vertex pointer and colour; any other: nothing more.
  const struct { int mode; size_t lineStrips; int fillAt; } rows[] = {{0, 1, -1}, {2, 0, 5}, {4, 0, 5}, {1, 0, -1},
                                                                       {3, 0, -1}, {5, 0, -1}, {-1, 0, -1}};
  for (const auto& r : rows) {
    GLRecorder rec(false);
    pgon.render(r.mode, &so.obj, nullptr, false);
    ASSERT_GE(rec.calls().size(), 2u) << r.mode;
    EXPECT_EQ(rec.calls()[0].text(), offset) << r.mode;
    EXPECT_EQ(rec.calls()[1].text(), "glNormal3d(0, 0, 1)") << r.mode;
    EXPECT_EQ(rec.count("glDrawArrays"), r.lineStrips) << r.mode;
    EXPECT_EQ(findText(rec, "glBegin(" + num(GL_TRIANGLE_STRIP) + ")"), r.fillAt) << r.mode;
    if (r.fillAt < 0 && !r.lineStrips) EXPECT_EQ(rec.calls().size(), 2u) << r.mode;
  }
  so.scene.setShadow(true);  // shadows keep their own offset
  CRenderShape line = polyline({{0, 0, 0}, {5, 5, 0}});
  GLRecorder rec(false);
  line.render(2, &so.obj, nullptr, false);
  EXPECT_EQ(rec.calls().front().name, "glNormal3d");
  EXPECT_TRUE(rec.count("glPolygonOffset") == 0u && rec.count("glDrawArrays") == 1u);
}

TEST(ShapeRenderLineWidth, ScaledByViewOverFifteenAndClamped) {
  CRenderShape s = polyline({{0, 0, 0}, {1, 0, 0}});
  const double fifty = 50.0, twoHundred = 200.0;
  EXPECT_FLOAT_EQ(s.lineWidth(&fifty), 1.2f);  // not scaled by default
  s.setBorderWidth(1.2, true);
  const struct { const double* scale; double max; float width; } rows[] = {
      {&fifty, 8, 4}, {&twoHundred, 8, 8}, {nullptr, 8, 1.2f}, {&fifty, 3, 3}};  // 16 clamped to the maximum
  for (const auto& r : rows) {
    s.setBorderMaxWidth(r.max);
    EXPECT_FLOAT_EQ(s.lineWidth(r.scale), r.width) << r.max;
  }
  SceneObject so;
  s.setBorderMaxWidth(8.0);
  GLRecorder rec(false);
  s.render(0, &so.obj, &fifty, false);
  EXPECT_EQ(findText(rec, "glLineWidth(4)"), 2);
  rec.clear();
  s.render(2, &so.obj, &twoHundred, false);
  EXPECT_EQ(countText(rec, "glLineWidth(8)"), 1u);
}

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

TEST(ShapeRenderPline, PlainLinesArePushedTowardsTheViewerOthersDeferred) {
  SceneObject so;
  so.scene.setTransparent(200);
  CRenderShape s = polyline({{0, 0, 0}, {5, 0, 0}, {5, 5, 0}}, CColor(1, 2, 3, 255));
  GLRecorder rec(false);
  s.renderShaded_Pline(&so.obj, nullptr, false);
  EXPECT_EQ(texts(rec),
            (std::vector<std::string>{"glLineWidth(1.20000005)", "glVertexPointer(3, " + num(GL_DOUBLE) + ", 0, 1)",
                                      "glPushAttrib(2928)", "glDepthRange(0.09995, 1)", "glColor4ub(1, 2, 3, 200)",
                                      "glDrawArrays(3, 0, 3)", "glPopAttrib()"}));
  EXPECT_TRUE(so.scene.getObjSetMgr()->outlineShapes().empty());
  // Selected or dotted lines wait for the outline pass.
  CRenderShape hit = polyline({{0, 0, 0}, {5, 0, 0}}), lit = hit, dots = hit;
  hit.setHit(true);
  lit.setHighLight(true);
  dots.setDotLine(true);
  rec.clear();
  for (CRenderShape* l : {&hit, &lit, &dots}) l->renderShaded_Pline(&so.obj, nullptr, false);
  EXPECT_TRUE(rec.calls().empty());
  EXPECT_EQ(so.scene.getObjSetMgr()->outlineShapes(), (std::vector<const CRenderShape*>{&hit, &lit, &dots}));
}

TEST(ShapeRenderColours, SelectionAndBorderColoursContrastWithTheFill) {
  const struct { void (*fn)(const CColor&); CColor clr; const char* call; } rows[] = {
      {CRenderShape::glSelclr, {200, 200, 150, 255}, "glColor3ub(255, 255, 255)"},  // sum 550: white
      {CRenderShape::glSelclr, {200, 200, 151, 255}, "glColor3ub(0, 0, 255)"},      // 551: blue
      {CRenderShape::glSelclr, {0, 0, 0, 0}, "glColor3ub(255, 255, 255)"},
      {CRenderShape::glSelclr, {255, 255, 255, 255}, "glColor3ub(0, 0, 255)"},
      {CRenderShape::glSetBorderClr, {10, 20, 240, 255}, "glColor3ub(245, 235, 240)"},
      {CRenderShape::glSetBorderClr, {10, 20, 229, 255}, "glColor3ub(0, 0, 255)"},
      {CRenderShape::glSetBorderClr, {10, 20, 230, 255}, "glColor3ub(245, 235, 230)"},
      {CRenderShape::glSetBorderClr, {255, 0, 255, 0}, "glColor3ub(0, 255, 255)"}};
  for (const auto& r : rows) {
    GLRecorder rec(false);
    r.fn(r.clr);
    EXPECT_EQ(texts(rec), std::vector<std::string>{r.call}) << int(r.clr.r) << " " << int(r.clr.b);
  }
  GLRecorder rec(false);
  CRenderShape::setDotLineState(nullptr);
  CRenderShape::backDotLineState(nullptr);
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glEnable(" + num(GL_LINE_STIPPLE) + ")", "glLineStipple(1, 3855)",
                                                  "glDisable(" + num(GL_LINE_STIPPLE) + ")"}));
}
