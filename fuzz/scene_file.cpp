// Scene files: any bytes are either refused with a message or read into a
// document that builds engine objects and writes back to a file that reads
// again to the same bytes.
#include <cstdint>
#include <cstdlib>
#include <cstdio>
#include <memory>
#include <string>

#include "io/SceneDoc.h"
#include "kxrender/CRenderObject.h"
#include "support/JsonReader.h"
#include "support/JsonWriter.h"

using namespace kxscene;

namespace {

std::string write(const SceneDoc& doc) {
  std::string out, error;
  JsonWriter w(&out);
  if (!writeSceneDoc(w, doc, error) || !w.finish()) {
    std::fprintf(stderr, "an accepted document does not write: %s %s\n", error.c_str(), w.error().c_str());
    std::abort();
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SceneDoc doc;
  std::string error;
  JsonReader reader(reinterpret_cast<const char*>(data), size);
  if (!parseSceneDoc(reader, "fuzz.json", doc, error)) {
    if (error.empty()) std::abort();  // a refusal always says why
    return 0;
  }
  // What the reader accepted builds objects, and those capture back into
  // documents the writer takes.
  for (ObjectDoc& od : doc.objects) {
    std::unique_ptr<CRenderObject> obj(buildObject(od));
    captureObject(*obj, od);
  }
  const std::string first = write(doc);
  SceneDoc again;
  JsonReader reread(first.data(), first.size());
  if (!parseSceneDoc(reread, "again.json", again, error)) {
    std::fprintf(stderr, "a written document does not read back: %s\n", error.c_str());
    std::abort();
  }
  if (write(again) != first) {
    std::fprintf(stderr, "a document read back writes different bytes\n");
    std::abort();
  }
  return 0;
}
