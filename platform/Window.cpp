// Window registry, client rectangles, device contexts and frame read-back.
#include <algorithm>
#include <set>

#include "platform/Win32Window.h"
#include "platform/WindowImpl.h"

namespace kxplatform {
namespace {
std::set<const KxWindow*>& windows() {
  static std::set<const KxWindow*> live;
  return live;
}
}  // namespace

bool isLiveWindow(const KxWindow* w) { return w && windows().count(w) != 0; }

void clientSize(const KxWindow* w, int& width, int& height) { w->chain->clientSize(width, height); }

void forgetContext(const KxGLContext* c) {
  for (const KxWindow* w : windows())
    if (w->lastContext == c) const_cast<KxWindow*>(w)->lastContext = nullptr;
}

}  // namespace kxplatform

using namespace kxplatform;

static HWND registerWindow(Platform* platform, std::unique_ptr<SwapChain> chain) {
  if (!chain) return nullptr;
  auto* w = new KxWindow;
  w->platform = platform;
  w->chain = std::move(chain);
  w->dc.window = w;
  windows().insert(w);
  return w;
}

// Larger surfaces exceed what GL viewports address and would allocate
// gigabytes on a software rasteriser.
static const int kMaxOffscreenSide = 16384;

HWND KxCreateOffscreenWindow(int width, int height) {
  if (width > kMaxOffscreenSide || height > kMaxOffscreenSide) return nullptr;
  Platform* platform = headlessPlatform();
  if (!platform) return nullptr;
  return registerWindow(platform, platform->createSwapChain(std::max(1, width), std::max(1, height)));
}

HWND KxAttachX11Window(void* display, unsigned long window) {
  if (!display || !window) return nullptr;
  Platform* platform = x11Platform(display);
  if (!platform) return nullptr;
  return registerWindow(platform, platform->createSwapChain(display, window));
}

void KxDestroyWindow(HWND hWnd) {
  if (!isLiveWindow(hWnd)) return;
  if (hWnd->lastContext && isLiveContext(hWnd->lastContext) && hWnd->lastContext->currentWindow == hWnd)
    hWnd->lastContext->currentWindow = nullptr;
  windows().erase(hWnd);
  delete hWnd;  // the swap chain unbinds and destroys its surfaces
}

bool KxResizeOffscreenWindow(HWND hWnd, int width, int height) {
  if (!isLiveWindow(hWnd)) return false;
  if (width > kMaxOffscreenSide || height > kMaxOffscreenSide) return false;
  return hWnd->chain->resize(std::max(1, width), std::max(1, height));
}

bool KxNotifyWindowResized(HWND hWnd) { return isLiveWindow(hWnd) && hWnd->chain->sizeChanged(); }

bool KxReadWindowPixels(HWND hWnd, std::vector<uint8_t>& rgba, int& width, int& height) {
  if (!isLiveWindow(hWnd)) return false;
  KxGLContext* reader = isLiveContext(hWnd->lastContext) ? hWnd->lastContext : nullptr;
  if (hWnd->chain->presentedFrame(reader ? reader->context : EGL_NO_CONTEXT, rgba, width, height)) return true;
  const EGLSurface drawn = hWnd->chain->drawSurface();
  if (drawn == EGL_NO_SURFACE || eglGetCurrentSurface(EGL_DRAW) != drawn) return false;
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
  int x = pt->x, y = pt->y;
  if (!hWnd->chain->screenToClient(x, y)) return FALSE;
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
