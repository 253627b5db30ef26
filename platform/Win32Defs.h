#pragma once
// Windows value types, structures and constants that only the engine's own
// code and tests use. Kept out of the installed headers: BOOL, TRUE and FALSE
// collide with X11's Xmd.h and with hosts' own definitions.
#include <cstdint>

#include "kxrender/Win32Types.h"

typedef int BOOL;
typedef unsigned short WCHAR;  // UTF-16 code unit, as on Windows
typedef uint32_t COLORREF;
typedef int64_t __time64_t;
typedef void* HMODULE;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

union LARGE_INTEGER {
  struct {
    DWORD LowPart;
    LONG HighPart;
  } u;
  int64_t QuadPart;
};

// Pixel format descriptor, with the fields and flags the engine reads.
struct PIXELFORMATDESCRIPTOR {
  WORD nSize;
  WORD nVersion;
  DWORD dwFlags;
  BYTE iPixelType;
  BYTE cColorBits;
  BYTE cRedBits, cRedShift, cGreenBits, cGreenShift, cBlueBits, cBlueShift;
  BYTE cAlphaBits, cAlphaShift;
  BYTE cAccumBits, cAccumRedBits, cAccumGreenBits, cAccumBlueBits, cAccumAlphaBits;
  BYTE cDepthBits;
  BYTE cStencilBits;
  BYTE cAuxBuffers;
  BYTE iLayerType;
  BYTE bReserved;
  DWORD dwLayerMask, dwVisibleMask, dwDamageMask;
};

#define PFD_DOUBLEBUFFER 0x00000001
#define PFD_STEREO 0x00000002
#define PFD_DRAW_TO_WINDOW 0x00000004
#define PFD_DRAW_TO_BITMAP 0x00000008
#define PFD_SUPPORT_GDI 0x00000010
#define PFD_SUPPORT_OPENGL 0x00000020
#define PFD_GENERIC_FORMAT 0x00000040
#define PFD_TYPE_RGBA 0
#define PFD_TYPE_COLORINDEX 1
#define PFD_MAIN_PLANE 0

struct RGBQUAD {
  BYTE rgbBlue, rgbGreen, rgbRed, rgbReserved;
};
struct BITMAPINFO {
  BITMAPINFOHEADER bmiHeader;
  RGBQUAD bmiColors[1];
};
#define BI_RGB 0
#define DIB_RGB_COLORS 0
#define SRCCOPY 0x00CC0020

#define MB_PRECOMPOSED 0x00000001
#define MB_ERR_INVALID_CHARS 0x00000008
