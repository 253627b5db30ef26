#include "LimitDraw.h"

#include <epoxy/gl.h>

#include "kxrender/CObjectSetMgr.h"

namespace {

void addVertex(std::vector<float>& out, double x, double y, double z) {
  out.push_back(static_cast<float>(x));
  out.push_back(static_cast<float>(y));
  out.push_back(static_cast<float>(z));
}

void addShape(const CRenderShape& s, std::vector<float>& out) {
  const std::vector<double>& pts = s.getGlPts();
  for (const std::vector<uint16_t>& strip : s.getStrips()) {
    for (size_t i = 2; i < strip.size(); ++i) {
      // Keep the strip's alternating winding.
      const uint16_t a = strip[i - 2], b = strip[i - 1], c = strip[i];
      const uint16_t order[3] = {a, (i % 2) ? c : b, (i % 2) ? b : c};
      for (uint16_t k : order) addVertex(out, pts[3 * k], pts[3 * k + 1], pts[3 * k + 2]);
    }
  }
  const std::vector<AcGePoint3d>* v = s.getFaceVertexArray();
  const std::vector<int>* tri = s.getFaceTriangleIndexArray();
  if (v && tri) {
    for (size_t i = 0; i + 2 < tri->size(); i += 3) {
      for (int k = 0; k < 3; ++k) {
        const int at = (*tri)[i + k];
        if (at < 0 || static_cast<size_t>(at) >= v->size()) break;
        addVertex(out, (*v)[at].x, (*v)[at].y, (*v)[at].z);
      }
    }
  }
}

}  // namespace

LimitDraw::LimitDraw(const CObjectSetMgr& set) {
  for (const auto& kv : set.objects())
    if (kv.second)
      for (const CRenderShape& s : kv.second->getShps()) addShape(s, m_xyz);
  m_xyz.resize(m_xyz.size() / 9 * 9);
}

LimitDraw::~LimitDraw() {
  if (m_list) glDeleteLists(m_list, 1);
}

void LimitDraw::drawArray() const {
  glColor3ub(200, 200, 200);
  glNormal3f(0.0f, 0.0f, 1.0f);
  glEnableClientState(GL_VERTEX_ARRAY);
  glVertexPointer(3, GL_FLOAT, 0, m_xyz.data());
  glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(m_xyz.size() / 3));
  glDisableClientState(GL_VERTEX_ARRAY);
}

void LimitDraw::drawList() {
  if (!m_list) {
    m_list = glGenLists(1);
    glNewList(m_list, GL_COMPILE);
    drawArray();
    glEndList();
  }
  glCallList(m_list);
}
