// Renders the built-in scene off-screen and writes the picture as a PNG, at
// any size: the picture is drawn in tiles, without a window of its size.
//   kxdemo [--out FILE] [--size WIDTHxHEIGHT] [--tower S B | --tower M | --tower XL] [--pick X,Y] [--shadow]
//          [SCENE.json | MODEL]
// --shadow adds a ground plane and casts every object's shadow under a sun
// low in the south-west.
// The model is the reference tower (4 storeys, 3 bays unless --tower says
// otherwise), the scene file (.json) or the model file (IFC, OBJ, glTF,
// STL, PLY, 3DS, DXF) when one is named. The pixel at the centre
// of the view (or X,Y) is picked: what it hits is printed and highlighted.
// Then, with every snap kind on, the cursor is set a few pixels off a wall
// corner in view; the snap found there is printed.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "kxrender/CSceneMgr.h"
#include "kxrender/KxImage.h"
#include "kxrender/KxModelImport.h"
#include "kxrender/KxSceneFile.h"
#include "kxrender/KxTowerModel.h"
#include "kxrender/KxWindow.h"

namespace {

struct ModelChoice {
  int storeys = 4;
  int bays = 3;
  std::string sceneFile;
};

// "--tower M", "--tower XL" or "--tower S B"; advances i past what it used.
bool parseTower(int argc, char** argv, int& i, ModelChoice& m) {
  if (i + 1 >= argc) return false;
  const std::string size = argv[i + 1];
  if (size == "M" || size == "XL") {
    m.storeys = size == "M" ? kTowerMStoreys : kTowerXLStoreys;
    m.bays = size == "M" ? kTowerMBays : kTowerXLBays;
    i += 1;
    return true;
  }
  char* end = nullptr;
  if (i + 2 >= argc) return false;
  const long s = std::strtol(argv[i + 1], &end, 10);
  if (*end) return false;
  const long b = std::strtol(argv[i + 2], &end, 10);
  if (*end || s < 1 || s > kTowerMaxStoreys || b < kTowerMinBays || b > kTowerMaxBays) return false;
  m.storeys = int(s);
  m.bays = int(b);
  i += 2;
  return true;
}

void printCounts(const std::string& what, const KxModelCounts& c, double ms) {
  std::printf("kxdemo: %s: %zu objects, %zu polygons, %zu holes, %zu triangles, %zu vertices (%.0f ms)\n", what.c_str(),
              c.objects, c.polygons, c.holes, c.triangles, c.vertices, ms);
}

// Shows the selection feedback on the built-in model: the roof
// highlighted, and near the top, on the sides in view, a few wall panels
// hit (dashed outlines) and two windows highlighted and hit.
void markSelection(CObjectSetMgr& set) {
  const auto& objects = set.objects();
  if (objects.empty()) return;
  objects.rbegin()->second->highLight(true);
  int walls = 0, windows = 0;
  for (auto it = std::next(objects.rbegin()); it != objects.rend() && (walls < 3 || windows < 2); ++it) {
    CRenderObject* o = it->second;
    if (!o || o->numShp() == 0) continue;
    const CRenderShape& first = o->getShape(0);
    // Only faces turned towards the default view (+x and +y sides).
    if (first.getUcs().x + first.getUcs().y < 0.5) continue;
    if (first.getShpType() == CRenderShape::kPgon && !first.getHoles().empty() && first.getUcs().z == 0.0 &&
        walls < 3) {
      o->hit(true);
      ++walls;
    } else if (first.getShpType() == CRenderShape::kFace && windows < 2) {
      o->highLight(true);
      o->hit(true);
      ++windows;
    }
  }
}

// Fills the scene and points the camera at it: down along (-1, -1, -0.8)
// with the whole model in view, unless a scene file brings its own view.
bool loadModel(CSceneMgr& scene, const ModelChoice& m) {
  const auto start = std::chrono::steady_clock::now();
  auto elapsed = [&] {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  };
  bool hasView = false;
  const std::string ext = std::filesystem::path(m.sceneFile).extension().string();
  if (!m.sceneFile.empty() && ext != ".json" && ext != ".JSON") {
    // A model file (IFC, OBJ, glTF, STL...): imported with a progress bar.
    KxImportOptions options;
    options.progress = [](double f, const char* phase) {
      std::fprintf(stderr, "\rkxdemo: %-8s %3d%%", phase, int(f * 100.0));
      return true;
    };
    options.textures = scene.getTextureMgrPtr();  // its context is current
    CString error;
    KxImportResult result;
    const bool ok = KxImportModel(m.sceneFile.c_str(), *scene.getObjSetMgr(), error, options, &result);
    for (const CString& w : result.warnings) std::fprintf(stderr, "kxdemo: warning: %s\n", w.GetString());
    std::fprintf(stderr, "\n");
    if (!ok) {
      std::fprintf(stderr, "kxdemo: %s\n", error.GetString());
      return false;
    }
    printCounts(m.sceneFile, KxCountModel(*scene.getObjSetMgr()), elapsed());
  } else if (!m.sceneFile.empty()) {
    CString error;
    KxSceneFileExtras extras;
    if (!KxReadSceneFile(m.sceneFile.c_str(), scene, error, &extras)) {
      std::fprintf(stderr, "kxdemo: %s\n", error.GetString());
      return false;
    }
    hasView = extras.hasView;
    printCounts(m.sceneFile, KxCountModel(*scene.getObjSetMgr()), elapsed());
  } else {
    // Room labels as real text ("房间" and the room number) in a system font.
    const KxModelCounts c = KxBuildTower(*scene.getObjSetMgr(), m.storeys, m.bays, "宋体");
    scene.getObjSetMgr()->freshBox();
    markSelection(*scene.getObjSetMgr());
    printCounts("tower S=" + std::to_string(m.storeys) + " B=" + std::to_string(m.bays), c, elapsed());
  }
  if (!hasView) {
    const AcGeVector3d forward = AcGeVector3d(-1.0, -1.0, -0.8).normal();
    const AcGeVector3d z(0.0, 0.0, 1.0);
    const AcGeVector3d up = (z - forward * z.dotProduct(forward)).normal();
    scene.camera()->ReSet(AcGeVector3d(0.0, 0.0, 0.0), up, forward);
    scene.zoomE();
  }
  return true;
}

// Picks the pixel, highlights the shape hit and says what it was.
void pickAndMark(CSceneMgr& scene, CPoint pt) {
  unsigned id = 0, shape = 0;
  if (!scene.pick(pt, id, shape, 0, nullptr, true)) {
    std::printf("kxdemo: pick at %ld,%ld: nothing\n", long(pt.x), long(pt.y));
    return;
  }
  scene.setHighLight(id, shape, true);
  // The scene answers the object and shape; the object gives the point.
  AcGePoint3d nearPt, farPt, hit;
  double distance = 0.0;
  unsigned again = 0;
  scene.getPointOfIntersectionThatEyeToNearFarFrustumPlane(pt, nearPt, farPt);
  scene.getObj(id)->intersectRay(nearPt, farPt, scene.getPickPrecision(), true, distance, hit, again);
  std::printf("kxdemo: pick at %ld,%ld: object %u, shape %u, point (%.3f, %.3f, %.3f)\n", long(pt.x), long(pt.y), id,
              shape, hit.x, hit.y, hit.z);
}

const char* kindName(CRenderObject::SnapMode k) {
  switch (k) {
    case CRenderObject::kSnapEndPoint:
      return "end point";
    case CRenderObject::kSnapMidPoint:
      return "mid point";
    case CRenderObject::kSnapCenter:
      return "centre";
    case CRenderObject::kSnapIntersection:
      return "intersection";
    case CRenderObject::kSnapPerpendicular:
      return "perpendicular";
    case CRenderObject::kSnapNearest:
      return "nearest";
    case CRenderObject::kSnapNode:
      return "node";
    case CRenderObject::kSnapGrip:
      return "grip";
    default:
      return "?";
  }
}

// A corner of an outer wall panel in view, with the cursor 3 px right of
// and 2 px below it; false when none is found.
bool wallCorner(CSceneMgr& scene, CPoint& cursor) {
  const auto& objects = scene.getObjSetMgr()->objects();
  int tries = 0;
  // From the top storey down: its corners are the least hidden.
  for (auto it = objects.rbegin(); it != objects.rend() && tries < 4000; ++it) {
    const CRenderObject& o = *it->second;
    if (o.numShp() == 0 || o.getShape(0).getShpType() != CRenderShape::kPgon) continue;
    const std::vector<AcGePoint3d>& pts = o.getShape(0).getPts();
    double zMin = 1e300, zMax = -1e300;
    for (const AcGePoint3d& p : pts) zMin = std::min(zMin, p.z), zMax = std::max(zMax, p.z);
    if (zMax - zMin < 1.0) continue;  // not standing: a slab or the roof
    for (const AcGePoint3d& p : pts) {
      const CPoint at = scene.world2screen(p);
      if (at.x < 20 || at.y < 20 || at.x >= scene.getViewWidth() - 20 || at.y >= scene.getViewHeight() - 20) continue;
      AcGePoint3d found;
      CRenderObject::SnapMode kind;
      ++tries;
      if (scene.snap(CPoint(at.x + 3, at.y + 2), 12, scene.getPickPrecision(), found, kind) &&
          kind == CRenderObject::kSnapEndPoint && found.isEqualTo(p)) {
        cursor = CPoint(at.x + 3, at.y + 2);
        return true;
      }
    }
  }
  return false;
}

// Snap data from the outlines, every kind on; the snap near a wall corner
// is printed. Returns the point and kind to mark.
bool snapNearWallCorner(CSceneMgr& scene, AcGePoint3d& point, CRenderObject::SnapMode& kind) {
  for (const auto& kv : scene.getObjSetMgr()->objects()) {
    kv.second->AutoCountCatchPoint();
    kv.second->AutoCountCatchLine();
  }
  scene.setSnapMode(CRenderObject::kSnapAll);
  CPoint cursor;
  if (!wallCorner(scene, cursor) || !scene.snap(cursor, 12, scene.getPickPrecision(), point, kind)) {
    std::printf("kxdemo: snap: no wall corner in view\n");
    return false;
  }
  std::printf("kxdemo: snap at %ld,%ld: %s (%.3f, %.3f, %.3f)\n", long(cursor.x), long(cursor.y), kindName(kind),
              point.x, point.y, point.z);
  return true;
}

// A ground plane around the model, just below it, and shadows on: every
// object casts under a sun low in the south-west (y is north).
void castShadows(CSceneMgr& scene) {
  CObjectSetMgr& set = *scene.getObjSetMgr();
  AcGePoint3d lo, hi;
  set.getBox(lo, hi);
  const double reach = 2.0 * std::max(hi.x - lo.x, hi.y - lo.y), z = lo.z - 0.05;
  CRenderObject* ground = new CRenderObject;
  CRenderShape plane;
  plane.set({{lo.x - reach, lo.y - reach, z}, {hi.x + reach, lo.y - reach, z}, {hi.x + reach, hi.y + reach, z},
             {lo.x - reach, hi.y + reach, z}},
            {}, CRenderShape::kPgon, CColor(120, 150, 100, 255), AcGeVector3d(0, 0, 1));
  ground->addShape(plane);
  ground->endAddShape();
  set.addObject(ground);
  set.freshBox();  // volumes reach as far as the set's box
  for (const auto& kv : set.objects()) kv.second->setGenerateShadow(true);
  const float sun[4] = {-1.0f, -1.0f, 0.7f, 0.0f};
  scene.setLightpos(sun);
  scene.setShadow(true);
  scene.zoomE();
}

// Reads the frame back into a PNG file.
bool writeFrame(HWND window, const std::string& out) {
  std::vector<uint8_t> pixels;
  int w = 0, h = 0;
  if (!KxReadWindowPixels(window, pixels, w, h)) {
    std::fprintf(stderr, "kxdemo: could not read the frame back\n");
    return false;
  }
  std::error_code ec;
  const std::filesystem::path parent = std::filesystem::path(out).parent_path();
  if (!parent.empty()) std::filesystem::create_directories(parent, ec);
  if (!KxWritePng(out, pixels, w, h)) {
    std::fprintf(stderr, "kxdemo: could not write %s\n", out.c_str());
    return false;
  }
  std::printf("kxdemo: %dx%d frame written to %s\n", w, h, out.c_str());
  return true;
}

// The room labels are inside the tower: a plan of the top storey with the
// roof (the last object) hidden, zoomed to its first room.
bool writeLabelPlan(CSceneMgr& scene, HWND window, int storeys, const std::string& out) {
  auto& objects = scene.getObjSetMgr()->objects();
  if (objects.empty()) return true;
  objects.rbegin()->second->setVisible(false);
  scene.camera()->ReSet(AcGeVector3d(0, 0, 0), AcGeVector3d(0, 1, 0), AcGeVector3d(0, 0, -1));
  scene.zoomE();
  const double z = 3.0 * (storeys - 1) + 1.5;
  scene.zoomW(AcGePoint3d(0.5, 0.5, z), AcGePoint3d(10.5, 4.5, z));
  scene.render();
  scene.finish();
  return writeFrame(window, out);
}

}  // namespace

int main(int argc, char** argv) {
  std::string out = "out/kxdemo.png";
  int width = 1280, height = 720;
  ModelChoice model;
  bool pickGiven = false, shadow = false;
  CPoint pickAt;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--out") && i + 1 < argc) {
      out = argv[++i];
    } else if (!std::strcmp(argv[i], "--size") && i + 1 < argc) {
      if (std::sscanf(argv[++i], "%dx%d", &width, &height) != 2 || width < 1 || height < 1 || width > 1000000 ||
          height > 1000000) {
        std::fprintf(stderr, "kxdemo: --size wants WIDTHxHEIGHT, each 1 to 1000000\n");
        return 2;
      }
    } else if (!std::strcmp(argv[i], "--tower")) {
      if (!parseTower(argc, argv, i, model)) {
        std::fprintf(stderr, "kxdemo: --tower wants M, XL, or STOREYS BAYS (1 to %d, %d to %d)\n", kTowerMaxStoreys,
                     kTowerMinBays, kTowerMaxBays);
        return 2;
      }
    } else if (!std::strcmp(argv[i], "--pick") && i + 1 < argc) {
      int x = 0, y = 0;
      if (std::sscanf(argv[++i], "%d,%d", &x, &y) != 2) {
        std::fprintf(stderr, "kxdemo: --pick wants X,Y in window pixels\n");
        return 2;
      }
      pickAt = CPoint(x, y);
      pickGiven = true;
    } else if (!std::strcmp(argv[i], "--shadow")) {
      shadow = true;
    } else if (argv[i][0] != '-' && model.sceneFile.empty()) {
      model.sceneFile = argv[i];
    } else {
      std::fprintf(stderr,
                   "usage: kxdemo [--out FILE] [--size WIDTHxHEIGHT] [--tower S B | --tower M | --tower XL] "
                   "[--pick X,Y] [--shadow] [SCENE.json | MODEL]\n");
      return 2;
    }
  }

  // The view is set up, picked and snapped in a window of at most 1280
  // pixels a side with the picture's shape; the picture itself is drawn
  // off-screen at its full size.
  const double shrink = std::min(1.0, 1280.0 / std::max(width, height));
  const int windowWidth = std::max(1, int(width * shrink)), windowHeight = std::max(1, int(height * shrink));
  HWND window = KxCreateOffscreenWindow(windowWidth, windowHeight);
  if (!window) {
    std::fprintf(stderr, "kxdemo: no off-screen display (is Mesa's EGL installed?)\n");
    return 1;
  }
  CSceneMgr scene;
  if (!scene.initializeRender(window, false, true)) {
    std::fprintf(stderr, "kxdemo: could not bind the scene to its window\n");
    return 1;
  }
  scene.setBkColor(0x503C28);  // dark slate blue: red 0x28, green 0x3C, blue 0x50
  if (!loadModel(scene, model)) return 1;
  if (shadow) castShadows(scene);
  scene.render();  // the view the pick is made in
  pickAndMark(scene, pickGiven ? pickAt : CPoint(windowWidth / 2, windowHeight / 2));
  AcGePoint3d snapPoint;
  CRenderObject::SnapMode snapKind = CRenderObject::kSnapNone;
  snapNearWallCorner(scene, snapPoint, snapKind);
  scene.render();
  scene.finish();

  std::error_code ec;
  const std::filesystem::path parent = std::filesystem::path(out).parent_path();
  if (!parent.empty()) std::filesystem::create_directories(parent, ec);
  const auto start = std::chrono::steady_clock::now();
  if (!scene.renderToImageTiled(width, height, out.c_str())) {
    std::fprintf(stderr, "kxdemo: could not write %s\n", out.c_str());
    return 1;
  }
  const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  std::printf("kxdemo: %dx%d picture written to %s (%.0f ms)\n", width, height, out.c_str(), ms);
  if (model.sceneFile.empty()) {
    const std::filesystem::path p(out);
    const std::string plan = (p.parent_path() / (p.stem().string() + "-labels" + p.extension().string())).string();
    if (!writeLabelPlan(scene, window, model.storeys, plan)) return 1;
  }
  scene.glRelease();
  KxDestroyWindow(window);
  return 0;
}
