#pragma once
// EGL displays shared by all windows of one kind: one off-screen display for
// the process, and one per X11 connection. They live until the process ends.
#include <epoxy/egl.h>

namespace kxplatform {

// The display off-screen windows render on (Mesa surfaceless, else the first
// EGL device, else the default display). EGL_NO_DISPLAY when none works.
EGLDisplay offscreenDisplay();
// The display for windows of the given X11 connection.
EGLDisplay x11Display(void* xdisplay);

}  // namespace kxplatform
