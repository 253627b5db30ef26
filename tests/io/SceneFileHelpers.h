#pragma once
// Scene file tests: a private temporary folder, file contents, and a scene
// that uses every feature a scene file can hold.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "kxrender/CSceneMgr.h"
#include "kxrender/KxSceneFile.h"
#include "kxrender/KxTowerModel.h"

// Removed with everything in it at the end.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kxscene-XXXXXX").string();
    if (mkdtemp(&pattern[0])) m_path = pattern;
  }
  ~TempDir() {
    std::error_code ec;
    if (!m_path.empty()) std::filesystem::remove_all(m_path, ec);
  }
  std::string file(const std::string& name) const { return m_path + "/" + name; }
  const std::string& path() const { return m_path; }
  size_t entries() const {
    size_t n = 0;
    for (auto it = std::filesystem::directory_iterator(m_path); it != std::filesystem::directory_iterator(); ++it) ++n;
    return n;
  }

 private:
  std::string m_path;
};

inline std::string readText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

inline void writeText(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
}

// A rectangle of w x h at z facing +z, given clockwise so that the shape
// has to turn it.
inline std::vector<AcGePoint3d> clockwiseRect(double x, double y, double w, double h, double z) {
  return {{x, y, z}, {x, y + h, z}, {x + w, y + h, z}, {x + w, y, z}};
}

// A small tower plus objects that use every field of the format, and a
// view that is not the default one.
inline void fillScene(CSceneMgr& scene) {
  CObjectSetMgr& set = *scene.getObjSetMgr();
  // The set's mode first: objects added later keep their own.
  scene.setRenderMode(CRenderObject::RenderMode(4));
  KxBuildTower(set, 1, 2);

  CRenderObject* a = new CRenderObject;
  a->setExternId(77);
  a->setXdata("\xE5\xA2\x99\xE4\xBD\x93 A \"x\"\n");
  a->setVisible(false);
  a->setRenderMode(CRenderObject::RenderMode(0));
  a->setGenerateShadow(true);
  a->setFaceSnap(true);
  a->setMaxUnitsPerPixel(0.3);
  a->setSnapPoints({{1, 2, 3}, {0.1, 0.2, 0.3}});
  {
    // A big polygon (area over 10000: the offset base is a sixteenth
    // root) with a hole, a non-unit normal and scaled offsets.
    CRenderShape s;
    s.set(clockwiseRect(0, 0, 150, 120, 1.0 / 3.0), {clockwiseRect(10, 10, 5, 7, 1.0 / 3.0)}, CRenderShape::kPgon,
          CColor(1, 2, 3, 4), AcGeVector3d(0, 0, 2), 2.0, 0.37, 0.25);
    s.setShowBorder(true);
    s.setBorderColor(CColor(9, 8, 7, 6));
    s.setBorderMaxWidth(5.5);
    s.setBorderWidth(2.5, false);
    s.setXdata("kxscene.texture", "brick.png");
    s.setXdata("\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6", "\xE5\x86\x85\xE9\x9D\xA2");
    s.setXdata("k", "v");
    s.addHitLine({{0, 0, 0}, {150, 0, 0}});
    s.setOffsetUnitScale(3.0);  // scales the units again after set
    a->addShape(s);
  }
  {
    // A small slanted polygon: offset base below 1.
    CRenderShape s;
    s.set({{0, 0, 0}, {3, 0, 1}, {3, 2, 1.5}, {0.5, 2.5, 0.25}}, {}, CRenderShape::kPgon, CColor(200, 0, 0, 255),
          AcGeVector3d(-0.31, -0.22, 0.93), 0.7, 1.9, -0.125);
    s.setDotLine(true);
    a->addShape(s);
  }
  {
    CRenderShape s;
    s.set({{0, 0, 0}, {1, 1, 1}, {2, 0, 2}}, {}, CRenderShape::kPline, CColor(0, 255, 0, 255), AcGeVector3d(0, 1, 0));
    s.setVisible(false);
    a->addShape(s);
  }
  {
    CRenderShape s;
    s.setFaceType(true);
    s.setClr(CColor(10, 20, 30, 40));
    s.setUcs(AcGeVector3d(0, 0, 1));
    std::vector<AcGePoint3d> vertices = {{0, 0, 5}, {4, 0, 5}, {4, 3, 5}, {0, 3, 5}, {2, 4, 5}};
    std::vector<int> triangles = {0, 1, 2, 0, 2, 3, 3, 2, 4};
    std::vector<AcGeVector3d> normals(5, AcGeVector3d(0, 0, 1));
    std::vector<AcGePoint2d> uv = {{0, 0}, {1, 0}, {1, 0.75}, {0, 0.75}, {0.5, 1}};
    s.setFaceVertexArray(&vertices);
    s.setFaceTriangleIndexArray(&triangles);
    s.setFaceNormalArray(&normals);
    s.setFaceTexCoordArray(&uv);
    s.calBox();
    s.calArea();
    s.setOffsetScale(3.0);
    s.setOffsetUnitScale(2.0);
    s.setZOffset(0.5f);
    s.addHitLine({{0, 0, 5}, {4, 0, 5}});
    a->addShape(s);
  }
  {
    CRenderShape s;
    TextInfo* t = new TextInfo;
    t->text = "\xE6\x88\xBF\xE9\x97\xB4 101";
    t->font = "simsun";
    t->height = 0.75;
    t->position = AcGePoint3d(1, 2, 3);
    t->dir1 = AcGeVector3d(1, 0, 0);
    t->dir2 = AcGeVector3d(0, 0, 1);
    s.set(t, CColor(0, 0, 0, 255), AcGeVector3d(0, -1, 0));
    a->addShape(s);
  }
  a->endAddShape();
  a->setLodLevel(2);
  {
    CRenderShape s;
    s.set({{0, 0, 0}, {150, 120, 0}}, {}, CRenderShape::kPline, CColor(1, 1, 1, 255), AcGeVector3d(0, 0, 1));
    a->getLodShpss(0).push_back(s);
    a->getLodUnitsPerPixel(0) = 0.1f;
    a->getLodUnitsPerPixel(1) = 0.7f;
  }
  set.addObject(a);
  set.freshBox();

  scene.camera()->ReSet(AcGeVector3d(1, 2, 3), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 1, -0.5));
  scene.setRange(77.5);
  scene.getBkColorRef() = CColor(10, 20, 30, 40);
}
