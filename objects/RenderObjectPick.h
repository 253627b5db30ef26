#pragma once
// Rectangle tests of a render object against a prepared rectangle volume,
// so that a selection over many objects builds the volume once.
#include <vector>

#include "kxrender/CRect.h"

class CPickVolume;
class CRenderObject;

namespace kxpick {
typedef std::vector<std::vector<double>> ViewData;
// plain: the volume of rect and view without an instance matrix.
bool objectCrossesRect(const CRenderObject& obj, const CRect& rect, const ViewData& view, const CPickVolume& plain,
                       int mode);
bool objectInRect(const CRenderObject& obj, const CRect& rect, const ViewData& view, const CPickVolume& plain);
}  // namespace kxpick
