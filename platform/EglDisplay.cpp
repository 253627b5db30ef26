#include "platform/EglDisplay.h"

#include <map>

namespace kxplatform {
namespace {

bool hasClientExtension(const char* name) {
  return epoxy_has_egl_extension(EGL_NO_DISPLAY, name);
}

EGLDisplay initialised(EGLDisplay dpy) {
  if (dpy == EGL_NO_DISPLAY) return EGL_NO_DISPLAY;
  EGLint major = 0, minor = 0;
  if (!eglInitialize(dpy, &major, &minor)) return EGL_NO_DISPLAY;
  return dpy;
}

EGLDisplay openOffscreen() {
  if (hasClientExtension("EGL_MESA_platform_surfaceless")) {
    EGLDisplay dpy = initialised(eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
    if (dpy != EGL_NO_DISPLAY) return dpy;
  }
  // Drivers without the surfaceless platform (vendor GPU stacks) expose devices.
  if (hasClientExtension("EGL_EXT_platform_device") && hasClientExtension("EGL_EXT_device_enumeration")) {
    EGLDeviceEXT devices[8];
    EGLint count = 0;
    if (eglQueryDevicesEXT(8, devices, &count)) {
      for (EGLint i = 0; i < count; ++i) {
        EGLDisplay dpy = initialised(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr));
        if (dpy != EGL_NO_DISPLAY) return dpy;
      }
    }
  }
  return initialised(eglGetDisplay(EGL_DEFAULT_DISPLAY));
}

}  // namespace

EGLDisplay offscreenDisplay() {
  static EGLDisplay dpy = openOffscreen();
  return dpy;
}

EGLDisplay x11Display(void* xdisplay) {
  static std::map<void*, EGLDisplay> displays;
  auto it = displays.find(xdisplay);
  if (it != displays.end()) return it->second;
  EGLDisplay dpy = EGL_NO_DISPLAY;
  if (hasClientExtension("EGL_KHR_platform_x11") || hasClientExtension("EGL_EXT_platform_x11"))
    dpy = initialised(eglGetPlatformDisplayEXT(EGL_PLATFORM_X11_KHR, xdisplay, nullptr));
  displays[xdisplay] = dpy;
  return dpy;
}

}  // namespace kxplatform
