// The importer's own mesh work on whatever a model file holds: welding by
// position, crease normals and feature-edge chains, over positions that
// may be NaN, infinite, -0, repeated or degenerate. Indices are valid, as
// assimp hands them over. The first byte picks the number of positions,
// the second the crease and feature angles; then come the positions as
// doubles and the corner indices, one byte each, up to 128 triangles: every
// path is reached with few, and longer inputs would only slow the run.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "import/MeshEdges.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const size_t count = 1 + data[0] % 48;
  const double angle = data[1] % 181;
  size_t at = 2;
  std::vector<AcGePoint3d> pts(count);
  for (AcGePoint3d& p : pts) {
    double xyz[3] = {0.0, 0.0, 0.0};
    for (double& v : xyz) {
      if (at + sizeof v > size) break;
      std::memcpy(&v, data + at, sizeof v);
      at += sizeof v;
    }
    p = AcGePoint3d(xyz[0], xyz[1], xyz[2]);
  }
  std::vector<int> tris;
  for (; at + 3 <= size && tris.size() < 3 * 128; at += 3)
    for (int c = 0; c < 3; ++c) tris.push_back(data[at + c] % static_cast<int>(count));

  const std::vector<int> weld = kximport::weldByPosition(pts);
  for (size_t i = 0; i < weld.size(); ++i)
    if (weld[i] < 0 || size_t(weld[i]) > i) std::abort();  // the first equal position, never a later one

  const std::vector<std::vector<AcGePoint3d>> lines = kximport::featureLines(pts, tris, angle);
  for (const auto& line : lines)
    if (line.size() < 2) std::abort();

  std::vector<AcGeVector3d> normals;
  std::vector<AcGePoint2d> uv;
  for (const AcGePoint3d& p : pts) uv.emplace_back(p.x, p.y);
  const size_t corners = tris.size();
  kximport::creaseNormals(pts, tris, normals, angle, data[1] & 1 ? &uv : nullptr);
  if (tris.size() != corners || normals.size() != pts.size()) std::abort();
  if ((data[1] & 1) && uv.size() != pts.size()) std::abort();
  for (int i : tris)
    if (i < 0 || size_t(i) >= pts.size()) std::abort();
  return 0;
}
