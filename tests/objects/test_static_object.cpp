// Static objects: the primitive table, the box, list lifetime and copies,
// recorded and on a real context.
#include <epoxy/gl.h>

#include "kxrender/CStaticObject.h"
#include "scene/SceneFixture.h"
#include "support/GLRecorder.h"

namespace {
std::pair<AcGePoint3d, AcGePoint3d> boxOf(const CStaticObject& s) {
  AcGePoint3d lo(9, 9, 9), hi(9, 9, 9);
  s.getBox(lo, hi);
  return {lo, hi};
}
using Box = std::pair<AcGePoint3d, AcGePoint3d>;
}  // namespace

TEST(StaticObjectCalls, ConstructionReservesAListBeginMapsTheHostNumberingAndBuildCallsPassTheirValues) {
  GLRecorder rec(false);
  CStaticObject s;
  s.beginBuild();
  s.begin(CRenderSystem::kTriangles);
  s.normal(0.0f, 0.5f, 1.0f);
  s.color(1, 2, 3);
  s.textureCoord(0.25f, 0.75f);
  s.point(1.5, 2.5, 3.5);
  s.end();
  s.endBuild();
  std::vector<std::string> texts;
  for (const auto& c : rec.calls()) texts.push_back(c.text());
  EXPECT_EQ(texts, (std::vector<std::string>{"glGenLists(1)", "glNewList(0, " + std::to_string(GL_COMPILE) + ")",
                                             "glBegin(4)", "glNormal3f(0, 0.5, 1)", "glColor3ub(1, 2, 3)",
                                             "glTexCoord2d(0.25, 0.75)", "glVertex3d(1.5, 2.5, 3.5)", "glEnd()",
                                             "glEndList()"}));
  // 2 is the strip and 3 the loop: the reverse of GL's own numbers; others
  // make no call.
  const GLenum expected[] = {GL_POINTS,    GL_LINES,          GL_LINE_STRIP,  GL_LINE_LOOP,
                             GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN};
  rec.clear();
  for (int v : {0, 1, 2, 3, 4, 5, 6, 7, -1, 1000}) s.begin(CRenderSystem::ShapeType(v));
  ASSERT_EQ(rec.calls().size(), 7u);
  for (int v = 0; v <= 6; ++v) EXPECT_EQ(rec.calls()[size_t(v)].text(), "glBegin(" + std::to_string(expected[v]) + ")");
}

// Points outside a build widen the box from the origin; each build starts
// afresh; copies share the list and the box but not visibility.
TEST(StaticObjectBoxAndCopy, BuildsStartAfreshAndCopiesShareTheListButNotVisibility) {
  GLRecorder rec(false);
  CStaticObject a;
  a.point(5, -5, 2);
  EXPECT_EQ(boxOf(a), Box({0, -5, 0}, {5, 0, 2}));
  a.beginBuild();  // the first point replaces the old box rather than widening it
  a.point(1, 2, 3);
  a.point(4, 5, 6);
  EXPECT_EQ(boxOf(a), Box({1, 2, 3}, {4, 5, 6}));
  a.setVisible(false);
  a.setObjSet(reinterpret_cast<CObjectSetMgr*>(&rec));  // any pointer: never dereferenced
  CStaticObject b(a);
  EXPECT_TRUE(b.getVisible());
  b.point(0, 0, 0);  // the copy is not building: its first point widens the copied box
  CStaticObject c;
  c.setVisible(false);
  c = b;
  EXPECT_FALSE(c.getVisible());  // assignment keeps the target's own flag
  for (const CStaticObject* s : {&b, &c}) {
    EXPECT_EQ(s->getRenderList(), a.getRenderList());
    EXPECT_EQ(s->getObjSet(), a.getObjSet());
    EXPECT_EQ(boxOf(*s), Box({0, 0, 0}, {4, 5, 6}));
  }
}

class StaticObjectFrame : public SceneFixture {
 protected:
  void SetUp() override { open(32, 32); }
};

TEST_F(StaticObjectFrame, CompiledListDrawsReleaseDeletesItOnceAndCopiesOnlyForgetIt) {
  CStaticObject* s = CStaticObject::createStaticObject();
  const unsigned list = s->getRenderList();
  ASSERT_NE(list, 0u);
  CStaticObject copy(*s);
  s->beginBuild();
  s->color(0, 255, 0);
  s->begin(CRenderSystem::kTriangleStrip);
  for (double x : {-1.0, 1.0}) s->point(x, -1, 0), s->point(x, 1, 0);
  s->end();
  s->endBuild();
  glViewport(0, 0, 32, 32);
  for (GLenum m : {GL_PROJECTION, GL_MODELVIEW}) glMatrixMode(m), glLoadIdentity();
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  glClearColor(0, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  glCallList(list);
  SwapBuffers(scene.getHDC());
  EXPECT_EQ(pixel(16, 16), (std::vector<uint8_t>{0, 255, 0, 255}));

  GLRecorder rec(true);
  s->releaseDisplayList();
  s->releaseDisplayList();  // harmless: nothing left to delete
  EXPECT_EQ(rec.count("glDeleteLists"), 1u);
  EXPECT_FALSE(glIsList(list));
  delete s;
  rec.clear();
  copy.releaseDisplayList();  // the shared list is gone already: only forgotten
  EXPECT_EQ(rec.count("glIsList"), 1u);
  EXPECT_EQ(rec.count("glDeleteLists"), 0u);
}
