#pragma once
// The objects behind HWND, HDC and HGLRC.
#include <epoxy/egl.h>

#include <cstdint>
#include <vector>

#include "kxrender/Win32Types.h"

struct KxDeviceContext {
  KxWindow* window = nullptr;
};

struct KxWindow {
  enum class Kind { Offscreen, X11 };
  Kind kind = Kind::Offscreen;
  int width = 1, height = 1;  // off-screen client size
  void* xdisplay = nullptr;
  unsigned long xwindow = 0;
  EGLDisplay display = EGL_NO_DISPLAY;
  int pixelFormat = 0;  // 0 until SetPixelFormat
  EGLConfig config = nullptr;
  EGLSurface surface = EGL_NO_SURFACE;
  KxDeviceContext dc;              // one DC per window, handed out by GetDC
  KxGLContext* lastContext = nullptr;  // last context made current here
  // What SwapBuffers last presented (off-screen windows), RGBA top-down.
  std::vector<uint8_t> front;
  int frontWidth = 0, frontHeight = 0;
};

struct KxGLContext {
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLConfig config = nullptr;
  EGLContext context = EGL_NO_CONTEXT;
  KxWindow* currentWindow = nullptr;  // window it is current on, if any
};

namespace kxplatform {

bool isLiveWindow(const KxWindow* w);
bool isLiveContext(const KxGLContext* c);
// The EGL configs usable as pixel formats of this window, format i at [i-1].
const std::vector<EGLConfig>& pixelFormatsOf(KxWindow* w);
// Creates the window's EGL surface for its chosen config.
bool createSurface(KxWindow* w);
// The client size of the window in pixels.
void clientSize(const KxWindow* w, int& width, int& height);
// X11 helpers (compiled in X11Window.cpp, the only file that includes Xlib).
bool x11WindowSize(void* xdisplay, unsigned long xwindow, int& width, int& height);
long x11WindowVisual(void* xdisplay, unsigned long xwindow);
// Root-window coordinates to the window's own; false when X cannot tell.
bool x11ScreenToWindow(void* xdisplay, unsigned long xwindow, int& x, int& y);
// Reads the pixels drawn into the current draw surface, RGBA top-down.
void readCurrentPixels(int width, int height, std::vector<uint8_t>& rgba);
// Forgets a destroyed context in the windows that remember it.
void forgetContext(KxGLContext* c);

}  // namespace kxplatform
