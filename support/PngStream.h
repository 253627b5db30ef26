#pragma once
// Writes a PNG file a row at a time, so a picture never has to be whole in
// memory. Rows are 8-bit RGB, from the top.
#include <cstdint>
#include <cstdio>
#include <string>

struct png_struct_def;
struct png_info_def;

class PngRowWriter {
 public:
  PngRowWriter() = default;
  PngRowWriter(const PngRowWriter&) = delete;
  PngRowWriter& operator=(const PngRowWriter&) = delete;
  // An unfinished file is removed.
  ~PngRowWriter();

  bool open(const std::string& path, int width, int height);
  bool writeRow(const uint8_t* rgb);
  // True once every row was written and the file closed.
  bool finish();

 private:
  void abandon();

  std::string m_path;
  std::FILE* m_file = nullptr;
  png_struct_def* m_png = nullptr;
  png_info_def* m_info = nullptr;
  int m_rowsLeft = 0;
};
