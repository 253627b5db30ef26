#pragma once
// Where a text shape's glyphs go: the placement from glyph units to world,
// and the rectangle the text is estimated to cover.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/TextInfo.h"

// Rebuilds placement and glMatrix from the position, the two directions and
// the height.
void placeText(TextInfo& info);

// World corners of the rectangle one glyph unit high and one unit wide per
// byte of the text, through the placement. Glyphs are about one unit square
// (a double-byte character is one square for its two bytes), so this holds
// the text without its glyph outlines being known.
void textBoxCorners(const TextInfo& info, AcGePoint3d corners[4]);
