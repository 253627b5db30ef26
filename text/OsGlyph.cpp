#include "text/OsGlyph.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace kxtext {
namespace {

// Curves are flattened into this many segments each: enough for text a
// few hundred pixels high, few enough to fill thousands of labels.
constexpr int kCurveSegments = 8;

// Fonts are matched and opened once per process: matching a family costs
// milliseconds, and a label font is asked for every character.
class FontCatalogue {
 public:
  ~FontCatalogue() {
    for (auto& f : m_faces)
      if (f.second) FT_Done_Face(f.second);
    for (auto& s : m_sorted)
      if (s.second) FcFontSetDestroy(s.second);
    if (m_ft) FT_Done_FreeType(m_ft);
    // A configuration of our own, not the process default: other code in
    // the host may use fontconfig, and finalising the default under it
    // would break it, while ours can be released whole.
    if (m_config) FcConfigDestroy(m_config);
  }

  // The face of the best match for `family` that has the character.
  FT_Face faceFor(const std::string& family, uint32_t cp) {
    if (!m_ft && FT_Init_FreeType(&m_ft) != 0) {
      m_ft = nullptr;
      return nullptr;
    }
    FcFontSet* fonts = sortedFonts(family);
    if (!fonts) return nullptr;
    for (int i = 0; i < fonts->nfont; ++i) {
      FcPattern* p = fonts->fonts[i];
      FcCharSet* chars = nullptr;
      FcBool outline = FcTrue;
      FcPatternGetBool(p, FC_OUTLINE, 0, &outline);
      if (!outline || FcPatternGetCharSet(p, FC_CHARSET, 0, &chars) != FcResultMatch || !FcCharSetHasChar(chars, cp))
        continue;
      FcChar8* file = nullptr;
      int index = 0;
      if (FcPatternGetString(p, FC_FILE, 0, &file) != FcResultMatch) continue;
      FcPatternGetInteger(p, FC_INDEX, 0, &index);
      if (FT_Face face = openFace(reinterpret_cast<const char*>(file), index)) return face;
    }
    return nullptr;
  }

 private:
  FcFontSet* sortedFonts(const std::string& family) {
    auto it = m_sorted.find(family);
    if (it != m_sorted.end()) return it->second;
    FcFontSet* set = nullptr;
    if (!m_config) m_config = FcInitLoadConfigAndFonts();
    if (m_config) {
      FcPattern* pattern = FcPatternCreate();
      if (!family.empty()) FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
      FcConfigSubstitute(m_config, pattern, FcMatchPattern);
      FcDefaultSubstitute(pattern);
      FcResult result;
      set = FcFontSort(m_config, pattern, FcFalse, nullptr, &result);
      FcPatternDestroy(pattern);
    }
    m_sorted[family] = set;
    return set;
  }

  FT_Face openFace(const std::string& file, int index) {
    const auto key = std::make_pair(file, index);
    auto it = m_faces.find(key);
    if (it != m_faces.end()) return it->second;
    FT_Face face = nullptr;
    if (FT_New_Face(m_ft, file.c_str(), index, &face) != 0) face = nullptr;
    m_faces[key] = face;
    return face;
  }

  FT_Library m_ft = nullptr;
  FcConfig* m_config = nullptr;
  std::map<std::string, FcFontSet*> m_sorted;
  std::map<std::pair<std::string, int>, FT_Face> m_faces;
};

FontCatalogue& catalogue() {
  static FontCatalogue c;
  return c;
}

struct Flattener {
  Contours* out;
  double scale;
  AcGePoint3d last;

  AcGePoint3d point(const FT_Vector* v) const { return AcGePoint3d(v->x * scale, v->y * scale, 0.0); }
  void closeContour() {
    if (out->empty()) return;
    auto& c = out->back();
    if (c.size() > 1 && !(c.front() == c.back())) c.push_back(c.front());
  }
};

int moveTo(const FT_Vector* to, void* user) {
  auto* f = static_cast<Flattener*>(user);
  f->closeContour();
  f->last = f->point(to);
  f->out->push_back({f->last});
  return 0;
}

int lineTo(const FT_Vector* to, void* user) {
  auto* f = static_cast<Flattener*>(user);
  if (f->out->empty()) return 1;
  f->last = f->point(to);
  f->out->back().push_back(f->last);
  return 0;
}

int conicTo(const FT_Vector* control, const FT_Vector* to, void* user) {
  auto* f = static_cast<Flattener*>(user);
  if (f->out->empty()) return 1;
  const AcGePoint3d p0 = f->last, p1 = f->point(control), p2 = f->point(to);
  for (int i = 1; i <= kCurveSegments; ++i) {
    const double t = double(i) / kCurveSegments, u = 1.0 - t;
    f->out->back().emplace_back(u * u * p0.x + 2 * u * t * p1.x + t * t * p2.x,
                                u * u * p0.y + 2 * u * t * p1.y + t * t * p2.y, 0.0);
  }
  f->last = p2;
  return 0;
}

int cubicTo(const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* user) {
  auto* f = static_cast<Flattener*>(user);
  if (f->out->empty()) return 1;
  const AcGePoint3d p0 = f->last, p1 = f->point(c1), p2 = f->point(c2), p3 = f->point(to);
  for (int i = 1; i <= kCurveSegments; ++i) {
    const double t = double(i) / kCurveSegments, u = 1.0 - t;
    const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
    f->out->back().emplace_back(a * p0.x + b * p1.x + c * p2.x + d * p3.x, a * p0.y + b * p1.y + c * p2.y + d * p3.y,
                                0.0);
  }
  f->last = p3;
  return 0;
}

}  // namespace

bool osGlyphOutline(const CString& family, uint32_t codePoint, Contours& contours) {
  FT_Face face = catalogue().faceFor(family.str(), codePoint);
  if (!face || face->units_per_EM == 0) return false;
  const FT_UInt glyph = FT_Get_Char_Index(face, codePoint);
  if (glyph == 0 || FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING) != 0)
    return false;
  if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) return false;
  FT_Outline& outline = face->glyph->outline;
  Contours found;
  Flattener flat{&found, kOsGlyphEm / face->units_per_EM, AcGePoint3d::kOrigin};
  const FT_Outline_Funcs funcs = {moveTo, lineTo, conicTo, cubicTo, 0, 0};
  if (FT_Outline_Decompose(&outline, &funcs, &flat) != 0) return false;
  flat.closeContour();
  // PostScript outlines run the other way round from TrueType ones; turn
  // them so that outer contours are clockwise in both.
  if (outline.flags & FT_OUTLINE_REVERSE_FILL)
    for (auto& c : found) std::reverse(c.begin(), c.end());
  for (auto& c : found)
    if (c.size() >= 3) contours.push_back(std::move(c));
  return !contours.empty();
}

}  // namespace kxtext
