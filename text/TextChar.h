#pragma once
// One character of a text in the active code page (UTF-8 by default, or a
// double-byte page such as 936), and the codes the glyph sources look it
// up by.
#include <cstdint>
#include <vector>

#include "kxrender/CString.h"

namespace kxtext {

// The text cut into its characters; a truncated sequence at the end is
// kept as a character of its own (the sources then refuse it).
std::vector<CString> splitChars(const CString& text);

// Length in bytes of the first character (0 for an empty text), and whether
// all of its bytes are present.
int firstCharLength(const CString& ch, bool& complete);

// The first character as one UTF-16 unit (the code a CXF font is indexed
// by); false for an empty or incomplete character, or one outside 16 bits.
bool utf16Code(const CString& ch, uint16_t& code);

// The first character as a Unicode code point; false as utf16Code.
bool codePoint(const CString& ch, uint32_t& cp);

// The code an SHX font is asked for the character by: the byte itself for
// a single-byte character (kind 1), lead byte * 256 + trail byte for a
// double-byte one (kind 2), and the code point for a longer UTF-8 sequence
// (kind 3; the reader converts it for big fonts). False for an incomplete
// character.
bool shxCode(const CString& ch, unsigned& code, int& kind);

// A UTF-8 text in the active code page (the engine's own literals).
CString fromUtf8(const char* utf8);

}  // namespace kxtext
