#pragma once
#include "kxrender/Export.h"

/// Library version as "major.minor.patch".
KXRENDER_API const char* kxrenderVersion();
