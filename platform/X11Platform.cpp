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

class X11Platform : public Platform {
 public:
  explicit X11Platform(EGLDisplay display) : Platform(display, EGL_WINDOW_BIT) {}
  std::unique_ptr<SwapChain> createSwapChain(void* nativeDisplay, unsigned long nativeWindow) override {
    Display* xdisplay = static_cast<Display*>(nativeDisplay);
    XWindowAttributes attrs;
    if (!XGetWindowAttributes(xdisplay, static_cast<Window>(nativeWindow), &attrs)) return nullptr;
    return std::make_unique<X11SwapChain>(display(), xdisplay, static_cast<Window>(nativeWindow), attrs);
  }
};

}  // namespace

Platform* x11Platform(void* xdisplay) {
  static std::map<void*, std::unique_ptr<X11Platform>> platforms;
  auto it = platforms.find(xdisplay);
  if (it != platforms.end()) return it->second.get();
  EGLDisplay dpy = EGL_NO_DISPLAY;
  if (hasClientExtension("EGL_KHR_platform_x11") || hasClientExtension("EGL_EXT_platform_x11"))
    dpy = initialisedDisplay(eglGetPlatformDisplayEXT(EGL_PLATFORM_X11_KHR, xdisplay, nullptr));
  auto& platform = platforms[xdisplay];
  if (dpy != EGL_NO_DISPLAY) platform = std::make_unique<X11Platform>(dpy);
  return platform.get();
}

}  // namespace kxplatform
