#pragma once
// What the shape drawers share: the frame's alpha and shadow switch as the
// render object's scene gives them, the fixed selection constants, and
// vertex submission helpers.
#include <cstdint>
#include <vector>

#include "kxrender/AcGePoint3d.h"
#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/CSceneMgr.h"

namespace kxshape {

// Every attribute push of the shape drawers saves this same set (depth
// range, stipple, lighting, pixel and accumulation state).
constexpr unsigned kAttribMask = 0x0B70;
// Lines and outlines are pushed slightly towards the viewer so they win
// against the faces they lie on.
constexpr double kOverlayNear = 0.09995;
constexpr double kOverlayFar = 1.0;
constexpr float kFaceLineWidth = 1.2f;

static_assert(sizeof(AcGePoint3d) == 3 * sizeof(double), "points are passed to GL as packed doubles");

inline CSceneMgr* sceneOf(const CRenderObject* obj) {
  CObjectSetMgr* set = obj ? obj->getObjSet() : nullptr;
  return set ? set->getScene() : nullptr;
}

// The frame-wide alpha; opaque when the object is not in a scene.
inline unsigned char sceneAlpha(const CRenderObject* obj) {
  const CSceneMgr* scene = sceneOf(obj);
  return scene ? scene->getTransparent() : 255;
}

// One contour as a line strip through the vertex array.
void drawContour(const std::vector<AcGePoint3d>& pts);

}  // namespace kxshape
