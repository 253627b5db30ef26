// Build, frame and pick timings of the reference building ("tower"), off
// screen on Mesa, with the frame limit measured in the same context.
//   kxbench [--sizes=M,XL,text] [--width=1280 --height=720] [--poster=0] [google benchmark flags]
// The poster (a tiled 20000 x 14000 PNG) is rendered once for tower-M.
#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <malloc.h>
#include <unistd.h>

#include "BenchTable.h"
#include "LimitDraw.h"
#include "kxrender/CSceneMgr.h"
#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CRenderObject.h"
#include "kxrender/KxTextLayout.h"
#include "kxrender/KxTowerModel.h"
#include "kxrender/KxWindow.h"

namespace {

using Clock = std::chrono::steady_clock;

double threadCpuMs() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

double msSince(Clock::time_point t0) { return std::chrono::duration<double, std::milli>(Clock::now() - t0).count(); }

double peakMemoryMB() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind("VmHWM:", 0) == 0) return std::atof(line.c_str() + 6) / 1024.0;
  return 0.0;
}

struct Model {
  HWND window = nullptr;
  std::unique_ptr<CSceneMgr> scene;
  std::unique_ptr<LimitDraw> limit;
  KxModelCounts counts{};
  size_t limitTriangles = 0;
  double range = 0.0;
  // Peak resident memory before the limit's arrays were made, and that of
  // the process before the peak was reset once they were freed.
  double enginePeak = 0.0;
  double processPeak = 0.0;
  double defaultPeak = 0.0;  // before the first row that draws another way

  void frame() {
    scene->render();
    scene->finish();
  }
  void limitFrame(bool list) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    if (list)
      limit->drawList();
    else
      limit->drawArray();
    scene->finish();
  }
  ~Model() {
    limit.reset();
    if (scene && scene->getHRC()) scene->glRelease();
    scene.reset();
    if (window) KxDestroyWindow(window);
  }
};

std::unique_ptr<Model> g_model;
BenchTable* g_table = nullptr;
int g_width = 1280, g_height = 720;

// The i-th of the 200 fixed pick pixels: a 20 x 10 grid over the view.
CPoint pickPixel(int i) {
  return CPoint(32 + (i % 20) * (g_width - 64) / 19, 32 + (i / 20) * (g_height - 64) / 9);
}

// A tenth of the view's area, centred; dragged left to right for a window
// selection, right to left for a crossing one.
void tenthOfTheView(bool window, CPoint& p1, CPoint& p2) {
  const int w = static_cast<int>(g_width * std::sqrt(0.1)), h = static_cast<int>(g_height * std::sqrt(0.1));
  const CPoint a((g_width - w) / 2, (g_height - h) / 2), b(a.x + w, a.y + h);
  p1 = window ? a : b;
  p2 = window ? b : a;
}

// Looks along (-1, -1, -0.8) with z up on screen, then fits the model.
void viewModel(CSceneMgr& scene) {
  const AcGeVector3d forward = AcGeVector3d(-1, -1, -0.8).normal();
  const AcGeVector3d side = forward.crossProduct(AcGeVector3d(0, 0, 1)).normal();
  const AcGeVector3d up = side.crossProduct(forward).normal();
  scene.camera()->ReSet(AcGeVector3d(0, 0, 0), up, forward);
  scene.zoomE();
}

void resetPeakMemory() { std::ofstream("/proc/self/clear_refs") << "5"; }

// The range at which a tenth of the objects have their centre on screen,
// the view centred as it is: screen offsets from the centre scale with the
// range in an orthographic view, so each object's offset at the full view
// gives the range it enters at. (A tenth of the view holds far more than a
// tenth of a tall model seen in a wide window.)
double tenthOfTheModelRange(CSceneMgr& scene, double range) {
  scene.setRange(range);
  g_model->frame();  // the matrices world2screen reads
  std::vector<double> enter;
  for (const auto& kv : scene.getObjSetMgr()->objects()) {
    const CPoint p = scene.world2screen(kv.second->ptCenter());
    enter.push_back(std::max(std::abs(2.0 * p.x - g_width) / g_width, std::abs(2.0 * p.y - g_height) / g_height));
  }
  if (enter.empty()) return range;
  const size_t tenth = enter.size() / 10;
  std::nth_element(enter.begin(), enter.begin() + tenth, enter.end());
  return range * std::max(enter[tenth], 1e-3);
}

template <class Fn>
void timed(benchmark::State& state, Fn fn) {
  for (auto _ : state) {
    const Clock::time_point t0 = Clock::now();
    fn();
    state.SetIterationTime(msSince(t0) / 1000.0);
  }
}

// The text workload: 10,000 room labels of six characters ("房间" and four
// digits) in a system font, one object each, on a 100 x 100 grid.
KxModelCounts buildLabels(CObjectSetMgr& set) {
  KxModelCounts c;
  for (int i = 0; i < 10000; ++i) {
    char label[32];
    std::snprintf(label, sizeof label, "\xE6\x88\xBF\xE9\x97\xB4%04d", i);
    CRenderObject* o = new CRenderObject;
    KxAddTextLine(*o, label, "宋体", 0.5, AcGePoint3d(4.0 * (i % 100), 2.0 * (i / 100), 0.0), AcGeVector3d(1, 0, 0),
                  AcGeVector3d(0, 1, 0), CColor(70, 70, 80, 255));
    o->endAddShape();
    set.addObject(o);
    ++c.objects;
  }
  return c;
}

// Size "text" times the text workload's build and frames only.
void registerSize(const std::string& size, int storeys, int bays) {
  const bool labels = size == "text";
  auto reg = [&](const std::string& metric, int repetitions, auto fn) {
    benchmark::RegisterBenchmark((metric + "/" + size).c_str(), fn)
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->ReportAggregatesOnly(repetitions > 1)
        ->Unit(benchmark::kMillisecond);
  };
  reg(BenchTable::kBuild, 1, [storeys, bays, labels](benchmark::State& state) {
    for (auto _ : state) {
      g_model.reset(new Model);
      g_model->window = KxCreateOffscreenWindow(g_width, g_height);
      g_model->scene.reset(new CSceneMgr);
      if (!g_model->window || !g_model->scene->initializeRender(g_model->window, false, false)) {
        state.SkipWithError("no off-screen GL context");
        return;
      }
      const Clock::time_point t0 = Clock::now();
      g_model->counts = labels ? buildLabels(*g_model->scene->getObjSetMgr())
                               : KxBuildTower(*g_model->scene->getObjSetMgr(), storeys, bays);
      state.SetIterationTime(msSince(t0) / 1000.0);
      viewModel(*g_model->scene);
      g_model->range = g_model->scene->dRange();
    }
  });
  reg(BenchTable::kFirstFrame, 1, [](benchmark::State& state) { timed(state, [] { g_model->frame(); }); });
  reg(BenchTable::kSteadyFrame, 30, [](benchmark::State& state) { timed(state, [] { g_model->frame(); }); });
  if (labels) return;
  reg(BenchTable::kSteadyFrameOff, 30, [](benchmark::State& state) {
    if (g_model->defaultPeak == 0.0) g_model->defaultPeak = peakMemoryMB();
    g_model->scene->setRetainedDraw(false);
    g_model->frame();
    timed(state, [] { g_model->frame(); });
    g_model->scene->setRetainedDraw(true);
    g_model->frame();
  });
  reg(BenchTable::kRecompileFrame, 10, [](benchmark::State& state) {
    // Modes 2 and 4 draw alike but key the lists apart: every frame drops
    // and compiles (and executes) every object's list.
    static int mode = 2;
    timed(state, [] {
      mode = 6 - mode;
      g_model->scene->setRenderMode(CRenderObject::RenderMode(mode));
      g_model->frame();
    });
  });
  reg(BenchTable::kAccelerateFrame, 30, [](benchmark::State& state) {
    g_model->scene->setAccelerate(true);
    g_model->frame();  // settle before timing
    timed(state, [] { g_model->frame(); });
    g_model->scene->setAccelerate(false);
  });
  reg(BenchTable::kZoomedFrame, 30, [](benchmark::State& state) {
    // A tenth of the view's area: the range is the half extent of a side.
    g_model->scene->setRange(g_model->range * std::sqrt(0.1));
    g_model->frame();
    timed(state, [] { g_model->frame(); });
    g_model->scene->setRange(g_model->range);
    g_model->frame();
  });
  reg(BenchTable::kZoomedModelFrame, 30, [](benchmark::State& state) {
    g_model->scene->setRange(tenthOfTheModelRange(*g_model->scene, g_model->range));
    g_model->frame();
    timed(state, [] { g_model->frame(); });
    g_model->scene->setRange(g_model->range);
    g_model->frame();
  });
  reg(BenchTable::kPointPick, 200, [](benchmark::State& state) {
    // The candidates under a pick aperture around one of 200 fixed pixels.
    static int next = 0;
    CSceneMgr& scene = *g_model->scene;
    const int i = next++ % 200, px = 32 + (i % 20) * (g_width - 64) / 19, py = 32 + (i / 20) * (g_height - 64) / 9;
    const int a = scene.getPickPixelPrecision();
    std::vector<std::vector<double>> planes;
    std::vector<CRenderObject*> found;
    timed(state, [&] {
      scene.getFrustumPlaneFrom2Pt(CPoint(px - a, py - a), CPoint(px + a, py + a), planes);
      scene.getObjSetMgr()->getObjsInFrustum(found, &planes);
    });
    benchmark::DoNotOptimize(found.data());
  });
  reg(BenchTable::kRectPick, 30, [](benchmark::State& state) {
    CSceneMgr& scene = *g_model->scene;
    const int w = static_cast<int>(g_width * std::sqrt(0.1)), h = static_cast<int>(g_height * std::sqrt(0.1));
    const CPoint p1((g_width - w) / 2, (g_height - h) / 2), p2(p1.x + w, p1.y + h);
    std::vector<std::vector<double>> planes;
    std::vector<CRenderObject*> found;
    timed(state, [&] {
      scene.getFrustumPlaneFrom2Pt(p1, p2, planes);
      scene.getObjSetMgr()->getObjsInFrustum(found, &planes);
    });
    benchmark::DoNotOptimize(found.data());
  });
  reg(BenchTable::kPointPickFull, 200, [size](benchmark::State& state) {
    // The whole pick at each of the 200 pixels in turn; the slowest one is
    // recorded beside the median.
    static int next = 0;
    static double worst = 0.0;
    CSceneMgr& scene = *g_model->scene;
    const int i = next++ % 200;
    if (i == 0) worst = 0.0;
    unsigned id = 0, shape = 0;
    for (auto _ : state) {
      const double cpu0 = threadCpuMs();
      const Clock::time_point t0 = Clock::now();
      scene.pick(pickPixel(i), id, shape, 0, nullptr, true);
      state.SetIterationTime(msSince(t0) / 1000.0);
      // Processor time: on a shared machine the wall clock of a single
      // pick mostly measures when the scheduler let it run.
      worst = std::max(worst, threadCpuMs() - cpu0);
    }
    benchmark::DoNotOptimize(id);
    if (i == 199 && g_table) g_table->setTime(size, BenchTable::kPointPickWorst, worst);
  });
  reg(BenchTable::kSnapFull, 200, [size](benchmark::State& state) {
    // Every kind on at each of the 200 pixels, with snap data derived from
    // the outlines (outside the timing), the pick aperture and the pick
    // tolerance.
    static int next = 0;
    static double worst = 0.0;
    CSceneMgr& scene = *g_model->scene;
    const int i = next++ % 200;
    if (i == 0) {
      worst = 0.0;
      for (const auto& kv : scene.getObjSetMgr()->objects()) {
        if (!kv.second->getSnapPoints().empty() || !kv.second->getSnapPointsExa().empty()) continue;
        kv.second->AutoCountCatchPoint();
        kv.second->AutoCountCatchLine();
      }
      scene.setSnapMode(CRenderObject::kSnapAll);
      // The snap index is built at its first query after so many changes:
      // one untimed pass.
      AcGePoint3d p;
      CRenderObject::SnapMode kind;
      for (int j = 0; j < 200; ++j)
        scene.snap(pickPixel(j), scene.getPickPixelPrecision(), scene.getPickPrecision(), p, kind);
    }
    AcGePoint3d p;
    CRenderObject::SnapMode kind = CRenderObject::kSnapNone;
    for (auto _ : state) {
      const double cpu0 = threadCpuMs();
      const Clock::time_point t0 = Clock::now();
      scene.snap(pickPixel(i), scene.getPickPixelPrecision(), scene.getPickPrecision(), p, kind);
      state.SetIterationTime(msSince(t0) / 1000.0);
      worst = std::max(worst, threadCpuMs() - cpu0);
    }
    benchmark::DoNotOptimize(kind);
    if (i == 199 && g_table) g_table->setTime(size, BenchTable::kSnapWorst, worst);
  });
  for (const bool window : {true, false}) {
    reg(window ? BenchTable::kRectWindow : BenchTable::kRectCrossing, 30, [window](benchmark::State& state) {
      CPoint p1, p2;
      tenthOfTheView(window, p1, p2);
      std::vector<unsigned> ids;
      timed(state, [&] { g_model->scene->pick(p1, p2, ids); });
      benchmark::DoNotOptimize(ids.data());
    });
  }
  reg(BenchTable::kLimitArray, 30, [](benchmark::State& state) {
    if (!g_model->limit) {
      g_model->enginePeak = peakMemoryMB();
      g_model->limit.reset(new LimitDraw(*g_model->scene->getObjSetMgr()));
      g_model->limitTriangles = g_model->limit->triangles();
    }
    g_model->frame();  // leaves the view's matrices in place
    timed(state, [] { g_model->limitFrame(false); });
  });
  reg(BenchTable::kLimitList, 30, [](benchmark::State& state) {
    g_model->frame();
    g_model->limitFrame(true);  // compile outside the timing
    timed(state, [] { g_model->limitFrame(true); });
  });
  // Last, so that no other figure runs with shadows: every object casts,
  // under a sun low in the south-west. The first frame builds the volumes.
  reg(BenchTable::kShadowFirstFrame, 1, [](benchmark::State& state) {
    // The rest is the engine's again: the limit goes, and the peak restarts.
    if (g_model->limit) {
      g_model->limit.reset();
      g_model->processPeak = peakMemoryMB();
      resetPeakMemory();
    }
    const float sun[4] = {-1.0f, -0.7f, 0.6f, 0.0f};
    g_model->scene->setLightpos(sun);
    g_model->scene->setShadow(true);
    for (const auto& kv : g_model->scene->getObjSetMgr()->objects()) kv.second->setGenerateShadow(true);
    timed(state, [] { g_model->frame(); });
  });
  reg(BenchTable::kShadowSteadyFrame, 30, [](benchmark::State& state) { timed(state, [] { g_model->frame(); }); });
}

// One 20000 x 14000 picture written to a temporary PNG: its time, and the
// peak resident memory while it is made (the peak is reset first).
void posterRow(BenchTable& table, const std::string& size) {
  resetPeakMemory();
  const std::string path = "/tmp/kxbench_poster_" + std::to_string(getpid()) + ".png";
  const auto t0 = Clock::now();
  const bool ok = g_model->scene->renderToImageTiled(20000, 14000, path.c_str());
  const double ms = msSince(t0);
  std::remove(path.c_str());
  if (!ok) {
    std::fprintf(stderr, "kxbench: the poster could not be written\n");
    return;
  }
  table.setTime(size, BenchTable::kPoster, ms);
  table.setPosterMemory(size, peakMemoryMB());
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> sizes = {"M", "XL", "text"};
  std::vector<char*> rest;
  bool poster = true;
  for (int i = 0; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--poster=0")) {
      poster = false;
    } else if (!std::strncmp(argv[i], "--sizes=", 8)) {
      sizes.clear();
      std::string list = argv[i] + 8;
      for (size_t at = 0; at <= list.size();) {
        const size_t comma = std::min(list.find(',', at), list.size());
        if (comma > at) sizes.push_back(list.substr(at, comma - at));
        at = comma + 1;
      }
    } else if (!std::strncmp(argv[i], "--width=", 8)) {
      g_width = std::atoi(argv[i] + 8);
    } else if (!std::strncmp(argv[i], "--height=", 9)) {
      g_height = std::atoi(argv[i] + 9);
    } else {
      rest.push_back(argv[i]);
    }
  }
  int restCount = static_cast<int>(rest.size());
  benchmark::Initialize(&restCount, rest.data());

  BenchTable table;
  g_table = &table;
  for (const std::string& size : sizes) {
    int storeys = 0, bays = 0;
    if (size == "M") {
      storeys = kTowerMStoreys, bays = kTowerMBays;
    } else if (size == "XL") {
      storeys = kTowerXLStoreys, bays = kTowerXLBays;
    } else if (size != "text" && std::sscanf(size.c_str(), "%dx%d", &storeys, &bays) != 2) {
      std::fprintf(stderr, "kxbench: sizes are M, XL, text or STOREYSxBAYS, not %s\n", size.c_str());
      return 2;
    }
    // Each size starts as a fresh process would: what the size before freed
    // goes back to the system, so the build faults in its own memory and the
    // peak is this size's alone.
    malloc_trim(0);
    resetPeakMemory();
    registerSize(size, storeys, bays);
    double peak = 0.0;
    BenchTable::Collector collector(table, size);
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::ClearRegisteredBenchmarks();
    if (g_model) {
      table.setCounts(size, g_model->counts.objects, g_model->counts.polygons, g_model->counts.holes,
                      g_model->counts.triangles, g_model->counts.vertices, g_model->limitTriangles);
      // Before the poster resets the peak.
      peak = std::max(g_model->processPeak, peakMemoryMB());
      // Without a limit row the whole run was the engine's.
      const double engine = g_model->enginePeak > 0.0 ? g_model->enginePeak : peak;
      table.setEngineMemory(size, engine);
      if (g_model->defaultPeak > 0.0) table.setDefaultMemory(size, g_model->defaultPeak);
      if (g_model->processPeak > 0.0) table.setShadowMemory(size, peakMemoryMB());
      if (poster && size == "M") posterRow(table, size);
    }
    g_model.reset();
    table.setPeakMemory(size, peak > 0.0 ? peak : peakMemoryMB());
  }
  table.print(stdout);
  benchmark::Shutdown();
  return 0;
}
