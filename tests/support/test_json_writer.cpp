// The JSON writer: layout, escaping that the reader undoes exactly, numbers
// that read back to the same bits, and refusal of what JSON cannot hold.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include "support/JsonReader.h"
#include "support/JsonWriter.h"

namespace {

std::string written(double v) {
  std::string out;
  {
    JsonWriter w(&out);
    w.number(v);
  }
  return out;
}

uint64_t bits(double v) {
  uint64_t b;
  std::memcpy(&b, &v, sizeof b);
  return b;
}

}  // namespace

TEST(JsonWriter, BlockAndInlineLayout) {
  std::string out;
  JsonWriter w(&out);
  w.beginObject();
  w.key("a");
  w.integer(1);
  w.key("pts");
  w.beginArray(true);
  w.beginArray();  // inside an inline array everything is inline
  w.number(1.5);
  w.number(-2.0);
  w.endArray();
  w.endArray();
  w.key("list");
  w.beginArray();
  w.beginObject(true);
  w.key("k");
  w.string("v");
  w.key("b");
  w.boolean(false);
  w.endObject();
  w.boolean(true);
  w.endArray();
  w.key("empty");
  w.beginObject();
  w.endObject();
  w.endObject();
  ASSERT_TRUE(w.finish());
  EXPECT_EQ(out,
            "{\n"
            "  \"a\": 1,\n"
            "  \"pts\": [[1.5,-2]],\n"
            "  \"list\": [\n"
            "    {\"k\":\"v\",\"b\":false},\n"
            "    true\n"
            "  ],\n"
            "  \"empty\": {}\n"
            "}\n");
}

TEST(JsonWriter, DoublesReadBackToTheSameBits) {
  const double special[] = {0.1,
                            1.0 / 3.0,
                            -0.0,
                            5e-324,
                            2.2250738585072014e-308,
                            1.7976931348623157e308,
                            123456789012345680.0,
                            1e21,
                            1e-7,
                            6.0 * 3.0 + 1.5,
                            std::nextafter(1.0, 2.0)};
  std::mt19937_64 rng(20240611);
  std::vector<double> values(std::begin(special), std::end(special));
  for (int i = 0; i < 20000; ++i) {
    uint64_t b = rng();
    double v;
    std::memcpy(&v, &b, sizeof v);
    if (std::isfinite(v)) values.push_back(v);
    values.push_back(std::ldexp(double(rng() % 1000003) / 7.0, int(rng() % 200) - 100));
  }
  for (double v : values) {
    const std::string s = written(v);
    double back = 0.0;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), back);
    ASSERT_EQ(r.ec, std::errc()) << s;
    ASSERT_EQ(bits(back), bits(v)) << s;
    // And the reader accepts it as a JSON number, unchanged.
    JsonReader reader(s.data(), s.size());
    std::string tok;
    ASSERT_TRUE(reader.readNumber(tok)) << s;
    ASSERT_EQ(tok, s);
  }
  EXPECT_EQ(written(0.1), "0.1");
  EXPECT_EQ(written(6.0), "6");
  EXPECT_EQ(written(-0.0), "-0");
}

TEST(JsonWriter, FloatsUseTheirOwnShortestForm) {
  std::string out;
  {
    JsonWriter w(&out);
    w.beginArray(true);
    w.number(1.2f);
    w.number(8.0f);
    w.number(0.1f);
    w.endArray();
  }
  EXPECT_EQ(out, "[1.2,8,0.1]");
  float back;
  std::from_chars(out.data() + 1, out.data() + 4, back);
  EXPECT_EQ(back, 1.2f);
}

TEST(JsonWriter, EscapesWhatTheReaderUndoes) {
  std::string all;
  for (int c = 1; c < 128; ++c) all += char(c);
  all += "\xE6\x88\xBF\xE9\x97\xB4\xF0\x9F\x98\x80";
  std::string out;
  {
    JsonWriter w(&out);
    w.beginObject(true);
    w.key("k\"\\\n");
    w.string(all);
    w.endObject();
  }
  EXPECT_NE(out.find("\\u001f"), std::string::npos);
  EXPECT_NE(out.find("\\n"), std::string::npos);
  EXPECT_EQ(out.find('\n'), std::string::npos);  // no raw control characters
  JsonReader r(out.data(), out.size());
  std::string key, value;
  ASSERT_TRUE(r.beginObject());
  ASSERT_TRUE(r.nextKey(key));
  EXPECT_EQ(key, "k\"\\\n");
  ASSERT_TRUE(r.readString(value));
  EXPECT_EQ(value, all);
  EXPECT_FALSE(r.nextKey(key));
  EXPECT_TRUE(r.finish());
}

TEST(JsonWriter, RefusesWhatJsonCannotHold) {
  for (const std::string bad : {std::string("\xFF"), std::string("a\xC0\x80"), std::string("\xED\xA0\x80"),
                                std::string("\xE6\x88")}) {
    std::string out;
    JsonWriter w(&out);
    w.string(bad);
    EXPECT_FALSE(w.finish());
    EXPECT_EQ(w.error(), "text that is not valid UTF-8");
  }
  for (double v : {std::numeric_limits<double>::infinity(), std::nan("")}) {
    std::string out;
    JsonWriter w(&out);
    w.number(v);
    EXPECT_FALSE(w.finish());
    EXPECT_EQ(w.error(), "a number that is not finite");
  }
  std::string out;
  JsonWriter w(&out);
  w.beginArray();
  EXPECT_FALSE(w.finish());  // unclosed
  std::string out2;
  JsonWriter w2(&out2);
  w2.beginObject();
  w2.integer(1);  // a value without a key
  w2.endObject();
  EXPECT_FALSE(w2.finish());
}

TEST(JsonWriter, FileOutputIsFlushedWhole) {
  std::FILE* f = std::tmpfile();
  ASSERT_TRUE(f);
  std::string expect;
  {
    JsonWriter w(f);
    w.beginArray(true);
    expect = "[";
    for (int i = 0; i < 50000; ++i) {
      w.integer(i);
      expect += (i ? "," : "") + std::to_string(i);
    }
    w.endArray();
    expect += "]\n";
    ASSERT_TRUE(w.finish());
  }
  std::rewind(f);
  std::string got(expect.size() + 10, '\0');
  got.resize(std::fread(&got[0], 1, got.size(), f));
  EXPECT_EQ(got, expect);
  std::fclose(f);
}

TEST(JsonWriter, Utf8Check) {
  EXPECT_TRUE(KxIsValidUtf8(""));
  EXPECT_TRUE(KxIsValidUtf8("plain"));
  EXPECT_TRUE(KxIsValidUtf8("\xE5\x9D\xA1\xE5\xB1\x8B\xE9\xA1\xB6"));
  EXPECT_TRUE(KxIsValidUtf8("\xF4\x8F\xBF\xBF"));   // U+10FFFF
  EXPECT_FALSE(KxIsValidUtf8("\xF4\x90\x80\x80"));  // past U+10FFFF
  EXPECT_FALSE(KxIsValidUtf8("\xE0\x9F\xBF"));      // overlong
  EXPECT_FALSE(KxIsValidUtf8("\xC1\xBF"));          // overlong
  EXPECT_FALSE(KxIsValidUtf8("\xBF"));              // lone continuation
}
