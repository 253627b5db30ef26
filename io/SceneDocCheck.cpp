// The rules a document must meet to be saved in, or read from, a scene file:
// enough points for its kind, face arrays that agree with each other, a
// usable normal and text height, finite numbers throughout. Reading and
// writing share them, so whatever is written can be read back.
#include <cmath>

#include "io/SceneDoc.h"

namespace kxscene {

namespace {

bool finite(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }
bool finite(const AcGeVector3d& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

// "" when every point is finite, else which one is not.
std::string finitePoints(const std::vector<AcGePoint3d>& pts, const std::string& field) {
  for (size_t i = 0; i < pts.size(); ++i)
    if (!finite(pts[i])) return "field \"" + field + "\": point " + std::to_string(i) + " is not finite";
  return "";
}

std::string checkLines(const std::vector<std::vector<AcGePoint3d>>& lines, const char* field, const char* item,
                       size_t minPoints) {
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string where = std::string("field \"") + field + "\": " + item + " " + std::to_string(i);
    if (lines[i].size() < minPoints)
      return where + ": " + (std::string(item) == "hole" ? "a hole needs" : "expected") + " at least " +
             std::to_string(minPoints) + " points" +
             (std::string(item) == "hole" ? "" : " but found " + std::to_string(lines[i].size()));
    for (const AcGePoint3d& p : lines[i])
      if (!finite(p)) return where + ": a point is not finite";
  }
  return "";
}

}  // namespace

std::string checkShapeDoc(const ShapeDoc& s) {
  if (!finite(s.normal) || s.normal.isZeroLength()) return "field \"normal\": expected a direction of non-zero length";
  if (!std::isfinite(s.borderWidth) || s.borderWidth < 0.0f || !std::isfinite(s.borderMax) || s.borderMax < 0.0f)
    return "field \"border\": expected widths of 0 or more";
  if (!std::isfinite(s.factorScale) || !std::isfinite(s.unitScale) || !std::isfinite(s.zOffset))
    return "field \"offsets\": a value is not finite";
  std::string e = checkLines(s.hitLines, "hitLines", "line", 2);
  if (!e.empty()) return e;
  switch (s.kind) {
    case CRenderShape::kPline:
    case CRenderShape::kPgon: {
      const size_t minPts = s.kind == CRenderShape::kPgon ? 3 : 2;
      if (s.pts.size() < minPts)
        return "field \"pts\": a " + std::string(kindName(s.kind)) + " needs at least " + std::to_string(minPts) +
               " points";
      e = finitePoints(s.pts, "pts");
      if (!e.empty()) return e;
      if (s.kind == CRenderShape::kPline && !s.holes.empty()) return "field \"holes\" does not belong to a pline shape";
      return checkLines(s.holes, "holes", "hole", 3);
    }
    case CRenderShape::kText:
      if (!(s.height > 0.0) || !std::isfinite(s.height)) return "field \"height\": expected a text height above 0";
      if (!finite(s.position) || !finite(s.dir1) || !finite(s.dir2))
        return "field \"position\": the text's position or directions are not finite";
      return "";
    case CRenderShape::kFace:
      break;
    default:
      return "field \"kind\": the shape has no kind that can be saved";
  }
  const size_t n = s.vertices.size();
  if (n < 3) return "field \"vertices\": expected at least 3 points but found " + std::to_string(n);
  e = finitePoints(s.vertices, "vertices");
  if (!e.empty()) return e;
  if (s.triangles.empty() || s.triangles.size() % 3 != 0)
    return "field \"triangles\": expected three vertex indices per triangle, at least one triangle";
  for (size_t i = 0; i < s.triangles.size(); ++i)
    if (s.triangles[i] < 0 || size_t(s.triangles[i]) >= n)
      return "field \"triangles\": index " + std::to_string(s.triangles[i]) + " at position " + std::to_string(i) +
             " is past the last of " + std::to_string(n) + " vertices";
  if (!s.normals.empty() && s.normals.size() != n)
    return "field \"normals\": expected one normal per vertex (" + std::to_string(n) + ")";
  for (const AcGeVector3d& v : s.normals)
    if (!finite(v)) return "field \"normals\": a normal is not finite";
  if (!s.texCoords.empty() && s.texCoords.size() != n)
    return "field \"texCoords\": expected one pair per vertex (" + std::to_string(n) + ")";
  for (const AcGePoint2d& p : s.texCoords)
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return "field \"texCoords\": a pair is not finite";
  return "";
}

std::string checkStaticRecord(const KxStaticRecord& rec) {
  for (size_t i = 0; i < rec.primitives.size(); ++i) {
    const KxStaticPrimitive& p = rec.primitives[i];
    const std::string where = "primitive " + std::to_string(i) + ": ";
    if (int(p.type) < 0 || int(p.type) > 6) return where + "field \"type\": not a primitive that can be saved";
    const size_t n = p.points.size();
    if (n == 0) return where + "field \"points\": expected at least 1 points but found 0";
    std::string e = finitePoints(p.points, "points");
    if (!e.empty()) return where + e;
    auto fits = [n](size_t k) { return k == 0 || k == 1 || k == n; };
    if (!fits(p.normals.size())) return where + "field \"normals\": expected none, one, or one per point";
    if (!fits(p.colors.size())) return where + "field \"colors\": expected none, one, or one per point";
    if (!fits(p.texCoords.size())) return where + "field \"texCoords\": expected none, one, or one per point";
    for (const AcGeVector3d& v : p.normals)
      if (!finite(v)) return where + "field \"normals\": a normal is not finite";
    for (const AcGePoint2d& t : p.texCoords)
      if (!std::isfinite(t.x) || !std::isfinite(t.y)) return where + "field \"texCoords\": a pair is not finite";
  }
  return "";
}

std::string checkObjectDoc(const ObjectDoc& o) {
  if (o.shapes.empty()) return "an object without shapes cannot be saved";
  for (size_t i = 0; i < o.shapes.size(); ++i) {
    const std::string e = checkShapeDoc(o.shapes[i]);
    if (!e.empty()) return "shape " + std::to_string(i) + ": " + e;
  }
  for (size_t level = 0; level < o.lods.size(); ++level) {
    const LodDoc& lod = o.lods[level];
    const std::string where = "level " + std::to_string(level) + ": ";
    if (!std::isfinite(lod.unitsPerPixel) || lod.unitsPerPixel < 0.0f)
      return where + "field \"unitsPerPixel\": expected a number of 0 or more";
    for (size_t i = 0; i < lod.shapes.size(); ++i) {
      const std::string e = checkShapeDoc(lod.shapes[i]);
      if (!e.empty()) return where + "shape " + std::to_string(i) + ": " + e;
    }
  }
  if (o.hasMaxUnitsPerPixel && !(o.maxUnitsPerPixel >= 0.0 && std::isfinite(o.maxUnitsPerPixel)))
    return "field \"maxUnitsPerPixel\": expected a number of 0 or more";
  return finitePoints(o.snapPoints, "snapPoints");
}

std::string checkViewDoc(const ViewDoc& v) {
  if (!finite(v.location)) return "field \"view.camera.location\": not finite";
  if (!finite(v.forward) || v.forward.isZeroLength() || !finite(v.up) || v.up.isZeroLength())
    return "field \"view.camera\": expected forward and up directions of non-zero length";
  if (v.up.normal().crossProduct(v.forward.normal()).length() < 1e-9)
    return "field \"view.camera\": the up and forward directions are parallel";
  if (!(v.range >= 1e-6 && v.range <= 1e15)) return "field \"view.range\": expected a range from 1e-06 to 1e+15";
  return "";
}

}  // namespace kxscene
