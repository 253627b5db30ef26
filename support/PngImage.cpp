#include <png.h>

#include <csetjmp>
#include <cstdio>
#include <memory>

#include "kxrender/KxImage.h"

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

bool KxReadPng(const std::string& path, std::vector<uint8_t>& rgba, int& width, int& height) {
  File f(std::fopen(path.c_str(), "rb"));
  if (!f) return false;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!info) {
    png_destroy_read_struct(&png, nullptr, nullptr);
    return false;
  }
  std::vector<uint8_t> pixels;  // declared before setjmp so a longjmp leaves it valid
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_read_struct(&png, &info, nullptr);
    return false;
  }
  png_init_io(png, f.get());
  png_set_user_limits(png, 16384, 16384);
  png_read_info(png, info);
  png_set_expand(png);
  png_set_strip_16(png);
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
  png_read_update_info(png, info);
  const int w = int(png_get_image_width(png, info)), h = int(png_get_image_height(png, info));
  pixels.resize(size_t(w) * size_t(h) * 4);
  for (int y = 0; y < h; ++y) png_read_row(png, &pixels[size_t(y) * size_t(w) * 4], nullptr);
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  rgba.swap(pixels);
  width = w;
  height = h;
  return true;
}
