#pragma once
#include "kxrender/Export.h"

/// Formats a line (at most 1024 bytes) and sends it to the trace viewer, if
/// one is running; returns at once otherwise.
KXRENDER_API void KxPrintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
