// Writing a SceneDoc as JSON. Fields equal to what a reader assumes when
// they are missing are left out, so files stay small; the order of fields
// is fixed, so the same document always gives the same bytes.
#include "io/SceneDoc.h"
#include "support/AnsiText.h"
#include "support/JsonWriter.h"

namespace kxscene {

namespace {

const char* primitiveName(CRenderSystem::ShapeType type) {
  static const char* const names[] = {"points",    "lines",         "lineStrip",  "lineLoop",
                                      "triangles", "triangleStrip", "triangleFan"};
  const int i = static_cast<int>(type);
  return i >= 0 && i < 7 ? names[i] : "points";
}

// Engine text as UTF-8; where names the field for the error.
bool text(JsonWriter& w, const CString& s, const std::string& where, std::string& error) {
  std::string utf8;
  if (!KxAnsiToUtf8(s.str(), utf8)) {
    if (error.empty()) error = where + ": text that is not valid in the active code page";
    return false;
  }
  w.string(utf8);
  return true;
}

void triple(JsonWriter& w, double x, double y, double z) {
  w.beginArray(true);
  w.number(x);
  w.number(y);
  w.number(z);
  w.endArray();
}

void point(JsonWriter& w, const AcGePoint3d& p) { triple(w, p.x, p.y, p.z); }
void vec(JsonWriter& w, const AcGeVector3d& v) { triple(w, v.x, v.y, v.z); }

void points(JsonWriter& w, const std::vector<AcGePoint3d>& pts) {
  w.beginArray(true);
  for (const AcGePoint3d& p : pts) point(w, p);
  w.endArray();
}

void lines(JsonWriter& w, const std::vector<std::vector<AcGePoint3d>>& ls) {
  w.beginArray(true);
  for (const auto& l : ls) points(w, l);
  w.endArray();
}

void color(JsonWriter& w, const CColor& c, bool withAlpha) {
  w.beginArray(true);
  w.integer(c.r);
  w.integer(c.g);
  w.integer(c.b);
  if (withAlpha) w.integer(c.a);
  w.endArray();
}

void pairs(JsonWriter& w, const std::vector<AcGePoint2d>& uv) {
  w.beginArray(true);
  for (const AcGePoint2d& p : uv) {
    w.beginArray(true);
    w.number(p.x);
    w.number(p.y);
    w.endArray();
  }
  w.endArray();
}

void vectors(JsonWriter& w, const std::vector<AcGeVector3d>& vs) {
  w.beginArray(true);
  for (const AcGeVector3d& v : vs) vec(w, v);
  w.endArray();
}

bool shape(JsonWriter& w, const ShapeDoc& s, const std::string& where, std::string& error) {
  w.beginObject(true);
  w.key("kind");
  w.string(kindName(s.kind));
  w.key("color");
  color(w, s.color, true);
  w.key("normal");
  vec(w, s.normal);
  if (!s.visible) {
    w.key("visible");
    w.boolean(false);
  }
  if (s.kind == CRenderShape::kPline || s.kind == CRenderShape::kPgon) {
    w.key("pts");
    points(w, s.pts);
    if (!s.holes.empty()) {
      w.key("holes");
      lines(w, s.holes);
    }
  } else if (s.kind == CRenderShape::kFace) {
    w.key("vertices");
    points(w, s.vertices);
    w.key("triangles");
    w.beginArray(true);
    for (int i : s.triangles) w.integer(i);
    w.endArray();
    if (!s.normals.empty()) {
      w.key("normals");
      vectors(w, s.normals);
    }
    if (!s.texCoords.empty()) {
      w.key("texCoords");
      pairs(w, s.texCoords);
    }
  } else {
    w.key("text");
    if (!text(w, s.text, where + ": field \"text\"", error)) return false;
    w.key("font");
    if (!text(w, s.font, where + ": field \"font\"", error)) return false;
    w.key("height");
    w.number(s.height);
    w.key("position");
    point(w, s.position);
    w.key("dir1");
    vec(w, s.dir1);
    w.key("dir2");
    vec(w, s.dir2);
  }
  const ShapeDoc defaults;
  if (s.showBorder != defaults.showBorder || s.borderColor != defaults.borderColor ||
      s.borderWidth != defaults.borderWidth || s.borderScaled != defaults.borderScaled ||
      s.borderMax != defaults.borderMax) {
    w.key("border");
    w.beginObject(true);
    w.key("show");
    w.boolean(s.showBorder);
    w.key("color");
    color(w, s.borderColor, true);
    w.key("width");
    w.number(s.borderWidth);
    w.key("scaled");
    w.boolean(s.borderScaled);
    w.key("max");
    w.number(s.borderMax);
    w.endObject();
  }
  if (s.dotLine) {
    w.key("dotLine");
    w.boolean(true);
  }
  if (!s.texture.IsEmpty()) {
    w.key("texture");
    if (!text(w, s.texture, where + ": field \"texture\"", error)) return false;
  }
  if (s.hasOffsets) {
    w.key("offsets");
    w.beginObject(true);
    w.key("factorScale");
    w.number(s.factorScale);
    w.key("unitScale");
    w.number(s.unitScale);
    w.key("zOffset");
    w.number(s.zOffset);
    w.endObject();
  }
  if (!s.tags.empty()) {
    w.key("tags");
    w.beginObject(true);
    for (const auto& tag : s.tags) {
      std::string key;
      if (!KxAnsiToUtf8(tag.first.str(), key)) {
        if (error.empty()) error = where + ": field \"tags\": a key that is not valid in the active code page";
        return false;
      }
      w.key(key.c_str());
      if (!text(w, tag.second, where + ": field \"tags." + key + "\"", error)) return false;
    }
    w.endObject();
  }
  if (!s.hitLines.empty()) {
    w.key("hitLines");
    lines(w, s.hitLines);
  }
  w.endObject();
  return true;
}

bool shapes(JsonWriter& w, const std::vector<ShapeDoc>& list, const std::string& where, std::string& error) {
  w.beginArray();
  for (size_t i = 0; i < list.size(); ++i)
    if (!shape(w, list[i], where + ": shape " + std::to_string(i), error)) return false;
  w.endArray();
  return true;
}

}  // namespace

void writeSceneStart(JsonWriter& w) {
  w.beginObject();
  w.key("format");
  w.string("kxscene");
  w.key("version");
  w.integer(kFormatVersion);
}

void writeView(JsonWriter& w, const ViewDoc& v) {
  w.key("view");
  w.beginObject();
  w.key("camera");
  w.beginObject(true);
  w.key("location");
  vec(w, v.location);
  w.key("forward");
  vec(w, v.forward);
  w.key("up");
  vec(w, v.up);
  w.endObject();
  w.key("range");
  w.number(v.range);
  w.key("renderMode");
  w.integer(v.renderMode);
  w.key("background");
  color(w, v.background, true);
  w.endObject();
}

void beginObjects(JsonWriter& w) {
  w.key("objects");
  w.beginArray();
}

bool writeObject(JsonWriter& w, const ObjectDoc& o, size_t index, std::string& error) {
  const std::string where = "object " + std::to_string(index);
  w.beginObject();
  w.key("externId");
  w.integer(o.externId);
  if (!o.xdata.IsEmpty()) {
    w.key("xdata");
    if (!text(w, o.xdata, where + ": field \"xdata\"", error)) return false;
  }
  if (!o.visible) {
    w.key("visible");
    w.boolean(false);
  }
  if (o.renderMode != 2) {
    w.key("renderMode");
    w.integer(o.renderMode);
  }
  if (o.generateShadow) {
    w.key("generateShadow");
    w.boolean(true);
  }
  if (o.faceSnap) {
    w.key("faceSnap");
    w.boolean(true);
  }
  if (o.hasMaxUnitsPerPixel) {
    w.key("maxUnitsPerPixel");
    w.number(o.maxUnitsPerPixel);
  }
  if (!o.snapPoints.empty()) {
    w.key("snapPoints");
    points(w, o.snapPoints);
  }
  w.key("shapes");
  if (!shapes(w, o.shapes, where, error)) return false;
  if (!o.lods.empty()) {
    w.key("lod");
    w.beginArray();
    for (size_t i = 0; i < o.lods.size(); ++i) {
      w.beginObject();
      w.key("unitsPerPixel");
      w.number(o.lods[i].unitsPerPixel);
      w.key("shapes");
      if (!shapes(w, o.lods[i].shapes, where + ": level " + std::to_string(i), error)) return false;
      w.endObject();
    }
    w.endArray();
  }
  w.endObject();
  return true;
}

void endObjects(JsonWriter& w) { w.endArray(); }

void beginStatics(JsonWriter& w) {
  w.key("staticObjects");
  w.beginArray();
}

void writeStatic(JsonWriter& w, const KxStaticRecord& rec) {
  w.beginObject();
  if (!rec.visible) {
    w.key("visible");
    w.boolean(false);
  }
  w.key("primitives");
  w.beginArray();
  for (const KxStaticPrimitive& p : rec.primitives) {
    w.beginObject(true);
    w.key("type");
    w.string(primitiveName(p.type));
    w.key("points");
    points(w, p.points);
    if (!p.normals.empty()) {
      w.key("normals");
      vectors(w, p.normals);
    }
    if (!p.colors.empty()) {
      w.key("colors");
      w.beginArray(true);
      for (const CColor& c : p.colors) color(w, c, false);
      w.endArray();
    }
    if (!p.texCoords.empty()) {
      w.key("texCoords");
      pairs(w, p.texCoords);
    }
    w.endObject();
  }
  w.endArray();
  w.endObject();
}

void endStatics(JsonWriter& w) { w.endArray(); }

void writeSceneEnd(JsonWriter& w) { w.endObject(); }

bool writeSceneDoc(JsonWriter& w, const SceneDoc& doc, std::string& error) {
  writeSceneStart(w);
  if (doc.hasView) writeView(w, doc.view);
  beginObjects(w);
  for (size_t i = 0; i < doc.objects.size(); ++i)
    if (!writeObject(w, doc.objects[i], i, error)) return false;
  endObjects(w);
  if (!doc.statics.empty()) {
    beginStatics(w);
    for (const KxStaticRecord& rec : doc.statics) writeStatic(w, rec);
    endStatics(w);
  }
  writeSceneEnd(w);
  return true;
}

}  // namespace kxscene
