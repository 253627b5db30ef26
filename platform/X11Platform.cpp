// Host X11 windows: EGL window surfaces on the host's X connection. The only
// file that speaks Xlib. The client size is learnt when the window is
// attached and when the host reports a resize, never per frame.
#include <X11/Xlib.h>

#include <map>

#include "platform/Platform.h"

namespace kxplatform {
namespace {

class X11SwapChain : public SwapChain {
 public:
  X11SwapChain(EGLDisplay display, Display* xdisplay, Window xwindow, const XWindowAttributes& attrs)
      : SwapChain(display),
        m_xdisplay(xdisplay),
        m_xwindow(xwindow),
        m_root(attrs.root),
        m_visual(attrs.visual ? static_cast<long>(XVisualIDFromVisual(attrs.visual)) : -1),
        m_width(attrs.width),
        m_height(attrs.height) {}
  ~X11SwapChain() override {
    unbindIfCurrent(m_surface);
    if (m_surface != EGL_NO_SURFACE) eglDestroySurface(m_display, m_surface);
  }

  EGLSurface drawSurface() const override { return m_surface; }
  long nativeVisual() const override { return m_visual; }

  bool realize(EGLConfig config) override {
    if (m_surface != EGL_NO_SURFACE) return false;
    m_surface = eglCreateWindowSurface(m_display, config, static_cast<EGLNativeWindowType>(m_xwindow), nullptr);
    return m_surface != EGL_NO_SURFACE;
  }

  void clientSize(int& width, int& height) const override {
    width = m_width;
    height = m_height;
  }

  bool sizeChanged() override {
    XWindowAttributes attrs;
    if (!XGetWindowAttributes(m_xdisplay, m_xwindow, &attrs)) return false;
    m_width = attrs.width;
    m_height = attrs.height;
    return true;
  }

  bool screenToClient(int& x, int& y) const override {
    Window child = 0;
    int wx = 0, wy = 0;
    if (!XTranslateCoordinates(m_xdisplay, m_root, m_xwindow, x, y, &wx, &wy, &child)) return false;
    x = wx;
    y = wy;
    return true;
  }

  bool commit() override { return m_surface != EGL_NO_SURFACE && eglSwapBuffers(m_display, m_surface); }

 private:
  Display* m_xdisplay;
  Window m_xwindow;
  Window m_root;
  long m_visual;
  int m_width, m_height;
  EGLSurface m_surface = EGL_NO_SURFACE;
};

class X11Platform;
// One platform per host Display, while windows or contexts use it.
std::map<void*, std::unique_ptr<X11Platform>>& platforms() {
  static std::map<void*, std::unique_ptr<X11Platform>> open;
  return open;
}

class X11Platform : public Platform {
 public:
  X11Platform(EGLDisplay display, void* xdisplay) : Platform(display, EGL_WINDOW_BIT), m_xdisplay(xdisplay) {}
  // The host may close its Display once its windows are gone, and a new
  // one may get the same address: the EGL display must not outlive it.
  ~X11Platform() override {
    if (eglGetCurrentDisplay() == display())
      eglMakeCurrent(display(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglTerminate(display());
  }
  std::unique_ptr<SwapChain> createSwapChain(void* nativeDisplay, unsigned long nativeWindow) override {
    Display* xdisplay = static_cast<Display*>(nativeDisplay);
    XWindowAttributes attrs;
    if (!XGetWindowAttributes(xdisplay, static_cast<Window>(nativeWindow), &attrs)) return nullptr;
    return std::make_unique<X11SwapChain>(display(), xdisplay, static_cast<Window>(nativeWindow), attrs);
  }

 protected:
  void unused() override { platforms().erase(m_xdisplay); }  // destroys this

 private:
  void* m_xdisplay;
};

}  // namespace

Platform* x11Platform(void* xdisplay) {
  auto it = platforms().find(xdisplay);
  if (it != platforms().end()) return it->second.get();
  EGLDisplay dpy = EGL_NO_DISPLAY;
  if (hasClientExtension("EGL_KHR_platform_x11") || hasClientExtension("EGL_EXT_platform_x11"))
    dpy = initialisedDisplay(eglGetPlatformDisplayEXT(EGL_PLATFORM_X11_KHR, xdisplay, nullptr));
  // A display that failed is not remembered: the next window tries again.
  if (dpy == EGL_NO_DISPLAY) return nullptr;
  return (platforms()[xdisplay] = std::make_unique<X11Platform>(dpy, xdisplay)).get();
}

}  // namespace kxplatform
