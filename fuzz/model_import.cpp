// Model import from memory: the first byte picks the format (OBJ, STL or
// PLY by its value modulo 3), the rest is the file. Whatever the bytes, the
// import either adds objects or reports an error and leaves the set empty.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "kxrender/CRenderObject.h"
#include "kxrender/KxModelImport.h"

// Debian's assimp 5.2 leaks its half-built mesh when a broken STL throws;
// leaks inside assimp are its own, ours are still reported.
extern "C" const char* __lsan_default_suppressions() { return "leak:libassimp.so\n"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  static const char* const kFormats[] = {"obj", "stl", "ply"};
  const char* hint = kFormats[data[0] % 3];
  CObjectSetMgr set;
  CString error;
  KxImportResult result;
  const bool ok = KxImportModelFromMemory(data + 1, size - 1, hint, set, error, KxImportOptions(), &result);
  if (ok != (set.numObjs() == result.ids.size() && set.numObjs() > 0)) std::abort();
  if (!ok && (set.numObjs() != 0 || error.IsEmpty())) std::abort();
  return 0;
}
