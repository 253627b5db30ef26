// Pixel formats: the window display's desktop-GL configs, numbered from 1.
#include <cstring>
#include <map>
#include <utility>

#include "kxrender/KxWindow.h"
#include "platform/WindowImpl.h"

namespace kxplatform {

const std::vector<EGLConfig>& pixelFormatsOf(KxWindow* w) {
  // The list depends only on the display and, for X11, the window's visual.
  static std::map<std::pair<EGLDisplay, long>, std::vector<EGLConfig>> cache;
  const bool x11 = w->kind == KxWindow::Kind::X11;
  const long visual = x11 ? x11WindowVisual(w->xdisplay, w->xwindow) : 0;
  auto key = std::make_pair(w->display, visual);
  auto it = cache.find(key);
  if (it != cache.end()) return it->second;

  std::vector<EGLConfig> formats;
  const EGLint attrs[] = {EGL_SURFACE_TYPE, x11 ? EGL_WINDOW_BIT : EGL_PBUFFER_BIT,
                          EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                          EGL_COLOR_BUFFER_TYPE, EGL_RGB_BUFFER,
                          EGL_NONE};
  EGLint count = 0;
  if (eglChooseConfig(w->display, attrs, nullptr, 0, &count) && count > 0) {
    std::vector<EGLConfig> all(static_cast<size_t>(count));
    eglChooseConfig(w->display, attrs, all.data(), count, &count);
    for (EGLint i = 0; i < count; ++i) {
      EGLint id = 0;
      eglGetConfigAttrib(w->display, all[i], EGL_NATIVE_VISUAL_ID, &id);
      if (!x11 || id == visual) formats.push_back(all[i]);
    }
  }
  return cache[key] = std::move(formats);
}

}  // namespace kxplatform

using namespace kxplatform;

static EGLint attrib(EGLDisplay dpy, EGLConfig cfg, EGLint name) {
  EGLint v = 0;
  eglGetConfigAttrib(dpy, cfg, name, &v);
  return v;
}

static PIXELFORMATDESCRIPTOR describe(EGLDisplay dpy, EGLConfig cfg) {
  PIXELFORMATDESCRIPTOR pfd;
  std::memset(&pfd, 0, sizeof pfd);
  pfd.nSize = sizeof pfd;
  pfd.nVersion = 1;
  // Window surfaces swap; off-screen windows present a copy on SwapBuffers,
  // so both behave as double-buffered to the engine.
  pfd.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
  pfd.iPixelType = PFD_TYPE_RGBA;
  pfd.cRedBits = BYTE(attrib(dpy, cfg, EGL_RED_SIZE));
  pfd.cGreenBits = BYTE(attrib(dpy, cfg, EGL_GREEN_SIZE));
  pfd.cBlueBits = BYTE(attrib(dpy, cfg, EGL_BLUE_SIZE));
  pfd.cAlphaBits = BYTE(attrib(dpy, cfg, EGL_ALPHA_SIZE));
  pfd.cColorBits = BYTE(pfd.cRedBits + pfd.cGreenBits + pfd.cBlueBits);
  pfd.cGreenShift = pfd.cRedBits;
  pfd.cBlueShift = BYTE(pfd.cRedBits + pfd.cGreenBits);
  pfd.cAlphaShift = BYTE(pfd.cColorBits);
  pfd.cDepthBits = BYTE(attrib(dpy, cfg, EGL_DEPTH_SIZE));
  pfd.cStencilBits = BYTE(attrib(dpy, cfg, EGL_STENCIL_SIZE));
  pfd.iLayerType = PFD_MAIN_PLANE;
  return pfd;
}

int DescribePixelFormat(HDC hDC, int format, UINT bytes, PIXELFORMATDESCRIPTOR* pfd) {
  if (!hDC || !isLiveWindow(hDC->window)) return 0;
  KxWindow* w = hDC->window;
  const auto& formats = pixelFormatsOf(w);
  const int count = static_cast<int>(formats.size());
  if (pfd && bytes >= sizeof(PIXELFORMATDESCRIPTOR)) {
    if (format < 1 || format > count) return 0;
    *pfd = describe(w->display, formats[static_cast<size_t>(format - 1)]);
  }
  return count;
}

int ChoosePixelFormat(HDC hDC, const PIXELFORMATDESCRIPTOR* want) {
  if (!want) return 0;
  const int count = DescribePixelFormat(hDC, 1, 0, nullptr);
  int best = 0;
  long bestCost = 0;
  for (int i = 1; i <= count; ++i) {
    PIXELFORMATDESCRIPTOR f;
    DescribePixelFormat(hDC, i, sizeof f, &f);
    if (f.iPixelType != want->iPixelType) continue;
    if ((want->dwFlags & PFD_DOUBLEBUFFER) && !(f.dwFlags & PFD_DOUBLEBUFFER)) continue;
    // Missing bits are much worse than surplus bits.
    long cost = 0;
    auto weigh = [&cost](int have, int need) { cost += have < need ? 100L * (need - have) : (have - need); };
    weigh(f.cColorBits, want->cColorBits);
    weigh(f.cAlphaBits, want->cAlphaBits);
    weigh(f.cDepthBits, want->cDepthBits);
    weigh(f.cStencilBits, want->cStencilBits);
    if (best == 0 || cost < bestCost) {
      best = i;
      bestCost = cost;
    }
  }
  return best;
}

BOOL SetPixelFormat(HDC hDC, int format, const PIXELFORMATDESCRIPTOR*) {
  if (!hDC || !isLiveWindow(hDC->window)) return FALSE;
  KxWindow* w = hDC->window;
  const auto& formats = pixelFormatsOf(w);
  if (format < 1 || format > static_cast<int>(formats.size())) return FALSE;
  // As on Windows, a window's pixel format is set once for its life.
  if (w->pixelFormat != 0) return w->pixelFormat == format ? TRUE : FALSE;
  w->config = formats[static_cast<size_t>(format - 1)];
  if (!createSurface(w)) {
    w->config = nullptr;
    return FALSE;
  }
  w->pixelFormat = format;
  return TRUE;
}

int GetPixelFormat(HDC hDC) {
  if (!hDC || !isLiveWindow(hDC->window)) return 0;
  return hDC->window->pixelFormat;
}
