// Scene files through real scenes: write, read and write again give the same
// bytes and the same objects and view; what cannot be read back is not written.
#include <gtest/gtest.h>

#include <tuple>

#include "io/SceneFileHelpers.h"
#include "kxrender/KxSystem.h"

namespace {

std::vector<CRenderObject*> inOrder(CSceneMgr& scene) {
  std::vector<CRenderObject*> out;
  for (const auto& kv : scene.getObjSetMgr()->objects()) out.push_back(kv.second);
  return out;
}

// Compares two tuples field by field, naming the first index that differs.
template <size_t I = 0, class T>
void expectSameFields(const T& a, const T& b) {
  if constexpr (I < std::tuple_size_v<T>) {
    EXPECT_TRUE(std::get<I>(a) == std::get<I>(b)) << "field " << I;
    expectSameFields<I + 1>(a, b);
  }
}

// Every value the format feeds, and what the shape derives from it.
auto fieldsOf(const CRenderShape& s) {
  return std::make_tuple(s.getShpType(), s.getPts(), s.getHoles(), s.getGlPts(), s.getStrips(), s.getClr(),
                         s.getUcs().x, s.getUcs().y, s.getUcs().z, s.getVisible(), s.getShowBorder(),
                         s.getBorderColor(), s.getBorderWidth(), s.isBorderWidthScaled(), s.getBorderMaxWidth(),
                         s.isDotLine(), s.getXdataMap(), s.getArea(), s.getOffsetFactor(), s.getOffsetUnits(),
                         s.getZOffset(), s.getHitLine());
}

void expectSameShape(const CRenderShape& a, const CRenderShape& b, const std::string& where) {
  SCOPED_TRACE(where);
  expectSameFields(fieldsOf(a), fieldsOf(b));
  ASSERT_EQ(a.getFaceVertexArray() != nullptr, b.getFaceVertexArray() != nullptr);
  if (a.getFaceVertexArray()) {
    EXPECT_EQ(*a.getFaceVertexArray(), *b.getFaceVertexArray());
    EXPECT_EQ(*a.getFaceTriangleIndexArray(), *b.getFaceTriangleIndexArray());
    // Absent and empty differ: an absent array counts 0, an empty one 1.
    auto count = [](const auto* v) { return v ? v->size() + 1 : 0; };
    EXPECT_EQ(count(a.getFaceNormalArray()), count(b.getFaceNormalArray()));
    EXPECT_EQ(count(a.getFaceTexCoordArray()), count(b.getFaceTexCoordArray()));
  }
  ASSERT_EQ(a.getTextInfo() != nullptr, b.getTextInfo() != nullptr);
  if (a.getTextInfo()) {
    const TextInfo &ta = *a.getTextInfo(), &tb = *b.getTextInfo();
    EXPECT_TRUE(std::tie(ta.text, ta.font, ta.height) == std::tie(tb.text, tb.font, tb.height));
    EXPECT_TRUE(ta.position.isEqualTo(tb.position));
  }
}

class SceneFileRoundTrip : public ::testing::Test {
 protected:
  TempDir dir;
  CSceneMgr original;
};

int g_viewCalls = 0;
void countViewCall(CSceneMgr*) { ++g_viewCalls; }

}  // namespace

TEST_F(SceneFileRoundTrip, WriteReadWriteGivesTheSameBytesObjectsAndView) {
  fillScene(original);
  CString error;
  ASSERT_TRUE(KxWriteSceneFile(dir.file("a.json").c_str(), original, error)) << error.GetString();
  CSceneMgr copy;
  g_viewCalls = 0;
  copy.SetScene2ModelFunPtr(countViewCall);
  KxSceneFileExtras extras;
  ASSERT_TRUE(KxReadSceneFile(dir.file("a.json").c_str(), copy, error, &extras)) << error.GetString();
  ASSERT_TRUE(KxWriteSceneFile(dir.file("b.json").c_str(), copy, error)) << error.GetString();
  const std::string a = readText(dir.file("a.json"));
  EXPECT_EQ(a, readText(dir.file("b.json")));
  // The same scene written again: the same bytes, no temporaries left.
  ASSERT_TRUE(KxWriteSceneFile(dir.file("a2.json").c_str(), original, error));
  EXPECT_EQ(a, readText(dir.file("a2.json")));
  EXPECT_EQ(dir.entries(), 3u);

  const std::vector<CRenderObject*> oa = inOrder(original), ob = inOrder(copy);
  ASSERT_EQ(oa.size(), ob.size());
  for (size_t i = 0; i < oa.size(); ++i) {
    SCOPED_TRACE("object " + std::to_string(i));
    CRenderObject &x = *oa[i], &y = *ob[i];
    auto fields = [](const CRenderObject& o) {
      return std::make_tuple(o.getExternId(), o.getXdata(), o.isVisible(), o.getRenderMode(), o.getGenerateShadow(),
                             o.getFaceSnap(), o.hasMaxUnitsPerPixel(), o.getMaxUnitsPerPixel(), o.getSnapPoints(),
                             o.getColor());
    };
    expectSameFields(fields(x), fields(y));
    EXPECT_TRUE(x.ptMin().isEqualTo(y.ptMin()) && x.ptMax().isEqualTo(y.ptMax()));
    ASSERT_EQ(x.numShp(), y.numShp());
    for (unsigned s = 0; s < x.numShp(); ++s)
      expectSameShape(x.getShape(s), y.getShape(s), "shape " + std::to_string(s));
    ASSERT_EQ(x.getLodShpss().size(), y.getLodShpss().size());
    for (unsigned l = 0; l < x.getLodShpss().size(); ++l) {
      EXPECT_EQ(x.getLodUnitsPerPixel(l), y.getLodUnitsPerPixel(l));
      ASSERT_EQ(x.getLodShpss(l).size(), y.getLodShpss(l).size());
      for (size_t s = 0; s < x.getLodShpss(l).size(); ++s)
        expectSameShape(x.getLodShpss(l)[s], y.getLodShpss(l)[s], "level shape " + std::to_string(s));
    }
  }
  // The view, and the host told of it once. The set's mode does not
  // override the modes the objects were saved with.
  EXPECT_TRUE(extras.hasView);
  EXPECT_EQ(g_viewCalls, 1);
  EXPECT_TRUE(copy.camera()->GetVLocation().isEqualTo(AcGeVector3d(1, 2, 3)));
  EXPECT_EQ(copy.camera()->GetVForward().z, -0.5);
  EXPECT_EQ(copy.camera()->GetVUp().z, 1.0);
  EXPECT_EQ(copy.dRange(), 77.5);
  EXPECT_EQ(int(copy.getRenderMode()), 4);
  EXPECT_EQ(int(ob.back()->getRenderMode()), 0);  // the front object's 2 is compared above
  CColor bk;
  copy.getBkColor(bk);
  EXPECT_EQ(bk, CColor(10, 20, 30, 40));
}

TEST_F(SceneFileRoundTrip, ReadingReplacesWhatTheSceneHeldAndAFileWithoutAViewLeavesIt) {
  CObjectSetMgr& set = *original.getObjSetMgr();
  KxBuildTower(set, 2, 2);
  original.setRange(77.5);
  g_viewCalls = 0;
  original.SetScene2ModelFunPtr(countViewCall);
  const unsigned lastOldId = set.objects().rbegin()->first;
  writeText(dir.file("two.json"), R"({"format":"kxscene","version":1,"objects":[
    {"externId":5,"shapes":[{"kind":"pgon","pts":[[0,0,0],[4,0,0],[4,2,0]]}]},
    {"externId":6,"xdata":"b","shapes":[{"kind":"pline","pts":[[0,0,0],[1,0,0]]}]}]})");
  CString error;
  KxSceneFileExtras extras;
  extras.hasView = true;
  ASSERT_TRUE(KxReadSceneFile(dir.file("two.json").c_str(), original, error, &extras)) << error.GetString();
  EXPECT_FALSE(extras.hasView);
  EXPECT_EQ(g_viewCalls, 0);
  EXPECT_EQ(original.dRange(), 77.5);
  ASSERT_EQ(set.numObjs(), 2u);
  const std::vector<CRenderObject*> objs = inOrder(original);
  EXPECT_EQ(objs[0]->getExternId(), 5u);
  EXPECT_GT(objs[0]->getId(), lastOldId);  // ids come from the set, as for any new object
  EXPECT_EQ(objs[0]->getObjSet(), &set);
  // The set's box is the new model's.
  AcGePoint3d lo, hi;
  set.getBox(lo, hi);
  EXPECT_TRUE(lo.isEqualTo(AcGePoint3d(0, 0, 0)));
  EXPECT_TRUE(hi.isEqualTo(AcGePoint3d(4, 2, 0)));
}

TEST_F(SceneFileRoundTrip, WritingRefusesWhatCouldNotBeReadBack) {
  // One object of n points of the kind given (none: no shape at all).
  auto object = [](unsigned externId, const char* xdata, CRenderShape::ShapeType kind, size_t n) {
    CRenderObject* o = new CRenderObject;
    o->setExternId(externId);
    o->setXdata(xdata);
    const std::vector<AcGePoint3d> pts = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    CRenderShape s;
    s.set(std::vector<AcGePoint3d>(pts.begin(), pts.begin() + n), {}, kind, CColor(), AcGeVector3d(0, 0, 1));
    if (n) o->addShape(s);
    o->endAddShape();
    return o;
  };
  struct Case {
    CRenderObject* bad;
    std::string message;
  };
  const Case cases[] = {
      {object(9, "", CRenderShape::kPgon, 2),
       "object 1 (extern id 9): shape 0: field \"pts\": a pgon needs at least 3 points"},
      {object(10, "", CRenderShape::kPgon, 0), "object 1 (extern id 10): an object without shapes cannot be saved"},
      {object(0, "bad \xFF byte", CRenderShape::kPline, 2),
       "object 1: field \"xdata\": text that is not valid in the active code page"},
  };
  writeText(dir.file("keep.json"), "previous contents");
  CObjectSetMgr& set = *original.getObjSetMgr();
  CString error;
  for (const Case& c : cases) {
    set.clear();
    set.addObject(object(3, "", CRenderShape::kPgon, 3));
    set.addObject(c.bad);
    EXPECT_FALSE(KxWriteSceneFile(dir.file("keep.json").c_str(), original, error));
    EXPECT_EQ(error, CString(dir.file("keep.json") + ": " + c.message));
    EXPECT_EQ(readText(dir.file("keep.json")), "previous contents");
    EXPECT_EQ(dir.entries(), 1u);
  }
  EXPECT_FALSE(KxWriteSceneFile((dir.path() + "/missing/x.json").c_str(), original, error));
  EXPECT_NE(std::string(error).find("cannot create a file beside it"), std::string::npos) << error.GetString();
}

TEST_F(SceneFileRoundTrip, EngineTextInAnotherCodePageIsWrittenAsUtf8) {
  ASSERT_TRUE(KxSetAnsiCodePage(936));
  CRenderObject* o = new CRenderObject;
  o->setXdata("\xB7\xBF\xBC\xE4");  // 房间 in GBK
  CRenderShape s;
  s.set({{0, 0, 0}, {1, 0, 0}}, {}, CRenderShape::kPline, CColor(), AcGeVector3d(0, 0, 1));
  s.setXdata("\xC6\xC2\xCE\xDD\xB6\xA5", "\xCD\xE2\xC3\xE6");  // 坡屋顶 = 外面 in GBK
  o->addShape(s);
  o->endAddShape();
  original.getObjSetMgr()->addObject(o);
  CString error;
  const bool wrote = KxWriteSceneFile(dir.file("gbk.json").c_str(), original, error);
  CSceneMgr copy;
  const bool read = wrote && KxReadSceneFile(dir.file("gbk.json").c_str(), copy, error);
  KxSetAnsiCodePage(CP_UTF8);
  ASSERT_TRUE(wrote && read) << error.GetString();
  const std::string text = readText(dir.file("gbk.json"));
  EXPECT_NE(text.find("\"xdata\": \"\xE6\x88\xBF\xE9\x97\xB4\""), std::string::npos) << text;
  EXPECT_NE(text.find("\"\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6\":\"\xE5\xA4\x96\xE9\x9D\xA2\""), std::string::npos);
  const CRenderObject* back = inOrder(copy).front();
  EXPECT_EQ(back->getXdata(), "\xB7\xBF\xBC\xE4");
  EXPECT_TRUE(back->getShape(0).is("\xC6\xC2\xCE\xDD\xB6\xA5", "\xCD\xE2\xC3\xE6"));
}
