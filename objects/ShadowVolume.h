#pragma once
// Closed shadow volumes for depth-fail stencil counting, built from the
// triangles an object casts with, in world coordinates.
//
// Every casting triangle is two-sided: one facing away from the light is
// turned round and casts like the lit one. Edges that the turned triangles
// use in both directions are inner edges; every other edge (the rim of a
// polygon or of a hole, the open border of a mesh, the line where a mesh
// turns from the light) is a silhouette edge and gets a side face. When the
// whole object is closed (each edge used once in each direction before any
// turning), the triangles facing away are left out instead: the lit ones
// already bound the same shadow, with half the faces.
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"

// The light of the scene as four floats: w = 0 a directional light shining
// from the direction (x, y, z), otherwise a point light at (x, y, z) / w.
struct ShadowLight {
  bool valid = false;  // false: a zero direction or a value that is not finite
  bool directional = true;
  AcGeVector3d travel;  // directional: the unit direction light travels in
  AcGePoint3d position;  // point light

  static ShadowLight fromFloats(const float* p);
};

class ShadowVolumeBuilder {
 public:
  // Appends a casting triangle; its order gives its facing. Triangles with
  // a coordinate that is not finite are ignored.
  void addTriangle(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c);
  bool empty() const { return m_tris.empty(); }
  size_t triangleCount() const { return m_tris.size() / 3; }

  // Volume triangles (x, y, z floats, three vertices each, counter-clockwise
  // seen from outside) that reach past the box lo..hi (the region that
  // can receive shadows) away from the light. Returns false and leaves out
  // empty when the light is invalid or a point light lies inside the box of
  // the casting triangles.
  bool build(const ShadowLight& light, const AcGePoint3d& lo, const AcGePoint3d& hi, std::vector<float>& out) const;

 private:
  struct Key {
    int64_t x, y, z;
    bool operator==(const Key& o) const { return x == o.x && y == o.y && z == o.z; }
  };
  struct KeyHash {
    size_t operator()(const Key& k) const;
  };
  unsigned weld(const AcGePoint3d& p);

  std::vector<AcGePoint3d> m_points;  // welded vertices
  std::vector<unsigned> m_tris;       // three vertex ids per triangle
  std::unordered_map<Key, unsigned, KeyHash> m_index;
};

class CRenderShape;

// Visible polygons and face meshes cast; lines and text have no area, and
// faces tagged as the inner faces of a sloped roof are left out.
bool castsShadow(const CRenderShape& s);
// The shape's triangles as it is drawn (polygons from their triangulation,
// counter-clockwise about the normal; faces as indexed, lifted by their z
// offset), under m when given.
void addCasterTriangles(ShadowVolumeBuilder& b, const CRenderShape& s, const AcGeMatrix3d* m);

// Volumes are drawn with a depth offset behind the faces and with depth
// clamping; the first volume of a run sets that state, and the next face
// drawn (or the end of the frame) puts the faces' state back.
void beginShadowVolumeState();
void endShadowVolumeState();
