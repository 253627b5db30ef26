// Binding scenes to windows: the process-wide pixel format on windows of
// both kinds, and what a failed or repeated binding leaves behind.
// gtest first: Xlib's macros (None, Bool, ...) would break its headers.
#include <gtest/gtest.h>

#include <epoxy/gl.h>

#include <array>
#include <atomic>
#include <thread>

#include "kxrender/CSceneMgr.h"
#include "platform/Win32Window.h"
#include "platform/WindowImpl.h"
#include "platform/X11Host.h"

namespace {

// Alpha, depth and stencil bits of the current context.
std::array<GLint, 3> currentBits() {
  std::array<GLint, 3> b{};
  glGetIntegerv(GL_ALPHA_BITS, &b[0]);
  glGetIntegerv(GL_DEPTH_BITS, &b[1]);
  glGetIntegerv(GL_STENCIL_BITS, &b[2]);
  return b;
}

}  // namespace

// The format chosen on the first window means the same buffers on the
// second, whichever kind comes first.
TEST(SceneBinding, OneFormatServesX11AndOffscreenWindowsInEitherOrder) {
  // One host connection for both orders: the engine keeps the EGL display it
  // made for an X display, so a host must not close a display it bound.
  X11Host host(64, 48);
  if (!host.display) GTEST_SKIP() << "no X display";
  for (bool x11First : {true, false}) {
    SCOPED_TRACE(x11First ? "X11 first" : "off-screen first");
    HWND x11 = KxAttachX11Window(host.display, host.xwin);
    HWND offscreen = KxCreateOffscreenWindow(64, 48);
    ASSERT_TRUE(x11 && offscreen);
    CSceneMgr::g_nPixelFormat = 0;
    CSceneMgr first, second;
    ASSERT_TRUE(first.initializeRender(x11First ? x11 : offscreen, false, false));
    const std::array<GLint, 3> chosen = currentBits();
    EXPECT_EQ(chosen[0], 8);
    EXPECT_GE(chosen[2], 8);
    ASSERT_TRUE(second.initializeRender(x11First ? offscreen : x11, false, false));
    EXPECT_EQ(currentBits(), chosen);
    second.glRelease();
    first.glRelease();
    KxDestroyWindow(offscreen);
    KxDestroyWindow(x11);
  }
}

TEST(SceneBinding, BindingAgainReleasesTheFirstContext) {
  HWND a = KxCreateOffscreenWindow(32, 32), b = KxCreateOffscreenWindow(32, 32);
  const size_t before = kxplatform::liveContextCount();
  CSceneMgr scene;
  ASSERT_TRUE(scene.initializeRender(a, false, false));
  ASSERT_TRUE(scene.initializeRender(b, false, false));
  EXPECT_EQ(kxplatform::liveContextCount(), before + 1);
  EXPECT_EQ(scene.getWndHandle(), b);
  scene.glRelease();
  EXPECT_EQ(kxplatform::liveContextCount(), before);
  KxDestroyWindow(a);
  KxDestroyWindow(b);
}

// Another thread holds the window's surface, so the new context cannot be
// made current on it: the binding fails and the context is gone.
TEST(SceneBinding, FailingToMakeTheContextCurrentLeavesNoContext) {
  HWND w = KxCreateOffscreenWindow(32, 32);
  HDC dc = GetDC(w);
  if (CSceneMgr::g_nPixelFormat == 0) ASSERT_TRUE(CSceneMgr::choosePixelFormatEx(dc, CSceneMgr::g_nPixelFormat));
  ASSERT_TRUE(SetPixelFormat(dc, CSceneMgr::g_nPixelFormat, nullptr));
  EGLContext foreign = w->platform->createContext(w->config);
  std::atomic<int> step{0};
  std::thread holder([&] {
    const EGLSurface s = w->chain->drawSurface();
    eglMakeCurrent(w->platform->display(), s, s, foreign);
    step = 1;
    while (step != 2) std::this_thread::yield();
    eglMakeCurrent(w->platform->display(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglReleaseThread();
  });
  while (step != 1) std::this_thread::yield();
  const size_t before = kxplatform::liveContextCount();
  CSceneMgr scene;
  EXPECT_FALSE(scene.initializeRender(w, false, false));
  EXPECT_EQ(scene.getHRC(), nullptr);
  EXPECT_EQ(kxplatform::liveContextCount(), before);
  EXPECT_EQ(scene.getWndHandle(), w);  // what was set before the failure stays
  step = 2;
  holder.join();
  w->platform->destroyContext(foreign);
  KxDestroyWindow(w);
}
