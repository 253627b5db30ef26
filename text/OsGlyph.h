#pragma once
// Glyph outlines of the system's fonts: the family is matched through
// fontconfig (falling back to any installed font that has the character)
// and the outline read with FreeType.
#include <cstdint>

#include "kxrender/CString.h"
#include "text/CxfReader.h"

namespace kxtext {

// Units per em of the returned outlines: the engine's 0.01 scale then makes
// a glyph about one unit high.
constexpr double kOsGlyphEm = 100.0;

// Closed polylines (last point repeats the first), z = 0, with outer
// contours clockwise and holes counter-clockwise. False when no installed
// font has the character, or its glyph has no outline (a space).
bool osGlyphOutline(const CString& family, uint32_t codePoint, Contours& contours);

}  // namespace kxtext
