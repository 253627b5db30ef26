#pragma once
#include <epoxy/gl.h>
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
  void frame() {
    scene.render();
    scene.finish();
  }
  // A frame drawn and read back whole, RGBA rows from the top.
  std::vector<uint8_t> frameRGBA() {
    frame();
    std::vector<uint8_t> px;
    int w = 0, h = 0;
    EXPECT_TRUE(KxReadWindowPixels(window, px, w, h));
    return px;
  }
  // Pixel (x, y) from the top left of the last presented frame, RGBA.
  std::vector<uint8_t> pixel(int x, int y) {
    std::vector<uint8_t> px;
    int w = 0, h = 0;
    if (!KxReadWindowPixels(window, px, w, h) || x < 0 || y < 0 || x >= w || y >= h) return {};
    const size_t at = (size_t(y) * size_t(w) + size_t(x)) * 4;
    return {px[at], px[at + 1], px[at + 2], px[at + 3]};
  }
  // Display list names alive in the current context among the first 4,096.
  static size_t liveLists() {
    size_t n = 0;
    for (unsigned id = 1; id <= 4096; ++id) n += glIsList(id) == GL_TRUE;
    return n;
  }
  // The same for buffer objects.
  static size_t liveBuffers() {
    size_t n = 0;
    for (unsigned id = 1; id <= 4096; ++id) n += glIsBuffer(id) == GL_TRUE;
    return n;
  }

 public:  // reached from table rows' builders
  CObjectSetMgr& set() { return *scene.getObjSetMgr(); }

 protected:
  HWND window = nullptr;
  CSceneMgr scene;
};
