// Texture manager on a real GL context: files become textures once, rows are
// uploaded bottom-up with the file's alpha, the mipmap builder's failure
// falls back to the driver, deletion, and a textured wall on screen.
#include <unistd.h>

#include <functional>

#include "kxrender/CTextureMgr.h"
#include "platform/ImageWriters.h"
#include "scene/TopViewFixture.h"
#include "support/GLRecorder.h"
#include "support/GLTable.h"

using namespace imgtest;

namespace {

class TextureMgrTest : public TopViewFixture {
 protected:
  void TearDown() override {
    mgr.delAllTexture();
    for (const std::string& f : files) std::remove(f.c_str());
    TopViewFixture::TearDown();
  }
  // A picture saved under a temporary name, in the given encoding.
  std::string file(const std::string& name, const std::vector<uint8_t>& bytes) {
    files.push_back(::testing::TempDir() + "kx_tex_" + std::to_string(::getpid()) + "_" + name);
    EXPECT_TRUE(save(files.back(), bytes));
    return files.back();
  }
  // Level `level` of a texture: its size and RGBA texels, the first row first.
  std::vector<uint8_t> texels(unsigned id, int level, int& w, int& h) {
    glBindTexture(GL_TEXTURE_2D, id);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &w);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &h);
    std::vector<uint8_t> px(size_t(w) * size_t(h) * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    if (!px.empty()) glGetTexImage(GL_TEXTURE_2D, level, GL_RGBA, GL_UNSIGNED_BYTE, px.data());
    return px;
  }
  GLint minFilter(unsigned id) {
    GLint f = 0;
    glBindTexture(GL_TEXTURE_2D, id);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &f);
    return f;
  }
  // The picture's rows in GL's order: the bottom row first.
  static std::vector<uint8_t> bottomUp(const Picture& p) {
    std::vector<uint8_t> rgba = p.rgba(), out;
    for (int y = p.h - 1; y >= 0; --y) out.insert(out.end(), &rgba[size_t(y) * p.w * 4], &rgba[size_t(y + 1) * p.w * 4]);
    return out;
  }

  CTextureMgr mgr;
  std::vector<std::string> files;
};

GLint failingMipmaps(GLenum, GLint, GLsizei, GLsizei, GLenum, GLenum, const void*) { return GLU_OUT_OF_MEMORY; }

}  // namespace

TEST_F(TextureMgrTest, OneTexturePerFileAtTheImageSize) {
  const std::string wall = file("wall.bmp", bmp(paletted(100, 60, 30), {24}));
  ASSERT_TRUE(mgr.addTexture(wall));
  unsigned id = 0;
  int w = 0, h = 0;
  EXPECT_TRUE(mgr.getTexture(wall, id) && glIsTexture(id));
  EXPECT_TRUE(mgr.getTextureSize(wall, w, h) && w == 100 && h == 60);  // whatever size GL scaled it to
  {
    GLRecorder rec(true);
    EXPECT_TRUE(mgr.addTexture(wall));  // registered: nothing is loaded again
    EXPECT_TRUE(rec.calls().empty());
  }
  // Names are compared as given: on this system they are two files.
  const std::string upper = file("WALL.bmp", bmp(paletted(2, 2, 4), {24}));
  unsigned other = 0;
  EXPECT_TRUE(mgr.addTexture(upper) && mgr.getTexture(upper, other) && other != id);

  const std::string broken = file("broken.png", std::vector<uint8_t>(40, 0x89));
  for (const std::string& unknown : {std::string("nowhere.png"), broken}) {
    EXPECT_FALSE(mgr.addTexture(unknown)) << unknown;
    unsigned keep = 77;
    int kw = 5, kh = 6;
    EXPECT_FALSE(mgr.exist(unknown) || mgr.getTexture(unknown, keep) || mgr.getTextureSize(unknown, kw, kh));
    EXPECT_TRUE(keep == 77 && kw == 5 && kh == 6);
  }
}

// When the mipmap builder fails (the last row) the driver makes the mipmaps.
TEST_F(TextureMgrTest, RowsGoUpBottomFirstWithTheFilesAlpha) {
  const Picture colours = paletted(4, 2, 8), alpha = paletted(4, 2, 8, true);
  const Picture odd = paletted(3, 2, 6, true);  // sides no power of two: uploaded at their own size
  KxGLTable* const driver = kgl;
  KxGLTable failing = *kgl;
  failing.gluBuild2DMipmaps = failingMipmaps;
  const struct {
    const char* name;
    std::vector<uint8_t> bytes;
    Picture want;
    KxGLTable* gl;
  } rows[] = {{"opaque.bmp", bmp(alpha, {24}), colours, driver},  // 24 bits: every texel opaque
              {"alpha.png", pngBytes(alpha, {PNG_COLOR_TYPE_RGBA, 8}), alpha, driver},
              {"grey.tif", tiffBytes(grey(4, 2, 8), {PHOTOMETRIC_MINISBLACK}, ::testing::TempDir() + "kx_tex.tif"),
               grey(4, 2, 8), driver},
              {"odd.png", pngBytes(odd, {PNG_COLOR_TYPE_RGBA, 8}), odd, &failing}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    const std::string path = file(r.name, r.bytes);
    kgl = r.gl;
    const bool added = mgr.addTexture(path);
    kgl = driver;
    unsigned id = 0;
    ASSERT_TRUE(added && mgr.getTexture(path, id));
    int w = 0, h = 0;
    const std::vector<uint8_t> got = texels(id, 0, w, h);
    // The file's top-left pixel starts the last row.
    EXPECT_TRUE(w == r.want.w && h == r.want.h && got == bottomUp(r.want));
    // The built mipmaps stay unused; the driver's are used.
    EXPECT_EQ(minFilter(id), r.gl == driver ? GL_LINEAR : GL_LINEAR_MIPMAP_LINEAR);
    GLint wrap = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, &wrap);
    EXPECT_EQ(wrap, GL_REPEAT);
    if (r.gl != driver) {
      texels(id, 1, w, h);
      EXPECT_TRUE(w == 1 && h == 1) << "the driver's mipmap chain is there";
    }
  }
  std::remove((::testing::TempDir() + "kx_tex.tif").c_str());
}

TEST_F(TextureMgrTest, DeletingOneAllAndUnknownNames) {
  const std::string a = file("a.bmp", bmp(paletted(2, 2, 4), {24})), b = file("b.bmp", bmp(paletted(2, 2, 3), {24}));
  ASSERT_TRUE(mgr.addTexture(a) && mgr.addTexture(b));
  unsigned ida = 0, idb = 0;
  mgr.getTexture(a, ida);
  mgr.getTexture(b, idb);
  {
    GLRecorder rec(true);
    mgr.delTexture("unknown.bmp");
    EXPECT_TRUE(rec.calls().empty());
  }
  mgr.delTexture(a);
  EXPECT_TRUE(!mgr.exist(a) && !glIsTexture(ida) && mgr.exist(b) && glIsTexture(idb));
  glDeleteTextures(1, &idb);  // gone behind the manager's back: only forgotten
  {
    GLRecorder rec(true);
    mgr.delAllTexture();
    EXPECT_EQ(rec.count("glDeleteTextures"), 0u);
    EXPECT_FALSE(mgr.exist(b));
  }
  EXPECT_TRUE(mgr.addTexture(a));  // registered anew after deletion
}

TEST_F(TextureMgrTest, AWallShowsItsTexelsWhereTheCoordinatesPutThem) {
  // File rows from the top: red, green over blue, white.
  const std::string path = file("quad.bmp", bmp(Picture{2, 2, {0xFF0000FF, 0x00FF00FF, 0x0000FFFF, 0xFFFFFFFF}}, {24}));
  CTextureMgr& textures = *scene.getTextureMgrPtr();
  ASSERT_TRUE(textures.addTexture(path));
  unsigned id = 0;
  textures.getTexture(path, id);
  // Counter-clockwise from the bottom left of the screen, (0, 0) there.
  CRenderObject* wall = object({at(200, 450), at(600, 450), at(600, 150), at(200, 150)}, CRenderShape::kPgon);
  CRenderShape& s = wall->getShape(0);
  s.setTextureCoord({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
  s.setTexture(id);
  set().addObject(wall);
  scene.render();
  scene.finish();
  // Quadrant centres (texel centres under linear filtering) and which channels are lit.
  const struct { int x, y; const char* lit; } probes[] = {
      {300, 225, "r"}, {500, 225, "g"}, {300, 375, "b"}, {500, 375, "rgb"}};
  for (const auto& p : probes) {
    const std::vector<uint8_t> px = pixel(p.x, p.y);
    ASSERT_EQ(px.size(), 4u);
    const int top = std::max({px[0], px[1], px[2]});
    std::string lit;
    for (int c = 0; c < 3; ++c)
      if (top > 60 && px[size_t(c)] > top / 2) lit += "rgb"[c];
    EXPECT_EQ(lit, p.lit) << p.x << ", " << p.y << ": " << int(px[0]) << " " << int(px[1]) << " " << int(px[2]);
  }
  textures.delAllTexture();
}
