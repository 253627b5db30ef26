#pragma once
// Writes JSON text to a file or a string, streamed through a small buffer.
// Containers are written either as blocks (one member per line, indented two
// spaces a level) or inline (on one line without spaces), as the caller asks;
// everything inside an inline container is inline. Numbers are written in
// the shortest form that reads back to the same value, so writing what was
// read gives the same bytes again.
#include <cstdio>
#include <string>
#include <vector>

class JsonWriter {
 public:
  explicit JsonWriter(std::FILE* file);
  explicit JsonWriter(std::string* out);
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;
  ~JsonWriter();

  void beginObject(bool inlineLayout = false);
  void endObject();
  void beginArray(bool inlineLayout = false);
  void endArray();
  // The key of the next member of the current object.
  void key(const char* name);
  // Text must be valid UTF-8; anything else marks the writer failed.
  void string(const std::string& text);
  void number(double value);
  // A float in the shortest form that reads back to the same float.
  void number(float value);
  void integer(long long value);
  void boolean(bool value);
  // Writes a final newline and flushes; false when anything failed.
  bool finish();
  bool ok() const { return m_ok; }
  // Why the writer failed, when it did.
  const std::string& error() const { return m_error; }

 private:
  struct Level {
    bool object;
    bool inlineLayout;
    size_t count;
  };
  void beforeValue();
  void open(char bracket, bool object, bool inlineLayout);
  void close(char bracket, bool object);
  void quoted(const std::string& text);
  void put(const char* s, size_t n);
  void put(char c) { put(&c, 1); }
  void newline(size_t depth);
  void flush();
  void setError(const std::string& message);

  std::FILE* m_file = nullptr;
  std::string* m_out = nullptr;
  std::string m_buffer;
  std::vector<Level> m_stack;
  bool m_afterKey = false;
  bool m_ok = true;
  std::string m_error;
};

// True when the bytes are well-formed UTF-8 (no overlongs, no surrogates).
bool KxIsValidUtf8(const std::string& text);
