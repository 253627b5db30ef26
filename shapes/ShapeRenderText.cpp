// Text shapes: the compiled glyph list placed by the text's own matrix, or
// a single point when the text would be too small to read.
#include <cmath>
#include <map>

#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSystem.h"
#include "kxrender/CTextRenderList.h"
#include "shapes/ShapeRenderState.h"
#include "support/GLTable.h"

using namespace kxshape;

namespace {
// Below this many pixels of height the glyphs would merge into a blot.
constexpr double kMinTextPixels = 3.0;
constexpr float kTextPointSize = 3.0f;

// Display lists belong to a context: one render list per rendering context
// serves every text shape drawn in it, so each (font, text) pair is
// compiled once per context.
CTextRenderList& renderListOf(const CSceneMgr* scene) {
  static std::map<const void*, CTextRenderList> lists;
  return lists[scene ? static_cast<const void*>(scene->getHRC()) : nullptr];
}

// The text's list, compiled when the text has none yet.
void ensureTextList(TextInfo& t, const CSceneMgr* scene) {
  if (t.compiled && t.listId != 0) return;
  CTextRenderList& lists = renderListOf(scene);
  unsigned list = 0;
  if (lists.getTextRenderList(t.text, t.font, list) && !kgl->IsList(list)) {
    // Ids of a context that no longer exists: forget them all and compile
    // again.
    lists.clearRenderList();
    list = 0;
    lists.getTextRenderList(t.text, t.font, list);
  }
  t.listId = list;
  t.compiled = list != 0;
}

bool tooSmallToRead(const TextInfo& t, const CSceneMgr* scene) {
  if (!scene) return false;
  // A scene without a viewport yet has no pixel size to compare with.
  const double perUnit = scene->getPixelsPerUnit();
  if (!(perUnit > 0.0) || !std::isfinite(perUnit)) return false;
  const double pixels = std::fabs(t.height) * perUnit;
  return pixels < kMinTextPixels;  // false for NaN: the text is drawn
}
}  // namespace

void CRenderShape::renderText(CRenderObject* obj) {
  if (!m_textInfo || !obj || !obj->getObjSet()) return;
  TextInfo& t = *m_textInfo;
  ensureTextList(t, sceneOf(obj));
  const bool haveList = t.compiled && t.listId != 0;

  if (tooSmallToRead(t, sceneOf(obj))) {
    kgl->PointSize(kTextPointSize);
    kgl->Begin(GL_POINTS);
    kgl->Color4ub(m_clr.r, m_clr.g, m_clr.b, m_clr.a);
    kgl->Vertex3f(static_cast<GLfloat>(t.position.x), static_cast<GLfloat>(t.position.y),
                  static_cast<GLfloat>(t.position.z));
    kgl->End();
    return;
  }
  if (!haveList) return;

  kgl->Color3ub(m_clr.r, m_clr.g, m_clr.b);
  kgl->Normal3d(m_ucs.x, m_ucs.y, m_ucs.z);
  kgl->LineWidth(lineWidth(nullptr));
  const bool polygonStipple = m_hit && t.filled;
  const bool lineStipple = m_hit && !t.filled;
  if (polygonStipple) {
    kgl->Enable(GL_POLYGON_STIPPLE);
    kgl->PolygonStipple(CRenderSystem::getStipple());
  } else if (lineStipple) {
    setDotLineState(obj);
  }

  kgl->PushMatrix();
  kgl->Disable(GL_LIGHTING);
  kgl->MultMatrixf(t.glMatrix);
  kgl->CallList(t.listId);
  kgl->Enable(GL_LIGHTING);
  kgl->PopMatrix();

  if (polygonStipple) kgl->Disable(GL_POLYGON_STIPPLE);
  else if (lineStipple) backDotLineState(obj);
}
