#pragma once
// Shared body of the image decoder targets: any bytes either give false or
// an image within the limits whose buffer matches its size.
#include <cstddef>
#include <cstdint>

#include "platform/ImageFile.h"

inline int fuzzImageDecoder(bool (*decode)(const uint8_t*, size_t, kxplatform::DecodedImage&), const uint8_t* data,
                            size_t size) {
  kxplatform::DecodedImage image;
  if (decode(data, size, image) &&
      (!kxplatform::imageSizeAllowed(image.width, image.height) ||
       image.rgba.size() != size_t(image.width) * size_t(image.height) * 4))
    __builtin_trap();
  return 0;
}
