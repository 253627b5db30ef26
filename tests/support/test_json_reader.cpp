// The JSON pull reader: values and structure, strings and escapes, the
// number grammar, limits checked before allocation, error positions, and
// streaming across the file buffer's chunk boundaries.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "support/JsonReader.h"

namespace {

// Reads one string value from a whole document; "" and the error on failure.
std::string readOneString(const std::string& doc, std::string* error = nullptr) {
  JsonReader r(doc.data(), doc.size());
  std::string s;
  const bool ok = r.readString(s) && r.finish();
  if (error) *error = ok ? "" : r.error();
  return ok ? s : "";
}

bool parsesAsNumber(const std::string& token) {
  JsonReader r(token.data(), token.size());
  std::string out;
  return r.readNumber(out) && r.finish() && out == token;
}

// Every error a document gives when skipped whole.
std::string skipError(const std::string& doc, JsonLimits limits = {}) {
  JsonReader r(doc.data(), doc.size(), limits);
  if (r.skipValue() && r.finish()) return "";
  return r.error();
}

}  // namespace

TEST(JsonReader, WalksObjectsArraysAndScalars) {
  const std::string doc = R"( {"a": [1, -2.5e3, true, false, null], "b": {"c": "x"}, "d": []} )";
  JsonReader r(doc.data(), doc.size());
  std::string key, tok, s;
  bool b = false;
  ASSERT_EQ(r.peek(), JsonReader::Type::Object);
  ASSERT_TRUE(r.beginObject());
  ASSERT_TRUE(r.nextKey(key));
  EXPECT_EQ(key, "a");
  ASSERT_TRUE(r.beginArray());
  ASSERT_TRUE(r.nextElement());
  ASSERT_TRUE(r.readNumber(tok));
  EXPECT_EQ(tok, "1");
  ASSERT_TRUE(r.nextElement());
  ASSERT_TRUE(r.readNumber(tok));
  EXPECT_EQ(tok, "-2.5e3");
  ASSERT_TRUE(r.nextElement());
  ASSERT_TRUE(r.readBool(b));
  EXPECT_TRUE(b);
  ASSERT_TRUE(r.nextElement());
  ASSERT_TRUE(r.readBool(b));
  EXPECT_FALSE(b);
  ASSERT_TRUE(r.nextElement());
  EXPECT_EQ(r.peek(), JsonReader::Type::Null);
  ASSERT_TRUE(r.readNull());
  EXPECT_FALSE(r.nextElement());
  ASSERT_TRUE(r.nextKey(key));
  EXPECT_EQ(key, "b");
  ASSERT_TRUE(r.skipValue());
  ASSERT_TRUE(r.nextKey(key));
  EXPECT_EQ(key, "d");
  ASSERT_TRUE(r.beginArray());
  EXPECT_FALSE(r.nextElement());
  EXPECT_FALSE(r.nextKey(key));
  EXPECT_FALSE(r.failed());
  EXPECT_TRUE(r.finish());
  EXPECT_EQ(r.depth(), 0u);
}

TEST(JsonReader, DecodesEscapesAndKeepsUtf8) {
  EXPECT_EQ(readOneString(R"("a\"b\\c\/d\n\t\r\b\f")"), "a\"b\\c/d\n\t\r\b\f");
  EXPECT_EQ(readOneString(R"("\u00e9\u623F\u95f4")"), "\xC3\xA9\xE6\x88\xBF\xE9\x97\xB4");
  EXPECT_EQ(readOneString(R"("\ud83d\ude00")"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(readOneString("\"\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6\""), "\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6");
  EXPECT_EQ(readOneString(R"("")"), "");
}

TEST(JsonReader, RefusesBrokenStrings) {
  std::string err;
  readOneString(R"("\ud83d")", &err);
  EXPECT_NE(err.find("unpaired surrogate"), std::string::npos) << err;
  readOneString(R"("\ude00x")", &err);
  EXPECT_NE(err.find("unpaired surrogate"), std::string::npos) << err;
  readOneString(R"("a\u0000b")", &err);
  EXPECT_NE(err.find("NUL"), std::string::npos) << err;
  readOneString(R"("\x")", &err);
  EXPECT_NE(err.find("unknown escape"), std::string::npos) << err;
  readOneString(R"("\u12g4")", &err);
  EXPECT_NE(err.find("hex digits"), std::string::npos) << err;
  readOneString("\"a\nb\"", &err);
  EXPECT_NE(err.find("control character"), std::string::npos) << err;
  for (const char* bad : {"\"\xC0\x80\"", "\"\xED\xA0\x80\"", "\"\x80\"", "\"\xE6\x88\"", "\"\xF5\x80\x80\x80\"",
                          "\"\xE0\x80\xAF\""}) {
    readOneString(bad, &err);
    EXPECT_NE(err.find("UTF-8"), std::string::npos) << "for " << bad << ": " << err;
  }
  readOneString("\"abc", &err);
  EXPECT_NE(err.find("end of the file inside a string"), std::string::npos) << err;
}

TEST(JsonReader, NumbersFollowTheGrammarAndComeBackVerbatim) {
  for (const char* ok : {"0", "-0", "12", "-3.25", "1e5", "1E+5", "2.5e-300", "0.0001", "123456789012345678901234"})
    EXPECT_TRUE(parsesAsNumber(ok)) << ok;
  for (const char* bad : {"01", "1.", ".5", "-", "1e", "1e+", "--1", "1.2.3", "0x10", "1-2"})
    EXPECT_FALSE(parsesAsNumber(bad)) << bad;
  std::string tok;
  JsonReader plus("+1", 2);
  EXPECT_FALSE(plus.readNumber(tok));
  EXPECT_EQ(plus.error(), "expected a number");
}

TEST(JsonReader, StructureErrorsSayWhatWasExpectedAndWhere) {
  struct Case {
    const char* doc;
    const char* message;
    size_t line, column;
  };
  const Case cases[] = {
      {"[1,]", "expected a value after ','", 1, 4},
      {"[1 2]", "expected ',' or ']' but found '2'", 1, 4},
      {"{\"a\" 1}", "expected ':' after the key but found '1'", 1, 6},
      {"{\"a\":1,}", "expected a key in double quotes but found '}'", 1, 8},
      {"{\"a\":1 \"b\":2}", "expected ',' or '}' but found '\"'", 1, 8},
      {"[1, 2]\n  x", "unexpected 'x' after the end of the document", 2, 3},
      {"[\n1,\n2", "expected ',' or ']' but found the end of the file", 3, 2},
      {"", "unexpected end of the file where a value was expected", 1, 1},
      {"[tru]", "expected 'true'", 1, 5},
      {"{1:2}", "expected a key in double quotes but found '1'", 1, 2},
  };
  for (const Case& c : cases) {
    JsonReader r(c.doc, std::strlen(c.doc));
    EXPECT_FALSE(r.skipValue() && r.finish()) << c.doc;
    EXPECT_EQ(r.error(), c.message) << c.doc;
    EXPECT_EQ(r.line(), c.line) << c.doc;
    EXPECT_EQ(r.column(), c.column) << c.doc;
  }
}

TEST(JsonReader, TheFirstErrorSticks) {
  JsonReader r("[1 2]", 5);
  std::string tok;
  ASSERT_TRUE(r.beginArray());
  ASSERT_TRUE(r.nextElement());
  ASSERT_TRUE(r.readNumber(tok));
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
  EXPECT_EQ(skipError("\"12345678\"", small), "");
  EXPECT_EQ(skipError("\"123456789\"", small), "string longer than 8 bytes");
  // Escapes count by their decoded size; keys are limited too.
  EXPECT_EQ(skipError(R"("\u00e9\u00e9\u00e9\u00e9")", small), "");
  EXPECT_EQ(skipError(R"("\u00e9\u00e9\u00e9\u00e9x")", small), "string longer than 8 bytes");
  EXPECT_EQ(skipError("{\"123456789\":1}", small), "string longer than 8 bytes");
  EXPECT_EQ(skipError("[[[[1]]]]", small), "");
  EXPECT_EQ(skipError("[[[[[1]]]]]", small), "nesting deeper than 4 levels");
  EXPECT_EQ(skipError("123456", small), "");
  EXPECT_EQ(skipError("1234567", small), "number longer than 6 characters");

  // The failure comes at the first byte past the limit, not at the string's end.
  const std::string longText = "\"" + std::string(1000, 'a') + "\"";
  JsonReader r(longText.data(), longText.size(), small);
  std::string s;
  EXPECT_FALSE(r.readString(s));
  EXPECT_LE(s.size(), 8u);
  EXPECT_EQ(r.column(), 2u);
}

TEST(JsonReader, SkipsAByteOrderMarkAtTheStartOnly) {
  EXPECT_EQ(skipError("\xEF\xBB\xBF[1]"), "");
  EXPECT_NE(skipError("[\xEF\xBB\xBF 1]"), "");
}

TEST(JsonReader, StreamsAFileAcrossChunkBoundaries) {
  // Strings, escapes, numbers and multi-byte characters land on every
  // offset of the 64 KiB read chunks.
  std::FILE* f = std::tmpfile();
  ASSERT_TRUE(f);
  std::string doc = "[";
  const std::string word = "\xE6\x88\xBF\\n\\u95f4x";
  const size_t count = 30000;
  for (size_t i = 0; i < count; ++i) {
    if (i) doc += ",\n";
    doc += "[\"" + word + "\", " + std::to_string(i) + ".5]";
  }
  doc += "]";
  ASSERT_EQ(std::fwrite(doc.data(), 1, doc.size(), f), doc.size());
  std::rewind(f);
  JsonReader r(f);
  std::string s, tok;
  size_t n = 0;
  ASSERT_TRUE(r.beginArray());
  while (r.nextElement()) {
    ASSERT_TRUE(r.beginArray());
    ASSERT_TRUE(r.nextElement());
    ASSERT_TRUE(r.readString(s));
    ASSERT_EQ(s, "\xE6\x88\xBF\n\xE9\x97\xB4x") << "element " << n;
    ASSERT_TRUE(r.nextElement());
    ASSERT_TRUE(r.readNumber(tok));
    ASSERT_EQ(tok, std::to_string(n) + ".5");
    ASSERT_FALSE(r.nextElement());
    ++n;
  }
  EXPECT_FALSE(r.failed()) << r.error();
  EXPECT_TRUE(r.finish());
  EXPECT_EQ(n, count);
  EXPECT_EQ(r.line(), count);
  std::fclose(f);
}

TEST(JsonReader, TruncatedFileFailsAtTheEnd) {
  std::FILE* f = std::tmpfile();
  ASSERT_TRUE(f);
  const std::string doc = "{\"a\": [1, 2, 3], \"b\": \"unfinished";
  std::fwrite(doc.data(), 1, doc.size(), f);
  std::rewind(f);
  JsonReader r(f);
  EXPECT_FALSE(r.skipValue());
  EXPECT_EQ(r.error(), "unexpected end of the file inside a string");
  EXPECT_EQ(r.column(), doc.size() + 1);
  std::fclose(f);
}
