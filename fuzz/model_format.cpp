// Model import from memory, one target per format (KX_MODEL_FORMAT names it,
// as the format hint): a target of its own keeps the fast readers from
// sharing their time with the slow ones (assimp's OBJ and PLY readers clear
// two 16 MB line buffers per file). Whatever the bytes, the import either
// adds objects or reports an error and leaves the set empty.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "kxrender/CRenderObject.h"
#include "kxrender/KxModelImport.h"

// Debian's assimp 5.2 leaks its half-built mesh when a broken STL throws;
// leaks inside assimp are its own, ours are still reported.
extern "C" const char* __lsan_default_suppressions() { return "leak:libassimp.so\n"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CObjectSetMgr set;
  CString error;
  KxImportResult result;
  const bool ok = KxImportModelFromMemory(data, size, KX_MODEL_FORMAT, set, error, KxImportOptions(), &result);
  if (ok != (set.numObjs() == result.ids.size() && set.numObjs() > 0)) std::abort();
  if (!ok && (set.numObjs() != 0 || error.IsEmpty())) std::abort();
  return 0;
}
