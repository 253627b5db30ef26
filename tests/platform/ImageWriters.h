#pragma once
// Small pictures with known pixels, encoded by the format libraries' own
// writers (BMP by hand), for the decoder and texture tests.
#include <gif_lib.h>
#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <cstdio>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <jpeglib.h>  // after cstdio: it needs FILE

namespace imgtest {

// Pixels as 0xRRGGBBAA, the top row first.
struct Picture {
  int w = 0, h = 0;
  std::vector<uint32_t> px;
  uint32_t at(int x, int y) const { return px[size_t(y) * w + x]; }
  std::vector<uint8_t> rgba() const {
    std::vector<uint8_t> out;
    for (uint32_t p : px) out.insert(out.end(), {uint8_t(p >> 24), uint8_t(p >> 16), uint8_t(p >> 8), uint8_t(p)});
    return out;
  }
};
inline uint8_t R(uint32_t p) { return uint8_t(p >> 24); }
inline uint8_t G(uint32_t p) { return uint8_t(p >> 16); }
inline uint8_t B(uint32_t p) { return uint8_t(p >> 8); }
inline uint8_t A(uint32_t p) { return uint8_t(p); }

// Colours from a palette of n entries, each pixel a different neighbour.
inline Picture paletted(int w, int h, int n, bool alpha = false) {
  Picture p{w, h, {}};
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const uint32_t i = uint32_t(x * 3 + y * 5) % uint32_t(n);
      p.px.push_back((i * 37 + 11) % 256 << 24 | (255 - i * 53 % 256) << 16 | (i * 91 % 256) << 8 |
                     (alpha ? (i * 71 + 9) % 256 : 255));
    }
  return p;
}
// Grey levels that `bits` bits hold exactly.
inline Picture grey(int w, int h, int bits, bool alpha = false) {
  Picture p{w, h, {}};
  const uint32_t top = (1u << std::min(bits, 8)) - 1;
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const uint32_t v = uint32_t(x + 2 * y) % (top + 1) * 255 / top;
      p.px.push_back(v << 24 | v << 16 | v << 8 | (alpha ? uint32_t(40 * x + 7 * y) % 256 : 255));
    }
  return p;
}
inline std::vector<uint32_t> paletteOf(const Picture& p) {
  std::vector<uint32_t> pal;
  for (uint32_t c : p.px)
    if (std::find(pal.begin(), pal.end(), c) == pal.end()) pal.push_back(c);
  return pal;
}
inline int indexOf(const std::vector<uint32_t>& pal, uint32_t c) {
  return int(std::find(pal.begin(), pal.end(), c) - pal.begin());
}

inline bool save(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream out(path, std::ios::binary);
  return bool(out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size())).flush());
}
// Row y as samples: palette indices when there is a palette, else grey or red, green and blue, then alpha when
// asked; every sample `bytes` times (16 bits: v * 257 in either byte order).
inline std::vector<uint8_t> samples(const Picture& p, int y, const std::vector<uint32_t>& pal, bool grey, bool alpha,
                                    int bytes = 1) {
  std::vector<uint8_t> row;
  for (int x = 0; x < p.w; ++x) {
    const uint32_t c = p.at(x, y);
    std::vector<uint8_t> s = {uint8_t(indexOf(pal, c))};
    if (pal.empty()) s = grey ? std::vector<uint8_t>{R(c)} : std::vector<uint8_t>{R(c), G(c), B(c)};
    if (alpha) s.push_back(A(c));
    for (uint8_t v : s) row.insert(row.end(), size_t(bytes), v);
  }
  return row;
}

// ---- BMP, by hand ----
struct BmpLayout {
  int bpp = 24;
  int headerSize = 40;  // 12 (core), 40, 56, 108 or 124
  bool topDown = false;
  std::vector<uint32_t> masks;  // red, green, blue[, alpha]: bit fields when given
};
inline void put16(std::vector<uint8_t>& b, size_t at, uint32_t v) { b[at] = uint8_t(v), b[at + 1] = uint8_t(v >> 8); }
inline void put32(std::vector<uint8_t>& b, size_t at, uint32_t v) { put16(b, at, v), put16(b, at + 2, v >> 16); }
// Scales an 8-bit channel into a mask's bits.
inline uint32_t toMask(uint8_t v, uint32_t mask) {
  if (!mask) return 0;
  int shift = 0;
  while (!(mask >> shift & 1)) ++shift;
  const uint64_t max = mask >> shift;
  return uint32_t((v * max + 127) / 255) << shift;
}
inline std::vector<uint8_t> bmp(const Picture& p, const BmpLayout& l) {
  const bool core = l.headerSize == 12, palette = l.bpp <= 8;
  const std::vector<uint32_t> pal = palette ? paletteOf(p) : std::vector<uint32_t>();
  const size_t maskBytes = !l.masks.empty() && l.headerSize == 40 ? l.masks.size() * 4 : 0;
  const size_t palAt = 14 + size_t(l.headerSize) + maskBytes, entry = core ? 3 : 4;
  const size_t dataAt = palAt + pal.size() * entry, stride = (size_t(p.w) * l.bpp + 31) / 32 * 4;
  std::vector<uint8_t> b(dataAt + stride * p.h, 0);
  b[0] = 'B', b[1] = 'M';
  put32(b, 2, uint32_t(b.size()));
  put32(b, 10, uint32_t(dataAt));
  put32(b, 14, uint32_t(l.headerSize));
  if (core) {
    put16(b, 18, p.w), put16(b, 20, p.h), put16(b, 22, 1), put16(b, 24, l.bpp);
  } else {
    put32(b, 18, p.w), put32(b, 22, uint32_t(l.topDown ? -p.h : p.h)), put16(b, 26, 1), put16(b, 28, l.bpp);
    put32(b, 30, l.masks.empty() ? 0 : l.masks.size() == 4 && l.headerSize == 40 ? 6 : 3);
    put32(b, 46, uint32_t(pal.size()));
    for (size_t i = 0; i < l.masks.size(); ++i) put32(b, 54 + i * 4, l.masks[i]);
  }
  for (size_t i = 0; i < pal.size(); ++i)
    b[palAt + i * entry] = B(pal[i]), b[palAt + i * entry + 1] = G(pal[i]), b[palAt + i * entry + 2] = R(pal[i]);
  const std::vector<uint32_t> m = l.masks.empty() ? (l.bpp == 16 ? std::vector<uint32_t>{0x7C00, 0x3E0, 0x1F}
                                                                 : std::vector<uint32_t>{0xFF0000, 0xFF00, 0xFF})
                                                  : l.masks;
  for (int y = 0; y < p.h; ++y) {
    uint8_t* row = &b[dataAt + stride * size_t(l.topDown ? y : p.h - 1 - y)];
    for (int x = 0; x < p.w; ++x) {
      const uint32_t c = p.at(x, y);
      if (palette) {
        const int bit = x * l.bpp;
        row[bit / 8] |= uint8_t(indexOf(pal, c) << (8 - l.bpp - bit % 8));
      } else {  // 24 bits too, through the default masks
        uint32_t v = toMask(R(c), m[0]) | toMask(G(c), m[1]) | toMask(B(c), m[2]) | (m.size() > 3 ? toMask(A(c), m[3]) : 0);
        for (int k = 0; k < l.bpp / 8; ++k) row[x * l.bpp / 8 + k] = uint8_t(v >> (8 * k));
      }
    }
  }
  return b;
}

// ---- PNG ----
struct PngLayout {
  int colorType = PNG_COLOR_TYPE_RGBA;
  int depth = 8;
  bool interlaced = false;
  bool colourKey = false;  // tRNS on an RGB or grey image: the first pixel's colour is transparent
};
inline void pngToVector(png_structp png, png_bytep data, png_size_t n) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), data, data + n);
}
inline std::vector<uint8_t> pngBytes(const Picture& p, const PngLayout& l) {
  std::vector<uint8_t> out;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return {};
  }
  png_set_write_fn(png, &out, pngToVector, nullptr);
  png_set_IHDR(png, info, p.w, p.h, l.depth, l.colorType, l.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  const std::vector<uint32_t> pal = l.colorType == PNG_COLOR_TYPE_PALETTE ? paletteOf(p) : std::vector<uint32_t>();
  const int maxv = (1 << l.depth) - 1;
  const auto scale = [&](uint8_t v) { return png_uint_16(v * maxv / 255); };
  if (!pal.empty()) {
    std::vector<png_color> colours;
    std::vector<png_byte> alphas;
    for (uint32_t c : pal) colours.push_back({R(c), G(c), B(c)}), alphas.push_back(A(c));
    png_set_PLTE(png, info, colours.data(), int(colours.size()));
    png_set_tRNS(png, info, alphas.data(), int(alphas.size()), nullptr);
  }
  if (l.colourKey) {
    const uint32_t c = p.at(0, 0);
    png_color_16 key{0, scale(R(c)), scale(G(c)), scale(B(c)), scale(R(c))};  // index, red, green, blue, grey
    png_set_tRNS(png, info, nullptr, 0, &key);
  }
  png_write_info(png, info);
  if (l.depth < 8) png_set_packing(png);
  std::vector<std::vector<uint8_t>> rows;
  std::vector<png_bytep> pointers;
  for (int y = 0; y < p.h; ++y) {
    rows.push_back(samples(p, y, pal, !(l.colorType & PNG_COLOR_MASK_COLOR), l.colorType & PNG_COLOR_MASK_ALPHA,
                           l.depth == 16 ? 2 : 1));
    if (l.depth < 8 && pal.empty())
      for (uint8_t& v : rows.back()) v = uint8_t(scale(v));
  }
  for (auto& row : rows) pointers.push_back(row.data());
  png_write_image(png, pointers.data());  // every pass of an interlaced image
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return out;
}

// ---- JPEG ----
struct JpegLayout {
  J_COLOR_SPACE space = JCS_RGB;  // JCS_RGB, JCS_GRAYSCALE or JCS_CMYK
  bool progressive = false;
  std::vector<uint8_t> app1;  // written as an APP1 marker when not empty
};
inline std::vector<uint8_t> jpegBytes(const Picture& p, const JpegLayout& l) {
  jpeg_compress_struct c;
  jpeg_error_mgr err;
  c.err = jpeg_std_error(&err);
  jpeg_create_compress(&c);
  unsigned char* mem = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&c, &mem, &size);
  c.image_width = JDIMENSION(p.w), c.image_height = JDIMENSION(p.h);
  c.in_color_space = l.space;
  c.input_components = l.space == JCS_GRAYSCALE ? 1 : l.space == JCS_CMYK ? 4 : 3;
  jpeg_set_defaults(&c);
  jpeg_set_quality(&c, 98, TRUE);
  for (int i = 0; i < c.num_components; ++i) c.comp_info[i].h_samp_factor = c.comp_info[i].v_samp_factor = 1;
  if (l.progressive) jpeg_simple_progression(&c);
  jpeg_start_compress(&c, TRUE);
  if (!l.app1.empty()) jpeg_write_marker(&c, JPEG_APP0 + 1, l.app1.data(), unsigned(l.app1.size()));
  for (int y = 0; y < p.h; ++y) {
    // Inverted CMYK (Adobe) takes alpha for black: no ink in the opaque pictures it is given.
    std::vector<uint8_t> row = samples(p, y, {}, l.space == JCS_GRAYSCALE, l.space == JCS_CMYK);
    JSAMPROW r = row.data();
    jpeg_write_scanlines(&c, &r, 1);
  }
  jpeg_finish_compress(&c);
  std::vector<uint8_t> out(mem, mem + size);
  jpeg_destroy_compress(&c);
  free(mem);
  return out;
}

// ---- GIF ----
struct GifLayout {
  bool gif89 = false;
  bool interlaced = false;
  bool localMap = false;
  int transparentIndex = -1;  // written in a graphic control extension
  int left = 0, top = 0, screenW = 0, screenH = 0;  // frame placement; screen 0: the frame's size
  bool secondFrame = false;  // a different frame after the first
};
inline int gifToVector(GifFileType* gif, const GifByteType* data, int n) {
  auto* out = static_cast<std::vector<uint8_t>*>(gif->UserData);
  out->insert(out->end(), data, data + n);
  return n;
}
inline std::vector<uint8_t> gifBytes(const Picture& p, const GifLayout& l) {
  std::vector<uint8_t> out;
  int err = 0;
  GifFileType* gif = EGifOpen(&out, gifToVector, &err);
  const std::vector<uint32_t> pal = paletteOf(p);
  std::vector<GifColorType> colours(256, GifColorType{0, 0, 0});
  for (size_t i = 0; i < pal.size(); ++i) colours[i] = {R(pal[i]), G(pal[i]), B(pal[i])};
  ColorMapObject* map = GifMakeMapObject(256, colours.data());
  EGifSetGifVersion(gif, l.gif89);
  EGifPutScreenDesc(gif, l.screenW ? l.screenW : p.w, l.screenH ? l.screenH : p.h, 8, 0, l.localMap ? nullptr : map);
  for (int frame = 0; frame < (l.secondFrame ? 2 : 1); ++frame) {
    if (l.transparentIndex >= 0) {
      const GifByteType gce[4] = {1, 0, 0, GifByteType(l.transparentIndex)};
      EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, gce);
    }
    EGifPutImageDesc(gif, l.left, l.top, p.w, p.h, l.interlaced, l.localMap ? map : nullptr);
    static const int kStart[] = {0, 4, 2, 1}, kStep[] = {8, 8, 4, 2};
    for (int pass = 0; pass < (l.interlaced ? 4 : 1); ++pass)
      for (int y = l.interlaced ? kStart[pass] : 0; y < p.h; y += l.interlaced ? kStep[pass] : 1) {
        std::vector<GifPixelType> line = samples(p, y, pal, false, false);
        if (frame) line.assign(line.size(), 0);  // the second frame: index 0 throughout
        EGifPutLine(gif, line.data(), p.w);
      }
  }
  EGifCloseFile(gif, &err);
  GifFreeMapObject(map);
  return out;
}

// ---- TIFF ----
struct TiffLayout {
  int photometric = PHOTOMETRIC_RGB;  // RGB, MINISBLACK or PALETTE
  int bits = 8;                       // 8 or 16
  bool alpha = false;                 // an unassociated alpha sample
  int compression = COMPRESSION_NONE;
  int tile = 0;  // tile side; 0 for strips of two rows
};
inline std::vector<uint8_t> tiffBytes(const Picture& p, const TiffLayout& l, const std::string& path) {
  TIFF* t = TIFFOpen(path.c_str(), "w");
  if (!t) return {};
  const bool palette = l.photometric == PHOTOMETRIC_PALETTE, grey = l.photometric == PHOTOMETRIC_MINISBLACK;
  const int spp = (palette || grey ? 1 : 3) + (l.alpha ? 1 : 0);
  TIFFSetField(t, TIFFTAG_IMAGEWIDTH, p.w);
  TIFFSetField(t, TIFFTAG_IMAGELENGTH, p.h);
  TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, l.bits);
  TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, spp);
  TIFFSetField(t, TIFFTAG_PHOTOMETRIC, l.photometric);
  TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(t, TIFFTAG_COMPRESSION, l.compression);
  if (l.alpha) {
    const uint16_t extra = EXTRASAMPLE_UNASSALPHA;
    TIFFSetField(t, TIFFTAG_EXTRASAMPLES, 1, &extra);
  }
  const std::vector<uint32_t> pal = palette ? paletteOf(p) : std::vector<uint32_t>();
  if (palette) {
    std::vector<uint16_t> r(256), g(256), b(256);
    for (size_t i = 0; i < pal.size(); ++i) r[i] = R(pal[i]) * 257, g[i] = G(pal[i]) * 257, b[i] = B(pal[i]) * 257;
    TIFFSetField(t, TIFFTAG_COLORMAP, r.data(), g.data(), b.data());
  }
  const size_t pxBytes = size_t(spp) * size_t(l.bits / 8);
  std::vector<std::vector<uint8_t>> rows;
  for (int y = 0; y < p.h; ++y) rows.push_back(samples(p, y, pal, grey, l.alpha, l.bits / 8));
  if (l.tile) {
    TIFFSetField(t, TIFFTAG_TILEWIDTH, l.tile);
    TIFFSetField(t, TIFFTAG_TILELENGTH, l.tile);
    for (int ty = 0; ty < p.h; ty += l.tile)
      for (int tx = 0; tx < p.w; tx += l.tile) {
        std::vector<uint8_t> buf(size_t(l.tile) * l.tile * pxBytes, 0);
        for (int y = ty; y < std::min(p.h, ty + l.tile); ++y)
          std::copy_n(&rows[size_t(y)][tx * pxBytes], size_t(std::min(p.w - tx, l.tile)) * pxBytes,
                      &buf[size_t(y - ty) * l.tile * pxBytes]);
        TIFFWriteTile(t, buf.data(), uint32_t(tx), uint32_t(ty), 0, 0);
      }
  } else {
    TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, 2);
    for (int y = 0; y < p.h; ++y) TIFFWriteScanline(t, rows[size_t(y)].data(), uint32_t(y), 0);
  }
  TIFFClose(t);
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

}  // namespace imgtest
