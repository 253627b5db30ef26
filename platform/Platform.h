#pragma once
// The window systems frames are drawn for, behind one small interface: an
// EGL display with contexts on it, and swap chains (a window's surfaces) that
// frames are drawn into and presented from. One class per window system:
// off-screen pbuffers on a headless display, and window surfaces of a host's
// X11 windows. Nothing above this layer asks which kind a window is.
#include <epoxy/egl.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace kxplatform {

// The buffer sizes a pixel format stands for, the same on every display.
struct FormatKey {
  int red = 0, green = 0, blue = 0, alpha = 0, depth = 0, stencil = 0, samples = 0;
  bool operator==(const FormatKey& o) const {
    return red == o.red && green == o.green && blue == o.blue && alpha == o.alpha && depth == o.depth &&
           stencil == o.stencil && samples == o.samples;
  }
};

// One window's surfaces on its window system.
class SwapChain {
 public:
  virtual ~SwapChain() = default;
  SwapChain(const SwapChain&) = delete;
  SwapChain& operator=(const SwapChain&) = delete;

  // Where drawing goes: EGL_NO_SURFACE until realize succeeded.
  virtual EGLSurface drawSurface() const = 0;
  // Creates the surfaces for the config, once.
  virtual bool realize(EGLConfig config) = 0;
  // The native visual a config must match, or -1 for any.
  virtual long nativeVisual() const { return -1; }
  virtual void clientSize(int& width, int& height) const = 0;
  // A size the host sets (off-screen windows only).
  virtual bool resize(int width, int height) {
    (void)width;
    (void)height;
    return false;
  }
  // The host says the native window changed size: learn the new one.
  virtual bool sizeChanged() { return true; }
  // Screen (root window) coordinates to client coordinates.
  virtual bool screenToClient(int& x, int& y) const {
    (void)x;
    (void)y;
    return true;
  }
  // Presents what was drawn into drawSurface().
  virtual bool commit() = 0;
  // The last presented frame, RGBA rows from the top; false when the window
  // system keeps none. `ctx` is a context that may read it (or none).
  virtual bool presentedFrame(EGLContext ctx, std::vector<uint8_t>& rgba, int& width, int& height) {
    (void)ctx;
    (void)rgba;
    (void)width;
    (void)height;
    return false;
  }

 protected:
  explicit SwapChain(EGLDisplay display) : m_display(display) {}
  // Releases the calling thread's context when it is bound to `surface`.
  void unbindIfCurrent(EGLSurface surface) const;
  EGLDisplay m_display;
};

class Platform {
 public:
  virtual ~Platform() = default;
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;

  EGLDisplay display() const { return m_display; }
  // Every format this platform's surfaces of the given visual (-1: any) can
  // have, each with the config that supplies it, best config first.
  const std::vector<std::pair<FormatKey, EGLConfig>>& formats(long visual);
  // The config that supplies `key` on that visual, or null.
  EGLConfig configFor(const FormatKey& key, long visual);

  // Desktop GL, compatibility profile (fixed function, display lists).
  EGLContext createContext(EGLConfig config) const;
  void destroyContext(EGLContext ctx) const;
  // Binds ctx to draw and read on the chain's surface.
  bool makeCurrent(SwapChain& chain, EGLContext ctx) const;
  // A swap chain for a native window, or for an off-screen surface of the
  // given size; null where this window system has no such surface.
  virtual std::unique_ptr<SwapChain> createSwapChain(void* nativeDisplay, unsigned long nativeWindow) {
    (void)nativeDisplay;
    (void)nativeWindow;
    return nullptr;
  }
  virtual std::unique_ptr<SwapChain> createSwapChain(int width, int height) {
    (void)width;
    (void)height;
    return nullptr;
  }
  bool commit(SwapChain& chain) const { return chain.commit(); }

  // Windows and contexts each hold their platform while they live.
  void hold() { ++m_users; }
  // The last holder let go: a platform on a native display that the host
  // owns is forgotten, so the host may close that display.
  void release() {
    if (m_users > 0 && --m_users == 0) unused();
  }

 protected:
  Platform(EGLDisplay display, EGLint surfaceBit) : m_display(display), m_surfaceBit(surfaceBit) {}
  virtual void unused() {}

 private:
  int m_users = 0;
  EGLDisplay m_display;
  EGLint m_surfaceBit;
  std::vector<std::pair<long, std::vector<std::pair<FormatKey, EGLConfig>>>> m_formats;  // by visual
};

// The platforms, opened on first use and kept for the process; null when
// the display cannot be opened.
Platform* headlessPlatform();
Platform* x11Platform(void* xdisplay);

// Reads the current read surface, RGBA rows from the top, leaving the
// context's pixel-store state as it was.
void readCurrentPixels(int width, int height, std::vector<uint8_t>& rgba);
// Opens and initialises an EGL display; EGL_NO_DISPLAY when that fails.
EGLDisplay initialisedDisplay(EGLDisplay dpy);
bool hasClientExtension(const char* name);

}  // namespace kxplatform
