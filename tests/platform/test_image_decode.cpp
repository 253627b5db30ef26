// Image decoders: every format and layout against known pixels, the size
// limits at their edge, and broken files refused without output.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <functional>

#include "platform/ImageFile.h"
#include "platform/ImageWriters.h"

using namespace imgtest;
using kxplatform::DecodedImage;

namespace {

std::string tempPath(const std::string& name) {
  return ::testing::TempDir() + "kx_image_" + std::to_string(::getpid()) + "_" + name;
}

// Empty when the decoded image is the picture, within `tol` per channel.
std::string differences(const std::vector<uint8_t>& bytes, const Picture& want, int tol = 0) {
  DecodedImage got;
  if (!kxplatform::decodeImage(bytes.data(), bytes.size(), got)) return "refused";
  if (got.width != want.w || got.height != want.h)
    return "size " + std::to_string(got.width) + "x" + std::to_string(got.height);
  const std::vector<uint8_t> rgba = want.rgba();
  for (size_t i = 0; i < rgba.size(); ++i)
    if (std::abs(int(got.rgba[i]) - int(rgba[i])) > tol)
      return "pixel " + std::to_string(i / 4 % size_t(want.w)) + "," + std::to_string(i / 4 / size_t(want.w)) +
             " channel " + std::to_string(i % 4) + ": " + std::to_string(got.rgba[i]) + " not " +
             std::to_string(rgba[i]);
  return "";
}

// Channels of 0 or 255 only: what 16-bit bit fields hold exactly.
Picture pure(int w, int h) {
  Picture p = paletted(w, h, 8);
  for (uint32_t& c : p.px) c = (c & 0x80000000 ? 0xFF000000 : 0) | (c & 0x800000 ? 0xFF0000 : 0) | (c & 0x8000 ? 0xFF00 : 0) | 0xFF;
  return p;
}
// The picture with every pixel of the first pixel's colour transparent.
Picture keyed(Picture p) {
  const uint32_t key = p.px[0] | 0xFF;
  for (uint32_t& c : p.px) c = (c | 0xFF) == key ? c & ~0xFFu : c | 0xFF;
  return p;
}
// The picture with every pixel's alpha set to `a`.
Picture withAlpha(Picture p, uint8_t a) {
  for (uint32_t& c : p.px) c = (c & ~0xFFu) | a;
  return p;
}

// 8 x 8 blocks of one colour each survive JPEG's transform nearly exactly.
Picture blocks(int cols, int rows, const std::vector<uint32_t>& colours) {
  Picture p{cols * 8, rows * 8, {}};
  for (int y = 0; y < p.h; ++y)
    for (int x = 0; x < p.w; ++x) p.px.push_back(colours[size_t(y / 8 * cols + x / 8) % colours.size()]);
  return p;
}

}  // namespace

TEST(ImageDecode, LosslessFormatsGiveEveryPixel) {
  const Picture colours = paletted(7, 5, 35), alpha = paletted(7, 5, 35, true), big = paletted(11, 9, 40, true);
  Picture strongAlpha = alpha;  // the TIFF reader premultiplies: faint alpha would lose colour
  for (uint32_t& c : strongAlpha.px) c |= 0x80;
  const std::string tif = tempPath("t.tif");
  const struct {
    const char* name;
    std::vector<uint8_t> bytes;
    Picture want;
    int tol;
  } rows[] = {
      {"bmp 1 bit", bmp(paletted(7, 5, 2), {1}), paletted(7, 5, 2), 0},
      {"bmp 4 bit", bmp(paletted(7, 5, 16), {4}), paletted(7, 5, 16), 0},
      {"bmp 8 bit", bmp(colours, {8}), colours, 0},
      {"bmp 8 bit core header", bmp(colours, {8, 12}), colours, 0},
      {"bmp 24 bit bottom-up", bmp(colours, {24}), colours, 0},
      {"bmp 24 bit top-down", bmp(colours, {24, 40, true}), colours, 0},
      {"bmp 32 bit without masks is opaque", bmp(alpha, {32}), withAlpha(alpha, 255), 0},
      {"bmp 16 bit 5-5-5", bmp(pure(7, 5), {16}), pure(7, 5), 0},
      {"bmp 16 bit 5-6-5 fields", bmp(pure(7, 5), {16, 40, false, {0xF800, 0x7E0, 0x1F}}), pure(7, 5), 0},
      {"bmp 32 bit fields, alpha, v5 header", bmp(alpha, {32, 124, false, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}}), alpha, 0},
      {"bmp 32 bit alpha fields, odd order", bmp(alpha, {32, 40, true, {0xFF00, 0xFF0000, 0xFF000000, 0xFF}}), alpha, 0},
      {"bmp all-zero alpha is opaque",
       bmp(withAlpha(colours, 0), {32, 108, false, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}}), colours, 0},
      {"png grey 1", pngBytes(grey(7, 5, 1), {PNG_COLOR_TYPE_GRAY, 1}), grey(7, 5, 1), 0},
      {"png grey 8", pngBytes(grey(7, 5, 8), {PNG_COLOR_TYPE_GRAY, 8}), grey(7, 5, 8), 0},
      {"png grey 16", pngBytes(grey(7, 5, 8), {PNG_COLOR_TYPE_GRAY, 16}), grey(7, 5, 8), 0},
      {"png grey alpha 8", pngBytes(grey(7, 5, 8, true), {PNG_COLOR_TYPE_GRAY_ALPHA, 8}), grey(7, 5, 8, true), 0},
      {"png grey key", pngBytes(grey(7, 5, 8), {PNG_COLOR_TYPE_GRAY, 8, false, true}), keyed(grey(7, 5, 8)), 0},
      {"png rgb 8", pngBytes(colours, {PNG_COLOR_TYPE_RGB, 8}), colours, 0},
      {"png rgb key", pngBytes(colours, {PNG_COLOR_TYPE_RGB, 8, false, true}), keyed(colours), 0},
      {"png rgba 8", pngBytes(alpha, {PNG_COLOR_TYPE_RGBA, 8}), alpha, 0},
      {"png rgba 16", pngBytes(alpha, {PNG_COLOR_TYPE_RGBA, 16}), alpha, 0},
      {"png palette 1", pngBytes(paletted(7, 5, 2, true), {PNG_COLOR_TYPE_PALETTE, 1}), paletted(7, 5, 2, true), 0},
      {"png palette 8", pngBytes(alpha, {PNG_COLOR_TYPE_PALETTE, 8}), alpha, 0},
      {"png interlaced", pngBytes(big, {PNG_COLOR_TYPE_RGBA, 8, true}), big, 0},
      {"png interlaced palette 4", pngBytes(paletted(11, 9, 16), {PNG_COLOR_TYPE_PALETTE, 4, true}), paletted(11, 9, 16), 0},
      {"gif 87a", gifBytes(colours, {}), colours, 0},
      {"gif 89a transparent, local map", gifBytes(colours, {true, false, true, 0}), keyed(colours), 0},
      {"gif interlaced", gifBytes(withAlpha(big, 255), {false, true}), withAlpha(big, 255), 0},
      {"gif second frame ignored", gifBytes(colours, {true, false, false, -1, 0, 0, 0, 0, true}), colours, 0},
      {"gif frame alone, not its screen", gifBytes(colours, {false, false, false, -1, 1, 2, 16000, 16000}), colours, 0},
      {"tiff rgb strips", tiffBytes(colours, {}, tif), colours, 0},
      {"tiff rgba lzw", tiffBytes(strongAlpha, {PHOTOMETRIC_RGB, 8, true, COMPRESSION_LZW}, tif), strongAlpha, 2},
      {"tiff tiles, partial at the edges",
       tiffBytes(paletted(20, 18, 50), {PHOTOMETRIC_RGB, 8, false, COMPRESSION_LZW, 16}, tif), paletted(20, 18, 50), 0},
  };
  for (const auto& r : rows) EXPECT_EQ(differences(r.bytes, r.want, r.tol), "") << r.name;
  std::remove(tif.c_str());
}

TEST(ImageDecode, JpegColourSpacesAndProgressiveScans) {
  const Picture colour = blocks(2, 2, {0xFF0000FF, 0x00FF00FF, 0x2040C0FF, 0xFFFF00FF});
  const Picture grey = blocks(2, 2, {0x000000FF, 0x404040FF, 0xA0A0A0FF, 0xFFFFFFFF});
  const struct { const char* name; JpegLayout layout; Picture want; } rows[] = {
      {"baseline", {JCS_RGB}, colour},
      {"progressive", {JCS_RGB, true}, colour},
      {"grey", {JCS_GRAYSCALE}, grey},
      {"cmyk", {JCS_CMYK}, colour}};
  for (const auto& r : rows) EXPECT_EQ(differences(jpegBytes(r.want, r.layout), r.want, 8), "") << r.name;
}

TEST(ImageDecode, JpegOrientationTagTurnsThePicture) {
  // Stored 3 x 2 blocks: R G B over Y C M. Each row: how it must stand.
  const std::string names = "RGBYCM";
  const std::vector<uint32_t> colours = {0xFF0000FF, 0x00FF00FF, 0x0000FFFF, 0xFFFF00FF, 0x00FFFFFF, 0xFF00FFFF};
  const struct { int orientation; char order; const char* shown; } rows[] = {
      {0, 'I', "RGB/YCM"}, {1, 'I', "RGB/YCM"}, {2, 'I', "BGR/MCY"}, {3, 'M', "MCY/BGR"}, {4, 'I', "YCM/RGB"},
      {5, 'I', "RY/GC/BM"}, {6, 'M', "YR/CG/MB"}, {7, 'I', "MB/CG/YR"}, {8, 'I', "BM/GC/RY"}, {9, 'I', "RGB/YCM"}};
  for (const auto& r : rows) {
    std::vector<uint8_t> exif = {'E', 'x', 'i', 'f', 0, 0};
    const bool le = r.order == 'I';
    auto u16 = [&](unsigned v) { le ? exif.insert(exif.end(), {uint8_t(v), uint8_t(v >> 8)}) : exif.insert(exif.end(), {uint8_t(v >> 8), uint8_t(v)}); };
    auto u32 = [&](unsigned v) { le ? (u16(v), u16(v >> 16)) : (u16(v >> 16), u16(v)); };
    exif.insert(exif.end(), {uint8_t(r.order), uint8_t(r.order)});
    u16(42), u32(8), u16(2);                // header, one IFD at 8 with two entries
    u16(0x010F), u16(2), u32(4), u32(0);     // Make, ignored
    u16(0x0112), u16(3), u32(1), u16(r.orientation), u16(0), u32(0);
    DecodedImage got;
    const std::vector<uint8_t> bytes = jpegBytes(blocks(3, 2, colours), {JCS_RGB, false, r.orientation ? exif : std::vector<uint8_t>()});
    ASSERT_TRUE(kxplatform::decodeJpeg(bytes.data(), bytes.size(), got)) << r.orientation;
    std::string shown;
    for (int y = 4; y < got.height; y += 8) {
      for (int x = 4; x < got.width; x += 8) {
        const uint8_t* p = &got.rgba[(size_t(y) * got.width + x) * 4];
        const uint32_t c = (p[0] > 128 ? 0xFF000000u : 0) | (p[1] > 128 ? 0xFF0000u : 0) | (p[2] > 128 ? 0xFF00u : 0) | 0xFF;
        const auto at = std::find(colours.begin(), colours.end(), c);
        shown += at == colours.end() ? '?' : names[size_t(at - colours.begin())];
      }
      shown += '/';
    }
    EXPECT_EQ(shown, std::string(r.shown) + "/") << r.orientation;
  }
}

TEST(ImageDecode, SidesUpToTheLimitOnly) {
  const std::string tif = tempPath("wide.tif");
  for (int w : {kxplatform::kMaxImageSide, kxplatform::kMaxImageSide + 1}) {
    const Picture p = paletted(w, 1, 2);
    const bool fits = w <= kxplatform::kMaxImageSide;
    for (const auto& bytes : {bmp(p, {1}), pngBytes(p, {PNG_COLOR_TYPE_PALETTE, 1}), gifBytes(p, {}),
                              jpegBytes(p, {JCS_GRAYSCALE}), tiffBytes(p, {PHOTOMETRIC_PALETTE}, tif)}) {
      DecodedImage got;
      EXPECT_EQ(kxplatform::decodeImage(bytes.data(), bytes.size(), got), fits) << w << " " << bytes[0];
      EXPECT_EQ(got.width, fits ? w : 0);
    }
  }
  EXPECT_FALSE(kxplatform::imageSizeAllowed(16384, 16385));
  EXPECT_FALSE(kxplatform::imageSizeAllowed(0, 5));
  std::remove(tif.c_str());
}

TEST(ImageDecode, BrokenFilesAreRefusedWithoutOutput) {
  const Picture p = paletted(9, 9, 20, true);
  const std::string tif = tempPath("broken.tif");
  typedef std::function<void(std::vector<uint8_t>&)> Edit;
  auto patch32 = [](size_t at, uint32_t v) { return Edit([=](std::vector<uint8_t>& b) { put32(b, at, v); }); };
  auto flip = [](size_t at) { return Edit([=](std::vector<uint8_t>& b) { b[at] ^= 0x40; }); };
  auto cut = [](double keep) { return Edit([=](std::vector<uint8_t>& b) { b.resize(size_t(double(b.size()) * keep)); }); };
  auto findPatch = [](std::vector<uint8_t> marker, size_t skip, std::vector<uint8_t> with) {
    return Edit([=](std::vector<uint8_t>& b) {
      const auto at = std::search(b.begin(), b.end(), marker.begin(), marker.end());
      if (at != b.end()) std::copy(with.begin(), with.end(), at + long(marker.size() + skip));
    });
  };
  const std::vector<uint8_t> bmp24 = bmp(p, {24}), png = pngBytes(p, {PNG_COLOR_TYPE_RGBA, 8});
  const std::vector<uint8_t> jpeg = jpegBytes(p, {JCS_RGB, true}), gif = gifBytes(withAlpha(p, 255), {true});
  const std::vector<uint8_t> tiff = tiffBytes(p, {PHOTOMETRIC_RGB, 8, true, COMPRESSION_LZW}, tif);
  const struct { const char* name; std::vector<uint8_t> bytes; Edit edit; } rows[] = {
      {"bmp width 0", bmp24, patch32(18, 0)},
      {"bmp height most negative", bmp24, patch32(22, 0x80000000u)},
      {"bmp larger than its data", bmp24, [](std::vector<uint8_t>& b) { put32(b, 18, 16384), put32(b, 22, 16384); }},
      {"bmp 7 bits a pixel", bmp24, [](std::vector<uint8_t>& b) { put16(b, 28, 7); }},
      {"bmp run-length", bmp24, patch32(30, 1)},
      {"bmp gapped mask", bmp(p, {32, 40, false, {0xF0F000, 0xFF00, 0xFF}}), {}},
      {"bmp header past the end", bmp24, patch32(14, 4000)},
      {"bmp pixels past the end", bmp24, patch32(10, 4000)},
      {"bmp truncated", bmp24, cut(0.9)},
      {"png data checksum", png, flip(png.size() - 20)},
      {"png truncated", png, cut(0.75)},
      {"png without its end", png, cut(0.99)},
      {"jpeg height 0", jpeg, findPatch({0xFF, 0xC2}, 3, {0, 0})},
      {"jpeg truncated", jpeg, cut(0.6)},
      {"jpeg header only", jpeg, cut(0.1)},
      {"jpeg scan cut short, end marker kept", jpeg, [](std::vector<uint8_t>& b) { b.resize(b.size() * 6 / 10), b.insert(b.end(), {0xFF, 0xD9}); }},
      {"gif frame width 0", gif, findPatch({0x2C, 0, 0, 0, 0}, 0, {0, 0})},
      {"gif truncated", gif, cut(0.6)},
      {"gif without colours", gifBytes(withAlpha(p, 255), {false, false, true}), findPatch({0x2C}, 8, {0})},
      {"tiff truncated", tiff, cut(0.5)},
      {"tiff header only", tiff, cut(0.05)},
      {"nothing", {}, {}},
      {"a signature alone", {'G', 'I', 'F', '8', '9', 'a'}, {}},
      {"unknown format", std::vector<uint8_t>(64, 'x'), {}},
  };
  for (const auto& r : rows) {
    std::vector<uint8_t> bytes = r.bytes;
    if (r.edit) r.edit(bytes);
    DecodedImage got;
    got.width = 77;
    EXPECT_FALSE(kxplatform::decodeImage(bytes.data(), bytes.size(), got)) << r.name;
    EXPECT_TRUE(got.width == 77 && got.rgba.empty()) << r.name;
  }
  std::remove(tif.c_str());
}

TEST(ImageDecode, FilesAreKnownByContentNotByName) {
  const Picture p = paletted(3, 2, 6);
  const std::string path = tempPath("really_a_png.jpg");
  ASSERT_TRUE(save(path, pngBytes(p, {PNG_COLOR_TYPE_RGB, 8})));
  DecodedImage got;
  EXPECT_TRUE(kxplatform::decodeImageFile(path, got) && got.rgba == p.rgba());
  EXPECT_FALSE(kxplatform::decodeImageFile(tempPath("missing.png"), got));
  EXPECT_FALSE(kxplatform::decodeImageFile(::testing::TempDir(), got));  // a folder
  std::remove(path.c_str());
}
