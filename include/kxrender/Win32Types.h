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
/// Handle of an off-screen bitmap (DIBSection.h); the engine owns it.
typedef KxBitmap* HBITMAP;
/// Handle of any drawing object that can be selected into a DC (here: a
/// bitmap).
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
/// The header describing a device-independent bitmap, in the Windows layout.
struct BITMAPINFOHEADER {
  DWORD biSize;           ///< Size of this header in bytes.
  LONG biWidth;           ///< Width in pixels.
  LONG biHeight;          ///< Height in pixels; positive: rows bottom-up.
  WORD biPlanes;          ///< Always 1.
  WORD biBitCount;        ///< Bits a pixel (the engine makes 24 or 32).
  DWORD biCompression;    ///< BI_RGB: uncompressed.
  DWORD biSizeImage;      ///< Bytes of pixel data (0 allowed for BI_RGB).
  LONG biXPelsPerMeter;   ///< Horizontal resolution in pixels a metre (0: unknown).
  LONG biYPelsPerMeter;   ///< Vertical resolution in pixels a metre (0: unknown).
  DWORD biClrUsed;        ///< Palette entries used (0 without a palette).
  DWORD biClrImportant;   ///< Palette entries needed (0: all).
};

// Code pages for KxSetAnsiCodePage.
///@{
/// Code pages for KxSetAnsiCodePage: the system default, and UTF-8.
#define CP_ACP 0
#define CP_UTF8 65001
///@}
