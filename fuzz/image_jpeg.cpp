// The JPEG decoder on arbitrary bytes.
#include "fuzz/ImageFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  return fuzzImageDecoder(kxplatform::decodeJpeg, data, size);
}
