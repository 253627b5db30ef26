// The snap index against reading every object afresh, through the edits
// that must keep it true.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "ObjectHelpers.h"
#include "objects/BjSnap.h"

namespace {

typedef std::vector<std::pair<double, double>> XY;

XY sorted(const std::vector<CSnapNode>& nodes) {
  XY out;
  for (const CSnapNode& n : nodes) out.emplace_back(n.pt.x, n.pt.y);
  std::sort(out.begin(), out.end());
  return out;
}

XY query(CObjectSetMgr& set, double x0, double y0, double x1, double y1) {
  std::vector<CSnapNode> nodes;
  set.getSnapNodes(AcGePoint2d(x0, y0), AcGePoint2d(x1, y1), nodes);
  return sorted(nodes);
}

// What the index should hold in the box: every object read now.
XY expected(const CObjectSetMgr& set, double x0, double y0, double x1, double y1) {
  std::vector<CSnapNode> all, in;
  for (const auto& kv : set.objects()) CBjSnap::nodesOf(*kv.second, all);
  std::vector<AcGePoint3d> assist;
  set.getAssistPts(assist);
  for (const AcGePoint3d& p : assist) all.push_back(CSnapNode{p, 0, true});
  for (const CSnapNode& n : all)
    if (n.pt.x >= x0 && n.pt.x <= x1 && n.pt.y >= y0 && n.pt.y <= y1) in.push_back(n);
  return sorted(in);
}

}  // namespace

TEST(BjSnap, ExactPointsUnderEachInstanceMatrixAndSnapPointSetters) {
  CObjectSetMgr set;
  const unsigned a = set.addObject(object({{0, 0, 0}, {1, 0, 0}}));
  CRenderObject& o = *set.getObj(a);
  o.setSnapPointsExa({AcGePoint3d(1, 1, 0)});
  EXPECT_EQ(query(set, -50, -50, 50, 50), XY{}) << "exact data is drawn only under a matrix";
  for (float dx : {0.0f, 20.0f}) addShift(o, dx);
  EXPECT_EQ(query(set, -50, -50, 50, 50), (XY{{1, 1}, {21, 1}}));
  o.setSnapPoints({AcGePoint3d(-3, -3, 0)});
  o.clearSmpMat();
  EXPECT_EQ(query(set, -50, -50, 50, 50), (XY{{-3, -3}}));
}

TEST(BjSnap, RandomEditsAgreeWithReadingEverything) {
  // Small batches of edits go to the pending list, large ones rebuild:
  // either way the answer is what reading every object gives.
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> coord(0, 1000);
  CObjectSetMgr set;
  std::vector<unsigned> ids;
  for (int round = 0; round < 30; ++round) {
    const int edits = round % 5 == 0 ? 400 : 3;
    for (int e = 0; e < edits; ++e) {
      const int what = ids.empty() ? 0 : int(rng() % 5);
      const unsigned id = ids.empty() ? 0 : ids[rng() % ids.size()];
      if (what == 0) {
        const AcGePoint3d p(coord(rng), coord(rng), 0);
        const unsigned n = set.addObject(object({p, p + AcGeVector3d(3, 4, 0)}));
        set.getObj(n)->AutoCountCatchPoint();
        ids.push_back(n);
      } else if (what == 1) {
        set.getObj(id)->move(AcGeVector3d(coord(rng) - 500, coord(rng) - 500, 0));
      } else if (what == 2) {
        set.getObj(id)->rotate(AcGePoint3d(500, 500, 0), coord(rng));
      } else if (what == 3) {
        set.delObject(id);
        ids.erase(std::find(ids.begin(), ids.end(), id));
      } else {
        set.pushAssistPt(AcGePoint3d(coord(rng), coord(rng), 0), int(rng() % 3));
        if (rng() % 4 == 0) set.clearAssistPt(int(rng() % 3));
      }
    }
    const double x = coord(rng), y = coord(rng), w = coord(rng) / 4;
    ASSERT_EQ(query(set, x, y, x + w, y + w), expected(set, x, y, x + w, y + w)) << round;
  }
}

TEST(BjSnap, BadBoxesAndPointsFindNothing) {
  CObjectSetMgr set;
  const double nan = std::nan("");
  const unsigned a = set.addObject(object({{0, 0, 0}, {1, 0, 0}}));
  set.getObj(a)->setSnapPoints({AcGePoint3d(nan, 0, 0), AcGePoint3d(0, 0, 0)});
  EXPECT_EQ(query(set, nan, -1, 1, 1), XY{});
  EXPECT_EQ(query(set, 1, 1, -1, -1), (XY{{0, 0}})) << "corners in any order";
  EXPECT_EQ(query(set, -1e308, -1e308, 1e308, 1e308), (XY{{0, 0}})) << "points that are not finite are left out";
}
