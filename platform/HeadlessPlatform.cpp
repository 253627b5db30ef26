// Off-screen windows: two pbuffers per window, drawn into and presented in
// turn like the buffers of a double-buffered window. Presenting swaps them
// and copies nothing; the presented frame stays on the GPU until the host
// asks for its pixels, and is read back at most once per frame.
#include <algorithm>

#include "platform/Platform.h"

namespace kxplatform {
namespace {

struct Pbuffer {
  EGLSurface surface = EGL_NO_SURFACE;
  int width = 0, height = 0;
};

class PbufferSwapChain : public SwapChain {
 public:
  PbufferSwapChain(EGLDisplay display, int width, int height)
      : SwapChain(display), m_width(width), m_height(height) {}
  ~PbufferSwapChain() override {
    drop(m_back);
    drop(m_front);
  }

  EGLSurface drawSurface() const override { return m_back.surface; }

  bool realize(EGLConfig config) override {
    if (m_back.surface != EGL_NO_SURFACE) return false;
    m_config = config;
    m_back = make();
    return m_back.surface != EGL_NO_SURFACE;
  }

  void clientSize(int& width, int& height) const override {
    width = m_width;
    height = m_height;
  }

  bool resize(int width, int height) override {
    if (width == m_width && height == m_height) return true;
    const int oldWidth = m_width, oldHeight = m_height;
    m_width = width;
    m_height = height;
    if (m_back.surface == EGL_NO_SURFACE) return true;
    // A pbuffer cannot change size: replace the back one, rebinding it when
    // it is in use. The presented frame keeps its size until the next one.
    if (!replaceBack()) {
      m_width = oldWidth;
      m_height = oldHeight;
      return false;
    }
    return true;
  }

  bool commit() override {
    if (m_back.surface == EGL_NO_SURFACE) return false;
    // No flush needed: a reader in another context makes it current first,
    // which flushes this one.
    const bool bound = eglGetCurrentSurface(EGL_DRAW) == m_back.surface;
    std::swap(m_front, m_back);
    m_frameRead = false;
    if (m_back.surface == EGL_NO_SURFACE || m_back.width != m_width || m_back.height != m_height) {
      Pbuffer fresh = make();
      if (fresh.surface == EGL_NO_SURFACE) {
        std::swap(m_front, m_back);  // keep drawing where we were
        return false;
      }
      drop(m_back);
      m_back = fresh;
    }
    if (bound) eglMakeCurrent(m_display, m_back.surface, m_back.surface, eglGetCurrentContext());
    return true;
  }

  bool presentedFrame(EGLContext ctx, std::vector<uint8_t>& rgba, int& width, int& height) override {
    if (m_front.surface == EGL_NO_SURFACE) return false;
    if (!m_frameRead && !readFront(ctx)) return false;
    rgba = m_frame;
    width = m_front.width;
    height = m_front.height;
    return true;
  }

 private:
  Pbuffer make() const {
    const EGLint attrs[] = {EGL_WIDTH, m_width, EGL_HEIGHT, m_height, EGL_NONE};
    return Pbuffer{eglCreatePbufferSurface(m_display, m_config, attrs), m_width, m_height};
  }
  void drop(Pbuffer& b) {
    unbindIfCurrent(b.surface);
    if (b.surface != EGL_NO_SURFACE) eglDestroySurface(m_display, b.surface);
    b = Pbuffer();
  }
  bool replaceBack() {
    Pbuffer fresh = make();
    if (fresh.surface == EGL_NO_SURFACE) return false;
    const bool bound = eglGetCurrentSurface(EGL_DRAW) == m_back.surface;
    if (bound) eglMakeCurrent(m_display, fresh.surface, fresh.surface, eglGetCurrentContext());
    eglDestroySurface(m_display, m_back.surface);
    m_back = fresh;
    return true;
  }
  // Reads the presented pbuffer with ctx (or a short-lived context of the
  // window's config), then gives the caller back what was current.
  bool readFront(EGLContext ctx) {
    const EGLDisplay prevDisplay = eglGetCurrentDisplay();
    const EGLContext prevContext = eglGetCurrentContext();
    const EGLSurface prevDraw = eglGetCurrentSurface(EGL_DRAW);
    const EGLSurface prevRead = eglGetCurrentSurface(EGL_READ);
    EGLContext temporary = EGL_NO_CONTEXT;
    if (ctx == EGL_NO_CONTEXT) {
      if (!eglBindAPI(EGL_OPENGL_API)) return false;
      temporary = eglCreateContext(m_display, m_config, EGL_NO_CONTEXT, nullptr);
      if (temporary == EGL_NO_CONTEXT) return false;
      ctx = temporary;
    }
    const bool ok = eglMakeCurrent(m_display, m_front.surface, m_front.surface, ctx);
    if (ok) readCurrentPixels(m_front.width, m_front.height, m_frame);
    if (prevContext != EGL_NO_CONTEXT)
      eglMakeCurrent(prevDisplay, prevDraw, prevRead, prevContext);
    else
      eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (temporary != EGL_NO_CONTEXT) eglDestroyContext(m_display, temporary);
    m_frameRead = ok;
    return ok;
  }

  int m_width, m_height;
  EGLConfig m_config = nullptr;
  Pbuffer m_back, m_front;          // front: EGL_NO_SURFACE until the first commit
  std::vector<uint8_t> m_frame;     // the front read back, once per frame
  bool m_frameRead = false;
};

class HeadlessPlatform : public Platform {
 public:
  explicit HeadlessPlatform(EGLDisplay display) : Platform(display, EGL_PBUFFER_BIT) {}
  std::unique_ptr<SwapChain> createSwapChain(int width, int height) override {
    return std::make_unique<PbufferSwapChain>(display(), width, height);
  }
};

EGLDisplay openHeadlessDisplay() {
  if (hasClientExtension("EGL_MESA_platform_surfaceless")) {
    EGLDisplay dpy =
        initialisedDisplay(eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
    if (dpy != EGL_NO_DISPLAY) return dpy;
  }
  // Drivers without the surfaceless platform (vendor GPU stacks) expose devices.
  if (hasClientExtension("EGL_EXT_platform_device") && hasClientExtension("EGL_EXT_device_enumeration")) {
    EGLDeviceEXT devices[8];
    EGLint count = 0;
    if (eglQueryDevicesEXT(8, devices, &count)) {
      for (EGLint i = 0; i < count; ++i) {
        EGLDisplay dpy = initialisedDisplay(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr));
        if (dpy != EGL_NO_DISPLAY) return dpy;
      }
    }
  }
  return initialisedDisplay(eglGetDisplay(EGL_DEFAULT_DISPLAY));
}

}  // namespace

Platform* headlessPlatform() {
  static HeadlessPlatform* platform = [] {
    EGLDisplay dpy = openHeadlessDisplay();
    return dpy == EGL_NO_DISPLAY ? nullptr : new HeadlessPlatform(dpy);
  }();
  return platform;
}

}  // namespace kxplatform
