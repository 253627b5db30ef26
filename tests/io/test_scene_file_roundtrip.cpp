// Scene files through real scenes: write, read, write again gives the same
// bytes; what is read is the same shapes, objects and view the host built;
// reading replaces what a scene held; what cannot be read back is not
// written.
#include <gtest/gtest.h>

#include "kxrender/KxSystem.h"
#include "io/SceneFileHelpers.h"

namespace {

std::vector<CRenderObject*> inOrder(CSceneMgr& scene) {
  std::vector<CRenderObject*> out;
  for (const auto& kv : scene.getObjSetMgr()->objects()) out.push_back(kv.second);
  return out;
}

void expectSameShape(const CRenderShape& a, const CRenderShape& b, const std::string& where) {
  SCOPED_TRACE(where);
  EXPECT_EQ(a.getShpType(), b.getShpType());
  EXPECT_EQ(a.getPts(), b.getPts());
  EXPECT_EQ(a.getHoles(), b.getHoles());
  EXPECT_EQ(a.getGlPts(), b.getGlPts());
  EXPECT_EQ(a.getStrips(), b.getStrips());
  EXPECT_EQ(a.getClr(), b.getClr());
  EXPECT_EQ(a.getUcs().x, b.getUcs().x);
  EXPECT_EQ(a.getUcs().y, b.getUcs().y);
  EXPECT_EQ(a.getUcs().z, b.getUcs().z);
  EXPECT_EQ(a.getVisible(), b.getVisible());
  EXPECT_EQ(a.getShowBorder(), b.getShowBorder());
  EXPECT_EQ(a.getBorderColor(), b.getBorderColor());
  EXPECT_EQ(a.getBorderWidth(), b.getBorderWidth());
  EXPECT_EQ(a.isBorderWidthScaled(), b.isBorderWidthScaled());
  EXPECT_EQ(a.getBorderMaxWidth(), b.getBorderMaxWidth());
  EXPECT_EQ(a.isDotLine(), b.isDotLine());
  EXPECT_EQ(a.getXdataMap(), b.getXdataMap());
  EXPECT_EQ(a.getArea(), b.getArea());
  EXPECT_EQ(a.getOffsetFactor(), b.getOffsetFactor());
  EXPECT_EQ(a.getOffsetUnits(), b.getOffsetUnits());
  EXPECT_EQ(a.getZOffset(), b.getZOffset());
  EXPECT_EQ(a.getHitLine(), b.getHitLine());
  ASSERT_EQ(a.getFaceVertexArray() != nullptr, b.getFaceVertexArray() != nullptr);
  if (a.getFaceVertexArray()) {
    EXPECT_EQ(*a.getFaceVertexArray(), *b.getFaceVertexArray());
    EXPECT_EQ(*a.getFaceTriangleIndexArray(), *b.getFaceTriangleIndexArray());
    ASSERT_EQ(a.getFaceNormalArray() != nullptr, b.getFaceNormalArray() != nullptr);
    if (a.getFaceNormalArray()) EXPECT_EQ(a.getFaceNormalArray()->size(), b.getFaceNormalArray()->size());
    ASSERT_EQ(a.getFaceTexCoordArray() != nullptr, b.getFaceTexCoordArray() != nullptr);
    if (a.getFaceTexCoordArray()) EXPECT_EQ(a.getFaceTexCoordArray()->size(), b.getFaceTexCoordArray()->size());
  }
  ASSERT_EQ(a.getTextInfo() != nullptr, b.getTextInfo() != nullptr);
  if (a.getTextInfo()) {
    EXPECT_EQ(a.getTextInfo()->text, b.getTextInfo()->text);
    EXPECT_EQ(a.getTextInfo()->font, b.getTextInfo()->font);
    EXPECT_EQ(a.getTextInfo()->height, b.getTextInfo()->height);
    EXPECT_TRUE(a.getTextInfo()->position.isEqualTo(b.getTextInfo()->position));
  }
}

class SceneFileRoundTrip : public ::testing::Test {
 protected:
  TempDir dir;
  CSceneMgr original;
};

int g_viewCalls = 0;
void countViewCall(CSceneMgr*) { ++g_viewCalls; }

}  // namespace

TEST_F(SceneFileRoundTrip, WriteReadWriteGivesTheSameBytes) {
  fillScene(original);
  CString error;
  ASSERT_TRUE(KxWriteSceneFile(dir.file("a.json").c_str(), original, error)) << error.GetString();
  CSceneMgr second;
  ASSERT_TRUE(KxReadSceneFile(dir.file("a.json").c_str(), second, error)) << error.GetString();
  ASSERT_TRUE(KxWriteSceneFile(dir.file("b.json").c_str(), second, error)) << error.GetString();
  const std::string a = readText(dir.file("a.json"));
  EXPECT_GT(a.size(), 1000u);
  EXPECT_EQ(a, readText(dir.file("b.json")));
  // Into a scene that already holds a different model, and once more out.
  CSceneMgr third;
  KxBuildTower(*third.getObjSetMgr(), 2, 3);
  ASSERT_TRUE(KxReadSceneFile(dir.file("b.json").c_str(), third, error)) << error.GetString();
  ASSERT_TRUE(KxWriteSceneFile(dir.file("c.json").c_str(), third, error)) << error.GetString();
  EXPECT_EQ(a, readText(dir.file("c.json")));
  // Writing the same scene again changes nothing either.
  ASSERT_TRUE(KxWriteSceneFile(dir.file("a2.json").c_str(), original, error));
  EXPECT_EQ(a, readText(dir.file("a2.json")));
  EXPECT_EQ(dir.entries(), 4u);  // no temporary files left behind
}

TEST_F(SceneFileRoundTrip, ReadingRebuildsTheSameObjects) {
  fillScene(original);
  CString error;
  ASSERT_TRUE(KxWriteSceneFile(dir.file("a.json").c_str(), original, error)) << error.GetString();
  CSceneMgr copy;
  ASSERT_TRUE(KxReadSceneFile(dir.file("a.json").c_str(), copy, error)) << error.GetString();
  const std::vector<CRenderObject*> a = inOrder(original), b = inOrder(copy);
  ASSERT_EQ(a.size(), b.size());
  for (size_t i = 0; i < a.size(); ++i) {
    SCOPED_TRACE("object " + std::to_string(i));
    EXPECT_EQ(a[i]->getExternId(), b[i]->getExternId());
    EXPECT_EQ(a[i]->getXdata(), b[i]->getXdata());
    EXPECT_EQ(a[i]->isVisible(), b[i]->isVisible());
    EXPECT_EQ(a[i]->getRenderMode(), b[i]->getRenderMode());
    EXPECT_EQ(a[i]->getGenerateShadow(), b[i]->getGenerateShadow());
    EXPECT_EQ(a[i]->getFaceSnap(), b[i]->getFaceSnap());
    EXPECT_EQ(a[i]->hasMaxUnitsPerPixel(), b[i]->hasMaxUnitsPerPixel());
    EXPECT_EQ(a[i]->getMaxUnitsPerPixel(), b[i]->getMaxUnitsPerPixel());
    EXPECT_EQ(a[i]->getSnapPoints(), b[i]->getSnapPoints());
    EXPECT_EQ(a[i]->getColor(), b[i]->getColor());
    EXPECT_TRUE(a[i]->ptMin().isEqualTo(b[i]->ptMin()));
    EXPECT_TRUE(a[i]->ptMax().isEqualTo(b[i]->ptMax()));
    ASSERT_EQ(a[i]->numShp(), b[i]->numShp());
    for (unsigned s = 0; s < a[i]->numShp(); ++s)
      expectSameShape(a[i]->getShape(s), b[i]->getShape(s), "shape " + std::to_string(s));
    ASSERT_EQ(a[i]->getLodShpss().size(), b[i]->getLodShpss().size());
    for (unsigned l = 0; l < a[i]->getLodShpss().size(); ++l) {
      EXPECT_EQ(a[i]->getLodUnitsPerPixel(l), b[i]->getLodUnitsPerPixel(l));
      ASSERT_EQ(a[i]->getLodShpss(l).size(), b[i]->getLodShpss(l).size());
      for (size_t s = 0; s < a[i]->getLodShpss(l).size(); ++s)
        expectSameShape(a[i]->getLodShpss(l)[s], b[i]->getLodShpss(l)[s], "level shape " + std::to_string(s));
    }
  }
  // The texture's file name travels in its tag; the tower's roof keeps its.
  CString texture;
  EXPECT_TRUE(b.back()->getShape(0).getXdata("kxscene.texture", texture));
  EXPECT_EQ(texture, "brick.png");
}

TEST_F(SceneFileRoundTrip, TheViewIsRestoredAndTheHostToldOnce) {
  fillScene(original);
  CString error;
  ASSERT_TRUE(KxWriteSceneFile(dir.file("a.json").c_str(), original, error));
  CSceneMgr copy;
  g_viewCalls = 0;
  copy.SetScene2ModelFunPtr(countViewCall);
  KxSceneFileExtras extras;
  ASSERT_TRUE(KxReadSceneFile(dir.file("a.json").c_str(), copy, error, &extras)) << error.GetString();
  EXPECT_TRUE(extras.hasView);
  EXPECT_EQ(g_viewCalls, 1);
  EXPECT_TRUE(copy.camera()->GetVLocation().isEqualTo(AcGeVector3d(1, 2, 3)));
  EXPECT_EQ(copy.camera()->GetVForward().z, -0.5);
  EXPECT_EQ(copy.camera()->GetVUp().z, 1.0);
  EXPECT_EQ(copy.dRange(), 77.5);
  EXPECT_EQ(int(copy.getRenderMode()), 4);
  // The set's mode does not override the modes the objects were saved with.
  EXPECT_EQ(int(inOrder(copy).front()->getRenderMode()), 2);
  EXPECT_EQ(int(inOrder(copy).back()->getRenderMode()), 0);
  CColor bk;
  copy.getBkColor(bk);
  EXPECT_EQ(bk, CColor(10, 20, 30, 40));

  // A file without a view leaves the view alone.
  writeText(dir.file("noview.json"),
            R"({"format":"kxscene","version":1,"objects":[{"shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}]}]})");
  ASSERT_TRUE(KxReadSceneFile(dir.file("noview.json").c_str(), copy, error, &extras)) << error.GetString();
  EXPECT_FALSE(extras.hasView);
  EXPECT_EQ(g_viewCalls, 1);
  EXPECT_EQ(copy.dRange(), 77.5);
  EXPECT_EQ(copy.getObjSetMgr()->numObjs(), 1u);
}

TEST_F(SceneFileRoundTrip, ReadingReplacesWhatTheSceneHeld) {
  CObjectSetMgr& set = *original.getObjSetMgr();
  KxBuildTower(set, 2, 2);
  const unsigned lastOldId = set.objects().rbegin()->first;
  writeText(dir.file("two.json"), R"({"format":"kxscene","version":1,"objects":[
    {"externId":5,"shapes":[{"kind":"pgon","pts":[[0,0,0],[4,0,0],[4,2,0]]}]},
    {"externId":6,"xdata":"b","shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}]}]})");
  CString error;
  ASSERT_TRUE(KxReadSceneFile(dir.file("two.json").c_str(), original, error)) << error.GetString();
  ASSERT_EQ(set.numObjs(), 2u);
  const std::vector<CRenderObject*> objs = inOrder(original);
  EXPECT_EQ(objs[0]->getExternId(), 5u);
  EXPECT_EQ(objs[1]->getXdata(), "b");
  EXPECT_GT(objs[0]->getId(), lastOldId);  // ids come from the set, as for any new object
  EXPECT_EQ(objs[0]->getObjSet(), &set);
  // The set's box is the new model's.
  AcGePoint3d lo, hi;
  set.getBox(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(0, 0, 0)));
  EXPECT_TRUE(hi.isEqualTo(AcGePoint3d(4, 2, 0)));
  // The polygon was set like any other: closed, triangulated, measured.
  EXPECT_EQ(objs[0]->getShape(0).getPts().size(), 4u);
  EXPECT_NEAR(objs[0]->getShape(0).getArea(), 4.0, 1e-6);
}

TEST_F(SceneFileRoundTrip, WritingRefusesWhatCouldNotBeReadBack) {
  writeText(dir.file("keep.json"), "previous contents");
  CObjectSetMgr& set = *original.getObjSetMgr();
  set.addObject([] {
    CRenderObject* o = new CRenderObject;
    o->setExternId(3);
    o->addShape(CRenderShape());
    o->getShps().back().set({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}, {}, CRenderShape::kPgon, CColor(), AcGeVector3d(0, 0, 1));
    o->endAddShape();
    return o;
  }());
  CRenderObject* bad = new CRenderObject;
  bad->setExternId(9);
  CRenderShape two;
  two.set({{0, 0, 0}, {1, 0, 0}}, {}, CRenderShape::kPgon, CColor(), AcGeVector3d(0, 0, 1));
  bad->addShape(two);
  bad->endAddShape();
  const unsigned badId = set.addObject(bad);
  CString error;
  EXPECT_FALSE(KxWriteSceneFile(dir.file("keep.json").c_str(), original, error));
  EXPECT_EQ(error, CString(dir.file("keep.json") + ": object 1 (extern id 9): shape 0: field \"pts\": a pgon needs at "
                                                  "least 3 points"));
  EXPECT_EQ(readText(dir.file("keep.json")), "previous contents");
  EXPECT_EQ(dir.entries(), 1u);

  set.delObject(badId);
  CRenderObject* empty = new CRenderObject;
  empty->setExternId(10);
  set.addObject(empty);
  EXPECT_FALSE(KxWriteSceneFile(dir.file("keep.json").c_str(), original, error));
  EXPECT_NE(std::string(error).find("object 1 (extern id 10): an object without shapes cannot be saved"),
            std::string::npos)
      << error.GetString();

  set.clear();
  CRenderObject* text = new CRenderObject;
  text->setXdata("bad \xFF byte");
  text->addShape(two);
  text->getShps().back().set({{0, 0, 0}, {1, 0, 0}}, {}, CRenderShape::kPline, CColor(), AcGeVector3d(0, 0, 1));
  text->endAddShape();
  set.addObject(text);
  EXPECT_FALSE(KxWriteSceneFile(dir.file("keep.json").c_str(), original, error));
  EXPECT_NE(std::string(error).find("object 0: field \"xdata\": text that is not valid in the active code page"),
            std::string::npos)
      << error.GetString();
  EXPECT_EQ(readText(dir.file("keep.json")), "previous contents");
  EXPECT_EQ(dir.entries(), 1u);

  EXPECT_FALSE(KxWriteSceneFile((dir.path() + "/missing/x.json").c_str(), original, error));
  EXPECT_NE(std::string(error).find("cannot create a file beside it"), std::string::npos) << error.GetString();
}

TEST_F(SceneFileRoundTrip, EngineTextInAnotherCodePageIsWrittenAsUtf8) {
  ASSERT_TRUE(KxSetAnsiCodePage(936));
  CRenderObject* o = new CRenderObject;
  o->setXdata("\xB7\xBF\xBC\xE4");  // 房间 in GBK
  CRenderShape s;
  s.set({{0, 0, 0}, {1, 0, 0}}, {}, CRenderShape::kPline, CColor(), AcGeVector3d(0, 0, 1));
  s.setXdata("\xC6\xC2\xCE\xDD\xB6\xA5", "\xCD\xE2\xC3\xE6");  // 坡屋顶 = 外面 in GBK
  o->addShape(s);
  o->endAddShape();
  original.getObjSetMgr()->addObject(o);
  CString error;
  const bool wrote = KxWriteSceneFile(dir.file("gbk.json").c_str(), original, error);
  CSceneMgr copy;
  const bool read = wrote && KxReadSceneFile(dir.file("gbk.json").c_str(), copy, error);
  KxSetAnsiCodePage(CP_UTF8);
  ASSERT_TRUE(wrote && read) << error.GetString();
  const std::string text = readText(dir.file("gbk.json"));
  EXPECT_NE(text.find("\"xdata\": \"\xE6\x88\xBF\xE9\x97\xB4\""), std::string::npos) << text;
  EXPECT_NE(text.find("\"\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6\":\"\xE5\xA4\x96\xE9\x9D\xA2\""), std::string::npos);
  const CRenderObject* back = inOrder(copy).front();
  EXPECT_EQ(back->getXdata(), "\xB7\xBF\xBC\xE4");
  EXPECT_TRUE(back->getShape(0).is("\xC6\xC2\xCE\xDD\xB6\xA5", "\xCD\xE2\xC3\xE6"));
}
