#pragma once
#include <map>

#include "kxrender/CString.h"
#include "kxrender/Export.h"

// The scene's textures, loaded from image files named by the host and kept
// by file name so that every shape showing a file shares one GL texture.
// Its textures live in the scene's GL context, which must be current while
// the manager is used. Names are compared exactly as given: on this system
// "Wall.png" and "wall.png" are two files.
class KXRENDER_API CTextureMgr {
 public:
  struct TextureInfo {
    unsigned int id = 0;  // GL texture name
    int width = 0;        // the image's own size, whatever GL scaled it to
    int height = 0;
  };

  // Loads a BMP, JPEG, PNG, GIF or TIFF file into a texture; true at once
  // when the file is registered already. False only when the file cannot
  // be read or decoded.
  bool addTexture(CString const& file);
  bool getTexture(CString const& file, unsigned int& id);
  bool getTextureSize(CString const& file, int& w, int& h);
  bool exist(CString const& file);
  // Unregisters and deletes the texture; unknown names are ignored.
  void delTexture(CString const& file);
  // Deletes every texture. Destroying the manager deletes none: the
  // context may be gone by then.
  void delAllTexture();

 private:
  std::map<CString, TextureInfo> m_textures;
};
