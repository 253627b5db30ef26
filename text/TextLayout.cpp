#include "kxrender/KxTextLayout.h"

#include <algorithm>
#include <vector>

#include "kxrender/CRenderObject.h"
#include "kxrender/CTextRenderList.h"
#include "platform/Win32System.h"
#include "text/TextChar.h"

namespace {

// Gaps between glyphs, in glyph units (one unit is the text height): line
// fonts draw from x = 0 and need their letter spacing; outlines carry most
// of theirs as side bearings.
constexpr double kStrokeGap = 0.3;
constexpr double kOutlineGap = 0.08;
constexpr double kSpaceAdvance = 0.5;

bool isSpace(const CString& ch) {
  uint16_t code;
  return kxtext::utf16Code(ch, code) && (code == 0x20 || code == 0x3000);
}

}  // namespace

double KxAddTextLine(CRenderObject& obj, const CString& text, const CString& font, double height,
                     const AcGePoint3d& position, const AcGeVector3d& dir1, const AcGeVector3d& dir2,
                     const CColor& clr, int align) {
  const AcGeVector3d normal = dir1.crossProduct(dir2);
  if (text.IsEmpty() || !(normal.length() > 0.0)) return 0.0;
  struct Placed {
    CString ch;
    double x;
  };
  std::vector<Placed> placed;
  double x = 0.0, width = 0.0;
  for (const CString& ch : kxtext::splitChars(text)) {
    if (isSpace(ch)) {
      x += kSpaceAdvance;
      continue;
    }
    const TextContourCacheValue* g = CTextRenderList::cachedTextContour(TextContourCacheKey(font, ch));
    const double right = g && !g->contours.empty() ? std::max(g->maxPt.x, 0.0) : kSpaceAdvance;
    placed.push_back({ch, x});
    width = x + right;
    x = width + (g && g->isOutline ? kOutlineGap : kStrokeGap);
  }
  const double shift = align == kKxAlignRight ? -width : align == kKxAlignCenter ? -width / 2.0 : 0.0;
  const AcGeVector3d along = dir1.normal() * height;
  const AcGeVector3d up = normal.crossProduct(dir1).normal();  // dir2 made square to dir1
  for (const Placed& p : placed) {
    auto* info = new TextInfo;
    info->text = p.ch;
    info->font = font;
    info->height = height;
    info->position = position + along * (p.x + shift);
    info->dir1 = dir1.normal();
    info->dir2 = up;
    CRenderShape s;
    s.set(info, clr, normal);  // normalised by the shape
    obj.addShape(s);
  }
  return width * height;
}
