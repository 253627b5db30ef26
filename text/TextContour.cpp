// Font dispatch of one character and the CXF line font.
#include <sys/stat.h>

#include <fstream>

#include "kxrender/CRenderSysUtils.h"
#include "kxrender/CTextContour.h"
#include "text/CxfReader.h"
#include "text/OsGlyph.h"
#include "text/ShapeInfo.h"
#include "text/TextChar.h"

#ifndef KXRENDER_DATA_DIR
#define KXRENDER_DATA_DIR "/usr/local/share/kxrender"
#endif

CTextContour* CTextContour::m_singleton = nullptr;

namespace {

bool isFile(const CString& path) {
  struct stat st;
  return stat(path.GetString(), &st) == 0 && S_ISREG(st.st_mode);
}

bool isDir(const CString& path) {
  struct stat st;
  return stat(path.GetString(), &st) == 0 && S_ISDIR(st.st_mode);
}

}  // namespace

CTextContour::CTextContour() {
  CString dir = CRenderSysUtils::getDllPath();
  dir.TrimRight("/\\");
  const CString data(KXRENDER_DATA_DIR);
  // A host run from its build folder finds its own copies; an installed
  // host, which has none beside it, the library's.
  m_cxfPath = dir + "/unicode.cxf";
  if (!isFile(m_cxfPath) && isFile(data + "/unicode.cxf")) m_cxfPath = data + "/unicode.cxf";
  m_fontDir = dir + "/Fonts/";
  if (!isDir(m_fontDir) && isDir(data + "/Fonts")) m_fontDir = data + "/Fonts/";
}

void CTextContour::createSingleton() {
  if (!m_singleton) m_singleton = new CTextContour();
}

CTextContour* CTextContour::getSingleton() { return m_singleton; }

void CTextContour::destroySingleton() {
  delete m_singleton;
  m_singleton = nullptr;
}

void CTextContour::setFontPaths(const CString& cxfPath, const CString& fontDir) {
  if (cxfPath != m_cxfPath) {
    m_cxfIndex.clear();
    m_cxfIndexSize = 0;
  }
  m_cxfPath = cxfPath;
  m_fontDir = fontDir;
}

bool CTextContour::getOneCharContour(const CString& font, const CString& ch, Contours& contours, bool& isOutline) {
  contours.clear();
  isOutline = false;
  // The name arrives in the active code page, as the host wrote it.
  const CString kLineFont = kxtext::fromUtf8("单线体");
  bool lineFont = font.CompareNoCase(kLineFont) == 0;
  if (!lineFont && font.GetLength() >= 4 && font.Right(4).CompareNoCase(".shx") == 0) {
    getContourFromShx(font, ch, contours);
    if (contours.empty() && font.CompareNoCase("hztxt.shx") != 0) getContourFromShx("hztxt.shx", ch, contours);
    if (contours.empty() && font.CompareNoCase("txt.shx") != 0) getContourFromShx("txt.shx", ch, contours);
    // Shape fonts keep their own units.
    lineFont = contours.empty();
  } else if (!lineFont) {
    getContourFromOs(font, ch, contours);
    if (!contours.empty()) {
      isOutline = true;
      scaleNormal(contours, 0.01);
    }
    lineFont = contours.empty();
  }
  if (lineFont) {
    getContourFromCxf(ch, contours);
    scaleNormal(contours, 0.1);
  }
  if (contours.empty()) getDefaultContour(contours);
  return !contours.empty();
}

void CTextContour::scaleNormal(Contours& contours, double factor) {
  for (auto& c : contours)
    for (AcGePoint3d& p : c) p.scaleBy(factor);
}

void CTextContour::getDefaultContour(Contours& contours) {
  // A closed box a little narrower than it is high, as missing glyphs look.
  contours.push_back({AcGePoint3d(0.1, 0.0, 0.0), AcGePoint3d(0.7, 0.0, 0.0), AcGePoint3d(0.7, 0.9, 0.0),
                      AcGePoint3d(0.1, 0.9, 0.0), AcGePoint3d(0.1, 0.0, 0.0)});
}

bool CTextContour::buildCxfCache() {
  m_cxfIndex.clear();
  m_cxfIndexSize = 0;
  std::ifstream in(m_cxfPath.GetString(), std::ios::binary);
  if (!in) return false;
  m_cxfIndexSize = kxtext::readCxfIndex(in, m_cxfIndex);
  return m_cxfIndexSize != 0;
}

int CTextContour::getPosInCxf(unsigned short code) {
  auto it = m_cxfIndex.find(code);
  return it == m_cxfIndex.end() ? -1 : it->second;
}

bool CTextContour::getContourFromCxf(const CString& ch, Contours& contours) {
  uint16_t code;
  if (!kxtext::utf16Code(ch, code)) return false;
  if (code == 0xFF08) code = '(';
  if (code == 0xFF09) code = ')';
  if (code == 0x20 || code == 0x3000) return true;
  if (m_cxfIndexSize == 0 && !buildCxfCache()) return false;
  const int pos = getPosInCxf(code);
  if (pos < 0) return false;
  std::ifstream in(m_cxfPath.GetString(), std::ios::binary);
  if (!in) return false;
  kxtext::readCxfGlyph(in, pos, contours);
  return !contours.empty();
}

bool CTextContour::getContourFromOs(const CString& font, const CString& ch, Contours& contours) {
  uint32_t cp;
  return kxtext::codePoint(ch, cp) && kxtext::osGlyphOutline(font, cp, contours);
}

bool CTextContour::getContourFromShx(const CString& font, const CString& ch, Contours& contours) {
  unsigned code;
  int kind;
  if (!kxtext::shxCode(ch, code, kind)) return false;
  CShapeInfo info;
  if (!info.Init(m_fontDir + font)) return false;
  CShape shape;
  if (!info.GetShape(code, kind, shape)) return false;
  shape.appendContours(contours);
  return !contours.empty();
}
