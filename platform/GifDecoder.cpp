// GIF (87a and 89a) through giflib: the first frame, interlaced or not, with
// the transparent index of its graphic control extension. The picture is
// the frame's own rectangle: the logical screen around it is ignored, so a
// few bytes naming a huge screen cannot make a huge image.
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
  if (!map || !imageSizeAllowed(frame.Width, frame.Height)) return false;
  // Left uninitialised so that only rows the data really fills touch memory.
  std::unique_ptr<uint8_t[]> indices(new (std::nothrow) uint8_t[size_t(frame.Width) * size_t(frame.Height)]);
  if (!indices || !readFrame(gif.get(), indices.get(), frame.Width, frame.Height)) return false;

  RgbaRows rows;
  if (!rows.start(frame.Width, frame.Height)) return false;
  const uint8_t* index = indices.get();
  while (uint8_t* dst = rows.next()) {
    for (int x = 0; x < frame.Width; ++x, ++index, dst += 4) {
      const int i = *index;
      const bool known = i < map->ColorCount;  // an index past the map: black
      dst[0] = known ? map->Colors[i].Red : 0;
      dst[1] = known ? map->Colors[i].Green : 0;
      dst[2] = known ? map->Colors[i].Blue : 0;
      dst[3] = i == transparent ? 0 : 255;
    }
  }
  return rows.finish(out);
}

}  // namespace kxplatform
