// A steady frame allocates nothing in the engine: counted through the global
// allocation functions, which this test program replaces.
#include <atomic>
#include <cstdlib>
#include <new>

#include "ObjectHelpers.h"
#include "scene/SceneFixture.h"

namespace {
std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};
}  // namespace

// Every array and sized form is replaced too, so that each allocation is
// freed by the matching function.
void* operator new(std::size_t n) {
  if (g_counting) ++g_allocations;
  if (void* p = std::malloc(n ? n : 1)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t n) { return operator new(n); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

class FrameAllocations : public SceneFixture {
 protected:
  void SetUp() override {
    open(160, 120);
    for (int i = 0; i < 40; ++i) {
      CRenderObject* o = rectObject(i, 0, i + 0.8, 3, 0.1 * i, CColor(200, 100, 50, 255));
      o->addShape(faceTriangle());
      o->endAddShape();
      scene.getObjSetMgr()->addObject(o);
    }
    scene.getObjSetMgr()->freshBox();
    scene.zoomE();
  }
  long framesAllocate() {
    scene.render();  // first frames compile lists and size the buffers
    scene.finish();
    scene.render();
    scene.finish();
    g_allocations = 0;
    g_counting = true;
    for (int i = 0; i < 3; ++i) {
      scene.render();
      scene.finish();
    }
    g_counting = false;
    return g_allocations;
  }
};

TEST_F(FrameAllocations, OpaqueBlendedAndPartlyTransparentFrames) {
  EXPECT_EQ(framesAllocate(), 0);
  scene.setTransparent(128);
  EXPECT_EQ(framesAllocate(), 0);
  scene.SetPartTrans(true);
  scene.SetPartTransIds({3, 9, 27, 500});
  EXPECT_EQ(framesAllocate(), 0);
}

}  // namespace
