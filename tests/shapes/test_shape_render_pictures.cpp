// Shapes drawn into real 64 x 64 frames and read back: holes stay open,
// wire frames follow every contour, highlights are checkerboards, hit lines
// are dashed, textures are mapped.
#include "test_shape_render_fixture.h"

using namespace shapetest;

class ShapeRenderPictures : public ShapeFrame {
 protected:
  // Outer (8, 8)-(56, 56) with the hole (24, 24)-(40, 40); edges on pixel
  // centres so the wire frame lands on whole pixels.
  CRenderShape ring(const CColor& clr) {
    return polygon(rect(8.5, 8.5, 55.5, 55.5), {rect(24.5, 24.5, 39.5, 39.5)}, clr);
  }
};

TEST_F(ShapeRenderPictures, ShadedPolygonLeavesItsHoleOpen) {
  CRenderShape s = ring(CColor(255, 0, 0, 255));
  beginFrame();
  s.render(2, &obj, &scale, false);
  endFrame();
  EXPECT_TRUE(near(rgb(12, 12), 255, 0, 0));
  EXPECT_TRUE(near(rgb(50, 30), 255, 0, 0));
  EXPECT_TRUE(near(rgb(30, 50), 255, 0, 0));
  EXPECT_TRUE(near(rgb(32, 32), 0, 0, 0));  // the hole
  EXPECT_TRUE(near(rgb(27, 36), 0, 0, 0));
  EXPECT_TRUE(near(rgb(3, 3), 0, 0, 0));    // outside
  EXPECT_TRUE(near(rgb(60, 32), 0, 0, 0));
}

TEST_F(ShapeRenderPictures, WireFrameFollowsOuterContourAndHole) {
  CRenderShape s = ring(CColor(0, 255, 255, 255));
  beginFrame();
  s.render(0, &obj, &scale, false);
  endFrame();
  for (int y : {16, 32, 48}) {
    EXPECT_TRUE(near(rgb(8, y), 0, 255, 255)) << y;   // outer left edge
    EXPECT_TRUE(near(rgb(55, y), 0, 255, 255)) << y;  // outer right edge
  }
  EXPECT_TRUE(near(rgb(24, 32), 0, 255, 255));  // hole edges
  EXPECT_TRUE(near(rgb(39, 32), 0, 255, 255));
  EXPECT_TRUE(near(rgb(32, 24), 0, 255, 255));
  EXPECT_TRUE(near(rgb(16, 16), 0, 0, 0));  // no fill
  EXPECT_TRUE(near(rgb(32, 32), 0, 0, 0));
}

TEST_F(ShapeRenderPictures, HighlightIsACheckerboardOverTheFill) {
  CRenderShape s = ring(CColor(255, 0, 0, 255));  // sum 255: white overlay
  s.setHighLight(true);
  obj.setRenderedFlags(true, false);
  beginFrame();
  s.render(2, &obj, &scale, false);
  endFrame();
  int white = 0, red = 0;
  for (int y = 10; y < 20; ++y)
    for (int x = 10; x < 20; ++x) {
      const std::vector<int> p = rgb(x, y);
      const bool isWhite = near(p, 255, 255, 255);
      white += isWhite;
      red += near(p, 255, 0, 0);
      // Neighbours alternate; diagonal neighbours agree.
      EXPECT_NE(isWhite, near(rgb(x + 1, y), 255, 255, 255)) << x << "," << y;
      EXPECT_EQ(isWhite, near(rgb(x + 1, y + 1), 255, 255, 255)) << x << "," << y;
    }
  EXPECT_EQ(white, 50);
  EXPECT_EQ(red, 50);
  EXPECT_TRUE(near(rgb(32, 32), 0, 0, 0));  // the hole gets no overlay either

  // Suppressed by the flag: the plain fill.
  beginFrame();
  s.render(2, &obj, &scale, true);
  endFrame();
  for (int x = 10; x < 14; ++x) EXPECT_TRUE(near(rgb(x, 12), 255, 0, 0)) << x;
}

TEST_F(ShapeRenderPictures, HitWireFrameIsDashedFourOnFourOff) {
  CRenderShape s = polyline({{0, 32.5, 0}, {64, 32.5, 0}}, CColor(255, 255, 0, 255));
  s.setHit(true);
  beginFrame();
  s.render(0, &obj, &scale, false);
  endFrame();
  std::string row;
  for (int x = 0; x < 64; ++x) row += near(rgb(x, 32), 255, 255, 0) ? '#' : '.';
  // 0x0F0F from the line's start: four lit, four dark, repeating.
  std::string expected;
  for (int x = 0; x < 64; ++x) expected += (x / 4) % 2 == 0 ? '#' : '.';
  EXPECT_EQ(row, expected);

  s.setHit(false);
  beginFrame();
  s.render(0, &obj, &scale, false);
  endFrame();
  for (int x = 0; x < 64; ++x) EXPECT_TRUE(near(rgb(x, 32), 255, 255, 0)) << x;
}

namespace {
// 2 x 2 texels: red, green on the bottom row; blue, yellow on the top.
unsigned fourColourTexture() {
  const unsigned char px[16] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 0, 255};
  GLuint tex = 0;
  kgl->GenTextures(1, &tex);
  kgl->BindTexture(GL_TEXTURE_2D, tex);
  kgl->PixelStorei(GL_UNPACK_ALIGNMENT, 1);
  kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  kgl->TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, px);
  kgl->BindTexture(GL_TEXTURE_2D, 0);
  return tex;
}
}  // namespace

TEST_F(ShapeRenderPictures, TexturedQuadMapsItsCorners) {
  const unsigned tex = fourColourTexture();
  CRenderShape s = polygon(rect(8, 8, 56, 56), {}, CColor(40, 40, 40, 255));
  s.setTextureCoord({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}});
  s.setTexture(tex);
  beginFrame();
  s.render(2, &obj, &scale, false);
  endFrame();
  EXPECT_TRUE(near(rgb(12, 12), 255, 0, 0));
  EXPECT_TRUE(near(rgb(52, 12), 0, 255, 0));
  EXPECT_TRUE(near(rgb(12, 52), 0, 0, 255));
  EXPECT_TRUE(near(rgb(52, 52), 255, 255, 0));
  EXPECT_TRUE(near(rgb(3, 3), 0, 0, 0));
  GLboolean on = GL_TRUE;
  kgl->GetBooleanv(GL_TEXTURE_2D, &on);
  EXPECT_FALSE(on);  // texturing is switched off again
  GLuint t = tex;
  kgl->DeleteTextures(1, &t);
}

TEST_F(ShapeRenderPictures, TexturedTriangleUsesTheCoordinateArray) {
  const unsigned tex = fourColourTexture();
  CRenderShape s = polygon({{8, 8, 0}, {56, 8, 0}, {8, 56, 0}});
  s.setTextureCoord({{0, 0}, {1, 0}, {0, 1}, {0, 0}});
  s.setTexture(tex);
  beginFrame();
  s.render(2, &obj, &scale, false);
  endFrame();
  EXPECT_TRUE(near(rgb(12, 12), 255, 0, 0));
  EXPECT_TRUE(near(rgb(40, 12), 0, 255, 0));
  EXPECT_TRUE(near(rgb(12, 40), 0, 0, 255));
  EXPECT_TRUE(near(rgb(50, 50), 0, 0, 0));  // beyond the hypotenuse
  GLuint t = tex;
  kgl->DeleteTextures(1, &t);
}

TEST_F(ShapeRenderPictures, FaceMeshInItsColourWithHighlight) {
  CRenderShape s;
  s.setFaceType();
  std::vector<AcGePoint3d> v = {{8, 8, 0}, {56, 8, 0}, {56, 56, 0}, {8, 56, 0}};
  std::vector<int> idx = {0, 1, 2, 0, 2, 3};
  std::vector<AcGeVector3d> n(4, AcGeVector3d(0, 0, 1));
  s.setFaceVertexArray(&v);
  s.setFaceTriangleIndexArray(&idx);
  s.setFaceNormalArray(&n);
  s.setClr(CColor(200, 100, 50, 255));
  beginFrame();
  s.render(2, &obj, &scale, false);
  endFrame();
  EXPECT_TRUE(near(rgb(20, 20), 200, 100, 50));
  EXPECT_TRUE(near(rgb(50, 50), 200, 100, 50));
  EXPECT_TRUE(near(rgb(60, 60), 0, 0, 0));

  // Highlighted: the same list through the checkerboard in white.
  s.setHighLight(true);
  beginFrame();
  s.render(2, &obj, &scale, false);
  endFrame();
  int white = 0, none = 0;
  for (int x = 20; x < 30; ++x) {
    const std::vector<int> p = rgb(x, 20);
    white += near(p, 255, 255, 255);
    none += near(p, 0, 0, 0);
  }
  EXPECT_EQ(white, 5);
  EXPECT_EQ(none, 5);
  s.releaseDisplayList();
}
