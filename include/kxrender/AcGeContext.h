#pragma once
#include "kxrender/AcGeTol.h"
#include "kxrender/Export.h"

/// Process-wide geometry settings: the tolerance used wherever a caller has
/// none of its own.
class KXRENDER_API AcGeContext {
public:
  static AcGeTol gTol;  ///< The default tolerance; changing it changes every call that takes none.
};
