#pragma once
// The object pass of retained drawing: while a scope is open, objects too
// small on screen queue their point instead of drawing it, and the scope
// draws them all in one glBegin/glEnd when it closes; objects may replay
// lean lists, which assume the pass's depth range.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/CColor.h"
#include "kxrender/CRenderShape.h"
#include "objects/RetainedLean.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class CRenderObject;

class CSceneMgr;

namespace kxretained {

class ObjectPassScope {
 public:
  explicit ObjectPassScope(const CSceneMgr* scene);
  ~ObjectPassScope();
  ObjectPassScope(const ObjectPassScope&) = delete;
  ObjectPassScope& operator=(const ObjectPassScope&) = delete;

 private:
  bool m_on = false;
};

// Whether a scope is open (retained drawing on, no shadow passes).
bool inObjectPass();
// False when no batch is open: the caller draws the point itself.
bool queuePoint(const CColor& color, const AcGePoint3d& centre);

// Neighbours in the search tree share one drawing, so a frame replays a few
// hundred rather than one per object. While a group is open, objects that
// would replay a lean list of their own join it instead; closing the group
// replays its drawing when the same objects joined with the same keys, and
// records a new one otherwise. Objects that cannot join draw at once,
// before the group's drawing.
//
// A group's drawing is a buffer object of its vertices (position, normal
// and colour, 28 bytes each) with the steps that draw them: a display list
// of the same calls holds 40 bytes a vertex, and compiling one goes through
// three GL calls a vertex.
struct GroupDrawing {
  unsigned buffer = 0;  // 0: none recorded
  uint64_t key = 0;
  LeanRecording steps;  // its vertices are in the buffer, not here
  LeanVertex last{};    // the last vertex sent, for the state it leaves
  bool hasLast = false;
  // Where its vertices lie, for the occlusion test; not boxed when a matrix
  // moves them or a fill is pulled towards the eye.
  bool boxed = false;
  float box[6] = {};      // min x, y, z, then max x, y, z
  float widestLine = 0;   // pixels
  bool hidden = false;    // its box was covered when last tested
  // No buffer yet; box and widestLine were taken from the shapes' own
  // boxes for key. Such a group waits unrecorded until the test after the
  // pass finds that it may show, so a first frame records only what the
  // groups in front leave visible.
  bool estimated = false;
};
// Queues the buffer for deletion and forgets the drawing.
void releaseGroup(GroupDrawing& g, CSceneMgr* scene);
void openGroup(GroupDrawing* g);
void closeGroup(CSceneMgr* scene);
// Occlusion culling of group drawings, in parallel views. A group whose box
// the others covered last frame is not drawn; after the pass its box is
// tested against the depth the pass left, and the groups that turn out to
// show are drawn then. So a frame shows exactly what drawing everything
// would, and a building seen from outside draws little of its inside.
void beginOcclusion();
void endOcclusion();
// Draws a recorded group, or leaves it for the test after the pass.
void drawGroup(GroupDrawing& g);
// Whether the pass tests boxes, so that a group can wait unrecorded.
bool occlusionOn();

// Groups never recorded that wait for the test after the pass (see
// closeGroup), with the objects that joined them.
size_t waitingUnrecorded();
// Null once recorded.
GroupDrawing* unrecordedGroup(size_t i);
// Records the group from its objects and draws it.
void recordWaiting(size_t i);
// The last group closed waits unrecorded and nothing was drawn since: it
// is recorded and drawn now, so that what follows finds the colour and
// normal its drawing leaves.
void settleWaiting();
void forgetWaiting();

// Whether a display list is being compiled (a static object's, say): lists
// cannot nest, so retained drawing then steps aside.
bool compilingOtherList();
// An object about to draw the per-shape way: the objects that joined before
// it are drawn now, so the drawing order is kept, and the group draws
// without its list for the rest of this frame.
void interruptGroup();
// False when no group is open.
bool joinGroup(const CRenderObject* o, const std::vector<CRenderShape>* shapes, unsigned instanced, uint64_t key,
               bool cullBackFaces, const double* pixelsPerUnit, const AcGeVector3d* viewDirection);

}  // namespace kxretained
