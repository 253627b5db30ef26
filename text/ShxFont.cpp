#include "text/ShxFont.h"

#include <cstring>
#include <fstream>
#include <iterator>

#include "text/ShxFormat.h"

namespace {
unsigned u16(const uint8_t* p) { return unsigned(p[0]) | unsigned(p[1]) << 8; }
uint32_t u32(const uint8_t* p) { return uint32_t(u16(p)) | uint32_t(u16(p + 2)) << 16; }

bool startsWith(const uint8_t* data, size_t size, const char* signature) {
  const size_t n = shx::signatureLength(signature);
  return size >= n && std::memcmp(data, signature, n) == 0;
}
}  // namespace

std::shared_ptr<const CShxFont> CShxFont::parse(const uint8_t* data, size_t size) {
  if (!data || size > kMaxFileSize) return nullptr;
  auto font = std::make_shared<CShxFont>();
  font->m_byteBudget = size;
  bool ok = false;
  if (startsWith(data, size, shx::kShapes10) || startsWith(data, size, shx::kShapes11)) {
    ok = font->readShapes(data, size, shx::signatureLength(shx::kShapes10));
  } else if (startsWith(data, size, shx::kUnifont)) {
    ok = font->readUnifont(data, size, shx::signatureLength(shx::kUnifont));
  } else if (startsWith(data, size, shx::kBigfont)) {
    ok = font->readBigfont(data, size, shx::signatureLength(shx::kBigfont));
  }
  if (!ok) return nullptr;
  return font;
}

std::shared_ptr<const CShxFont> CShxFont::load(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return nullptr;
  in.seekg(0, std::ios::end);
  const std::streamoff size = in.tellg();
  if (size <= 0 || uint64_t(size) > kMaxFileSize) return nullptr;
  in.seekg(0);
  std::vector<uint8_t> bytes(static_cast<size_t>(size));
  if (!in.read(reinterpret_cast<char*>(bytes.data()), size)) return nullptr;
  return parse(bytes.data(), bytes.size());
}

const std::vector<uint8_t>* CShxFont::shapeBytes(unsigned number) const {
  const auto it = m_shapes.find(number);
  return it == m_shapes.end() ? nullptr : &it->second;
}

bool CShxFont::isEscapeByte(unsigned byte) const {
  for (const auto& r : m_escapes) {
    if (byte >= r.first && byte <= r.second) return true;
  }
  return false;
}

void CShxFont::addShape(unsigned number, const uint8_t* def, size_t length) {
  const void* nul = std::memchr(def, 0, length);
  if (!nul) return;  // no name terminator: not a definition
  // Big-font index entries may point at the same bytes many times over;
  // storing more than the file holds would only multiply memory.
  if (length > m_byteBudget) return;
  m_byteBudget -= length;
  const uint8_t* codes = static_cast<const uint8_t*>(nul) + 1;
  std::vector<uint8_t> bytes(codes, def + length);
  if (number == 0 && m_kind != kUnifont) {
    takeHeader(bytes);
    return;
  }
  m_shapes[number] = std::move(bytes);
}

void CShxFont::takeHeader(const std::vector<uint8_t>& bytes) {
  if (bytes.size() > 0) m_above = bytes[0];
  if (bytes.size() > 1) m_below = bytes[1];
  if (bytes.size() > 2) m_modes = bytes[2];
}

bool CShxFont::readShapes(const uint8_t* data, size_t size, size_t pos) {
  m_kind = kShapes;
  if (size - pos < 6) return false;
  const unsigned count = u16(data + pos + 4);
  pos += 6;
  if (size_t(count) * 4 > size - pos) return false;
  const uint8_t* index = data + pos;
  pos += size_t(count) * 4;
  for (unsigned i = 0; i < count; ++i) {
    const unsigned number = u16(index + i * 4);
    const size_t length = u16(index + i * 4 + 2);
    if (length > size - pos) break;  // cut at the first definition past the end
    addShape(number, data + pos, length);
    pos += length;
  }
  return true;
}

bool CShxFont::readUnifont(const uint8_t* data, size_t size, size_t pos) {
  m_kind = kUnifont;
  if (size - pos < 6) return false;
  const uint32_t count = u32(data + pos);
  const size_t infoLength = u16(data + pos + 4);
  pos += 6;
  if (infoLength > size - pos) return false;
  // Information: name, 0, above, below, modes, encoding, type, 0.
  const void* nul = std::memchr(data + pos, 0, infoLength);
  if (nul) {
    const uint8_t* info = static_cast<const uint8_t*>(nul) + 1;
    takeHeader(std::vector<uint8_t>(info, data + pos + infoLength));
  }
  pos += infoLength;
  // Each record takes at least 4 bytes, so the count cannot outrun the data.
  for (uint32_t i = 1; i < count && size - pos >= 4; ++i) {
    const unsigned number = u16(data + pos);
    const size_t length = u16(data + pos + 2);
    pos += 4;
    if (length > size - pos) break;
    addShape(number, data + pos, length);
    pos += length;
  }
  return true;
}

bool CShxFont::readBigfont(const uint8_t* data, size_t size, size_t pos) {
  m_kind = kBigfont;
  if (size - pos < 6) return false;
  const unsigned entries = u16(data + pos);
  const unsigned ranges = u16(data + pos + 4);
  pos += 6;
  if (size_t(ranges) * 4 > size - pos) return false;
  for (unsigned i = 0; i < ranges; ++i) {
    m_escapes.emplace_back(u16(data + pos), u16(data + pos + 2));
    pos += 4;
  }
  if (size_t(entries) * 8 > size - pos) return false;
  for (unsigned i = 0; i < entries; ++i, pos += 8) {
    const unsigned number = u16(data + pos);
    const size_t length = u16(data + pos + 2);
    const size_t offset = u32(data + pos + 4);
    if (length == 0) continue;  // unused slot
    if (offset > size || length > size - offset) continue;
    addShape(number, data + offset, length);
  }
  return true;
}
