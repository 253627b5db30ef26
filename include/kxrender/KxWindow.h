#pragma once
// Host windows. A window (HWND) is either a native X11 window the host
// already has, or an off-screen window rendered into pbuffers, so the same
// engine code draws on screen and headless. A scene binds to one with
// CSceneMgr::initializeRender.
#include <cstdint>
#include <vector>

#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

/// An off-screen window of the given client size (sizes below 1 become 1).
/// Returns null above 16384 pixels a side, or when no off-screen display can
/// be opened.
KXRENDER_API HWND KxCreateOffscreenWindow(int width, int height);
/// Wraps a host's X11 window; `display` is the host's Display*. The host keeps
/// owning both; KxDestroyWindow only forgets the wrapper.
KXRENDER_API HWND KxAttachX11Window(void* display, unsigned long window);
/// Forgets the window; its handle is no longer a window. Contexts created on
/// it stay valid objects but can no longer be made current on it.
KXRENDER_API void KxDestroyWindow(HWND hWnd);
/// The host resizes an off-screen window (as a user would drag a frame);
/// false, leaving the size as it was, above 16384 pixels a side.
KXRENDER_API bool KxResizeOffscreenWindow(HWND hWnd, int width, int height);
/// The host tells that its X11 window changed size (on ConfigureNotify). The
/// engine keeps the client size it last learnt instead of asking the X server
/// on every frame; false when hWnd is not a window or the server cannot tell.
/// Off-screen windows know their size already: true, nothing to do.
KXRENDER_API bool KxNotifyWindowResized(HWND hWnd);
/// The last frame presented (by CSceneMgr::finish), as RGBA rows from the top.
/// An off-screen window keeps that frame on the GPU and reads it only here.
/// For a window never presented, or an X11 window, the pixels currently drawn
/// are read instead, which needs the window's context to be current.
KXRENDER_API bool KxReadWindowPixels(HWND hWnd, std::vector<uint8_t>& rgba, int& width, int& height);
