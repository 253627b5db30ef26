#pragma once
// A pull reader for JSON text, streamed from a file or a memory block, so
// that a big model file is never held in memory as text. The caller walks
// the document it expects (beginObject / nextKey / value ...) and the reader
// checks the syntax on the way. Limits on string length, number length and
// nesting are checked while reading, before anything is allocated for them.
// The first error is sticky: every later call fails and error() keeps the
// first message, with its line and column.
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

struct JsonLimits {
  size_t maxStringBytes = size_t(1) << 20;  // per string or key, after unescaping
  size_t maxNumberChars = 400;
  size_t maxDepth = 64;
};

class JsonReader {
 public:
  enum class Type { Null, Bool, Number, String, Array, Object, End, Invalid };

  // Reads from an open file (not closed here).
  explicit JsonReader(std::FILE* file, JsonLimits limits = {});
  // Reads from a memory block that outlives the reader.
  JsonReader(const char* text, size_t size, JsonLimits limits = {});
  JsonReader(const JsonReader&) = delete;
  JsonReader& operator=(const JsonReader&) = delete;

  // The kind of the next value, without consuming it; Invalid after an error
  // or at a character no value starts with, End at the end of the input.
  Type peek();

  bool beginObject();
  // Inside an object: true with the next member's key, false at the closing
  // brace (consumed) or on an error.
  bool nextKey(std::string& key);
  bool beginArray();
  // Inside an array: true when another element follows, false at the
  // closing bracket (consumed) or on an error.
  bool nextElement();

  // The number's text exactly as written (checked against the JSON grammar).
  bool readNumber(std::string& token);
  bool readString(std::string& out);
  bool readBool(bool& value);
  bool readNull();
  // Consumes one value of any kind (within the same limits).
  bool skipValue();
  // After the top-level value: only white space may follow.
  bool finish();

  // Records a failure found by the caller (the first one wins).
  void fail(const std::string& message);
  bool failed() const { return m_failed; }
  // The message without position; line() and column() say where.
  const std::string& error() const { return m_error; }
  // 1-based position of the next unread character (of the error, once failed).
  size_t line() const { return m_failed ? m_errorLine : m_line; }
  size_t column() const { return m_failed ? m_errorColumn : m_column; }
  size_t depth() const { return m_stack.size(); }

 private:
  struct Level {
    bool object;
    size_t count;
  };
  int peekChar();
  int getChar();
  bool refill();
  void skipSpace();
  bool expectLiteral(const char* word);
  bool open(bool object);
  bool readStringBody(std::string& out);
  bool readEscape(std::string& out);
  bool readHex4(unsigned& value);
  bool readUtf8Tail(int lead, std::string& out);
  bool append(std::string& out, const char* bytes, size_t n);
  bool skipContainer();

  std::FILE* m_file = nullptr;
  const char* m_cur = nullptr;
  const char* m_end = nullptr;
  std::vector<char> m_buffer;
  bool m_eof = false;
  JsonLimits m_limits;
  std::vector<Level> m_stack;
  bool m_started = false;  // the top-level value has begun
  size_t m_line = 1;
  size_t m_column = 1;
  bool m_failed = false;
  std::string m_error;
  size_t m_errorLine = 0;
  size_t m_errorColumn = 0;
};
