// Reading one shape of a scene file into a ShapeDoc, with the checks that
// keep drawing and hit testing safe: point counts, index ranges, array
// lengths that match, directions of non-zero length.
#include <climits>
#include <set>

#include "io/SceneDecoder.h"
#include "io/SceneDoc.h"
#include "io/SceneParse.h"
#include "support/AnsiText.h"

namespace kxscene {

namespace {

bool kindFromName(const std::string& name, CRenderShape::ShapeType& kind) {
  if (name == "pline") {
    kind = CRenderShape::kPline;
  } else if (name == "pgon") {
    kind = CRenderShape::kPgon;
  } else if (name == "text") {
    kind = CRenderShape::kText;
  } else if (name == "face") {
    kind = CRenderShape::kFace;
  } else {
    return false;
  }
  return true;
}

// Which shape kinds a geometry field belongs to; fields not listed belong to
// every kind.
bool fieldFitsKind(const std::string& field, CRenderShape::ShapeType kind) {
  static const std::set<std::string> lines = {"pts"};
  static const std::set<std::string> polygon = {"holes"};
  static const std::set<std::string> face = {"vertices", "triangles", "normals", "texCoords"};
  static const std::set<std::string> text = {"text", "font", "height", "position", "dir1", "dir2"};
  if (lines.count(field)) return kind == CRenderShape::kPline || kind == CRenderShape::kPgon;
  if (polygon.count(field)) return kind == CRenderShape::kPgon;
  if (face.count(field)) return kind == CRenderShape::kFace;
  if (text.count(field)) return kind == CRenderShape::kText;
  return true;
}

bool parseBorder(SceneDecoder& d, ShapeDoc& s) {
  return d.members([&](const std::string& key) -> int {
    if (key == "show") return d.boolean(s.showBorder);
    if (key == "color") return d.color(s.borderColor, true);
    if (key == "scaled") return d.boolean(s.borderScaled);
    if (key == "width" || key == "max") {
      float& v = key == "width" ? s.borderWidth : s.borderMax;
      if (!d.number(v)) return 0;
      return v >= 0.0f ? 1 : d.fail("expected a width of 0 or more");
    }
    return -1;
  });
}

bool parseOffsets(SceneDecoder& d, ShapeDoc& s) {
  s.hasOffsets = true;
  return d.members([&](const std::string& key) -> int {
    if (key == "factorScale") return d.number(s.factorScale);
    if (key == "unitScale") return d.number(s.unitScale);
    if (key == "zOffset") return d.number(s.zOffset);
    return -1;
  });
}

bool parseTags(SceneDecoder& d, std::map<CString, CString>& tags) {
  JsonReader& r = d.reader();
  if (r.peek() != JsonReader::Type::Object || !r.beginObject()) return d.expected("an object of text tags");
  std::string key;
  while (r.nextKey(key)) {
    SceneDecoder::Scope tag(d, key);
    if (key.empty()) return d.fail("a tag needs a non-empty key");
    if (key == kTextureTag) return d.fail("the tag key is reserved for the texture file name");
    std::string name;
    if (!KxUtf8ToAnsi(key, name)) return d.fail("a tag key with characters the active code page cannot hold");
    CString value;
    if (!d.text(value)) return false;
    if (!tags.emplace(CString(name), value).second) return d.fail("tag given twice");
  }
  return r.failed() ? d.fail(r.error()) : true;
}

bool parseLines(SceneDecoder& d, std::vector<std::vector<AcGePoint3d>>& lines, size_t minPoints, const char* item) {
  if (d.reader().peek() != JsonReader::Type::Array) return d.expected("an array of point arrays");
  return d.elements([&](size_t i) {
    SceneDecoder::Scope scope(d, item, i, SceneDecoder::Kind::Item);
    lines.emplace_back();
    return d.points(lines.back(), minPoints);
  }) || d.expected("an array of point arrays");
}

bool parseTriangles(SceneDecoder& d, std::vector<int>& out) {
  if (d.reader().peek() != JsonReader::Type::Array) return d.expected("an array of vertex indices");
  return d.elements([&](size_t) {
    long long v;
    if (!d.integer(0, INT_MAX, v)) return false;
    out.push_back(static_cast<int>(v));
    return true;
  }) || d.expected("an array of vertex indices");
}

// The checks that need the whole shape: required fields, fields of another
// kind, counts that must agree.
bool checkShape(SceneDecoder& d, const ShapeDoc& s, const KeySet& given) {
  if (!given.count("kind")) return d.fail("missing field \"kind\"");
  for (const std::string& f : given)
    if (!fieldFitsKind(f, s.kind))
      return d.fail("field \"" + f + "\" does not belong to a " + kindName(s.kind) + " shape");
  auto require = [&](const char* f) { return given.count(f) ? true : d.fail(std::string("missing field \"") + f + "\""); };
  switch (s.kind) {
    case CRenderShape::kPline:
    case CRenderShape::kPgon:
      return require("pts");
    case CRenderShape::kText:
      return require("text") && require("height") && require("position");
    default:
      return require("vertices") && require("triangles");
  }
}

}  // namespace

bool parseShape(SceneDecoder& d, ShapeDoc& s) {
  KeySet given;
  // The kind decides how many points a contour needs, and it may come after
  // them: contours are counted once the shape is complete.
  const bool ok = d.members([&](const std::string& key) -> int {
    given.insert(key);
    if (key == "kind") {
      CString name;
      if (!d.text(name)) return 0;
      if (!kindFromName(name.str(), s.kind))
        return d.fail("unknown shape kind \"" + name.str() + "\" (expected pline, pgon, text or face)");
      return 1;
    }
    if (key == "color") return d.color(s.color, true);
    if (key == "normal") return d.direction(s.normal);
    if (key == "visible") return d.boolean(s.visible);
    if (key == "pts") return d.points(s.pts, 0);
    if (key == "holes") return parseLines(d, s.holes, 0, "hole");
    if (key == "hitLines") return parseLines(d, s.hitLines, 2, "line");
    if (key == "border") return parseBorder(d, s);
    if (key == "dotLine") return d.boolean(s.dotLine);
    if (key == "texture") {
      if (!d.text(s.texture)) return 0;
      return s.texture.IsEmpty() ? d.fail("expected a texture file name") : 1;
    }
    if (key == "offsets") return parseOffsets(d, s);
    if (key == "tags") return parseTags(d, s.tags);
    if (key == "vertices") return d.points(s.vertices, 3);
    if (key == "triangles") return parseTriangles(d, s.triangles);
    if (key == "normals") return d.vectors(s.normals);
    if (key == "texCoords") return d.points2(s.texCoords);
    if (key == "text") return d.text(s.text);
    if (key == "font") return d.text(s.font);
    if (key == "height") return d.number(s.height);
    if (key == "position") return d.point(s.position);
    if (key == "dir1") return d.vector(s.dir1);
    if (key == "dir2") return d.vector(s.dir2);
    return -1;
  });
  if (!ok || !checkShape(d, s, given)) return false;
  const std::string problem = checkShapeDoc(s);
  return problem.empty() ? true : d.fail(problem);
}

}  // namespace kxscene
