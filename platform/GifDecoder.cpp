// GIF (87a and 89a) through giflib: the first frame on its logical screen,
// interlaced or not, with the transparent index of its graphic control
// extension. Screen pixels the frame does not cover are transparent.
#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "platform/ImageFile.h"
#include "platform/ImageRows.h"

namespace kxplatform {
namespace {

struct Source {
  const uint8_t* data;
  size_t left;
};

int readSource(GifFileType* gif, GifByteType* dst, int n) {
  Source* src = static_cast<Source*>(gif->UserData);
  const size_t take = std::min(src->left, size_t(n < 0 ? 0 : n));
  std::memcpy(dst, src->data, take);
  src->data += take;
  src->left -= take;
  return int(take);
}

struct GifCloser {
  void operator()(GifFileType* gif) const {
    int error = 0;
    DGifCloseFile(gif, &error);
  }
};

// The frame's rows of colour indices, in picture order.
bool readFrame(GifFileType* gif, uint8_t* indices, int width, int height) {
  static const int kStart[] = {0, 4, 2, 1}, kStep[] = {8, 8, 4, 2};
  const int passes = gif->Image.Interlace ? 4 : 1;
  for (int pass = 0; pass < passes; ++pass) {
    const int start = passes == 1 ? 0 : kStart[pass], step = passes == 1 ? 1 : kStep[pass];
    for (int y = start; y < height; y += step)
      if (DGifGetLine(gif, indices + size_t(y) * size_t(width), width) == GIF_ERROR) return false;
  }
  return true;
}

}  // namespace

bool decodeGif(const uint8_t* data, size_t size, DecodedImage& out) {
  if (!data || size < 13) return false;
  Source src{data, size};
  int error = 0;
  std::unique_ptr<GifFileType, GifCloser> gif(DGifOpen(&src, readSource, &error));
  if (!gif) return false;
  int transparent = -1;
  for (;;) {
    GifRecordType type;
    if (DGifGetRecordType(gif.get(), &type) == GIF_ERROR) return false;
    if (type == EXTENSION_RECORD_TYPE) {
      int code = 0;
      GifByteType* block = nullptr;
      if (DGifGetExtension(gif.get(), &code, &block) == GIF_ERROR) return false;
      if (code == GRAPHICS_EXT_FUNC_CODE && block && block[0] >= 4 && (block[1] & 1)) transparent = block[4];
      while (block)
        if (DGifGetExtensionNext(gif.get(), &block) == GIF_ERROR) return false;
      continue;
    }
    if (type != IMAGE_DESC_RECORD_TYPE || DGifGetImageDesc(gif.get()) == GIF_ERROR) return false;
    break;
  }
  const GifImageDesc& frame = gif->Image;
  const ColorMapObject* map = frame.ColorMap ? frame.ColorMap : gif->SColorMap;
  if (!map || !imageSizeAllowed(frame.Width, frame.Height) || frame.Left < 0 || frame.Top < 0) return false;
  // Some writers leave the screen smaller than the frame: grow it.
  const long long width = std::max<long long>(gif->SWidth, (long long)frame.Left + frame.Width);
  const long long height = std::max<long long>(gif->SHeight, (long long)frame.Top + frame.Height);
  if (!imageSizeAllowed(width, height)) return false;
  // Left uninitialised so that only rows the data really fills touch memory.
  std::unique_ptr<uint8_t[]> indices(new (std::nothrow) uint8_t[size_t(frame.Width) * size_t(frame.Height)]);
  if (!indices || !readFrame(gif.get(), indices.get(), frame.Width, frame.Height)) return false;

  RgbaRows rows;
  if (!rows.start(width, height)) return false;
  while (uint8_t* dst = rows.next()) {
    const int y = rows.rows() - 1 - frame.Top;
    std::memset(dst, 0, rows.rowBytes());
    if (y < 0 || y >= frame.Height) continue;
    const uint8_t* src = indices.get() + size_t(y) * size_t(frame.Width);
    for (int x = 0; x < frame.Width; ++x) {
      uint8_t* p = dst + (size_t(frame.Left) + x) * 4;
      const int i = src[x];
      if (i < map->ColorCount) p[0] = map->Colors[i].Red, p[1] = map->Colors[i].Green, p[2] = map->Colors[i].Blue;
      p[3] = i == transparent ? 0 : 255;
    }
  }
  return rows.finish(out);
}

}  // namespace kxplatform
