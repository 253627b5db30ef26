#include "support/GLTable.h"

namespace {
// Forwarders call through epoxy's current pointer on every call, so the
// table is valid before any context exists and in every context.
#define KX_GL_FORWARD(ret, name, params, args) \
  ret forward_##name params { return gl##name args; }
KX_GL_FUNCTIONS(KX_GL_FORWARD)
#undef KX_GL_FORWARD
#define KX_GLU_FORWARD(ret, name, params, args) \
  ret forward_##name params { return ::name args; }
KX_GLU_FUNCTIONS(KX_GLU_FORWARD)
#undef KX_GLU_FORWARD

KxGLTable makeDriverTable() {
  KxGLTable t;
#define KX_GL_FILL(ret, name, params, args) t.name = forward_##name;
  KX_GL_FUNCTIONS(KX_GL_FILL)
  KX_GLU_FUNCTIONS(KX_GL_FILL)
#undef KX_GL_FILL
  return t;
}

KxGLTable g_driver = makeDriverTable();
}  // namespace

const KxGLTable& kxDriverGL() { return g_driver; }

KxGLTable* kgl = &g_driver;
