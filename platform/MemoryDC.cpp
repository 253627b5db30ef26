// Memory device contexts and device-independent bitmaps. A bitmap is plain
// memory the host reads and writes; GL draws into an off-screen surface of
// the bitmap's size owned by the memory DC the bitmap is selected in, and
// the engine copies the frame into the bits when it is done.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>

#include "platform/Win32Window.h"
#include "platform/WindowImpl.h"

using namespace kxplatform;

namespace {

std::set<const KxBitmap*>& bitmaps() {
  // Never destroyed: the shared off-screen bitmap may let go of its DC
  // while statics are destroyed at exit.
  static auto* live = new std::set<const KxBitmap*>;
  return *live;
}

bool isLiveBitmap(const void* b) { return b && bitmaps().count(static_cast<const KxBitmap*>(b)) != 0; }

bool isMemoryDC(HDC dc) { return dc && isLiveWindow(dc->window) && dc->window->memory; }

// Larger surfaces exceed what GL viewports address (and what the off-screen
// windows allow).
const long kMaxSurfaceSide = 16384;

// Byte offset of pixel (x, y), y from the top, in a bottom-up bitmap.
size_t offsetOf(const KxBitmap& b, long x, long y) {
  const long rows = std::labs(long(b.header.biHeight));
  const long row = b.header.biHeight > 0 ? rows - 1 - y : y;
  return size_t(row) * b.rowBytes + size_t(x) * (b.header.biBitCount / 8u);
}

}  // namespace

HDC CreateCompatibleDC(HDC) {
  Platform* platform = headlessPlatform();
  if (!platform) return nullptr;
  KxWindow* w = registerDrawable(platform, platform->createSwapChain(1, 1), true);
  if (!w) return nullptr;
  // As on Windows, a new memory DC holds a 1 x 1 bitmap of its own, which
  // selecting another hands back.
  BITMAPINFO one = {};
  one.bmiHeader = BITMAPINFOHEADER{sizeof(BITMAPINFOHEADER), 1, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  w->stockBitmap = CreateDIBSection(nullptr, &one, DIB_RGB_COLORS, nullptr, nullptr, 0);
  if (!w->stockBitmap) {
    destroyDrawable(w);
    return nullptr;
  }
  w->stockBitmap->selectedIn = w;
  w->bitmap = w->stockBitmap;
  return &w->dc;
}

BOOL DeleteDC(HDC hDC) {
  if (!isMemoryDC(hDC)) return FALSE;
  KxWindow* w = hDC->window;
  if (w->bitmap) w->bitmap->selectedIn = nullptr;
  w->stockBitmap->selectedIn = nullptr;
  DeleteObject(w->stockBitmap);
  destroyDrawable(w);
  return TRUE;
}

HBITMAP CreateDIBSection(HDC, const BITMAPINFO* info, UINT usage, void** bits, void* section, DWORD offset) {
  if (bits) *bits = nullptr;
  if (!info || usage != DIB_RGB_COLORS || section || offset) return nullptr;
  const BITMAPINFOHEADER& h = info->bmiHeader;
  const long width = h.biWidth, rows = std::labs(long(h.biHeight));
  if (h.biSize < sizeof(BITMAPINFOHEADER) || h.biPlanes != 1 || h.biCompression != BI_RGB ||
      (h.biBitCount != 24 && h.biBitCount != 32) || width <= 0 || rows <= 0)
    return nullptr;
  // What no off-screen surface can hold is refused like memory that cannot
  // be had: the caller tries a smaller size.
  if (width > kMaxSurfaceSide || rows > kMaxSurfaceSide) return nullptr;
  const size_t rowBytes = ((size_t(width) * h.biBitCount + 31) / 32) * 4;
  void* memory = std::calloc(rowBytes, size_t(rows));
  if (!memory) return nullptr;
  auto* b = new KxBitmap;
  b->header = h;
  b->header.biSizeImage = DWORD(std::min<size_t>(rowBytes * size_t(rows), 0xFFFFFFFFu));
  b->bits = static_cast<uint8_t*>(memory);
  b->rowBytes = rowBytes;
  bitmaps().insert(b);
  if (bits) *bits = b->bits;
  return b;
}

HGDIOBJ SelectObject(HDC hDC, HGDIOBJ object) {
  if (!isMemoryDC(hDC) || !isLiveBitmap(object)) return nullptr;
  KxWindow* w = hDC->window;
  auto* b = static_cast<KxBitmap*>(object);
  if (b->selectedIn && b->selectedIn != w) return nullptr;  // one DC at a time
  // GL draws at the bitmap's size from now on.
  if (!w->chain->resize(int(b->header.biWidth), int(std::labs(long(b->header.biHeight))))) return nullptr;
  KxBitmap* previous = w->bitmap;
  if (previous != b) previous->selectedIn = nullptr;
  b->selectedIn = w;
  w->bitmap = b;
  return previous;
}

BOOL DeleteObject(HGDIOBJ object) {
  if (!isLiveBitmap(object)) return FALSE;
  auto* b = static_cast<KxBitmap*>(object);
  if (b->selectedIn) return FALSE;  // as on Windows: deselect it first
  bitmaps().erase(b);
  std::free(b->bits);
  delete b;
  return TRUE;
}

BOOL BitBlt(HDC dst, int x, int y, int width, int height, HDC src, int srcX, int srcY, DWORD rop) {
  if (rop != SRCCOPY || !isMemoryDC(dst) || !isMemoryDC(src)) return FALSE;
  const KxBitmap* s = src->window->bitmap;
  KxBitmap* d = dst->window->bitmap;
  const long sw = s->header.biWidth, sh = std::labs(long(s->header.biHeight));
  const long dw = d->header.biWidth, dh = std::labs(long(d->header.biHeight));
  // Clip the rectangle to both bitmaps.
  long x0 = 0, y0 = 0, x1 = width, y1 = height;
  x0 = std::max({x0, -long(x), -long(srcX)});
  y0 = std::max({y0, -long(y), -long(srcY)});
  x1 = std::min({x1, dw - x, sw - srcX});
  y1 = std::min({y1, dh - y, sh - srcY});
  const unsigned sb = s->header.biBitCount / 8u, db = d->header.biBitCount / 8u;
  for (long j = y0; j < y1; ++j)
    for (long i = x0; i < x1; ++i) {
      const uint8_t* from = s->bits + offsetOf(*s, srcX + i, srcY + j);
      uint8_t* to = d->bits + offsetOf(*d, x + i, y + j);
      std::memcpy(to, from, 3);
      if (db == 4) to[3] = sb == 4 ? from[3] : 0;
    }
  return TRUE;
}
