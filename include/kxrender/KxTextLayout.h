#pragma once
// Lays out a whole line of text as text shapes of one render object, one
// shape per character, advancing by each glyph's box.
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/CColor.h"
#include "kxrender/CString.h"
#include "kxrender/Export.h"

class CRenderObject;

/// Where the position given to KxAddTextLine() lies on the baseline: its
/// left end, middle or right end.
enum KxTextAlign { kKxAlignLeft = 0, kKxAlignCenter = 1, kKxAlignRight = 2 };

/// Adds the characters of `text` (active code page) to `obj` along dir1 with
/// dir2 (made square to dir1) as their up direction, `height` world units
/// high; `position` is the baseline's left end, middle or right end by
/// `align` (a KxTextAlign). Spaces advance without a shape. Returns the
/// line's width in world units, up to the right edge of its last glyph (0,
/// adding nothing, for an empty text or parallel or zero directions). The
/// host calls endAddShape as usual.
KXRENDER_API double KxAddTextLine(CRenderObject& obj, const CString& text, const CString& font, double height,
                                  const AcGePoint3d& position, const AcGeVector3d& dir1, const AcGeVector3d& dir2,
                                  const CColor& clr, int align = kKxAlignLeft);
