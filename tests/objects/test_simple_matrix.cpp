// Instance transforms: what each kind multiplies onto the GL matrix, and
// that GetAcgeMatrix is that same matrix.
#include <epoxy/gl.h>

#include "kxrender/CSimpleMatrix.h"
#include "scene/SceneFixture.h"
#include "support/GLRecorder.h"

namespace {
std::vector<std::string> texts(const GLRecorder& rec) {
  std::vector<std::string> out;
  for (const auto& c : rec.calls()) out.push_back(c.text());
  return out;
}

AcGeMatrix3d sampleMatrix() {
  AcGeMatrix3d m = AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 2, 3).normal(), AcGePoint3d(1, -2, 0.5));
  m.entry[0][0] *= 2.0;  // not a pure rotation
  return m;
}
}  // namespace

TEST(SimpleMatrixKinds, SettersStoreKindAndValues) {
  CSimpleMatrix m;
  EXPECT_EQ(m.getKind(), 0);
  EXPECT_TRUE(m.getValues().empty());
  m.setZMove(2.5f);
  EXPECT_EQ(m.getKind(), 2);
  EXPECT_EQ(m.getValues(), (std::vector<float>{2.5f}));
  m.setZMoveAndZScale(1.0f, 3.0f);
  EXPECT_EQ(m.getKind(), 3);
  EXPECT_EQ(m.getValues(), (std::vector<float>{1.0f, 3.0f}));
  m.setTranslate(1.0f, 2.0f, 3.0f);
  EXPECT_EQ(m.getKind(), 4);
  EXPECT_EQ(m.getValues(), (std::vector<float>{1.0f, 2.0f, 3.0f}));
  const AcGeMatrix3d full = sampleMatrix();
  m.setFullMatrix(full);
  EXPECT_EQ(m.getKind(), 1);
  ASSERT_EQ(m.getValues().size(), 16u);
  // Column-major, ready for glMultMatrixf.
  EXPECT_FLOAT_EQ(m.getValues()[12], static_cast<float>(full.entry[0][3]));
  EXPECT_FLOAT_EQ(m.getValues()[1], static_cast<float>(full.entry[1][0]));

  CSimpleMatrix copy(m), assigned;
  assigned = m;
  EXPECT_EQ(copy.getKind(), 1);
  EXPECT_EQ(copy.getValues(), m.getValues());
  EXPECT_EQ(assigned.getKind(), 1);
  EXPECT_EQ(assigned.getValues(), m.getValues());
}

TEST(SimpleMatrixCalls, EachKindMultipliesItsTransform) {
  GLRecorder rec(false);
  CSimpleMatrix m;
  m.MultOpenGLMatrix();
  EXPECT_TRUE(rec.calls().empty());
  EXPECT_TRUE(m.GetAcgeMatrix().isEqualTo(AcGeMatrix3d::kIdentity));

  m.setZMove(2.5f);
  m.MultOpenGLMatrix();
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glTranslatef(0, 0, 2.5)"}));

  rec.clear();
  m.setZMoveAndZScale(2.0f, 3.0f);
  m.MultOpenGLMatrix();
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glTranslatef(0, 0, 2)", "glScalef(1, 1, 3)"}));

  rec.clear();
  m.setTranslate(-1.0f, 0.5f, 4.0f);
  m.MultOpenGLMatrix();
  EXPECT_EQ(texts(rec), (std::vector<std::string>{"glTranslatef(-1, 0.5, 4)"}));

  rec.clear();
  m.setFullMatrix(sampleMatrix());
  m.MultOpenGLMatrix();
  ASSERT_EQ(rec.calls().size(), 1u);
  EXPECT_EQ(rec.calls()[0].name, "glMultMatrixf");
  ASSERT_EQ(rec.calls()[0].args.size(), 16u);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(rec.calls()[0].args[i], m.getValues()[i]);
}

TEST(SimpleMatrixCalls, ZScaleActsAfterTheMove) {
  CSimpleMatrix m;
  m.setZMoveAndZScale(2.0f, 3.0f);
  // Translate then scale: z' = dz + sz * z, so (0, 0, 1) goes to 5, not 9.
  const AcGePoint3d p = m.GetAcgeMatrix() * AcGePoint3d(1, 1, 1);
  EXPECT_DOUBLE_EQ(p.x, 1.0);
  EXPECT_DOUBLE_EQ(p.y, 1.0);
  EXPECT_DOUBLE_EQ(p.z, 5.0);
}

class SimpleMatrixFrame : public SceneFixture {
 protected:
  void SetUp() override { open(8, 8); }
  // The model-view matrix after multiplying m onto the identity.
  AcGeMatrix3d applied(const CSimpleMatrix& m) {
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    m.MultOpenGLMatrix();
    double v[16];
    glGetDoublev(GL_MODELVIEW_MATRIX, v);
    AcGeMatrix3d out;
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) out.entry[r][c] = v[4 * c + r];
    return out;
  }
  void expectSame(const CSimpleMatrix& m) {
    const AcGeMatrix3d gl = applied(m), ge = m.GetAcgeMatrix();
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) EXPECT_NEAR(ge.entry[r][c], gl.entry[r][c], 1e-6) << "kind " << m.getKind() << " " << r << c;
  }
};

TEST_F(SimpleMatrixFrame, AcgeMatrixEqualsWhatGLApplies) {
  CSimpleMatrix m;
  expectSame(m);
  m.setZMove(-7.25f);
  expectSame(m);
  m.setZMoveAndZScale(2.0f, 3.0f);
  expectSame(m);
  m.setZMoveAndZScale(-1.5f, 0.25f);
  expectSame(m);
  m.setTranslate(10.0f, -20.0f, 0.125f);
  expectSame(m);
  m.setFullMatrix(sampleMatrix());
  expectSame(m);
  // And it is the matrix it was given, to float precision.
  const AcGeMatrix3d full = sampleMatrix(), back = m.GetAcgeMatrix();
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c) EXPECT_NEAR(back.entry[r][c], full.entry[r][c], 1e-6);
}
