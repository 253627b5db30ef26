// Text shapes drawn from real fonts on real pixels: an outline glyph is
// filled with its counter left open, a line-font glyph is stroked.
#include <gtest/gtest.h>

#include "kxrender/CTextRenderList.h"
#include "shapes/test_shape_render_fixture.h"

using shapetest::near;

class TextShapeFrame : public shapetest::ShapeFrame {};

TEST_F(TextShapeFrame, GlyphCounterStaysOpen) {
  const struct {
    const char* font;
    bool filled;
  } rows[] = {{"宋体", true}, {"单线体", false}};
  for (const auto& r : rows) {
    CRenderShape s;
    auto* t = new TextInfo;
    t->text = "口";
    t->font = r.font;
    t->height = 48;
    t->position = AcGePoint3d(8, 8, 0);
    t->dir1 = AcGeVector3d(1, 0, 0);
    t->dir2 = AcGeVector3d(0, 1, 0);
    s.set(t, CColor(255, 0, 0, 255), AcGeVector3d(0, 0, 1));
    EXPECT_EQ(t->filled, r.filled) << r.font;
    AcGePoint3d lo, hi;
    s.getBox(lo, hi);
    const int cx = int((lo.x + hi.x) / 2), cy = int((lo.y + hi.y) / 2);
    beginFrame();
    s.renderText(&obj);
    endFrame();
    EXPECT_TRUE(t->compiled && t->listId != 0) << r.font;
    EXPECT_TRUE(near(rgb(cx, cy), 0, 0, 0)) << r.font << ": the counter is open";
    // Along the middle row there is colour on both sides of the counter.
    int left = 0, right = 0;
    for (int x = int(lo.x) - 1; x <= int(hi.x) + 1; ++x)
      (x < cx ? left : right) += near(rgb(x, cy), 255, 0, 0);
    EXPECT_TRUE(left > 0 && right > 0) << r.font << " " << left << " " << right;
  }
}
