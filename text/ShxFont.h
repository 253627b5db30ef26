#pragma once
// The contents of one SHX font file: its kind, header values, big-font
// escape ranges and the drawing bytes of every shape.
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class CShxFont {
 public:
  enum Kind { kShapes = 1, kUnifont = 2, kBigfont = 3 };

  // Parses a whole file image; null when it is not an SHX font or its
  // header and index do not fit the data. Individual shapes whose bytes
  // run past the end are dropped rather than refusing the font.
  static std::shared_ptr<const CShxFont> parse(const uint8_t* data, size_t size);
  // Reads and parses a file; null when unreadable or invalid.
  static std::shared_ptr<const CShxFont> load(const std::string& path);

  // Files beyond this size are refused: no font comes near it.
  static constexpr size_t kMaxFileSize = 64u << 20;

  Kind kind() const { return m_kind; }
  int above() const { return m_above; }
  int below() const { return m_below; }
  int modes() const { return m_modes; }
  // Drawing bytes of a shape (without its name), or null.
  const std::vector<uint8_t>* shapeBytes(unsigned number) const;
  size_t shapeCount() const { return m_shapes.size(); }
  const std::map<unsigned, std::vector<uint8_t>>& shapes() const { return m_shapes; }
  // Whether a byte opens a two-byte code in a big font.
  bool isEscapeByte(unsigned byte) const;

 private:
  bool readShapes(const uint8_t* data, size_t size, size_t pos);
  bool readUnifont(const uint8_t* data, size_t size, size_t pos);
  bool readBigfont(const uint8_t* data, size_t size, size_t pos);
  // Stores one shape's definition bytes (name, 0, drawing bytes).
  void addShape(unsigned number, const uint8_t* def, size_t length);
  void takeHeader(const std::vector<uint8_t>& bytes);

  Kind m_kind = kShapes;
  int m_above = 0;
  int m_below = 0;
  int m_modes = 0;
  std::vector<std::pair<unsigned, unsigned>> m_escapes;
  std::map<unsigned, std::vector<uint8_t>> m_shapes;
  size_t m_byteBudget = 0;
};
