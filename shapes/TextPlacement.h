#pragma once
// Where a text shape's glyphs go: the placement from glyph units to world,
// and the rectangle the text is estimated to cover.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/CTextRenderList.h"
#include "kxrender/TextInfo.h"

// Rebuilds placement and glMatrix from the position, the two directions and
// the height.
void placeText(TextInfo& info);

// The glyph contours of the text from the process-wide cache (read from
// the fonts on first use), or null when no source serves the text.
const TextContourCacheValue* textGlyphs(const TextInfo& info);

// Fetches the glyphs and sets `filled` from them.
void takeGlyphs(TextInfo& info);

// World corners of the text's glyph box through the placement; without
// glyph points, of the rectangle one unit high and one unit wide per byte
// of the text (glyphs are about one unit square).
void textBoxCorners(const TextInfo& info, AcGePoint3d corners[4]);
