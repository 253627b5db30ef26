#include "import/PlyCheck.h"

#include <cstdlib>

#include <algorithm>
#include <map>
#include <sstream>
#include <vector>

namespace kximport {

namespace {

int typeSize(const std::string& t) {
  static const std::map<std::string, int> sizes = {{"char", 1},  {"int8", 1},    {"uchar", 1},  {"uint8", 1},
                                                   {"short", 2}, {"int16", 2},   {"ushort", 2}, {"uint16", 2},
                                                   {"int", 4},   {"int32", 4},   {"uint", 4},   {"uint32", 4},
                                                   {"float", 4}, {"float32", 4}, {"double", 8}, {"float64", 8}};
  const auto it = sizes.find(t);
  return it == sizes.end() ? 0 : it->second;
}

struct Property {
  int countSize = 0;  // list properties: size of the count; 0 for scalars
  bool countSigned = false;
  int size = 0;  // scalar or list item
};
struct Element {
  std::string name;
  uint64_t count = 0;
  std::vector<Property> props;
  std::vector<std::string> names;
};

}  // namespace

bool isPly(const uint8_t* data, size_t size) {
  return size >= 4 && data[0] == 'p' && data[1] == 'l' && data[2] == 'y' && (data[3] == '\n' || data[3] == '\r');
}

std::string plyProblem(const uint8_t* data, size_t size) {
  // The header ends at a line that is exactly "end_header" (assimp reads on
  // for ever otherwise).
  const std::string text(reinterpret_cast<const char*>(data), size);
  size_t end = std::string::npos, body = 0;
  for (size_t at = 0; at < text.size();) {
    size_t next = text.find('\n', at);
    std::string line = text.substr(at, next == std::string::npos ? std::string::npos : next - at);
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
    if (line == "end_header") {
      end = at;
      body = next == std::string::npos ? text.size() : next + 1;
      break;
    }
    if (next == std::string::npos) break;
    at = next + 1;
  }
  if (end == std::string::npos) return "PLY header has no end_header line";
  std::istringstream header(text.substr(0, end));
  std::string line, format;
  std::vector<Element> elements;
  while (std::getline(header, line)) {
    std::istringstream in(line);
    std::string word;
    in >> word;
    if (word == "format") {
      in >> format;
    } else if (word == "element") {
      std::string name;
      long long count = -1;
      if (!(in >> name >> count) || count < 0) return "PLY element line '" + line + "' has no count";
      elements.push_back({name, uint64_t(count), {}, {}});
    } else if (word == "property") {
      if (elements.empty()) return "PLY property before any element";
      std::string type, countType, itemType;
      in >> type;
      Property p;
      if (type == "list") {
        in >> countType >> itemType;
        p.countSize = typeSize(countType);
        p.countSigned = countType.find('u') != 0;
        p.size = typeSize(itemType);
        if (!p.countSize || !p.size) return "PLY property line '" + line + "' has an unknown type";
      } else if (!(p.size = typeSize(type))) {
        return "PLY property line '" + line + "' has an unknown type";
      }
      std::string name;
      in >> name;
      elements.back().props.push_back(p);
      elements.back().names.push_back(name);
    }
  }
  // Vertices without a coordinate trip an assertion in assimp that aborts.
  for (const Element& e : elements)
    if (e.name == "vertex")
      for (const char* axis : {"x", "y", "z"})
        if (std::find(e.names.begin(), e.names.end(), axis) == e.names.end())
          return std::string("PLY vertices have no ") + axis + " property";
  if (format == "ascii") {
    // Every value must be there and be a number: assimp reads a text body
    // that ends early or holds a stray word into faces short of corners,
    // and an assertion in its triangulation then aborts the process.
    std::istringstream in(text.substr(body));
    for (const Element& e : elements)
      for (uint64_t i = 0; i < e.count && !e.props.empty(); ++i)
        for (const Property& p : e.props) {
          std::string token;
          if (!(in >> token)) return "PLY body is truncated";
          char* end = nullptr;
          const double items = std::strtod(token.c_str(), &end);
          if (end == token.c_str() || *end != '\0') return "PLY value '" + token + "' is not a number";
          if (p.countSize && e.name == "face" && items < 1) return "PLY face with no vertices";
          if (!p.countSize) continue;
          if (!(items >= 0 && items < 1e9)) return "PLY list has a bad length";
          std::string skip;
          for (uint64_t k = 0; k < uint64_t(items); ++k)
            if (!(in >> skip)) return "PLY body is truncated";
        }
    return {};
  }
  if (format != "binary_little_endian" && format != "binary_big_endian") return "PLY format '" + format + "' unknown";
  const bool little = format == "binary_little_endian";
  // Walk the body as the reader will: every element, every list length.
  size_t at = body;
  for (const Element& e : elements) {
    if (e.props.empty()) continue;
    for (uint64_t i = 0; i < e.count; ++i)
      for (const Property& p : e.props) {
        uint64_t items = 1;
        if (p.countSize) {
          if (size - at < size_t(p.countSize)) return "PLY body is truncated";
          uint64_t n = 0;
          for (int b = 0; b < p.countSize; ++b) n |= uint64_t(data[at + (little ? b : p.countSize - 1 - b)]) << (8 * b);
          if (p.countSigned && (n >> (8 * p.countSize - 1)) & 1) return "PLY list has a negative length";
          if (n == 0 && e.name == "face") return "PLY face with no vertices";
          at += size_t(p.countSize);
          items = n;
        }
        if (items > (size - at) / size_t(p.size)) return "PLY body is truncated";
        at += size_t(items) * size_t(p.size);
      }
  }
  return {};
}

}  // namespace kximport
