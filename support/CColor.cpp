#include "kxrender/CColor.h"

#include <cstdlib>

#include "support/GLTable.h"

IMPLEMENT_SERIAL(CColor, CObject, 1)

// Constant-initialised, so usable before any dynamic initialiser runs.
const CColor CColor::whiteClr(255, 255, 255, 255);
const CColor CColor::blackClr(0, 0, 0, 255);
const CColor CColor::redClr(255, 0, 0, 255);

void CColor::glColor() const { kgl->Color4ub(r, g, b, a); }

void CColor::Serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    ar << r << g << b << a;
  } else {
    ar >> r >> g >> b >> a;
  }
}

int Str2Color(CString text, CColor& color) {
  const int first = text.Find(';');
  const int last = text.ReverseFind(';');
  if (first < 0 || first == last) return 0;
  // atoi semantics: leading blanks skipped, digits up to the first other
  // character, 0 without digits; then only the low 8 bits are kept. With
  // more than two semicolons, green stops at its first number.
  const int red = std::atoi(text.Left(first));
  const int green = std::atoi(text.Mid(first + 1, last - first - 1));
  const int blue = std::atoi(text.Mid(last + 1));
  color.set(static_cast<unsigned char>(red), static_cast<unsigned char>(green), static_cast<unsigned char>(blue), 255);
  return 1;
}
