// The LFF stroke-font parser and the CXF writer of the font generator: what
// is parsed is written, and the written font indexes every glyph again.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "LffFont.h"
#include "text/CxfReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  lff::Font font;
  if (!lff::parse(in, font)) return 0;
  std::ostringstream out;
  lff::writeCxf(font, out);
  size_t written = 0;
  for (const auto& g : font.glyphs) written += g.first <= 0xFFFF;
  std::istringstream back(out.str());
  kxtext::CxfIndex index;
  if (kxtext::readCxfIndex(back, index) != written) __builtin_trap();
  return 0;
}
