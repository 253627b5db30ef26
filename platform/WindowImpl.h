#pragma once
// The objects behind HWND, HDC and HGLRC. A window is its window system's
// platform plus its swap chain; nothing here depends on which kind it is.
#include <epoxy/egl.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/Platform.h"
#include "platform/Win32Defs.h"

struct KxDeviceContext {
  KxWindow* window = nullptr;
};

struct KxWindow {
  kxplatform::Platform* platform = nullptr;
  // A memory DC's drawable: not a window to the host, and drawn into at the
  // size of the bitmap selected in it.
  bool memory = false;
  KxBitmap* bitmap = nullptr;  // selected; at first the DC's own 1 x 1 one
  KxBitmap* stockBitmap = nullptr;
  std::unique_ptr<kxplatform::SwapChain> chain;
  int pixelFormat = 0;  // 0 until SetPixelFormat
  EGLConfig config = nullptr;
  KxDeviceContext dc;                  // one DC per window, handed out by GetDC
  KxGLContext* lastContext = nullptr;  // last context made current here
};

// A device-independent bitmap: rows of header.biWidth pixels, bottom-up,
// blue-green-red(-alpha), each row padded to four bytes.
struct KxBitmap {
  BITMAPINFOHEADER header = {};
  uint8_t* bits = nullptr;  // calloc'd: pages are only committed when drawn
  size_t rowBytes = 0;
  KxWindow* selectedIn = nullptr;
};

struct KxGLContext {
  kxplatform::Platform* platform = nullptr;
  EGLConfig config = nullptr;
  EGLContext context = EGL_NO_CONTEXT;
  KxWindow* currentWindow = nullptr;  // window it is current on, if any
};

namespace kxplatform {

bool isLiveWindow(const KxWindow* w);
// Registers a drawable (window or memory DC); null when chain is null.
KxWindow* registerDrawable(Platform* platform, std::unique_ptr<SwapChain> chain, bool memory);
void destroyDrawable(KxWindow* w);
bool isLiveContext(const KxGLContext* c);
// How many contexts exist (created and not yet deleted).
size_t liveContextCount();
// The window's client size in pixels.
void clientSize(const KxWindow* w, int& width, int& height);
// Drops a deleted context from the windows that remember it.
void forgetContext(const KxGLContext* c);

}  // namespace kxplatform
