#pragma once
// The pixel format closest to the bits asked for (0: none matches).
#include "platform/Win32Window.h"

inline int chooseFormat(HDC dc, BYTE colour, BYTE alpha, BYTE depth, BYTE stencil) {
  PIXELFORMATDESCRIPTOR want = {};
  want.iPixelType = PFD_TYPE_RGBA;
  want.cColorBits = colour, want.cAlphaBits = alpha, want.cDepthBits = depth, want.cStencilBits = stencil;
  return ChoosePixelFormat(dc, &want);
}
