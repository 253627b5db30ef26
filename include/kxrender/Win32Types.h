#pragma once
// The Windows value and handle types the engine's interface is written in.
// Only names that no common Linux header (X11, EGL, GL, GLU, GLFW) defines
// differently live here; BYTE matches X11's Xmd.h exactly. On Linux the
// handles name objects of the platform layer (see KxWindow.h).
#include <cstdint>

typedef unsigned char BYTE;
typedef unsigned short WORD;
typedef uint32_t DWORD;
typedef unsigned int UINT;
typedef int32_t LONG;

struct KxWindow;
struct KxDeviceContext;
struct KxGLContext;
typedef KxWindow* HWND;
typedef KxDeviceContext* HDC;
typedef KxGLContext* HGLRC;
struct KxBitmap;
typedef KxBitmap* HBITMAP;
typedef void* HGDIOBJ;

struct RECT {
  LONG left, top, right, bottom;
};
struct POINT {
  LONG x, y;
};
struct SIZE {
  LONG cx, cy;
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
#define CP_ACP 0
#define CP_UTF8 65001
