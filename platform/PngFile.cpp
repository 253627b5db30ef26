// PNG files: the writer the engine exports and the decoder behind KxReadPng
// and texture loading.
#include <png.h>

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>

#include "kxrender/KxImage.h"
#include "platform/ImageFile.h"
#include "platform/ImageRows.h"

namespace {
struct FileCloser {
  void operator()(std::FILE* f) const {
    if (f) std::fclose(f);
  }
};
using File = std::unique_ptr<std::FILE, FileCloser>;
}  // namespace

bool KxWritePng(const std::string& path, const std::vector<uint8_t>& rgba, int width, int height) {
  if (width <= 0 || height <= 0 || rgba.size() < size_t(width) * size_t(height) * 4) return false;
  File f(std::fopen(path.c_str(), "wb"));
  if (!f) return false;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!info) {
    png_destroy_write_struct(&png, nullptr);
    return false;
  }
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return false;
  }
  png_init_io(png, f.get());
  png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), 8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  for (int y = 0; y < height; ++y) png_write_row(png, &rgba[size_t(y) * size_t(width) * 4]);
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return true;
}

namespace kxplatform {
namespace {

struct Source {
  const uint8_t* data;
  size_t left;
};

void readSource(png_structp png, png_bytep dst, png_size_t n) {
  Source* src = static_cast<Source*>(png_get_io_ptr(png));
  if (n > src->left) png_error(png, "truncated");
  std::memcpy(dst, src->data, n);
  src->data += n;
  src->left -= n;
}

// Bad files are answered with false, not with text on stderr.
void quietError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void quietWarning(png_structp, png_const_charp) {}

}  // namespace

// Reads from memory; every libpng error (bad signature or checksum, data
// running out, sizes over the limits) jumps back here and gives false.
bool decodePng(const uint8_t* data, size_t size, DecodedImage& out) {
  if (!data || size < 8 || png_sig_cmp(data, 0, 8) != 0) return false;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, quietError, quietWarning);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!info) {
    png_destroy_read_struct(&png, nullptr, nullptr);
    return false;
  }
  Source src{data, size};
  RgbaRows rows;  // declared before setjmp so a longjmp leaves it valid
  std::vector<png_bytep> rowPointers;
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  png_set_read_fn(png, &src, readSource);
  png_set_user_limits(png, kMaxImageSide, kMaxImageSide);
  png_set_chunk_malloc_max(png, 64u << 20);  // text and profile chunks, not pixels
  png_read_info(png, info);
  const png_uint_32 w = png_get_image_width(png, info), h = png_get_image_height(png, info);
  // Deflate packs at most about 1032 bytes into one: a stream too short for
  // the rows it claims is refused before any row is made.
  if (uint64_t(h) * (png_get_rowbytes(png, info) + 1) > uint64_t(size) * 1100 + 65536) png_error(png, "too short");
  if (!rows.start(w, h)) png_error(png, "size");
  png_set_expand(png);     // palette to RGB, grey below 8 bits to 8, tRNS to alpha
  png_set_scale_16(png);   // 16 bits rounded to 8
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
  const int passes = png_set_interlace_handling(png);
  png_read_update_info(png, info);
  if (png_get_rowbytes(png, info) != rows.rowBytes()) png_error(png, "row size");
  if (passes == 1) {
    while (uint8_t* row = rows.next()) png_read_row(png, row, nullptr);
  } else {
    // Interlaced passes revisit every row: the whole image is filled at once.
    uint8_t* all = rows.all();
    rowPointers.resize(h);
    for (png_uint_32 y = 0; y < h; ++y) rowPointers[y] = all + size_t(y) * rows.rowBytes();
    png_read_image(png, rowPointers.data());
  }
  png_read_end(png, nullptr);  // checks the rest of the stream up to IEND
  png_destroy_read_struct(&png, &info, nullptr);
  return rows.finish(out);
}

}  // namespace kxplatform

bool KxReadPng(const std::string& path, std::vector<uint8_t>& rgba, int& width, int& height) {
  std::vector<uint8_t> bytes;
  kxplatform::DecodedImage image;
  if (!kxplatform::readImageFileBytes(path, bytes) || !kxplatform::decodePng(bytes.data(), bytes.size(), image))
    return false;
  rgba.swap(image.rgba);
  width = image.width;
  height = image.height;
  return true;
}
