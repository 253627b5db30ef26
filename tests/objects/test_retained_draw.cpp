// Retained drawing against the per-shape path: real Mesa frames must match
// pixel for pixel, before and after every change the display lists key on.
#include <functional>

#include "ObjectHelpers.h"
#include "kxrender/CSceneMgr.h"
#include "scene/SceneFixture.h"
#include "shapes/ShapeTestUtil.h"
#include "support/GLRecorder.h"

namespace {

// The shape with its border shown in this colour, and of this width if one is given.
CRenderShape withBorder(CRenderShape s, const CColor& c, double width = 0, bool scaled = false) {
  s.setShowBorder(true);
  s.setBorderColor(c);
  if (width > 0) s.setBorderWidth(width, scaled);
  return s;
}

class RetainedFrame : public SceneFixture {
 protected:
  void SetUp() override {
    open(96, 96);
    scene.setLightOpen(false);
    scene.setRange(20.0);
  }
  // Bordered and scaled-border polygons, a polyline, a face mesh, an
  // instanced object, one with a coarser level, a wall seen from behind,
  // and objects small enough to be single points.
  void buildScene() {
    const CRenderShape bordered =
        withBorder(rectShape(-9, -9, -2, -2, 0, CColor(200, 60, 40, 255)), CColor(10, 250, 10, 255), 3.0, true);
    const CRenderShape line = shapetest::polyline({{-9, 1, 0.5}, {-2, 8, 0.5}, {-2, 1, 0.5}}, CColor(250, 250, 0, 255));
    ids.push_back(set().addObject(objectOf({bordered, line})));

    const CRenderShape face = withBorder(faceTriangle(CColor(40, 90, 220, 255)), CColor(255, 0, 255, 255));
    ids.push_back(set().addObject(objectOf({face, wallShape(0.5, 0, 8, 0, 3, false)})));

    CRenderObject* inst = objectOf({rectShape(2, -9, 4, -7, 0, CColor(0, 200, 200, 255)),
                                    rectShape(6, -3, 9, -1, 0, CColor(120, 0, 120, 255))});
    addShift(*inst, 0, 3);
    inst->setExaGeoShapNum(1);
    ids.push_back(set().addObject(inst));

    // A plate under the others, large enough to stay whole when zoomed out.
    CRenderObject* lod = objectOf({rectShape(-9, -9, 7, 3, -1, CColor(255, 128, 0, 255))});
    lod->setLodLevel(1);
    lod->getLodShpss(0) = {rectShape(-9, -9, -1, 3, -1, CColor(128, 255, 0, 255))};
    lod->getLodUnitsPerPixel(0) = 0.3f;  // coarse from 0.3 units a pixel
    ids.push_back(set().addObject(lod));

    for (int i = 0; i < 4; ++i)
      ids.push_back(set().addObject(rectObject(5 + i, 5, 5.4 + i, 5.4, 0, CColor(255, 40 * i, 90, 255))));
    // Far out of view, enough that the set builds its search tree: the
    // objects above then share lists with their tree neighbours, and
    // objects added later keep lists of their own until the next build.
    for (int i = 0; i < 70; ++i) set().addObject(rectObject(1000 + i, 1000, 1000.5 + i, 1000.5));
  }

  // Overlapping tiles 20 pixels wide, each at its own depth, some above a
  // plate that covers them, from left to reach across and from -8 to reach
  // up; the plate's id.
  unsigned tilesUnderPlate(bool someAbove, double left = -8, double reach = 8) {
    set().clear();
    for (int i = 0; i < 256; ++i) {
      const bool edge = i >= 252, above = someAbove && i % 8 == 0;
      const double x = edge ? 3.4 : -6 + 0.5 * (i % 16), y = -6 + 0.5 * (i / 16), z = (above ? 8 : 0) - 0.01 * i;
      const CColor fill(i, 255 - i, 90, 255);
      set().addObject(objectOf({withBorder(rectShape(x, y, x + 4, y + 4, z, fill), CColor(250, 250, 250, 255), 5.0)}));
    }
    return set().addObject(rectObject(left, -8, reach, reach, 4, CColor(90, 90, 90, 255)));
  }

  std::vector<uint8_t> frame(bool retained) {
    scene.setRetainedDraw(retained);
    return frameRGBA();
  }
  CRenderObject* obj(int i) { return set().getObj(ids[size_t(i)]); }
  void mode(int m) { scene.setRenderMode(CRenderObject::RenderMode(m)); }

  std::vector<unsigned> ids;
};

struct Variant {
  const char* name;
  std::function<void()> apply;
  bool shows = true;  // the change alters the frame
};

}  // namespace

// Each change is made after the lists are compiled; the next frame, and the
// one replayed after it, must be the per-shape frame, and differ from the
// frame before the change (so the change is one the lists really depend on).
TEST_F(RetainedFrame, AChangeAfterCompilingRedrawsLikeThePerShapePath) {
  const Variant changes[] = {
      {"shape colour", [this] { obj(0)->setShapeColor(0, CColor(0, 0, 255, 255)); }},
      {"wire frame", [this] { mode(0); }},
      {"mode 4 after compiling wire frame",
       [this] {
         mode(0);
         frame(true);
         mode(4);
       },
       false},
      {"highlight", [this] { obj(1)->highLight(true); }},
      {"dot line", [this] { obj(0)->getShape(1).setDotLine(true); }},
      {"level of detail", [this] { scene.setRange(40.0); }},
      {"scaled border zoom", [this] { scene.setRange(12.0); }},
      {"scene alpha", [this] { scene.setTransparent(100); }},
      {"hit", [this] { obj(2)->hit(true); }},
      {"move", [this] { obj(0)->move(AcGeVector3d(1.5, 0.5, 0)); }},
      {"points edited in place",
       [this] {
         CRenderShape& sh = obj(2)->getShape(1);
         for (AcGePoint3d& p : sh.getPts()) p.y += 1.0;
         sh.divTringle();
       }},
      {"delete", [this] { set().delObject(ids[1]); }},
  };
  for (const Variant& c : changes) {
    SCOPED_TRACE(c.name);
    set().clear();
    ids.clear();
    mode(2);
    scene.setTransparent(255);
    scene.setRange(20.0);
    buildScene();
    frame(true);
    const std::vector<uint8_t> before = frame(true);
    c.apply();
    const std::vector<uint8_t> after = frame(true);
    if (c.shows) EXPECT_TRUE(after != before) << "the change shows";
    EXPECT_TRUE(frame(true) == after) << "replayed frame";
    EXPECT_TRUE(after == frame(false));
  }
}

TEST_F(RetainedFrame, ListsStayOnePerDrawnObjectThroughChurn) {
  buildScene();
  for (int round = 0; round < 40; ++round) {
    const unsigned id = set().addObject(rectObject(-8 + round % 10, -4, -7 + round % 10, -3, 1.0));
    frame(true);
    obj(round % 3)->setShapeColor(0, CColor(round * 6, 100, 50, 255));
    mode(round % 3 == 0 ? 0 : 2);
    frame(true);
    set().delObject(id);
  }
  frame(true);  // deletes what the last round queued
  size_t objectLists = 0, faceLists = 0;
  for (unsigned id : ids) {
    const CRenderObject* o = set().getObj(id);
    if (o->getRetainedList() != 0) ++objectLists;
    for (const CRenderShape& s : o->getShps()) faceLists += s.getFaceDisplayList() != 0;
  }
  // The tree's objects share one group buffer; the single points need none.
  EXPECT_EQ(objectLists, 0u);
  EXPECT_EQ(set().retainedGroupBuffers().size(), 1u);
  EXPECT_EQ(liveBuffers(), 1u);
  EXPECT_EQ(liveLists(), faceLists);
  set().clear();
  frame(true);
  EXPECT_EQ(liveLists(), 0u);
  EXPECT_EQ(liveBuffers(), 0u);
}

TEST_F(RetainedFrame, SinglePointsGoOutInOneBatchOnlyWithThePathOn) {
  for (int i = 0; i < 5; ++i) set().addObject(rectObject(i, 0, i + 0.3, 0.3));
  for (bool on : {false, true}) {
    scene.setRetainedDraw(on);
    GLRecorder rec(true);
    scene.render();
    EXPECT_EQ(rec.count("glBegin"), on ? 1u : 5u);
    EXPECT_EQ(rec.count("glVertex3d"), 5u);
  }
}

// Tiles under a nearer plate: once frames have shown their groups hidden,
// those groups are skipped, and they are drawn again in the very frame the
// plate moves off. The last tiles end just inside the plate's edge, where
// only the outer half of their thick borders shows: the boxes must grow by
// the lines' width. With some tiles above the plate every group shows: a
// box is tested by its front, not by its back.
TEST_F(RetainedFrame, HiddenGroupsAreSkippedAndShowAgainWhenUncovered) {
  for (const bool someAbove : {false, true}) {
    SCOPED_TRACE(someAbove ? "some tiles above the plate" : "all tiles under the plate");
    const unsigned plate = tilesUnderPlate(someAbove);
    // Draw calls, and the colour the frame leaves current: the first frame
    // records groups after its pass, yet leaves what replaying them does.
    std::vector<float> colour(4);
    auto drawCalls = [&] {
      GLRecorder rec(true);
      frame(true);
      kgl->GetFloatv(GL_CURRENT_COLOR, colour.data());
      return rec.count("glDrawArrays");
    };
    // The first frame already leaves the covered groups unrecorded.
    const size_t first = drawCalls();
    const std::vector<float> firstColour = colour;
    const size_t steady = drawCalls();
    EXPECT_EQ(firstColour, colour);
    const size_t recorded = set().retainedGroupBuffers().size();
    const std::vector<uint8_t> covered = frame(true);
    EXPECT_TRUE(covered == frame(false));
    EXPECT_LE(steady, first);
    set().getObj(plate)->move(AcGeVector3d(0, 30, 0));
    const std::vector<uint8_t> uncovered = frame(true);
    if (!someAbove) EXPECT_GT(set().retainedGroupBuffers().size(), recorded);
    EXPECT_TRUE(uncovered != covered);
    EXPECT_TRUE(uncovered == frame(false));
  }
}

TEST_F(RetainedFrame, AFirstFrameDrawsAPolygonLiftedOutFromUnderCover) {
  // The lift moves the fill's triangles along (1, 1, 1), out from under the
  // plate, while the outline and its box stay under it: the group must not
  // be taken as covered before it is recorded. The plate reaches far to the
  // left, so that it falls in another group.
  tilesUnderPlate(false, -30, 11);
  CRenderObject* o = rectObject(0, 0, 8, 8, -3, CColor(0, 0, 255, 255));
  CRenderShape fill = o->getShps()[0];
  fill.setZOffset(4.0f);
  o->getShps()[0] = fill;  // a copy keeps the lift
  const unsigned lifted = set().addObject(o);
  const std::vector<uint8_t> first = frame(true);
  EXPECT_TRUE(first == frame(false));
  set().getObj(lifted)->setVisible(false);
  EXPECT_TRUE(frame(false) != first) << "the lifted fill shows";
}
