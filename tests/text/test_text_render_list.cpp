// The text render list: the return-value asymmetry, one cache entry shared
// by render lists, stroke and outline compiling, and the orientation rule
// of outlines on real pixels.
#include <gtest/gtest.h>

#include "kxrender/CTextRenderList.h"
#include "shapes/test_shape_render_fixture.h"
#include "support/PrivateAccess.h"
#include "text/TextTestUtil.h"

KX_PRIVATE_MEMBER(CompileTag, &CTextRenderList::compileRenderList);

using shapetest::near;

// A real frame, with the line font pointed at the small font.
class TextRenderList : public shapetest::ShapeFrame {
 protected:
  texttest::SmallFont fonts;
};

TEST_F(TextRenderList, FirstCallFalseThenTrueAndOneCacheEntryForAll) {
  CTextRenderList a, b;
  unsigned la = 99, lb = 0;
  EXPECT_FALSE(a.getTextRenderList("", "单线体", la));
  EXPECT_EQ(la, 99u);  // untouched
  EXPECT_FALSE(a.getTextRenderList("(", "单线体", la));
  EXPECT_TRUE(la != 99u && kgl->IsList(la));
  unsigned again = 0;
  EXPECT_TRUE(a.getTextRenderList("(", "单线体", again));
  EXPECT_EQ(again, la);
  // The sources are not asked again: with the font gone the second render
  // list still gets the glyph, from the cache, in a list of its own.
  fonts.tc->setFontPaths("/nonexistent/unicode.cxf", "/nonexistent/");
  EXPECT_FALSE(b.getTextRenderList("(", "单线体", lb));
  EXPECT_TRUE(lb != la && kgl->IsList(lb));
  TextContourCacheValue v;
  ASSERT_TRUE(CTextRenderList::getTextContour(TextContourCacheKey("单线体", "("), v));
  EXPECT_TRUE(v.contours.size() == 1 && v.minPt.isEqualTo({0.1, 0, 0}) && v.maxPt.isEqualTo({0.1, 0.9, 0}));
  // A space has no contours of its own in the cache; the placeholder box
  // stands in for it.
  ASSERT_TRUE(CTextRenderList::getTextContour(TextContourCacheKey("Arial", " "), v));
  EXPECT_FALSE(v.isOutline);
  a.clearRenderList();
  b.clearRenderList();
  EXPECT_FALSE(kgl->IsList(la) || kgl->IsList(lb));
}

TEST_F(TextRenderList, StrokesStayOpenOutlinesFillByOrientation) {
  const std::vector<AcGePoint3d> ccw = {{10, 10, 0}, {50, 10, 0}, {50, 50, 0}, {10, 50, 0}, {10, 10, 0}};
  const std::vector<AcGePoint3d> cw(ccw.rbegin(), ccw.rend());
  const std::vector<AcGePoint3d> hole = {{20, 20, 0}, {40, 20, 0}, {40, 40, 0}, {20, 40, 0}};
  const struct {
    const char* what;
    std::vector<std::vector<AcGePoint3d>> contours;
    bool outline;
    bool filledAt15, filledAt30;  // a point on the ring, one in the middle
  } rows[] = {
      {"clockwise outer", {cw}, true, true, true},
      {"counter-clockwise alone is a hole", {ccw}, true, false, false},
      {"outer with its hole open", {cw, hole}, true, true, false},
      {"strokes are lines only", {{{10, 15.5, 0}, {50, 15.5, 0}}}, false, true, false},
  };
  CTextRenderList list;
  for (const auto& r : rows) {
    TextContourCacheValue v;
    v.contours = r.contours;
    v.isOutline = r.outline;
    beginFrame();
    kgl->Color3ub(255, 0, 0);
    (list.*privateMember(CompileTag{}))(v);
    endFrame();
    EXPECT_EQ(near(rgb(30, 15), 255, 0, 0), r.filledAt15) << r.what;
    EXPECT_EQ(near(rgb(30, 30), 255, 0, 0), r.filledAt30) << r.what;
  }
  // A stroke is drawn as given: not closed by the drawer.
  GLRecorder rec(false);
  TextContourCacheValue open;
  open.contours = {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}};
  open.isOutline = false;
  (list.*privateMember(CompileTag{}))(open);
  EXPECT_EQ(rec.count("glVertex3d"), 3u);
}
