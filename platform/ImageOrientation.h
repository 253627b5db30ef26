#pragma once
// The EXIF orientation tag: how a camera's stored pixels must be turned to
// stand upright.
#include <cstddef>
#include <cstdint>

#include "platform/ImageFile.h"

namespace kxplatform {

// The orientation (1 to 8) in an APP1 "Exif" payload, or 1 when there is
// none or the payload is malformed.
int exifOrientation(const uint8_t* app1, size_t size);
// Turns the image so that it shows as orientation 1 (5 to 8 swap the sides).
// False only when the memory for the turned copy cannot be had.
bool applyOrientation(DecodedImage& image, int orientation);

}  // namespace kxplatform
