// JSON reading and writing: escapes, number grammar and bit-exact numbers,
// limits, error positions, streaming across chunk boundaries.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>

#include "support/JsonReader.h"
#include "support/JsonWriter.h"

namespace {
// The error of reading `doc` whole as one string ("" when it reads), and the string.
std::string stringError(const std::string& doc, std::string* out = nullptr) {
  JsonReader r(doc.data(), doc.size());
  std::string s;
  const bool ok = r.readString(s) && r.finish();
  if (out) *out = s;
  return ok ? "" : r.error();
}

// The error of skipping `doc` whole, "" when it parses.
std::string skipError(const std::string& doc, JsonLimits limits = {}) {
  JsonReader r(doc.data(), doc.size(), limits);
  return r.skipValue() && r.finish() ? "" : r.error();
}

// What `fn` writes, and the writer's error ("" when it finishes cleanly).
std::string written(const std::function<void(JsonWriter&)>& fn, std::string* error = nullptr) {
  std::string out;
  JsonWriter w(&out);
  fn(w);
  const bool ok = w.finish();
  if (error) *error = ok ? "" : w.error();
  return out;
}
}  // namespace

TEST(JsonReader, StringsDecodeEscapesAndRefuseBrokenText) {
  const struct { const char* doc; const char* value; } good[] = {
      {R"("a\"b\\c\/d\n\t\r\b\f")", "a\"b\\c/d\n\t\r\b\f"},
      {R"("\u00e9\u623F\u95f4")", "\xC3\xA9\xE6\x88\xBF\xE9\x97\xB4"},
      {R"("\ud83d\ude00")", "\xF0\x9F\x98\x80"},  // a surrogate pair is one character
      {R"("")", ""}};
  for (const auto& g : good) {
    std::string s;
    EXPECT_EQ(stringError(g.doc, &s), "") << g.doc;
    EXPECT_EQ(s, g.value) << g.doc;
  }
  const struct { const char* doc; const char* error; } bad[] = {
      {R"("\ud83d")", "unpaired surrogate"}, {R"("\ude00x")", "unpaired surrogate"}, {R"("a\u0000b")", "NUL"},
      {R"("\x")", "unknown escape"},          {R"("\u12g4")", "hex digits"},          {"\"a\nb\"", "control character"},
      {"\"\xC0\x80\"", "UTF-8"},  {"\"\xED\xA0\x80\"", "UTF-8"}, {"\"\xE6\x88\"", "UTF-8"},
      {"\"\xF5\x80\x80\x80\"", "UTF-8"}, {"\"\xE0\x80\xAF\"", "UTF-8"},  // bad lead, surrogate, cut, bad lead, overlong
      {"\"abc", "end of the file inside a string"}};
  for (const auto& b : bad) EXPECT_NE(stringError(b.doc).find(b.error), std::string::npos) << b.doc;
}

TEST(JsonReader, NumbersFollowTheGrammarAndComeBackVerbatim) {
  const auto number = [](const std::string& token) {
    JsonReader r(token.data(), token.size());
    std::string out;
    return r.readNumber(out) && r.finish() && out == token;
  };
  for (const char* ok : {"0", "-0", "12", "-3.25", "1e5", "1E+5", "2.5e-300", "0.0001", "123456789012345678901234"})
    EXPECT_TRUE(number(ok)) << ok;
  for (const char* bad : {"01", "1.", ".5", "-", "1e", "1e+", "--1", "1.2.3", "0x10", "1-2", "+1"})
    EXPECT_FALSE(number(bad)) << bad;
}

TEST(JsonReader, StructureErrorsSayWhatWasExpectedAndWhere) {
  const struct { const char* doc; const char* message; size_t line, column; } cases[] = {
      {"[1,]", "expected a value after ','", 1, 4},
      {"[1 2]", "expected ',' or ']' but found '2'", 1, 4},
      {"{\"a\" 1}", "expected ':' after the key but found '1'", 1, 6},
      {"{\"a\":1,}", "expected a key in double quotes but found '}'", 1, 8},
      {"{\"a\":1 \"b\":2}", "expected ',' or '}' but found '\"'", 1, 8},
      {"[1, 2]\n  x", "unexpected 'x' after the end of the document", 2, 3},
      {"[\n1,\n2", "expected ',' or ']' but found the end of the file", 3, 2},
      {"", "unexpected end of the file where a value was expected", 1, 1},
      {"[tru]", "expected 'true'", 1, 5},
      {"+1", "expected a value but found '+'", 1, 1},
      {"[\xEF\xBB\xBF 1]", "expected a value but found byte 0xEF", 1, 2}};  // a byte order mark only at the start
  for (const auto& c : cases) {
    JsonReader r(c.doc, std::strlen(c.doc));
    EXPECT_FALSE(r.skipValue() && r.finish()) << c.doc;
    EXPECT_EQ(r.error(), c.message) << c.doc;
    EXPECT_EQ(r.line(), c.line) << c.doc;
    EXPECT_EQ(r.column(), c.column) << c.doc;
  }
  EXPECT_EQ(skipError("\xEF\xBB\xBF[1]"), "");
  JsonReader r("[1 2]", 5);  // the first error sticks
  std::string tok;
  ASSERT_TRUE(r.beginArray() && r.nextElement() && r.readNumber(tok));
  EXPECT_FALSE(r.nextElement());
  const std::string first = r.error();
  r.fail("something later");
  EXPECT_FALSE(r.readNumber(tok));
  EXPECT_EQ(r.peek(), JsonReader::Type::Invalid);
  EXPECT_EQ(r.error(), first);
}

TEST(JsonReader, LimitsStopLongStringsDeepNestingAndLongNumbers) {
  JsonLimits small;
  small.maxStringBytes = 8;
  small.maxDepth = 4;
  small.maxNumberChars = 6;
  const struct { const char* doc; const char* error; } rows[] = {
      {"\"12345678\"", ""}, {"\"123456789\"", "string longer than 8 bytes"},
      {R"("\u00e9\u00e9\u00e9\u00e9")", ""},  // escapes count by their decoded size
      {R"("\u00e9\u00e9\u00e9\u00e9x")", "string longer than 8 bytes"},
      {"{\"123456789\":1}", "string longer than 8 bytes"},  // keys too
      {"[[[[1]]]]", ""}, {"[[[[[1]]]]]", "nesting deeper than 4 levels"},
      {"123456", ""}, {"1234567", "number longer than 6 characters"}};
  for (const auto& r : rows) EXPECT_EQ(skipError(r.doc, small), r.error) << r.doc;
  // The failure comes at the first byte past the limit, not at the string's end.
  const std::string longText = "\"" + std::string(1000, 'a') + "\"";
  JsonReader r(longText.data(), longText.size(), small);
  std::string s;
  EXPECT_FALSE(r.readString(s));
  EXPECT_LE(s.size(), 8u);
  EXPECT_EQ(r.column(), 2u);
}

TEST(Json, FilesAreWrittenWholeAndStreamedAcrossChunkBoundaries) {
  // Multi-byte characters and escapes land on every offset of the 64 KiB chunks.
  std::FILE* f = std::tmpfile();
  ASSERT_TRUE(f);
  const size_t count = 30000;
  {
    JsonWriter w(f);
    w.beginArray();
    for (size_t i = 0; i < count; ++i) {
      w.beginArray(true);
      w.string("\xE6\x88\xBF\n\x1f\xE9\x97\xB4x");  // the control character as \u001f
      w.number(i + 0.5);
      w.endArray();
    }
    w.endArray();
    ASSERT_TRUE(w.finish());
  }
  std::rewind(f);
  JsonReader r(f);
  std::string s, tok;
  size_t n = 0;
  ASSERT_TRUE(r.beginArray());
  while (r.nextElement()) {
    ASSERT_TRUE(r.beginArray() && r.nextElement() && r.readString(s) && r.nextElement() && r.readNumber(tok));
    ASSERT_EQ(s, "\xE6\x88\xBF\n\x1f\xE9\x97\xB4x") << "element " << n;
    ASSERT_EQ(tok, std::to_string(n++) + ".5");
    ASSERT_FALSE(r.nextElement());
  }
  EXPECT_TRUE(r.finish()) << r.error();  // with every element checked in order, all `count` were read
  EXPECT_EQ(r.line(), count + 3);
  std::fclose(f);
}

TEST(JsonWriter, NumbersAreShortestAndReadBackToTheSameBits) {
  std::vector<double> values = {0.1, 1.0 / 3.0, -0.0, 5e-324, 2.2250738585072014e-308, 1.7976931348623157e308,
                                123456789012345680.0, 1e21, 1e-7, std::nextafter(1.0, 2.0)};
  std::mt19937_64 rng(20240611);
  for (int i = 0; i < 20000; ++i) {
    const uint64_t b = rng();
    double v;
    std::memcpy(&v, &b, sizeof v);
    if (std::isfinite(v)) values.push_back(v);
    values.push_back(std::ldexp(double(rng() % 1000003) / 7.0, int(rng() % 200) - 100));
  }
  for (double v : values) {
    std::string s = written([&](JsonWriter& w) { w.number(v); });
    s.pop_back();  // the newline that ends the document
    double back = 0.0;
    ASSERT_EQ(std::from_chars(s.data(), s.data() + s.size(), back).ec, std::errc()) << s;
    ASSERT_EQ(std::memcmp(&back, &v, sizeof v), 0) << s;
    JsonReader reader(s.data(), s.size());  // and the reader takes it as a number, unchanged
    std::string tok;
    ASSERT_TRUE(reader.readNumber(tok) && tok == s) << s;
  }
  EXPECT_EQ(written([](JsonWriter& w) {
              w.beginArray(true);
              for (double d : {0.1, 6.0, -0.0}) w.number(d);
              for (float f : {1.2f, 8.0f, 0.1f}) w.number(f);  // floats in their own shortest form
              w.endArray();
            }),
            "[0.1,6,-0,1.2,8,0.1]\n");
}

TEST(JsonWriter, EscapesWhatTheReaderUndoes) {
  std::string all;
  for (int c = 1; c < 128; ++c) all += char(c);
  all += "\xE6\x88\xBF\xE9\x97\xB4\xF0\x9F\x98\x80";
  const std::string out = written([&](JsonWriter& w) {
    w.beginObject(true);
    w.key("k\"\\\n");
    w.string(all);
    w.endObject();
  });
  EXPECT_EQ(out.find('\n'), out.size() - 1);  // no raw control characters before the closing newline
  JsonReader r(out.data(), out.size());
  std::string key, value;
  ASSERT_TRUE(r.beginObject() && r.nextKey(key) && r.readString(value));
  EXPECT_TRUE(key == "k\"\\\n" && value == all);
  EXPECT_TRUE(!r.nextKey(key) && r.finish());
}

TEST(JsonWriter, RefusesWhatJsonCannotHold) {
  const struct { const char* what; std::function<void(JsonWriter&)> fn; const char* error; } rows[] = {
      {"0xFF", [](JsonWriter& w) { w.string("\xFF"); }, "text that is not valid UTF-8"},
      {"infinity", [](JsonWriter& w) { w.number(std::numeric_limits<double>::infinity()); }, "a number that is not finite"},
      {"NaN", [](JsonWriter& w) { w.number(std::nan("")); }, "a number that is not finite"},
      {"unclosed", [](JsonWriter& w) { w.beginArray(); }, nullptr},
      {"no key", [](JsonWriter& w) { w.beginObject(); w.integer(1); w.endObject(); }, nullptr}};
  for (const auto& r : rows) {
    std::string error;
    written(r.fn, &error);
    EXPECT_NE(error, "") << r.what;
    if (r.error) EXPECT_EQ(error, r.error) << r.what;
  }
  for (const char* ok : {"", "\xE5\x9D\xA1\xE5\xB1\x8B", "\xF4\x8F\xBF\xBF"}) EXPECT_TRUE(KxIsValidUtf8(ok)) << ok;  // U+10FFFF
  for (const char* bad : {"\xF4\x90\x80\x80", "\xE0\x9F\xBF", "\xC1\xBF", "\xBF", "a\xC0\x80", "\xED\xA0\x80", "\xE6\x88"})
    EXPECT_FALSE(KxIsValidUtf8(bad)) << bad;  // past U+10FFFF, overlong, stray, surrogate, cut
}
