// Recorded calls of shape drawing: dispatch, line widths, wire frames,
// shaded polylines, selection colours, shaded polygons (texture, highlight
// overlay, outline) and text (the glyph list placed by the text's
// matrix, the point for unreadably small text, the hit look).
#include <cstdio>

#include "test_shape_render_fixture.h"

using namespace shapetest;

namespace {
const std::string kPush = "glPushAttrib(2928)";  // 0x0B70
std::string elements(size_t n) {
  return "glDrawElements(" + num(GL_TRIANGLE_STRIP) + ", " + std::to_string(n) + ", " + num(GL_UNSIGNED_SHORT) +
         ", 1)";
}
std::vector<std::string> from(const GLRecorder& rec, int at) {
  const std::vector<std::string> all = texts(rec);
  return at < 0 ? std::vector<std::string>() : std::vector<std::string>(all.begin() + at, all.end());
}
// A text shape at (20, 20) whose glyphs are the given compiled list, drawn
// as a unit square scaled by the height.
CRenderShape textShape(double height, unsigned list, bool filled = true) {
  CRenderShape s = shapetest::textShape("A", AcGePoint3d(20, 20, 0), CColor(0, 0, 255, 90), height);
  TextInfo* info = s.getTextInfo();
  info->listId = list;
  info->compiled = list != 0;
  info->filled = filled;
  return s;
}
}  // namespace

TEST(ShapeRenderDispatch, NothingWithoutPointsTriangulationFaceArraysObjectOrSet) {
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
  CRenderShape face;  // a face mesh without normals
  face.setFaceType();
  std::vector<AcGePoint3d> v = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  std::vector<int> idx = {0, 1, 2};
  face.setFaceVertexArray(&v);
  face.setFaceTriangleIndexArray(&idx);
  for (int mode : {0, 2}) face.renderFace(&so.obj, mode);
  EXPECT_TRUE(rec.calls().empty() && face.getFaceDisplayList() == 0u);
}

// Without shadows; in shadow mode no offset is set (the object tests' shadow
// passes count none).
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
}

TEST(ShapeRenderWireFrame, EveryContourAsALineStripInTheSceneAlpha) {
  SceneObject so;
  so.scene.setTransparent(100);
  CRenderShape s = polygon(rect(0, 0, 10, 10), {rect(2, 2, 4, 4), rect(6, 6, 8, 8)}, CColor(10, 20, 30, 255));
  s.getHoles().push_back({});  // an empty contour is still issued
  GLRecorder rec(false);
  s.renderWireFrame(&so.obj, nullptr, false);
  EXPECT_EQ(rec.calls()[1].text(), "glColor4ub(10, 20, 30, 100)");
  EXPECT_EQ(countText(rec, "glDrawArrays(" + num(GL_LINE_STRIP) + ", 0, 5)"), 3u);
  EXPECT_EQ(rec.calls().back().text(), "glDrawArrays(3, 0, 0)");
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
      {CRenderShape::glSetBorderClr, {10, 20, 229, 255}, "glColor3ub(0, 0, 255)"},
      {CRenderShape::glSetBorderClr, {10, 20, 230, 255}, "glColor3ub(245, 235, 230)"},
      {CRenderShape::glSetBorderClr, {255, 0, 255, 0}, "glColor3ub(0, 255, 255)"}};
  for (const auto& r : rows) {
    GLRecorder rec(false);
    r.fn(r.clr);
    EXPECT_EQ(texts(rec), std::vector<std::string>{r.call}) << int(r.clr.r) << " " << int(r.clr.b);
  }
}

TEST(ShapeRenderPgon, HighlightOverlayIsStippledInFrontOnlyInTheFirstPassUnlessSuppressed) {
  SceneObject so;
  so.obj.setRenderedFlags(true, false);
  CRenderShape s = polygon(rect(0, 0, 30, 30), {rect(10, 10, 20, 20)}, CColor(250, 250, 60, 255));
  s.setHighLight(true);
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  const int push = findText(rec, kPush);
  ASSERT_GE(push, 1);
  EXPECT_EQ(rec.calls()[push - 1].text(), "glColor3ub(0, 0, 255)");  // sum 560: blue
  std::vector<std::string> expected = {kPush, "glDepthRange(0, 0.4)", "glPolygonOffset(-1, -1)",
                                       "glEnable(" + num(GL_POLYGON_STIPPLE) + ")", "glPolygonStipple(1)"};
  for (const auto& strip : s.getStrips()) expected.push_back(elements(strip.size()));
  expected.push_back("glDisable(" + num(GL_POLYGON_STIPPLE) + ")");
  expected.push_back("glPopAttrib()");
  EXPECT_EQ(from(rec, push), expected);
  CRenderShape quad = polygon(rect(0, 0, 5, 5));
  // Not highlighted, suppressed by the flag, or the object not in its first
  // pass: no overlay (and out of any pass, not even the selection colour).
  const struct { bool highlight, firstPass, flag; int selColours; } rows[] = {
      {false, true, false, 1}, {true, true, true, -1}, {true, false, false, 0}};
  for (const auto& r : rows) {
    quad.setHighLight(r.highlight);
    so.obj.setRenderedFlags(r.firstPass, false);
    rec.clear();
    quad.renderShaded_Pgon(&so.obj, nullptr, r.flag);
    EXPECT_TRUE(rec.count("glPushAttrib") == 0u && rec.count("glPolygonStipple") == 0u) << r.highlight << r.flag;
    if (r.selColours >= 0) EXPECT_EQ(rec.count("glColor3ub"), size_t(r.selColours)) << r.highlight << r.flag;
  }
}

TEST(ShapeRenderPgon, OutlineOfHitAndBorderedShapes) {
  SceneObject so;
  so.scene.setTransparent(77);
  so.obj.setRenderedFlags(false, true);
  CRenderShape s = polygon(rect(0, 0, 30, 30), {rect(10, 10, 20, 20)});
  s.setBorderColor(CColor(10, 20, 240, 255));
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);  // no border shown, not hit
  EXPECT_EQ(rec.count("glDrawArrays"), 0u);
  s.setHit(true);  // dashed, in the border's contrast colour
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  const std::string ptr = "glVertexPointer(3, " + num(GL_DOUBLE) + ", 0, 1)", strip = "glDrawArrays(3, 0, 5)";
  EXPECT_EQ(from(rec, findText(rec, "glEnable(" + num(GL_LINE_STIPPLE) + ")")),
            (std::vector<std::string>{"glEnable(" + num(GL_LINE_STIPPLE) + ")", "glLineStipple(1, 3855)",
                                      "glColor3ub(245, 235, 240)", "glLineWidth(1)", ptr, strip, ptr, strip,
                                      "glDisable(" + num(GL_LINE_STIPPLE) + ")"}));
  s.setHit(false);  // a shown border: solid, in its colour and the scene alpha, at the scaled width
  s.setShowBorder(true);
  s.setBorderWidth(1.2, true);
  const double scale = 50.0;
  rec.clear();
  s.renderShaded_Pgon(&so.obj, &scale, false);
  EXPECT_EQ(rec.calls()[0].text(), "glLineWidth(4)");
  const int at = findText(rec, "glColor4ub(10, 20, 240, 77)");
  ASSERT_GE(at, 0);
  EXPECT_TRUE(rec.count("glLineStipple") == 0u && rec.count("glLineWidth") == 1u && rec.count("glDrawArrays") == 2u);
  EXPECT_GT(rec.find("glDrawArrays"), at);
}

TEST(ShapeRenderPgon, TexturedFillNeedsCoordinatesAndUsesWhite) {
  SceneObject so;
  so.scene.setTransparent(128);
  CRenderShape s = polygon({{0, 0, 0}, {10, 0, 0}, {13, 6, 0}, {5, 11, 0}, {-3, 6, 0}}, {}, CColor(1, 2, 3, 255));
  s.setTexture(7u);  // no coordinates yet: reading them would overrun, so drawn plain
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_TRUE(rec.count("glEnable") == 0u && countText(rec, "glColor4ub(1, 2, 3, 128)") == 1u);
  s.setTextureCoord({{0, 0}, {1, 0}, {1, 0.5}, {0.5, 1}, {0, 0.5}, {0, 0}});
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_EQ(countText(rec, "glBindTexture(3553, 7)"), 1u);
  EXPECT_EQ(countText(rec, "glColor4ub(255, 255, 255, 128)"), 1u);  // white, in the scene alpha
  EXPECT_EQ(rec.calls().back().text(), "glDisableClientState(" + num(GL_TEXTURE_COORD_ARRAY) + ")");
  s.clearTexture();  // the name stays but the fill is plain again
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_TRUE(rec.count("glBindTexture") == 0u && countText(rec, "glColor4ub(1, 2, 3, 128)") == 1u);
}

class ShapeRenderText : public ShapeFrame {};

TEST_F(ShapeRenderText, CompiledListIsPlacedByTheTextMatrix) {
  const unsigned list = glGenLists(1);
  glNewList(list, GL_COMPILE);
  glRectf(0, 0, 1, 1);  // the glyphs: a unit square
  glEndList();
  CRenderShape s = textShape(20.0, list);  // 20 units: about 8.5 pixels at range 150
  beginFrame();
  GLRecorder rec(true);
  s.render(2, &obj, &scale, false);
  // Unlit, inside its own matrix: the text's placement, then the glyphs.
  EXPECT_EQ(rec.names(), (std::vector<std::string>{"glPolygonOffset", "glColor3ub", "glNormal3d", "glLineWidth",
                                                   "glPushMatrix", "glDisable", "glMultMatrixf", "glCallList", "glEnable",
                                                   "glPopMatrix"}));
  EXPECT_TRUE(rec.calls()[6].args[0] == 20.0 && rec.calls()[6].args[12] == 20.0 && rec.calls()[7].args[0] == list);
  EXPECT_TRUE(rec.calls()[5].args[0] == GL_LIGHTING && rec.calls()[8].args[0] == GL_LIGHTING);
  endFrame();
  glDeleteLists(list, 1);
}

TEST_F(ShapeRenderText, HitTextIsStippledByKind) {
  // Filled glyphs take the polygon stipple, outlines the dashed line; either
  // is switched on before the glyphs and off at the very end.
  const struct { bool filled, hit; const char* stipple; std::string off; } rows[] = {
      {true, true, "glPolygonStipple", "glDisable(" + num(GL_POLYGON_STIPPLE) + ")"},
      {false, true, "glLineStipple", "glDisable(" + num(GL_LINE_STIPPLE) + ")"},
      {false, false, nullptr, "glPopMatrix()"}};
  for (const auto& r : rows) {
    CRenderShape s = textShape(20.0, 77, r.filled);
    s.setHit(r.hit);
    GLRecorder rec(false);
    s.renderText(&obj);
    EXPECT_EQ(rec.count("glPolygonStipple") + rec.count("glLineStipple"), r.stipple ? 1u : 0u) << r.filled << r.hit;
    if (r.stipple) EXPECT_TRUE(rec.count(r.stipple) == 1u && rec.find(r.stipple) < rec.find("glPushMatrix")) << r.filled;
    EXPECT_EQ(rec.calls().back().text(), r.off) << r.filled << r.hit;
  }
}

TEST_F(ShapeRenderText, TooSmallTextIsOnePointUncompiledOrOrphanTextNothing) {
  CRenderShape tiny = textShape(2.0, 77), raw = textShape(2.0, 0);  // under one pixel at range 150
  GLRecorder rec(false);
  tiny.renderText(&obj);
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glPointSize(3)", "glBegin(" + num(GL_POINTS) + ")",
                                                  "glColor4ub(0, 0, 255, 90)", "glVertex3f(20, 20, 0)", "glEnd()"}));
  rec.clear();
  raw.renderText(&obj);  // a point even when the glyphs are not compiled yet
  EXPECT_EQ(rec.count("glVertex3f"), 1u);
  CRenderShape uncompiled = textShape(20.0, 0), ready = textShape(20.0, 77), none;
  CRenderObject orphan;
  rec.clear();
  uncompiled.renderText(&obj);  // asks for a list; none can be had here, so nothing is drawn
  EXPECT_EQ(rec.names(), (std::vector<std::string>{"glGenLists", "glIsList"}));
  rec.clear();
  ready.renderText(nullptr);
  ready.renderText(&orphan);
  none.renderText(&obj);
  EXPECT_TRUE(rec.calls().empty());
}
