// Instance transforms: the GL calls each kind makes, where it moves a point,
// and that GetAcgeMatrix is the matrix GL really applies.
#include <epoxy/gl.h>

#include <functional>

#include "kxrender/CSimpleMatrix.h"
#include "scene/SceneFixture.h"
#include "support/GLRecorder.h"

class SimpleMatrixFrame : public SceneFixture {
 protected:
  void SetUp() override { open(8, 8); }
};

TEST_F(SimpleMatrixFrame, EachKindMakesItsCallsMovesPointsAndIsWhatGLApplies) {
  AcGeMatrix3d full = AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 2, 3).normal(), AcGePoint3d(1, -2, 0.5));
  full.entry[0][0] *= 2.0;  // not a pure rotation
  const struct {
    const char* name;
    std::function<void(CSimpleMatrix&)> set;
    std::vector<std::string> calls;  // the full matrix by name only
    AcGePoint3d to;                  // where (1, 1, 1) goes
  } kinds[] = {
      {"none", [](CSimpleMatrix&) {}, {}, {1, 1, 1}},
      {"zMove", [](CSimpleMatrix& m) { m.setZMove(-7.25f); }, {"glTranslatef(0, 0, -7.25)"}, {1, 1, -6.25}},
      // Translate then scale: z' = dz + sz * z, so 1 goes to 5, not 9.
      {"zMoveZScale", [](CSimpleMatrix& m) { m.setZMoveAndZScale(2.0f, 3.0f); },
       {"glTranslatef(0, 0, 2)", "glScalef(1, 1, 3)"}, {1, 1, 5}},
      {"translate", [](CSimpleMatrix& m) { m.setTranslate(10.0f, -20.0f, 0.125f); }, {"glTranslatef(10, -20, 0.125)"},
       {11, -19, 1.125}},
      {"full", [&](CSimpleMatrix& m) { m.setFullMatrix(full); }, {"glMultMatrixf"}, full * AcGePoint3d(1, 1, 1)},
  };
  for (const auto& k : kinds) {
    SCOPED_TRACE(k.name);
    CSimpleMatrix m;
    k.set(m);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    GLRecorder rec(true);
    m.MultOpenGLMatrix();
    std::vector<std::string> got;
    for (const GLCall& c : rec.calls()) got.push_back(c.name == "glMultMatrixf" ? c.name : c.text());
    EXPECT_EQ(got, k.calls);
    const AcGeMatrix3d ge = m.GetAcgeMatrix();
    EXPECT_TRUE((ge * AcGePoint3d(1, 1, 1)).isEqualTo(k.to, AcGeTol(1e-6, 1e-6)));
    double gl[16];  // column-major
    glGetDoublev(GL_MODELVIEW_MATRIX, gl);
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) EXPECT_NEAR(ge.entry[r][c], gl[4 * c + r], 1e-6) << r << c;
  }
}
