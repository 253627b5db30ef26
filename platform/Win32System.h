#pragma once
// Clocks, module path and code-page conversion under their Windows names,
// for the engine's own code (hosts use their platform's calls).
#include "kxrender/KxSystem.h"
#include "platform/Win32Defs.h"

// Milliseconds since an arbitrary start (monotonic), wrapping at 2^32.
DWORD timeGetTime();
// Seconds since 1970-01-01 UTC; also stored through `t` when given.
__time64_t _time64(__time64_t* t);
// High-resolution counter: 10,000,000 counts per second (100 ns), as on
// Windows, so microsecond arithmetic on counts stays far from overflow.
BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);

// Full path of the running executable (the module handle must be null).
// Returns the length copied; the text is cut to size - 1 and terminated.
DWORD GetModuleFileNameA(HMODULE module, char* path, DWORD size);

// The active ANSI code page (see KxSetAnsiCodePage).
UINT GetACP();
// As on Windows: a negative source length means up to and including the
// terminating zero; a target size of 0 asks for the length needed; returns
// 0 on failure (target too small, unknown code page). Undecodable bytes
// become U+FFFD unless MB_ERR_INVALID_CHARS is given.
int MultiByteToWideChar(UINT codePage, DWORD flags, const char* src, int srcLen, WCHAR* dst, int dstLen);
int WideCharToMultiByte(UINT codePage, DWORD flags, const WCHAR* src, int srcLen, char* dst, int dstLen,
                        const char* defaultChar, BOOL* usedDefault);
// Character splitting in the active code page.
BOOL IsDBCSLeadByte(BYTE c);
const char* CharNextA(const char* p);
