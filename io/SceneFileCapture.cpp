// Documents from engine objects, for writing: what a shape holds is turned
// back into what `set` and the setters were given, so that reading the
// document rebuilds the same shape.
#include <utility>

#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"
#include "io/SceneDoc.h"

namespace kxscene {

namespace {

// The area-derived base of a shape's polygon offset, computed by the shape
// itself so that writing and reading agree on it to the bit.
float offsetBase(double area) {
  CRenderShape probe;
  probe.setArea(area);
  probe.setOffsetScale(1.0);
  return probe.getOffsetFactor();
}

// The scale that reading turns back into target: the shape computes
// float(base * s), and with s the quotient in double precision the product
// lies within a few units of 2^-52 of target, far inside target's float
// rounding interval.
double scaleFor(float target, float base) { return double(target) / double(base); }

void captureOffsets(const CRenderShape& s, ShapeDoc& d) {
  const float factor = s.getOffsetFactor();
  const float units = s.getOffsetUnits();
  const float base = offsetBase(s.getArea());
  d.zOffset = s.getZOffset();
  if (d.kind == CRenderShape::kPline || d.kind == CRenderShape::kPgon) {
    // Both values are base times a scale; with a zero base both are zero
    // whatever the scales were, and scale 1 says the same.
    d.factorScale = base != 0.0f ? scaleFor(factor, base) : 1.0;
    d.unitScale = base != 0.0f ? scaleFor(units, base) : 1.0;
    d.hasOffsets = d.factorScale != 1.0 || d.unitScale != 1.0 || d.zOffset != 0.0f;
    return;
  }
  d.hasOffsets = factor != 0.0f || units != 1.0f || d.zOffset != 0.0f;
  d.factorScale = base != 0.0f ? scaleFor(factor, base) : 1.0;
  d.unitScale = units;
}

}  // namespace

void captureShape(const CRenderShape& s, ShapeDoc& d) {
  d = ShapeDoc();
  d.kind = s.getShpType();
  d.color = s.getClr();
  d.normal = s.getUcs();
  d.visible = s.getVisible();
  switch (d.kind) {
    case CRenderShape::kPgon:
      d.holes = s.getHoles();
      d.pts = s.getPts();
      break;
    case CRenderShape::kPline:
      // Holes given to a polyline are kept by the shape but never drawn or
      // hit; the file has no place for them.
      d.pts = s.getPts();
      break;
    case CRenderShape::kText:
      if (const TextInfo* info = s.getTextInfo()) {
        d.text = info->text;
        d.font = info->font;
        d.height = info->height;
        d.position = info->position;
        d.dir1 = info->dir1;
        d.dir2 = info->dir2;
      }
      break;
    case CRenderShape::kFace:
      if (s.getFaceVertexArray()) d.vertices = *s.getFaceVertexArray();
      if (s.getFaceTriangleIndexArray()) d.triangles = *s.getFaceTriangleIndexArray();
      if (s.getFaceNormalArray()) d.normals = *s.getFaceNormalArray();
      if (s.getFaceTexCoordArray()) d.texCoords = *s.getFaceTexCoordArray();
      break;
    default:
      break;
  }
  d.showBorder = s.getShowBorder();
  d.borderColor = s.getBorderColor();
  d.borderWidth = s.getBorderWidth();
  d.borderScaled = s.isBorderWidthScaled();
  d.borderMax = s.getBorderMaxWidth();
  d.dotLine = s.isDotLine();
  for (const auto& tag : s.getXdataMap()) {
    if (tag.first == kTextureTag)
      d.texture = tag.second;
    else
      d.tags.insert(tag);
  }
  d.hitLines = s.getHitLine();
  captureOffsets(s, d);
}

void captureObject(CRenderObject& o, ObjectDoc& d) {
  d = ObjectDoc();
  d.externId = o.getExternId();
  d.xdata = o.getXdata();
  d.visible = o.isVisible();
  d.renderMode = static_cast<int>(o.getRenderMode());
  d.generateShadow = o.getGenerateShadow();
  d.faceSnap = o.getFaceSnap();
  d.hasMaxUnitsPerPixel = o.hasMaxUnitsPerPixel();
  d.maxUnitsPerPixel = o.getMaxUnitsPerPixel();
  d.snapPoints = o.getSnapPoints();
  d.shapes.resize(o.numShp());
  for (unsigned i = 0; i < o.numShp(); ++i) captureShape(o.getShps()[i], d.shapes[i]);
  // Read through const: a plain object then gains no storage for levels.
  const size_t levels = std::as_const(o).getLodShpss().size();
  d.lods.resize(levels);
  for (unsigned level = 0; level < levels; ++level) {
    const std::vector<CRenderShape>& shapes = o.getLodShpss(level);
    d.lods[level].shapes.resize(shapes.size());
    for (size_t i = 0; i < shapes.size(); ++i) captureShape(shapes[i], d.lods[level].shapes[i]);
    d.lods[level].unitsPerPixel = level < o.getLodUnitsPerPixel().size() ? o.getLodUnitsPerPixel(level) : 0.0f;
  }
}

void captureView(CSceneMgr& scene, ViewDoc& v) {
  const CCamera* cam = scene.camera();
  v.location = cam->GetVLocation();
  v.forward = cam->GetVForward();
  v.up = cam->GetVUp();
  v.range = scene.dRange();
  v.renderMode = static_cast<int>(scene.getRenderMode());
  scene.getBkColor(v.background);
}

}  // namespace kxscene
