#pragma once
// Writes what the shape drawers draw, for a display list, with as few GL
// state changes as the picture allows. Mesa keeps the vertices between two
// state changes in one buffer and replays them as one draw, so: state is
// sent only when it changes (polygon offset, line width, the overlay depth
// range), colour and normal go per vertex inside glBegin/glEnd, strips are
// sent as triangles and contours as line segments, and consecutive
// primitives of one kind share one glBegin/glEnd.
//
// Shapes with selection feedback, dot lines, textures or text are not
// written here (canWrite); the object then takes the per-shape path.
#include "kxrender/CRenderShape.h"

class CSimpleMatrix;

namespace kxretained {

// Whether a visible shape can be written: no hit, highlight, dot line,
// texture or text.
bool canWrite(const CRenderShape& s);

class LeanWriter {
 public:
  // mode: the object's render mode; alpha: the scene alpha (the writer is
  // used for opaque frames only, where it is 255).
  LeanWriter(int mode, unsigned char alpha) : m_mode(mode), m_alpha(alpha) {}
  ~LeanWriter() { finish(); }
  LeanWriter(const LeanWriter&) = delete;
  LeanWriter& operator=(const LeanWriter&) = delete;

  // One shape as CRenderShape::render would draw it in this mode.
  void shape(const CRenderShape& s, const double* viewScale);
  void pushMatrix(const CSimpleMatrix& m);
  void popMatrix();
  // Ends the open primitive and restores the object pass's depth range.
  void finish();

 private:
  enum Prim { kNone, kTriangles, kLines };
  void polygonFill(const CRenderShape& s);
  void contourLines(const std::vector<AcGePoint3d>& c, float zLift);
  void face(const CRenderShape& s);
  // State setters: each ends the open primitive only when the value changes.
  void fillState(float factor, float units);
  void lineState(float width, bool overlay);
  void depthOverlay(bool on);
  void begin(Prim p);
  void end();
  void colour(const CColor& c);
  void vertex(float x, float y, float z);

  int m_mode;
  unsigned char m_alpha;
  Prim m_prim = kNone;
  bool m_offsetKnown = false, m_widthKnown = false, m_overlay = false;
  float m_factor = 0, m_units = 0, m_width = 0;
  // Per-vertex attributes, as the current values the drawers would set.
  float m_normal[3] = {0, 0, 1};
  unsigned char m_rgba[4] = {255, 255, 255, 255};
};

}  // namespace kxretained
