// The pixel format every scene context asks for: RGBA with 24-bit colour,
// depth and an 8-bit stencil (the shadow passes count in it); windows and
// bitmaps differ only in their flags and in whether alpha is requested.
#pragma once

#include "platform/Win32Window.h"

inline PIXELFORMATDESCRIPTOR KxScenePixelFormat(DWORD flags, BYTE alphaBits) {
  PIXELFORMATDESCRIPTOR pfd = {};
  pfd.nSize = sizeof pfd;
  pfd.nVersion = 1;
  pfd.dwFlags = flags;
  pfd.iPixelType = PFD_TYPE_RGBA;
  pfd.cColorBits = 24;
  pfd.cAlphaBits = alphaBits;
  pfd.cDepthBits = 24;
  pfd.cStencilBits = 8;
  return pfd;
}
