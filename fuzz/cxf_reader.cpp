// The CXF line-font reader on arbitrary bytes: the index, then every glyph
// it points at.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "text/CxfReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  kxtext::CxfIndex index;
  kxtext::readCxfIndex(in, index);
  in.clear();
  for (const auto& entry : index) {
    kxtext::Contours contours;
    kxtext::readCxfGlyph(in, entry.second, contours);
    for (const auto& c : contours)
      if (c.empty()) __builtin_trap();  // every contour has its points
  }
  return 0;
}
