// Shapes drawn into real 64 x 64 frames and read back: holes stay open,
// wire frames follow every contour, highlights are checkerboards, hit lines
// are dashed, textures are mapped; face meshes compile their display list
// once and replay it, never make one in wire frame, and release it safely.
#include "test_shape_render_fixture.h"

using namespace shapetest;

namespace {
typedef std::vector<std::pair<int, int>> Points;
const std::string kPush = "glPushAttrib(2928)";  // 0x0B70

// Two triangles covering (8, 8)-(56, 56), with its outline as the edge line.
CRenderShape quadFace(const CColor& clr = CColor(0, 200, 0, 255)) {
  CRenderShape s = faceMesh({{8, 8, 0}, {56, 8, 0}, {56, 56, 0}, {8, 56, 0}}, {0, 1, 2, 0, 2, 3});
  s.setClr(clr);
  s.addHitLine({{8, 8, 0}, {56, 8, 0}, {56, 56, 0}, {8, 56, 0}, {8, 8, 0}});
  return s;
}

// The recorded calls from the first `from` call to the first `to` call.
std::vector<std::string> between(const GLRecorder& rec, const std::string& from, const std::string& to) {
  const int a = rec.find(from), b = rec.find(to);
  const std::vector<std::string> all = texts(rec);
  return a < 0 || b < a ? std::vector<std::string>() : std::vector<std::string>(all.begin() + a, all.begin() + b + 1);
}
}  // namespace

class ShapeRenderFace : public ShapeFrame {};

TEST_F(ShapeRenderFace, ListIsCompiledOnceThenCalledAndBadIndicesAreDropped) {
  CRenderShape s = quadFace();
  std::vector<int> idx = {0, 1, 2, 0, 2, 99, 0, -1, 3, 0, 2, 3, 1};  // two good triangles and a stray index
  s.setFaceTriangleIndexArray(&idx);
  s.setZOffset(2.5f);
  beginFrame();
  GLRecorder rec(true);
  s.render(2, &obj, &scale, false);
  const unsigned list = s.getFaceDisplayList();
  ASSERT_NE(list, 0u);
  EXPECT_EQ(rec.count("glGenLists"), 1u);
  std::vector<std::string> expected = {"glNewList(" + num(list) + ", " + num(GL_COMPILE_AND_EXECUTE) + ")",
                                       "glBegin(" + num(GL_TRIANGLES) + ")"};
  const char* corners[] = {"8, 8", "56, 8", "56, 56", "8, 56"};
  for (int i : {0, 1, 2, 0, 2, 3}) {
    expected.push_back("glNormal3f(0, 0, 1)");
    expected.push_back("glVertex3f(" + std::string(corners[i]) + ", 2.5)");
  }
  expected.push_back("glEnd()");
  expected.push_back("glEndList()");
  EXPECT_EQ(between(rec, "glNewList", "glEndList"), expected);
  rec.clear();
  s.render(4, &obj, &scale, false);
  EXPECT_EQ(rec.count("glGenLists") + rec.count("glNewList") + rec.count("glBegin"), 0u);
  EXPECT_EQ(countText(rec, "glCallList(" + num(list) + ")"), 1u);
  endFrame();
  EXPECT_TRUE(near(rgb(32, 32), 0, 200, 0));  // in the face's colour
  s.releaseDisplayList();
}

TEST_F(ShapeRenderFace, WireFrameDrawsEdgesAndNeverAList) {
  CRenderShape s = quadFace();
  beginFrame();
  GLRecorder rec(true);
  s.render(0, &obj, &scale, false);
  EXPECT_EQ(rec.count("glGenLists") + rec.count("glIsList") + rec.count("glCallList"), 0u);
  EXPECT_EQ(countText(rec, "glDrawArrays(" + num(GL_LINE_STRIP) + ", 0, 5)"), 1u);
  endFrame();
  EXPECT_TRUE(near(rgb(32, 32), 0, 0, 0));  // edges only
  EXPECT_TRUE(near(rgb(8, 32), 0, 200, 0) || near(rgb(7, 32), 0, 200, 0));
  s.setHit(true);  // a hit face leaves its edges to the dashed outline pass
  rec.clear();
  s.render(0, &obj, &scale, false);
  EXPECT_EQ(rec.count("glDrawArrays"), 0u);
  EXPECT_EQ(scene.getObjSetMgr()->outlineShapes(), (std::vector<const CRenderShape*>{&s}));
  EXPECT_EQ(s.getFaceDisplayList(), 0u);
}

TEST_F(ShapeRenderFace, HighlightWrapsTheListCallInTheStipple) {
  CRenderShape s = quadFace(CColor(100, 100, 100, 255));  // sum 300: a white overlay
  s.setHighLight(true);
  beginFrame();
  s.render(2, &obj, &scale, false);  // compiles
  GLRecorder rec(true);
  s.render(2, &obj, &scale, false);
  const std::string call = "glCallList(" + num(s.getFaceDisplayList()) + ")";
  EXPECT_EQ(between(rec, "glColor3ub", "glCallList"),
            (std::vector<std::string>{"glColor3ub(255, 255, 255)", "glEnable(" + num(GL_POLYGON_STIPPLE) + ")",
                                      "glPolygonStipple(1)", "glIsList(" + num(s.getFaceDisplayList()) + ")", call}));
  EXPECT_EQ(rec.calls().back().text(), "glDisable(" + num(GL_POLYGON_STIPPLE) + ")");
  EXPECT_EQ(countText(rec, call), 1u);
  endFrame();
  s.releaseDisplayList();
}

TEST_F(ShapeRenderFace, BorderAndSceneAlphaAreCompiledIn) {
  scene.setTransparent(90);
  CRenderShape s = quadFace(CColor(1, 2, 3, 255));
  s.setShowBorder(true);
  s.setBorderColor(CColor(200, 0, 0, 255));
  s.setBorderWidth(2.0, true);  // never scaled inside the list
  s.setZOffset(1.0f);
  beginFrame();
  GLRecorder rec(true);
  const double big = 300.0;
  s.render(2, &obj, &big, false);
  EXPECT_EQ(between(rec, "glPushAttrib", "glEndList"),
            (std::vector<std::string>{kPush, "glDepthRange(0.09995, 1)", "glLineWidth(2)", "glColor4ub(200, 0, 0, 90)",
                                      "glBegin(" + num(GL_LINE_STRIP) + ")", "glVertex3d(8, 8, 1)", "glVertex3d(56, 8, 1)",
                                      "glVertex3d(56, 56, 1)", "glVertex3d(8, 56, 1)", "glVertex3d(8, 8, 1)", "glEnd()",
                                      "glColor4ub(1, 2, 3, 90)", "glLineWidth(1.20000005)", "glPopAttrib()",
                                      "glEndList()"}));
  endFrame();
  EXPECT_TRUE(near(rgb(8, 32), 200, 0, 0, 40) || near(rgb(7, 32), 200, 0, 0, 40));
  s.releaseDisplayList();
}

TEST_F(ShapeRenderFace, TextureOnlyWithAMatchingCoordinateArray) {
  CRenderShape s = quadFace();
  std::vector<AcGePoint2d> uv = {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, few = {{0, 0}, {1, 0}};
  s.setFaceTexCoordArray(&uv);
  s.setTexture(9u);
  beginFrame();
  GLRecorder rec(true);
  s.render(2, &obj, &scale, false);
  std::vector<std::string> list = between(rec, "glNewList", "glEndList");
  ASSERT_GE(list.size(), 4u);
  EXPECT_EQ(list[1], "glEnable(" + num(GL_TEXTURE_2D) + ")");
  EXPECT_EQ(list[2], "glBindTexture(3553, 9)");
  EXPECT_EQ(list[list.size() - 2], "glDisable(" + num(GL_TEXTURE_2D) + ")");
  EXPECT_EQ(rec.count("glTexCoord2f"), 6u);
  EXPECT_EQ(findText(rec, "glTexCoord2f(1, 1)"), findText(rec, "glVertex3f(56, 56, 0)") - 1);
  s.releaseDisplayList();
  s.setFaceTexCoordArray(&few);
  rec.clear();
  s.render(2, &obj, &scale, false);
  EXPECT_EQ(rec.count("glTexCoord2f") + rec.count("glBindTexture"), 0u);
  endFrame();
  s.releaseDisplayList();
}

TEST_F(ShapeRenderFace, ReleaseDeletesOnceAndForgetsStaleNames) {
  CRenderShape s = quadFace();
  beginFrame();
  s.render(2, &obj, &scale, false);
  unsigned list = s.getFaceDisplayList();
  ASSERT_TRUE(glIsList(list));
  GLRecorder rec(true);
  s.releaseDisplayList();
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glIsList(" + num(list) + ")", "glDeleteLists(" + num(list) + ", 1)"}));
  EXPECT_TRUE(s.getFaceDisplayList() == 0u && !glIsList(list));
  rec.clear();
  s.releaseDisplayList();  // twice: nothing
  EXPECT_TRUE(rec.calls().empty());
  s.render(2, &obj, &scale, false);  // a name whose list is gone already: only forgotten
  glDeleteLists(s.getFaceDisplayList(), 1);
  rec.clear();
  s.releaseDisplayList();
  EXPECT_TRUE(rec.count("glDeleteLists") == 0u && s.getFaceDisplayList() == 0u);
  s.render(2, &obj, &scale, false);  // reValueDispList forgets without deleting; the next draw compiles anew
  list = s.getFaceDisplayList();
  s.reValueDispList();
  EXPECT_TRUE(s.getFaceDisplayList() == 0u && glIsList(list));
  s.render(2, &obj, &scale, false);
  EXPECT_NE(s.getFaceDisplayList(), list);
  glDeleteLists(list, 1);
  s.releaseDisplayList();
  endFrame();
}

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
  for (int y = 10; y < 20; ++y)
    for (int x = 10; x < 20; ++x) {  // white and red alternate; diagonal neighbours agree
      const bool isWhite = near(rgb(x, y), 255, 255, 255);
      EXPECT_TRUE(isWhite || near(rgb(x, y), 255, 0, 0)) << x << "," << y;
      EXPECT_NE(isWhite, near(rgb(x + 1, y), 255, 255, 255)) << x << "," << y;
      EXPECT_EQ(isWhite, near(rgb(x + 1, y + 1), 255, 255, 255)) << x << "," << y;
    }
  EXPECT_TRUE(near(rgb(32, 32), 0, 0, 0));  // the hole gets no overlay either
}

TEST_F(ShapeRenderPictures, HitWireFrameIsDashedFourOnFourOff) {
  CRenderShape s = polyline({{0, 32.5, 0}, {64, 32.5, 0}}, CColor(255, 255, 0, 255));
  s.setHit(true);
  draw(s, 0);
  std::string row, expected;  // 0x0F0F from the line's start: four lit, four dark, repeating
  for (int x = 0; x < 64; ++x) {
    row += near(rgb(x, 32), 255, 255, 0) ? '#' : '.';
    expected += (x / 4) % 2 == 0 ? '#' : '.';
  }
  EXPECT_EQ(row, expected);
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
  // A triangle takes the texture coordinate array (quads give theirs one by
  // one; the texture tests' wall shows those).
  CRenderShape s = polygon({{8, 8, 0}, {56, 8, 0}, {8, 56, 0}});
  s.setTextureCoord({{0, 0}, {1, 0}, {0, 1}, {0, 0}});
  s.setTexture(tex);
  draw(s, 2);
  // Probes: x, y and the expected red, green, blue; the last beyond the hypotenuse.
  const std::vector<int> probes[] = {{12, 12, 255, 0, 0}, {40, 12, 0, 255, 0}, {12, 40, 0, 0, 255}, {50, 50, 0, 0, 0}};
  for (const auto& p : probes) EXPECT_TRUE(near(rgb(p[0], p[1]), p[2], p[3], p[4])) << p[0] << ", " << p[1];
  GLboolean on = GL_TRUE;
  kgl->GetBooleanv(GL_TEXTURE_2D, &on);
  EXPECT_FALSE(on);
  kgl->DeleteTextures(1, &tex);
}
