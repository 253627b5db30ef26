#pragma once
// The parts of the scene file reader shared between its source files.
#include "io/SceneDecoder.h"
#include "io/SceneDoc.h"

namespace kxscene {
// One shape object, checked as a whole.
bool parseShape(SceneDecoder& d, ShapeDoc& s);
}  // namespace kxscene
