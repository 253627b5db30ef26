#pragma once
// Window, device-context, pixel-format and rendering-context calls under
// their Windows names, for the engine's own code: each behaves as its
// Windows counterpart does for the uses the engine makes.
#include "kxrender/KxWindow.h"
#include "platform/Win32Defs.h"

BOOL IsWindow(HWND hWnd);
BOOL GetClientRect(HWND hWnd, RECT* rect);
// Screen to client coordinates. An off-screen window's client area starts at
// the screen origin, so its points are unchanged.
BOOL ScreenToClient(HWND hWnd, POINT* pt);
HDC GetDC(HWND hWnd);
int ReleaseDC(HWND hWnd, HDC hDC);
HWND WindowFromDC(HDC hDC);

// Pixel formats are numbered once for the whole process: a number names the
// same buffer sizes on every window, whatever its kind or display, so one
// chosen format serves every later window. A window that cannot supply a
// format describes it without PFD_DRAW_TO_WINDOW and refuses to set it.
int DescribePixelFormat(HDC hDC, int format, UINT bytes, PIXELFORMATDESCRIPTOR* pfd);
int ChoosePixelFormat(HDC hDC, const PIXELFORMATDESCRIPTOR* pfd);
BOOL SetPixelFormat(HDC hDC, int format, const PIXELFORMATDESCRIPTOR* pfd);
int GetPixelFormat(HDC hDC);

HGLRC wglCreateContext(HDC hDC);
BOOL wglMakeCurrent(HDC hDC, HGLRC hRC);
BOOL wglDeleteContext(HGLRC hRC);
HGLRC wglGetCurrentContext();
HDC wglGetCurrentDC();
// Presents the frame: an X11 window swaps; an off-screen window swaps its two
// pbuffers, keeping the presented one for KxReadWindowPixels.
BOOL SwapBuffers(HDC hDC);

// Memory DCs and device-independent bitmaps. A memory DC takes a pixel
// format and contexts like a window DC; GL then draws at the size of the
// bitmap selected in it. Bitmaps larger than an off-screen surface allows,
// or than memory can hold, are refused.
HDC CreateCompatibleDC(HDC hDC);
BOOL DeleteDC(HDC hDC);
HBITMAP CreateDIBSection(HDC hDC, const BITMAPINFO* info, UINT usage, void** bits, void* section, DWORD offset);
HGDIOBJ SelectObject(HDC hDC, HGDIOBJ object);
BOOL DeleteObject(HGDIOBJ object);
// Copies between bitmaps selected in memory DCs, clipped to both.
BOOL BitBlt(HDC dst, int x, int y, int width, int height, HDC src, int srcX, int srcY, DWORD rop);
