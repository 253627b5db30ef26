#pragma once
// Triangle strips of planar contours filled by the odd-winding rule, through
// the GLU tessellator. One tessellator object and its scratch buffers serve
// every polygon of a thread: building a model triangulates hundreds of
// thousands of faces, and creating a tessellator per face would dominate.
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "support/GLTable.h"

class PolygonTessellator {
 public:
  // The tessellator of the calling thread.
  static PolygonTessellator& local();

  // Input: one polygon, contour after contour, in plane coordinates.
  // Returns false when no tessellator can be had; nothing is then produced.
  // Glyph outlines fill by orientation (GLU_TESS_WINDING_NEGATIVE) instead.
  bool beginPolygon(GLenum windingRule = GLU_TESS_WINDING_ODD);
  void beginContour();
  void addVertex(double x, double y);
  void endContour();
  // Runs the tessellation; false when it reported an error, in which case
  // no strips are kept (a partial result could draw wrongly).
  bool endPolygon();

  // Output: strips of vertex ids; ids refer to the input vertices in the
  // order added, followed by the intersection vertices made while cutting.
  size_t stripCount() const { return m_stripEnds.size(); }
  const uint32_t* stripIds(size_t i) const { return m_ids.data() + stripBegin(i); }
  size_t stripSize(size_t i) const { return m_stripEnds[i] - stripBegin(i); }
  double vertexX(uint32_t id) const { return m_coords[2 * size_t(id)]; }
  double vertexY(uint32_t id) const { return m_coords[2 * size_t(id) + 1]; }

  ~PolygonTessellator();

 private:
  PolygonTessellator() = default;
  PolygonTessellator(const PolygonTessellator&) = delete;
  PolygonTessellator& operator=(const PolygonTessellator&) = delete;

  size_t stripBegin(size_t i) const { return i ? m_stripEnds[i - 1] : 0; }
  uint32_t newVertex(double x, double y);
  void closePrimitive();
  bool flat(uint32_t a, uint32_t b, uint32_t c) const;
  void emitStripRuns(const std::vector<uint32_t>& v);
  void emitFan(const std::vector<uint32_t>& v);
  void emitStrip(std::initializer_list<uint32_t> ids);
  void refineCrossing(void* const data[4], double& x, double& y) const;

  static void GLAPIENTRY onBegin(GLenum type, void* self);
  static void GLAPIENTRY onVertex(void* vertex, void* self);
  static void GLAPIENTRY onEnd(void* self);
  static void GLAPIENTRY onCombine(GLdouble coords[3], void* data[4], GLfloat weight[4], void** out, void* self);
  static void GLAPIENTRY onError(GLenum code, void* self);

  GLUtesselator* m_tess = nullptr;
  bool m_failed = false;
  GLenum m_primitive = 0;
  GLenum m_winding = 0;
  std::vector<double> m_coords;       // x, y per vertex id
  std::vector<uint32_t> m_primitiveIds;  // vertices of the primitive being received
  std::vector<uint32_t> m_ids;         // all strips, back to back
  std::vector<size_t> m_stripEnds;     // end offset of each strip in m_ids
};
