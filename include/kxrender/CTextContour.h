#pragma once
#include <cstdint>
#include <map>
#include <vector>

#include "kxrender/AcGePoint3d.h"
#include "kxrender/CString.h"
#include "kxrender/Export.h"

/// Glyph contours of one character in a named font, from the CXF line font
/// "unicode.cxf", from SHX shape fonts, or from the system's fonts, with a
/// placeholder glyph when none of them has the character. A process-wide
/// singleton, not thread-safe.
class KXRENDER_API CTextContour {
 public:
  /// Polylines of a glyph, each a list of points with z = 0.
  typedef std::vector<std::vector<AcGePoint3d>> Contours;

  /// Makes the singleton unless it exists already.
  static void createSingleton();
  /// The singleton, null before createSingleton() or after
  /// destroySingleton(); owned by the class.
  static CTextContour* getSingleton();
  /// Deletes the singleton (safe when there is none); pointers to it dangle.
  static void destroySingleton();

  /// The contours of the first character of `ch` (active code page) in
  /// `font`: "单线体" (any letter case) is the CXF line font, a name ending
  /// in ".shx" an SHX font under the font folder (falling back to
  /// "hztxt.shx", "txt.shx" and then the line font), any other name a system
  /// font family (falling back to the line font). contours is replaced.
  /// isOutline tells closed outlines to be filled from strokes. True when
  /// contours were produced, which the placeholder guarantees.
  bool getOneCharContour(const CString& font, const CString& ch, Contours& contours, bool& isOutline);

  /// Where the fonts are read from: the line font file, and the folder SHX
  /// font names are appended to (so it ends in a slash). By default the line
  /// font is the executable folder's "unicode.cxf" and SHX fonts lie in its
  /// "Fonts/" (either, when missing, taken from the library's installed data
  /// folder). Changing the line font drops its index. No file is checked
  /// here.
  void setFontPaths(const CString& cxfPath, const CString& fontDir);
  /// The line font file in use.
  const CString& getCxfPath() const { return m_cxfPath; }
  /// The SHX font folder in use.
  const CString& getFontDir() const { return m_fontDir; }

 private:
  CTextContour();
  CTextContour(const CTextContour&) = delete;
  CTextContour& operator=(const CTextContour&) = delete;

  bool getContourFromCxf(const CString& ch, Contours& contours);
  bool getContourFromShx(const CString& font, const CString& ch, Contours& contours);
  bool getContourFromOs(const CString& font, const CString& ch, Contours& contours);
  void getDefaultContour(Contours& contours);
  void scaleNormal(Contours& contours, double factor);
  bool buildCxfCache();
  int getPosInCxf(unsigned short code);

  CString m_cxfPath;
  CString m_fontDir;
  std::map<uint16_t, int32_t> m_cxfIndex;
  size_t m_cxfIndexSize = 0;

  static CTextContour* m_singleton;
};
