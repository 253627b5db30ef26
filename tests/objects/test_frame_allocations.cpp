// A steady frame allocates nothing in the engine: counted through the global
// allocation functions, which this test program replaces. Sanitizer builds
// keep their own allocator (the GL driver's JIT frees across the two), so
// the count is taken in ordinary builds only.
#ifndef __SANITIZE_ADDRESS__
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "ObjectHelpers.h"
#include "scene/SceneFixture.h"

namespace {
std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};

// The aligned form is replaced too, so that each allocation (the GL
// driver's included) is freed by the matching function; the array and sized
// forms forward to these by default.
void* counted(std::size_t n, std::size_t align) {
  if (g_counting) ++g_allocations;
  void* p = nullptr;
  if (align <= alignof(std::max_align_t)) {
    p = std::malloc(n ? n : 1);
  } else if (posix_memalign(&p, align, n ? n : 1) != 0) {
    p = nullptr;
  }
  if (!p) throw std::bad_alloc();
  return p;
}
}  // namespace

void* operator new(std::size_t n) { return counted(n, 0); }
void* operator new(std::size_t n, std::align_val_t a) { return counted(n, std::size_t(a)); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::align_val_t) noexcept { std::free(p); }

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
    frame();  // first frames compile lists and size the buffers
    frame();
    g_allocations = 0;
    g_counting = true;
    for (int i = 0; i < 3; ++i) frame();
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

#endif  // __SANITIZE_ADDRESS__
