// Pictures of the view at any size: rendered off-screen in tiles, each with
// the projection of its part of the whole picture, and handed on a band of
// rows at a time, so memory does not grow with the height.
#include <epoxy/gl.h>

#include <algorithm>
#include <new>
#include <vector>

#include "kxrender/CSceneMgr.h"
#include "platform/Win32Window.h"
#include "support/PngStream.h"

namespace {

const int kMaxPictureSide = 1000000;
const int kTileSide = 4096;
const int kBandRows = 1024;
// Bands of very wide pictures get fewer rows, down to 32.
const size_t kBandBytes = size_t(64) << 20;

// Splits `whole` into nearly equal pieces of at most `most` (a multiple of
// 32), each a multiple of 32 but the last.
int pieceOf(int whole, int most) {
  const int pieces = (whole + most - 1) / most;
  return std::min(most, ((whole + pieces - 1) / pieces + 31) / 32 * 32);
}

}  // namespace

bool CSceneMgr::renderImageRows(int width, int height, int tileWidth, int tileHeight, const RowSink& row) {
  if (width <= 0 || height <= 0 || width > kMaxPictureSide || height > kMaxPictureSide || !row) return false;
  tileWidth = tileWidth > 0 ? std::min(tileWidth, width) : pieceOf(width, kTileSide);
  const int bandRows = int(std::max<size_t>(32, std::min<size_t>(kBandRows, kBandBytes / (size_t(width) * 3))));
  tileHeight = tileHeight > 0 ? std::min(tileHeight, height) : std::min(height, bandRows);
  // Tiles start at multiples of 32 pixels from the lower left corner, so the
  // 32 x 32 polygon stipple of highlighted faces stays in step across them.
  auto aligned = [](int side) { return side > 32 ? side - side % 32 : side; };
  if (tileWidth < width) tileWidth = aligned(tileWidth);
  if (tileHeight < height) tileHeight = aligned(tileHeight);
  DIBSection tile;
  if (!tile.Create(tileWidth, tileHeight, 24)) return false;
  // Less memory than asked for gives smaller tiles, never a smaller picture.
  if (int(tile.Width()) < tileWidth) tileWidth = aligned(int(tile.Width()));
  if (int(tile.Height()) < tileHeight) tileHeight = aligned(int(tile.Height()));
  // The window's view stays as it was for picking until it draws again.
  struct View {
    int width, height, viewport[4];
    double frustumWidth, frustumHeight, proj[16], modelView[16];
    std::vector<std::vector<double>> planes;
  } view{m_viewWidth, m_viewHeight, {}, m_frustumWidth, m_frustumHeight, {}, {}, m_frustumPlanes};
  std::copy_n(m_viewport, 4, view.viewport);
  std::copy_n(m_projMatrix, 16, view.proj);
  std::copy_n(m_modelViewMatrix, 16, view.modelView);
  const HGLRC previous = wglGetCurrentContext();
  const HDC previousDC = wglGetCurrentDC();
  releaseListsInCurrent();
  HGLRC rc = nullptr;
  const HDC dc = tile.GetDC()->GetSafeHdc();
  bool ok = openBitmapContext(dc, rc);
  if (ok) {
    CSceneMgr* const drawing = m_currentScenePtr;
    m_currentScenePtr = this;
    // Spans as large as a viewport may be, in whole tiles; only their
    // edges need projections of their own.
    GLint most[2] = {kTileSide, kTileSide};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, most);
    const int spanW = std::max(1, most[0] / tileWidth) * tileWidth;
    const int spanH = std::max(1, most[1] / tileHeight) * tileHeight;
    std::vector<unsigned char> band;
    try {
      band.resize(size_t(width) * 3 * size_t(tileHeight));
    } catch (const std::bad_alloc&) {
      ok = false;
    }
    const unsigned char* bits = static_cast<const unsigned char*>(tile.GetBits());
    // The top band takes what is left over, the others whole tiles.
    for (int y = 0, th = height % tileHeight ? height % tileHeight : tileHeight; ok && y < height;
         y += th, th = tileHeight) {
      for (int x = 0; x < width; x += tileWidth) {
        const int tw = std::min(tileWidth, width - x);
        drawImageRegion(width, height, x, y, tw, th, spanW, spanH, m_bDrawCoordinate);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glReadPixels(0, 0, GLsizei(tile.GetTotalWidth()), th, GL_BGR, GL_UNSIGNED_BYTE, tile.GetBits());
        // The tile's rows are bottom-up and blue first.
        for (int r = 0; r < th; ++r) {
          const unsigned char* from = bits + size_t(th - 1 - r) * tile.GetRowBytes();
          unsigned char* to = &band[(size_t(r) * size_t(width) + size_t(x)) * 3];
          for (int i = 0; i < tw; ++i, from += 3, to += 3) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
          }
        }
      }
      for (int r = 0; ok && r < th; ++r) ok = row(y + r, &band[size_t(r) * size_t(width) * 3]);
    }
    releaseListsInCurrent();
    m_currentScenePtr = drawing;
  }
  if (rc) wglDeleteContext(rc);
  if (previous) wglMakeCurrent(previousDC, previous);
  m_viewWidth = view.width;
  m_viewHeight = view.height;
  m_frustumWidth = view.frustumWidth;
  m_frustumHeight = view.frustumHeight;
  m_frustumPlanes = view.planes;
  std::copy_n(view.viewport, 4, m_viewport);
  std::copy_n(view.proj, 16, m_projMatrix);
  std::copy_n(view.modelView, 16, m_modelViewMatrix);
  return ok;
}

bool CSceneMgr::renderToImageTiled(int width, int height, const char* path) {
  PngRowWriter png;
  if (!path || width <= 0 || height <= 0 || width > kMaxPictureSide || height > kMaxPictureSide ||
      !png.open(path, width, height))
    return false;
  const bool drawn =
      renderImageRows(width, height, 0, 0, [&png](int, const unsigned char* rgb) { return png.writeRow(rgb); });
  return drawn && png.finish();  // the writer removes an unfinished file
}

bool KxWriteDibPng(const DIBSection& dib, const char* path) {
  if (!path || !dib.IsCreated() || (dib.GetBitCount() != 24 && dib.GetBitCount() != 32)) return false;
  PngRowWriter png;
  const int w = int(dib.Width()), h = int(dib.Height());
  if (!png.open(path, w, h)) return false;
  const unsigned bytes = unsigned(dib.GetBitCount() / 8);
  std::vector<unsigned char> rgb(size_t(w) * 3);
  const unsigned char* bits = static_cast<const unsigned char*>(dib.GetBits());
  for (int y = 0; y < h; ++y) {
    const unsigned char* from = bits + size_t(h - 1 - y) * dib.GetRowBytes();  // bottom-up
    for (int i = 0; i < w; ++i, from += bytes) {
      rgb[size_t(i) * 3] = from[2];
      rgb[size_t(i) * 3 + 1] = from[1];
      rgb[size_t(i) * 3 + 2] = from[0];
    }
    if (!png.writeRow(rgb.data())) return false;
  }
  return png.finish();
}
