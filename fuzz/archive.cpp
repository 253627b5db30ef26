// Archive loading: every serialised class, strings and values read from any
// bytes either load or raise an archive exception; nothing read is leaked,
// and what loaded stores and loads again to the same value.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <set>
#include <vector>

#include "kxrender/CArchive.h"
#include "kxrender/CCamera.h"
#include "kxrender/CColor.h"
#include "kxrender/CMemFile.h"
#include "kxrender/CString.h"

namespace {

// Reads one item of the kind chosen by `op`; objects read go to `owned`.
void readOne(CArchive& ar, BYTE op, std::set<CObject*>& owned) {
  switch (op % 6) {
    case 0: {
      CObject* o = ar.ReadObject(nullptr);
      if (o) owned.insert(o);
      break;
    }
    case 1: {
      CObject* o = ar.ReadObject(RUNTIME_CLASS(CColor));
      if (o) owned.insert(o);
      break;
    }
    case 2: {
      CColor c;
      c.Serialize(ar);
      break;
    }
    case 3: {
      CCamera cam;
      cam.Serialize(ar);
      break;
    }
    case 4: {
      CString s;
      ar >> s;
      // A string stores and loads back unchanged.
      CMemFile mem;
      {
        CArchive out(&mem, CArchive::store);
        out << s;
      }
      CMemFile back(mem.data().data(), mem.data().size());
      CArchive in(&back, CArchive::load);
      CString t;
      in >> t;
      if (!(t == s)) std::abort();
      break;
    }
    default: {
      double d;
      float f;
      LONG l;
      bool b;
      ar >> d >> f >> l >> b;
      break;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  // The first byte picks the sequence of reads: two bits an item.
  const BYTE ops = data[0];
  CMemFile file(data + 1, size - 1);
  std::set<CObject*> owned;
  try {
    CArchive ar(&file, CArchive::load);
    for (int i = 0; i < 16; ++i) readOne(ar, BYTE((ops >> (i % 4 * 2)) + i / 4), owned);
  } catch (const CArchiveException&) {
  }
  for (CObject* o : owned) {
    // Colours store and load back as the same colour.
    if (o->IsKindOf(RUNTIME_CLASS(CColor))) {
      CMemFile mem;
      {
        CArchive out(&mem, CArchive::store);
        out << static_cast<const CObject*>(o);
      }
      CMemFile back(mem.data().data(), mem.data().size());
      CArchive in(&back, CArchive::load);
      std::unique_ptr<CObject> again(in.ReadObject(RUNTIME_CLASS(CColor)));
      if (!again || !(*static_cast<CColor*>(again.get()) == *static_cast<CColor*>(o))) std::abort();
    }
    delete o;
  }
  return 0;
}
