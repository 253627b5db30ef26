#pragma once
#include "kxrender/Export.h"

/// The scene's textures, loaded from image files named by the host.
class KXRENDER_API CTextureMgr {
 public:
  CTextureMgr() = default;  ///< No textures.
};
