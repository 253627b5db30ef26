#pragma once
#include <cstdint>

#include "kxrender/Export.h"

// A drawable object of the scene, made of render shapes.
class KXRENDER_API CRenderObject {
 public:
  // Passed unchanged to every shape's drawing: 0 draws wire frames, 2 and 4
  // shaded faces; the default everywhere is 2.
  enum RenderMode : int32_t {};
  // Kind of snap point found; a mask of these is a scene's snap mode.
  enum SnapMode : uint32_t {};
};
