#include "platform/ImageOrientation.h"

#include <cstring>
#include <new>

namespace kxplatform {

int exifOrientation(const uint8_t* app1, size_t size) {
  if (!app1 || size < 14 || std::memcmp(app1, "Exif\0\0", 6) != 0) return 1;
  const uint8_t* tiff = app1 + 6;  // offsets below count from here
  const size_t n = size - 6;
  const bool little = tiff[0] == 'I' && tiff[1] == 'I';
  if (!little && !(tiff[0] == 'M' && tiff[1] == 'M')) return 1;
  auto u16 = [&](size_t at) { return little ? tiff[at] | tiff[at + 1] << 8 : tiff[at] << 8 | tiff[at + 1]; };
  auto u32 = [&](size_t at) { return uint32_t(little ? u16(at) | u16(at + 2) << 16 : u16(at) << 16 | u16(at + 2)); };
  if (u16(2) != 42) return 1;
  const uint64_t ifd = u32(4);
  if (ifd + 2 > n) return 1;
  const unsigned count = unsigned(u16(size_t(ifd)));
  for (unsigned i = 0; i < count; ++i) {
    const uint64_t entry = ifd + 2 + uint64_t(i) * 12;
    if (entry + 12 > n) return 1;
    if (u16(size_t(entry)) == 0x0112 && u16(size_t(entry) + 2) == 3) {  // Orientation, SHORT
      const int v = u16(size_t(entry) + 8);
      return v >= 1 && v <= 8 ? v : 1;
    }
  }
  return 1;
}

bool applyOrientation(DecodedImage& image, int orientation) {
  if (orientation < 2 || orientation > 8) return true;
  const int w = image.width, h = image.height;
  const bool swap = orientation >= 5;
  const int ow = swap ? h : w, oh = swap ? w : h;
  std::vector<uint8_t> turned;
  try {
    turned.resize(image.rgba.size());
  } catch (const std::bad_alloc&) {
    return false;
  }
  for (int y = 0; y < oh; ++y) {
    for (int x = 0; x < ow; ++x) {
      int sx = x, sy = y;  // the stored pixel that shows at (x, y)
      switch (orientation) {
        case 2: sx = w - 1 - x; break;
        case 3: sx = w - 1 - x, sy = h - 1 - y; break;
        case 4: sy = h - 1 - y; break;
        case 5: sx = y, sy = x; break;
        case 6: sx = y, sy = h - 1 - x; break;
        case 7: sx = w - 1 - y, sy = h - 1 - x; break;
        case 8: sx = w - 1 - y, sy = x; break;
      }
      std::memcpy(&turned[(size_t(y) * ow + x) * 4], &image.rgba[(size_t(sy) * w + sx) * 4], 4);
    }
  }
  image.rgba.swap(turned);
  image.width = ow;
  image.height = oh;
  return true;
}

}  // namespace kxplatform
