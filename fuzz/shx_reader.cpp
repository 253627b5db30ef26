// SHX font files: the header and index of the three kinds, then the
// drawing bytes of the first four shapes, drawn for horizontal and
// vertical text. Four is enough to reach every command (the fuzzer puts
// any bytes in them), and keeps a capped runaway glyph from making every
// input slow.
#include <cstddef>
#include <cstdint>

#include "text/ShapeInfo.h"
#include "text/ShxFont.h"
#include "text/ShxInterpreter.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto font = CShxFont::parse(data, size);
  if (!font) return 0;
  int drawn = 0;
  for (const auto& entry : font->shapes()) {
    if (++drawn > 4) break;
    for (bool vertical : {false, true}) {
      CShape shape;
      ShxInterpret(*font, entry.first, vertical, shape);
      ShxContourList contours;
      shape.appendContours(contours);
    }
  }
  return 0;
}
