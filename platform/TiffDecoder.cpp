// TIFF through libtiff's RGBA interface, which covers strips and tiles, 1 to
// 16 bits, palette, grey, RGB, YCbCr and separated images and every codec
// the library was built with (none, LZW, Deflate, PackBits, JPEG, ...).
#include <tiffio.h>

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
  uint64_t size, at;
};

tmsize_t readSource(thandle_t h, void* dst, tmsize_t n) {
  Source* src = static_cast<Source*>(h);
  if (n <= 0 || src->at >= src->size) return 0;
  const uint64_t take = std::min<uint64_t>(uint64_t(n), src->size - src->at);
  std::memcpy(dst, src->data + src->at, size_t(take));
  src->at += take;
  return tmsize_t(take);
}
tmsize_t noWrite(thandle_t, void*, tmsize_t) { return 0; }
toff_t seekSource(thandle_t h, toff_t off, int whence) {
  Source* src = static_cast<Source*>(h);
  const uint64_t base = whence == SEEK_CUR ? src->at : whence == SEEK_END ? src->size : 0;
  if (whence != SEEK_SET && whence != SEEK_CUR && whence != SEEK_END) return toff_t(-1);
  src->at = base + off;  // past the end is allowed; reads there return nothing
  return src->at;
}
int closeSource(thandle_t) { return 0; }
toff_t sizeOfSource(thandle_t h) { return static_cast<Source*>(h)->size; }
int noMap(thandle_t, void**, toff_t*) { return 0; }
void noUnmap(thandle_t, void*, toff_t) {}
// Bad files are answered with false, not with text on stderr.
int quiet(TIFF*, void*, const char*, const char*, va_list) { return 1; }

// Whether every strip or tile the image needs lies inside the file. A few
// hundred bytes may declare a raster of hundreds of megabytes: such a file
// is refused before that raster is made.
bool chunksInsideFile(TIFF* tif, uint64_t fileSize) {
  const uint32_t chunks = TIFFIsTiled(tif) ? TIFFNumberOfTiles(tif) : TIFFNumberOfStrips(tif);
  if (chunks == 0) return false;
  for (uint32_t i = 0; i < chunks; ++i) {
    const uint64_t at = TIFFGetStrileOffset(tif, i), n = TIFFGetStrileByteCount(tif, i);
    if (n == 0 || at > fileSize || n > fileSize - at) return false;
  }
  return true;
}

struct TiffCloser {
  void operator()(TIFF* tif) const { TIFFClose(tif); }
};

}  // namespace

bool decodeTiff(const uint8_t* data, size_t size, DecodedImage& out) {
  if (!data || size < 8) return false;
  Source src{data, size, 0};
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  if (!options) return false;
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, tmsize_t(256) << 20);  // strip buffers and tag arrays
  TIFFOpenOptionsSetErrorHandlerExtR(options, quiet, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options, quiet, nullptr);
  std::unique_ptr<TIFF, TiffCloser> tif(TIFFClientOpenExt("memory", "rm", &src, readSource, noWrite, seekSource,
                                                          closeSource, sizeOfSource, noMap, noUnmap, options));
  TIFFOpenOptionsFree(options);
  if (!tif) return false;
  uint32_t width = 0, height = 0;
  char why[1024];
  if (!TIFFGetField(tif.get(), TIFFTAG_IMAGEWIDTH, &width) || !TIFFGetField(tif.get(), TIFFTAG_IMAGELENGTH, &height) ||
      !imageSizeAllowed(width, height) || !TIFFRGBAImageOK(tif.get(), why) || !chunksInsideFile(tif.get(), size))
    return false;
  // Left uninitialised so that a file whose data ends early touches little.
  std::unique_ptr<uint32_t[]> raster(new (std::nothrow) uint32_t[size_t(width) * height]);
  if (!raster || !TIFFReadRGBAImageOriented(tif.get(), width, height, raster.get(), ORIENTATION_TOPLEFT, 1))
    return false;
  RgbaRows rows;
  if (!rows.start(width, height)) return false;
  const uint32_t* px = raster.get();
  while (uint8_t* dst = rows.next()) {
    for (uint32_t x = 0; x < width; ++x, ++px, dst += 4) {
      const uint32_t a = TIFFGetA(*px);
      dst[0] = uint8_t(TIFFGetR(*px)), dst[1] = uint8_t(TIFFGetG(*px)), dst[2] = uint8_t(TIFFGetB(*px));
      dst[3] = uint8_t(a);
      // The library hands alpha images over premultiplied; textures blend
      // with straight alpha.
      if (a != 255)
        for (int c = 0; c < 3; ++c) dst[c] = a ? uint8_t(std::min<uint32_t>(255, (dst[c] * 255 + a / 2) / a)) : 0;
    }
  }
  return rows.finish(out);
}

}  // namespace kxplatform
