#pragma once
// A mapped X11 window of the given size on a display of its own, both gone
// with the host. Include after gtest: Xlib's macros (None, Bool, ...) would
// break its headers.
#include <X11/Xlib.h>

struct X11Host {
  Display* display = XOpenDisplay(nullptr);
  Window xwin = 0;
  X11Host(int w, int h) {
    if (!display) return;
    xwin = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, w, h, 0, 0, 0);
    XMapWindow(display, xwin);
    XSync(display, False);
  }
  ~X11Host() {
    if (!display) return;
    XDestroyWindow(display, xwin);
    XCloseDisplay(display);
  }
};
