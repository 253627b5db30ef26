// The off-screen bitmap, the print queue and pictures rendered in tiles.
#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "SceneFixture.h"
#include "kxrender/KxTowerModel.h"

TEST(DIBSection, RowsAndShrinking) {
  const struct {
    int w, h;
    unsigned long width, height, total;  // 0: no bitmap
  } cases[] = {
      {5, 3, 5, 3, 8},                   // rows padded to 4 pixels
      {8, 2, 8, 2, 8},                   // already a multiple
      {20000, 14000, 16200, 11340, 16200},  // too big twice: 90 %, then 81 %
      {18000, 1113, 16200, 1001, 16200},    // shrinks to exactly 1001
      {18000, 1112, 0, 0, 0},               // would go below 1001: none
      {0, 5, 0, 0, 0},
  };
  for (const auto& c : cases) {
    DIBSection dib;
    const bool made = dib.Create(c.w, c.h, 24);
    EXPECT_EQ(made, c.width != 0) << c.w << "x" << c.h;
    EXPECT_EQ(dib.IsCreated(), made);
    EXPECT_EQ(dib.Width(), c.width);
    EXPECT_EQ(dib.Height(), c.height);
    EXPECT_EQ(dib.GetTotalWidth(), c.total);
    EXPECT_EQ(made, dib.GetBits() != nullptr);
  }
  // Rows bottom-up, blue first: the top left pixel opens the last row.
  DIBSection dib;
  ASSERT_TRUE(dib.Create(5, 3, 24));
  dib.SetPixel(0, 0, 0x332211);
  dib.SetPixel(5, 0, 0xFFFFFF);  // outside: ignored
  const unsigned char* last = static_cast<unsigned char*>(dib.GetBits()) + 2 * dib.GetRowBytes();
  EXPECT_EQ(dib.GetRowBytes(), 24u);
  EXPECT_EQ(std::vector<int>(last, last + 3), (std::vector<int>{0x33, 0x22, 0x11}));
  EXPECT_EQ(dib.GetPixel(0, 0), 0x332211u);
  EXPECT_EQ(dib.GetPixel(-1, 0), 0u);
  DIBSection copy(dib);
  EXPECT_EQ(copy.GetPixel(0, 0), 0x332211u);
  DIBSection big;
  ASSERT_TRUE(dib.ResizeImage(big, 10, 6));
  EXPECT_EQ(big.GetPixel(1, 1), 0x332211u);
  EXPECT_EQ(big.GetPixel(2, 2), 0u);
}

TEST(PrintQueue, NestsAndIgnoresExtraPops) {
  CSceneMgr::popPrintQue();
  EXPECT_TRUE(CSceneMgr::printQueEmpty());
  CSceneMgr::pushPrintQue();
  CSceneMgr::pushPrintQue();
  CSceneMgr::popPrintQue();
  EXPECT_FALSE(CSceneMgr::printQueEmpty());
  CSceneMgr::popPrintQue();
  EXPECT_TRUE(CSceneMgr::printQueEmpty());
}

namespace {
// RGB rows from the top; empty when the file is not a PNG.
std::vector<uint8_t> readPng(const std::string& path, unsigned& width, unsigned& height) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) return {};
  image.format = PNG_FORMAT_RGB;
  std::vector<uint8_t> rgb(PNG_IMAGE_SIZE(image));
  if (!png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr)) return {};
  width = image.width;
  height = image.height;
  return rgb;
}
}  // namespace

// A small tower seen from a corner, roof highlighted, axis tripod on.
class OffscreenScene : public SceneFixture {
 protected:
  void openTower(int width, int height) {
    open(width, height, true);
    scene.setBkColor(0x503C28);
    KxBuildTower(*scene.getObjSetMgr(), 2, 2);
    scene.getObjSetMgr()->freshBox();
    // The roof highlighted: its 32 x 32 stipple must stay in step across tiles.
    scene.getObjSetMgr()->objects().rbegin()->second->highLight(true);
    const AcGeVector3d forward = AcGeVector3d(-1.0, -1.0, -0.8).normal();
    const AcGeVector3d up = (AcGeVector3d::kZAxis - forward * forward.z).normal();
    scene.camera()->ReSet(AcGeVector3d(0.0, 0.0, 0.0), up, forward);
    scene.zoomE();
  }
  void TearDown() override {
    scene.ClearDibData();
    SceneFixture::TearDown();
  }
};

TEST_F(OffscreenScene, BitmapIsLandscapeKeepsItsFirstSizeAndMatchesTheWindowFrame) {
  openTower(200, 120);
  const std::vector<uint8_t> before = frameRGBA();
  scene.setDibSize(0, 10);
  EXPECT_FALSE(CSceneMgr::getDibPtr()->IsCreated());
  scene.setDibSize(600, 800);
  EXPECT_EQ(CSceneMgr::getDibPtr()->Width(), 800u);
  EXPECT_EQ(CSceneMgr::getDibPtr()->Height(), 600u);
  const HGLRC bitmapContext = wglGetCurrentContext();
  EXPECT_TRUE(bitmapContext && bitmapContext != scene.getHRC());
  scene.setDibSize(1000, 200);
  EXPECT_EQ(CSceneMgr::getDibPtr()->Width(), 800u);
  EXPECT_EQ(CSceneMgr::getDibPtr()->Height(), 600u);
  scene.ClearDibData();
  EXPECT_EQ(wglGetCurrentContext(), scene.getHRC());
  // Made again at the window's size (cleared, it takes a new size), it draws the window's frame.
  scene.setDibSize(200, 120);
  scene.renderToDib();
  const DIBSection& dib = *CSceneMgr::getDibPtr();
  ASSERT_EQ(dib.Width(), 200u);
  // The window's frame without alpha, and the bitmap's rows (bottom-up, BGR)
  // turned the same way.
  std::vector<uint8_t> rgb, fromDib;
  for (size_t i = 0; i < before.size(); i += 4) rgb.insert(rgb.end(), &before[i], &before[i + 3]);
  for (int y = 119; y >= 0; --y)
    for (int x = 0; x < 200; ++x) {
      const uint8_t* bgr = static_cast<const uint8_t*>(dib.GetBits()) + size_t(y) * dib.GetRowBytes() + size_t(x) * 3;
      fromDib.insert(fromDib.end(), {bgr[2], bgr[1], bgr[0]});
    }
  EXPECT_TRUE(fromDib == rgb);
  // Written out, it is the same frame again.
  const std::string path = ::testing::TempDir() + "kx_dib.png";
  ASSERT_TRUE(KxWriteDibPng(dib, path.c_str()));
  unsigned w = 0, h = 0;
  EXPECT_TRUE(readPng(path, w, h) == rgb);
  std::remove(path.c_str());
  // Back in the window, its lists are rebuilt: the same frame again.
  scene.ClearDibData();
  EXPECT_EQ(frameRGBA(), before);
}

namespace {
std::vector<uint8_t> picture(CSceneMgr& scene, int w, int h, int tileW, int tileH) {
  std::vector<uint8_t> rgb(size_t(w) * size_t(h) * 3);
  int next = 0;
  const bool ok = scene.renderImageRows(w, h, tileW, tileH, [&](int y, const unsigned char* row) {
    if (y != next++) return false;  // rows arrive in order, each once
    std::copy(row, row + size_t(w) * 3, rgb.begin() + std::ptrdiff_t(size_t(y) * size_t(w) * 3));
    return true;
  });
  EXPECT_TRUE(ok && next == h);
  return rgb;
}
}  // namespace

TEST_F(OffscreenScene, TiledPictureMatchesOnePieceAndExportWritesPngOrNothing) {
  openTower(80, 60);
  frameRGBA();
  const int W = 4000, H = 3000, TW = 1301, TH = 750;  // made 1280 x 736, the top band 56 rows
  const std::vector<uint8_t> whole = picture(scene, W, H, W, H);
  const std::vector<uint8_t> tiled = picture(scene, W, H, TW, TH);
  // Each tile's own projection rounds vertices a little differently, which
  // flips single pixels on coincident faces; a misplaced tile or a gap
  // moves whole edges. Count pixels off by more than one level.
  std::vector<int> seamRows(size_t(H) + 1), seamCols(size_t(W) + 1);
  int off = 0;
  for (int y = 0; y < H; ++y)
    for (int x = 0; x < W; ++x) {
      const size_t at = (size_t(y) * size_t(W) + size_t(x)) * 3;
      bool differs = false;
      for (int c = 0; c < 3; ++c) differs = differs || std::abs(int(whole[at + c]) - int(tiled[at + c])) > 1;
      if (!differs) continue;
      ++off;
      // Tiles are counted from the lower left corner.
      const int below = H - 1 - y, tx = x % 1280, ty = below % 736;
      if (ty == 0 || ty == 735) ++seamRows[size_t(y)];
      if (tx == 0 || tx == 1279) ++seamCols[size_t(x)];
    }
  EXPECT_LT(off, W * H / 1000);
  for (int y = 0; y < H; ++y) EXPECT_LT(seamRows[size_t(y)], W / 20) << "row " << y;
  for (int x = 0; x < W; ++x) EXPECT_LT(seamCols[size_t(x)], H / 20) << "column " << x;
  // The tripod's red axis once, in the lower left corner of the picture.
  auto redPixels = [&](const std::vector<uint8_t>& rgb, bool corner) {
    int n = 0;
    for (int y = 0; y < H; ++y)
      for (int x = 0; x < W; ++x) {
        const uint8_t* p = &rgb[(size_t(y) * size_t(W) + size_t(x)) * 3];
        n += (x < 100 && y >= H - 100) == corner && p[0] > 200 && p[1] < 80 && p[2] < 80;
      }
    return n;
  };
  EXPECT_GT(redPixels(whole, true), 20);
  EXPECT_EQ(redPixels(tiled, true), redPixels(whole, true));
  EXPECT_EQ(redPixels(tiled, false), redPixels(whole, false));
  EXPECT_EQ(wglGetCurrentContext(), scene.getHRC());  // the window's again
  const std::string path = ::testing::TempDir() + "kx_export.png";
  ASSERT_TRUE(scene.renderToImageTiled(90, 70, path.c_str()));
  unsigned w = 0, h = 0;
  const std::vector<uint8_t> read = readPng(path, w, h);
  EXPECT_EQ(w, 90u);
  EXPECT_EQ(h, 70u);
  EXPECT_EQ(read, picture(scene, 90, 70, 0, 0));
  std::remove(path.c_str());
  const struct {
    int w, h;
    std::string path;
  } bad[] = {{0, 70, path}, {90, -1, path}, {1000001, 10, path}, {90, 70, "/nonexistent/dir/x.png"}};
  for (const auto& b : bad) {
    EXPECT_FALSE(scene.renderToImageTiled(b.w, b.h, b.path.c_str()));
    EXPECT_EQ(std::fopen(b.path.c_str(), "rb"), nullptr);
  }
}
