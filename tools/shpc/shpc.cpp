// shpc: compiles an SHP shape source into an SHX font file.
//   shpc input.shp output.shx
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ShpCompiler.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s input.shp output.shx\n", argv[0]);
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "%s: cannot read\n", argv[1]);
    return 1;
  }
  const std::string source((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::vector<uint8_t> shx;
  std::string error;
  if (!CompileShp(source, shx, error)) {
    std::fprintf(stderr, "%s:%s\n", argv[1], error.c_str() + 4);
    return 1;
  }
  std::ofstream out(argv[2], std::ios::binary);
  out.write(reinterpret_cast<const char*>(shx.data()), std::streamsize(shx.size()));
  if (!out) {
    std::fprintf(stderr, "%s: cannot write\n", argv[2]);
    return 1;
  }
  return 0;
}
