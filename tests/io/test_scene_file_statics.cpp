// Static objects in scene files, with a real GL context: records compile
// into display lists with the calls they describe, are written for the
// static objects still in the scene, and come back with new ids.
#include <gtest/gtest.h>

#include "io/SceneFileHelpers.h"
#include "kxrender/CStaticObject.h"
#include "scene/SceneFixture.h"
#include "support/GLRecorder.h"

namespace {

KxStaticRecord loopAndFan() {
  KxStaticRecord rec;
  KxStaticPrimitive loop;
  loop.type = CRenderSystem::kLineLoop;
  loop.points = {{1, 5, 0}, {-2, 3, 4}, {0, 0, 1}};
  loop.colors = {CColor(255, 0, 0, 255)};
  KxStaticPrimitive fan;
  fan.type = CRenderSystem::kTriangleFan;
  fan.points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  fan.normals = {AcGeVector3d(0, 0, 1)};
  fan.colors = {CColor(1, 2, 3, 255), CColor(4, 5, 6, 255), CColor(7, 8, 9, 255), CColor(10, 11, 12, 255)};
  fan.texCoords = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  rec.primitives = {loop, fan};
  return rec;
}

class SceneFileStatics : public SceneFixture {
 protected:
  void SetUp() override { open(64, 64); }
  TempDir dir;
};

}  // namespace

TEST_F(SceneFileStatics, ARecordReplaysItsCallsInOrder) {
  KxStaticRecord rec = loopAndFan();
  GLRecorder gl(true);
  CStaticObject* obj = KxBuildStaticObject(rec);
  std::vector<std::string> names = gl.names();
  // Drop the name allocation; what matters is the list's contents.
  names.erase(names.begin(), names.begin() + gl.find("glNewList"));
  const std::vector<std::string> expected = {
      "glNewList",  "glBegin",      "glColor3ub", "glVertex3d", "glVertex3d",   "glVertex3d",
      "glEnd",      "glBegin",      "glNormal3f", "glColor3ub", "glTexCoord2d", "glVertex3d",
      "glColor3ub", "glTexCoord2d", "glVertex3d", "glColor3ub", "glTexCoord2d", "glVertex3d",
      "glColor3ub", "glTexCoord2d", "glVertex3d", "glEnd",      "glEndList"};
  EXPECT_EQ(names, expected);
  const GLCall& begin = gl.calls()[size_t(gl.find("glBegin"))];
  EXPECT_EQ(begin.args, std::vector<double>{double(GL_LINE_LOOP)});
  EXPECT_NE(rec.id, 0u);
  EXPECT_EQ(rec.id, obj->getRenderList());
  AcGePoint3d lo, hi;
  obj->getBox(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(-2, 0, 0)));
  EXPECT_TRUE(hi.isEqualTo(AcGePoint3d(1, 5, 4)));
  obj->releaseDisplayList();
  delete obj;
}

TEST_F(SceneFileStatics, WrittenForWhatIsStillThereAndReadBackWithNewIds) {
  CObjectSetMgr& set = *scene.getObjSetMgr();
  KxBuildTower(set, 1, 2);
  KxSceneFileExtras extras;
  extras.staticObjects = {loopAndFan(), loopAndFan(), loopAndFan()};
  extras.staticObjects[1].primitives.resize(1);
  for (KxStaticRecord& rec : extras.staticObjects) set.addStaticObject(KxBuildStaticObject(rec));
  set.setStaticObjectVisible(extras.staticObjects[1].id, false);
  set.delStaticObject(extras.staticObjects[2].id);  // gone: not written

  CString error;
  ASSERT_TRUE(KxWriteSceneFile(dir.file("a.json").c_str(), scene, error, &extras)) << error.GetString();
  const std::string a = readText(dir.file("a.json"));

  KxSceneFileExtras back;
  ASSERT_TRUE(KxReadSceneFile(dir.file("a.json").c_str(), scene, error, &back)) << error.GetString();
  ASSERT_EQ(set.staticObjects().size(), 2u);
  ASSERT_EQ(back.staticObjects.size(), 2u);
  for (size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(back.staticObjects[i].id, set.staticObjects()[i]->getRenderList());
    EXPECT_NE(back.staticObjects[i].id, 0u);
    EXPECT_EQ(set.staticObjects()[i]->getVisible(), i == 0);
  }
  // Written again from the records read back: the same bytes, so no primitive, colour or point was lost.
  ASSERT_TRUE(KxWriteSceneFile(dir.file("b.json").c_str(), scene, error, &back)) << error.GetString();
  EXPECT_EQ(readText(dir.file("b.json")), a);

  // A frame draws the replaced contents without trouble.
  scene.render();
  scene.finish();
}
