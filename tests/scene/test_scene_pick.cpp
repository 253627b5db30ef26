// Scene picking in a real view: the candidate rectangle, the order of
// hits, the kind filter, window and crossing selection, bad input, and the
// search tree against testing every object.
#include <cmath>
#include <random>

#include "TopViewFixture.h"
#include "objects/RenderObjectPick.h"
#include "shapes/PickVolume.h"

class ScenePick : public TopViewFixture {
 protected:
  unsigned add(CRenderObject* o) {
    const unsigned id = set().addObject(o);
    scene.render();
    return id;
  }
  struct Picked { bool ok; unsigned id, shape; int extra; };
  Picked pickAt(int x, int y, CSceneMgr::PickType type = 0, bool flag = true) {
    Picked p{false, 777, 777, -1};
    p.ok = scene.pick(CPoint(x, y), p.id, p.shape, type, &p.extra, flag);
    return p;
  }
};

TEST_F(ScenePick, CandidateRectangleByAperture) {
  // A short screen-vertical polyline dx pixels beside the picked pixel. The
  // ray tolerance reaches half the aperture; the candidates run from
  // x - aperture / 2 to x + aperture / 2 + 1, so with an odd aperture a
  // line within the tolerance on the left is no candidate.
  const struct {
    int aperture;
    double dx;
    bool hit;
  } rows[] = {{12, 5.9, true}, {12, -5.9, true}, {12, 6.2, false}, {12, -6.2, false},
              {5, 2.4, true},  {5, -1.9, true},  {5, -2.4, false}};
  for (const auto& r : rows) {
    set().clear();
    scene.setPickPixelPrecision(r.aperture);
    add(object({at(400 + r.dx, 297), at(400 + r.dx, 303)}, CRenderShape::kPline));
    EXPECT_EQ(pickAt(400, 300).ok, r.hit) << r.aperture << " " << r.dx;
  }
}

TEST_F(ScenePick, NearestFirstTiesToTheLaterCandidateKindFilter) {
  add(object(rect(380, 320, 420, 280), CRenderShape::kPgon));
  const unsigned twin = add(object(rect(380, 320, 420, 280), CRenderShape::kPgon));
  Picked p = pickAt(400, 300);
  ASSERT_TRUE(p.ok);
  EXPECT_EQ(p.id, twin);  // same distance: met first walking backwards
  EXPECT_EQ(p.extra, 2);
  const unsigned above = add(object(rect(380, 320, 420, 280, 5), CRenderShape::kPgon));
  EXPECT_EQ(pickAt(400, 300).id, above);
  const AcGePoint3d l0 = at(395, 300), l1 = at(405, 300);
  const unsigned line = add(object({{l0.x, l0.y, -5}, {l1.x, l1.y, -5}}, CRenderShape::kPline));
  const struct {
    CSceneMgr::PickType type;
    bool flag, ok;
    unsigned id;
    int extra;
  } rows[] = {{0, true, true, above, 4}, {2, true, true, above, 3},  {1, true, true, line, 1},
              {7, true, true, above, 4}, {0, false, false, 777, -1}, {1, false, false, 777, -1}};
  for (const auto& r : rows) {
    p = pickAt(400, 300, r.type, r.flag);
    EXPECT_EQ(p.ok, r.ok) << r.type << r.flag;
    EXPECT_EQ(p.id, r.id) << r.type << r.flag;
    EXPECT_EQ(p.extra, r.extra) << r.type << r.flag;
    if (r.ok) EXPECT_EQ(p.shape, 0u);
  }
  // Only polylines, over a polygon alone: nothing.
  set().clear();
  add(object(rect(380, 320, 420, 280), CRenderShape::kPgon));
  EXPECT_FALSE(pickAt(400, 300, 1).ok);
}

TEST_F(ScenePick, ThroughAWindowOpeningToThePanelBehind) {
  const unsigned panel = add(object(rect(300, 400, 500, 200, 10), CRenderShape::kPgon, {rect(370, 330, 430, 270, 10)}));
  const unsigned behind = add(object(rect(300, 400, 500, 200), CRenderShape::kPgon));
  EXPECT_EQ(pickAt(400, 300).id, behind);
  EXPECT_EQ(pickAt(320, 220).id, panel);
  // In wire frame the panel is only its edges: the opening's edge is hit.
  set().getObj(panel)->setRenderMode(CRenderObject::RenderMode(0));
  set().getObj(behind)->setRenderMode(CRenderObject::RenderMode(0));
  EXPECT_EQ(pickAt(371, 300).id, panel);
  EXPECT_FALSE(pickAt(400, 300).ok);
}

TEST_F(ScenePick, WindowAndCrossingOnADiagonalStrip) {
  // A long thin diagonal strip: its box covers most of the view.
  const AcGePoint3d p = at(150, 550), q = at(650, 50);
  const AcGeVector3d across = (at(1, 0) - at(0, 0)) * 3;
  const unsigned strip = add(object({p - across, q - across, q + across, p + across}, CRenderShape::kPgon));
  const unsigned dot = add(object(rect(200, 120, 220, 100), CRenderShape::kPgon));
  const struct { const char* what; CPoint p1, p2; std::vector<unsigned> ids; } rows[] = {
      {"crossing inside the box, off the strip", {300, 200}, {180, 80}, {dot}},
      {"window inside the box, off the strip", {180, 80}, {300, 200}, {dot}},
      {"crossing over the strip", {420, 320}, {380, 280}, {strip}},
      {"window over the strip", {380, 280}, {420, 320}, {}},
      {"window round everything", {100, 20}, {700, 580}, {strip, dot}},
      {"crossing round everything, corners reversed", {700, 20}, {100, 580}, {strip, dot}},
  };
  for (const auto& r : rows) {
    std::vector<unsigned> ids{12345};
    const bool ok = scene.pick(r.p1, r.p2, ids);
    EXPECT_EQ(ok, !r.ids.empty()) << r.what;
    EXPECT_EQ(ids, r.ids.empty() ? std::vector<unsigned>{12345} : r.ids) << r.what;
  }
}

TEST_F(ScenePick, BadInputSelectsNothing) {
  unsigned id = 5, shape = 6;
  std::vector<unsigned> ids{9};
  EXPECT_FALSE(scene.pick(CPoint(400, 300), id, shape, 0, nullptr, true));  // empty set
  EXPECT_FALSE(scene.pick(CPoint(0, 0), CPoint(800, 600), ids));
  add(rectObject(-500, -500, 500, 500));
  const CPoint outside[] = {{-1, 300}, {800, 300}, {400, 600}, {400, -40}};
  for (const CPoint& pt : outside) EXPECT_FALSE(scene.pick(pt, id, shape, 0, nullptr, true)) << pt.x << "," << pt.y;
  const CPoint rects[][2] = {{{10, 10}, {10, 200}},
                             {{10, 10}, {200, 10}},
                             {{50, 50}, {50, 50}},
                             {{-300, 10}, {-10, 200}},
                             {{900, 700}, {1200, 900}}};
  for (const auto& r : rects) EXPECT_FALSE(scene.pick(r[0], r[1], ids)) << r[0].x << "," << r[1].x;
  EXPECT_TRUE(id == 5u && shape == 6u && ids == std::vector<unsigned>{9});
  // A rectangle reaching past the window is cut to it.
  EXPECT_TRUE(scene.pick(CPoint(900, 700), CPoint(-100, -100), ids));

  // The camera refuses non-finite vectors; up along the line of sight gives
  // a view that cannot be inverted.
  scene.camera()->ReSet(AcGeVector3d(0, 0, 10), AcGeVector3d(0, 0, -1), AcGeVector3d(0, 0, -1));
  scene.render();
  ids = {9};
  EXPECT_FALSE(scene.pick(CPoint(400, 300), id, shape, 0, nullptr, true));
  EXPECT_FALSE(scene.pick(CPoint(800, 600), CPoint(0, 0), ids));
  EXPECT_EQ(ids, std::vector<unsigned>{9});
}

TEST_F(ScenePick, SetHitAndHighLightOneShape) {
  CRenderObject* o = rectObject(0, 0, 1, 1);
  o->addShape(o->getShape(0));
  const unsigned id = add(o);
  scene.setHit(id, 1, true);
  scene.setHighLight(id, 0, true);
  scene.setHit(id, 2, true);  // past the shapes or the ids: nothing
  scene.setHit(id + 1, 0, true);
  EXPECT_TRUE(!o->getShape(0).getHit() && o->getShape(1).getHit());
  EXPECT_TRUE(o->getShape(0).getHighLight() && !o->getShape(1).getHighLight());
}

// The tree's candidates lose nothing: every answer equals testing every
// object one by one.
TEST_F(ScenePick, SearchTreeAgreesWithTestingEveryObject) {
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> u(-190, 190), z(-20, 20), size(0.5, 12);
  for (int i = 0; i < 3000; ++i) {
    const double x = u(rng), y = u(rng) * 0.75, w = size(rng), h = size(rng), d = z(rng);
    CRenderObject* o = i % 4 == 3 ? object({{x, y, d}, {x + w, y + h, d}}, CRenderShape::kPline)
                                  : rectObject(x, y, x + w, y + h, d);
    if (i % 37 == 0) o->setVisible(false);
    if (i % 5 == 0) o->setRenderMode(CRenderObject::RenderMode(0));
    set().addObject(o);
  }
  // The view of the empty set already holds them all (no frame needed).
  const CPickVolume::ViewData view =
      CPickVolume::makeViewData(scene.getModelViewMatrix(), scene.getProjectionMatrix(), scene.getViewport());
  std::uniform_int_distribution<int> px(0, 799), py(0, 599);
  int found = 0;
  for (int k = 0; k < 30; ++k) {
    const CPoint a(px(rng), py(rng)), b(px(rng), py(rng));
    if (a.x == b.x || a.y == b.y) continue;
    const CRect r(std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y));
    const CPickVolume v(r, view);
    std::vector<unsigned> ids, want;
    for (const auto& kv : set().objects()) {
      const CRenderObject& o = *kv.second;
      if (o.isVisible() && (a.x < b.x ? kxpick::objectInRect(o, r, view, v)
                                      : kxpick::objectCrossesRect(o, r, view, v, o.getRenderMode())))
        want.push_back(kv.first);
    }
    scene.pick(a, b, ids);
    EXPECT_EQ(ids, want) << k;
    found += int(ids.size());
  }
  EXPECT_GT(found, 100);
}
