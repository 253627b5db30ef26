#include <ctime>

#include "platform/Win32System.h"

static int64_t monotonicNanoseconds() {
  timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return int64_t(ts.tv_sec) * 1000000000 + ts.tv_nsec;
}

DWORD timeGetTime() { return static_cast<DWORD>(monotonicNanoseconds() / 1000000); }

__time64_t _time64(__time64_t* t) {
  const __time64_t now = static_cast<__time64_t>(time(nullptr));
  if (t) *t = now;
  return now;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
  if (!count) return FALSE;
  count->QuadPart = monotonicNanoseconds() / 100;
  return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
  if (!frequency) return FALSE;
  frequency->QuadPart = 10000000;
  return TRUE;
}
