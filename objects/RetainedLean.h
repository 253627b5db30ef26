#pragma once
// Writes what the shape drawers draw, for a display list or a recording,
// with as few draws as the picture allows. Mesa replays the vertices between two state
// changes as one draw, so vertices are gathered in buckets of equal state
// (fills by polygon offset, lines by width and depth range) and each bucket
// goes out as one glBegin/glEnd with colour and normal on every vertex:
// strips as triangles, contours as line segments. With the depth test on
// and nothing blended the picture does not depend on the order of the
// buckets; inside a bucket the drawing order is kept, so equal depths
// resolve as before.
//
// Shapes with selection feedback, dot lines, textures or text are not
// written here (canWrite); the object then takes the per-shape path.
#include <cstdint>
#include <vector>

#include "kxrender/CRenderShape.h"
#include "kxrender/CSimpleMatrix.h"

namespace kxretained {

struct LeanVertex {
  float p[3];
  float n[3];
  unsigned char c[4];
};

// What the writer would have sent, kept for replay from a buffer object:
// the vertices of each bucket in sending order, and the steps between them.
struct LeanRecording {
  struct Step {
    enum Kind : uint8_t { kDraw, kPush, kPop } kind;
    bool lines;    // draws: lines or triangles
    bool overlay;  // lines over the faces' depth range
    float a, b;    // as Bucket
    uint32_t first, count;  // draws: vertices; pushes: the matrix
  };
  std::vector<LeanVertex> vertices;
  std::vector<Step> steps;
  std::vector<CSimpleMatrix> matrices;
  void clear() {
    vertices.clear();
    steps.clear();
    matrices.clear();
  }
};

// Replays a recording whose vertices are in buffer: the same state and the
// same vertices as the writer's own calls, and the same colour and normal
// left current, so the picture is the one a list of them would give.
void replay(const LeanRecording& r, unsigned buffer, const LeanVertex* last);

// Whether a visible shape can be written: no hit, highlight, dot line,
// texture or text.
bool canWrite(const CRenderShape& s);

class LeanWriter {
 public:
  // mode: the object's render mode; alpha: the scene alpha (the writer is
  // used for opaque frames only, where it is 255). With a recording the
  // writer sends nothing and records instead.
  LeanWriter(int mode, unsigned char alpha, LeanRecording* record = nullptr);
  ~LeanWriter();
  LeanWriter(const LeanWriter&) = delete;
  LeanWriter& operator=(const LeanWriter&) = delete;
  // Objects of one list may differ in mode.
  void setMode(int mode) { m_mode = mode; }

  // One shape as CRenderShape::render would draw it in this mode.
  void shape(const CRenderShape& s, const double* viewScale);
  // Matrices apply to what follows them only: the buckets are sent first.
  void pushMatrix(const CSimpleMatrix& m);
  void popMatrix();
  // Sends the buckets and restores the object pass's depth range.
  void finish();

 private:
  using Vertex = LeanVertex;
  struct Bucket {
    bool lines;
    float a, b;    // fills: offset factor and units; lines: width and 0
    bool overlay;  // lines over the faces' depth range
    std::vector<Vertex> vertices;
  };
  void polygonFill(const CRenderShape& s);
  void contourLines(const std::vector<AcGePoint3d>& c, float zLift);
  void face(const CRenderShape& s);
  // Bucket selectors: the state the following vertices are drawn in.
  void fillState(float factor, float units);
  void lineState(float width, bool overlay);
  void select(bool lines, float a, float b, bool overlay);
  void flush();
  void colour(const CColor& c);
  void vertex(float x, float y, float z);

  int m_mode;
  unsigned char m_alpha;
  LeanRecording* m_record;
  // The buckets in the order they were first used; those past m_used are
  // spare, keeping their capacity. The storage is kept per thread, so
  // compiling lists does not allocate once it has grown.
  std::vector<Bucket>* m_buckets;
  std::vector<Bucket> m_own;  // when another writer holds the thread's storage
  size_t m_used = 0;
  Bucket* m_current = nullptr;
  bool m_overlaySent = false;
  // Per-vertex attributes, as the current values the drawers would set.
  float m_normal[3] = {0, 0, 1};
  unsigned char m_rgba[4] = {255, 255, 255, 255};
};

}  // namespace kxretained
