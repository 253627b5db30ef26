#pragma once
#include <cstddef>
#include <map>

#include "kxrender/CString.h"
#include "kxrender/Export.h"

/// The scene's textures, loaded from image files named by the host and kept
/// by file name so that every shape showing a file shares one GL texture.
/// Its textures live in the scene's GL context, which must be current while
/// the manager is used. Names are compared exactly as given: on this system
/// "Wall.png" and "wall.png" are two files.
class KXRENDER_API CTextureMgr {
 public:
  /// One registered texture.
  struct TextureInfo {
    unsigned int id = 0;  ///< GL texture name, owned by the manager.
    int width = 0;        ///< The image's own width in pixels, whatever GL scaled it to.
    int height = 0;       ///< The image's own height in pixels.
  };

  /// Loads a BMP, JPEG, PNG, GIF or TIFF file into a texture; true at once
  /// when the file is registered already. False only when the file cannot
  /// be read or decoded. When GL gives no texture name the call is still
  /// true but registers nothing (exist() tells).
  bool addTexture(CString const& file);
  /// The same for an image held in memory (the bytes of a file in one of
  /// those formats, only read during the call), registered under name:
  /// models carry pictures inside them.
  bool addTexture(CString const& name, const void* data, size_t size);
  /// The GL texture name of a registered file into id (owned by the
  /// manager: do not delete it); false, id untouched, for an unknown file.
  bool getTexture(CString const& file, unsigned int& id);
  /// The image size in pixels of a registered file; false, w and h
  /// untouched, for an unknown file.
  bool getTextureSize(CString const& file, int& w, int& h);
  /// True when the file is registered; needs no GL context.
  bool exist(CString const& file);
  /// Unregisters and deletes the texture; unknown names are ignored.
  void delTexture(CString const& file);
  /// Deletes every texture. Destroying the manager deletes none: the
  /// context may be gone by then.
  void delAllTexture();

 private:
  std::map<CString, TextureInfo> m_textures;
};
