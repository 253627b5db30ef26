// Text shapes: the compiled glyph list placed by the text's matrix, the
// point that stands in for unreadably small text, and the hit look.
#include "test_shape_render_fixture.h"

using namespace shapetest;

namespace {
// A text shape whose glyph list is a given compiled list; height in units.
CRenderShape textShape(double height, unsigned list, bool filled = true) {
  CRenderShape s;
  TextInfo* info = new TextInfo;
  info->text = "A";
  info->height = height;
  info->position = AcGePoint3d(20, 20, 0);
  info->dir1 = AcGeVector3d(1, 0, 0);
  info->dir2 = AcGeVector3d(0, 1, 0);
  s.set(info, CColor(0, 0, 255, 90), AcGeVector3d(0, 0, 1));
  TextInfo* t = s.getTextInfo();
  if (!t) return s;
  // The glyphs: a unit square, placed at the insertion point and scaled by
  // the height.
  t->height = height;
  t->position = AcGePoint3d(20, 20, 0);
  for (float& f : t->glMatrix) f = 0.0f;
  t->glMatrix[0] = t->glMatrix[5] = t->glMatrix[10] = static_cast<float>(height);
  t->glMatrix[12] = 20.0f;
  t->glMatrix[13] = 20.0f;
  t->glMatrix[15] = 1.0f;
  t->listId = list;
  t->compiled = list != 0;
  t->filled = filled;
  return s;
}

unsigned unitSquareList() {
  const unsigned list = glGenLists(1);
  glNewList(list, GL_COMPILE);
  glBegin(GL_QUADS);
  glVertex3f(0, 0, 0);
  glVertex3f(1, 0, 0);
  glVertex3f(1, 1, 0);
  glVertex3f(0, 1, 0);
  glEnd();
  glEndList();
  return list;
}
}  // namespace

class ShapeRenderText : public ShapeFrame {};

TEST_F(ShapeRenderText, CompiledListIsPlacedByTheTextMatrix) {
  const unsigned list = unitSquareList();
  CRenderShape s = textShape(20.0, list);  // 20 units: about 8.5 pixels at range 150
  ASSERT_EQ(s.getShpType(), CRenderShape::kText);
  ASSERT_NE(s.getTextInfo(), nullptr);
  beginFrame();
  GLRecorder rec(true);
  s.render(2, &obj, &scale, false);
  const std::vector<std::string> all = texts(rec);
  ASSERT_GE(all.size(), 2u);
  EXPECT_EQ(rec.calls()[0].name, "glPolygonOffset");
  std::vector<std::string> expected = {"glColor3ub(0, 0, 255)", "glNormal3d(0, 0, 1)", "glLineWidth(1.20000005)",
                                       "glPushMatrix()", "glDisable(" + num(GL_LIGHTING) + ")"};
  EXPECT_EQ(std::vector<std::string>(all.begin() + 1, all.begin() + 6), expected);
  EXPECT_EQ(rec.calls()[6].name, "glMultMatrixf");
  EXPECT_EQ(rec.calls()[6].args[0], 20.0);
  EXPECT_EQ(rec.calls()[6].args[12], 20.0);
  EXPECT_EQ(std::vector<std::string>(all.begin() + 7, all.end()),
            (std::vector<std::string>{"glCallList(" + num(list) + ")", "glEnable(" + num(GL_LIGHTING) + ")",
                                      "glPopMatrix()"}));
  kgl->Disable(GL_LIGHTING);
  endFrame();
  EXPECT_TRUE(near(rgb(30, 30), 0, 0, 255));
  EXPECT_TRUE(near(rgb(45, 30), 0, 0, 0));
  EXPECT_TRUE(near(rgb(15, 15), 0, 0, 0));
  glDeleteLists(list, 1);
}

TEST_F(ShapeRenderText, HitTextIsStippledByKind) {
  CRenderShape filled = textShape(20.0, 77), outline = textShape(20.0, 78, false);
  filled.setHit(true);
  outline.setHit(true);
  GLRecorder rec(false);
  filled.renderText(&obj);
  const int on = findText(rec, "glEnable(" + num(GL_POLYGON_STIPPLE) + ")");
  ASSERT_GE(on, 0);
  EXPECT_EQ(rec.calls()[on + 1].text(), "glPolygonStipple(1)");
  EXPECT_LT(on, rec.find("glPushMatrix"));
  EXPECT_EQ(rec.calls().back().text(), "glDisable(" + num(GL_POLYGON_STIPPLE) + ")");
  EXPECT_EQ(rec.count("glLineStipple"), 0u);

  rec.clear();
  outline.renderText(&obj);
  EXPECT_EQ(countText(rec, "glLineStipple(1, 3855)"), 1u);
  EXPECT_LT(rec.find("glLineStipple"), rec.find("glPushMatrix"));
  EXPECT_EQ(rec.calls().back().text(), "glDisable(" + num(GL_LINE_STIPPLE) + ")");
  EXPECT_EQ(rec.count("glPolygonStipple"), 0u);

  outline.setHit(false);
  rec.clear();
  outline.renderText(&obj);
  EXPECT_EQ(rec.count("glEnable"), 1u);  // lighting back on, nothing else
  EXPECT_EQ(rec.count("glLineStipple") + rec.count("glPolygonStipple"), 0u);
}

TEST_F(ShapeRenderText, TooSmallTextIsOnePoint) {
  CRenderShape s = textShape(2.0, 77);  // under one pixel at range 150
  GLRecorder rec(false);
  s.renderText(&obj);
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glPointSize(3)", "glBegin(" + num(GL_POINTS) + ")",
                                                  "glColor4ub(0, 0, 255, 90)", "glVertex3f(20, 20, 0)", "glEnd()"}));
  // A point even when the glyphs are not compiled yet.
  CRenderShape raw = textShape(2.0, 0);
  rec.clear();
  raw.renderText(&obj);
  EXPECT_EQ(rec.count("glVertex3f"), 1u);
}

TEST_F(ShapeRenderText, UncompiledOrOrphanTextDrawsNothing) {
  CRenderShape s = textShape(20.0, 0);
  CRenderShape ready = textShape(20.0, 77);
  CRenderObject orphan;
  CRenderShape none;
  GLRecorder rec(false);
  s.renderText(&obj);
  ready.renderText(nullptr);
  ready.renderText(&orphan);
  none.renderText(&obj);
  EXPECT_TRUE(rec.calls().empty());
}
