#include "support/PngStream.h"

#include <png.h>

#include <csetjmp>

PngRowWriter::~PngRowWriter() { abandon(); }

void PngRowWriter::abandon() {
  if (m_png) png_destroy_write_struct(&m_png, &m_info);
  m_png = nullptr;
  m_info = nullptr;
  if (m_file) {
    std::fclose(m_file);
    std::remove(m_path.c_str());
  }
  m_file = nullptr;
}

bool PngRowWriter::open(const std::string& path, int width, int height) {
  abandon();
  // PNG allows 2^31 - 1 a side; the row count must fit an int here.
  if (width <= 0 || height <= 0) return false;
  m_path = path;
  m_file = std::fopen(path.c_str(), "wb");
  if (!m_file) return false;
  m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  m_info = m_png ? png_create_info_struct(m_png) : nullptr;
  if (!m_info || setjmp(png_jmpbuf(m_png))) {
    abandon();
    return false;
  }
  png_init_io(m_png, m_file);
  // Pictures are mostly flat colour: fast deflate loses little here.
  png_set_compression_level(m_png, 3);
  png_set_IHDR(m_png, m_info, png_uint_32(width), png_uint_32(height), 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(m_png, m_info);
  m_rowsLeft = height;
  return true;
}

bool PngRowWriter::writeRow(const uint8_t* rgb) {
  if (!m_png || m_rowsLeft <= 0 || !rgb) return false;
  if (setjmp(png_jmpbuf(m_png))) {
    abandon();
    return false;
  }
  png_write_row(m_png, rgb);
  --m_rowsLeft;
  return true;
}

bool PngRowWriter::finish() {
  if (!m_png || m_rowsLeft != 0) {
    abandon();
    return false;
  }
  if (setjmp(png_jmpbuf(m_png))) {
    abandon();
    return false;
  }
  png_write_end(m_png, nullptr);
  png_destroy_write_struct(&m_png, &m_info);
  m_png = nullptr;
  m_info = nullptr;
  const bool closed = std::fclose(m_file) == 0;
  m_file = nullptr;
  if (!closed) std::remove(m_path.c_str());
  return closed;
}
