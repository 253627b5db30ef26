#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "kxrender/CArchive.h"
#include "kxrender/CCamera.h"
#include "kxrender/CMemFile.h"
#include "support/GLRecorder.h"

namespace {
bool near(const AcGeVector3d& a, const AcGeVector3d& b) { return (a - b).length() < 1e-12; }
}  // namespace

TEST(CCamera, DefaultsAndLook) {
  CCamera cam;
  cam.MoveCameraForward(3);
  cam.ReSet();
  GLRecorder rec(false);
  cam.look();
  ASSERT_EQ(rec.calls().size(), 1u);
  EXPECT_EQ(rec.calls()[0].text(), "gluLookAt(0, 0, 0, 0, 0, -1, 0, 1, 0)");
}

TEST(CCamera, MovesUseTheUnnormalisedSideVector) {
  CCamera cam;
  cam.MoveCameraRight(1);
  EXPECT_TRUE(near(cam.GetVLocation(), AcGeVector3d(-1, 0, 0)));
  cam.ReSet(AcGeVector3d(0, 0, 0), AcGeVector3d(0, 2, 0), AcGeVector3d(0, 0, -1));
  cam.MoveCameraRight(1);  // side = up x forward has length 2
  EXPECT_TRUE(near(cam.GetVLocation(), AcGeVector3d(-2, 0, 0)));
  cam.ReSet();
  cam.TranslateCaremaLocal(AcGeVector3d(1, 2, 3));
  EXPECT_TRUE(near(cam.GetVLocation(), AcGeVector3d(-1, 2, -3)));
  cam.TranslateCaremaWorld(AcGeVector3d(1, 1, 1));
  EXPECT_TRUE(near(cam.GetVLocation(), AcGeVector3d(0, 3, -2)));
}

TEST(CCamera, TurnsAboutPoints) {
  CCamera cam;
  cam.ReSet(AcGeVector3d(10, 0, 7), AcGeVector3d(0, 0, 1), AcGeVector3d(-1, 0, 0));
  cam.RotateCaremaRealWorldZ(M_PI / 2, AcGePoint3d(0, 0, 100));
  EXPECT_TRUE(near(cam.GetVLocation(), AcGeVector3d(0, 10, 7)));  // z kept whatever p.z
  EXPECT_TRUE(near(cam.GetVForward(), AcGeVector3d(0, -1, 0)));

  CCamera eyePivot;
  eyePivot.ReSet(AcGeVector3d(1, 2, 3), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  eyePivot.RotateCaremaUp(0.3, AcGePoint3d(1, 2, 3));
  EXPECT_TRUE(near(eyePivot.GetVLocation(), AcGeVector3d(1, 2, 3)));  // only the directions turn
  EXPECT_FALSE(near(eyePivot.GetVForward(), AcGeVector3d(0, 0, -1)));

  CCamera orbit;
  orbit.ReSet(AcGeVector3d(0, 0, 10), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  orbit.RotateCaremaRight(M_PI / 2, AcGePoint3d(0, 0, 0));  // about side = (-1, 0, 0)
  EXPECT_TRUE(near(orbit.GetVLocation(), AcGeVector3d(0, 10, 0)));
  EXPECT_TRUE(near(orbit.GetVForward(), AcGeVector3d(0, -1, 0)));
  EXPECT_TRUE(near(orbit.GetVUp(), AcGeVector3d(0, 0, -1)));

  CCamera roll;
  roll.RotateCaremaFront(M_PI / 2, AcGePoint3d(0, 0, 0));
  EXPECT_TRUE(near(roll.GetVUp(), AcGeVector3d(1, 0, 0)));  // right-hand turn about -z
}

TEST(CCamera, OrthoNormalSlidesAlongTheLineOfSight) {
  CCamera cam;
  cam.ReSet(AcGeVector3d(3, 4, 50), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  cam.OrthoNormal(AcGePoint3d(100, 100, 5));
  EXPECT_TRUE(near(cam.GetVLocation(), AcGeVector3d(3, 4, 5)));
  CCamera blind;
  blind.ReSet(AcGeVector3d(1, 1, 1), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, 0));
  blind.OrthoNormal(AcGePoint3d(9, 9, 9));
  EXPECT_TRUE(near(blind.GetVLocation(), AcGeVector3d(1, 1, 1)));
}

TEST(CCamera, ArchiveHoldsNineDoublesForwardBeforeUp) {
  CCamera cam;
  cam.ReSet(AcGeVector3d(1, 2, 3), AcGeVector3d(7, 8, 9), AcGeVector3d(4, 5, 6));
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    cam.Serialize(ar);
  }
  ASSERT_EQ(file.data().size(), 72u);
  for (int i = 0; i < 9; ++i) {
    double v;
    std::memcpy(&v, file.data().data() + 8 * i, 8);
    EXPECT_EQ(v, double(i + 1)) << "slot " << i;
  }
  CMemFile in(file.data().data(), file.data().size());
  CArchive ar(&in, CArchive::load);
  CCamera back;
  back.Serialize(ar);
  EXPECT_TRUE(near(back.GetVUp(), AcGeVector3d(7, 8, 9)));
  EXPECT_TRUE(near(back.GetVForward(), AcGeVector3d(4, 5, 6)));
}
