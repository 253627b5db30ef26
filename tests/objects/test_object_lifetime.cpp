// Who owns what: objects added once, sets and scenes copied and destroyed in
// any order, and display lists handed back on every path that drops them. The memory faults these guard against show as
// crashes or sanitizer reports.
#include "ObjectHelpers.h"
#include "kxrender/CSceneMgr.h"
#include "scene/SceneFixture.h"

namespace {

CRenderObject* faceObject(int shapes) { return objectOf(std::vector<CRenderShape>(size_t(shapes), faceTriangle())); }

}  // namespace

TEST(ObjectOwnership, AnObjectJoinsOneSetOnce) {
  CObjectSetMgr a, b;
  CRenderObject* o = rectObject(0, 0, 1, 1);
  ASSERT_EQ(a.addObject(o), 1u);
  EXPECT_EQ(a.addObject(o), 0u);
  EXPECT_EQ(b.addObject(o), 0u);
  std::vector<unsigned> ids;
  b.addObject(std::vector<CRenderObject*>{o, rectObject(0, 0, 2, 2)}, ids);
  EXPECT_EQ(ids, (std::vector<unsigned>{0, 1}));
  EXPECT_TRUE(a.numObjs() == 1u && b.numObjs() == 1u && o->getObjSet() == &a);

  auto* st = new CStaticObject;
  const unsigned list = a.addStaticObject(st);
  EXPECT_EQ(a.addStaticObject(st) + b.addStaticObject(st), 0u);
  EXPECT_TRUE(a.staticObjects().size() == 1u && b.staticObjects().empty());
  a.delStaticObject(list);
}

TEST(ObjectOwnership, CopiedSetsOwnTheirOwnObjects) {
  auto* original = new CObjectSetMgr;
  const unsigned id = original->addObject(rectObject(0, 0, 4, 4));
  original->addStaticObject(new CStaticObject);
  CObjectSetMgr copy(*original);
  CObjectSetMgr assigned;
  assigned.addObject(rectObject(9, 9, 10, 10));
  assigned = *original;

  for (CObjectSetMgr* s : {&copy, &assigned}) {
    ASSERT_NE(s->getObj(id), nullptr);
    EXPECT_TRUE(s->getObj(id)->getObjSet() == s && s->getObj(id)->getId() == id);
    EXPECT_TRUE(s->numObjs() == 1u && s->staticObjects().size() == 1u);
  }
  original->delObject(id);
  delete original;
  // Still readable, still searchable, and new objects are freed with the copy.
  EXPECT_EQ(copy.getObj(id)->getShape(0).getPts().size(), 5u);
  std::vector<CRenderObject*> found;
  copy.getInRectObjs(AcGePoint2d(1, 1), AcGePoint2d(2, 2), found);
  EXPECT_EQ(found.size(), 1u);
  EXPECT_EQ(copy.addObject(rectObject(0, 0, 1, 1)), id + 1);

  // A copied object belongs to no set until added; assigning to an object in
  // a set keeps its id there.
  CRenderObject loose(*copy.getObj(id));
  EXPECT_EQ(copy.addObject(new CRenderObject(loose)), id + 2);
  *copy.getObj(id + 1) = loose;
  EXPECT_EQ(copy.getObj(id + 1)->getId(), id + 1);
}

class ObjectLists : public SceneFixture {
 protected:
  void SetUp() override {
    open(64, 64);
    scene.setRange(10.0);
    scene.setRetainedDraw(false);  // counts the shapes' own lists only
  }
  // Two frames: the first compiles lists and the second deletes the queue.
  size_t listsAfterFrames() {
    frame();
    frame();
    return liveLists();
  }
};

TEST_F(ObjectLists, EveryPathThatDropsShapesReturnsTheirLists) {
  CObjectSetMgr& set = *scene.getObjSetMgr();
  CRenderObject* o = faceObject(50);
  const unsigned id = set.addObject(o);
  EXPECT_EQ(listsAfterFrames(), 50u);
  // Growing past the capacity and trimming again move shapes, lists included.
  for (int i = 0; i < 50; ++i) o->addShape(faceTriangle());
  o->endAddShape();
  EXPECT_EQ(listsAfterFrames(), 100u);
  o->resize(30);
  EXPECT_EQ(listsAfterFrames(), 30u);
  const CRenderObject none;
  *o = none;
  EXPECT_EQ(listsAfterFrames(), 0u);
  for (int i = 0; i < 2; ++i) o->addShape(faceTriangle());
  EXPECT_EQ(listsAfterFrames(), 2u);
  o->clearShape();
  EXPECT_EQ(listsAfterFrames(), 0u);
  o->addShape(faceTriangle());
  EXPECT_EQ(listsAfterFrames(), 1u);
  set.delObject(id);
  EXPECT_EQ(listsAfterFrames(), 0u);
}

TEST_F(ObjectLists, LevelListsOfDifferentLengthsAreDrawnSafely) {
  CRenderObject* o = faceObject(1);
  o->setLodLevel(1);
  o->getLodShpss(0).push_back(faceTriangle());
  // The host grows one of the three lists only.
  o->getLodUnitsPerPixel().assign(4, 0.0f);
  scene.getObjSetMgr()->addObject(o);
  EXPECT_EQ(listsAfterFrames(), 1u);
}

TEST(SceneLifetime, DestroyedWithoutReleaseWhileObjectsHoldLists) {
  HWND w = KxCreateOffscreenWindow(32, 32);
  {
    CSceneMgr scene;
    ASSERT_TRUE(scene.initializeRender(w, false, false));
    scene.getObjSetMgr()->addObject(faceObject(3));
    scene.render();
    scene.finish();
    CSceneMgr copy(scene);
    EXPECT_NE(copy.getObjSetMgr()->getObj(1), scene.getObjSetMgr()->getObj(1));
    // Neither scene calls glRelease: the host forgot, or unwound past it.
  }
  KxDestroyWindow(w);
}
