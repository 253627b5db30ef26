// Recorded calls of shaded polygons: strips, texture, highlight overlay and
// outline.
#include "test_shape_render_fixture.h"

using namespace shapetest;

namespace {
const std::string kPush = "glPushAttrib(2928)";  // 0x0B70
std::string elements(size_t n) {
  return "glDrawElements(" + num(GL_TRIANGLE_STRIP) + ", " + std::to_string(n) + ", " + num(GL_UNSIGNED_SHORT) +
         ", 1)";
}
std::vector<std::string> from(const GLRecorder& rec, int at) {
  const std::vector<std::string> all = texts(rec);
  return at < 0 ? std::vector<std::string>() : std::vector<std::string>(all.begin() + at, all.end());
}
}  // namespace

TEST(ShapeRenderPgon, QuadStripsAreDrawnImmediatelyOthersThroughElements) {
  SceneObject so;
  CRenderShape quad = polygon(rect(1, 2, 11, 7), {}, CColor(9, 8, 7, 255));
  // A triangle, a pentagon and a ring: strips of other sizes than four
  // (triangulated before calls are recorded in place of being made).
  std::vector<CRenderShape> others = {polygon({{0, 0, 0}, {10, 0, 0}, {0, 10, 0}}),
                                      polygon({{0, 0, 0}, {10, 0, 0}, {13, 6, 0}, {5, 11, 0}, {-3, 6, 0}}),
                                      polygon(rect(0, 0, 30, 30), {rect(10, 10, 20, 20)})};
  ASSERT_EQ(quad.getStrips(), (std::vector<std::vector<uint16_t>>{{0, 1, 2, 3}}));
  std::vector<std::string> expected = {"glLineWidth(1.20000005)", "glVertexPointer(3, " + num(GL_DOUBLE) + ", 0, 1)",
                                       "glColor4ub(9, 8, 7, 255)", "glBegin(" + num(GL_TRIANGLE_STRIP) + ")"};
  const std::vector<double>& v = quad.getGlPts();
  for (int i = 0; i < 4; ++i) {  // in strip order
    char buf[96];
    std::snprintf(buf, sizeof buf, "glVertex3d(%.9g, %.9g, %.9g)", v[3 * i], v[3 * i + 1], v[3 * i + 2]);
    expected.push_back(buf);
  }
  expected.push_back("glEnd()");
  GLRecorder rec(false);
  quad.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_EQ(texts(rec), expected);
  size_t otherSizes = 0;
  for (CRenderShape& s : others) {
    size_t quads = 0;
    std::vector<std::string> draws, got;
    for (const auto& strip : s.getStrips())
      if (strip.size() == 4) ++quads;
      else draws.push_back(elements(strip.size()));
    otherSizes += draws.size();
    rec.clear();
    s.renderShaded_Pgon(&so.obj, nullptr, false);
    EXPECT_TRUE(rec.count("glBegin") == quads && rec.count("glVertex3d") == 4 * quads);
    for (const auto& c : rec.calls())
      if (c.name == "glDrawElements") got.push_back(c.text());
    EXPECT_EQ(got, draws);
  }
  EXPECT_GE(otherSizes, 2u);  // the cases really exercise the element path
}

TEST(ShapeRenderPgon, HighlightOverlayIsStippledInFrontOnlyInTheFirstPassUnlessSuppressed) {
  SceneObject so;
  so.obj.setRenderedFlags(true, false);
  CRenderShape s = polygon(rect(0, 0, 30, 30), {rect(10, 10, 20, 20)}, CColor(250, 250, 60, 255));
  s.setHighLight(true);
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  const int push = findText(rec, kPush);
  ASSERT_GE(push, 1);
  EXPECT_EQ(rec.calls()[push - 1].text(), "glColor3ub(0, 0, 255)");  // sum 560: blue
  std::vector<std::string> expected = {kPush, "glDepthRange(0, 0.4)", "glPolygonOffset(-1, -1)",
                                       "glEnable(" + num(GL_POLYGON_STIPPLE) + ")", "glPolygonStipple(1)"};
  for (const auto& strip : s.getStrips()) expected.push_back(elements(strip.size()));
  expected.push_back("glDisable(" + num(GL_POLYGON_STIPPLE) + ")");
  expected.push_back("glPopAttrib()");
  EXPECT_EQ(from(rec, push), expected);
  // A quad's overlay goes through elements too.
  CRenderShape quad = polygon(rect(0, 0, 5, 5));
  quad.setHighLight(true);
  rec.clear();
  quad.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_TRUE(rec.count("glBegin") == 1u && countText(rec, elements(4)) == 1u);
  // Not highlighted, suppressed by the flag, or the object not in its first
  // pass: no overlay (and out of any pass, not even the selection colour).
  const struct { bool highlight, firstPass, flag; int selColours; } rows[] = {
      {false, true, false, 1}, {true, true, true, -1}, {true, false, false, 0}};
  for (const auto& r : rows) {
    quad.setHighLight(r.highlight);
    so.obj.setRenderedFlags(r.firstPass, false);
    rec.clear();
    quad.renderShaded_Pgon(&so.obj, nullptr, r.flag);
    EXPECT_TRUE(rec.count("glPushAttrib") == 0u && rec.count("glPolygonStipple") == 0u) << r.highlight << r.flag;
    if (r.selColours >= 0) EXPECT_EQ(rec.count("glColor3ub"), size_t(r.selColours)) << r.highlight << r.flag;
  }
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
  s.setHit(true);  // dashed, in the border's contrast colour
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  const std::string ptr = "glVertexPointer(3, " + num(GL_DOUBLE) + ", 0, 1)", strip = "glDrawArrays(3, 0, 5)";
  EXPECT_EQ(from(rec, findText(rec, "glEnable(" + num(GL_LINE_STIPPLE) + ")")),
            (std::vector<std::string>{"glEnable(" + num(GL_LINE_STIPPLE) + ")", "glLineStipple(1, 3855)",
                                      "glColor3ub(245, 235, 240)", "glLineWidth(1)", ptr, strip, ptr, strip,
                                      "glDisable(" + num(GL_LINE_STIPPLE) + ")"}));
  s.setHit(false);  // a shown border: solid, in its colour and the scene alpha, at the scaled width
  s.setShowBorder(true);
  s.setBorderWidth(1.2, true);
  const double scale = 50.0;
  rec.clear();
  s.renderShaded_Pgon(&so.obj, &scale, false);
  EXPECT_EQ(rec.calls()[0].text(), "glLineWidth(4)");
  const int at = findText(rec, "glColor4ub(10, 20, 240, 77)");
  ASSERT_GE(at, 0);
  EXPECT_TRUE(rec.count("glLineStipple") == 0u && rec.count("glLineWidth") == 1u && rec.count("glDrawArrays") == 2u);
  EXPECT_GT(rec.find("glDrawArrays"), at);
}

TEST(ShapeRenderPgon, TexturedFillNeedsCoordinatesAndUsesWhite) {
  SceneObject so;
  so.scene.setTransparent(128);
  CRenderShape s = polygon({{0, 0, 0}, {10, 0, 0}, {13, 6, 0}, {5, 11, 0}, {-3, 6, 0}}, {}, CColor(1, 2, 3, 255));
  s.setTexture(7u);  // no coordinates yet: reading them would overrun, so drawn plain
  GLRecorder rec(false);
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_TRUE(rec.count("glEnable") == 0u && countText(rec, "glColor4ub(1, 2, 3, 128)") == 1u);
  s.setTextureCoord({{0, 0}, {1, 0}, {1, 0.5}, {0.5, 1}, {0, 0.5}, {0, 0}});
  ASSERT_EQ(s.getTexCoords().size(), 2 * s.getGlPts().size() / 3);
  rec.clear();
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
  s.clearTexture();  // the name stays but the fill is plain again
  rec.clear();
  s.renderShaded_Pgon(&so.obj, nullptr, false);
  EXPECT_TRUE(rec.count("glBindTexture") == 0u && countText(rec, "glColor4ub(1, 2, 3, 128)") == 1u);
}
