// Text shapes: the compiled glyph list placed by the text's matrix, the
// point that stands in for unreadably small text, and the hit look.
#include "test_shape_render_fixture.h"

using namespace shapetest;

namespace {
// A text shape at (20, 20) whose glyphs are the given compiled list, drawn
// as a unit square scaled by the height.
CRenderShape textShape(double height, unsigned list, bool filled = true) {
  CRenderShape s;
  TextInfo* info = new TextInfo;
  info->text = "A";
  info->height = height;
  info->position = AcGePoint3d(20, 20, 0);
  info->dir1 = AcGeVector3d(1, 0, 0);
  info->dir2 = AcGeVector3d(0, 1, 0);
  s.set(info, CColor(0, 0, 255, 90), AcGeVector3d(0, 0, 1));
  info->listId = list;
  info->compiled = list != 0;
  info->filled = filled;
  return s;
}
}  // namespace

class ShapeRenderText : public ShapeFrame {};

TEST_F(ShapeRenderText, CompiledListIsPlacedByTheTextMatrix) {
  const unsigned list = glGenLists(1);
  glNewList(list, GL_COMPILE);
  glBegin(GL_QUADS);
  const float square[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  for (const auto& v : square) glVertex3f(v[0], v[1], 0);
  glEnd();
  glEndList();
  CRenderShape s = textShape(20.0, list);  // 20 units: about 8.5 pixels at range 150
  ASSERT_EQ(s.getShpType(), CRenderShape::kText);
  beginFrame();
  GLRecorder rec(true);
  s.render(2, &obj, &scale, false);
  const std::vector<std::string> all = texts(rec);
  ASSERT_EQ(all.size(), 10u);
  EXPECT_EQ(rec.calls()[0].name, "glPolygonOffset");
  EXPECT_EQ(std::vector<std::string>(all.begin() + 1, all.begin() + 6),
            (std::vector<std::string>{"glColor3ub(0, 0, 255)", "glNormal3d(0, 0, 1)", "glLineWidth(1.20000005)",
                                      "glPushMatrix()", "glDisable(" + num(GL_LIGHTING) + ")"}));
  EXPECT_TRUE(rec.calls()[6].name == "glMultMatrixf" && rec.calls()[6].args[0] == 20.0 && rec.calls()[6].args[12] == 20.0);
  EXPECT_EQ(std::vector<std::string>(all.begin() + 7, all.end()),
            (std::vector<std::string>{"glCallList(" + num(list) + ")", "glEnable(" + num(GL_LIGHTING) + ")",
                                      "glPopMatrix()"}));
  kgl->Disable(GL_LIGHTING);
  endFrame();
  EXPECT_TRUE(near(rgb(30, 30), 0, 0, 255));
  EXPECT_TRUE(near(rgb(45, 30), 0, 0, 0) && near(rgb(15, 15), 0, 0, 0));
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
  uncompiled.renderText(&obj);
  ready.renderText(nullptr);
  ready.renderText(&orphan);
  none.renderText(&obj);
  EXPECT_TRUE(rec.calls().empty());
}
