#pragma once
#include <map>
#include <vector>

#include "kxrender/AcGePoint3d.h"
#include "kxrender/CString.h"
#include "kxrender/Export.h"

/// A (font, text) pair: the key of the glyph contour cache and of a render
/// list's display lists. Only the first character of text is drawn.
struct KXRENDER_API TextContourCacheKey {
  CString font;  ///< Font name as CTextContour::getOneCharContour() takes it.
  CString text;  ///< The character, in the active code page.
  TextContourCacheKey() = default;
  /// The pair (f, t).
  TextContourCacheKey(const CString& f, const CString& t) : font(f), text(t) {}
  /// Font first, then text; letter case counts in both.
  bool operator<(const TextContourCacheKey& o) const {
    return font < o.font || (!(o.font < font) && text < o.text);
  }
};

/// The glyph of a pair: its contours and their box.
struct KXRENDER_API TextContourCacheValue {
  std::vector<std::vector<AcGePoint3d>> contours;  ///< Glyph units, z = 0.
  bool isOutline = false;                          ///< Closed outlines to fill, else strokes.
  AcGePoint3d minPt{0.0, 0.0, 0.0};                ///< Lower corner of the contours' box.
  AcGePoint3d maxPt{0.0, 0.0, 0.0};                ///< Upper corner of the contours' box.
};

/// Display lists of texts: one per (font, text) pair and render list, over
/// a process-wide cache of the glyph contours of every pair ever asked for,
/// so that fonts are read once per pair for the whole process. Not
/// thread-safe.
class KXRENDER_API CTextRenderList {
 public:
  /// The display list that draws `text` in `font`, compiled in the current
  /// context on first request; the render list owns it. Returns true only
  /// when the list was already there; a list compiled by this call is
  /// returned in `list` with false (0 when no list could be made). False
  /// with `list` untouched for an empty text or a font no source can serve.
  bool getTextRenderList(const CString& text, const CString& font, unsigned int& list);

  /// The contours and box of a pair, copied into value, from the cache or
  /// from the glyph sources (CTextContour, created when needed). False when
  /// the sources fail; nothing is cached then.
  static bool getTextContour(const TextContourCacheKey& key, TextContourCacheValue& value);

  /// The cache entry of a pair itself, filled from the glyph sources when
  /// new; null when they fail. Owned by the cache, which never drops an
  /// entry. For readers that must not copy contours (hit tests, boxes of
  /// thousands of labels).
  static const TextContourCacheValue* cachedTextContour(const TextContourCacheKey& key);

  /// Deletes this render list's display lists (call with their context
  /// current) and forgets them; the contour cache stays.
  void clearRenderList();

 private:
  void compileRenderList(const TextContourCacheValue& value);

  std::map<TextContourCacheKey, unsigned int> m_lists;

  static std::map<TextContourCacheKey, TextContourCacheValue> m_staticContourCache;
};
