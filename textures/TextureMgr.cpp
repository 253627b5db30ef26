#include <algorithm>

#include "kxrender/CTextureMgr.h"
#include "platform/ImageFile.h"
#include "support/GLTable.h"

namespace {

// Decoded rows run from the top; GL's first texel row is the bottom one.
void flipRows(kxplatform::DecodedImage& image) {
  const size_t row = size_t(image.width) * 4;
  uint8_t* top = image.rgba.data();
  uint8_t* bottom = top + row * size_t(image.height - 1);
  for (; top < bottom; top += row, bottom -= row) std::swap_ranges(top, top + row, bottom);
}

// A GL texture of the decoded image; id 0 when GL gives no name.
CTextureMgr::TextureInfo upload(kxplatform::DecodedImage& image) {
  flipRows(image);
  const int w = image.width, h = image.height;
  const uint8_t* texels = image.rgba.data();

  unsigned int id = 0;
  kgl->GenTextures(1, &id);
  if (id == 0) return {};
  kgl->BindTexture(GL_TEXTURE_2D, id);
  kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
  kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
  // The mipmap builder scales sides that are not powers of two. The
  // minification filter stays linear, so its smaller levels go unused.
  if (kgl->gluBuild2DMipmaps(GL_TEXTURE_2D, GL_RGBA, w, h, GL_RGBA, GL_UNSIGNED_BYTE, texels) != 0) {
    // Its fall-back: the image at its own size, mipmapped by the driver.
    kgl->BindTexture(GL_TEXTURE_2D, id);
    kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    kgl->TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    kgl->TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, w, h, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    kgl->GenerateMipmap(GL_TEXTURE_2D);
  }
  return CTextureMgr::TextureInfo{id, w, h};
}

}  // namespace

bool CTextureMgr::addTexture(CString const& file) {
  if (exist(file)) return true;
  // Every format comes out as straight RGBA: colour from every pixel depth,
  // alpha from the file's own transparency, opaque otherwise.
  kxplatform::DecodedImage image;
  if (!kxplatform::decodeImageFile(file.str(), image)) return false;
  const TextureInfo info = upload(image);
  if (info.id) m_textures[file] = info;  // no name from GL: nothing to register
  return true;
}

bool CTextureMgr::addTexture(CString const& name, const void* data, size_t size) {
  if (exist(name)) return true;
  kxplatform::DecodedImage image;
  if (!data || !kxplatform::decodeImage(static_cast<const uint8_t*>(data), size, image)) return false;
  const TextureInfo info = upload(image);
  if (info.id) m_textures[name] = info;
  return true;
}

bool CTextureMgr::getTexture(CString const& file, unsigned int& id) {
  const auto it = m_textures.find(file);
  if (it == m_textures.end()) return false;
  id = it->second.id;
  return true;
}

bool CTextureMgr::getTextureSize(CString const& file, int& w, int& h) {
  const auto it = m_textures.find(file);
  if (it == m_textures.end()) return false;
  w = it->second.width;
  h = it->second.height;
  return true;
}

bool CTextureMgr::exist(CString const& file) { return m_textures.count(file) != 0; }

void CTextureMgr::delTexture(CString const& file) {
  const auto it = m_textures.find(file);
  if (it == m_textures.end()) return;
  const unsigned int id = it->second.id;
  m_textures.erase(it);  // out of the map first, whatever GL says
  if (kgl->IsTexture(id)) kgl->DeleteTextures(1, &id);
}

void CTextureMgr::delAllTexture() {
  for (const auto& entry : m_textures)
    if (kgl->IsTexture(entry.second.id)) kgl->DeleteTextures(1, &entry.second.id);
  m_textures.clear();
}
