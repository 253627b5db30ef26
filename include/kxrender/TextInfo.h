#pragma once
// The text record a text shape owns: what to write, in which font, where,
// and the display list that draws it.
#include "kxrender/AcGeMatrix3d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/CString.h"
#include "kxrender/Export.h"

struct KXRENDER_API TextInfo {
  CString text;
  AcGeVector3d dir1{0.0, 0.0, 0.0};
  AcGeVector3d dir2{0.0, 0.0, 0.0};
  AcGePoint3d position{0.0, 0.0, 0.0};
  CString font;
  // The owner sets these before use; they start as zero here so that a
  // forgotten field is at least deterministic.
  double height = 0.0;
  AcGeMatrix3d placement;
  float glMatrix[16] = {};
  unsigned int listId = 0;
  bool compiled = false;
  bool filled = false;
};
