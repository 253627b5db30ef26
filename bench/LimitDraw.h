#pragma once
// The floor a frame can reach on this machine: every triangle of the model,
// read back from the shapes' strips and face arrays, drawn in one call from
// one vertex array, or from one display list.
#include <cstddef>
#include <vector>

class CObjectSetMgr;

class LimitDraw {
 public:
  explicit LimitDraw(const CObjectSetMgr& set);
  ~LimitDraw();
  LimitDraw(const LimitDraw&) = delete;
  LimitDraw& operator=(const LimitDraw&) = delete;

  size_t triangles() const { return m_xyz.size() / 9; }
  void drawArray() const;
  void drawList();  // compiles the list on first use

 private:
  std::vector<float> m_xyz;
  unsigned m_list = 0;
};
