#include "support/GLRecorder.h"

#include <cstdio>
#include <cstring>
#include <type_traits>

namespace {

GLRecorder* g_active = nullptr;

// How many values a float or double array argument holds, by function.
size_t arrayLength(const char* name) {
  static const struct {
    const char* name;
    size_t count;
  } lengths[] = {{"Vertex3dv", 3}, {"Vertex3fv", 3}, {"Normal3dv", 3},  {"Lightfv", 4},
                 {"LightModelfv", 4}, {"Materialfv", 4}, {"LoadMatrixd", 16}, {"MultMatrixd", 16},
                 {"MultMatrixf", 16}};
  for (const auto& l : lengths)
    if (std::strcmp(l.name, name) == 0) return l.count;
  return 0;
}

struct ArgSink {
  const char* fn;
  std::vector<double>& out;
  template <typename T>
  void add(T v) {
    if constexpr (std::is_pointer_v<T>) {
      using V = std::remove_cv_t<std::remove_pointer_t<T>>;
      if constexpr (std::is_same_v<V, float> || std::is_same_v<V, double>) {
        const size_t n = v ? arrayLength(fn) : 0;
        if (n) {
          for (size_t i = 0; i < n; ++i) out.push_back(static_cast<double>(v[i]));
          return;
        }
      }
      out.push_back(v ? 1.0 : 0.0);  // other pointers: only whether given
    } else {
      out.push_back(static_cast<double>(v));
    }
  }
};

// Used as RecordCall{"glBegin", "Begin"}(mode): the argument list of the
// X-macro can then be pasted as it stands.
struct RecordCall {
  const char* display;
  const char* fn;
  template <typename... A>
  void operator()(A... a) const {
    GLCall call;
    call.name = display;
    [[maybe_unused]] ArgSink sink{fn, call.args};
    (sink.add(a), ...);
    g_active->record(std::move(call));
  }
};

#define KX_GL_RECORD(ret, name, params, args)                               \
  ret record_##name params {                                                \
    RecordCall{"gl" #name, #name} args;                    \
    if (g_active->forwarding()) return g_active->next().name args;          \
    return static_cast<ret>(0);                                                           \
  }
#define KX_GLU_RECORD(ret, name, params, args)                              \
  ret record_##name params {                                                \
    RecordCall{#name, #name} args;                       \
    if (g_active->forwarding()) return g_active->next().name args;          \
    return static_cast<ret>(0);                                                           \
  }
KX_GL_FUNCTIONS(KX_GL_RECORD)
KX_GLU_FUNCTIONS(KX_GLU_RECORD)
#undef KX_GL_RECORD
#undef KX_GLU_RECORD

}  // namespace

std::string GLCall::text() const {
  std::string s = name + "(";
  char buf[32];
  for (size_t i = 0; i < args.size(); ++i) {
    std::snprintf(buf, sizeof buf, "%s%.9g", i ? ", " : "", args[i]);
    s += buf;
  }
  return s + ")";
}

GLRecorder::GLRecorder(bool forward) : m_forward(forward), m_next(*kgl), m_previous(kgl) {
#define KX_GL_FILL(ret, name, params, args) m_table.name = record_##name;
  KX_GL_FUNCTIONS(KX_GL_FILL)
  KX_GLU_FUNCTIONS(KX_GL_FILL)
#undef KX_GL_FILL
  g_active = this;
  kgl = &m_table;
}

GLRecorder::~GLRecorder() {
  kgl = m_previous;
  g_active = nullptr;
}

std::vector<std::string> GLRecorder::names() const {
  std::vector<std::string> out;
  out.reserve(m_calls.size());
  for (const auto& c : m_calls) out.push_back(c.name);
  return out;
}

int GLRecorder::find(const std::string& name, size_t from) const {
  for (size_t i = from; i < m_calls.size(); ++i)
    if (m_calls[i].name == name) return static_cast<int>(i);
  return -1;
}

size_t GLRecorder::count(const std::string& name) const {
  size_t n = 0;
  for (const auto& c : m_calls) n += c.name == name;
  return n;
}
