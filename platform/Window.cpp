// Window registry, client rectangles, device contexts and frame read-back.
#include <algorithm>
#include <set>

#include "platform/Win32Window.h"
#include "platform/WindowImpl.h"

namespace kxplatform {
namespace {
std::set<const KxWindow*>& windows() {
  // Never destroyed: the shared off-screen bitmap may let go of its DC
  // while statics are destroyed at exit.
  static auto* live = new std::set<const KxWindow*>;
  return *live;
}
}  // namespace

bool isLiveWindow(const KxWindow* w) { return w && windows().count(w) != 0; }

void clientSize(const KxWindow* w, int& width, int& height) { w->chain->clientSize(width, height); }

void forgetContext(const KxGLContext* c) {
  for (const KxWindow* w : windows())
    if (w->lastContext == c) const_cast<KxWindow*>(w)->lastContext = nullptr;
}

KxWindow* registerDrawable(Platform* platform, std::unique_ptr<SwapChain> chain, bool memory) {
  if (!chain) return nullptr;
  auto* w = new KxWindow;
  w->platform = platform;
  w->chain = std::move(chain);
  w->memory = memory;
  w->dc.window = w;
  windows().insert(w);
  platform->hold();
  return w;
}

void destroyDrawable(KxWindow* w) {
  if (w->lastContext && isLiveContext(w->lastContext) && w->lastContext->currentWindow == w)
    w->lastContext->currentWindow = nullptr;
  windows().erase(w);
  Platform* platform = w->platform;
  delete w;  // the swap chain unbinds and destroys its surfaces
  platform->release();
}

}  // namespace kxplatform

using namespace kxplatform;

static HWND registerWindow(Platform* platform, std::unique_ptr<SwapChain> chain) {
  return registerDrawable(platform, std::move(chain), false);
}

// Memory DCs are drawables too, but never windows to the host.
static bool isHostWindow(const KxWindow* w) { return isLiveWindow(w) && !w->memory; }

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
  if (isHostWindow(hWnd)) destroyDrawable(hWnd);
}

bool KxResizeOffscreenWindow(HWND hWnd, int width, int height) {
  if (!isHostWindow(hWnd)) return false;
  if (width > kMaxOffscreenSide || height > kMaxOffscreenSide) return false;
  return hWnd->chain->resize(std::max(1, width), std::max(1, height));
}

bool KxNotifyWindowResized(HWND hWnd) { return isHostWindow(hWnd) && hWnd->chain->sizeChanged(); }

bool KxReadWindowPixels(HWND hWnd, std::vector<uint8_t>& rgba, int& width, int& height) {
  if (!isHostWindow(hWnd)) return false;
  KxGLContext* reader = isLiveContext(hWnd->lastContext) ? hWnd->lastContext : nullptr;
  if (hWnd->chain->presentedFrame(reader ? reader->context : EGL_NO_CONTEXT, rgba, width, height)) return true;
  const EGLSurface drawn = hWnd->chain->drawSurface();
  if (drawn == EGL_NO_SURFACE || eglGetCurrentSurface(EGL_DRAW) != drawn) return false;
  clientSize(hWnd, width, height);
  if (width <= 0 || height <= 0) return false;
  readCurrentPixels(width, height, rgba);
  return true;
}

BOOL IsWindow(HWND hWnd) { return isHostWindow(hWnd) ? TRUE : FALSE; }

BOOL GetClientRect(HWND hWnd, RECT* rect) {
  if (!isHostWindow(hWnd) || !rect) return FALSE;
  int width = 0, height = 0;
  clientSize(hWnd, width, height);
  *rect = RECT{0, 0, width, height};
  return TRUE;
}

BOOL ScreenToClient(HWND hWnd, POINT* pt) {
  if (!isHostWindow(hWnd) || !pt) return FALSE;
  int x = pt->x, y = pt->y;
  if (!hWnd->chain->screenToClient(x, y)) return FALSE;
  pt->x = x;
  pt->y = y;
  return TRUE;
}

HDC GetDC(HWND hWnd) { return isHostWindow(hWnd) ? &hWnd->dc : nullptr; }

int ReleaseDC(HWND hWnd, HDC hDC) {
  // Each window owns its DC for its whole life, so releasing only validates.
  return (isHostWindow(hWnd) && hDC == &hWnd->dc) ? 1 : 0;
}

HWND WindowFromDC(HDC hDC) {
  if (!hDC || !isHostWindow(hDC->window)) return nullptr;
  return hDC->window;
}
