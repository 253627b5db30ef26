#include "text/ShxInterpreter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "text/ShapeInfo.h"
#include "text/ShxFont.h"
#include "text/ShxFormat.h"

namespace {
// Limits that only damaged or hostile fonts reach: they bound the time and
// memory one shape can take. Real glyphs, big-font ones included, stay far
// below a thousand points; a hostile glyph at these caps still draws in
// about a millisecond.
constexpr int kMaxDepth = 8;          // nested subshape calls
constexpr size_t kMaxStack = 16;      // pushed positions per shape
constexpr long kMaxSteps = 50000;     // commands run for one shape
constexpr size_t kMaxPoints = 20000;  // points produced for one shape
constexpr double kMinScale = 1e-9, kMaxScale = 1e9;
constexpr double kPi = 3.14159265358979323846;
constexpr double kOctant = kPi / 4;
// Arcs are drawn with one segment per 11.25 degrees (four per octant).
constexpr double kArcStep = kPi / 16;

// The sixteen directions of a vector byte, counter-clockwise from east;
// the odd ones step half a unit across for a whole unit along.
const double kDir[16][2] = {{1, 0},   {1, .5},  {1, 1},   {.5, 1},  {0, 1},   {-.5, 1},
                            {-1, 1},  {-1, .5}, {-1, 0},  {-1, -.5}, {-1, -1}, {-.5, -1},
                            {0, -1},  {.5, -1}, {1, -1},  {1, -.5}};

struct Vec {
  double x = 0, y = 0;
};

// Reads the bytes of one shape; every read past the end fails.
struct Cursor {
  const std::vector<uint8_t>& bytes;
  size_t at = 0;
  bool get(int& value) {
    if (at >= bytes.size()) return false;
    value = bytes[at++];
    return true;
  }
  bool getSigned(int& value) {
    if (!get(value)) return false;
    if (value > 127) value -= 256;
    return true;
  }
};

class Interpreter {
 public:
  Interpreter(const CShxFont& font, bool vertical, CShape& shape)
      : m_font(font), m_vertical(vertical), m_shape(shape) {}

  void run(const std::vector<uint8_t>& bytes) {
    runShape(bytes, 0);
    flush();
    m_shape.m_endPoint = AcGePoint3d(m_pos.x, m_pos.y, 0);
  }

 private:
  // Where a shape's local units land: the frame of an extended big-font
  // subshape scales them (x and y apart).
  struct Frame {
    double sx = 1, sy = 1;
  };

  void runShape(const std::vector<uint8_t>& bytes, int depth) {
    Cursor in{bytes};
    double scale = 1;
    bool savedPen = m_penDown;
    m_penDown = true;  // every shape starts drawing
    std::vector<Vec> stack;
    while (!m_aborted) {
      if (++m_steps > kMaxSteps) return stop();
      int code;
      if (!in.get(code)) break;  // no end byte: stop where the bytes stop
      if (code == shx::kVerticalOnly) {
        if (!m_vertical && !skipCommand(in)) break;
        continue;
      }
      if (code > 0x0F) {
        const double len = (code >> 4) * scale;
        const double* d = kDir[code & 0x0F];
        moveBy(d[0] * len, d[1] * len);
        continue;
      }
      if (code == shx::kEnd) break;
      if (!runSpecial(code, in, scale, stack, depth)) break;
    }
    flush();
    m_penDown = savedPen;
  }

  // One special code; false ends the shape (damaged bytes or its limits).
  bool runSpecial(int code, Cursor& in, double& scale, std::vector<Vec>& stack, int depth) {
    int a, b, c;
    switch (code) {
      case shx::kPenDown:
        m_penDown = true;
        return true;
      case shx::kPenUp:
        m_penDown = false;
        flush();
        return true;
      case shx::kDivide:
      case shx::kMultiply:
        if (!in.get(a) || a == 0) return false;
        scale = code == shx::kDivide ? scale / a : scale * a;
        return scale >= kMinScale && scale <= kMaxScale;
      case shx::kPush:
        if (stack.size() >= kMaxStack) return false;
        stack.push_back(m_pos);
        return true;
      case shx::kPop:
        if (stack.empty()) return true;  // nothing saved: nothing to restore
        flush();
        m_pos = stack.back();
        stack.pop_back();
        return true;
      case shx::kSubshape:
        return subshape(in, scale, depth);
      case shx::kDisplace:
        if (!in.getSigned(a) || !in.getSigned(b)) return false;
        moveBy(a * scale, b * scale);
        return true;
      case shx::kDisplaceList:
        for (;;) {
          if (++m_steps > kMaxSteps) return stop(), false;
          if (!in.getSigned(a) || !in.getSigned(b)) return false;
          if (a == 0 && b == 0) return true;
          moveBy(a * scale, b * scale);
        }
      case shx::kOctantArc:
        if (!in.get(a) || !in.getSigned(b)) return false;
        octantArc(a * scale, b, false, 0, 0);
        return true;
      case shx::kFractionArc: {
        int start, end, high, low, sc;
        if (!in.get(start) || !in.get(end) || !in.get(high) || !in.get(low) || !in.getSigned(sc)) return false;
        octantArc((high * 256 + low) * scale, sc, true, start, end);
        return true;
      }
      case shx::kBulgeArc:
        if (!in.getSigned(a) || !in.getSigned(b) || !in.getSigned(c)) return false;
        bulgeArc(a * scale, b * scale, c);
        return true;
      case shx::kBulgeList:
        for (;;) {
          if (++m_steps > kMaxSteps) return stop(), false;
          if (!in.getSigned(a) || !in.getSigned(b)) return false;
          if (a == 0 && b == 0) return true;
          if (!in.getSigned(c)) return false;
          bulgeArc(a * scale, b * scale, c);
        }
      default:  // 15 has no meaning: skip it as the byte it is
        return true;
    }
  }

  // Reads the number of a subshape call in this font's form; `box` gets the
  // x, y, width and height of the extended big-font form (a scaled primitive).
  bool subshapeNumber(Cursor& in, unsigned& number, bool& extended, int (&box)[4]) {
    int a, b;
    extended = false;
    if (!in.get(a)) return false;
    switch (m_font.kind()) {
      case CShxFont::kShapes:
        number = unsigned(a);
        return true;
      case CShxFont::kUnifont:
        if (!in.get(b)) return false;
        number = unsigned(a) << 8 | unsigned(b);
        return true;
      case CShxFont::kBigfont:
        if (a == 0) {
          extended = true;
          if (!in.get(a) || !in.get(b)) return false;
          number = unsigned(a) << 8 | unsigned(b);
          return in.getSigned(box[0]) && in.getSigned(box[1]) && in.get(box[2]) && in.get(box[3]);
        }
        number = unsigned(a);
        if (m_font.isEscapeByte(unsigned(a))) {
          if (!in.get(b)) return false;
          number = number << 8 | unsigned(b);
        }
        return true;
    }
    return false;
  }

  // A subshape draws from the current position at the current scale; its
  // own scale changes, stack and pen state do not leak back. An extended
  // big-font primitive is drawn in a box of width x height at an offset,
  // in units of the font's height, and the pen comes back where it was.
  bool subshape(Cursor& in, double scale, int depth) {
    unsigned number;
    bool extended;
    int box[4] = {0, 0, 0, 0};
    if (!subshapeNumber(in, number, extended, box)) return false;
    const std::vector<uint8_t>* bytes = m_font.shapeBytes(number);
    if (!bytes || depth + 1 > kMaxDepth) return true;  // missing or too deep: skip the call
    if (!extended) {
      scaledRun(*bytes, depth, scale, scale);
      return true;
    }
    const double height = m_font.above() > 0 ? m_font.above() : 1;
    const Vec back = m_pos;
    flush();
    m_pos.x += box[0] * scale * m_frame.sx;
    m_pos.y += box[1] * scale * m_frame.sy;
    scaledRun(*bytes, depth, scale * box[2] / height, scale * box[3] / height);
    flush();
    m_pos = back;
    return true;
  }

  void scaledRun(const std::vector<uint8_t>& bytes, int depth, double sx, double sy) {
    const Frame saved = m_frame;
    m_frame.sx *= sx;
    m_frame.sy *= sy;
    runShape(bytes, depth + 1);
    m_frame = saved;
  }

  // Skips one command without running it (vertical-only commands in
  // horizontal text); false when the bytes end inside it.
  bool skipCommand(Cursor& in) {
    int code, a, b;
    if (!in.get(code)) return false;
    if (code > 0x0F) return true;
    size_t extra = 0;
    switch (code) {
      case shx::kDivide:
      case shx::kMultiply:
        extra = 1;
        break;
      case shx::kSubshape: {
        unsigned number;
        bool extended;
        int box[4];
        return subshapeNumber(in, number, extended, box);
      }
      case shx::kDisplace:
        extra = 2;
        break;
      case shx::kOctantArc:
        extra = 2;
        break;
      case shx::kFractionArc:
        extra = 5;
        break;
      case shx::kBulgeArc:
        extra = 3;
        break;
      case shx::kDisplaceList:
      case shx::kBulgeList:
        for (;;) {
          if (!in.get(a) || !in.get(b)) return false;
          if (a == 0 && b == 0) return true;
          if (code == shx::kBulgeList && !in.get(a)) return false;
        }
      default:
        break;
    }
    for (size_t i = 0; i < extra; ++i) {
      if (!in.get(a)) return false;
    }
    return true;
  }

  // Octant or fractional arc. The direction byte holds the start octant and
  // the octant count (0 = all eight); its sign turns the arc clockwise. An
  // octant arc spans whole octants; a fractional one runs from its start
  // offset past the first octant's boundary to its end offset past the
  // boundary of the last octant it reaches (offsets in 256ths of an octant).
  void octantArc(double radius, int dirByte, bool fractional, int startOffset, int endOffset) {
    const bool clockwise = dirByte < 0;
    const int m = dirByte < 0 ? -dirByte : dirByte;
    const int first = (m >> 4) & 7;
    const int count = (m & 7) == 0 ? 8 : (m & 7);
    const double start = (first + startOffset / 256.0) * kOctant;
    double sweep;
    if (!fractional) {
      sweep = count * kOctant;
    } else {
      const int last = clockwise ? first - (count - 1) : first + (count - 1);
      const double end = (last + endOffset / 256.0) * kOctant;
      sweep = std::fmod(clockwise ? start - end : end - start, 2 * kPi);
      if (sweep < 0) sweep += 2 * kPi;
      if (sweep < 1e-12) sweep = 2 * kPi;
    }
    arc(radius, start, clockwise ? -sweep : sweep);
  }

  // A bulge of +-127 is a half circle; its sign gives the turn (positive
  // counter-clockwise); 0 is a straight segment.
  void bulgeArc(double dx, double dy, int bulge) {
    const double chord = std::hypot(dx, dy);
    if (bulge == 0 || chord == 0) return moveBy(dx, dy);
    const double angle = 4 * std::atan(std::fabs(bulge) / 127.0);
    const double radius = chord / (2 * std::sin(angle / 2));
    // From the chord's middle to the centre, on the left of the chord for
    // a counter-clockwise arc.
    const double along = chord / 2 / std::tan(angle / 2);
    const double side = bulge > 0 ? along : -along;
    const double cx = dx / 2 - dy / chord * side, cy = dy / 2 + dx / chord * side;
    const double start = std::atan2(-cy, -cx);
    arc(radius, start, bulge > 0 ? angle : -angle, dx, dy);
  }

  // An arc through the current position at angle `start` on a circle of
  // `radius`; `end` pins the last point (exact bulge end points).
  void arc(double radius, double start, double sweep, double endX = NAN, double endY = NAN) {
    if (radius <= 0) return;
    const int n = std::max(1, int(std::ceil(std::fabs(sweep) / kArcStep - 1e-9)));
    const Vec from = m_pos;
    const double cx = -radius * std::cos(start), cy = -radius * std::sin(start);
    for (int k = 1; k <= n && !m_aborted; ++k) {
      double x, y;
      if (k == n && !std::isnan(endX)) {
        x = endX, y = endY;
      } else {
        const double t = start + sweep * k / n;
        x = cx + radius * std::cos(t), y = cy + radius * std::sin(t);
      }
      lineTo({from.x + x * m_frame.sx, from.y + y * m_frame.sy});
    }
  }

  void moveBy(double dx, double dy) { lineTo({m_pos.x + dx * m_frame.sx, m_pos.y + dy * m_frame.sy}); }

  void lineTo(Vec to) {
    if (m_penDown) {
      if (m_points + 2 > kMaxPoints) return stop();
      if (m_stroke.empty()) m_stroke.push_back(m_pos), ++m_points;
      m_stroke.push_back(to);
      ++m_points;
    } else {
      flush();
    }
    m_pos = to;
  }

  void flush() {
    if (m_stroke.size() >= 2) {
      auto line = std::make_unique<CShxPolyline>();
      line->m_points.reserve(m_stroke.size());
      for (const Vec& p : m_stroke) line->m_points.emplace_back(p.x, p.y, 0);
      m_shape.AddEntity(std::move(line));
    }
    m_stroke.clear();
  }

  void stop() { m_aborted = true; }

  const CShxFont& m_font;
  const bool m_vertical;
  CShape& m_shape;
  Vec m_pos;
  Frame m_frame;
  bool m_penDown = true;
  bool m_aborted = false;
  long m_steps = 0;
  size_t m_points = 0;
  std::vector<Vec> m_stroke;
};
}  // namespace

bool ShxInterpret(const CShxFont& font, unsigned number, bool vertical, CShape& shape) {
  const std::vector<uint8_t>* bytes = font.shapeBytes(number);
  if (!bytes) return false;
  Interpreter(font, vertical, shape).run(*bytes);
  return true;
}
