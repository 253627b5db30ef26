// Camera moves and turns, the view it sets and its archive form.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "kxrender/CArchive.h"
#include "kxrender/CCamera.h"
#include "kxrender/CMemFile.h"
#include "support/GLRecorder.h"

namespace {
bool near(const AcGeVector3d& a, const AcGeVector3d& b) { return (a - b).length() < 1e-12; }
}  // namespace

TEST(CCamera, MovesAndTurns) {
  const AcGeVector3d o(0, 0, 0), x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
  const struct {
    const char* what;
    AcGeVector3d location, up, forward;  // before
    std::function<void(CCamera&)> op;
    AcGeVector3d wantLocation, wantUp, wantForward;
  } rows[] = {
      {"right by up x forward, unnormalised", o, 2 * y, -z, [](CCamera& c) { c.MoveCameraRight(1); }, -2 * x, 2 * y, -z},
      {"local", o, y, -z, [](CCamera& c) { c.TranslateCaremaLocal(AcGeVector3d(1, 2, 3)); }, {-1, 2, -3}, y, -z},
      {"world", o, y, -z, [](CCamera& c) { c.TranslateCaremaWorld(AcGeVector3d(1, 1, 1)); }, {1, 1, 1}, y, -z},
      {"world z, whatever the pivot's z", {10, 0, 7}, z, -x,
       [](CCamera& c) { c.RotateCaremaRealWorldZ(M_PI / 2, AcGePoint3d(0, 0, 100)); }, {0, 10, 7}, z, -y},
      {"orbit about the side (-1, 0, 0)", 10 * z, y, -z, [](CCamera& c) { c.RotateCaremaRight(M_PI / 2, {}); }, 10 * y, -z, -y},
      {"turn about the eye: directions only", {1, 2, 3}, y, -z,
       [](CCamera& c) { c.RotateCaremaUp(M_PI / 2, AcGePoint3d(1, 2, 3)); }, {1, 2, 3}, y, -x},
      {"roll, right-handed about -z", o, y, -z, [](CCamera& c) { c.RotateCaremaFront(M_PI / 2, {}); }, o, x, -z},
      {"slide along the line of sight", {3, 4, 50}, y, -z, [](CCamera& c) { c.OrthoNormal({100, 100, 5}); }, {3, 4, 5}, y, -z},
      {"no line of sight: stays", {1, 1, 1}, y, o, [](CCamera& c) { c.OrthoNormal({9, 9, 9}); }, {1, 1, 1}, y, o}};
  for (const auto& r : rows) {
    CCamera cam;
    cam.ReSet(r.location, r.up, r.forward);
    r.op(cam);
    EXPECT_TRUE(near(cam.GetVLocation(), r.wantLocation) && near(cam.GetVUp(), r.wantUp) &&
                near(cam.GetVForward(), r.wantForward))
        << r.what;
  }
  CCamera reset;
  GLRecorder rec(false);
  reset.look();
  ASSERT_EQ(rec.calls().size(), 1u);
  EXPECT_EQ(rec.calls()[0].text(), "gluLookAt(0, 0, 0, 0, 0, -1, 0, 1, 0)");
}

TEST(CCamera, ArchiveHoldsNineDoublesForwardBeforeUp) {
  CCamera cam, back;
  cam.ReSet(AcGeVector3d(1, 2, 3), AcGeVector3d(7, 8, 9), AcGeVector3d(4, 5, 6));
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    cam.Serialize(ar);
  }
  ASSERT_EQ(file.data().size(), 72u);
  double v[9];
  std::memcpy(v, file.data().data(), sizeof v);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(v[i], double(i + 1)) << "slot " << i;
  CMemFile in(file.data().data(), file.data().size());
  CArchive ar(&in, CArchive::load);
  back.Serialize(ar);
  EXPECT_TRUE(near(back.GetVUp(), AcGeVector3d(7, 8, 9)) && near(back.GetVForward(), AcGeVector3d(4, 5, 6)));
}
