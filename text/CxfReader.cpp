#include "text/CxfReader.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "kxrender/AcArray.h"
#include "kxrender/AcGeCircArc2d.h"

namespace kxtext {
namespace {

// A line longer than this is not font data; it is read past, not stored.
constexpr size_t kMaxLine = 4096;

std::string trimmed(const std::string& s) {
  const char* ws = " \t\r\n\f\v";
  const size_t b = s.find_first_not_of(ws);
  if (b == std::string::npos) return std::string();
  return s.substr(b, s.find_last_not_of(ws) - b + 1);
}

// One line up to '\n' (not kept); `consumed` is the number of bytes read.
bool readLine(std::istream& in, std::string& line, size_t& consumed) {
  line.clear();
  consumed = 0;
  std::streambuf* sb = in.rdbuf();
  for (;;) {
    const int c = sb->sbumpc();
    if (c == std::char_traits<char>::eof()) return consumed > 0;
    ++consumed;
    if (c == '\n') return true;
    if (line.size() < kMaxLine) line.push_back(static_cast<char>(c));
  }
}

bool headerCode(const std::string& line, uint16_t& code) {
  if (line.empty() || line[0] != '[') return false;
  const size_t close = line.find(']');
  if (close == std::string::npos) return false;
  const std::string hex = trimmed(line.substr(1, close - 1));
  if (hex.empty() || hex.size() > 8) return false;
  unsigned long v = 0;
  for (char c : hex) {
    int d;
    if (c >= '0' && c <= '9') d = c - '0';
    else if (c >= 'a' && c <= 'f') d = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F') d = c - 'A' + 10;
    else return false;
    v = v * 16 + unsigned(d);
  }
  if (v > 0xFFFF) return false;
  code = static_cast<uint16_t>(v);
  return true;
}

// The numbers after the line's leading letters, split at commas, read as
// atof reads them.
std::vector<double> fields(const std::string& line) {
  size_t at = 0;
  while (at < line.size() && std::isalpha(static_cast<unsigned char>(line[at]))) ++at;
  std::vector<double> out;
  while (at <= line.size()) {
    size_t comma = line.find(',', at);
    if (comma == std::string::npos) comma = line.size();
    out.push_back(std::atof(line.substr(at, comma - at).c_str()));
    at = comma + 1;
  }
  return out;
}

bool allFinite(const std::vector<double>& v, size_t n) {
  for (size_t i = 0; i < n; ++i)
    if (!std::isfinite(v[i])) return false;
  return true;
}

}  // namespace

size_t readCxfIndex(std::istream& in, CxfIndex& index) {
  index.clear();
  std::string raw;
  size_t consumed = 0;
  uint64_t offset = 0;
  while (readLine(in, raw, consumed)) {
    const uint64_t lineStart = offset;
    offset += consumed;
    // Offsets are 32-bit in the index; a larger file is read no further.
    if (lineStart > uint64_t(std::numeric_limits<int32_t>::max())) break;
    const std::string line = trimmed(raw);
    if (line.size() < 3) continue;
    uint16_t code;
    if (headerCode(line, code)) index[code] = static_cast<int32_t>(lineStart);
  }
  return index.size();
}

std::vector<AcGePoint3d> sampleCxfArc(double cx, double cy, double r, double startDeg, double endDeg,
                                      bool clockwise) {
  const double toRad = M_PI / 180.0;
  // A clockwise arc's angles are measured clockwise from the x axis.
  const double s = (clockwise ? -startDeg : startDeg) * toRad;
  const double e = (clockwise ? -endDeg : endDeg) * toRad;
  const AcGeCircArc2d arc(AcGePoint2d(cx, cy), r, s, e, AcGeVector2d::kXAxis, clockwise);
  // One segment per 30 degrees of the sweep the arc really has, so an arc
  // through 0 degrees is sampled by its own length.
  const int n = static_cast<int>(std::floor((arc.endAng() - arc.startAng()) / (M_PI / 6.0) + 1e-9));
  AcArray<AcGePoint2d> samples;
  arc.getSamplePoints(n < 2 ? 2 : n + 1, samples);
  std::vector<AcGePoint3d> out;
  for (int i = 0; i < samples.length(); ++i) out.emplace_back(samples[i].x, samples[i].y, 0.0);
  return out;
}

void readCxfGlyph(std::istream& in, int32_t pos, Contours& contours) {
  if (pos < 0) return;
  in.clear();
  in.seekg(pos);
  if (!in) return;
  std::string raw;
  size_t consumed = 0;
  bool first = true;
  while (readLine(in, raw, consumed)) {
    const std::string line = trimmed(raw);
    if (line.empty()) break;
    if (line[0] == '[' && !first) break;  // a glyph that lacks its blank line
    first = false;
    if (line[0] == 'L') {
      const std::vector<double> f = fields(line);
      if (f.size() < 4 || !allFinite(f, 4)) continue;
      contours.push_back({AcGePoint3d(f[0], f[1], 0.0), AcGePoint3d(f[2], f[3], 0.0)});
    } else if (line[0] == 'A') {
      const std::vector<double> f = fields(line);
      if (f.size() < 5 || !allFinite(f, 5)) continue;
      const bool clockwise = line.size() > 1 && line[1] == 'R';
      contours.push_back(sampleCxfArc(f[0], f[1], f[2], f[3], f[4], clockwise));
    }
  }
  in.clear();
}

}  // namespace kxtext
