// Converts a stroke font in the LFF text form into a CXF line font.
// Usage: kx_lff2cxf input.lff output.cxf
#include <cstdio>
#include <fstream>

#include "LffFont.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s input.lff output.cxf\n", argv[0]);
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  lff::Font font;
  if (!in || !lff::parse(in, font)) {
    std::fprintf(stderr, "%s: no glyphs read from %s\n", argv[0], argv[1]);
    return 1;
  }
  // Written under a temporary name first, so that an interrupted build
  // never leaves a half-written font behind.
  const std::string tmp = std::string(argv[2]) + ".tmp";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    lff::writeCxf(font, out);
    if (!out.flush()) {
      std::fprintf(stderr, "%s: cannot write %s\n", argv[0], tmp.c_str());
      return 1;
    }
  }
  if (std::rename(tmp.c_str(), argv[2]) != 0) {
    std::fprintf(stderr, "%s: cannot rename %s\n", argv[0], tmp.c_str());
    return 1;
  }
  return 0;
}
