#pragma once
// The decoders' output buffer, built row by row. Its full size is reserved
// up front but pages are only touched as rows arrive, so a file that claims
// a large size and then ends early costs no more memory than the rows it
// really held.
#include <new>

#include "platform/ImageFile.h"

namespace kxplatform {

class RgbaRows {
 public:
  // False outside the size limits or when the memory cannot be reserved.
  bool start(long long width, long long height) {
    if (!imageSizeAllowed(width, height)) return false;
    m_width = int(width);
    m_height = int(height);
    try {
      m_rgba.reserve(rowBytes() * size_t(height));
    } catch (const std::bad_alloc&) {
      return false;
    }
    return true;
  }
  size_t rowBytes() const { return size_t(m_width) * 4; }
  int rows() const { return int(m_rgba.size() / rowBytes()); }
  // The next row to fill (top first), or null when every row is there.
  uint8_t* next() {
    if (rows() >= m_height) return nullptr;
    m_rgba.resize(m_rgba.size() + rowBytes());  // within the reserve: no copy
    return m_rgba.data() + m_rgba.size() - rowBytes();
  }
  // Every row at once, for decoders that visit rows out of order.
  uint8_t* all() {
    m_rgba.resize(rowBytes() * size_t(m_height));
    return m_rgba.data();
  }
  // Hands the image over when every row was filled.
  bool finish(DecodedImage& out) {
    if (m_height == 0 || rows() != m_height) return false;
    out.width = m_width;
    out.height = m_height;
    out.rgba.swap(m_rgba);
    return true;
  }

 private:
  int m_width = 0, m_height = 0;
  std::vector<uint8_t> m_rgba;
};

}  // namespace kxplatform
