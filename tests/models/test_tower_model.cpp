// The reference tower: counts worked out by hand, the order of its objects,
// the door rule, labels, roof, and that it is the same every time.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/KxTowerModel.h"

namespace {

const char* const kRoofKey = "\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6";  // 坡屋顶
const char* const kOuter = "\xE5\xA4\x96\xE9\x9D\xA2";                // 外面

std::vector<CRenderObject*> inOrder(const CObjectSetMgr& set) {
  std::vector<CRenderObject*> out;
  for (const auto& kv : set.objects()) out.push_back(kv.second);
  return out;
}

// Expected counts per storey for B bays, worked out from the layout:
//   interior walls N = 2B(B-1), of which D = ceil(N/3) have doors,
//   labels L = ceil(B/2)^2;
//   objects  = slab + 4B panels + 4B windows + N + L,
//   polygons = slab + 4B panels + 6 per interior wall,
//   holes    = 2 (stair, lift) + 4B windows + 2 per door wall,
//   triangles: a polygon of n corners and h holes fills with n + 2h - 2
//   triangles: slab 12 + 4 - 2 = 14; panel 8 + 2 - 2 = 8; a glass pane is
//   2; a wall is 6 quads of 2, and a door replaces two quads by faces of 8.
struct Expect {
  size_t objects, polygons, holes, triangles;
};
Expect expected(int storeys, int bays) {
  const size_t b = size_t(bays);
  const size_t n = 2 * b * (b - 1), d = (n + 2) / 3, l = ((b + 1) / 2) * ((b + 1) / 2);
  const size_t s = size_t(storeys);
  // The roof: one object, two trapezoids (2 triangles) and two hips (1).
  return {s * (1 + 8 * b + n + l) + 1, s * (1 + 4 * b + 6 * n) + 4, s * (2 + 4 * b + 2 * d),
          s * (14 + 32 * b + 8 * b + 12 * n + 12 * d) + 6};
}

double stripArea(const CRenderShape& s) {
  const std::vector<double>& p = s.getGlPts();
  double area = 0.0;
  for (const auto& strip : s.getStrips()) {
    for (size_t i = 2; i < strip.size(); ++i) {
      const double* a = &p[3 * strip[i - 2]];
      const double* b = &p[3 * strip[i - 1]];
      const double* c = &p[3 * strip[i]];
      const AcGeVector3d u(b[0] - a[0], b[1] - a[1], b[2] - a[2]), v(c[0] - a[0], c[1] - a[1], c[2] - a[2]);
      area += 0.5 * u.crossProduct(v).length();
    }
  }
  return area;
}

}  // namespace

TEST(TowerModel, OneStoreyTwoBaysCountedByHand) {
  // 1 slab + 8 panels + 8 windows + 4 interior walls + 1 label + roof = 23;
  // polygons 1 + 8 + 24 + 4 = 37; holes 2 + 8 + 2 doors x 2 = 14;
  // triangles 14 + 8 x 8 + 8 x 2 + 4 x 12 + 2 x 12 + 6 = 172.
  CObjectSetMgr set;
  const KxModelCounts c = KxBuildTower(set, 1, 2);
  EXPECT_EQ(c.objects, 23u);
  EXPECT_EQ(c.polygons, 37u);
  EXPECT_EQ(c.holes, 14u);
  EXPECT_EQ(c.triangles, 172u);
  EXPECT_EQ(set.numObjs(), 23u);
  const KxModelCounts again = KxCountModel(set);
  EXPECT_EQ(again.objects, c.objects);
  EXPECT_EQ(again.triangles, c.triangles);
  EXPECT_EQ(again.vertices, c.vertices);
}

TEST(TowerModel, TwoStoreysThreeBaysCountedByHand) {
  // Per storey 1 + 24 + 12 + 4 = 41 objects, 1 + 12 + 72 = 85 polygons,
  // 2 + 12 + 4 doors x 2 = 22 holes, 14 + 96 + 24 + 144 + 48 = 326 triangles.
  CObjectSetMgr set;
  const KxModelCounts c = KxBuildTower(set, 2, 3);
  EXPECT_EQ(c.objects, 83u);
  EXPECT_EQ(c.polygons, 174u);
  EXPECT_EQ(c.holes, 44u);
  EXPECT_EQ(c.triangles, 658u);
  const Expect e = expected(2, 3);
  EXPECT_EQ(e.objects, 83u);
  EXPECT_EQ(e.polygons, 174u);
  EXPECT_EQ(e.holes, 44u);
  EXPECT_EQ(e.triangles, 658u);
}

TEST(TowerModel, TowerMMatchesTheLayoutFormulas) {
  CObjectSetMgr set;
  const KxModelCounts c = KxBuildTower(set, kTowerMStoreys, kTowerMBays);
  const Expect e = expected(kTowerMStoreys, kTowerMBays);
  EXPECT_EQ(c.objects, e.objects);
  EXPECT_EQ(c.objects, 5721u);
  EXPECT_EQ(c.polygons, e.polygons);
  EXPECT_EQ(c.holes, e.holes);
  EXPECT_EQ(c.triangles, e.triangles);
  EXPECT_EQ(set.numObjs(), c.objects);
}

TEST(TowerModel, VerticesOfQuadsAndPanesByHand) {
  CObjectSetMgr set;
  KxBuildTower(set, 1, 2);
  const std::vector<CRenderObject*> objs = inOrder(set);
  // Object 2 is the first window: a pane of 4 vertices and 2 triangles and
  // its frame (no triangles).
  auto countOf = [](CRenderObject* o) {
    KxModelCounts c;
    for (const CRenderShape& s : o->getShps()) {
      for (const auto& strip : s.getStrips()) c.triangles += strip.size() - 2;
      c.vertices += s.getGlPts().size() / 3;
      if (s.getFaceVertexArray()) {
        c.vertices += s.getFaceVertexArray()->size();
        c.triangles += s.getFaceTriangleIndexArray()->size() / 3;
      }
    }
    return c;
  };
  EXPECT_EQ(countOf(objs[2]).triangles, 2u);
  EXPECT_EQ(countOf(objs[2]).vertices, 4u);
  // Interior walls start after the slab and 8 panels and windows (index
  // 17); the second has no door: 6 quads of 4 vertices, 2 triangles each.
  EXPECT_EQ(countOf(objs[18]).triangles, 12u);
  EXPECT_EQ(countOf(objs[18]).vertices, 24u);
  // The roof: two trapezoids of 4 and two triangles of 3.
  EXPECT_EQ(countOf(objs.back()).triangles, 6u);
  EXPECT_EQ(countOf(objs.back()).vertices, 14u);
}

TEST(TowerModel, ObjectsComeInTheLayoutOrder) {
  CObjectSetMgr set;
  KxBuildTower(set, 2, 2);
  const std::vector<CRenderObject*> objs = inOrder(set);
  ASSERT_EQ(objs.size(), 2u * 22u + 1u);
  for (int k = 0; k < 2; ++k) {
    const size_t base = size_t(k) * 22;
    const double z0 = 3.0 * k;
    // Slab: one polygon at z0 facing up with the stair and lift openings.
    const CRenderShape& slab = objs[base]->getShape(0);
    ASSERT_EQ(objs[base]->numShp(), 1u);
    EXPECT_EQ(slab.getShpType(), CRenderShape::kPgon);
    EXPECT_EQ(slab.getHoles().size(), 2u);
    EXPECT_NEAR(slab.getUcs().z, 1.0, 1e-12);
    EXPECT_NEAR(slab.getPts()[0].z, z0, 1e-12);
    EXPECT_EQ(slab.getClr(), CColor(165, 165, 165, 255));
    // 144 m2 less the stair (4 x 6) and the lift (3 x 3).
    EXPECT_NEAR(slab.getArea(), 144.0 - 24.0 - 9.0, 1e-3);
    EXPECT_NEAR(stripArea(slab), 111.0, 1e-9);
    // Sides 0..3 face -y, +x, +y, -x; panel then window, bay by bay.
    const AcGeVector3d out[4] = {{0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
    for (int s = 0; s < 4; ++s) {
      for (int i = 0; i < 2; ++i) {
        const size_t at = base + 1 + size_t(s * 2 + i) * 2;
        const CRenderShape& panel = objs[at]->getShape(0);
        EXPECT_EQ(panel.getShpType(), CRenderShape::kPgon);
        EXPECT_TRUE(panel.getUcs().isEqualTo(out[s])) << "side " << s;
        EXPECT_EQ(panel.getHoles().size(), 1u);
        EXPECT_EQ(panel.getClr(), CColor(225, 205, 160, 255));
        EXPECT_NEAR(stripArea(panel), 18.0 - 3.0, 1e-9);
        const CRenderObject& win = *objs[at + 1];
        ASSERT_EQ(win.numShp(), 2u);
        EXPECT_EQ(win.getShape(0).getShpType(), CRenderShape::kFace);
        EXPECT_EQ(win.getShape(0).getClr(), CColor(170, 210, 255, 128));
        EXPECT_EQ(win.getShape(1).getShpType(), CRenderShape::kPline);
        EXPECT_EQ(win.getShape(1).getPts().size(), 5u);
        EXPECT_EQ(win.getShape(1).getClr(), CColor(40, 40, 45, 255));
        // The pane fills the panel's window opening exactly.
        AcGePoint3d lo, hi, hlo, hhi;
        win.getShape(0).getBox(lo, hi);
        const std::vector<AcGePoint3d>& hole = panel.getHoles()[0];
        hlo = hhi = hole[0];
        for (const AcGePoint3d& p : hole) {
          hlo.set(std::min(hlo.x, p.x), std::min(hlo.y, p.y), std::min(hlo.z, p.z));
          hhi.set(std::max(hhi.x, p.x), std::max(hhi.y, p.y), std::max(hhi.z, p.z));
        }
        EXPECT_TRUE(lo.isEqualTo(hlo) && hi.isEqualTo(hhi)) << "side " << s << " bay " << i;
        EXPECT_NEAR(hi.z - lo.z, 1.5, 1e-12);
        EXPECT_NEAR(lo.z, z0 + 0.75, 1e-12);
      }
    }
    // Four interior walls: x = 6 (bays 0, 1), then y = 6; doors at 0 and 3.
    for (int w = 0; w < 4; ++w) {
      const CRenderObject& wall = *objs[base + 17 + size_t(w)];
      ASSERT_EQ(wall.numShp(), 6u);
      size_t holes = 0;
      for (const CRenderShape& s : wall.getShps()) holes += s.getHoles().size();
      EXPECT_EQ(holes, w % 3 == 0 ? 2u : 0u) << "wall " << w;
      AcGePoint3d lo, hi;
      wall.getBox(lo, hi);
      const bool alongY = w < 2;
      EXPECT_NEAR(alongY ? hi.x - lo.x : hi.y - lo.y, 0.2, 1e-12);
      EXPECT_NEAR(alongY ? hi.y - lo.y : hi.x - lo.x, 6.0, 1e-12);
      EXPECT_NEAR(alongY ? lo.x : lo.y, 5.9, 1e-12);
      EXPECT_NEAR(alongY ? lo.y : lo.x, 6.0 * (w % 2), 1e-12);
      EXPECT_NEAR(hi.z - lo.z, 3.0, 1e-12);
    }
    // A door takes 1.0 x 2.1 out of each big face.
    const CRenderObject& door = *objs[base + 17];
    for (const CRenderShape& s : door.getShps())
      if (!s.getHoles().empty()) EXPECT_NEAR(stripArea(s), 18.0 - 2.1, 1e-9);
    // One label for the 2 x 2 bays.
    const CRenderObject& label = *objs[base + 21];
    EXPECT_EQ(label.getXdata(), CString("\xE6\x88\xBF\xE9\x97\xB4") + (k ? "2-1" : "1-1"));
    EXPECT_NEAR(label.getShape(0).getPts()[0].x, 1.5, 1e-12);
    EXPECT_NEAR(label.getShape(0).getPts()[0].z, z0 + 1.5, 1e-12);
  }
}

TEST(TowerModel, LabelsOnePerTwoByTwoBays) {
  CObjectSetMgr set;
  KxBuildTower(set, 1, 3);
  std::vector<const CRenderObject*> labels;
  for (const CRenderObject* o : inOrder(set))
    if (!o->getXdata().IsEmpty()) labels.push_back(o);
  ASSERT_EQ(labels.size(), 4u);
  const double at[4][2] = {{1.5, 1.5}, {1.5, 13.5}, {13.5, 1.5}, {13.5, 13.5}};
  for (size_t i = 0; i < 4; ++i) {
    AcGePoint3d lo, hi;
    labels[i]->getBox(lo, hi);
    EXPECT_NEAR(lo.x, at[i][0], 1e-12);
    EXPECT_NEAR(lo.y, at[i][1], 1e-12);
    EXPECT_NEAR(lo.z, 1.5, 1e-12);
    EXPECT_EQ(labels[i]->getXdata(), CString("\xE6\x88\xBF\xE9\x97\xB4" "1-") + char('1' + i));
  }
}

TEST(TowerModel, HippedRoofTaggedAndFacingOut) {
  CObjectSetMgr set;
  KxBuildTower(set, 3, 4);
  const CRenderObject& roof = *inOrder(set).back();
  ASSERT_EQ(roof.numShp(), 4u);
  const double w = 24.0, eaves = 9.0;
  const AcGePoint3d centre(w / 2, w / 2, eaves);
  double area = 0.0;
  for (const CRenderShape& s : roof.getShps()) {
    EXPECT_EQ(s.getShpType(), CRenderShape::kPgon);
    EXPECT_EQ(s.getClr(), CColor(150, 75, 55, 255));
    EXPECT_TRUE(s.is(kRoofKey, kOuter));
    EXPECT_GT(s.getUcs().z, 0.0);
    AcGePoint3d lo, hi;
    s.getBox(lo, hi);
    EXPECT_NEAR(lo.z, eaves, 1e-12);
    EXPECT_NEAR(hi.z, eaves + w / 4, 1e-12);
    const AcGePoint3d mid = lo + (hi - lo) * 0.5;
    EXPECT_GT(s.getUcs().dotProduct(mid - centre), 0.0);
    area += stripArea(s);
  }
  // Plan area W^2 over the slopes' cosines: long slopes rise W/4 over W/2,
  // hips W/4 over W/4.
  const double longSlopes = 2 * (0.5 * (w + w / 2) * (w / 2)) * std::sqrt(1 + 0.25);
  const double hips = 2 * (0.5 * w * (w / 4)) * std::sqrt(2.0);
  EXPECT_NEAR(area, longSlopes + hips, 1e-9);
  AcGePoint3d lo, hi;
  set.getBox0(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(0, 0, 0)));
  EXPECT_TRUE(hi.isEqualTo(AcGePoint3d(w, w, eaves + w / 4)));
}

TEST(TowerModel, SameEveryTimeAndAddsToWhatIsThere) {
  CObjectSetMgr a, b;
  a.addObject(new CRenderObject);  // the tower is added after what a set holds
  const KxModelCounts ca = KxBuildTower(a, 2, 2);
  const KxModelCounts cb = KxBuildTower(b, 2, 2);
  EXPECT_EQ(a.numObjs(), b.numObjs() + 1);
  EXPECT_EQ(ca.objects, cb.objects);
  EXPECT_EQ(ca.vertices, cb.vertices);
  const std::vector<CRenderObject*> oa = inOrder(a), ob = inOrder(b);
  for (size_t i = 0; i < ob.size(); ++i) {
    ASSERT_EQ(oa[i + 1]->numShp(), ob[i]->numShp());
    for (unsigned s = 0; s < ob[i]->numShp(); ++s) {
      EXPECT_EQ(oa[i + 1]->getShape(s).getPts(), ob[i]->getShape(s).getPts());
      EXPECT_EQ(oa[i + 1]->getShape(s).getGlPts(), ob[i]->getShape(s).getGlPts());
    }
  }
}

TEST(TowerModel, RefusesSizesOutsideItsRange) {
  CObjectSetMgr set;
  for (auto size : {std::pair<int, int>{0, 3}, {-1, 3}, {1, 1}, {1, 0}, {kTowerMaxStoreys + 1, 2}, {1, kTowerMaxBays + 1}}) {
    const KxModelCounts c = KxBuildTower(set, size.first, size.second);
    EXPECT_EQ(c.objects, 0u);
    EXPECT_EQ(c.triangles, 0u);
  }
  EXPECT_EQ(set.numObjs(), 0u);
}
