#pragma once
#include <gtest/gtest.h>

#include <vector>

#include "kxrender/CSceneMgr.h"
#include "platform/Win32Window.h"

// A scene bound to an off-screen window of the given size (with the axis
// tripod when asked), released and destroyed at the end of the test.
class SceneFixture : public ::testing::Test {
 protected:
  void open(int width, int height, bool tripod = false) {
    window = KxCreateOffscreenWindow(width, height);
    ASSERT_TRUE(window);
    ASSERT_TRUE(scene.initializeRender(window, false, tripod));
  }
  void TearDown() override {
    if (scene.getHRC()) scene.glRelease();
    KxDestroyWindow(window);
  }
  // Pixel (x, y) from the top left of the last presented frame, RGBA.
  std::vector<uint8_t> pixel(int x, int y) {
    std::vector<uint8_t> px;
    int w = 0, h = 0;
    if (!KxReadWindowPixels(window, px, w, h) || x < 0 || y < 0 || x >= w || y >= h) return {};
    const size_t at = (size_t(y) * size_t(w) + size_t(x)) * 4;
    return {px[at], px[at + 1], px[at + 2], px[at + 3]};
  }

  HWND window = nullptr;
  CSceneMgr scene;
};
