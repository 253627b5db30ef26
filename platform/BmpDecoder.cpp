// Windows bitmaps: the core (12-byte) and info (40-byte and later) headers,
// 1, 4 and 8 bits through a palette, 16, 24 and 32 bits direct or through
// bit-field masks, rows stored bottom-up (positive height) or top-down.
// Run-length and embedded JPEG/PNG bitmaps are refused.
#include <algorithm>

#include "platform/ImageFile.h"
#include "platform/ImageRows.h"

namespace kxplatform {
namespace {

uint32_t le16(const uint8_t* p) { return uint32_t(p[0]) | uint32_t(p[1]) << 8; }
uint32_t le32(const uint8_t* p) { return le16(p) | le16(p + 2) << 16; }

// One colour channel of a bit-field pixel, scaled to 0..255.
struct Channel {
  uint32_t mask = 0, max = 0;
  int shift = 0;
  // False for a mask whose bits are not contiguous.
  bool set(uint32_t m) {
    mask = m;
    max = 0;
    shift = 0;
    if (!m) return true;
    while (!(m & 1u)) {
      m >>= 1;
      ++shift;
    }
    max = m;
    return (m & (uint64_t(m) + 1)) == 0;
  }
  uint8_t of(uint32_t px) const {
    return max ? uint8_t((uint64_t((px & mask) >> shift) * 255 + max / 2) / max) : 0;
  }
};

enum : uint32_t { kRgb = 0, kBitFields = 3, kAlphaBitFields = 6 };

}  // namespace

bool decodeBmp(const uint8_t* data, size_t size, DecodedImage& out) {
  if (!data || size < 26 || data[0] != 'B' || data[1] != 'M') return false;
  const uint64_t pixelsAt = le32(data + 10), headerSize = le32(data + 14);
  const bool core = headerSize == 12;
  if ((!core && headerSize < 40) || 14 + headerSize > size) return false;
  long long width, height;
  uint32_t bpp, compression = kRgb, colorsUsed = 0;
  if (core) {
    width = le16(data + 18);
    height = le16(data + 20);
    bpp = le16(data + 24);
  } else {
    width = int32_t(le32(data + 18));
    height = int32_t(le32(data + 22));
    bpp = le16(data + 28);
    compression = le32(data + 30);
    colorsUsed = le32(data + 46);
  }
  const bool topDown = height < 0;
  if (topDown) height = -height;
  if (!imageSizeAllowed(width, height)) return false;

  Channel red, green, blue, alpha;
  const bool direct = bpp == 16 || bpp == 24 || bpp == 32;
  if (compression == kBitFields || compression == kAlphaBitFields) {
    // The masks follow the 40-byte header, or sit at the same place inside a
    // longer one; an alpha mask exists in headers from 56 bytes on.
    const bool hasAlpha = compression == kAlphaBitFields || headerSize >= 56;
    if (core || (bpp != 16 && bpp != 32) || 54 + (hasAlpha ? 16u : 12u) > size) return false;
    if (!red.set(le32(data + 54)) || !green.set(le32(data + 58)) || !blue.set(le32(data + 62)) ||
        !alpha.set(hasAlpha ? le32(data + 66) : 0))
      return false;
  } else if (compression != kRgb) {
    return false;
  } else if (bpp == 16) {
    red.set(0x7C00);
    green.set(0x03E0);
    blue.set(0x001F);
  } else if (bpp == 32) {
    red.set(0xFF0000);
    green.set(0xFF00);
    blue.set(0xFF);
  } else if (!direct && bpp != 1 && bpp != 4 && bpp != 8) {
    return false;
  }

  // The palette, blue-green-red entries of 3 (core) or 4 bytes.
  const uint8_t* palette = data + 14 + headerSize;
  const uint32_t entryBytes = core ? 3 : 4;
  uint32_t paletteSize = 0;
  if (!direct) {
    paletteSize = colorsUsed && colorsUsed < (1u << bpp) ? colorsUsed : 1u << bpp;
    // Core headers have no count: the palette fills the gap up to the pixels.
    if (pixelsAt >= 14 + headerSize) paletteSize = uint32_t(std::min<uint64_t>(paletteSize, (pixelsAt - 14 - headerSize) / entryBytes));
    if (14 + headerSize + uint64_t(paletteSize) * entryBytes > size) return false;
  }

  const uint64_t stride = (uint64_t(width) * bpp + 31) / 32 * 4;
  if (pixelsAt > size || stride * uint64_t(height) > size - pixelsAt) return false;
  RgbaRows rows;
  if (!rows.start(width, height)) return false;
  bool anyAlpha = false;
  while (uint8_t* dst = rows.next()) {
    const long long y = rows.rows() - 1;
    const uint8_t* src = data + pixelsAt + stride * uint64_t(topDown ? y : height - 1 - y);
    for (long long x = 0; x < width; ++x, dst += 4) {
      if (bpp == 24) {
        const uint8_t* p = src + x * 3;
        dst[0] = p[2], dst[1] = p[1], dst[2] = p[0], dst[3] = 255;
      } else if (direct) {
        const uint32_t px = bpp == 16 ? le16(src + x * 2) : le32(src + x * 4);
        dst[0] = red.of(px), dst[1] = green.of(px), dst[2] = blue.of(px);
        dst[3] = alpha.max ? alpha.of(px) : 255;
        anyAlpha = anyAlpha || dst[3] != 0;
      } else {
        const uint64_t bit = uint64_t(x) * bpp;
        const uint32_t index = (src[bit / 8] >> (8 - bpp - bit % 8)) & ((1u << bpp) - 1);
        const uint8_t* p = palette + index * entryBytes;
        if (index < paletteSize)
          dst[0] = p[2], dst[1] = p[1], dst[2] = p[0];
        else
          dst[0] = dst[1] = dst[2] = 0;  // an index past the palette: black
        dst[3] = 255;
      }
    }
  }
  // Many writers leave a declared alpha channel all zero: such a bitmap is
  // meant to be opaque, not invisible.
  if (alpha.max && !anyAlpha) {
    uint8_t* p = rows.all();
    for (size_t i = 3; i < rows.rowBytes() * size_t(height); i += 4) p[i] = 255;
  }
  return rows.finish(out);
}

}  // namespace kxplatform
