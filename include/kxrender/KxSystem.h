#pragma once
// Clocks, module path and code-page conversion under their Windows names.
#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

// Milliseconds since an arbitrary start (monotonic), wrapping at 2^32.
KXRENDER_API DWORD timeGetTime();
// Seconds since 1970-01-01 UTC; also stored through `t` when given.
KXRENDER_API __time64_t _time64(__time64_t* t);
// High-resolution counter: 10,000,000 counts per second (100 ns), as on
// Windows, so microsecond arithmetic on counts stays far from overflow.
KXRENDER_API BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
KXRENDER_API BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);

// Full path of the running executable (the module handle must be null).
// Returns the length copied; the text is cut to size - 1 and terminated.
KXRENDER_API DWORD GetModuleFileNameA(HMODULE module, char* path, DWORD size);

// The process's ANSI code page (CP_UTF8 unless the host sets another, for
// example 936 for GBK data written on Windows). Returns false for a code
// page the system cannot convert, leaving the active one unchanged.
KXRENDER_API UINT GetACP();
KXRENDER_API bool KxSetAnsiCodePage(UINT codePage);
// As on Windows: a negative source length means up to and including the
// terminating zero; a target size of 0 asks for the length needed; returns
// 0 on failure (target too small, unknown code page). Undecodable bytes
// become U+FFFD unless MB_ERR_INVALID_CHARS is given.
KXRENDER_API int MultiByteToWideChar(UINT codePage, DWORD flags, const char* src, int srcLen, WCHAR* dst, int dstLen);
KXRENDER_API int WideCharToMultiByte(UINT codePage, DWORD flags, const WCHAR* src, int srcLen, char* dst, int dstLen,
                                     const char* defaultChar, BOOL* usedDefault);
// Character splitting in the active code page.
KXRENDER_API BOOL IsDBCSLeadByte(BYTE c);
KXRENDER_API const char* CharNextA(const char* p);
