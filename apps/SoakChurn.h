#pragma once
// A scene under churn, frame after frame: objects recoloured, hit,
// highlighted, moved, deleted and added again as copies, static objects
// replaced, the view turning and zooming. Shared by the kxsoak program and
// the short soak in the tests, so both measure the same thing. Uses only the
// exported interface and GL queries.
#include <epoxy/gl.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "kxrender/CSceneMgr.h"
#include "kxrender/KxSceneFile.h"
#include "kxrender/KxTowerModel.h"

struct KxSoakFigures {
  size_t objects = 0;
  size_t statics = 0;
  size_t listsOwned = 0;  // display lists the scene's objects hold
  size_t listsLive = 0;   // display lists the context has
  size_t buffersOwned = 0;    // buffer objects of groups of neighbouring objects
  size_t buffersLive = 0;     // buffer objects the context has
  size_t buffersPending = 0;  // buffer objects queued for deletion
  size_t queued = 0;      // lists waiting in the deletion queue before the last frame drew
  size_t pending = 0;     // lists the last frame released: alive until the next frame deletes them
  long rssKiB = 0;
};

class KxSoakChurn {
 public:
  // Builds the tower into a scene bound to a window.
  KxSoakChurn(CSceneMgr& scene, int storeys, int bays, unsigned seed = 1) : m_scene(scene), m_rng(seed) {
    KxBuildTower(set(), storeys, bays);
    scene.zoomE();
    // Close enough that windows are drawn (small ones are skipped), so
    // their face meshes compile display lists.
    scene.scaleRange(0.2);
    AcGePoint3d lo, hi;
    set().getBox(lo, hi);
    m_centre = lo + (hi - lo) / 2;
    for (int i = 0; i < 4; ++i) addStatic();
  }

  // One frame: a few edits, one object replaced by a copy of itself, now and
  // then a static object replaced, the view moved; then draw and present.
  void frame(long n) {
    for (int k = 0; k < 4; ++k) {
      CRenderObject* o = set().getObj(randomId());
      if (!o) continue;
      const unsigned id = o->getId();
      switch (pick(4)) {
        case 0: o->setShapeColor(unsigned(pick(o->numShp() + 1)), CColor(pick(256), pick(256), pick(256), 255)); break;
        case 1: m_scene.setHit(id, unsigned(pick(o->numShp() + 1)), pick(2) == 0); break;
        case 2: m_scene.setHighLight(id, unsigned(pick(o->numShp() + 1)), pick(2) == 0); break;
        default: {
          // Out and back over two frames keeps the model in place.
          const double d = (n % 2 ? -0.5 : 0.5);
          o->move(AcGeVector3d(d, 0, 0));
          set().updateSearchTree(o);
        }
      }
    }
    if (CRenderObject* o = set().getObj(randomId())) {
      CRenderObject* copy = new CRenderObject(*o);
      set().delObject(o->getId());
      set().addObject(copy);
    }
    if (n % 50 == 0) {
      const std::vector<CStaticObject*>& s = set().staticObjects();
      if (!s.empty()) set().delStaticObject(s.front()->getRenderList());
      addStatic();
    }
    m_scene.camera()->RotateCaremaRealWorldZ(0.01, m_centre);
    m_scene.scaleRange(n % 200 < 100 ? 1.002 : 1 / 1.002);
    m_queued = m_scene.removedDispLists().size();
    m_scene.render();
    m_scene.finish();
  }

  KxSoakFigures figures() {
    KxSoakFigures f;
    f.objects = set().numObjs();
    f.statics = set().staticObjects().size();
    f.queued = m_queued;
    f.pending = m_scene.removedDispLists().size();
    std::set<unsigned> owned;
    for (const auto& kv : set().objects()) {
      if (kv.second->getRetainedList()) owned.insert(kv.second->getRetainedList());
      for (const CRenderShape& s : kv.second->getShps())
        if (s.getFaceDisplayList()) owned.insert(s.getFaceDisplayList());
    }
    for (const CStaticObject* s : set().staticObjects()) owned.insert(s->getRenderList());
    f.listsOwned = owned.size();
    const std::vector<unsigned> buffers = set().retainedGroupBuffers();
    f.buffersOwned = buffers.size();
    f.buffersPending = m_scene.removedBuffers().size();
    // Buffer names are not reused: every name handed out lies below the
    // highest one held or queued.
    GLuint highest = 0;
    for (unsigned b : buffers) highest = std::max(highest, GLuint(b));
    for (unsigned b : m_scene.removedBuffers()) highest = std::max(highest, GLuint(b));
    // Names are handed out from the lowest free one, so live lists lie
    // below a bound of a few times those in use.
    const GLuint bound = GLuint(4 * (owned.empty() ? 0 : *owned.rbegin()) + 4096);
    for (GLuint id = 1; id < bound; ++id)
      if (glIsList(id)) ++f.listsLive;
    for (GLuint id = 1; id <= highest + 4096; ++id)
      if (glIsBuffer(id)) ++f.buffersLive;
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
      if (line.rfind("VmRSS:", 0) == 0) f.rssKiB = std::stol(line.substr(6));
    return f;
  }

 private:
  CObjectSetMgr& set() { return *m_scene.getObjSetMgr(); }
  int pick(unsigned n) { return int(std::uniform_int_distribution<unsigned>(0, n ? n - 1 : 0)(m_rng)); }
  unsigned randomId() {
    const auto& objects = set().objects();
    if (objects.empty()) return 0;
    // A random key at or above a random point of the id range.
    const unsigned lo = objects.begin()->first, hi = objects.rbegin()->first;
    const auto it = objects.lower_bound(std::uniform_int_distribution<unsigned>(lo, hi)(m_rng));
    return it == objects.end() ? lo : it->first;
  }
  void addStatic() {
    KxStaticRecord rec;
    KxStaticPrimitive p;
    p.type = CRenderSystem::kTriangles;
    const double x = pick(40);
    p.points = {{x, 0, 0}, {x + 1, 0, 0}, {x, 1, 0}};
    p.colors = {CColor(0, 255, 0, 255)};
    rec.primitives.push_back(p);
    set().addStaticObject(KxBuildStaticObject(rec));
  }

  CSceneMgr& m_scene;
  std::mt19937 m_rng;
  AcGePoint3d m_centre;
  size_t m_queued = 0;
};
