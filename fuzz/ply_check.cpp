// The check PLY files pass before assimp's reader sees them (its header,
// element counts and binary body sizes), on its own: model_ply spends
// nearly all its time inside assimp on the files the check lets through.
#include <cstddef>
#include <cstdint>
#include <string>

#include "import/PlyCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  (void)kximport::isPly(data, size);
  (void)kximport::plyProblem(data, size);
  return 0;
}
