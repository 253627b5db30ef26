#include "LffFont.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace lff {
namespace {

constexpr int kMaxCopyDepth = 4;
// Copies of copies can multiply; a glyph stops growing after this many
// glyph visits or strokes, so that a hostile file cannot blow up.
constexpr int kMaxVisits = 256;
constexpr size_t kMaxStrokes = 4096;
constexpr double kPi = 3.14159265358979323846;

std::string trim(const std::string& s) {
  const char* ws = " \t\r\n";
  const size_t b = s.find_first_not_of(ws);
  if (b == std::string::npos) return std::string();
  return s.substr(b, s.find_last_not_of(ws) - b + 1);
}

// Hex digits only, at most eight, so that the value cannot overflow.
bool parseHex(const std::string& s, uint32_t& code) {
  if (s.empty() || s.size() > 8) return false;
  code = 0;
  for (char c : s) {
    int d;
    if (c >= '0' && c <= '9') d = c - '0';
    else if (c >= 'a' && c <= 'f') d = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F') d = c - 'A' + 10;
    else return false;
    code = code * 16 + uint32_t(d);
  }
  return true;
}

bool parseNumber(const std::string& s, double& v) {
  const std::string t = trim(s);
  if (t.empty()) return false;
  char* end = nullptr;
  v = std::strtod(t.c_str(), &end);
  return end && *end == '\0' && std::isfinite(v);
}

// The pieces of s between separators. Split by hand: a string stream per
// vertex made parsing a font many times slower than the parsing itself.
std::vector<std::string> split(const std::string& s, char sep) {
  std::vector<std::string> out;
  for (size_t at = 0;;) {
    const size_t next = s.find(sep, at);
    out.push_back(s.substr(at, next == std::string::npos ? std::string::npos : next - at));
    if (next == std::string::npos) return out;
    at = next + 1;
  }
}

// One vertex "x,y" or "x,y,A<bulge>"; false when the numbers are not there.
bool parseVertex(const std::string& s, Vertex& v) {
  const std::vector<std::string> fields = split(s, ',');
  if (fields.size() < 2 || !parseNumber(fields[0], v.x) || !parseNumber(fields[1], v.y)) return false;
  v.bulge = 0.0;
  if (fields.size() >= 3) {
    const std::string f = trim(fields[2]);
    if (!f.empty() && (f[0] == 'A' || f[0] == 'a') && !parseNumber(f.substr(1), v.bulge)) v.bulge = 0.0;
  }
  return true;
}

void appendExpanded(const Font& font, uint32_t code, int depth, int& visits, std::vector<uint32_t>& path,
                    std::vector<Polyline>& out) {
  auto it = font.glyphs.find(code);
  if (it == font.glyphs.end() || depth > kMaxCopyDepth || ++visits > kMaxVisits || out.size() >= kMaxStrokes) return;
  for (uint32_t seen : path)
    if (seen == code) return;
  path.push_back(code);
  for (uint32_t c : it->second.copies) appendExpanded(font, c, depth + 1, visits, path, out);
  const auto& strokes = it->second.strokes;
  const size_t room = kMaxStrokes - std::min(out.size(), kMaxStrokes);
  out.insert(out.end(), strokes.begin(), strokes.begin() + std::ptrdiff_t(std::min(strokes.size(), room)));
  path.pop_back();
}

// Shortest decimal that reads back the same at the precision stored.
std::string num(double v) {
  if (std::fabs(v) < 5e-7) v = 0.0;
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.6g", v);
  return buf;
}

double degrees(double dy, double dx) {
  double a = std::atan2(dy, dx) * 180.0 / kPi;
  if (a < 0.0) a += 360.0;
  return a;
}

void writeSegment(const Vertex& a, const Vertex& b, std::ostream& out) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double chord = std::sqrt(dx * dx + dy * dy);
  const double bulge = b.bulge;
  if (std::fabs(bulge) < 1e-9 || chord < 1e-12) {
    out << "L " << num(a.x) << ',' << num(a.y) << ',' << num(b.x) << ',' << num(b.y) << '\n';
    return;
  }
  // The centre sits off the chord's middle, to its left for a
  // counter-clockwise arc of less than half a turn.
  const double offset = (1.0 - bulge * bulge) / (4.0 * bulge);
  const double cx = (a.x + b.x) / 2.0 - dy * offset;
  const double cy = (a.y + b.y) / 2.0 + dx * offset;
  const double radius = chord * (1.0 + bulge * bulge) / (4.0 * std::fabs(bulge));
  out << (bulge > 0.0 ? "A " : "AR ") << num(cx) << ',' << num(cy) << ',' << num(radius) << ','
      << num(degrees(a.y - cy, a.x - cx)) << ',' << num(degrees(b.y - cy, b.x - cx)) << '\n';
}

void appendUtf8(uint32_t c, std::string& s) {
  if (c < 0x80) {
    s += char(c);
  } else if (c < 0x800) {
    s += char(0xC0 | (c >> 6));
    s += char(0x80 | (c & 0x3F));
  } else {
    s += char(0xE0 | (c >> 12));
    s += char(0x80 | ((c >> 6) & 0x3F));
    s += char(0x80 | (c & 0x3F));
  }
}

}  // namespace

bool parse(std::istream& in, Font& font) {
  font = Font();
  Glyph* current = nullptr;
  for (std::string raw; std::getline(in, raw);) {
    const std::string line = trim(raw);
    if (line.empty()) continue;
    if (line[0] == '#') {
      if (font.glyphs.empty()) font.header.push_back(trim(line.substr(1)));
      continue;
    }
    if (line[0] == '[') {
      const size_t close = line.find(']');
      uint32_t code = 0;
      current = nullptr;
      if (close != std::string::npos && parseHex(line.substr(1, close - 1), code)) {
        current = &font.glyphs[code];
        *current = Glyph();
      }
      continue;
    }
    if (!current) continue;
    if (line[0] == 'C' || line[0] == 'c') {
      uint32_t code = 0;
      if (parseHex(line.substr(1), code)) current->copies.push_back(code);
      continue;
    }
    Polyline stroke;
    for (const std::string& item : split(line, ';')) {
      Vertex v;
      if (parseVertex(item, v)) stroke.push_back(v);
    }
    if (stroke.size() >= 2) current->strokes.push_back(stroke);
  }
  return !font.glyphs.empty();
}

std::vector<Polyline> expandedStrokes(const Font& font, uint32_t code) {
  std::vector<Polyline> out;
  std::vector<uint32_t> path;
  int visits = 0;
  appendExpanded(font, code, 0, visits, path, out);
  return out;
}

void writeCxf(const Font& font, std::ostream& out) {
  out << "# Format:            QCad II Font\n";
  out << "# Creator:           kxrender lff2cxf\n";
  for (const std::string& h : font.header) {
    const std::string key = h.substr(0, h.find(':'));
    if (key != "Format" && key != "Creator" && key != "Encoding") out << "# " << h << '\n';
  }
  out << '\n';
  for (const auto& entry : font.glyphs) {
    if (entry.first > 0xFFFF) continue;
    char head[16];
    std::snprintf(head, sizeof head, "[%04x] ", unsigned(entry.first));
    std::string line = head;
    // The character itself is only a reading aid; control codes and
    // surrogates are left out.
    if (entry.first > 0x20 && (entry.first < 0xD800 || entry.first > 0xDFFF)) appendUtf8(entry.first, line);
    out << line << '\n';
    for (const Polyline& p : expandedStrokes(font, entry.first))
      for (size_t i = 1; i < p.size(); ++i) writeSegment(p[i - 1], p[i], out);
    out << '\n';
  }
}

}  // namespace lff
