// Window registry, off-screen windows, client rectangles and device contexts.
#include <epoxy/gl.h>

#include <algorithm>
#include <set>

#include "kxrender/KxWindow.h"
#include "platform/EglDisplay.h"
#include "platform/WindowImpl.h"

namespace kxplatform {
namespace {
std::set<const KxWindow*>& windows() {
  static std::set<const KxWindow*> live;
  return live;
}
}  // namespace

bool isLiveWindow(const KxWindow* w) { return w && windows().count(w) != 0; }

void clientSize(const KxWindow* w, int& width, int& height) {
  width = w->width;
  height = w->height;
  if (w->kind == KxWindow::Kind::X11 && !x11WindowSize(w->xdisplay, w->xwindow, width, height)) {
    width = height = 0;
  }
}

bool createSurface(KxWindow* w) {
  if (w->kind == KxWindow::Kind::X11) {
    EGLNativeWindowType native = static_cast<EGLNativeWindowType>(w->xwindow);
    w->surface = eglCreateWindowSurface(w->display, w->config, native, nullptr);
  } else {
    const EGLint attrs[] = {EGL_WIDTH, w->width, EGL_HEIGHT, w->height, EGL_NONE};
    w->surface = eglCreatePbufferSurface(w->display, w->config, attrs);
  }
  return w->surface != EGL_NO_SURFACE;
}

void readCurrentPixels(int width, int height, std::vector<uint8_t>& rgba) {
  // Read into the caller's buffer (kept between frames) and flip the rows in
  // place: presenting a frame allocates nothing once the size is settled.
  const size_t row = size_t(width) * 4;
  rgba.resize(row * size_t(height));
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
  for (int y = 0; y < height / 2; ++y)
    std::swap_ranges(&rgba[row * size_t(y)], &rgba[row * size_t(y)] + row, &rgba[row * size_t(height - 1 - y)]);
}

}  // namespace kxplatform

using namespace kxplatform;

static KxWindow* registerWindow(KxWindow* w) {
  w->dc.window = w;
  windows().insert(w);
  return w;
}

// Larger surfaces exceed what GL viewports address and would allocate
// gigabytes on a software rasteriser.
static const int kMaxOffscreenSide = 16384;

HWND KxCreateOffscreenWindow(int width, int height) {
  if (width > kMaxOffscreenSide || height > kMaxOffscreenSide) return nullptr;
  EGLDisplay dpy = offscreenDisplay();
  if (dpy == EGL_NO_DISPLAY) return nullptr;
  auto* w = new KxWindow;
  w->kind = KxWindow::Kind::Offscreen;
  w->display = dpy;
  w->width = std::max(1, width);
  w->height = std::max(1, height);
  return registerWindow(w);
}

HWND KxAttachX11Window(void* display, unsigned long window) {
  if (!display || !window) return nullptr;
  int width = 0, height = 0;
  if (!x11WindowSize(display, window, width, height)) return nullptr;
  EGLDisplay dpy = x11Display(display);
  if (dpy == EGL_NO_DISPLAY) return nullptr;
  auto* w = new KxWindow;
  w->kind = KxWindow::Kind::X11;
  w->xdisplay = display;
  w->xwindow = window;
  w->display = dpy;
  return registerWindow(w);
}

void KxDestroyWindow(HWND hWnd) {
  if (!isLiveWindow(hWnd)) return;
  if (hWnd->surface != EGL_NO_SURFACE) {
    if (eglGetCurrentSurface(EGL_DRAW) == hWnd->surface)
      eglMakeCurrent(hWnd->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroySurface(hWnd->display, hWnd->surface);
  }
  if (hWnd->lastContext && isLiveContext(hWnd->lastContext) && hWnd->lastContext->currentWindow == hWnd)
    hWnd->lastContext->currentWindow = nullptr;
  windows().erase(hWnd);
  delete hWnd;
}

bool KxResizeOffscreenWindow(HWND hWnd, int width, int height) {
  if (!isLiveWindow(hWnd) || hWnd->kind != KxWindow::Kind::Offscreen) return false;
  if (width > kMaxOffscreenSide || height > kMaxOffscreenSide) return false;
  width = std::max(1, width);
  height = std::max(1, height);
  if (width == hWnd->width && height == hWnd->height) return true;
  hWnd->width = width;
  hWnd->height = height;
  if (hWnd->surface == EGL_NO_SURFACE) return true;
  // A pbuffer cannot change size: replace it, rebinding if it is in use.
  EGLSurface old = hWnd->surface;
  const bool wasCurrent = eglGetCurrentSurface(EGL_DRAW) == old;
  EGLContext ctx = eglGetCurrentContext();
  if (!createSurface(hWnd)) {
    hWnd->surface = old;
    return false;
  }
  if (wasCurrent) eglMakeCurrent(hWnd->display, hWnd->surface, hWnd->surface, ctx);
  eglDestroySurface(hWnd->display, old);
  return true;
}

bool KxReadWindowPixels(HWND hWnd, std::vector<uint8_t>& rgba, int& width, int& height) {
  if (!isLiveWindow(hWnd)) return false;
  if (!hWnd->front.empty()) {
    rgba = hWnd->front;
    width = hWnd->frontWidth;
    height = hWnd->frontHeight;
    return true;
  }
  if (hWnd->surface == EGL_NO_SURFACE || eglGetCurrentSurface(EGL_DRAW) != hWnd->surface) return false;
  clientSize(hWnd, width, height);
  if (width <= 0 || height <= 0) return false;
  readCurrentPixels(width, height, rgba);
  return true;
}

BOOL IsWindow(HWND hWnd) { return isLiveWindow(hWnd) ? TRUE : FALSE; }

BOOL GetClientRect(HWND hWnd, RECT* rect) {
  if (!isLiveWindow(hWnd) || !rect) return FALSE;
  int width = 0, height = 0;
  clientSize(hWnd, width, height);
  *rect = RECT{0, 0, width, height};
  return TRUE;
}

BOOL ScreenToClient(HWND hWnd, POINT* pt) {
  if (!isLiveWindow(hWnd) || !pt) return FALSE;
  if (hWnd->kind != KxWindow::Kind::X11) return TRUE;
  int x = pt->x, y = pt->y;
  if (!x11ScreenToWindow(hWnd->xdisplay, hWnd->xwindow, x, y)) return FALSE;
  pt->x = x;
  pt->y = y;
  return TRUE;
}

HDC GetDC(HWND hWnd) { return isLiveWindow(hWnd) ? &hWnd->dc : nullptr; }

int ReleaseDC(HWND hWnd, HDC hDC) {
  // Each window owns its DC for its whole life, so releasing only validates.
  return (isLiveWindow(hWnd) && hDC == &hWnd->dc) ? 1 : 0;
}

HWND WindowFromDC(HDC hDC) {
  if (!hDC || !isLiveWindow(hDC->window)) return nullptr;
  return hDC->window;
}
