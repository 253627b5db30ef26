#include "support/JsonReader.h"

#include <cstring>

namespace {
constexpr size_t kFileChunk = 64 * 1024;

bool isDigit(int c) { return c >= '0' && c <= '9'; }

std::string describe(int c) {
  if (c < 0) return "the end of the file";
  if (c >= 0x20 && c < 0x7F) return std::string("'") + char(c) + "'";
  char buf[16];
  std::snprintf(buf, sizeof buf, "byte 0x%02X", unsigned(c));
  return buf;
}

// JSON number grammar: -? (0 | [1-9][0-9]*) (. [0-9]+)? ([eE] [+-]? [0-9]+)?
bool validNumber(const std::string& s) {
  size_t i = 0, n = s.size();
  if (i < n && s[i] == '-') ++i;
  if (i >= n) return false;
  if (s[i] == '0') {
    ++i;
  } else if (isDigit(s[i])) {
    while (i < n && isDigit(s[i])) ++i;
  } else {
    return false;
  }
  if (i < n && s[i] == '.') {
    ++i;
    if (i >= n || !isDigit(s[i])) return false;
    while (i < n && isDigit(s[i])) ++i;
  }
  if (i < n && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    if (i < n && (s[i] == '+' || s[i] == '-')) ++i;
    if (i >= n || !isDigit(s[i])) return false;
    while (i < n && isDigit(s[i])) ++i;
  }
  return i == n;
}

void appendUtf8(std::string& out, unsigned cp) {
  if (cp < 0x80) {
    out += char(cp);
  } else if (cp < 0x800) {
    out += char(0xC0 | (cp >> 6));
    out += char(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += char(0xE0 | (cp >> 12));
    out += char(0x80 | ((cp >> 6) & 0x3F));
    out += char(0x80 | (cp & 0x3F));
  } else {
    out += char(0xF0 | (cp >> 18));
    out += char(0x80 | ((cp >> 12) & 0x3F));
    out += char(0x80 | ((cp >> 6) & 0x3F));
    out += char(0x80 | (cp & 0x3F));
  }
}
}  // namespace

JsonReader::JsonReader(std::FILE* file, JsonLimits limits) : m_file(file), m_limits(limits) {
  m_buffer.resize(kFileChunk);
  m_cur = m_end = m_buffer.data();
  if (!file) fail("no file to read");
}

JsonReader::JsonReader(const char* text, size_t size, JsonLimits limits)
    : m_cur(text), m_end(text + size), m_eof(true), m_limits(limits) {}

bool JsonReader::refill() {
  if (m_eof || !m_file) return false;
  const size_t n = std::fread(m_buffer.data(), 1, m_buffer.size(), m_file);
  if (n == 0) {
    m_eof = true;
    if (std::ferror(m_file)) fail("the file could not be read");
    return false;
  }
  m_cur = m_buffer.data();
  m_end = m_cur + n;
  return true;
}

int JsonReader::peekChar() {
  if (m_cur == m_end && !refill()) return -1;
  return static_cast<unsigned char>(*m_cur);
}

int JsonReader::getChar() {
  const int c = peekChar();
  if (c < 0) return c;
  ++m_cur;
  if (c == '\n') {
    ++m_line;
    m_column = 1;
  } else {
    ++m_column;
  }
  return c;
}

void JsonReader::skipSpace() {
  for (;;) {
    const int c = peekChar();
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
      getChar();
    } else if (c == 0xEF && m_line == 1 && m_column == 1 && !m_started) {
      // A UTF-8 byte order mark some editors put first.
      getChar();
      if (getChar() != 0xBB || getChar() != 0xBF) {
        fail("unexpected bytes at the start of the file");
        return;
      }
      m_column = 1;
    } else {
      return;
    }
  }
}

void JsonReader::fail(const std::string& message) {
  if (m_failed) return;
  m_failed = true;
  m_error = message;
  m_errorLine = m_line;
  m_errorColumn = m_column;
}

JsonReader::Type JsonReader::peek() {
  if (m_failed) return Type::Invalid;
  skipSpace();
  if (m_failed) return Type::Invalid;
  const int c = peekChar();
  switch (c) {
    case -1:
      return Type::End;
    case '{':
      return Type::Object;
    case '[':
      return Type::Array;
    case '"':
      return Type::String;
    case 't':
    case 'f':
      return Type::Bool;
    case 'n':
      return Type::Null;
    default:
      return (c == '-' || isDigit(c)) ? Type::Number : Type::Invalid;
  }
}

bool JsonReader::open(bool object) {
  if (peek() != (object ? Type::Object : Type::Array)) {
    fail(object ? "expected an object" : "expected an array");
    return false;
  }
  if (m_stack.size() >= m_limits.maxDepth) {
    fail("nesting deeper than " + std::to_string(m_limits.maxDepth) + " levels");
    return false;
  }
  getChar();
  m_started = true;
  m_stack.push_back({object, 0});
  return true;
}

bool JsonReader::beginObject() { return open(true); }
bool JsonReader::beginArray() { return open(false); }

bool JsonReader::nextKey(std::string& key) {
  if (m_failed) return false;
  if (m_stack.empty() || !m_stack.back().object) {
    fail("not inside an object");
    return false;
  }
  skipSpace();
  int c = peekChar();
  if (c == '}') {
    getChar();
    m_stack.pop_back();
    return false;
  }
  if (m_stack.back().count > 0) {
    if (c != ',') {
      fail("expected ',' or '}' but found " + describe(c));
      return false;
    }
    getChar();
    skipSpace();
    c = peekChar();
  }
  if (c != '"') {
    fail("expected a key in double quotes but found " + describe(c));
    return false;
  }
  getChar();
  key.clear();
  if (!readStringBody(key)) return false;
  skipSpace();
  c = peekChar();
  if (c != ':') {
    fail("expected ':' after the key but found " + describe(c));
    return false;
  }
  getChar();
  ++m_stack.back().count;
  return true;
}

bool JsonReader::nextElement() {
  if (m_failed) return false;
  if (m_stack.empty() || m_stack.back().object) {
    fail("not inside an array");
    return false;
  }
  skipSpace();
  int c = peekChar();
  if (c == ']') {
    getChar();
    m_stack.pop_back();
    return false;
  }
  if (m_stack.back().count > 0) {
    if (c != ',') {
      fail("expected ',' or ']' but found " + describe(c));
      return false;
    }
    getChar();
    skipSpace();
    if (peekChar() == ']') {
      fail("expected a value after ','");
      return false;
    }
  }
  ++m_stack.back().count;
  return true;
}

bool JsonReader::readNumber(std::string& token) {
  if (peek() != Type::Number) {
    fail("expected a number");
    return false;
  }
  m_started = true;
  token.clear();
  for (;;) {
    const int c = peekChar();
    if (!(isDigit(c) || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E')) break;
    if (token.size() >= m_limits.maxNumberChars) {
      fail("number longer than " + std::to_string(m_limits.maxNumberChars) + " characters");
      return false;
    }
    token += char(getChar());
  }
  if (!validNumber(token)) {
    fail("malformed number '" + token + "'");
    return false;
  }
  return true;
}

bool JsonReader::readString(std::string& out) {
  if (peek() != Type::String) {
    fail("expected a string");
    return false;
  }
  m_started = true;
  getChar();
  out.clear();
  return readStringBody(out);
}

bool JsonReader::append(std::string& out, const char* bytes, size_t n) {
  if (out.size() + n > m_limits.maxStringBytes) {
    fail("string longer than " + std::to_string(m_limits.maxStringBytes) + " bytes");
    return false;
  }
  out.append(bytes, n);
  return true;
}

bool JsonReader::readStringBody(std::string& out) {
  for (;;) {
    // Copy a run of plain ASCII straight from the buffer.
    if (m_cur == m_end && !refill()) {
      fail("unexpected end of the file inside a string");
      return false;
    }
    const char* run = m_cur;
    while (run != m_end) {
      const unsigned char u = static_cast<unsigned char>(*run);
      if (u == '"' || u == '\\' || u < 0x20 || u >= 0x80) break;
      ++run;
    }
    if (run != m_cur) {
      const size_t n = size_t(run - m_cur);
      if (!append(out, m_cur, n)) return false;
      m_cur = run;
      m_column += n;
      continue;
    }
    const int c = getChar();
    if (c == '"') return true;
    if (c == '\\') {
      if (!readEscape(out)) return false;
    } else if (c < 0x20) {
      fail("control character " + describe(c) + " inside a string");
      return false;
    } else if (!readUtf8Tail(c, out)) {
      return false;
    }
  }
}

bool JsonReader::readUtf8Tail(int lead, std::string& out) {
  int extra;
  unsigned cp;
  if (lead >= 0xC2 && lead <= 0xDF) {
    extra = 1;
    cp = unsigned(lead) & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    extra = 2;
    cp = unsigned(lead) & 0x0F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    extra = 3;
    cp = unsigned(lead) & 0x07;
  } else {
    fail("invalid UTF-8 " + describe(lead) + " inside a string");
    return false;
  }
  char bytes[4] = {char(lead)};
  for (int i = 1; i <= extra; ++i) {
    const int c = peekChar();
    if (c < 0x80 || c > 0xBF) {
      fail("invalid UTF-8 sequence inside a string");
      return false;
    }
    getChar();
    bytes[i] = char(c);
    cp = (cp << 6) | (unsigned(c) & 0x3F);
  }
  // Overlong forms, surrogates and code points past U+10FFFF are not UTF-8.
  const bool overlong = (extra == 2 && cp < 0x800) || (extra == 3 && cp < 0x10000);
  if (overlong || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) {
    fail("invalid UTF-8 sequence inside a string");
    return false;
  }
  return append(out, bytes, size_t(extra) + 1);
}

bool JsonReader::readHex4(unsigned& value) {
  value = 0;
  for (int i = 0; i < 4; ++i) {
    const int c = getChar();
    unsigned d;
    if (isDigit(c)) {
      d = unsigned(c - '0');
    } else if (c >= 'a' && c <= 'f') {
      d = unsigned(c - 'a' + 10);
    } else if (c >= 'A' && c <= 'F') {
      d = unsigned(c - 'A' + 10);
    } else {
      fail("expected four hex digits after \\u");
      return false;
    }
    value = value * 16 + d;
  }
  return true;
}

bool JsonReader::readEscape(std::string& out) {
  const int c = getChar();
  char simple = 0;
  switch (c) {
    case '"':
      simple = '"';
      break;
    case '\\':
      simple = '\\';
      break;
    case '/':
      simple = '/';
      break;
    case 'b':
      simple = '\b';
      break;
    case 'f':
      simple = '\f';
      break;
    case 'n':
      simple = '\n';
      break;
    case 'r':
      simple = '\r';
      break;
    case 't':
      simple = '\t';
      break;
    case 'u':
      break;
    default:
      fail("unknown escape \\" + (c < 0 ? std::string() : std::string(1, char(c))) + " inside a string");
      return false;
  }
  if (simple) return append(out, &simple, 1);
  unsigned cp;
  if (!readHex4(cp)) return false;
  if (cp >= 0xDC00 && cp <= 0xDFFF) {
    fail("unpaired surrogate \\u escape inside a string");
    return false;
  }
  if (cp >= 0xD800 && cp <= 0xDBFF) {
    unsigned low;
    if (getChar() != '\\' || getChar() != 'u' || !readHex4(low) || low < 0xDC00 || low > 0xDFFF) {
      fail("unpaired surrogate \\u escape inside a string");
      return false;
    }
    cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
  }
  if (cp == 0) {
    // Engine text is zero-terminated; an embedded NUL would cut it silently.
    fail("NUL character inside a string");
    return false;
  }
  std::string bytes;
  appendUtf8(bytes, cp);
  return append(out, bytes.data(), bytes.size());
}

bool JsonReader::expectLiteral(const char* word) {
  for (const char* p = word; *p; ++p) {
    if (peekChar() != static_cast<unsigned char>(*p)) {
      fail(std::string("expected '") + word + "'");
      return false;
    }
    getChar();
  }
  m_started = true;
  return true;
}

bool JsonReader::readBool(bool& value) {
  const Type t = peek();
  if (t != Type::Bool) {
    fail("expected true or false");
    return false;
  }
  value = peekChar() == 't';
  return expectLiteral(value ? "true" : "false");
}

bool JsonReader::readNull() {
  if (peek() != Type::Null) {
    fail("expected null");
    return false;
  }
  return expectLiteral("null");
}

bool JsonReader::skipContainer() {
  const bool object = m_stack.back().object;
  std::string key;
  for (;;) {
    const bool more = object ? nextKey(key) : nextElement();
    if (!more) return !m_failed;
    if (!skipValue()) return false;
  }
}

bool JsonReader::skipValue() {
  std::string scratch;
  switch (peek()) {
    case Type::Null:
      return readNull();
    case Type::Bool: {
      bool b;
      return readBool(b);
    }
    case Type::Number:
      return readNumber(scratch);
    case Type::String:
      return readString(scratch);
    case Type::Array:
      return beginArray() && skipContainer();
    case Type::Object:
      return beginObject() && skipContainer();
    case Type::End:
      fail("unexpected end of the file where a value was expected");
      return false;
    case Type::Invalid:
      if (!m_failed) fail("expected a value but found " + describe(peekChar()));
      return false;
  }
  return false;
}

bool JsonReader::finish() {
  if (m_failed) return false;
  if (!m_stack.empty()) {
    fail("unexpected end of the document inside a container");
    return false;
  }
  skipSpace();
  if (m_failed) return false;
  const int c = peekChar();
  if (c >= 0) {
    fail("unexpected " + describe(c) + " after the end of the document");
    return false;
  }
  return !m_failed;
}
