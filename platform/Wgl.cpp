// Rendering contexts (desktop OpenGL, compatibility profile) and buffer swap.
#include <epoxy/gl.h>

#include <set>

#include "kxrender/KxWindow.h"
#include "platform/WindowImpl.h"

namespace kxplatform {
namespace {
std::set<const KxGLContext*>& contexts() {
  static std::set<const KxGLContext*> live;
  return live;
}
KxGLContext*& currentContext() {
  static KxGLContext* current = nullptr;
  return current;
}
}  // namespace

bool isLiveContext(const KxGLContext* c) { return c && contexts().count(c) != 0; }

void forgetContext(KxGLContext* c) {
  if (currentContext() == c) currentContext() = nullptr;
}

}  // namespace kxplatform

using namespace kxplatform;

HGLRC wglCreateContext(HDC hDC) {
  if (!hDC || !isLiveWindow(hDC->window) || hDC->window->pixelFormat == 0) return nullptr;
  KxWindow* w = hDC->window;
  if (!eglBindAPI(EGL_OPENGL_API)) return nullptr;
  // No version asked for: the driver's compatibility profile, which keeps
  // the fixed-function pipeline, display lists and client arrays.
  EGLContext ctx = eglCreateContext(w->display, w->config, EGL_NO_CONTEXT, nullptr);
  if (ctx == EGL_NO_CONTEXT) return nullptr;
  auto* c = new KxGLContext;
  c->display = w->display;
  c->config = w->config;
  c->context = ctx;
  contexts().insert(c);
  return c;
}

BOOL wglMakeCurrent(HDC hDC, HGLRC hRC) {
  if (!hRC) {
    KxGLContext* cur = currentContext();
    if (cur && isLiveContext(cur)) {
      eglMakeCurrent(cur->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
      cur->currentWindow = nullptr;
    }
    currentContext() = nullptr;
    return TRUE;
  }
  if (!isLiveContext(hRC) || !hDC || !isLiveWindow(hDC->window)) return FALSE;
  KxWindow* w = hDC->window;
  if (w->surface == EGL_NO_SURFACE || w->display != hRC->display) return FALSE;
  if (!eglMakeCurrent(w->display, w->surface, w->surface, hRC->context)) return FALSE;
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
  eglDestroyContext(hRC->display, hRC->context);
  contexts().erase(hRC);
  forgetContext(hRC);
  delete hRC;
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
  if (w->surface == EGL_NO_SURFACE) return FALSE;
  if (w->kind == KxWindow::Kind::X11) return eglSwapBuffers(w->display, w->surface) ? TRUE : FALSE;

  // Off-screen: present the frame by copying it to the window's front image.
  KxGLContext* cur = currentContext();
  const bool bound = cur && cur->currentWindow == w;
  KxGLContext* borrow = bound ? cur : w->lastContext;
  if (!borrow || !isLiveContext(borrow)) return FALSE;
  if (!bound && !eglMakeCurrent(w->display, w->surface, w->surface, borrow->context)) return FALSE;
  readCurrentPixels(w->width, w->height, w->front);
  w->frontWidth = w->width;
  w->frontHeight = w->height;
  if (!bound) {
    // Give the caller back whatever was current before.
    if (cur && isLiveContext(cur) && cur->currentWindow)
      eglMakeCurrent(cur->display, cur->currentWindow->surface, cur->currentWindow->surface, cur->context);
    else
      eglMakeCurrent(w->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  }
  return TRUE;
}
