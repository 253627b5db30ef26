// The only place that speaks Xlib: size and visual of a host's window.
#include <X11/Xlib.h>

#include "platform/WindowImpl.h"

namespace kxplatform {

bool x11WindowSize(void* xdisplay, unsigned long xwindow, int& width, int& height) {
  XWindowAttributes attrs;
  if (!XGetWindowAttributes(static_cast<Display*>(xdisplay), static_cast<Window>(xwindow), &attrs)) return false;
  width = attrs.width;
  height = attrs.height;
  return true;
}

long x11WindowVisual(void* xdisplay, unsigned long xwindow) {
  XWindowAttributes attrs;
  if (!XGetWindowAttributes(static_cast<Display*>(xdisplay), static_cast<Window>(xwindow), &attrs) || !attrs.visual)
    return -1;
  return static_cast<long>(XVisualIDFromVisual(attrs.visual));
}

bool x11ScreenToWindow(void* xdisplay, unsigned long xwindow, int& x, int& y) {
  Display* dpy = static_cast<Display*>(xdisplay);
  XWindowAttributes attrs;
  if (!XGetWindowAttributes(dpy, static_cast<Window>(xwindow), &attrs)) return false;
  Window child = 0;
  int wx = 0, wy = 0;
  if (!XTranslateCoordinates(dpy, attrs.root, static_cast<Window>(xwindow), x, y, &wx, &wy, &child)) return false;
  x = wx;
  y = wy;
  return true;
}

}  // namespace kxplatform
