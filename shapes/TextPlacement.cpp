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

void textBoxCorners(const TextInfo& info, AcGePoint3d corners[4]) {
  const double width = std::max(1, info.text.GetLength());
  const AcGePoint3d local[4] = {{0, 0, 0}, {width, 0, 0}, {0, 1, 0}, {width, 1, 0}};
  for (int i = 0; i < 4; ++i) corners[i] = info.placement * local[i];
}
