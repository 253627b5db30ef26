// Pixel formats, numbered once for the process. A number stands for buffer
// sizes (colour, alpha, depth, stencil, samples), not for a config of one
// display: each window maps it to the config of its own display and visual
// that supplies those sizes. Formats are numbered from 1 in the order
// windows first reveal them, so a number never changes meaning.
#include <cstring>
#include <vector>

#include "platform/Win32Window.h"
#include "platform/WindowImpl.h"

using namespace kxplatform;

namespace {

std::vector<FormatKey>& registry() {
  static std::vector<FormatKey> formats;
  return formats;
}

// Numbers every format the window can supply; returns how many are known.
int registerFormats(KxWindow* w) {
  auto& known = registry();
  for (const auto& f : w->platform->formats(w->chain->nativeVisual())) {
    bool seen = false;
    for (const FormatKey& k : known) seen = seen || k == f.first;
    if (!seen) known.push_back(f.first);
  }
  return static_cast<int>(known.size());
}

EGLConfig configOf(KxWindow* w, int format) {
  if (format < 1 || format > registerFormats(w)) return nullptr;
  return w->platform->configFor(registry()[static_cast<size_t>(format - 1)], w->chain->nativeVisual());
}

PIXELFORMATDESCRIPTOR describe(const FormatKey& k, bool supported, bool memory) {
  PIXELFORMATDESCRIPTOR pfd;
  std::memset(&pfd, 0, sizeof pfd);
  pfd.nSize = sizeof pfd;
  pfd.nVersion = 1;
  // Window surfaces swap; off-screen windows swap two pbuffers: both are
  // double-buffered to the engine. A memory DC draws into its one bitmap.
  const DWORD kinds = memory ? PFD_DRAW_TO_BITMAP | PFD_SUPPORT_GDI | PFD_SUPPORT_OPENGL
                             : PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
  pfd.dwFlags = supported ? kinds : 0;
  pfd.iPixelType = PFD_TYPE_RGBA;
  pfd.cRedBits = BYTE(k.red);
  pfd.cGreenBits = BYTE(k.green);
  pfd.cBlueBits = BYTE(k.blue);
  pfd.cAlphaBits = BYTE(k.alpha);
  pfd.cColorBits = BYTE(k.red + k.green + k.blue);
  pfd.cGreenShift = pfd.cRedBits;
  pfd.cBlueShift = BYTE(k.red + k.green);
  pfd.cAlphaShift = pfd.cColorBits;
  pfd.cDepthBits = BYTE(k.depth);
  pfd.cStencilBits = BYTE(k.stencil);
  pfd.iLayerType = PFD_MAIN_PLANE;
  return pfd;
}

}  // namespace

int DescribePixelFormat(HDC hDC, int format, UINT bytes, PIXELFORMATDESCRIPTOR* pfd) {
  if (!hDC || !isLiveWindow(hDC->window)) return 0;
  KxWindow* w = hDC->window;
  const int count = registerFormats(w);
  if (pfd && bytes >= sizeof(PIXELFORMATDESCRIPTOR)) {
    if (format < 1 || format > count) return 0;
    *pfd = describe(registry()[static_cast<size_t>(format - 1)], configOf(w, format) != nullptr, w->memory);
  }
  return count;
}

int ChoosePixelFormat(HDC hDC, const PIXELFORMATDESCRIPTOR* want) {
  if (!want || !hDC || !isLiveWindow(hDC->window)) return 0;
  KxWindow* w = hDC->window;
  const int count = registerFormats(w);
  int best = 0;
  long bestCost = 0;
  for (int i = 1; i <= count; ++i) {
    if (!configOf(w, i)) continue;
    const FormatKey& k = registry()[static_cast<size_t>(i - 1)];
    if (want->iPixelType != PFD_TYPE_RGBA) continue;
    // Missing bits are much worse than surplus bits; multisampling is never
    // asked for, so any costs a little.
    long cost = k.samples;
    auto weigh = [&cost](int have, int need) { cost += have < need ? 100L * (need - have) : (have - need); };
    weigh(k.red + k.green + k.blue, want->cColorBits);
    weigh(k.alpha, want->cAlphaBits);
    weigh(k.depth, want->cDepthBits);
    weigh(k.stencil, want->cStencilBits);
    if (best == 0 || cost < bestCost) {
      best = i;
      bestCost = cost;
    }
  }
  return best;
}

BOOL SetPixelFormat(HDC hDC, int format, const PIXELFORMATDESCRIPTOR*) {
  if (!hDC || !isLiveWindow(hDC->window)) return FALSE;
  KxWindow* w = hDC->window;
  // As on Windows, a window's pixel format is set once for its life.
  if (w->pixelFormat != 0) return w->pixelFormat == format ? TRUE : FALSE;
  EGLConfig config = configOf(w, format);
  if (!config || !w->chain->realize(config)) return FALSE;
  w->config = config;
  w->pixelFormat = format;
  return TRUE;
}

int GetPixelFormat(HDC hDC) {
  if (!hDC || !isLiveWindow(hDC->window)) return 0;
  return hDC->window->pixelFormat;
}
