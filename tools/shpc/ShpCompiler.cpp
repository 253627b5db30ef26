#include "ShpCompiler.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>
#include <utility>

#include "text/ShxFormat.h"

namespace {
enum class FontKind { kShapes, kUnifont, kBigfont };

// A definition as written: its header line and the values that follow.
struct Definition {
  int line = 0;
  long number = 0;
  long declared = 0;  // byte count the header states
  std::string name;
  std::vector<long> values;
  std::vector<int> valueLines;
  std::vector<uint8_t> bytes;  // encoded drawing bytes
};

struct Source {
  FontKind kind = FontKind::kShapes;
  std::vector<std::pair<unsigned, unsigned>> escapes;
  bool hasInfo = false;
  Definition info;  // unifont information
  std::vector<Definition> shapes;
};

struct Failure {
  int line;
  std::string what;
};

std::string trim(const std::string& s) {
  const size_t a = s.find_first_not_of(" \t\r\n");
  if (a == std::string::npos) return "";
  return s.substr(a, s.find_last_not_of(" \t\r\n") - a + 1);
}

// A number: decimal, or hexadecimal when it starts with 0 and has more
// digits ("012" is 18); an optional sign comes first.
long parseNumber(const std::string& text, int line) {
  std::string s = trim(text);
  bool negative = false;
  if (!s.empty() && (s[0] == '-' || s[0] == '+')) {
    negative = s[0] == '-';
    s = trim(s.substr(1));
  }
  if (s.empty()) throw Failure{line, "empty number"};
  const bool hex = s.size() > 1 && s[0] == '0';
  long value = 0;
  for (char c : s) {
    const int digit = std::isdigit(uint8_t(c)) ? c - '0'
                      : (hex && std::isxdigit(uint8_t(c))) ? std::tolower(uint8_t(c)) - 'a' + 10
                                                             : -1;
    if (digit < 0) throw Failure{line, "not a number: " + text};
    value = value * (hex ? 16 : 10) + digit;
    if (value > 0xFFFFFF) throw Failure{line, "number too large: " + text};
  }
  return negative ? -value : value;
}

std::vector<std::string> splitCommas(const std::string& s) {
  std::vector<std::string> parts;
  std::string part;
  std::istringstream in(s);
  while (std::getline(in, part, ',')) parts.push_back(part);
  if (!s.empty() && s.back() == ',') parts.push_back("");
  return parts;
}

// Returns where the values that follow belong (null after *BIGFONT).
Definition* startDefinition(Source& src, const std::string& header, int line) {
  std::string upper = header;
  std::transform(upper.begin(), upper.end(), upper.begin(), [](unsigned char c) { return std::toupper(c); });
  if (upper.compare(0, 7, "BIGFONT") == 0) {
    if (!src.shapes.empty()) throw Failure{line, "*BIGFONT must come first"};
    src.kind = FontKind::kBigfont;
    const std::vector<std::string> f = splitCommas(header.substr(7));
    if (f.size() < 2) throw Failure{line, "*BIGFONT needs nchars,nranges"};
    const long ranges = parseNumber(f[1], line);
    if (ranges < 0 || f.size() != size_t(2 + 2 * ranges)) throw Failure{line, "range count does not match"};
    for (long r = 0; r < ranges; ++r) {
      const long b = parseNumber(f[2 + 2 * r], line), e = parseNumber(f[3 + 2 * r], line);
      if (b < 0 || e > 255 || b > e) throw Failure{line, "bad escape range"};
      src.escapes.emplace_back(unsigned(b), unsigned(e));
    }
    return nullptr;
  }
  std::vector<std::string> f = splitCommas(header);
  if (f.size() < 3) throw Failure{line, "a shape header is *number,bytes,name"};
  // The name may itself hold commas.
  std::string name = f[2];
  for (size_t i = 3; i < f.size(); ++i) name += "," + f[i];
  Definition d;
  d.line = line;
  d.declared = parseNumber(f[1], line);
  d.name = trim(name);
  const std::string tag = trim(upper.substr(0, upper.find(',')));
  if (tag == "UNIFONT") {
    if (src.hasInfo || !src.shapes.empty()) throw Failure{line, "*UNIFONT must come first"};
    src.kind = FontKind::kUnifont;
    src.hasInfo = true;
    src.info = d;
    return &src.info;
  }
  d.number = parseNumber(f[0], line);
  if (d.number < 0 || d.number > 0xFFFF) throw Failure{line, "shape number out of range"};
  src.shapes.push_back(d);
  return &src.shapes.back();
}

Source readSource(const std::string& text) {
  Source src;
  std::istringstream in(text);
  std::string raw;
  int line = 0;
  Definition* current = nullptr;
  while (std::getline(in, raw)) {
    ++line;
    std::string s = trim(raw.substr(0, raw.find(';')));
    if (s.empty()) continue;
    if (s[0] == '*') {
      current = startDefinition(src, trim(s.substr(1)), line);
      continue;
    }
    if (!current) throw Failure{line, "values before any shape header"};
    s.erase(std::remove_if(s.begin(), s.end(), [](char c) { return c == '(' || c == ')'; }), s.end());
    for (const std::string& item : splitCommas(s)) {
      if (trim(item).empty()) continue;
      current->values.push_back(parseNumber(item, line));
      current->valueLines.push_back(line);
    }
  }
  return src;
}

// Walks the values as commands so that each operand gets its width: most
// are one byte, unifont and big-font subshape numbers two.
class Encoder {
 public:
  Encoder(const Source& src, Definition& d) : m_src(src), m_def(d) {}

  void encode() {
    while (m_at < m_def.values.size()) {
      const long code = next(0, 255);
      if (code == shx::kEnd) {
        if (m_at != m_def.values.size()) throw Failure{lineAt(m_at), "values after the end byte"};
        return;
      }
      if (code > 0x0F) continue;
      operands(int(code));
    }
    throw Failure{m_def.line, "shape " + std::to_string(m_def.number) + " lacks its end byte 0"};
  }

 private:
  int lineAt(size_t i) const { return i < m_def.valueLines.size() ? m_def.valueLines[i] : m_def.line; }

  long next(long low, long high) {
    if (m_at >= m_def.values.size()) throw Failure{m_def.line, "shape ends inside a command"};
    const long v = m_def.values[m_at];
    if (v < low || v > high) throw Failure{lineAt(m_at), "value " + std::to_string(v) + " out of range"};
    ++m_at;
    m_def.bytes.push_back(uint8_t(v & 0xFF));
    return v;
  }
  long nextSigned() { return next(-128, 127); }
  void nextWide() {
    const long v = next(0, 0xFFFF);
    m_def.bytes.back() = uint8_t(v >> 8);
    m_def.bytes.push_back(uint8_t(v & 0xFF));
  }

  void operands(int code) {
    switch (code) {
      case shx::kDivide:
      case shx::kMultiply:
        next(1, 255);
        break;
      case shx::kSubshape:
        subshape();
        break;
      case shx::kDisplace:
        nextSigned(), nextSigned();
        break;
      case shx::kDisplaceList:
      case shx::kBulgeList:
        for (;;) {
          const long x = nextSigned(), y = nextSigned();
          if (x == 0 && y == 0) break;
          if (code == shx::kBulgeList) nextSigned();
        }
        break;
      case shx::kOctantArc:
        next(0, 255), nextSigned();
        break;
      case shx::kFractionArc:
        next(0, 255), next(0, 255), next(0, 255), next(0, 255), nextSigned();
        break;
      case shx::kBulgeArc:
        nextSigned(), nextSigned(), nextSigned();
        break;
      default:  // codes without operands; 14 flags the command after it
        break;
    }
  }

  void subshape() {
    switch (m_src.kind) {
      case FontKind::kShapes:
        next(1, 255);
        return;
      case FontKind::kUnifont:
        nextWide();
        return;
      case FontKind::kBigfont:
        break;
    }
    if (m_at < m_def.values.size() && m_def.values[m_at] == 0) {
      // Extended form: 0, primitive number, x, y, width, height.
      next(0, 0);
      nextWide();
      nextSigned(), nextSigned(), next(0, 255), next(0, 255);
    } else if (m_at < m_def.values.size() && m_def.values[m_at] > 255) {
      nextWide();
    } else {
      next(1, 255);
    }
  }

  const Source& m_src;
  Definition& m_def;
  size_t m_at = 0;
};

// Header shapes and unifont information are plain bytes, not commands.
void encodeRaw(Definition& d) {
  for (size_t i = 0; i < d.values.size(); ++i) {
    if (d.values[i] < 0 || d.values[i] > 255) throw Failure{d.valueLines[i], "header value out of range"};
    d.bytes.push_back(uint8_t(d.values[i]));
  }
}

void checkLength(const Definition& d) {
  if (long(d.bytes.size()) != d.declared) {
    throw Failure{d.line, "shape " + std::to_string(d.number) + " has " + std::to_string(d.bytes.size()) +
                              " bytes, its header says " + std::to_string(d.declared)};
  }
  if (d.bytes.size() > 2000) throw Failure{d.line, "shape longer than 2000 bytes"};
}

void put16(std::vector<uint8_t>& out, unsigned v) {
  out.push_back(uint8_t(v & 0xFF));
  out.push_back(uint8_t(v >> 8 & 0xFF));
}
void put32(std::vector<uint8_t>& out, uint32_t v) {
  put16(out, v & 0xFFFF);
  put16(out, v >> 16);
}
void putSignature(std::vector<uint8_t>& out, const char* s) {
  out.insert(out.end(), s, s + shx::signatureLength(s));
}
std::vector<uint8_t> definitionBytes(const Definition& d) {
  std::vector<uint8_t> def(d.name.begin(), d.name.end());
  def.push_back(0);
  def.insert(def.end(), d.bytes.begin(), d.bytes.end());
  if (def.size() > 0xFFFF) throw Failure{d.line, "definition too long"};
  return def;
}

std::vector<uint8_t> writeFont(const Source& src) {
  std::vector<uint8_t> out;
  const std::vector<Definition>& shapes = src.shapes;
  switch (src.kind) {
    case FontKind::kShapes: {
      putSignature(out, shx::kShapes10);
      put16(out, shapes.empty() ? 0 : unsigned(shapes.front().number));
      put16(out, shapes.empty() ? 0 : unsigned(shapes.back().number));
      put16(out, unsigned(shapes.size()));
      for (const Definition& d : shapes) put16(out, unsigned(d.number)), put16(out, unsigned(definitionBytes(d).size()));
      for (const Definition& d : shapes) {
        const std::vector<uint8_t> def = definitionBytes(d);
        out.insert(out.end(), def.begin(), def.end());
      }
      break;
    }
    case FontKind::kUnifont: {
      putSignature(out, shx::kUnifont);
      put32(out, uint32_t(shapes.size() + 1));
      const std::vector<uint8_t> info = definitionBytes(src.info);
      put16(out, unsigned(info.size()));
      out.insert(out.end(), info.begin(), info.end());
      for (const Definition& d : shapes) {
        const std::vector<uint8_t> def = definitionBytes(d);
        put16(out, unsigned(d.number));
        put16(out, unsigned(def.size()));
        out.insert(out.end(), def.begin(), def.end());
      }
      break;
    }
    case FontKind::kBigfont: {
      putSignature(out, shx::kBigfont);
      put16(out, unsigned(shapes.size()));
      put16(out, unsigned(shapes.size()));
      put16(out, unsigned(src.escapes.size()));
      for (const auto& r : src.escapes) put16(out, r.first), put16(out, r.second);
      size_t offset = out.size() + shapes.size() * 8;
      for (const Definition& d : shapes) {
        const size_t length = definitionBytes(d).size();
        put16(out, unsigned(d.number));
        put16(out, unsigned(length));
        put32(out, uint32_t(offset));
        offset += length;
      }
      for (const Definition& d : shapes) {
        const std::vector<uint8_t> def = definitionBytes(d);
        out.insert(out.end(), def.begin(), def.end());
      }
      break;
    }
  }
  return out;
}
}  // namespace

bool CompileShp(const std::string& text, std::vector<uint8_t>& shx, std::string& error) {
  try {
    Source src = readSource(text);
    if (src.kind == FontKind::kUnifont) {
      encodeRaw(src.info);
      checkLength(src.info);
    }
    std::map<long, int> seen;
    for (Definition& d : src.shapes) {
      if (!seen.emplace(d.number, d.line).second) {
        throw Failure{d.line, "shape " + std::to_string(d.number) + " defined twice"};
      }
      if (d.number == 0 && src.kind != FontKind::kUnifont) {
        encodeRaw(d);
      } else {
        Encoder(src, d).encode();
      }
      checkLength(d);
    }
    if (src.shapes.empty()) throw Failure{0, "no shapes"};
    std::sort(src.shapes.begin(), src.shapes.end(),
              [](const Definition& a, const Definition& b) { return a.number < b.number; });
    shx = writeFont(src);
    return true;
  } catch (const Failure& f) {
    error = "line " + std::to_string(f.line) + ": " + f.what;
    return false;
  }
}
