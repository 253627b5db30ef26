#include "kxrender/CRenderSysUtils.h"
#include "kxrender/CTextContour.h"
#include "kxrender/CTextRenderList.h"
#include "shapes/PolygonTessellator.h"
#include "support/GLTable.h"

std::map<TextContourCacheKey, TextContourCacheValue> CTextRenderList::m_staticContourCache;

bool CTextRenderList::getTextRenderList(const CString& text, const CString& font, unsigned int& list) {
  if (text.IsEmpty()) return false;
  const TextContourCacheKey key(font, text);
  auto it = m_lists.find(key);
  if (it != m_lists.end()) {
    list = it->second;
    return true;
  }
  TextContourCacheValue value;
  value.isOutline = true;
  if (!getTextContour(key, value)) return false;
  list = kgl->GenLists(1);
  if (kgl->IsList(list)) {
    kgl->NewList(list, GL_COMPILE);
    compileRenderList(value);
    kgl->EndList();
    m_lists[key] = list;
  }
  // Only a list found in the map reports true; the caller reads `list`
  // either way.
  return false;
}

bool CTextRenderList::getTextContour(const TextContourCacheKey& key, TextContourCacheValue& value) {
  auto it = m_staticContourCache.find(key);
  if (it != m_staticContourCache.end()) {
    value = it->second;
    return true;
  }
  CTextContour::createSingleton();
  bool isOutline = false;
  if (!CTextContour::getSingleton()->getOneCharContour(key.font, key.text, value.contours, isOutline)) return false;
  value.isOutline = isOutline;
  bool first = true;
  for (const auto& c : value.contours)
    for (const AcGePoint3d& p : c) {
      if (first) {
        value.minPt = value.maxPt = p;
        first = false;
        continue;
      }
      value.minPt.set(std::min(value.minPt.x, p.x), std::min(value.minPt.y, p.y), std::min(value.minPt.z, p.z));
      value.maxPt.set(std::max(value.maxPt.x, p.x), std::max(value.maxPt.y, p.y), std::max(value.maxPt.z, p.z));
    }
  m_staticContourCache[key] = value;
  return true;
}

const TextContourCacheValue* CTextRenderList::cachedTextContour(const TextContourCacheKey& key) {
  auto it = m_staticContourCache.find(key);
  if (it != m_staticContourCache.end()) return &it->second;
  TextContourCacheValue value;
  if (!getTextContour(key, value)) return nullptr;
  it = m_staticContourCache.find(key);
  return it == m_staticContourCache.end() ? nullptr : &it->second;
}

void CTextRenderList::clearRenderList() {
  for (const auto& entry : m_lists) kgl->DeleteLists(entry.second, 1);
  m_lists.clear();
}

void CTextRenderList::compileRenderList(const TextContourCacheValue& value) {
  if (!value.isOutline) {
    // Strokes as given: a closed stroke repeats its first point itself.
    for (const auto& c : value.contours) {
      kgl->Begin(GL_LINE_STRIP);
      for (const AcGePoint3d& p : c) kgl->Vertex3d(p.x, p.y, 0.0);
      kgl->End();
    }
    return;
  }
  // Orientation decides: clockwise contours are outer outlines, the others
  // holes. Outer contours count -1 and holes +1 about +z, so filling where
  // the winding is negative leaves holes open and a counter-clockwise
  // contour on its own unfilled.
  PolygonTessellator& tess = PolygonTessellator::local();
  if (!tess.beginPolygon(GLU_TESS_WINDING_NEGATIVE)) return;
  for (const auto& c : value.contours) {
    if (c.size() < 3) continue;
    tess.beginContour();
    for (const AcGePoint3d& p : c) tess.addVertex(p.x, p.y);
    tess.endContour();
  }
  if (!tess.endPolygon()) return;
  for (size_t s = 0; s < tess.stripCount(); ++s) {
    const uint32_t* ids = tess.stripIds(s);
    kgl->Begin(GL_TRIANGLE_STRIP);
    for (size_t i = 0; i < tess.stripSize(s); ++i) kgl->Vertex3d(tess.vertexX(ids[i]), tess.vertexY(ids[i]), 0.0);
    kgl->End();
  }
}
