#pragma once
// Reading helpers for the scene file: typed values on top of the JSON pull
// reader, and the context (object 12, shape 3, field "pts") that every error
// message is prefixed with.
#include <functional>
#include <string>
#include <vector>

#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/CColor.h"
#include "kxrender/CString.h"
#include "support/JsonReader.h"

namespace kxscene {

// The keys an object has given so far: objects have a few dozen at most, so
// a list is quicker than a tree.
class KeySet {
 public:
  bool insert(const std::string& key) {
    if (count(key)) return false;
    m_keys.push_back(key);
    return true;
  }
  bool count(const std::string& key) const {
    for (const std::string& k : m_keys)
      if (k == key) return true;
    return false;
  }
  std::vector<std::string>::const_iterator begin() const { return m_keys.begin(); }
  std::vector<std::string>::const_iterator end() const { return m_keys.end(); }

 private:
  std::vector<std::string> m_keys;
};

class SceneDecoder {
 public:
  SceneDecoder(JsonReader& reader, const std::string& name) : m_r(reader), m_name(name) {}

  enum class Kind {
    Field,    // a member name; consecutive ones are joined: field "border.width"
    Item,     // an element of the field above it: field "pts": point 4
    Element,  // an element that names its field itself: object 12, shape 3
  };
  // One level of context while it lives. Labels are put together only when
  // an error is reported: a big file has millions of points.
  class Scope {
   public:
    // An item or element: "point 4", "object 12".
    Scope(SceneDecoder& d, const char* name, size_t index, Kind kind) : m_d(d) {
      d.m_context.push_back({kind, name, nullptr, index});
    }
    // A field whose name outlives the scope.
    Scope(SceneDecoder& d, const std::string& field) : m_d(d) {
      d.m_context.push_back({Kind::Field, nullptr, &field, 0});
    }
    Scope(SceneDecoder& d, const char* field) : m_d(d) { d.m_context.push_back({Kind::Field, field, nullptr, 0}); }
    ~Scope() { m_d.m_context.pop_back(); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    SceneDecoder& m_d;
  };

  JsonReader& reader() { return m_r; }
  // Records the first error with the current context; always false.
  bool fail(const std::string& what);
  // "expected <what>", or the reader's own error, or the end of the file.
  bool expected(const std::string& what);
  const std::string& message() const { return m_message; }

  // Walks an object's members: each key is checked for repeats and handed
  // to `member` inside its field scope. member returns 1 when it read the
  // value, 0 when it failed, -1 for a key it does not know.
  bool members(const std::function<int(const std::string& key)>& member);
  // Walks an array; element(i) reads element i.
  bool elements(const std::function<bool(size_t i)>& element);

  bool number(double& v);
  bool number(float& v);
  bool integer(long long lo, long long hi, long long& v);
  bool boolean(bool& v);
  // UTF-8 from the file to engine text.
  bool text(CString& out);
  bool point(AcGePoint3d& p);
  bool vector(AcGeVector3d& v);
  // A direction: finite and not of zero length.
  bool direction(AcGeVector3d& v);
  bool point2(AcGePoint2d& p);
  // An array of 3-number points with at least minCount of them.
  bool points(std::vector<AcGePoint3d>& out, size_t minCount);
  bool vectors(std::vector<AcGeVector3d>& out);
  bool points2(std::vector<AcGePoint2d>& out);
  // [red, green, blue, alpha] (or without alpha when withAlpha is false).
  bool color(CColor& c, bool withAlpha);

 private:
  struct Level {
    Kind kind;
    const char* name;
    const std::string* key;
    size_t index;
    std::string label() const {
      if (kind == Kind::Field) return key ? *key : std::string(name);
      return std::string(name) + " " + std::to_string(index);
    }
  };
  bool triple(double out[3], const char* what);
  std::string context() const;

  JsonReader& m_r;
  std::string m_name;
  std::vector<Level> m_context;
  std::string m_message;
  std::string m_token;
};

}  // namespace kxscene
