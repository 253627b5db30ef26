#pragma once
// Window test helpers: a pixel format by its bits, a client size as text.
#include <string>

#include "platform/Win32Window.h"

// The pixel format closest to the bits asked for (0: none matches).
inline int chooseFormat(HDC dc, BYTE colour, BYTE alpha, BYTE depth, BYTE stencil) {
  PIXELFORMATDESCRIPTOR want = {};
  want.iPixelType = PFD_TYPE_RGBA;
  want.cColorBits = colour, want.cAlphaBits = alpha, want.cDepthBits = depth, want.cStencilBits = stencil;
  return ChoosePixelFormat(dc, &want);
}

// "WxH" of the window's client rectangle, or "none" where it has none.
inline std::string clientSize(HWND w) {
  RECT rc;
  return GetClientRect(w, &rc) ? std::to_string(rc.right) + "x" + std::to_string(rc.bottom) : "none";
}
