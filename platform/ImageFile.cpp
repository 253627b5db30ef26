#include "platform/ImageFile.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <new>

namespace kxplatform {

bool imageSizeAllowed(long long width, long long height) {
  return width > 0 && height > 0 && width <= kMaxImageSide && height <= kMaxImageSide &&
         uint64_t(width) * uint64_t(height) * 4 <= kMaxImageBytes;
}

bool decodeImage(const uint8_t* data, size_t size, DecodedImage& out) {
  if (!data) return false;
  auto starts = [&](const char* magic, size_t n) { return size >= n && std::memcmp(data, magic, n) == 0; };
  if (starts("BM", 2)) return decodeBmp(data, size, out);
  if (starts("\xFF\xD8\xFF", 3)) return decodeJpeg(data, size, out);
  if (starts("\x89PNG\r\n\x1A\n", 8)) return decodePng(data, size, out);
  if (starts("GIF87a", 6) || starts("GIF89a", 6)) return decodeGif(data, size, out);
  if (starts("II*\0", 4) || starts("MM\0*", 4) || starts("II+\0", 4) || starts("MM\0+", 4))
    return decodeTiff(data, size, out);
  return false;
}

bool readImageFileBytes(const std::string& path, std::vector<uint8_t>& bytes) {
  // The largest file that can hold an image within the limits: an
  // uncompressed 32-bit bitmap plus generous room for headers.
  constexpr uint64_t kMaxFileBytes = kMaxImageBytes + (uint64_t(1) << 20);
  struct stat st;
  if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode) || uint64_t(st.st_size) > kMaxFileBytes) return false;
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return false;
  std::vector<uint8_t> buf;
  bool ok = true;
  try {
    buf.resize(size_t(st.st_size));
  } catch (const std::bad_alloc&) {
    ok = false;
  }
  ok = ok && std::fread(buf.data(), 1, buf.size(), f) == buf.size();
  std::fclose(f);
  if (ok) bytes.swap(buf);
  return ok;
}

bool decodeImageFile(const std::string& path, DecodedImage& out) {
  std::vector<uint8_t> bytes;
  return readImageFileBytes(path, bytes) && decodeImage(bytes.data(), bytes.size(), out);
}

}  // namespace kxplatform
