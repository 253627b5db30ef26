#pragma once
// Every GL and GLU call of the engine goes through `kgl`, a table of function
// pointers. Normally it forwards to the driver through libepoxy; tests swap
// in a recording table (GLRecorder) to check which calls a frame makes.
#include <epoxy/gl.h>
#include <GL/glu.h>

#include "support/GLFunctions.h"

struct KxGLTable {
#define KX_GL_MEMBER(ret, name, params, args) ret(*name) params;
  KX_GL_FUNCTIONS(KX_GL_MEMBER)
  KX_GLU_FUNCTIONS(KX_GL_MEMBER)
#undef KX_GL_MEMBER
};

// The table the engine calls through; never null.
extern KxGLTable* kgl;
// The table that talks to the driver.
const KxGLTable& kxDriverGL();
