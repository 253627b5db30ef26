// A short soak: 2,000 frames of a small tower under churn (edits, deletes,
// re-adds, static objects replaced, the view moving) leak no display list,
// keep the deletion queue bounded and keep the object count.
#include <gtest/gtest.h>

#include <algorithm>

#include "SceneFixture.h"
#include "apps/SoakChurn.h"

class Soak : public SceneFixture {};

TEST_F(Soak, TwoThousandFramesLeakNoDisplayList) {
  open(96, 72);
  KxSoakChurn churn(scene, 2, 2);
  const size_t objects = scene.getObjSetMgr()->numObjs();
  size_t mostLists = 0;
  for (long n = 1; n <= 2000; ++n) {
    churn.frame(n);
    if (n % 250 != 0) continue;
    const KxSoakFigures f = churn.figures();
    SCOPED_TRACE(n);
    EXPECT_EQ(f.objects, objects);
    EXPECT_EQ(f.statics, 4u);
    mostLists = std::max(mostLists, f.listsOwned);
    EXPECT_EQ(f.listsLive, f.listsOwned + f.pending);
    EXPECT_EQ(f.buffersLive, f.buffersOwned + f.buffersPending);
    EXPECT_LE(f.queued, 16u);  // one replaced object's lists a frame at most
  }
  EXPECT_GT(mostLists, 4u);  // window face meshes were drawn, not only the static objects
}
