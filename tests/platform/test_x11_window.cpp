// The native-window path, run when a display is available (the test
// script provides a virtual one).
// gtest first: Xlib's macros (None, Bool, ...) would break its headers.
#include <gtest/gtest.h>

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include "platform/Win32Window.h"
#include "platform/WindowHelpers.h"
#include "platform/X11Host.h"

TEST(X11Window, AttachDrawAndSwap) {
  X11Host host(160, 120);
  if (!host.display) GTEST_SKIP() << "no X display";
  Display* display = host.display;
  HWND hwnd = KxAttachX11Window(display, host.xwin);
  ASSERT_TRUE(hwnd);
  EXPECT_EQ(clientSize(hwnd), "160x120");
  HDC dc = GetDC(hwnd);
  const int format = chooseFormat(dc, 24, 0, 24, 8);
  if (format == 0) {
    KxDestroyWindow(hwnd);
    GTEST_SKIP() << "no EGL config matches the window's visual";
  }
  ASSERT_TRUE(SetPixelFormat(dc, format, nullptr));
  HGLRC ctx = wglCreateContext(dc);
  ASSERT_TRUE(ctx);
  ASSERT_TRUE(wglMakeCurrent(dc, ctx));
  EXPECT_TRUE(SwapBuffers(dc));  // drawing and reading back: the reopened-display test

  // The size is known without asking the server on every frame ...
  const unsigned long request = XNextRequest(display);
  for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(clientSize(hwnd), "160x120");
  EXPECT_EQ(XNextRequest(display), request);
  // ... and learnt again when the host reports a resize.
  XResizeWindow(display, host.xwin, 200, 90);
  XSync(display, False);
  EXPECT_EQ(clientSize(hwnd), "160x120");
  ASSERT_TRUE(KxNotifyWindowResized(hwnd));
  EXPECT_EQ(clientSize(hwnd), "200x90");

  wglMakeCurrent(nullptr, nullptr);
  wglDeleteContext(ctx);
  KxDestroyWindow(hwnd);
  EXPECT_FALSE(KxNotifyWindowResized(hwnd));
}

// A host closes its Display and opens another, which malloc usually puts
// at the same address: the engine must not take it for the closed one.
TEST(X11Window, ReopenedDisplayDrawsAgain) {
  // A server whose last client leaves resets and refuses connections for a
  // moment; this one stays connected throughout.
  Display* keeper = XOpenDisplay(nullptr);
  if (!keeper) GTEST_SKIP() << "no X display";
  void* previous = nullptr;
  for (int round = 0; round < 3; ++round) {
    const X11Host host(40, 30);
    Display* display = host.display;
    ASSERT_TRUE(display) << "round " << round;
    if (round > 0 && display != previous) std::printf("round %d: the Display got a new address\n", round);
    previous = display;
    HWND hwnd = KxAttachX11Window(display, host.xwin);
    ASSERT_TRUE(hwnd);
    HDC dc = GetDC(hwnd);
    const int format = chooseFormat(dc, 24, 0, 0, 0);
    ASSERT_TRUE(format != 0 && SetPixelFormat(dc, format, nullptr));
    HGLRC ctx = wglCreateContext(dc);
    ASSERT_TRUE(ctx && wglMakeCurrent(dc, ctx));
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    std::vector<uint8_t> px;
    int w = 0, h = 0;
    ASSERT_TRUE(KxReadWindowPixels(hwnd, px, w, h));  // the frame being drawn
    EXPECT_EQ(px[2], 255) << "round " << round;
    EXPECT_TRUE(SwapBuffers(dc));
    wglDeleteContext(ctx);
    KxDestroyWindow(hwnd);
    // With its last window and context gone, nothing holds the display.
    EGLDisplay egl = eglGetPlatformDisplayEXT(EGL_PLATFORM_X11_KHR, display, nullptr);
    EXPECT_EQ(eglQueryString(egl, EGL_VERSION), nullptr) << "round " << round;
  }
  XCloseDisplay(keeper);
}
