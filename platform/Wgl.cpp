// Rendering contexts and buffer swap, through the window's platform.
#include <set>

#include "platform/Win32Window.h"
#include "platform/WindowImpl.h"

namespace kxplatform {
namespace {
std::set<const KxGLContext*>& contexts() {
  // Never destroyed: the shared off-screen bitmap may let go of its DC
  // while statics are destroyed at exit.
  static auto* live = new std::set<const KxGLContext*>;
  return *live;
}
KxGLContext*& currentContext() {
  static KxGLContext* current = nullptr;
  return current;
}
}  // namespace

bool isLiveContext(const KxGLContext* c) { return c && contexts().count(c) != 0; }

size_t liveContextCount() { return contexts().size(); }

}  // namespace kxplatform

using namespace kxplatform;

HGLRC wglCreateContext(HDC hDC) {
  if (!hDC || !isLiveWindow(hDC->window) || hDC->window->pixelFormat == 0) return nullptr;
  KxWindow* w = hDC->window;
  EGLContext ctx = w->platform->createContext(w->config);
  if (ctx == EGL_NO_CONTEXT) return nullptr;
  auto* c = new KxGLContext;
  c->platform = w->platform;
  c->config = w->config;
  c->context = ctx;
  contexts().insert(c);
  c->platform->hold();
  return c;
}

BOOL wglMakeCurrent(HDC hDC, HGLRC hRC) {
  if (!hRC) {
    KxGLContext* cur = currentContext();
    if (cur && isLiveContext(cur)) {
      eglMakeCurrent(cur->platform->display(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
      cur->currentWindow = nullptr;
    }
    currentContext() = nullptr;
    return TRUE;
  }
  if (!isLiveContext(hRC) || !hDC || !isLiveWindow(hDC->window)) return FALSE;
  KxWindow* w = hDC->window;
  if (w->platform != hRC->platform || !w->platform->makeCurrent(*w->chain, hRC->context)) return FALSE;
  KxGLContext* previous = currentContext();
  if (previous && previous != hRC && isLiveContext(previous)) previous->currentWindow = nullptr;
  hRC->currentWindow = w;
  w->lastContext = hRC;
  currentContext() = hRC;
  return TRUE;
}

BOOL wglDeleteContext(HGLRC hRC) {
  if (!isLiveContext(hRC)) return FALSE;
  if (currentContext() == hRC) wglMakeCurrent(nullptr, nullptr);
  hRC->platform->destroyContext(hRC->context);
  contexts().erase(hRC);
  forgetContext(hRC);
  Platform* platform = hRC->platform;
  delete hRC;
  platform->release();
  return TRUE;
}

HGLRC wglGetCurrentContext() { return currentContext(); }

HDC wglGetCurrentDC() {
  KxGLContext* c = currentContext();
  if (!c || !c->currentWindow || !isLiveWindow(c->currentWindow)) return nullptr;
  return &c->currentWindow->dc;
}

BOOL SwapBuffers(HDC hDC) {
  if (!hDC || !isLiveWindow(hDC->window)) return FALSE;
  KxWindow* w = hDC->window;
  // A frame needs a context that drew it.
  if (!isLiveContext(w->lastContext)) return FALSE;
  return w->platform->commit(*w->chain) ? TRUE : FALSE;
}
