// Shapes drawn into real 64 x 64 frames and read back: holes stay open,
// wire frames follow every contour, highlights are checkerboards, hit lines
// are dashed, textures are mapped.
#include "test_shape_render_fixture.h"

using namespace shapetest;

namespace {
typedef std::vector<std::pair<int, int>> Points;
}  // namespace

class ShapeRenderPictures : public ShapeFrame {
 protected:
  // Outer (8, 8)-(56, 56) with the hole (24, 24)-(40, 40); edges on pixel
  // centres so the wire frame lands on whole pixels.
  CRenderShape ring(const CColor& clr) {
    return polygon(rect(8.5, 8.5, 55.5, 55.5), {rect(24.5, 24.5, 39.5, 39.5)}, clr);
  }
  void draw(CRenderShape& s, int mode, bool flag = false) {
    beginFrame();
    s.render(mode, &obj, &scale, flag);
    endFrame();
  }
};

TEST_F(ShapeRenderPictures, FillLeavesTheHoleOpenWireFrameFollowsEveryContour) {
  const CColor cyan(0, 255, 255, 255);
  const struct { int mode; CRenderShape s; Points lit, dark; } rows[] = {
      {2, ring(cyan), {{12, 12}, {50, 30}, {30, 50}}, {{32, 32}, {27, 36}, {3, 3}, {60, 32}}},  // strips of any size
      {2, polygon(rect(8, 8, 56, 56), {}, cyan), {{12, 12}, {52, 12}, {12, 52}, {52, 52}}, {{3, 3}, {60, 60}}},  // one quad strip
      {0, ring(cyan), {{8, 16}, {8, 32}, {8, 48}, {55, 16}, {55, 32}, {55, 48}, {24, 32}, {39, 32}, {32, 24}}, {{16, 16}, {32, 32}}}};
  for (const auto& r : rows) {
    CRenderShape s = r.s;
    draw(s, r.mode);
    for (const auto& p : r.lit) EXPECT_TRUE(near(rgb(p.first, p.second), 0, 255, 255)) << r.mode << ": " << p.first << ", " << p.second;
    for (const auto& p : r.dark) EXPECT_TRUE(near(rgb(p.first, p.second), 0, 0, 0)) << r.mode << ": " << p.first << ", " << p.second;
  }
}

TEST_F(ShapeRenderPictures, HighlightIsACheckerboardOverTheFill) {
  CRenderShape s = ring(CColor(255, 0, 0, 255));  // sum 255: white overlay
  s.setHighLight(true);
  obj.setRenderedFlags(true, false);
  draw(s, 2);
  int white = 0, red = 0;
  for (int y = 10; y < 20; ++y)
    for (int x = 10; x < 20; ++x) {
      const bool isWhite = near(rgb(x, y), 255, 255, 255);
      white += isWhite;
      red += near(rgb(x, y), 255, 0, 0);
      // Neighbours alternate; diagonal neighbours agree.
      EXPECT_NE(isWhite, near(rgb(x + 1, y), 255, 255, 255)) << x << "," << y;
      EXPECT_EQ(isWhite, near(rgb(x + 1, y + 1), 255, 255, 255)) << x << "," << y;
    }
  EXPECT_TRUE(white == 50 && red == 50);
  EXPECT_TRUE(near(rgb(32, 32), 0, 0, 0));  // the hole gets no overlay either
  draw(s, 2, true);  // suppressed by the flag: the plain fill
  for (int x = 10; x < 14; ++x) EXPECT_TRUE(near(rgb(x, 12), 255, 0, 0)) << x;
}

TEST_F(ShapeRenderPictures, HitWireFrameIsDashedFourOnFourOff) {
  CRenderShape s = polyline({{0, 32.5, 0}, {64, 32.5, 0}}, CColor(255, 255, 0, 255));
  for (bool hit : {true, false}) {
    s.setHit(hit);
    draw(s, 0);
    std::string row, expected;  // 0x0F0F from the line's start: four lit, four dark, repeating
    for (int x = 0; x < 64; ++x) {
      row += near(rgb(x, 32), 255, 255, 0) ? '#' : '.';
      expected += !hit || (x / 4) % 2 == 0 ? '#' : '.';
    }
    EXPECT_EQ(row, expected);
  }
}

TEST_F(ShapeRenderPictures, TexturesMapTheirCornersAndAreSwitchedOffAfter) {
  // 2 x 2 texels: red, green on the bottom row; blue, yellow on the top.
  const unsigned char px[16] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 0, 255};
  GLuint tex = 0;
  kgl->GenTextures(1, &tex);
  kgl->BindTexture(GL_TEXTURE_2D, tex);
  kgl->PixelStorei(GL_UNPACK_ALIGNMENT, 1);
  for (GLenum p : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) kgl->TexParameteri(GL_TEXTURE_2D, p, GL_NEAREST);
  for (GLenum p : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) kgl->TexParameteri(GL_TEXTURE_2D, p, GL_CLAMP_TO_EDGE);
  kgl->TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, px);
  kgl->BindTexture(GL_TEXTURE_2D, 0);
  // Probes: x, y and the expected red, green, blue.
  const struct { CRenderShape s; std::vector<AcGePoint2d> uv; std::vector<std::vector<int>> probes; } rows[] = {
      {polygon(rect(8, 8, 56, 56), {}, CColor(40, 40, 40, 255)), {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}},
       {{12, 12, 255, 0, 0}, {52, 12, 0, 255, 0}, {12, 52, 0, 0, 255}, {52, 52, 255, 255, 0}, {3, 3, 0, 0, 0}}},
      {polygon({{8, 8, 0}, {56, 8, 0}, {8, 56, 0}}), {{0, 0}, {1, 0}, {0, 1}, {0, 0}},
       {{12, 12, 255, 0, 0}, {40, 12, 0, 255, 0}, {12, 40, 0, 0, 255}, {50, 50, 0, 0, 0}}}};  // beyond the hypotenuse
  for (const auto& r : rows) {
    CRenderShape s = r.s;
    s.setTextureCoord(r.uv);
    s.setTexture(tex);
    draw(s, 2);
    for (const auto& p : r.probes) EXPECT_TRUE(near(rgb(p[0], p[1]), p[2], p[3], p[4])) << r.uv.size() << ": " << p[0] << ", " << p[1];
    GLboolean on = GL_TRUE;
    kgl->GetBooleanv(GL_TEXTURE_2D, &on);
    EXPECT_FALSE(on);
  }
  kgl->DeleteTextures(1, &tex);
}
