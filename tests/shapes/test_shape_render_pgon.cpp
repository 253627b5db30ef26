// Recorded calls of shaded polygons: strips, texture, highlight overlay and
// outline.
#include "test_shape_render_fixture.h"

using namespace shapetest;

namespace {
const std::string kPush = "glPushAttrib(2928)";  // 0x0B70
const std::string kStrip = "glBegin(" + num(GL_TRIANGLE_STRIP) + ")";

std::string elements(size_t n) {
  return "glDrawElements(" + num(GL_TRIANGLE_STRIP) + ", " + std::to_string(n) + ", " + num(GL_UNSIGNED_SHORT) +
         ", 1)";
}

// A triangle, a pentagon and a ring: between them strips of other sizes
// than four.
std::vector<CRenderShape> nonQuads() {
  std::vector<CRenderShape> out;
  out.push_back(polygon({{0, 0, 0}, {10, 0, 0}, {0, 10, 0}}));
  out.push_back(polygon({{0, 0, 0}, {10, 0, 0}, {13, 6, 0}, {5, 11, 0}, {-3, 6, 0}}));
  out.push_back(polygon(rect(0, 0, 30, 30), {rect(10, 10, 20, 20)}));
  return out;
}
}  // namespace

TEST(ShapeRenderPgon, QuadStripIsDrawnImmediately) {
  SceneObject so;
  CRenderShape s = polygon(rect(1, 2, 11, 7), {}, CColor(9, 8, 7, 255));
  ASSERT_EQ(s.getStrips().size(), 1u);
  ASSERT_EQ(s.getStrips()[0].size(), 4u);
  const std::vector<double>& v = s.getGlPts();
  std::vector<std::string> expected = {"glLineWidth(1.20000005)", "glVertexPointer(3, " + num(GL_DOUBLE) + ", 0, 1)",
                                       "glColor4ub(9, 8, 7, 255)", kStrip};
  for (uint16_t i : s.getStrips()[0]) {
    char buf[96];
    std::snprintf(buf, sizeof buf, "glVertex3d(%.9g, %.9g, %.9g)", v[3 * i], v[3 * i + 1], v[3 * i + 2]);
    expected.push_back(buf);
  }
  expected.push_back("glEnd()");
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_EQ(texts(rec), expected);
}

TEST(ShapeRenderPgon, OtherStripsGoThroughElementDraws) {
  SceneObject so;
  size_t otherSizes = 0;
  for (CRenderShape& s : nonQuads()) {
    size_t quads = 0;
    std::vector<std::string> draws;
    for (const auto& strip : s.getStrips()) {
      if (strip.size() == 4) ++quads;
      else draws.push_back(elements(strip.size()));
    }
    otherSizes += draws.size();
    GLRecorder rec(false);
    s.renderShaded_Pgon(&so.obj, nullptr, false);
    EXPECT_EQ(rec.count("glBegin"), quads);
    EXPECT_EQ(rec.count("glVertex3d"), 4 * quads);
    std::vector<std::string> got;
    for (const auto& c : rec.calls())
      if (c.name == "glDrawElements") got.push_back(c.text());
    EXPECT_EQ(got, draws);
  }
  EXPECT_GE(otherSizes, 2u);  // the cases really exercise the element path
  CRenderShape tri = polygon({{0, 0, 0}, {10, 0, 0}, {0, 10, 0}});
  ASSERT_EQ(tri.getStrips().size(), 1u);
  ASSERT_EQ(tri.getStrips()[0].size(), 3u);
  GLRecorder rec(false);
  tri.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_EQ(countText(rec, elements(3)), 1u);
}

TEST(ShapeRenderPgon, NeedsObjectSetAndTriangulation) {
  SceneObject so;
  CRenderShape s = polygon(rect(0, 0, 5, 5));
  CRenderObject orphan;
  GLRecorder rec(false);
  s.renderShaded_Pgon(nullptr, nullptr, false);
  s.renderShaded_Pgon(&orphan, nullptr, false);
  CRenderShape empty;
  empty.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_TRUE(rec.calls().empty());
}

TEST(ShapeRenderPgon, HighlightOverlayIsStippledInFront) {
  SceneObject so;
  so.obj.setRenderedFlags(true, false);
  CRenderShape s = polygon(rect(0, 0, 30, 30), {rect(10, 10, 20, 20)}, CColor(250, 250, 60, 255));
  s.setHighLight(true);
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  const size_t strips = s.getStrips().size();
  const int push = findText(rec, kPush);
  ASSERT_GE(push, 0);
  EXPECT_EQ(rec.calls()[push - 1].text(), "glColor3ub(0, 0, 255)");  // 560: blue
  std::vector<std::string> overlay(rec.calls().size() - push);
  for (size_t i = push; i < rec.calls().size(); ++i) overlay[i - push] = rec.calls()[i].text();
  std::vector<std::string> expected = {kPush, "glDepthRange(0, 0.4)", "glPolygonOffset(-1, -1)",
                                       "glEnable(" + num(GL_POLYGON_STIPPLE) + ")", "glPolygonStipple(1)"};
  for (const auto& strip : s.getStrips()) expected.push_back(elements(strip.size()));
  expected.push_back("glDisable(" + num(GL_POLYGON_STIPPLE) + ")");
  expected.push_back("glPopAttrib()");
  EXPECT_EQ(overlay, expected);
  EXPECT_GE(strips, 1u);

  // A quad's overlay goes through elements too, and the pattern is the
  // render system's checkerboard.
  CRenderShape quad = polygon(rect(0, 0, 5, 5));
  quad.setHighLight(true);
  rec.clear();
  quad.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_EQ(rec.count("glBegin"), 1u);
  EXPECT_EQ(countText(rec, elements(4)), 1u);
  EXPECT_EQ(countText(rec, "glColor3ub(255, 255, 255)"), 1u);
}

TEST(ShapeRenderPgon, OverlayOnlyForHighlightedShapesWithoutTheFlagAndFirstPass) {
  SceneObject so;
  CRenderShape s = polygon(rect(0, 0, 5, 5));
  GLRecorder rec(false);
  so.obj.setRenderedFlags(true, false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);  // not highlighted: colour only
  EXPECT_EQ(rec.count("glPushAttrib"), 0u);
  EXPECT_EQ(rec.count("glColor3ub"), 1u);

  s.setHighLight(true);
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, true);  // suppressed by the flag
  EXPECT_EQ(rec.count("glPushAttrib"), 0u);
  EXPECT_EQ(rec.count("glPolygonStipple"), 0u);

  so.obj.setRenderedFlags(false, false);
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, false);  // object not in a draw pass
  EXPECT_EQ(rec.count("glPushAttrib"), 0u);
  EXPECT_EQ(rec.count("glColor3ub"), 0u);
}

TEST(ShapeRenderPgon, OutlineOfHitAndBorderedShapes) {
  SceneObject so;
  so.scene.setTransparent(77);
  so.obj.setRenderedFlags(false, true);
  CRenderShape s = polygon(rect(0, 0, 30, 30), {rect(10, 10, 20, 20)});
  s.setBorderColor(CColor(10, 20, 240, 255));
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);  // no border shown, not hit
  EXPECT_EQ(rec.count("glDrawArrays"), 0u);

  s.setHit(true);
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  int at = findText(rec, "glEnable(" + num(GL_LINE_STIPPLE) + ")");
  ASSERT_GE(at, 0);
  const std::vector<std::string> all = texts(rec);
  const std::string ptr = "glVertexPointer(3, " + num(GL_DOUBLE) + ", 0, 1)";
  EXPECT_EQ(std::vector<std::string>(all.begin() + at, all.end()),
            (std::vector<std::string>{"glEnable(" + num(GL_LINE_STIPPLE) + ")", "glLineStipple(1, 3855)",
                                      "glColor3ub(245, 235, 240)", "glLineWidth(1)", ptr, "glDrawArrays(3, 0, 5)",
                                      ptr, "glDrawArrays(3, 0, 5)", "glDisable(" + num(GL_LINE_STIPPLE) + ")"}));

  s.setHit(false);
  s.setShowBorder(true);
  const double scale = 50.0;
  s.setBorderWidth(1.2, true);
  rec.clear();
  s.renderShaded_Pgon(&so.obj, &scale, false);
  EXPECT_EQ(rec.calls()[0].text(), "glLineWidth(4)");
  at = findText(rec, "glColor4ub(10, 20, 240, 77)");
  ASSERT_GE(at, 0);
  EXPECT_EQ(rec.count("glLineStipple"), 0u);
  EXPECT_EQ(rec.count("glLineWidth"), 1u);  // the outline keeps the scaled width
  EXPECT_EQ(rec.count("glDrawArrays"), 2u);
  EXPECT_GT(rec.find("glDrawArrays"), at);
}

TEST(ShapeRenderPgon, TexturedFillUsesWhiteAndTheCoordinateArray) {
  SceneObject so;
  so.scene.setTransparent(128);
  CRenderShape s = polygon({{0, 0, 0}, {10, 0, 0}, {13, 6, 0}, {5, 11, 0}, {-3, 6, 0}});
  s.setTextureCoord({{0, 0}, {1, 0}, {1, 0.5}, {0.5, 1}, {0, 0.5}, {0, 0}});
  ASSERT_EQ(s.getTexCoords().size(), 2 * s.getGlPts().size() / 3);
  s.setTexture(7u);
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  const std::vector<std::string> all = texts(rec);
  ASSERT_GE(all.size(), 7u);
  EXPECT_EQ(std::vector<std::string>(all.begin() + 2, all.begin() + 7),
            (std::vector<std::string>{"glEnable(" + num(GL_TEXTURE_2D) + ")", "glBindTexture(3553, 7)",
                                      "glEnableClientState(" + num(GL_TEXTURE_COORD_ARRAY) + ")",
                                      "glTexCoordPointer(2, " + num(GL_FLOAT) + ", 0, 1)",
                                      "glColor4ub(255, 255, 255, 128)"}));
  EXPECT_EQ(all[all.size() - 2], "glDisable(" + num(GL_TEXTURE_2D) + ")");
  EXPECT_EQ(all.back(), "glDisableClientState(" + num(GL_TEXTURE_COORD_ARRAY) + ")");

  // Cleared: the name stays but the fill is plain again.
  s.clearTexture();
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_EQ(rec.count("glBindTexture"), 0u);
  EXPECT_EQ(countText(rec, "glColor4ub(255, 0, 0, 128)"), 1u);
}

TEST(ShapeRenderPgon, TextureWithoutCoordinatesIsDrawnPlain) {
  SceneObject so;
  CRenderShape s = polygon(rect(0, 0, 5, 5), {}, CColor(1, 2, 3, 255));
  s.setTexture(3u);  // no coordinates: reading them would overrun
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_EQ(rec.count("glEnable"), 0u);
  EXPECT_EQ(rec.count("glTexCoord2f"), 0u);
  EXPECT_EQ(countText(rec, "glColor4ub(1, 2, 3, 255)"), 1u);
}
