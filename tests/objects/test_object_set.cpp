#include <gtest/gtest.h>

#include <random>

#include "ObjectHelpers.h"

using Access = CObjectSetMgrTestAccess;

TEST(ObjectSetIds, IssuedInOrderNeverReusedAndNullIsRefused) {
  CObjectSetMgr set;
  EXPECT_EQ(set.addObject(nullptr), 0u);
  for (unsigned id : {1u, 2u, 3u}) EXPECT_EQ(set.addObject(rectObject(0, 0, 1, 1)), id);
  set.delObject(2);
  EXPECT_FALSE(set.is_exist(2));
  EXPECT_EQ(set.addObject(rectObject(0, 0, 1, 1)), 4u);  // 2 is not reused
}

TEST(ObjectSetIds, WrapTriesTwoFirstAndTheTopIdAndZeroAreGivenOut) {
  CObjectSetMgr set;
  // The top id is taken: the counter wraps to 1, then steps to 2.
  Access::objects(set)[0xFFFFFFFFu] = nullptr;
  Access::nextId(set) = 0xFFFFFFFFu;
  EXPECT_EQ(set.addObject(rectObject(0, 0, 1, 1)), 2u);
  Access::objects(set).erase(0xFFFFFFFFu);

  // A free top id is issued, and after it the counter runs through 0.
  CObjectSetMgr other;
  Access::nextId(other) = 0xFFFFFFFFu;
  for (unsigned id : {0xFFFFFFFFu, 0u, 1u}) EXPECT_EQ(other.addObject(rectObject(0, 0, 1, 1)), id);
}

TEST(ObjectSetIds, ExhaustionThrowsAHeapExceptionWithTheMessageAndKeepsTheSet) {
  CObjectSetMgr set;
  for (unsigned id = 1; id <= 20; ++id) Access::objects(set)[id] = nullptr;
  Access::attemptLimit(set) = 10;
  CRenderObject* obj = rectObject(0, 0, 1, 1);
  std::exception* caught = nullptr;
  try {
    set.addObject(obj);
  } catch (std::exception* e) {
    caught = e;
  }
  ASSERT_NE(caught, nullptr);
  EXPECT_STREQ(caught->what(), "渲染对象ID使用超出极限");
  delete caught;
  EXPECT_EQ(set.numObjs(), 20u);
  delete obj;  // never taken by the set
}

TEST(ObjectSetIds, BatchAddKeepsTheMisalignmentOfNullEntries) {
  CObjectSetMgr set;
  std::vector<unsigned> ids{99, 98, 97, 96};
  set.addObject({rectObject(0, 0, 1, 1), nullptr, rectObject(5, 5, 6, 6)}, ids);
  // The null shortened the list; the third object's id had no place left.
  EXPECT_EQ(ids, (std::vector<unsigned>{1, 0}));
  EXPECT_EQ(set.numObjs(), 2u);
  AcGePoint3d lo, hi;  // the batch recomputes the box
  set.getBox(lo, hi);
  EXPECT_TRUE(lo == AcGePoint3d(0, 0, 0) && hi == AcGePoint3d(6, 6, 0));

  set.addObject({nullptr, rectObject(0, 0, 1, 1), rectObject(0, 0, 1, 1)}, ids);
  EXPECT_EQ(ids, (std::vector<unsigned>{0, 3}));
  set.addObject({}, ids);
  EXPECT_TRUE(ids.empty());
}

TEST(ObjectSetBox, SkipsEmptyObjectsRefreshesOnDemandAndDerivesTheDepthBand) {
  CObjectSetMgr set;
  std::vector<unsigned> ids;
  set.addObject({objectOf({}), rectObject(3, 3, 3, 3)}, ids);  // a degenerate box counts as empty
  auto box = [&set](bool stored) {
    AcGePoint3d lo, hi;
    stored ? set.getBox(lo, hi) : set.getBox0(lo, hi);
    return std::make_pair(lo, hi);
  };
  using Box = std::pair<AcGePoint3d, AcGePoint3d>;
  EXPECT_EQ(box(true), Box({-10, -10, -10}, {10, 10, 10}));
  EXPECT_EQ(set.borderLineZNear(), 0.09995);
  // The single add does not refresh the stored box; getBox0 measures
  // without storing, freshBox stores.
  set.addObject(objectOf({rectShape(-5, 0, 200000, 1, 2), rectShape(0, 0, 1, 1, 2)}));
  EXPECT_EQ(box(false), Box({-5, 0, 2}, {200000, 1, 2}));
  EXPECT_EQ(box(true), Box({-10, -10, -10}, {10, 10, 10}));
  set.freshBox();
  EXPECT_EQ(box(true), Box({-5, 0, 2}, {200000, 1, 2}));
  EXPECT_EQ(set.borderLineZNear(), 0.1);
  EXPECT_EQ(set.borderLineZFar(), 1.0);
  EXPECT_EQ(set.numShapes(), 3u);  // the degenerate shape counts, its triangles do not
  EXPECT_EQ(set.numTriangles(), 4u);

  CObjectSetMgr near;
  near.addObject({rectObject(0, 0, 1000, 1)}, ids);
  EXPECT_EQ(near.borderLineZNear(), 0.09995);
}

TEST(ObjectSetAssistPoints, DuplicatesPerTypeAreIgnoredAndClearingKeepsOrder) {
  CObjectSetMgr set;
  set.pushAssistPt(AcGePoint3d(1, 0, 0), 1);
  set.pushAssistPt(AcGePoint3d(1, 0, 1e-12), 1);  // equal within the tolerance
  set.pushAssistPt(AcGePoint3d(1, 0, 0), 2);
  set.pushAssistPt(AcGePoint3d(2, 0, 0), 1);
  set.pushAssistPt(AcGePoint3d(3, 0, 0), 3);
  std::vector<std::pair<int, AcGePoint3d>> all;
  set.getAssistPts(all);
  ASSERT_EQ(all.size(), 4u);
  set.clearAssistPt(1);
  std::vector<AcGePoint3d> pts;
  set.getAssistPts(pts);
  EXPECT_EQ(pts, (std::vector<AcGePoint3d>{{1, 0, 0}, {3, 0, 0}}));
  set.clearAssistPt(-1);
  set.getAssistPts(pts);
  EXPECT_TRUE(pts.empty());
}

namespace {

std::vector<unsigned> idsOf(std::vector<CRenderObject*> v) {
  std::vector<unsigned> ids;
  for (CRenderObject* o : v) ids.push_back(o->getId());
  std::sort(ids.begin(), ids.end());
  return ids;
}

}  // namespace

TEST(ObjectSetSearch, RectangleAndFrustumQueriesMatchBruteForceThroughMovesAndDeletes) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> pos(-1000, 1000), size(0.1, 40);
  CObjectSetMgr set;
  for (int i = 0; i < 10000; ++i) {
    const double x = pos(rng), y = pos(rng);
    set.addObject(rectObject(x, y, x + size(rng), y + size(rng), pos(rng) * 0.05));
  }
  auto check = [&](int rounds) {
    for (int r = 0; r < rounds; ++r) {
      const double x0 = pos(rng), y0 = pos(rng), x1 = x0 + size(rng) * 5, y1 = y0 + size(rng) * 5;
      std::vector<unsigned> expected;
      for (const auto& kv : set.objects()) {
        const CRenderObject* o = kv.second;
        if (o->ptMax().x >= x0 && o->ptMin().x <= x1 && o->ptMax().y >= y0 && o->ptMin().y <= y1)
          expected.push_back(kv.first);
      }
      // Corners given in either order.
      std::vector<CRenderObject*> found;
      if (r % 2)
        set.getInRectObjs(AcGePoint2d(x1, y1), AcGePoint2d(x0, y0), found);
      else
        set.getInRectObjs(AcGePoint2d(x0, y0), AcGePoint2d(x1, y1), found);
      ASSERT_EQ(idsOf(found), expected);
    }
  };
  check(200);
  std::uniform_int_distribution<unsigned> pick(1, 10000);
  for (int i = 0; i < 1000; ++i) {
    CRenderObject* o = set.getObj(pick(rng));
    if (o) o->move(AcGeVector3d(pos(rng) * 0.3, pos(rng) * 0.3, 0));
  }
  check(200);
  for (int i = 0; i < 1000; ++i) set.delObject(pick(rng));
  for (int i = 0; i < 500; ++i) set.addObject(rectObject(pos(rng), pos(rng), 1000, 1000));
  check(200);
  set.createSearchTree();
  check(50);

  // The frustum query keeps every box not wholly outside a plane of a tilted
  // view volume: four side planes and a near plane, normals in.
  const std::vector<std::vector<double>> planes = {
      {-0.8, 0.0, -0.6, 100.0}, {0.8, 0.0, 0.6, 50.0}, {0.0, 1.0, 0.0, 120.0}, {0.0, -1.0, 0.0, 30.0},
      {0.6, 0.0, -0.8, 300.0}};
  std::vector<CRenderObject*> found;
  set.getObjsInFrustum(found, &planes);
  std::vector<unsigned> expected;
  for (const auto& kv : set.objects()) {
    const CRenderObject* o = kv.second;
    const AcGePoint3d lo = o->ptMin(), hi = o->ptMax();
    bool outside = false;
    for (const auto& p : planes)
      outside = outside || p[3] + std::max(p[0] * lo.x, p[0] * hi.x) + std::max(p[1] * lo.y, p[1] * hi.y) +
                                   std::max(p[2] * lo.z, p[2] * hi.z) <
                               0;
    if (!outside) expected.push_back(kv.first);
  }
  EXPECT_GT(expected.size(), 100u);
  EXPECT_LT(expected.size(), 4000u);
  EXPECT_EQ(idsOf(found), expected);
}

TEST(ObjectSetSearch, ObjectsWithNonFiniteShapesAreEmptyAndCanBeDeleted) {
  CObjectSetMgr set;
  const double nan = std::nan("");
  const unsigned id = set.addObject(object({{nan, 0, 0}, {1, nan, 0}, {1, 1, 0}}, CRenderShape::kPgon));
  set.addObject(rectObject(0, 0, 1, 1));
  auto found = [&set] {
    std::vector<CRenderObject*> v;
    set.getInRectObjs(AcGePoint2d(-5, -5), AcGePoint2d(5, 5), v);
    return v.size();
  };
  EXPECT_EQ(found(), 2u);  // the empty object sits at the origin
  set.delObject(id);
  EXPECT_EQ(found(), 1u);
}
