#include "support/JsonWriter.h"

#include <charconv>
#include <cmath>

namespace {
constexpr size_t kFlushAt = 64 * 1024;
}

bool KxIsValidUtf8(const std::string& text) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text.data());
  const unsigned char* end = p + text.size();
  while (p < end) {
    const unsigned c = *p++;
    if (c < 0x80) continue;
    int extra;
    unsigned cp;
    if (c >= 0xC2 && c <= 0xDF) {
      extra = 1;
      cp = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
      extra = 2;
      cp = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      extra = 3;
      cp = c & 0x07;
    } else {
      return false;
    }
    if (end - p < extra) return false;
    for (int i = 0; i < extra; ++i) {
      const unsigned t = *p++;
      if (t < 0x80 || t > 0xBF) return false;
      cp = (cp << 6) | (t & 0x3F);
    }
    if ((extra == 2 && cp < 0x800) || (extra == 3 && cp < 0x10000)) return false;
    if ((cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) return false;
  }
  return true;
}

JsonWriter::JsonWriter(std::FILE* file) : m_file(file) {
  if (!file) setError("no file to write");
}

JsonWriter::JsonWriter(std::string* out) : m_out(out) {}

JsonWriter::~JsonWriter() { flush(); }

void JsonWriter::setError(const std::string& message) {
  if (!m_ok) return;
  m_ok = false;
  m_error = message;
}

void JsonWriter::flush() {
  if (m_buffer.empty()) return;
  if (m_out) {
    m_out->append(m_buffer);
  } else if (m_file && m_ok) {
    if (std::fwrite(m_buffer.data(), 1, m_buffer.size(), m_file) != m_buffer.size())
      setError("the file could not be written");
  }
  m_buffer.clear();
}

void JsonWriter::put(const char* s, size_t n) {
  m_buffer.append(s, n);
  if (m_buffer.size() >= kFlushAt) flush();
}

void JsonWriter::newline(size_t depth) {
  put('\n');
  for (size_t i = 0; i < depth; ++i) put("  ", 2);
}

void JsonWriter::beforeValue() {
  if (m_stack.empty()) return;
  Level& top = m_stack.back();
  if (top.object) {
    if (!m_afterKey) setError("a member value without a key");
    m_afterKey = false;
    return;
  }
  if (top.count > 0) put(',');
  if (!top.inlineLayout) newline(m_stack.size());
  ++top.count;
}

void JsonWriter::open(char bracket, bool object, bool inlineLayout) {
  beforeValue();
  put(bracket);
  const bool parentInline = !m_stack.empty() && m_stack.back().inlineLayout;
  m_stack.push_back({object, inlineLayout || parentInline, 0});
}

void JsonWriter::close(char bracket, bool object) {
  if (m_stack.empty() || m_stack.back().object != object) {
    setError("mismatched end of a container");
    return;
  }
  const Level top = m_stack.back();
  m_stack.pop_back();
  if (top.count > 0 && !top.inlineLayout) newline(m_stack.size());
  put(bracket);
}

void JsonWriter::beginObject(bool inlineLayout) { open('{', true, inlineLayout); }
void JsonWriter::endObject() { close('}', true); }
void JsonWriter::beginArray(bool inlineLayout) { open('[', false, inlineLayout); }
void JsonWriter::endArray() { close(']', false); }

void JsonWriter::key(const char* name) {
  if (m_stack.empty() || !m_stack.back().object) {
    setError("a key outside an object");
    return;
  }
  const std::string k(name);
  if (!KxIsValidUtf8(k)) {
    setError("a key that is not valid UTF-8");
    return;
  }
  Level& top = m_stack.back();
  if (top.count > 0) put(',');
  if (!top.inlineLayout) newline(m_stack.size());
  ++top.count;
  quoted(k);
  put(':');
  if (!top.inlineLayout) put(' ');
  m_afterKey = true;
}

void JsonWriter::string(const std::string& text) {
  if (!KxIsValidUtf8(text)) {
    setError("text that is not valid UTF-8");
    return;
  }
  beforeValue();
  quoted(text);
}

void JsonWriter::quoted(const std::string& text) {
  put('"');
  static const char kHex[] = "0123456789abcdef";
  for (char ch : text) {
    const unsigned char u = static_cast<unsigned char>(ch);
    switch (ch) {
      case '"':
        put("\\\"", 2);
        break;
      case '\\':
        put("\\\\", 2);
        break;
      case '\n':
        put("\\n", 2);
        break;
      case '\r':
        put("\\r", 2);
        break;
      case '\t':
        put("\\t", 2);
        break;
      case '\b':
        put("\\b", 2);
        break;
      case '\f':
        put("\\f", 2);
        break;
      default:
        if (u < 0x20) {
          const char esc[6] = {'\\', 'u', '0', '0', kHex[u >> 4], kHex[u & 15]};
          put(esc, 6);
        } else {
          put(ch);
        }
    }
  }
  put('"');
}

void JsonWriter::number(double value) {
  if (!std::isfinite(value)) {
    setError("a number that is not finite");
    return;
  }
  beforeValue();
  char buf[32];
  const auto r = std::to_chars(buf, buf + sizeof buf, value);
  put(buf, size_t(r.ptr - buf));
}

void JsonWriter::number(float value) {
  if (!std::isfinite(value)) {
    setError("a number that is not finite");
    return;
  }
  beforeValue();
  char buf[32];
  const auto r = std::to_chars(buf, buf + sizeof buf, value);
  put(buf, size_t(r.ptr - buf));
}

void JsonWriter::integer(long long value) {
  beforeValue();
  char buf[24];
  const auto r = std::to_chars(buf, buf + sizeof buf, value);
  put(buf, size_t(r.ptr - buf));
}

void JsonWriter::boolean(bool value) {
  beforeValue();
  if (value)
    put("true", 4);
  else
    put("false", 5);
}

bool JsonWriter::finish() {
  if (!m_stack.empty()) setError("unfinished containers at the end");
  put('\n');
  flush();
  if (m_file && m_ok && std::fflush(m_file) != 0) setError("the file could not be written");
  return m_ok;
}
