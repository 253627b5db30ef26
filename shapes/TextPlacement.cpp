#include "shapes/TextPlacement.h"

#include <algorithm>

#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/CRenderSysUtils.h"

void placeText(TextInfo& info) {
  // The directions are unit axes here: a transform's scale is carried by the
  // height alone, so that it is not applied twice.
  AcGeVector3d x = info.dir1.normal();
  AcGeVector3d y = info.dir2.normal();
  AcGeVector3d z = x.crossProduct(y).normal();
  info.placement = AcGeMatrix3d::alignCoordSys(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis,
                                               AcGeVector3d::kZAxis, info.position, x, y, z) *
                   AcGeMatrix3d::scaling(info.height);
  CRenderSysUtils::convertMatrixTo16(info.placement, info.glMatrix);
}

const TextContourCacheValue* textGlyphs(const TextInfo& info) {
  if (info.text.IsEmpty()) return nullptr;
  return CTextRenderList::cachedTextContour(TextContourCacheKey(info.font, info.text));
}

void takeGlyphs(TextInfo& info) {
  const TextContourCacheValue* glyphs = textGlyphs(info);
  info.filled = glyphs && glyphs->isOutline;
}

void textBoxCorners(const TextInfo& info, AcGePoint3d corners[4]) {
  const TextContourCacheValue* glyphs = textGlyphs(info);
  double x0 = 0, y0 = 0, x1 = std::max(1, info.text.GetLength()), y1 = 1;
  if (glyphs && !glyphs->contours.empty()) {
    x0 = glyphs->minPt.x, y0 = glyphs->minPt.y, x1 = glyphs->maxPt.x, y1 = glyphs->maxPt.y;
  }
  const AcGePoint3d local[4] = {{x0, y0, 0}, {x1, y0, 0}, {x0, y1, 0}, {x1, y1, 0}};
  for (int i = 0; i < 4; ++i) corners[i] = info.placement * local[i];
}
