// What navigation does to the drawn overlays, read back from real frames.
#include <cmath>

#include "SceneFixture.h"

namespace {

// The lit pixels of the lower-left 100 x 100 corner, where the tripod sits.
std::vector<uint8_t> corner(HWND window) {
  std::vector<uint8_t> px, out;
  int w = 0, h = 0;
  if (!KxReadWindowPixels(window, px, w, h)) return out;
  for (int y = h - 100; y < h; ++y)
    for (int x = 0; x < 100; ++x)
      for (int k = 0; k < 3; ++k) out.push_back(px[(size_t(y) * size_t(w) + size_t(x)) * 4 + size_t(k)]);
  return out;
}

size_t lit(const std::vector<uint8_t>& v) {
  size_t n = 0;
  for (uint8_t c : v) n += c != 0;
  return n;
}

}  // namespace

class NavigationPixels : public SceneFixture {
 protected:
  void SetUp() override {
    window = KxCreateOffscreenWindow(400, 300);
    ASSERT_TRUE(window);
    ASSERT_TRUE(scene.initializeRender(window, false, true));  // with the tripod
    scene.camera()->RotateCaremaRealWorldZ(-0.6, AcGePoint3d::kOrigin);
    scene.camera()->RotateCaremaRight(-0.9, AcGePoint3d::kOrigin);
  }
  std::vector<uint8_t> draw() {
    scene.render();
    scene.finish();
    return corner(window);
  }
};

TEST_F(NavigationPixels, TripodIgnoresPansButTurnsWithOrbits) {
  const std::vector<uint8_t> before = draw();
  ASSERT_GT(lit(before), 30u);
  scene.mouseMove(CSize(-120, 80));
  scene.mouseWheel(120, CPoint(300, 40));
  const std::vector<uint8_t> panned = draw();
  EXPECT_TRUE(panned == before);
  scene.mouseFreeRotate(CSize(60, 25), CPoint(200, 150));
  const std::vector<uint8_t> turned = draw();
  EXPECT_GT(lit(turned), 30u);
  EXPECT_FALSE(turned == before);
}

TEST_F(NavigationPixels, OrbitGuideSpansFourFifthsOfTheShorterSide) {
  ASSERT_TRUE(KxResizeOffscreenWindow(window, 500, 300));
  scene.zoomW(CPoint(10, 10), CPoint(200, 90));  // the guide ignores the view's place
  scene.render();
  scene.draw3dOrbit();
  scene.finish();
  std::vector<uint8_t> px;
  int w = 0, h = 0;
  ASSERT_TRUE(KxReadWindowPixels(window, px, w, h));
  ASSERT_EQ(w, 500);
  // Radius 0.8 x 150 = 120 pixels. On the row 50 pixels above the centre
  // only the big circle is met (the small ones at its ends reach 12
  // pixels), at 250 -/+ sqrt(120^2 - 50^2).
  auto green = [&](int x, int y) {
    const uint8_t* p = &px[(size_t(y) * size_t(w) + size_t(x)) * 4];
    return p[1] > 200 && p[0] < 60 && p[2] < 60;
  };
  const int row = 150 - 50;
  int first = -1, last = -1;
  for (int x = 0; x < w; ++x)
    if (green(x, row)) {
      if (first < 0) first = x;
      last = x;
    }
  const double reach = std::sqrt(120.0 * 120.0 - 50.0 * 50.0);
  EXPECT_NEAR(first, 250 - reach, 2.0);
  EXPECT_NEAR(last, 250 + reach, 2.0);
  // The column through the centre: the top small circle ends 132 up.
  first = -1;
  for (int y = 0; y < h && first < 0; ++y)
    if (green(250, y)) first = y;
  EXPECT_NEAR(first, 150 - 132, 2.0);
}
