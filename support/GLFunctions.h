#pragma once
// The GL and GLU entry points the engine calls, as X(return, name, params,
// args). GL names drop their "gl" prefix; GLU names keep "glu".
#define KX_GL_FUNCTIONS(X)                                                                                        \
  X(void, Begin, (GLenum mode), (mode))                                                                           \
  X(void, End, (void), ())                                                                                        \
  X(void, Vertex2d, (GLdouble x, GLdouble y), (x, y))                                                             \
  X(void, Vertex2i, (GLint x, GLint y), (x, y))                                                                   \
  X(void, Vertex3d, (GLdouble x, GLdouble y, GLdouble z), (x, y, z))                                              \
  X(void, Vertex3f, (GLfloat x, GLfloat y, GLfloat z), (x, y, z))                                                 \
  X(void, Vertex3dv, (const GLdouble* v), (v))                                                                    \
  X(void, Vertex3fv, (const GLfloat* v), (v))                                                                     \
  X(void, Normal3d, (GLdouble x, GLdouble y, GLdouble z), (x, y, z))                                              \
  X(void, Normal3f, (GLfloat x, GLfloat y, GLfloat z), (x, y, z))                                                 \
  X(void, Normal3dv, (const GLdouble* v), (v))                                                                    \
  X(void, Color3ub, (GLubyte r, GLubyte g, GLubyte b), (r, g, b))                                                 \
  X(void, Color4ub, (GLubyte r, GLubyte g, GLubyte b, GLubyte a), (r, g, b, a))                                   \
  X(void, Color3f, (GLfloat r, GLfloat g, GLfloat b), (r, g, b))                                                  \
  X(void, Color4f, (GLfloat r, GLfloat g, GLfloat b, GLfloat a), (r, g, b, a))                                    \
  X(void, Color3d, (GLdouble r, GLdouble g, GLdouble b), (r, g, b))                                               \
  X(void, Color4d, (GLdouble r, GLdouble g, GLdouble b, GLdouble a), (r, g, b, a))                                \
  X(void, TexCoord2d, (GLdouble s, GLdouble t), (s, t))                                                           \
  X(void, TexCoord2f, (GLfloat s, GLfloat t), (s, t))                                                             \
  X(void, RasterPos3d, (GLdouble x, GLdouble y, GLdouble z), (x, y, z))                                           \
  X(void, Clear, (GLbitfield mask), (mask))                                                                       \
  X(void, ClearColor, (GLfloat r, GLfloat g, GLfloat b, GLfloat a), (r, g, b, a))                                 \
  X(void, ClearDepth, (GLdouble d), (d))                                                                          \
  X(void, ClearStencil, (GLint s), (s))                                                                           \
  X(void, Viewport, (GLint x, GLint y, GLsizei w, GLsizei h), (x, y, w, h))                                       \
  X(void, Scissor, (GLint x, GLint y, GLsizei w, GLsizei h), (x, y, w, h))                                        \
  X(void, MatrixMode, (GLenum mode), (mode))                                                                      \
  X(void, LoadIdentity, (void), ())                                                                               \
  X(void, Ortho, (GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f), (l, r, b, t, n, f))    \
  X(void, Frustum, (GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f), (l, r, b, t, n, f))  \
  X(void, PushMatrix, (void), ())                                                                                 \
  X(void, PopMatrix, (void), ())                                                                                  \
  X(void, LoadMatrixd, (const GLdouble* m), (m))                                                                  \
  X(void, MultMatrixd, (const GLdouble* m), (m))                                                                  \
  X(void, MultMatrixf, (const GLfloat* m), (m))                                                                   \
  X(void, Translated, (GLdouble x, GLdouble y, GLdouble z), (x, y, z))                                            \
  X(void, Rotated, (GLdouble a, GLdouble x, GLdouble y, GLdouble z), (a, x, y, z))                                \
  X(void, Scaled, (GLdouble x, GLdouble y, GLdouble z), (x, y, z))                                                \
  X(void, Translatef, (GLfloat x, GLfloat y, GLfloat z), (x, y, z))                                             \
  X(void, Scalef, (GLfloat x, GLfloat y, GLfloat z), (x, y, z))                                                 \
  X(void, Enable, (GLenum cap), (cap))                                                                            \
  X(void, Disable, (GLenum cap), (cap))                                                                           \
  X(GLboolean, IsEnabled, (GLenum cap), (cap))                                                                    \
  X(void, ShadeModel, (GLenum mode), (mode))                                                                      \
  X(void, DepthFunc, (GLenum func), (func))                                                                       \
  X(void, DepthRange, (GLdouble n, GLdouble f), (n, f))                                                           \
  X(void, DepthMask, (GLboolean flag), (flag))                                                                    \
  X(void, LineWidth, (GLfloat w), (w))                                                                            \
  X(void, PointSize, (GLfloat s), (s))                                                                            \
  X(void, LineStipple, (GLint factor, GLushort pattern), (factor, pattern))                                       \
  X(void, PolygonStipple, (const GLubyte* mask), (mask))                                                          \
  X(void, PolygonMode, (GLenum face, GLenum mode), (face, mode))                                                  \
  X(void, PolygonOffset, (GLfloat factor, GLfloat units), (factor, units))                                        \
  X(void, CullFace, (GLenum mode), (mode))                                                                        \
  X(void, LogicOp, (GLenum op), (op))                                                                             \
  X(GLint, RenderMode, (GLenum mode), (mode))                                                                     \
  X(void, FrontFace, (GLenum mode), (mode))                                                                       \
  X(void, ColorMask, (GLboolean r, GLboolean g, GLboolean b, GLboolean a), (r, g, b, a))                          \
  X(void, StencilFunc, (GLenum func, GLint ref, GLuint mask), (func, ref, mask))                                  \
  X(void, StencilOp, (GLenum fail, GLenum zfail, GLenum zpass), (fail, zfail, zpass))                             \
  X(void, StencilMask, (GLuint mask), (mask))                                                                     \
  X(void, BlendFunc, (GLenum s, GLenum d), (s, d))                                                                \
  X(void, AlphaFunc, (GLenum func, GLclampf ref), (func, ref))                                                    \
  X(void, Hint, (GLenum target, GLenum mode), (target, mode))                                                     \
  X(void, Lightf, (GLenum light, GLenum pname, GLfloat v), (light, pname, v))                                     \
  X(void, Lightfv, (GLenum light, GLenum pname, const GLfloat* v), (light, pname, v))                             \
  X(void, LightModelfv, (GLenum pname, const GLfloat* v), (pname, v))                                             \
  X(void, LightModeli, (GLenum pname, GLint v), (pname, v))                                                       \
  X(void, ColorMaterial, (GLenum face, GLenum mode), (face, mode))                                                \
  X(void, Materialfv, (GLenum face, GLenum pname, const GLfloat* v), (face, pname, v))                            \
  X(void, Materialf, (GLenum face, GLenum pname, GLfloat v), (face, pname, v))                                    \
  X(void, Materiali, (GLenum face, GLenum pname, GLint v), (face, pname, v))                                      \
  X(void, PushAttrib, (GLbitfield mask), (mask))                                                                  \
  X(void, PopAttrib, (void), ())                                                                                  \
  X(void, Finish, (void), ())                                                                                     \
  X(void, Flush, (void), ())                                                                                      \
  X(void, GetDoublev, (GLenum pname, GLdouble* v), (pname, v))                                                    \
  X(void, GetFloatv, (GLenum pname, GLfloat* v), (pname, v))                                                      \
  X(void, GetIntegerv, (GLenum pname, GLint* v), (pname, v))                                                      \
  X(void, GetBooleanv, (GLenum pname, GLboolean* v), (pname, v))                                                  \
  X(GLenum, GetError, (void), ())                                                                                 \
  X(const GLubyte*, GetString, (GLenum name), (name))                                                             \
  X(GLuint, GenLists, (GLsizei range), (range))                                                                   \
  X(void, NewList, (GLuint list, GLenum mode), (list, mode))                                                      \
  X(void, EndList, (void), ())                                                                                    \
  X(void, CallList, (GLuint list), (list))                                                                        \
  X(void, DeleteLists, (GLuint list, GLsizei range), (list, range))                                               \
  X(GLboolean, IsList, (GLuint list), (list))                                                                     \
  X(void, EnableClientState, (GLenum array), (array))                                                             \
  X(void, DisableClientState, (GLenum array), (array))                                                            \
  X(void, VertexPointer, (GLint size, GLenum type, GLsizei stride, const void* p), (size, type, stride, p))       \
  X(void, NormalPointer, (GLenum type, GLsizei stride, const void* p), (type, stride, p))                         \
  X(void, ColorPointer, (GLint size, GLenum type, GLsizei stride, const void* p), (size, type, stride, p))        \
  X(void, TexCoordPointer, (GLint size, GLenum type, GLsizei stride, const void* p), (size, type, stride, p))     \
  X(void, DrawArrays, (GLenum mode, GLint first, GLsizei count), (mode, first, count))                            \
  X(void, DrawElements, (GLenum mode, GLsizei count, GLenum type, const void* idx), (mode, count, type, idx))     \
  X(void, PushClientAttrib, (GLbitfield mask), (mask))                                                            \
  X(void, PopClientAttrib, (void), ())                                                                            \
  X(void, GenBuffers, (GLsizei n, GLuint* b), (n, b))                                                             \
  X(void, DeleteBuffers, (GLsizei n, const GLuint* b), (n, b))                                                    \
  X(void, BindBuffer, (GLenum target, GLuint b), (target, b))                                                     \
  X(void, BufferData, (GLenum target, GLsizeiptr size, const void* data, GLenum usage), (target, size, data, usage)) \
  X(GLboolean, IsBuffer, (GLuint b), (b))                                                                         \
  X(void, GenTextures, (GLsizei n, GLuint* t), (n, t))                                                            \
  X(void, DeleteTextures, (GLsizei n, const GLuint* t), (n, t))                                                   \
  X(void, BindTexture, (GLenum target, GLuint t), (target, t))                                                    \
  X(GLboolean, IsTexture, (GLuint t), (t))                                                                        \
  X(void, TexParameteri, (GLenum target, GLenum pname, GLint v), (target, pname, v))                              \
  X(void, TexEnvi, (GLenum target, GLenum pname, GLint v), (target, pname, v))                                    \
  X(void, TexImage2D,                                                                                             \
    (GLenum target, GLint level, GLint ifmt, GLsizei w, GLsizei h, GLint border, GLenum fmt, GLenum type,         \
     const void* px),                                                                                             \
    (target, level, ifmt, w, h, border, fmt, type, px))                                                           \
  X(void, GenerateMipmap, (GLenum target), (target))                                                              \
  X(void, PixelTransferf, (GLenum pname, GLfloat v), (pname, v))                                                  \
  X(void, PixelStorei, (GLenum pname, GLint v), (pname, v))                                                       \
  X(void, ReadPixels, (GLint x, GLint y, GLsizei w, GLsizei h, GLenum fmt, GLenum type, void* px),                \
    (x, y, w, h, fmt, type, px))

#define KX_GLU_FUNCTIONS(X)                                                                                       \
  X(void, gluLookAt,                                                                                              \
    (GLdouble ex, GLdouble ey, GLdouble ez, GLdouble cx, GLdouble cy, GLdouble cz, GLdouble ux, GLdouble uy,      \
     GLdouble uz),                                                                                                \
    (ex, ey, ez, cx, cy, cz, ux, uy, uz))                                                                         \
  X(void, gluPerspective, (GLdouble fovy, GLdouble aspect, GLdouble n, GLdouble f), (fovy, aspect, n, f))         \
  X(void, gluOrtho2D, (GLdouble l, GLdouble r, GLdouble b, GLdouble t), (l, r, b, t))                             \
  X(GLint, gluProject,                                                                                            \
    (GLdouble ox, GLdouble oy, GLdouble oz, const GLdouble* model, const GLdouble* proj, const GLint* view,        \
     GLdouble* wx, GLdouble* wy, GLdouble* wz),                                                                   \
    (ox, oy, oz, model, proj, view, wx, wy, wz))                                                                  \
  X(GLint, gluUnProject,                                                                                          \
    (GLdouble wx, GLdouble wy, GLdouble wz, const GLdouble* model, const GLdouble* proj, const GLint* view,       \
     GLdouble* ox, GLdouble* oy, GLdouble* oz),                                                                   \
    (wx, wy, wz, model, proj, view, ox, oy, oz))                                                                  \
  X(GLint, gluBuild2DMipmaps,                                                                                     \
    (GLenum target, GLint ifmt, GLsizei w, GLsizei h, GLenum fmt, GLenum type, const void* data),                 \
    (target, ifmt, w, h, fmt, type, data))                                                                        \
  X(GLUtesselator*, gluNewTess, (void), ())                                                                       \
  X(void, gluDeleteTess, (GLUtesselator * t), (t))                                                                \
  X(void, gluTessCallback, (GLUtesselator * t, GLenum which, _GLUfuncptr fn), (t, which, fn))                     \
  X(void, gluTessProperty, (GLUtesselator * t, GLenum which, GLdouble v), (t, which, v))                          \
  X(void, gluTessNormal, (GLUtesselator * t, GLdouble x, GLdouble y, GLdouble z), (t, x, y, z))                   \
  X(void, gluTessBeginPolygon, (GLUtesselator * t, void* data), (t, data))                                        \
  X(void, gluTessBeginContour, (GLUtesselator * t), (t))                                                          \
  X(void, gluTessVertex, (GLUtesselator * t, GLdouble * loc, void* data), (t, loc, data))                         \
  X(void, gluTessEndContour, (GLUtesselator * t), (t))                                                            \
  X(void, gluTessEndPolygon, (GLUtesselator * t), (t))
