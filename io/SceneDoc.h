#pragma once
// The scene file as data: what a file says, checked and converted to engine
// terms (engine text in the ANSI code page), before anything is built from
// it. Reading fills a SceneDoc completely or fails; building the objects and
// replacing a scene's contents happens only afterwards.
#include <map>
#include <string>
#include <vector>

#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/CColor.h"
#include "kxrender/CRenderShape.h"
#include "kxrender/CString.h"
#include "kxrender/KxSceneFile.h"

class JsonReader;
class JsonWriter;
class CRenderObject;
class CSceneMgr;

namespace kxscene {

// The file's name for a shape kind.
inline const char* kindName(CRenderShape::ShapeType kind) {
  switch (kind) {
    case CRenderShape::kPline:
      return "pline";
    case CRenderShape::kPgon:
      return "pgon";
    case CRenderShape::kText:
      return "text";
    default:
      return "face";
  }
}

constexpr int kFormatVersion = 1;
// The shape tag under which a shape read from a file keeps its texture's
// file name until the scene's texture manager loads it.
constexpr const char* kTextureTag = "kxscene.texture";

struct ShapeDoc {
  CRenderShape::ShapeType kind = CRenderShape::kPgon;
  CColor color;
  AcGeVector3d normal{0.0, 0.0, 1.0};
  bool visible = true;
  // Polylines and polygons.
  std::vector<AcGePoint3d> pts;
  std::vector<std::vector<AcGePoint3d>> holes;
  // Display attributes.
  bool showBorder = false;
  CColor borderColor;
  float borderWidth = 1.2f;
  bool borderScaled = false;
  float borderMax = 8.0f;
  bool dotLine = false;
  CString texture;  // file name; empty for none
  // Polygon offset. For polylines and polygons these are the scales `set`
  // takes: factor and units are the area-derived base times them. Other
  // kinds keep their defaults (factor 0, units 1) unless offsets are given;
  // then the factor is the base times factorScale and the units are
  // unitScale.
  bool hasOffsets = false;
  double factorScale = 1.0;
  double unitScale = 1.0;
  float zOffset = 0.0f;
  std::map<CString, CString> tags;
  std::vector<std::vector<AcGePoint3d>> hitLines;
  // Face meshes.
  std::vector<AcGePoint3d> vertices;
  std::vector<int> triangles;  // three vertex indices per triangle
  std::vector<AcGeVector3d> normals;
  std::vector<AcGePoint2d> texCoords;
  // Text.
  CString text;
  CString font;
  double height = 0.0;
  AcGePoint3d position;
  AcGeVector3d dir1{1.0, 0.0, 0.0};
  AcGeVector3d dir2{0.0, 1.0, 0.0};
};

struct LodDoc {
  float unitsPerPixel = 0.0f;
  std::vector<ShapeDoc> shapes;
};

struct ObjectDoc {
  unsigned externId = 0;
  CString xdata;
  bool visible = true;
  int renderMode = 2;
  bool generateShadow = false;
  bool faceSnap = false;
  bool hasMaxUnitsPerPixel = false;
  double maxUnitsPerPixel = 0.0;
  std::vector<AcGePoint3d> snapPoints;
  std::vector<ShapeDoc> shapes;
  std::vector<LodDoc> lods;
};

struct ViewDoc {
  AcGeVector3d location{0.0, 0.0, 0.0};
  AcGeVector3d forward{0.0, 0.0, -1.0};
  AcGeVector3d up{0.0, 1.0, 0.0};
  double range = 150.0;
  int renderMode = 2;
  CColor background{0, 0, 0, 255};
};

struct SceneDoc {
  bool hasView = false;
  ViewDoc view;
  std::vector<ObjectDoc> objects;
  std::vector<KxStaticRecord> statics;
};

// The rules every saved shape and static object meets: "" when it does,
// else what is wrong, starting with the field ("field \"pts\": ...").
std::string checkShapeDoc(const ShapeDoc& s);
std::string checkStaticRecord(const KxStaticRecord& rec);
// For writing: what the reader would refuse in an object or a view.
std::string checkObjectDoc(const ObjectDoc& o);
std::string checkViewDoc(const ViewDoc& v);

// Reads and checks a whole document. On failure error reads
// "<name>: <where>: <what> (line L, column C)" and doc is unspecified.
bool parseSceneDoc(JsonReader& reader, const std::string& name, SceneDoc& doc, std::string& error);

// Writing, piece by piece so that a big scene is streamed object by object.
// Each returns false (with error) for text that cannot be written as UTF-8.
void writeSceneStart(JsonWriter& w);
void writeView(JsonWriter& w, const ViewDoc& view);
void beginObjects(JsonWriter& w);
bool writeObject(JsonWriter& w, const ObjectDoc& obj, size_t index, std::string& error);
void endObjects(JsonWriter& w);
void beginStatics(JsonWriter& w);
void writeStatic(JsonWriter& w, const KxStaticRecord& rec);
void endStatics(JsonWriter& w);
void writeSceneEnd(JsonWriter& w);
// The whole document in one go (tests, small scenes).
bool writeSceneDoc(JsonWriter& w, const SceneDoc& doc, std::string& error);

// Engine objects from documents and back.
CRenderObject* buildObject(const ObjectDoc& obj);
void buildShape(const ShapeDoc& doc, CRenderShape& shape);
void captureObject(CRenderObject& obj, ObjectDoc& out);
void captureShape(const CRenderShape& shape, ShapeDoc& out);
void captureView(CSceneMgr& scene, ViewDoc& out);

}  // namespace kxscene
