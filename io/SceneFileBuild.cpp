// Engine objects from a checked document: shapes are set through the same
// calls a host makes, so a shape read from a file is triangulated, measured
// and offset exactly as the host's own would be.
#include <cmath>
#include <memory>

#include "kxrender/CRenderObject.h"
#include "kxrender/CStaticObject.h"
#include "kxrender/TextInfo.h"
#include "io/SceneDoc.h"

namespace kxscene {

namespace {

// A normal that a shape normalised before it was saved is kept bit for bit:
// normalising it again could move its last digit, and the file written next
// would differ from the one read.
bool isSavedUnit(const AcGeVector3d& v) { return std::fabs(v.length() - 1.0) < 1e-12; }

}  // namespace

void buildShape(const ShapeDoc& d, CRenderShape& s) {
  switch (d.kind) {
    case CRenderShape::kPline:
    case CRenderShape::kPgon:
      s.set(d.pts, d.holes, d.kind, d.color, d.normal, d.factorScale, d.unitScale, d.zOffset);
      break;
    case CRenderShape::kText: {
      TextInfo* info = new TextInfo;
      info->text = d.text;
      info->font = d.font;
      info->height = d.height;
      info->position = d.position;
      info->dir1 = d.dir1;
      info->dir2 = d.dir2;
      s.set(info, d.color, d.normal);
      break;
    }
    default: {
      s.setFaceType(false);
      s.setClr(d.color);
      s.setUcs(d.normal);
      // The shape copies the arrays it is given.
      std::vector<AcGePoint3d> vertices = d.vertices;
      std::vector<int> triangles = d.triangles;
      std::vector<AcGeVector3d> normals = d.normals;
      std::vector<AcGePoint2d> texCoords = d.texCoords;
      s.setFaceVertexArray(&vertices);
      s.setFaceTriangleIndexArray(&triangles);
      if (!normals.empty()) s.setFaceNormalArray(&normals);
      if (!texCoords.empty()) s.setFaceTexCoordArray(&texCoords);
      s.calBox();
      s.calArea();
      break;
    }
  }
  if (isSavedUnit(d.normal)) s.setUcs(d.normal);
  if (d.hasOffsets && d.kind != CRenderShape::kPline && d.kind != CRenderShape::kPgon) {
    // Units start at 1 for these kinds, so scaling them sets them.
    s.setOffsetScale(d.factorScale);
    s.setOffsetUnitScale(d.unitScale);
    s.setZOffset(d.zOffset);
  }
  s.setVisible(d.visible);
  s.setShowBorder(d.showBorder);
  s.setBorderColor(d.borderColor);
  s.setBorderMaxWidth(d.borderMax);  // switches scaling on; the next line sets it as saved
  s.setBorderWidth(d.borderWidth, d.borderScaled);
  s.setDotLine(d.dotLine);
  for (const auto& tag : d.tags) s.setXdata(tag.first, tag.second);
  if (!d.texture.IsEmpty()) s.setXdata(kTextureTag, d.texture);
  for (const auto& line : d.hitLines) s.addHitLine(line);
}

CRenderObject* buildObject(const ObjectDoc& d) {
  std::unique_ptr<CRenderObject> o(new CRenderObject);
  o->setExternId(d.externId);
  o->setXdata(d.xdata);
  o->setVisible(d.visible);
  o->setRenderMode(static_cast<CRenderObject::RenderMode>(d.renderMode));
  o->setGenerateShadow(d.generateShadow);
  o->setFaceSnap(d.faceSnap);
  if (d.hasMaxUnitsPerPixel) o->setMaxUnitsPerPixel(d.maxUnitsPerPixel);
  o->setSnapPoints(d.snapPoints);
  o->getShps().reserve(d.shapes.size());
  for (const ShapeDoc& sd : d.shapes) {
    o->getShps().emplace_back();
    buildShape(sd, o->getShps().back());
  }
  o->endAddShape();
  if (!d.lods.empty()) {
    o->setLodLevel(static_cast<unsigned>(d.lods.size()));
    for (unsigned level = 0; level < d.lods.size(); ++level) {
      const LodDoc& lod = d.lods[level];
      std::vector<CRenderShape>& shapes = o->getLodShpss(level);
      shapes.resize(lod.shapes.size());
      for (size_t i = 0; i < lod.shapes.size(); ++i) buildShape(lod.shapes[i], shapes[i]);
      o->getLodUnitsPerPixel(level) = lod.unitsPerPixel;
    }
  }
  return o.release();
}

}  // namespace kxscene

CStaticObject* KxBuildStaticObject(KxStaticRecord& rec) {
  CStaticObject* obj = CStaticObject::createStaticObject();
  obj->beginBuild();
  for (const KxStaticPrimitive& p : rec.primitives) {
    obj->begin(p.type);
    for (size_t i = 0; i < p.points.size(); ++i) {
      // A list of one is sent once, before the first point; GL keeps it.
      if (p.normals.size() > i) obj->normal(float(p.normals[i].x), float(p.normals[i].y), float(p.normals[i].z));
      if (p.colors.size() > i) obj->color(p.colors[i].r, p.colors[i].g, p.colors[i].b);
      if (p.texCoords.size() > i) obj->textureCoord(float(p.texCoords[i].x), float(p.texCoords[i].y));
      obj->point(p.points[i].x, p.points[i].y, p.points[i].z);
    }
    obj->end();
  }
  obj->endBuild();
  obj->setVisible(rec.visible);
  rec.id = obj->getRenderList();
  return obj;
}
