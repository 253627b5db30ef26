#pragma once
// Topology of a triangle mesh given as positions and corner indices: the
// normals a shaded view needs (smooth within a surface, split at creases)
// and the edges a wire frame and picking need (boundary and feature edges).
#include <vector>

#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"

namespace kximport {

// For each position, the index of the first position equal to it: files
// repeat corners per face (STL always), but edges are shared by position.
std::vector<int> weldByPosition(const std::vector<AcGePoint3d>& pts);

// Replaces pts and tris by a mesh whose corners carry normals: each corner
// averages (weighted by their angle there) the triangles around its position whose normals
// lie within creaseAngle degrees of its own triangle's. Corners with equal
// position and normal (and texture coordinates, when uv is given: one per
// position, replaced alongside) share one vertex. A position with more
// than 4096 corners keeps each triangle's own normal there.
void creaseNormals(std::vector<AcGePoint3d>& pts, std::vector<int>& tris, std::vector<AcGeVector3d>& normals,
                   double creaseAngle, std::vector<AcGePoint2d>* uv = nullptr);

// The boundary edges (one triangle), non-manifold edges (three or more) and
// feature edges (two triangles whose normals differ by more than
// featureAngle degrees), chained into polylines; a closed chain repeats its
// first point at the end. Degenerate triangles are left out.
std::vector<std::vector<AcGePoint3d>> featureLines(const std::vector<AcGePoint3d>& pts, const std::vector<int>& tris,
                                                   double featureAngle);

}  // namespace kximport
