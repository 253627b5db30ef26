#pragma once
// The text record a text shape owns: what to write, in which font, where,
// and the display list that draws it.
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/CString.h"
#include "kxrender/Export.h"

/// The text record a text shape owns: what to write, in which font, where,
/// and the display list that draws it.
struct KXRENDER_API TextInfo {
  CString text;  ///< The text, in the host's ANSI code page.
  ///@{
  /// Direction of the baseline and of the glyphs' up side (world axes).
  AcGeVector3d dir1{0.0, 0.0, 0.0};
  AcGeVector3d dir2{0.0, 0.0, 0.0};
  ///@}
  AcGePoint3d position{0.0, 0.0, 0.0};  ///< Insertion point, world units.
  CString font;  ///< Font name: the CXF line font, an SHX font or a system font.
  /// The owner sets these before use; they start as zero here so that a
  /// forgotten field is at least deterministic.
  double height = 0.0;  ///< Character height, world units.
  AcGeMatrix3d placement;  ///< Glyph space to world, built from position, directions and height.
  float glMatrix[16] = {};  ///< placement as a column-major GL matrix.
  unsigned int listId = 0;  ///< The compiled display list (owned by the shape), 0 before compiling.
  bool compiled = false;  ///< Whether listId holds the current text.
  bool filled = false;  ///< Glyphs drawn filled rather than as outlines.
};
