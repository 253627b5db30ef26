// The window-system and GL headers a Linux host typically includes.
#include <X11/Xlib.h>
#include <X11/Xmd.h>
#include <X11/Xutil.h>
#include <EGL/egl.h>
#include <GL/gl.h>
#include <GL/glu.h>
#include <GLFW/glfw3.h>
