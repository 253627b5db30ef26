#include "text/ShapeInfo.h"

#include <map>
#include <mutex>
#include <string>

#include "platform/Win32System.h"
#include "text/ShxFont.h"
#include "text/ShxInterpreter.h"

namespace {
// Fonts read so far, by path. Only readable fonts are kept, so a file that
// appears later is still found. Static storage: released at exit.
struct FontCache {
  std::mutex lock;
  std::map<std::string, std::shared_ptr<const CShxFont>> fonts;
};
FontCache& fontCache() {
  static FontCache cache;
  return cache;
}

// One character of a multi-byte code page as UTF-16; 0 when it is not one.
unsigned toUnicode(UINT codePage, unsigned code, int kind) {
  char bytes[2];
  int n = 0;
  if (kind == CShapeInfo::kDoubleByte) bytes[n++] = char(code >> 8 & 0xFF);
  bytes[n++] = char(code & 0xFF);
  WCHAR wide[2];
  if (MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes, n, wide, 2) != 1) return 0;
  return wide[0];
}

// A Unicode character as a code of a double-byte code page; 0 when the
// page has no such character.
unsigned fromUnicode(UINT codePage, unsigned code) {
  if (code > 0xFFFF) return 0;
  const WCHAR wide = WCHAR(code);
  char bytes[4];
  BOOL lossy = FALSE;
  const int n = WideCharToMultiByte(codePage, 0, &wide, 1, bytes, sizeof bytes, nullptr, &lossy);
  if (lossy || n < 1 || n > 2) return 0;
  return n == 1 ? uint8_t(bytes[0]) : unsigned(uint8_t(bytes[0])) << 8 | uint8_t(bytes[1]);
}

// The shape number a font uses for a character code of the given kind.
unsigned shapeNumber(const CShxFont& font, unsigned code, int kind) {
  const bool unicode = kind == CShapeInfo::kUnicode;
  if (code < 0x80) return code;  // ASCII is the same everywhere
  switch (font.kind()) {
    case CShxFont::kUnifont:
      return unicode ? code : toUnicode(GetACP(), code, kind);
    case CShxFont::kBigfont:
      // Big fonts for Chinese drawings hold GB2312 codes.
      return unicode ? fromUnicode(936, code) : code;
    case CShxFont::kShapes:
      break;
  }
  return code;
}
}  // namespace

void CShxPolyline::appendContours(ShxContourList& contours) const {
  if (m_points.size() >= 2) contours.push_back(m_points);
}

CShape::CShape() = default;
CShape::~CShape() = default;
CShape::CShape(CShape&&) noexcept = default;
CShape& CShape::operator=(CShape&&) noexcept = default;

void CShape::Clear() {
  m_entities.clear();
  m_endPoint = AcGePoint3d();
}

const AcDbEntity* CShape::GetEntity(int index) const {
  if (index < 0 || index >= GetEntityCount()) return nullptr;
  return m_entities[size_t(index)].get();
}

void CShape::AddEntity(std::unique_ptr<AcDbEntity> entity) {
  if (entity) m_entities.push_back(std::move(entity));
}

void CShape::appendContours(ShxContourList& contours) const {
  for (const auto& e : m_entities) e->appendContours(contours);
}

CShapeInfo::CShapeInfo() = default;
CShapeInfo::~CShapeInfo() = default;

bool CShapeInfo::Init(const CString& path) {
  m_font.reset();
  if (path.IsEmpty()) return false;
  FontCache& cache = fontCache();
  std::lock_guard<std::mutex> guard(cache.lock);
  auto it = cache.fonts.find(path.str());
  if (it == cache.fonts.end()) {
    std::shared_ptr<const CShxFont> font = CShxFont::load(path.str());
    if (!font) return false;
    it = cache.fonts.emplace(path.str(), std::move(font)).first;
  }
  m_font = it->second;
  return true;
}

CShapeInfo::FontKind CShapeInfo::GetFontKind() const {
  if (!m_font) return kNone;
  switch (m_font->kind()) {
    case CShxFont::kShapes: return kShapes;
    case CShxFont::kUnifont: return kUnifont;
    case CShxFont::kBigfont: return kBigfont;
  }
  return kNone;
}

int CShapeInfo::GetAbove() const { return m_font ? m_font->above() : 0; }
int CShapeInfo::GetBelow() const { return m_font ? m_font->below() : 0; }

bool CShapeInfo::GetShape(unsigned code, int kind, CShape& shape, bool vertical) const {
  shape.Clear();
  if (!m_font || kind < kSingleByte || kind > kUnicode) return false;
  if (kind == kSingleByte && code > 0xFF) return false;
  const unsigned number = shapeNumber(*m_font, code, kind);
  // Shape 0 is the font's header, never a character.
  if (number == 0 || number > 0xFFFF) return false;
  return ShxInterpret(*m_font, number, vertical, shape);
}

void CShapeInfo::ClearCache() {
  FontCache& cache = fontCache();
  std::lock_guard<std::mutex> guard(cache.lock);
  cache.fonts.clear();
}
