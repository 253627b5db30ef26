#pragma once
// RGBA colour of four bytes; default opaque white.
#include "kxrender/CArchive.h"
#include "kxrender/CObject.h"
#include "kxrender/CString.h"

/// RGBA colour of four bytes, default opaque white; serialisable (four bytes
/// r, g, b, a, schema 1).
class KXRENDER_API CColor : public CObject {
  DECLARE_SERIAL(CColor)

 public:
  CColor() : r(255), g(255), b(255), a(255) {}
  /// The given channels.
  CColor(unsigned char red, unsigned char green, unsigned char blue, unsigned char alpha)
      : r(red), g(green), b(blue), a(alpha) {}
  CColor(const CColor& o) : CObject(), r(o.r), g(o.g), b(o.b), a(o.a) {}  ///< A copy.
  /// Copies the four channels.
  CColor& operator=(const CColor& o) {
    if (this != &o) set(o.r, o.g, o.b, o.a);
    return *this;
  }

  ///@{
  /// All four channels compared.
  bool operator==(const CColor& o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
  bool operator!=(const CColor& o) const { return !(*this == o); }
  ///@}

  /// Sets the four channels.
  void set(unsigned char red, unsigned char green, unsigned char blue, unsigned char alpha) {
    r = red;
    g = green;
    b = blue;
    a = alpha;
  }
  /// A Windows colour value: red in the low byte; alpha becomes opaque.
  void set(const unsigned long& value) {
    r = static_cast<unsigned char>(value & 0xFF);
    g = static_cast<unsigned char>((value >> 8) & 0xFF);
    b = static_cast<unsigned char>((value >> 16) & 0xFF);
    a = 255;
  }
  unsigned long getColor() const { return r + g * 256UL + b * 65536UL; }  ///< The Windows colour value: red in the low byte, then green, blue; alpha dropped.
  /// Makes this the current GL colour.
  void glColor() const;
  /// Black or white per channel, for drawing over this colour.
  CColor GetOtherColor() const {
    return CColor(r < 128 ? 255 : 0, g < 128 ? 255 : 0, b < 128 ? 255 : 0, a);
  }
  void Serialize(CArchive& ar) override;  ///< Stores or loads r, g, b, a as four bytes.

  ///@{
  /// Opaque white, black and red.
  static const CColor whiteClr;
  static const CColor blackClr;
  static const CColor redClr;
  ///@}

  ///@{
  /// Red, green, blue and alpha (255 opaque).
  unsigned char r;
  unsigned char g;
  unsigned char b;
  unsigned char a;
  ///@}
};

/// Reads "red;green;blue" into color (alpha 255) and returns 1; returns 0 and
/// leaves color alone when the text has fewer than two semicolons.
KXRENDER_API int Str2Color(CString text, CColor& color);
