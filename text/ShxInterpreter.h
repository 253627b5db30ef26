#pragma once
// Runs the drawing bytes of a shape (and the subshapes it calls),
// turning pen-down travel into stroke entities of a CShape.
class CShape;
class CShxFont;

// False when the font has no shape `number`. Damaged bytes (running past
// the end, runaway counts, deep or recursive subshapes, stack misuse) end
// the drawing early and keep what was drawn. `vertical` also runs the
// commands flagged for vertical text only.
bool ShxInterpret(const CShxFont& font, unsigned number, bool vertical, CShape& shape);
