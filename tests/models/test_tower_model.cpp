// The reference tower: counts by hand, object order, doors, labels, roof, determinism.
#include <gtest/gtest.h>

#include <vector>

#include "kxrender/AcGeBoundBlock3d.h"
#include "kxrender/CObjectSetMgr.h"
#include "kxrender/KxTowerModel.h"

namespace {

std::vector<CRenderObject*> inOrder(const CObjectSetMgr& set) {
  std::vector<CRenderObject*> out;
  for (const auto& kv : set.objects()) out.push_back(kv.second);
  return out;
}

double stripArea(const CRenderShape& s) {
  const std::vector<double>& p = s.getGlPts();
  double area = 0.0;
  for (const auto& strip : s.getStrips())
    for (size_t i = 2; i < strip.size(); ++i) {
      const double *a = &p[3 * strip[i - 2]], *b = &p[3 * strip[i - 1]], *c = &p[3 * strip[i]];
      const AcGeVector3d u(b[0] - a[0], b[1] - a[1], b[2] - a[2]), v(c[0] - a[0], c[1] - a[1], c[2] - a[2]);
      area += 0.5 * u.crossProduct(v).length();
    }
  return area;
}

}  // namespace

TEST(TowerModel, CountsFollowTheLayout) {
  // Per storey for B bays: interior walls N = 2B(B-1), D = ceil(N/3) with
  // doors, labels L = ceil(B/2)^2; objects = slab + 4B panels + 4B windows +
  // N + L; polygons = slab + 4B panels + 6 per wall; holes = stair + lift +
  // 4B windows + 2 per door; triangles: slab 14, panel 8, pane 2, wall 12,
  // plus 12 per door. The roof adds 1 object, 4 polygons, 6 triangles.
  // 1 x 2 by hand: 23 objects, 37 polygons, 14 holes, 172 triangles.
  // Vertices (a pane 4, a wall without a door 6 quads, the roof 2 trapezoids
  // and 2 triangles, and so on) as counted when each object was checked.
  const struct {
    int storeys, bays;
    std::vector<size_t> counts;  // objects, polygons, holes, triangles, vertices
  } cases[] = {{1, 2, {23, 37, 14, 172, 290}},
               {2, 3, {83, 174, 44, 658, 1142}},
               {kTowerMStoreys, kTowerMBays, {5721, 22424, 3240, 65886, 118814}}};
  for (const auto& k : cases) {
    CObjectSetMgr set;
    const KxModelCounts c = KxBuildTower(set, k.storeys, k.bays);
    SCOPED_TRACE(std::to_string(k.storeys) + " x " + std::to_string(k.bays));
    EXPECT_EQ(std::vector<size_t>({c.objects, c.polygons, c.holes, c.triangles, c.vertices}), k.counts);
    EXPECT_EQ(set.numObjs(), c.objects);
    const KxModelCounts again = KxCountModel(set);
    EXPECT_EQ(std::vector<size_t>({again.objects, again.triangles, again.vertices}),
              std::vector<size_t>({c.objects, c.triangles, c.vertices}));
  }
}

TEST(TowerModel, ObjectsComeInTheLayoutOrder) {
  // Per storey of 2 x 2 bays: slab, 8 panel + window pairs (sides facing
  // -y, +x, +y, -x), 4 interior walls, 1 label; then the roof.
  CObjectSetMgr set;
  KxBuildTower(set, 2, 2);
  const std::vector<CRenderObject*> objs = inOrder(set);
  ASSERT_EQ(objs.size(), 2u * 22u + 1u);
  const AcGeVector3d out[4] = {{0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
  for (int k = 0; k < 2; ++k) {
    const size_t base = size_t(k) * 22;
    // Slab: 144 m2 facing up, less the stair (4 x 6) and the lift (3 x 3).
    const CRenderShape& slab = objs[base]->getShape(0);
    EXPECT_NEAR(slab.getPts()[0].z, 3.0 * k, 1e-12);
    EXPECT_NEAR(slab.getUcs().z, 1.0, 1e-12);
    EXPECT_NEAR(stripArea(slab), 144.0 - 24.0 - 9.0, 1e-9);
    for (int s = 0; s < 8; ++s) {
      const CRenderShape& panel = objs[base + 1 + size_t(s) * 2]->getShape(0);
      const CRenderObject& win = *objs[base + 2 + size_t(s) * 2];
      EXPECT_TRUE(panel.getUcs().isEqualTo(out[s / 2])) << "side " << s / 2;
      EXPECT_NEAR(stripArea(panel), 18.0 - 3.0, 1e-9);
      // The pane fills the panel's window opening exactly.
      AcGePoint3d lo, hi, hlo, hhi;
      win.getShape(0).getBox(lo, hi);
      AcGeBoundBlock3d hole;
      for (const AcGePoint3d& p : panel.getHoles().at(0)) hole.extend(p);
      hole.getMinMaxPoints(hlo, hhi);
      EXPECT_TRUE(lo.isEqualTo(hlo) && hi.isEqualTo(hhi)) << "panel " << s;
    }
    // Every third interior wall has a door, 1.0 x 2.1 out of both big faces.
    for (int w = 0; w < 4; ++w) {
      size_t holes = 0;
      for (const CRenderShape& s : objs[base + 17 + size_t(w)]->getShps()) {
        holes += s.getHoles().size();
        if (!s.getHoles().empty()) EXPECT_NEAR(stripArea(s), 18.0 - 2.1, 1e-9);
      }
      EXPECT_EQ(holes, w % 3 == 0 ? 2u : 0u) << "wall " << w;
    }
    EXPECT_EQ(objs[base + 21]->getXdata(), CString("\xE6\x88\xBF\xE9\x97\xB4") + (k ? "2-1" : "1-1"));
  }
  // The hipped roof: tagged, rising W/4 above the eaves, every slope facing
  // out; the model's box ends at its ridge.
  const double w = 12.0, eaves = 6.0;
  for (const CRenderShape& s : objs.back()->getShps()) {
    EXPECT_TRUE(s.is("\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6", "\xE5\xA4\x96\xE9\x9D\xA2"));  // 坡屋顶 = 外面
    AcGePoint3d lo, hi;
    s.getBox(lo, hi);
    EXPECT_NEAR(lo.z, eaves, 1e-12);
    EXPECT_NEAR(hi.z, eaves + w / 4, 1e-12);
    EXPECT_GT(s.getUcs().dotProduct(lo + (hi - lo) * 0.5 - AcGePoint3d(w / 2, w / 2, eaves)), 0.0);
  }
  AcGePoint3d lo, hi;
  set.getBox0(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(0, 0, 0)));
  EXPECT_TRUE(hi.isEqualTo(AcGePoint3d(w, w, eaves + w / 4)));
}

TEST(TowerModel, SameEveryTimeAddedAfterWhatIsThereAndOnlyInRange) {
  CObjectSetMgr a, b;
  a.addObject(new CRenderObject);
  KxBuildTower(a, 2, 2);
  KxBuildTower(b, 2, 2);
  const std::vector<CRenderObject*> oa = inOrder(a), ob = inOrder(b);
  ASSERT_EQ(oa.size(), ob.size() + 1);
  for (size_t i = 0; i < ob.size(); ++i) {
    ASSERT_EQ(oa[i + 1]->numShp(), ob[i]->numShp());
    for (unsigned s = 0; s < ob[i]->numShp(); ++s)
      EXPECT_EQ(oa[i + 1]->getShape(s).getGlPts(), ob[i]->getShape(s).getGlPts());
  }
  CObjectSetMgr set;
  for (auto size : {std::pair<int, int>{0, 3}, {-1, 3}, {1, 1}, {kTowerMaxStoreys + 1, 2}, {1, kTowerMaxBays + 1}})
    EXPECT_EQ(KxBuildTower(set, size.first, size.second).objects, 0u) << size.first << " x " << size.second;
  EXPECT_EQ(set.numObjs(), 0u);
}
