// Groups of search-tree neighbours drawn through one shared lean list (see
// RetainedDraw.h).
#include <vector>

#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"
#include "objects/RetainedDraw.h"
#include "objects/RetainedLean.h"
#include "support/GLTable.h"

namespace kxretained {

// Reaches the object's private writer for the group's list.
class GroupWriter {
 public:
  struct Item {
    const CRenderObject* object;
    const std::vector<CRenderShape>* shapes;
    unsigned instanced;
    bool cullBackFaces;
    const double* pixelsPerUnit;
    const AcGeVector3d* viewDirection;
  };
  static void write(LeanWriter& w, const Item& i) {
    i.object->writeRetained(w, *i.shapes, i.instanced, i.cullBackFaces, i.pixelsPerUnit, i.viewDirection);
  }
};

namespace {

struct Group {
  unsigned* list = nullptr;  // null: no group open
  uint64_t* key = nullptr;
  uint64_t joinedKey = 0;
  bool interrupted = false;  // drawn in order, without the list, this frame
  std::vector<GroupWriter::Item> items;  // kept between groups: no allocation per frame
};

thread_local Group g_group;

uint64_t mix(uint64_t h, uint64_t v) {
  h ^= v + 0x9e3779b97f4a7c15ULL + (h << 6) + (h >> 2);
  h = (h ^ (h >> 31)) * 0x7fb5d329728ea185ULL;
  return h ^ (h >> 27);
}

}  // namespace

bool compilingOtherList() {
  GLint index = 0;
  kgl->GetIntegerv(GL_LIST_INDEX, &index);
  return index != 0;
}

void openGroup(unsigned* list, uint64_t* key) {
  g_group.list = list;
  g_group.key = key;
  g_group.joinedKey = 0x51ed270b27a1f3c5ULL;
  g_group.interrupted = false;
  g_group.items.clear();
}

bool joinGroup(const CRenderObject* o, const std::vector<CRenderShape>* shapes, unsigned instanced, uint64_t key,
               bool cullBackFaces, const double* pixelsPerUnit, const AcGeVector3d* viewDirection) {
  if (!g_group.list) return false;
  g_group.joinedKey = mix(mix(g_group.joinedKey, reinterpret_cast<uintptr_t>(o)), key);
  g_group.items.push_back({o, shapes, instanced, cullBackFaces, pixelsPerUnit, viewDirection});
  return true;
}

namespace {
// Draws the joined objects without a list, in the order they joined.
void drawJoined() {
  {
    LeanWriter w(2, 255);
    for (const GroupWriter::Item& i : g_group.items) GroupWriter::write(w, i);
  }
  g_group.items.clear();
}
}  // namespace

void interruptGroup() {
  if (!g_group.list) return;
  g_group.interrupted = true;
  drawJoined();
}

void closeGroup(CSceneMgr* scene) {
  if (!g_group.list) return;
  unsigned& list = *g_group.list;
  uint64_t& key = *g_group.key;
  g_group.list = nullptr;
  if (g_group.interrupted) {
    // Its list, if any, stays for frames without the interruption.
    drawJoined();
    return;
  }
  // Nobody joined (all points or hidden at this zoom): the list stays for
  // when they come back.
  if (g_group.items.empty()) return;
  if (list != 0 && key == g_group.joinedKey) {
    kgl->CallList(list);
    return;
  }
  if (list != 0 && scene) scene->addRemovedDispList(list);
  list = 0;
  const bool compile = !compilingOtherList();
  if (compile) list = kgl->GenLists(1);
  if (list != 0) kgl->NewList(list, GL_COMPILE_AND_EXECUTE);
  {
    LeanWriter w(2, 255);
    for (const GroupWriter::Item& i : g_group.items) GroupWriter::write(w, i);
  }
  if (list != 0) {
    kgl->EndList();
    key = g_group.joinedKey;
  }
  g_group.items.clear();
}

}  // namespace kxretained
