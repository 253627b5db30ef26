#include <epoxy/egl.h>
#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <vector>

#include "platform/Win32Window.h"
#include "platform/WindowHelpers.h"

namespace {
struct Window {
  HWND hwnd;
  Window(int w, int h) : hwnd(KxCreateOffscreenWindow(w, h)) {}
  ~Window() { KxDestroyWindow(hwnd); }
};
}  // namespace

TEST(OffscreenWindow, ClientRectResizeAndDestroy) {
  HWND w = KxCreateOffscreenWindow(320, 200);
  ASSERT_TRUE(w);
  EXPECT_EQ(clientSize(w), "320x200");
  EXPECT_TRUE(KxResizeOffscreenWindow(w, 0, 50));  // sizes below 1 become 1
  EXPECT_EQ(clientSize(w), "1x50");
  EXPECT_FALSE(KxResizeOffscreenWindow(w, 100000, 10));
  EXPECT_EQ(clientSize(w), "1x50");
  EXPECT_EQ(KxCreateOffscreenWindow(16385, 10), nullptr);
  HDC dc = GetDC(w);
  EXPECT_EQ(GetDC(w), dc);  // one DC per window
  EXPECT_EQ(WindowFromDC(dc), w);
  EXPECT_EQ(ReleaseDC(w, dc), 1);
  KxDestroyWindow(w);
  EXPECT_FALSE(IsWindow(w));
  EXPECT_EQ(clientSize(w), "none");
  EXPECT_EQ(GetDC(w), nullptr);
  EXPECT_FALSE(IsWindow(nullptr));
  KxDestroyWindow(w);  // twice: ignored
}

TEST(PixelFormat, NumberedFromOneAndSetOnce) {
  Window win(64, 64);
  HDC dc = GetDC(win.hwnd);
  const int count = DescribePixelFormat(dc, 1, 0, nullptr);
  ASSERT_GT(count, 0);
  PIXELFORMATDESCRIPTOR pfd;
  EXPECT_EQ(DescribePixelFormat(dc, 0, sizeof pfd, &pfd), 0);
  EXPECT_EQ(DescribePixelFormat(dc, count + 1, sizeof pfd, &pfd), 0);
  const int chosen = chooseFormat(dc, 24, 8, 24, 8);
  ASSERT_GE(chosen, 1);
  ASSERT_EQ(DescribePixelFormat(dc, chosen, sizeof pfd, &pfd), count);
  EXPECT_TRUE(pfd.dwFlags & PFD_DOUBLEBUFFER);
  EXPECT_GE(pfd.cDepthBits, 16);
  EXPECT_GE(pfd.cStencilBits, 8);
  EXPECT_EQ(pfd.cRedBits, 8);  // the closest match, not a deeper colour format

  EXPECT_EQ(GetPixelFormat(dc), 0);
  EXPECT_FALSE(SetPixelFormat(dc, count + 1, &pfd));
  EXPECT_TRUE(SetPixelFormat(dc, chosen, &pfd));
  EXPECT_TRUE(SetPixelFormat(dc, chosen, &pfd));  // the same again is fine
  if (count > 1) EXPECT_FALSE(SetPixelFormat(dc, chosen == 1 ? 2 : 1, &pfd));
  EXPECT_EQ(GetPixelFormat(dc), chosen);
}

TEST(Context, DrawSwapAndReadBack) {
  Window win(40, 30);
  HDC dc = GetDC(win.hwnd);
  EXPECT_EQ(wglCreateContext(dc), nullptr);  // no pixel format yet
  ASSERT_TRUE(SetPixelFormat(dc, chooseFormat(dc, 24, 8, 24, 8), nullptr));
  HGLRC rc = wglCreateContext(dc);
  ASSERT_TRUE(rc);
  ASSERT_TRUE(wglMakeCurrent(dc, rc));
  EXPECT_EQ(wglGetCurrentContext(), rc);
  EXPECT_EQ(wglGetCurrentDC(), dc);

  // Left half red, right half blue, then present.
  glClearColor(0, 0, 1, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  glEnable(GL_SCISSOR_TEST);
  glScissor(0, 0, 20, 30);
  glClearColor(1, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  glDisable(GL_SCISSOR_TEST);
  // Presenting copies nothing back: the context's pixel-store state is
  // untouched, and reading the frame leaves it as it was too.
  glPixelStorei(GL_PACK_ALIGNMENT, 8);
  ASSERT_TRUE(SwapBuffers(dc));
  GLint alignment = 0;
  glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
  EXPECT_EQ(alignment, 8);
  // Drawing after the swap does not change what the window shows.
  glClearColor(0, 1, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);

  std::vector<uint8_t> px;
  int w = 0, h = 0;
  ASSERT_TRUE(KxReadWindowPixels(win.hwnd, px, w, h));
  ASSERT_EQ(w, 40);
  ASSERT_EQ(h, 30);
  EXPECT_EQ(px[0], 255);                       // top-left red
  EXPECT_EQ(px[(29 * 40 + 39) * 4 + 2], 255);  // bottom-right blue
  glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
  EXPECT_EQ(alignment, 8);
  // The frame being drawn is still there after the read.
  ASSERT_TRUE(SwapBuffers(dc));
  ASSERT_TRUE(KxReadWindowPixels(win.hwnd, px, w, h));
  EXPECT_EQ(px[1], 255);  // green

  // A resize keeps the context usable on the new surface.
  ASSERT_TRUE(KxResizeOffscreenWindow(win.hwnd, 10, 8));
  glClearColor(1, 1, 1, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  ASSERT_TRUE(SwapBuffers(dc));

  EXPECT_TRUE(wglMakeCurrent(nullptr, nullptr));
  EXPECT_TRUE(wglDeleteContext(rc));
  EXPECT_FALSE(wglDeleteContext(rc));
  EXPECT_FALSE(wglMakeCurrent(dc, rc));
  // The presented frame outlives the context that drew it.
  ASSERT_TRUE(KxReadWindowPixels(win.hwnd, px, w, h));
  EXPECT_EQ(w, 10);
  EXPECT_EQ(px.size(), 10u * 8u * 4u);
  EXPECT_EQ(px[1], 255);
  EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
}
