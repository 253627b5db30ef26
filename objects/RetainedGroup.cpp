// Groups of search-tree neighbours drawn through one shared recording (see
// RetainedDraw.h).
#include <algorithm>
#include <cmath>
#include <vector>

#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"
#include "objects/RetainedDraw.h"
#include "objects/RetainedLean.h"
#include "shapes/ShapeRenderState.h"
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
  GroupDrawing* drawing = nullptr;  // null: no group open
  uint64_t joinedKey = 0;
  bool interrupted = false;  // drawn in order, without the list, this frame
  size_t first = 0;          // its objects: g_items from here on
};

thread_local Group g_group;
// The objects of the open group, after those of the groups that wait
// unrecorded for the test after the pass; kept between frames, so that
// joining allocates nothing once it has grown.
thread_local std::vector<GroupWriter::Item> g_items;

const GroupWriter::Item* joinedItems() { return g_items.data() + g_group.first; }
size_t joinedCount() { return g_items.size() - g_group.first; }
void dropJoined() { g_items.resize(g_group.first); }

uint64_t mix(uint64_t h, uint64_t v) {
  h ^= v + 0x9e3779b97f4a7c15ULL + (h << 6) + (h >> 2);
  h = (h ^ (h >> 31)) * 0x7fb5d329728ea185ULL;
  return h ^ (h >> 27);
}

}  // namespace

void releaseGroup(GroupDrawing& g, CSceneMgr* scene) {
  if (g.buffer != 0 && scene) scene->addRemovedBuffer(g.buffer);
  g.buffer = 0;
  g.steps.clear();
  g.hasLast = false;
  g.estimated = false;
}

bool compilingOtherList() {
  GLint index = 0;
  kgl->GetIntegerv(GL_LIST_INDEX, &index);
  return index != 0;
}

namespace {
// The box of a new recording, and the widest line it draws.
void boxGroup(GroupDrawing& g, const std::vector<LeanVertex>& vertices) {
  g.hidden = false;
  g.boxed = !vertices.empty();
  g.widestLine = 0.0f;
  for (const LeanRecording::Step& s : g.steps.steps) {
    if (s.kind != LeanRecording::Step::kDraw) g.boxed = false;
    else if (s.lines) g.widestLine = std::max(g.widestLine, s.a);
    else if (s.a < 0.0f || s.b < 0.0f) g.boxed = false;
  }
  if (!g.boxed) return;
  for (int k = 0; k < 3; ++k) g.box[k] = g.box[k + 3] = vertices[0].p[k];
  for (const LeanVertex& v : vertices)
    for (int k = 0; k < 3; ++k) {
      g.box[k] = std::min(g.box[k], v.p[k]);
      g.box[k + 3] = std::max(g.box[k + 3], v.p[k]);
    }
  for (float f : g.box) g.boxed = g.boxed && std::isfinite(f);
}
}  // namespace

void openGroup(GroupDrawing* g) {
  g_group.drawing = g;
  g_group.joinedKey = 0x51ed270b27a1f3c5ULL;
  g_group.interrupted = false;
  g_group.first = g_items.size();
}

bool joinGroup(const CRenderObject* o, const std::vector<CRenderShape>* shapes, unsigned instanced, uint64_t key,
               bool cullBackFaces, const double* pixelsPerUnit, const AcGeVector3d* viewDirection) {
  if (!g_group.drawing) return false;
  g_group.joinedKey = mix(mix(g_group.joinedKey, reinterpret_cast<uintptr_t>(o)), key);
  g_items.push_back({o, shapes, instanced, cullBackFaces, pixelsPerUnit, viewDirection});
  return true;
}

namespace {
// Draws the joined objects without a list, in the order they joined.
void drawJoined() {
  {
    LeanWriter w(2, 255);
    for (size_t i = 0; i < joinedCount(); ++i) GroupWriter::write(w, joinedItems()[i]);
  }
  dropJoined();
}
}  // namespace

void interruptGroup() {
  settleWaiting();
  if (!g_group.drawing) return;
  g_group.interrupted = true;
  drawJoined();
}

namespace {
// Records the items into the group's buffer and draws it in place; without
// a buffer they are drawn the plain way.
void record(GroupDrawing& g, const GroupWriter::Item* items, size_t count, uint64_t key, CSceneMgr* scene) {
  releaseGroup(g, scene);
  // Inside another list's compilation a buffer's draws would be copied
  // into that list: the group then draws the plain way.
  if (scene && !compilingOtherList()) kgl->GenBuffers(1, &g.buffer);
  if (g.buffer == 0) {
    LeanWriter w(2, 255);
    for (size_t i = 0; i < count; ++i) GroupWriter::write(w, items[i]);
    return;
  }
  // Recorded into storage kept per thread, so that recording allocates
  // nothing once it has grown; the group keeps its steps.
  thread_local LeanRecording scratch;
  scratch.clear();
  {
    LeanWriter w(2, 255, &scratch);
    for (size_t i = 0; i < count; ++i) GroupWriter::write(w, items[i]);
  }
  g.steps.steps.assign(scratch.steps.begin(), scratch.steps.end());
  g.steps.matrices.assign(scratch.matrices.begin(), scratch.matrices.end());
  const std::vector<LeanVertex>& vertices = scratch.vertices;
  g.hasLast = !vertices.empty();
  if (g.hasLast) g.last = vertices.back();
  kgl->BindBuffer(GL_ARRAY_BUFFER, g.buffer);
  kgl->BufferData(GL_ARRAY_BUFFER, GLsizeiptr(vertices.size() * sizeof(LeanVertex)), vertices.data(),
                  GL_STATIC_DRAW);
  kgl->BindBuffer(GL_ARRAY_BUFFER, 0);
  g.key = key;
  boxGroup(g, vertices);
  drawGroup(g);
}

// Unrecorded groups waiting for the test after the pass, in storage kept
// per thread.
struct Waiting {
  GroupDrawing* drawing;  // null once recorded
  uint32_t first, count;  // its objects in g_items
};
struct WaitingGroups {
  std::vector<Waiting> groups;
  CSceneMgr* scene = nullptr;
  bool lastClosed = false;  // the last group closed waits, and nothing drew since
};
thread_local WaitingGroups g_waiting;

// The extent of everything the writer may send for these objects in any
// mode, lifted as drawn. A shape's box (its outline, or a face's mesh) is
// kept up to date like the object boxes that frustum culling reads; what a
// lift moves away from it is read: a lifted polygon's triangulated vertices, a
// polyline's points, a face's lifted mesh and edges. Holes and hit lines
// are read too, being short.
class Extent {
 public:
  void addShape(const CRenderShape& s) {
    AcGePoint3d a, b;
    s.getBox(a, b);
    const double lift = s.getZOffset();
    for (double z : {0.0, lift}) {
      grow(a.x, a.y, a.z + z);
      grow(b.x, b.y, b.z + z);
    }
    for (const auto& hole : s.getHoles()) addPoints(hole, 0.0);
    for (const auto& line : s.getHitLine()) {
      addPoints(line, 0.0);
      addPoints(line, lift);
    }
    if (s.getShpType() == CRenderShape::kPline) addPoints(s.getPts(), 0.0);
    if (!s.isFillLifted()) return;  // the fill lies on the outline
    const std::vector<double>& gl = s.getGlPts();
    for (size_t i = 0; i + 2 < gl.size(); i += 3) grow(gl[i], gl[i + 1], gl[i + 2]);
  }

  // Outward to floats, so that the float box holds every point; false when
  // it is empty or not finite (a point that is not a number leaves it
  // alone, and GL draws nothing of a triangle that has one).
  bool store(float* box) const {
    for (int k = 0; k < 3; ++k) {
      box[k] = std::nextafter(static_cast<float>(lo[k]), -INFINITY);
      box[k + 3] = std::nextafter(static_cast<float>(hi[k]), INFINITY);
    }
    for (int k = 0; k < 6; ++k)
      if (!std::isfinite(box[k])) return false;
    return true;
  }

 private:
  void addPoints(const std::vector<AcGePoint3d>& pts, double lift) {
    for (const AcGePoint3d& p : pts) grow(p.x, p.y, p.z + lift);
  }
  void grow(double x, double y, double z) {
    const double p[3] = {x, y, z};
    for (int k = 0; k < 3; ++k) {
      lo[k] = p[k] < lo[k] ? p[k] : lo[k];
      hi[k] = p[k] > hi[k] ? p[k] : hi[k];
    }
  }

  double lo[3] = {INFINITY, INFINITY, INFINITY}, hi[3] = {-INFINITY, -INFINITY, -INFINITY};
};

// The objects' extent and the widest line any of their shapes draws, found
// without recording. False when that cannot be told so: instanced shapes
// under matrices, fills pulled towards the eye, widths or points that are
// not finite.
bool estimateBox(GroupDrawing& g, const GroupWriter::Item* items, size_t count) {
  Extent extent;
  float widest = kxshape::kFaceLineWidth;
  for (size_t i = 0; i < count; ++i) {
    const GroupWriter::Item& item = items[i];
    if (item.instanced > 0 && !item.object->getSmpMat().empty()) return false;
    for (const CRenderShape& s : *item.shapes) {
      if (!s.getVisible()) continue;
      if (s.getOffsetFactor() < 0.0f || s.getOffsetUnits() < 0.0f) return false;
      widest = std::max({widest, s.lineWidth(item.pixelsPerUnit), s.getBorderWidth()});
      extent.addShape(s);
    }
  }
  g.widestLine = widest;
  return extent.store(g.box) && std::isfinite(widest);
}

// A group never recorded waits unrecorded when its box can be told, so
// that it is recorded only once the test after the pass finds that it may
// show.
bool wait(GroupDrawing& g, CSceneMgr* scene) {
  if (!g.estimated || g.key != g_group.joinedKey) {
    g.key = g_group.joinedKey;
    g.estimated = estimateBox(g, joinedItems(), joinedCount());
  }
  if (!g.estimated) return false;
  // Its objects stay where they joined.
  g_waiting.scene = scene;
  g_waiting.groups.push_back({&g, uint32_t(g_group.first), uint32_t(joinedCount())});
  g_waiting.lastClosed = true;
  return true;
}
}  // namespace

size_t waitingUnrecorded() { return g_waiting.groups.size(); }

GroupDrawing* unrecordedGroup(size_t i) { return g_waiting.groups[i].drawing; }

void recordWaiting(size_t i) {
  Waiting& w = g_waiting.groups[i];
  if (!w.drawing) return;
  GroupDrawing& g = *w.drawing;
  w.drawing = nullptr;
  record(g, g_items.data() + w.first, w.count, g.key, g_waiting.scene);
}

void settleWaiting() {
  if (!g_waiting.lastClosed) return;
  g_waiting.lastClosed = false;
  recordWaiting(g_waiting.groups.size() - 1);
}

void forgetWaiting() {
  g_items.clear();
  g_group.first = 0;
  g_waiting.groups.clear();
  g_waiting.lastClosed = false;
}

void closeGroup(CSceneMgr* scene) {
  if (!g_group.drawing) return;
  GroupDrawing& g = *g_group.drawing;
  g_group.drawing = nullptr;
  if (g_group.interrupted) {
    // Its drawing, if any, stays for frames without the interruption.
    drawJoined();
    return;
  }
  // Nobody joined (all points or hidden at this zoom): the drawing stays
  // for when they come back.
  if (joinedCount() == 0) return;
  if (g.buffer != 0 && g.key == g_group.joinedKey) {
    dropJoined();
    g_waiting.lastClosed = false;
    drawGroup(g);
    return;
  }
  if (g.buffer == 0 && scene && occlusionOn() && !compilingOtherList() && wait(g, scene)) return;
  g_waiting.lastClosed = false;
  record(g, joinedItems(), joinedCount(), g_group.joinedKey, scene);
  dropJoined();
}

}  // namespace kxretained
