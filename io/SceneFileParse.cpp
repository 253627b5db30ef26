// Reading a scene file into a SceneDoc: the header, the view, the objects
// with their levels of detail, and the static objects.
#include <climits>
#include <set>

#include "io/SceneParse.h"

namespace kxscene {

namespace {

using Scope = SceneDecoder::Scope;

bool parseShapes(SceneDecoder& d, std::vector<ShapeDoc>& shapes) {
  if (d.reader().peek() != JsonReader::Type::Array) return d.expected("an array of shapes");
  return d.elements([&](size_t i) {
    Scope item(d, "shape", i, SceneDecoder::Kind::Element);
    shapes.emplace_back();
    return parseShape(d, shapes.back());
  }) || d.expected("an array of shapes");
}

bool parseLod(SceneDecoder& d, LodDoc& lod) {
  bool hasThreshold = false;
  const bool ok = d.members([&](const std::string& key) -> int {
    if (key == "unitsPerPixel") {
      hasThreshold = true;
      if (!d.number(lod.unitsPerPixel)) return 0;
      return lod.unitsPerPixel >= 0.0f ? 1 : d.fail("expected a number of 0 or more");
    }
    if (key == "shapes") return parseShapes(d, lod.shapes);
    return -1;
  });
  if (!ok) return false;
  return hasThreshold ? true : d.fail("missing field \"unitsPerPixel\"");
}

bool parseObject(SceneDecoder& d, ObjectDoc& obj) {
  bool hasShapes = false;
  const bool ok = d.members([&](const std::string& key) -> int {
    long long v;
    if (key == "externId") {
      if (!d.integer(0, 4294967295LL, v)) return 0;
      obj.externId = static_cast<unsigned>(v);
      return 1;
    }
    if (key == "renderMode") {
      if (!d.integer(INT_MIN, INT_MAX, v)) return 0;
      obj.renderMode = static_cast<int>(v);
      return 1;
    }
    if (key == "xdata") return d.text(obj.xdata);
    if (key == "visible") return d.boolean(obj.visible);
    if (key == "generateShadow") return d.boolean(obj.generateShadow);
    if (key == "faceSnap") return d.boolean(obj.faceSnap);
    if (key == "maxUnitsPerPixel") {
      obj.hasMaxUnitsPerPixel = true;
      if (!d.number(obj.maxUnitsPerPixel)) return 0;
      return obj.maxUnitsPerPixel >= 0.0 ? 1 : d.fail("expected a number of 0 or more");
    }
    if (key == "snapPoints") return d.points(obj.snapPoints, 0);
    if (key == "shapes") {
      hasShapes = true;
      if (!parseShapes(d, obj.shapes)) return 0;
      return obj.shapes.empty() ? d.fail("an object needs at least one shape") : 1;
    }
    if (key == "lod") {
      if (d.reader().peek() != JsonReader::Type::Array) return d.expected("an array of levels of detail");
      return d.elements([&](size_t i) {
        Scope item(d, "level", i, SceneDecoder::Kind::Element);
        obj.lods.emplace_back();
        return parseLod(d, obj.lods.back());
      }) || d.expected("an array of levels of detail");
    }
    return -1;
  });
  if (!ok) return false;
  return hasShapes ? true : d.fail("missing field \"shapes\"");
}

bool parseCamera(SceneDecoder& d, ViewDoc& view) {
  KeySet given;
  const bool ok = d.members([&](const std::string& key) -> int {
    given.insert(key);
    if (key == "location") return d.vector(view.location);
    if (key == "forward") return d.direction(view.forward);
    if (key == "up") return d.direction(view.up);
    return -1;
  });
  if (!ok) return false;
  for (const char* f : {"location", "forward", "up"})
    if (!given.count(f)) return d.fail(std::string("missing field \"") + f + "\"");
  const AcGeVector3d side = view.up.normal().crossProduct(view.forward.normal());
  if (side.length() < 1e-9) return d.fail("the up and forward directions are parallel");
  return true;
}

bool parseView(SceneDecoder& d, ViewDoc& view) {
  KeySet given;
  const bool ok = d.members([&](const std::string& key) -> int {
    given.insert(key);
    if (key == "camera") return parseCamera(d, view);
    if (key == "range") {
      if (!d.number(view.range)) return 0;
      // The scene refuses ranges outside this, so a file must not ask for one.
      return view.range >= 1e-6 && view.range <= 1e15 ? 1 : d.fail("expected a range from 1e-06 to 1e+15");
    }
    if (key == "renderMode") {
      long long v;
      if (!d.integer(INT_MIN, INT_MAX, v)) return 0;
      view.renderMode = static_cast<int>(v);
      return 1;
    }
    if (key == "background") return d.color(view.background, true);
    return -1;
  });
  if (!ok) return false;
  for (const char* f : {"camera", "range", "renderMode", "background"})
    if (!given.count(f)) return d.fail(std::string("missing field \"") + f + "\"");
  return true;
}

bool primitiveType(const std::string& name, CRenderSystem::ShapeType& type) {
  static const char* const names[] = {"points",    "lines",         "lineStrip",  "lineLoop",
                                      "triangles", "triangleStrip", "triangleFan"};
  for (int i = 0; i < 7; ++i) {
    if (name == names[i]) {
      type = static_cast<CRenderSystem::ShapeType>(i);
      return true;
    }
  }
  return false;
}

bool parsePrimitive(SceneDecoder& d, KxStaticPrimitive& p) {
  bool hasType = false, hasPoints = false;
  const bool ok = d.members([&](const std::string& key) -> int {
    if (key == "type") {
      hasType = true;
      CString name;
      if (!d.text(name)) return 0;
      if (!primitiveType(name.str(), p.type))
        return d.fail("unknown primitive \"" + name.str() +
                      "\" (expected points, lines, lineStrip, lineLoop, triangles, triangleStrip or triangleFan)");
      return 1;
    }
    if (key == "points") {
      hasPoints = true;
      return d.points(p.points, 1);
    }
    if (key == "normals") return d.vectors(p.normals);
    if (key == "texCoords") return d.points2(p.texCoords);
    if (key == "colors") {
      if (d.reader().peek() != JsonReader::Type::Array) return d.expected("an array of colours");
      return d.elements([&](size_t i) {
        Scope item(d, "colour", i, SceneDecoder::Kind::Item);
        p.colors.emplace_back();
        return d.color(p.colors.back(), false);
      }) || d.expected("an array of colours");
    }
    return -1;
  });
  if (!ok) return false;
  if (!hasType) return d.fail("missing field \"type\"");
  return hasPoints ? true : d.fail("missing field \"points\"");
}

bool parseStatic(SceneDecoder& d, KxStaticRecord& rec) {
  bool hasPrimitives = false;
  const bool ok = d.members([&](const std::string& key) -> int {
    if (key == "visible") return d.boolean(rec.visible);
    if (key == "primitives") {
      hasPrimitives = true;
      if (d.reader().peek() != JsonReader::Type::Array) return d.expected("an array of primitives");
      return d.elements([&](size_t i) {
        Scope item(d, "primitive", i, SceneDecoder::Kind::Element);
        rec.primitives.emplace_back();
        return parsePrimitive(d, rec.primitives.back());
      }) || d.expected("an array of primitives");
    }
    return -1;
  });
  if (!ok) return false;
  if (!hasPrimitives) return d.fail("missing field \"primitives\"");
  const std::string problem = checkStaticRecord(rec);
  return problem.empty() ? true : d.fail(problem);
}

bool parseHeader(SceneDecoder& d) {
  JsonReader& r = d.reader();
  const char* start = "expected the document to start with \"format\": \"kxscene\", \"version\": 1";
  if (r.peek() != JsonReader::Type::Object || !r.beginObject()) return d.expected("a scene document (a JSON object)");
  std::string key;
  if (!r.nextKey(key)) return r.failed() ? d.fail(r.error()) : d.fail(start);
  if (key != "format") return d.fail(start);
  {
    Scope f(d, "format");
    std::string format;
    if (r.peek() != JsonReader::Type::String || !r.readString(format)) return d.expected("the text \"kxscene\"");
    if (format != "kxscene") return d.fail("expected \"kxscene\" but found \"" + format + "\"");
  }
  if (!r.nextKey(key)) return r.failed() ? d.fail(r.error()) : d.fail(start);
  if (key != "version") return d.fail(start);
  Scope f(d, "version");
  long long version;
  if (!d.integer(1, INT_MAX, version)) return false;
  if (version > kFormatVersion)
    return d.fail("version " + std::to_string(version) + " is newer than this reader, which reads version " +
                  std::to_string(kFormatVersion));
  return true;
}

bool parseBody(SceneDecoder& d, SceneDoc& doc) {
  JsonReader& r = d.reader();
  KeySet seen;
  std::string key;
  while (r.nextKey(key)) {
    if (!seen.insert(key)) return d.fail("field \"" + key + "\" given twice");
    if (key == "view") {
      Scope f(d, "view");
      doc.hasView = true;
      if (!parseView(d, doc.view)) return false;
    } else if (key == "objects") {
      if (r.peek() != JsonReader::Type::Array) {
        Scope f(d, "objects");
        return d.expected("an array of objects");
      }
      const bool ok = d.elements([&](size_t i) {
        Scope item(d, "object", i, SceneDecoder::Kind::Element);
        doc.objects.emplace_back();
        return parseObject(d, doc.objects.back());
      });
      if (!ok) return d.message().empty() ? d.expected("an array of objects") : false;
    } else if (key == "staticObjects") {
      if (r.peek() != JsonReader::Type::Array) {
        Scope f(d, "staticObjects");
        return d.expected("an array of static objects");
      }
      const bool ok = d.elements([&](size_t i) {
        Scope item(d, "static object", i, SceneDecoder::Kind::Element);
        doc.statics.emplace_back();
        return parseStatic(d, doc.statics.back());
      });
      if (!ok) return d.message().empty() ? d.expected("an array of static objects") : false;
    } else {
      return d.fail("unknown field \"" + key + "\"");
    }
  }
  return r.failed() ? d.fail(r.error()) : true;
}

}  // namespace

bool parseSceneDoc(JsonReader& reader, const std::string& name, SceneDoc& doc, std::string& error) {
  SceneDecoder d(reader, name);
  const bool ok = parseHeader(d) && parseBody(d, doc) && (reader.finish() || d.fail(reader.error()));
  if (!ok) error = d.message().empty() ? name + ": " + reader.error() : d.message();
  return ok;
}

}  // namespace kxscene
