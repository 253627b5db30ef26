// Reading a scene file into a scene, all or nothing, and writing a scene to
// a file that appears only once it is complete.
#include "kxrender/KxSceneFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "kxrender/CSceneMgr.h"
#include "kxrender/CStaticObject.h"
#include "platform/Win32Window.h"
#include "io/SceneDoc.h"
#include "support/JsonReader.h"
#include "support/JsonWriter.h"

using namespace kxscene;

namespace {

struct FileCloser {
  void operator()(std::FILE* f) const {
    if (f) std::fclose(f);
  }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// A static object built for a read that did not complete gives its display
// list back.
struct StaticDeleter {
  void operator()(CStaticObject* s) const {
    if (!s) return;
    s->releaseDisplayList();
    delete s;
  }
};
using StaticPtr = std::unique_ptr<CStaticObject, StaticDeleter>;

void makeCurrent(CSceneMgr& scene) {
  if (scene.getHRC()) wglMakeCurrent(scene.getHDC(), scene.getHRC());
}

// From here nothing can fail: the old contents go, the new come in.
void replaceContents(CSceneMgr& scene, const SceneDoc& doc, std::vector<std::unique_ptr<CRenderObject>>& objects,
                     std::vector<StaticPtr>& statics) {
  CObjectSetMgr& set = *scene.getObjSetMgr();
  if (!set.staticObjects().empty() && scene.getHRC()) {
    // Their display lists live in the scene's context.
    makeCurrent(scene);
    std::vector<unsigned> ids;
    for (const CStaticObject* s : set.staticObjects())
      if (s) ids.push_back(s->getRenderList());
    for (unsigned id : ids) set.delStaticObject(id);
  }
  set.clear();
  // The set's mode goes to the objects it holds; set it while it holds none
  // so that each object keeps the mode it was saved with.
  if (doc.hasView) set.setRenderMode(static_cast<CRenderObject::RenderMode>(doc.view.renderMode));
  std::vector<CRenderObject*> raw;
  raw.reserve(objects.size());
  for (auto& o : objects) raw.push_back(o.release());
  std::vector<unsigned> ids;
  set.addObject(raw, ids);
  for (StaticPtr& s : statics) set.addStaticObject(s.release());
}

void applyView(CSceneMgr& scene, const ViewDoc& v) {
  scene.camera()->ReSet(v.location, v.up, v.forward);
  scene.setRange(v.range);
  scene.getBkColorRef() = v.background;
  scene.SetModelCam();
}

}  // namespace

bool KxReadSceneFile(const char* path, CSceneMgr& scene, CString& error, KxSceneFileExtras* extras) {
  error.Empty();
  if (!path || !*path) {
    error = "no scene file named";
    return false;
  }
  const std::string name = path;
  try {
    File file(std::fopen(path, "rb"));
    if (!file) {
      error = CString(name + ": cannot open: " + std::strerror(errno));
      return false;
    }
    SceneDoc doc;
    std::string message;
    JsonReader reader(file.get());
    if (!parseSceneDoc(reader, name, doc, message)) {
      error = CString(message);
      return false;
    }
    file.reset();
    if (!doc.statics.empty() && !scene.getHRC()) {
      error = CString(name + ": static objects need the scene bound to a window");
      return false;
    }
    std::vector<std::unique_ptr<CRenderObject>> objects;
    objects.reserve(doc.objects.size());
    for (ObjectDoc& od : doc.objects) {
      objects.emplace_back(buildObject(od));
      od = ObjectDoc();  // the document's copy is no longer needed
    }
    std::vector<StaticPtr> statics;
    if (!doc.statics.empty()) {
      makeCurrent(scene);
      for (KxStaticRecord& rec : doc.statics) statics.emplace_back(KxBuildStaticObject(rec));
    }
    replaceContents(scene, doc, objects, statics);
    if (doc.hasView) applyView(scene, doc.view);
    if (extras) {
      extras->staticObjects = std::move(doc.statics);
      extras->hasView = doc.hasView;
    }
    return true;
  } catch (const std::bad_alloc&) {
    error = CString(name + ": not enough memory to read the scene");
    return false;
  }
}

namespace {

// Writes the whole scene through w; false with message (without the file
// name) when something in it cannot be saved.
bool writeScene(JsonWriter& w, CSceneMgr& scene, const KxSceneFileExtras* extras, std::string& message) {
  writeSceneStart(w);
  ViewDoc view;
  captureView(scene, view);
  message = checkViewDoc(view);
  if (!message.empty()) return false;
  writeView(w, view);
  beginObjects(w);
  size_t index = 0;
  ObjectDoc od;
  for (const auto& kv : scene.getObjSetMgr()->objects()) {
    if (!kv.second) continue;
    captureObject(*kv.second, od);
    const std::string where = "object " + std::to_string(index) + " (extern id " + std::to_string(od.externId) + ")";
    const std::string problem = checkObjectDoc(od);
    if (!problem.empty()) {
      message = where + ": " + problem;
      return false;
    }
    if (!writeObject(w, od, index, message)) return false;
    ++index;
  }
  endObjects(w);
  bool started = false;
  if (extras) {
    for (size_t i = 0; i < extras->staticObjects.size(); ++i) {
      KxStaticRecord rec = extras->staticObjects[i];
      const CStaticObject* live = nullptr;
      for (const CStaticObject* s : scene.getObjSetMgr()->staticObjects())
        if (s && s->getRenderList() == rec.id) live = s;
      if (!live) continue;  // deleted since it was built
      rec.visible = live->getVisible();
      const std::string problem = checkStaticRecord(rec);
      if (!problem.empty()) {
        message = "static object record " + std::to_string(i) + ": " + problem;
        return false;
      }
      if (!started) beginStatics(w);
      started = true;
      writeStatic(w, rec);
    }
  }
  if (started) endStatics(w);
  writeSceneEnd(w);
  return true;
}

}  // namespace

bool KxWriteSceneFile(const char* path, CSceneMgr& scene, CString& error, const KxSceneFileExtras* extras) {
  error.Empty();
  if (!path || !*path) {
    error = "no scene file named";
    return false;
  }
  const std::string name = path;
  // Written beside the target, then renamed over it: a reader never sees a
  // half-written file, and a failed write keeps the previous one.
  std::string temp = name + ".XXXXXX";
  const int fd = mkstemp(&temp[0]);
  if (fd < 0) {
    error = CString(name + ": cannot create a file beside it: " + std::strerror(errno));
    return false;
  }
  // mkstemp makes the file private; give it the mode any new file gets.
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
  File file(fdopen(fd, "wb"));
  if (!file) {
    ::close(fd);
    std::remove(temp.c_str());
    error = CString(name + ": cannot write: " + std::strerror(errno));
    return false;
  }
  std::string message;
  bool ok = false;
  try {
    JsonWriter w(file.get());
    ok = writeScene(w, scene, extras, message);
    if (ok && !w.finish()) {
      ok = false;
      message = w.error();
    }
  } catch (const std::bad_alloc&) {
    ok = false;
    message = "not enough memory to write the scene";
  }
  if (ok && std::fclose(file.release()) != 0) {
    ok = false;
    message = std::string("cannot write: ") + std::strerror(errno);
  }
  if (ok && std::rename(temp.c_str(), path) != 0) {
    ok = false;
    message = std::string("cannot replace the file: ") + std::strerror(errno);
  }
  if (!ok) {
    file.reset();
    std::remove(temp.c_str());
    error = CString(name + ": " + message);
  }
  return ok;
}
