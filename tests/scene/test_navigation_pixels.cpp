// The overlays read back from real frames: the axis tripod and the orbit
// guide, and what navigation does to them.
#include <cmath>

#include "SceneFixture.h"

class OverlayPixels : public SceneFixture {
 protected:
  void SetUp() override {
    window = KxCreateOffscreenWindow(400, 300);
    ASSERT_TRUE(window);
    ASSERT_TRUE(scene.initializeRender(window, false, true));  // with the tripod
    scene.camera()->RotateCaremaRealWorldZ(-0.6, AcGePoint3d::kOrigin);
    scene.camera()->RotateCaremaRight(-0.9, AcGePoint3d::kOrigin);
  }
  void draw(bool guide = false) {
    scene.render();
    if (guide) scene.draw3dOrbit();
    scene.finish();
    ASSERT_TRUE(KxReadWindowPixels(window, px, w, h));
  }
  // Whether pixel (x, y) is lit in channel c alone.
  bool pure(int x, int y, int c) const {
    const uint8_t* p = &px[(size_t(y) * size_t(w) + size_t(x)) * 4];
    return p[c] > 200 && p[(c + 1) % 3] < 60 && p[(c + 2) % 3] < 60;
  }
  // Counts the pure red, green and blue pixels, and the lit ones outside the
  // lower-left 100 x 100 corner.
  int count(int pureRgb[3]) const {
    int outside = 0;
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) {
        const uint8_t* p = &px[(size_t(y) * size_t(w) + size_t(x)) * 4];
        outside += (p[0] || p[1] || p[2]) && (x >= 100 || y < h - 100);
        for (int c = 0; c < 3; ++c) pureRgb[c] += pure(x, y, c);
      }
    return outside;
  }
  std::vector<uint8_t> px;
  int w = 0, h = 0;
};

TEST_F(OverlayPixels, TripodStaysInTheLowerLeftCornerAndTurnsOnlyWithOrbits) {
  draw();
  int axes[3] = {0, 0, 0};
  EXPECT_EQ(count(axes), 0);
  for (int c = 0; c < 3; ++c) EXPECT_GT(axes[c], 10) << "axis " << c;
  const std::vector<uint8_t> before = px;
  scene.mouseMove(CSize(-120, 80));
  scene.mouseWheel(120, CPoint(300, 40));
  draw();
  EXPECT_TRUE(px == before);
  scene.mouseFreeRotate(CSize(60, 25), CPoint(200, 150));
  draw();
  int turned[3] = {0, 0, 0};
  EXPECT_EQ(count(turned), 0);
  EXPECT_GT(turned[0] + turned[1] + turned[2], 30);
  EXPECT_FALSE(px == before);
}

TEST_F(OverlayPixels, OrbitGuideSpansFourFifthsOfTheShorterSide) {
  ASSERT_TRUE(KxResizeOffscreenWindow(window, 500, 300));
  scene.zoomW(CPoint(10, 10), CPoint(200, 90));  // the guide ignores the view's place
  draw(true);
  ASSERT_EQ(w, 500);
  // Radius 0.8 x 150 = 120 pixels. On the row 50 pixels above the centre
  // only the big circle is met (the small ones at its ends reach 12
  // pixels), at 250 -/+ sqrt(120^2 - 50^2).
  int first = -1, last = -1;
  for (int x = 0; x < w; ++x)
    if (pure(x, 100, 1)) {
      if (first < 0) first = x;
      last = x;
    }
  const double reach = std::sqrt(120.0 * 120.0 - 50.0 * 50.0);
  EXPECT_NEAR(first, 250 - reach, 2.0);
  EXPECT_NEAR(last, 250 + reach, 2.0);
  int top = 0;  // the top small circle ends 132 up
  while (top < h && !pure(250, top, 1)) ++top;
  EXPECT_NEAR(top, 150 - 132, 2.0);
}
