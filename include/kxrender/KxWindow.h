#pragma once
// Window system stand-ins. A window (HWND) is either a native X11 window the
// host already has, or an off-screen window rendered into a pbuffer, so the
// same engine code draws on screen and headless. The Win32-named functions
// behave as their Windows counterparts do for the uses the engine makes.
#include <cstdint>
#include <vector>

#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

// --- creating and destroying windows -------------------------------------
// An off-screen window of the given client size (sizes below 1 become 1).
// Returns null above 16384 pixels a side, or when no off-screen display can
// be opened.
KXRENDER_API HWND KxCreateOffscreenWindow(int width, int height);
// Wraps a host's X11 window; `display` is the host's Display*. The host keeps
// owning both; KxDestroyWindow only forgets the wrapper.
KXRENDER_API HWND KxAttachX11Window(void* display, unsigned long window);
// Forgets the window; its handle is no longer a window. Contexts created on
// it stay valid objects but can no longer be made current on it.
KXRENDER_API void KxDestroyWindow(HWND hWnd);
// The host resizes an off-screen window (as a user would drag a frame);
// false, leaving the size as it was, above 16384 pixels a side.
KXRENDER_API bool KxResizeOffscreenWindow(HWND hWnd, int width, int height);
// The last frame presented by SwapBuffers, as RGBA rows from the top.
// For a window never swapped, the pixels currently drawn are read instead.
KXRENDER_API bool KxReadWindowPixels(HWND hWnd, std::vector<uint8_t>& rgba, int& width, int& height);

// --- Win32 stand-ins ------------------------------------------------------
KXRENDER_API BOOL IsWindow(HWND hWnd);
KXRENDER_API BOOL GetClientRect(HWND hWnd, RECT* rect);
// Screen to client coordinates. An off-screen window's client area starts at
// the screen origin, so its points are unchanged.
KXRENDER_API BOOL ScreenToClient(HWND hWnd, POINT* pt);
KXRENDER_API HDC GetDC(HWND hWnd);
KXRENDER_API int ReleaseDC(HWND hWnd, HDC hDC);
KXRENDER_API HWND WindowFromDC(HDC hDC);

KXRENDER_API int DescribePixelFormat(HDC hDC, int format, UINT bytes, PIXELFORMATDESCRIPTOR* pfd);
KXRENDER_API int ChoosePixelFormat(HDC hDC, const PIXELFORMATDESCRIPTOR* pfd);
KXRENDER_API BOOL SetPixelFormat(HDC hDC, int format, const PIXELFORMATDESCRIPTOR* pfd);
KXRENDER_API int GetPixelFormat(HDC hDC);

KXRENDER_API HGLRC wglCreateContext(HDC hDC);
KXRENDER_API BOOL wglMakeCurrent(HDC hDC, HGLRC hRC);
KXRENDER_API BOOL wglDeleteContext(HGLRC hRC);
KXRENDER_API HGLRC wglGetCurrentContext();
KXRENDER_API HDC wglGetCurrentDC();
KXRENDER_API BOOL SwapBuffers(HDC hDC);
