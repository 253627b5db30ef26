#pragma once
// The Windows value and handle types the engine's interface is written in.
// Only names that no common Linux header (X11, EGL, GL, GLU, GLFW) defines
// differently live here; BYTE matches X11's Xmd.h exactly. On Linux the
// handles name objects of the platform layer (see KxWindow.h).
#include <cstdint>

///@{
/// Fixed-size integers: 8, 16 and 32 bits unsigned, unsigned int, 32 bits signed.
typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef uint32_t DWORD;
typedef unsigned int UINT;
typedef int32_t LONG;
///@}

struct KxWindow;
struct KxDeviceContext;
struct KxGLContext;
///@{
/// Handles of a window (KxWindow.h), its device context and a GL context;
/// the engine owns the objects they name.
typedef KxWindow* HWND;
typedef KxDeviceContext* HDC;
typedef KxGLContext* HGLRC;
///@}
struct KxBitmap;
typedef KxBitmap* HBITMAP;
typedef void* HGDIOBJ;

/// A rectangle in pixels: left, top, right, bottom.
struct RECT {
  ///@{
  /// Edges; right and bottom lie just outside.
  LONG left, top, right, bottom;
  ///@}
};
/// A pixel position.
struct POINT {
  ///@{
  /// Coordinates; y grows downwards.
  LONG x, y;
  ///@}
};
/// A size in pixels.
struct SIZE {
  ///@{
  /// Width and height.
  LONG cx, cy;
  ///@}
};
struct BITMAPINFOHEADER {
  DWORD biSize;
  LONG biWidth;
  LONG biHeight;  // positive: rows bottom-up
  WORD biPlanes;
  WORD biBitCount;
  DWORD biCompression;
  DWORD biSizeImage;
  LONG biXPelsPerMeter;
  LONG biYPelsPerMeter;
  DWORD biClrUsed;
  DWORD biClrImportant;
};

// Code pages for KxSetAnsiCodePage.
///@{
/// Code pages for KxSetAnsiCodePage: the system default, and UTF-8.
#define CP_ACP 0
#define CP_UTF8 65001
///@}
