#pragma once
// Installs a GL table that records every call the engine makes, with its
// arguments, for tests of call order. It can also pass each call on to the
// previous table so the frame is really drawn.
#include <string>
#include <vector>

#include "support/GLTable.h"

struct GLCall {
  std::string name;          // "glBegin", "gluLookAt", ...
  std::vector<double> args;  // scalars as given; float/double arrays expanded
  std::string text() const;  // "glDepthRange(0, 0.5)"
};

class GLRecorder {
 public:
  // forward: pass calls on (needs a current context); otherwise calls only
  // record, and queries return zeros.
  explicit GLRecorder(bool forward);
  ~GLRecorder();
  GLRecorder(const GLRecorder&) = delete;
  GLRecorder& operator=(const GLRecorder&) = delete;

  const std::vector<GLCall>& calls() const { return m_calls; }
  void clear() { m_calls.clear(); }
  // Names only, in order, e.g. {"glPushAttrib", "glDepthRange", ...}.
  std::vector<std::string> names() const;
  // Index of the first call with this name at or after `from`, or -1.
  int find(const std::string& name, size_t from = 0) const;
  size_t count(const std::string& name) const;

  void record(GLCall call) { m_calls.push_back(std::move(call)); }
  bool forwarding() const { return m_forward; }
  const KxGLTable& next() const { return m_next; }

 private:
  bool m_forward;
  KxGLTable m_next;      // where forwarded calls go
  KxGLTable* m_previous;  // restored on destruction
  KxGLTable m_table;
  std::vector<GLCall> m_calls;
};
