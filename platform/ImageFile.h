#pragma once
// Image files decoded into 8-bit RGBA rows from the top: the one way the
// engine reads pictures (textures, reference frames). Each format has its
// own entry point over a memory buffer; decodeImage picks one by the file's
// leading bytes, never by its name. Every decoder refuses, with false and
// no output, sizes outside the limits below, truncated or corrupt data and
// byte counts that overflow; nothing it is given makes it crash or allocate
// more than the limits allow.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kxplatform {

struct DecodedImage {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> rgba;  // width * height * 4 bytes, the top row first
};

// Neither side may exceed this, and the RGBA result may not exceed
// kMaxImageBytes.
constexpr int kMaxImageSide = 16384;
constexpr uint64_t kMaxImageBytes = uint64_t(1) << 30;
// True when a width x height RGBA image is within the limits.
bool imageSizeAllowed(long long width, long long height);

// Alpha: a file's own transparency is kept (PNG alpha and tRNS, the GIF
// transparent index, TIFF extra samples, BMP alpha masks); everything else
// is opaque.
bool decodeBmp(const uint8_t* data, size_t size, DecodedImage& out);
bool decodeJpeg(const uint8_t* data, size_t size, DecodedImage& out);  // EXIF orientation applied
bool decodePng(const uint8_t* data, size_t size, DecodedImage& out);
bool decodeGif(const uint8_t* data, size_t size, DecodedImage& out);   // first frame only
bool decodeTiff(const uint8_t* data, size_t size, DecodedImage& out);  // first directory only

// Any of the formats above, recognised by its signature.
bool decodeImage(const uint8_t* data, size_t size, DecodedImage& out);
bool decodeImageFile(const std::string& path, DecodedImage& out);
// The whole file, or false when it cannot be read or is implausibly large.
bool readImageFileBytes(const std::string& path, std::vector<uint8_t>& bytes);

}  // namespace kxplatform
