#include "io/SceneDecoder.h"

#include <charconv>
#include <cmath>

#include "support/AnsiText.h"

namespace kxscene {

namespace {
std::string shortToken(const std::string& t) { return t.size() > 40 ? t.substr(0, 40) + "..." : t; }
}  // namespace

std::string SceneDecoder::context() const {
  std::string out;
  auto add = [&out](const std::string& part) { out += (out.empty() ? "" : ": ") + part; };
  for (size_t i = 0; i < m_context.size(); ++i) {
    const Level& l = m_context[i];
    if (l.kind != Kind::Field) {
      add(l.label());
      continue;
    }
    std::string path = l.label();
    while (i + 1 < m_context.size() && m_context[i + 1].kind == Kind::Field) path += "." + m_context[++i].label();
    // "object 12" says which field it is in; a field name before it is noise.
    if (i + 1 < m_context.size() && m_context[i + 1].kind == Kind::Element) continue;
    add("field \"" + path + "\"");
  }
  return out;
}

bool SceneDecoder::fail(const std::string& what) {
  if (!m_message.empty()) return false;
  m_r.fail(what);
  const std::string where = context();
  m_message = m_name + ": " + (where.empty() ? "" : where + ": ") + m_r.error() + " (line " +
              std::to_string(m_r.line()) + ", column " + std::to_string(m_r.column()) + ")";
  return false;
}

bool SceneDecoder::expected(const std::string& what) {
  if (m_r.failed()) return fail(m_r.error());
  if (m_r.peek() == JsonReader::Type::End) return fail("unexpected end of the file where " + what + " was expected");
  if (m_r.failed()) return fail(m_r.error());
  return fail("expected " + what);
}

bool SceneDecoder::members(const std::function<int(const std::string& key)>& member) {
  if (m_r.peek() != JsonReader::Type::Object || !m_r.beginObject()) return expected("an object");
  KeySet seen;
  std::string key;
  while (m_r.nextKey(key)) {
    if (!seen.insert(key)) return fail("field \"" + key + "\" given twice");
    int result;
    {
      Scope field(*this, key);
      result = member(key);
      if (result == 0) return m_message.empty() ? fail(m_r.failed() ? m_r.error() : "invalid value") : false;
    }
    if (result < 0) return fail("unknown field \"" + key + "\"");
  }
  return m_r.failed() ? fail(m_r.error()) : true;
}

bool SceneDecoder::elements(const std::function<bool(size_t i)>& element) {
  if (m_r.peek() != JsonReader::Type::Array || !m_r.beginArray()) return false;
  for (size_t i = 0; m_r.nextElement(); ++i)
    if (!element(i)) return false;
  return !m_r.failed();
}

bool SceneDecoder::number(double& v) {
  if (m_r.peek() != JsonReader::Type::Number || !m_r.readNumber(m_token)) return expected("a number");
  const auto r = std::from_chars(m_token.data(), m_token.data() + m_token.size(), v);
  if (r.ec == std::errc::result_out_of_range) return fail("number " + shortToken(m_token) + " is out of range");
  if (r.ec != std::errc() || r.ptr != m_token.data() + m_token.size())
    return fail("malformed number " + shortToken(m_token));
  return true;
}

bool SceneDecoder::number(float& v) {
  if (m_r.peek() != JsonReader::Type::Number || !m_r.readNumber(m_token)) return expected("a number");
  const auto r = std::from_chars(m_token.data(), m_token.data() + m_token.size(), v);
  if (r.ec == std::errc::result_out_of_range)
    return fail("number " + shortToken(m_token) + " is out of range for a single-precision value");
  if (r.ec != std::errc() || r.ptr != m_token.data() + m_token.size())
    return fail("malformed number " + shortToken(m_token));
  return true;
}

bool SceneDecoder::integer(long long lo, long long hi, long long& v) {
  const std::string range = "an integer from " + std::to_string(lo) + " to " + std::to_string(hi);
  if (m_r.peek() != JsonReader::Type::Number || !m_r.readNumber(m_token)) return expected(range);
  const auto r = std::from_chars(m_token.data(), m_token.data() + m_token.size(), v);
  if (r.ec != std::errc() || r.ptr != m_token.data() + m_token.size() || v < lo || v > hi)
    return fail("expected " + range + " but found " + shortToken(m_token));
  return true;
}

bool SceneDecoder::boolean(bool& v) {
  if (m_r.peek() != JsonReader::Type::Bool || !m_r.readBool(v)) return expected("true or false");
  return true;
}

bool SceneDecoder::text(CString& out) {
  std::string utf8, ansi;
  if (m_r.peek() != JsonReader::Type::String || !m_r.readString(utf8)) return expected("a string");
  if (!KxUtf8ToAnsi(utf8, ansi)) return fail("text with characters the active code page cannot hold");
  out = CString(ansi);
  return true;
}

bool SceneDecoder::triple(double out[3], const char* what) {
  if (m_r.peek() != JsonReader::Type::Array || !m_r.beginArray()) return expected(what);
  int n = 0;
  while (m_r.nextElement()) {
    if (n == 3) return fail(std::string("expected ") + what + " but found more numbers");
    if (m_r.peek() != JsonReader::Type::Number) return expected(what);
    if (!number(out[n++])) return false;
  }
  if (m_r.failed()) return fail(m_r.error());
  if (n != 3) return fail(std::string("expected ") + what + " but found " + std::to_string(n) + " numbers");
  return true;
}

bool SceneDecoder::point(AcGePoint3d& p) {
  double v[3];
  if (!triple(v, "a point of 3 numbers [x, y, z]")) return false;
  p.set(v[0], v[1], v[2]);
  return true;
}

bool SceneDecoder::vector(AcGeVector3d& out) {
  double v[3];
  if (!triple(v, "a vector of 3 numbers [x, y, z]")) return false;
  out.set(v[0], v[1], v[2]);
  return true;
}

bool SceneDecoder::direction(AcGeVector3d& out) {
  if (!vector(out)) return false;
  if (out.isZeroLength() || !std::isfinite(out.length())) return fail("expected a direction of non-zero length");
  return true;
}

bool SceneDecoder::point2(AcGePoint2d& p) {
  if (m_r.peek() != JsonReader::Type::Array || !m_r.beginArray()) return expected("a pair of numbers [u, v]");
  double v[2];
  int n = 0;
  while (m_r.nextElement()) {
    if (n == 2) return fail("expected a pair of numbers [u, v] but found more numbers");
    if (!number(v[n++])) return false;
  }
  if (m_r.failed()) return fail(m_r.error());
  if (n != 2) return fail("expected a pair of numbers [u, v] but found " + std::to_string(n) + " numbers");
  p.set(v[0], v[1]);
  return true;
}

bool SceneDecoder::points(std::vector<AcGePoint3d>& out, size_t minCount) {
  out.clear();
  if (m_r.peek() != JsonReader::Type::Array) return expected("an array of 3-number points");
  const bool ok = elements([&](size_t i) {
    Scope item(*this, "point", i, Kind::Item);
    AcGePoint3d p;
    if (!point(p)) return false;
    out.push_back(p);
    return true;
  });
  if (!ok) return m_message.empty() ? expected("an array of 3-number points") : false;
  if (out.size() < minCount)
    return fail("expected at least " + std::to_string(minCount) + " points but found " + std::to_string(out.size()));
  return true;
}

bool SceneDecoder::vectors(std::vector<AcGeVector3d>& out) {
  out.clear();
  if (m_r.peek() != JsonReader::Type::Array) return expected("an array of 3-number vectors");
  const bool ok = elements([&](size_t i) {
    Scope item(*this, "vector", i, Kind::Item);
    AcGeVector3d v;
    if (!vector(v)) return false;
    out.push_back(v);
    return true;
  });
  return ok || (m_message.empty() ? expected("an array of 3-number vectors") : false);
}

bool SceneDecoder::points2(std::vector<AcGePoint2d>& out) {
  out.clear();
  if (m_r.peek() != JsonReader::Type::Array) return expected("an array of [u, v] pairs");
  const bool ok = elements([&](size_t i) {
    Scope item(*this, "pair", i, Kind::Item);
    AcGePoint2d p;
    if (!point2(p)) return false;
    out.push_back(p);
    return true;
  });
  return ok || (m_message.empty() ? expected("an array of [u, v] pairs") : false);
}

bool SceneDecoder::color(CColor& c, bool withAlpha) {
  const char* what = withAlpha ? "a colour [red, green, blue, alpha] of integers 0 to 255"
                               : "a colour [red, green, blue] of integers 0 to 255";
  const int want = withAlpha ? 4 : 3;
  if (m_r.peek() != JsonReader::Type::Array || !m_r.beginArray()) return expected(what);
  unsigned char v[4] = {255, 255, 255, 255};
  int n = 0;
  while (m_r.nextElement()) {
    long long x;
    if (n == want) return fail(std::string("expected ") + what);
    if (m_r.peek() != JsonReader::Type::Number || !m_r.readNumber(m_token)) return expected(what);
    const auto r = std::from_chars(m_token.data(), m_token.data() + m_token.size(), x);
    if (r.ec != std::errc() || r.ptr != m_token.data() + m_token.size() || x < 0 || x > 255)
      return fail(std::string("expected ") + what + " but found " + shortToken(m_token));
    v[n++] = static_cast<unsigned char>(x);
  }
  if (m_r.failed()) return fail(m_r.error());
  if (n != want) return fail(std::string("expected ") + what);
  c.set(v[0], v[1], v[2], v[3]);
  return true;
}

}  // namespace kxscene
