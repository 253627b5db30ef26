#include "kxrender/KxPrintf.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "kxrender/KxTraceChannel.h"

void KxPrintf(const char* format, ...) {
  // One shared buffer, as the engine is single-threaded; one byte more than
  // the 1024 a line may hold, for the terminator.
  static char buffer[1025];
  std::memset(buffer, 0, sizeof buffer);
  if (!format) return;
  va_list args;
  va_start(args, format);
  std::vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  KxTraceSend(buffer, std::strlen(buffer));
}
