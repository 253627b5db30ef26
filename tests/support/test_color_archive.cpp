// Colour: packing, contrast, its text form, and the archive it is stored in.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "kxrender/CArchive.h"
#include "kxrender/CColor.h"
#include "kxrender/CMemFile.h"
#include "kxrender/CString.h"
#include "support/GLRecorder.h"

namespace {
using Bytes = std::vector<BYTE>;

Bytes store(const std::function<void(CArchive&)>& fn) {
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    fn(ar);
  }
  return file.data();
}

// The cause of the archive exception that `fn` raises on an archive over `bytes`.
CArchiveException::Cause loadCause(const Bytes& bytes, const std::function<void(CArchive&)>& fn,
                                   UINT mode = CArchive::load) {
  CMemFile in(bytes.data(), bytes.size());
  CArchive ar(&in, mode);
  try {
    fn(ar);
  } catch (const CArchiveException& e) {
    return e.m_cause;
  }
  return CArchiveException::none;
}
}  // namespace

TEST(CArchive, ValuesAreLittleEndianAtNaturalSize) {
  const Bytes b = store([](CArchive& ar) {
    ar << BYTE(0xAB) << WORD(0x1234) << DWORD(0x89ABCDEF) << LONG(-2) << 1.0 << 0.5f << true;
  });
  EXPECT_EQ(b, (Bytes{0xAB, 0x34, 0x12, 0xEF, 0xCD, 0xAB, 0x89, 0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F,
                      0, 0, 0, 0x3F, 1}));
  EXPECT_EQ(store([](CArchive& ar) { CColor(9, 8, 7, 6).Serialize(ar); }), (Bytes{9, 8, 7, 6}));  // no class tag
}

TEST(CArchive, ObjectsThroughPointersCarryClassTagsAndIndices) {
  CColor first(1, 2, 3, 4), second(5, 6, 7, 8);
  const Bytes b = store([&](CArchive& ar) {
    ar << static_cast<const CObject*>(&first) << static_cast<const CObject*>(&second)
       << static_cast<const CObject*>(&first) << static_cast<const CObject*>(nullptr);
  });
  const Bytes expected = {0xFF, 0xFF, 0x01, 0x00, 0x06, 0x00, 'C', 'C', 'o', 'l', 'o', 'r', 1, 2, 3, 4,  // new class, schema 1
                          0x01, 0x80, 5, 6, 7, 8,  // class index 1
                          0x02, 0x00,              // object index 2 again
                          0x00, 0x00};             // null
  EXPECT_EQ(b, expected);
  CColor *a = nullptr, *c = nullptr, *again = nullptr, *none = reinterpret_cast<CColor*>(1);
  EXPECT_EQ(loadCause(b, [&](CArchive& ar) { ar >> a >> c >> again >> none; }), CArchiveException::none);
  std::unique_ptr<CColor> ownA(a), ownC(c);
  ASSERT_TRUE(a && c);
  EXPECT_TRUE(*a == first && *c == second && again == a && none == nullptr);  // the same object, not a copy
  std::unique_ptr<CObject> made(CRuntimeClass::CreateObject("CColor"));
  ASSERT_TRUE(made && made->IsKindOf(RUNTIME_CLASS(CObject)));
  EXPECT_EQ(*static_cast<CColor*>(made.get()), CColor(255, 255, 255, 255));
  EXPECT_EQ(CRuntimeClass::CreateObject("NoSuchClass"), nullptr);
}

TEST(CArchive, StringLengthPrefixGrowsWithLength) {
  const struct { size_t length; Bytes prefix; } rows[] = {
      {254, {254}}, {255, {0xFF, 0xFF, 0x00}}, {70000, {0xFF, 0xFF, 0xFF, 0x70, 0x11, 0x01, 0x00}}};
  for (const auto& r : rows) {
    const Bytes b = store([&](CArchive& ar) { ar << CString(std::string(r.length, 'a')); });
    ASSERT_EQ(b.size(), r.prefix.size() + r.length);
    EXPECT_EQ(Bytes(b.begin(), b.begin() + long(r.prefix.size())), r.prefix);
    CString back;
    EXPECT_EQ(loadCause(b, [&](CArchive& ar) { ar >> back; }), CArchiveException::none);
    EXPECT_EQ(back.GetLength(), int(r.length));
  }
}

TEST(CArchive, BadInputRaisesItsCause) {
  CString s;
  double d;
  const Bytes full = store([](CArchive& ar) { ar << 3.25 << CString("roof"); });
  for (size_t cut = 0; cut < full.size(); ++cut)
    EXPECT_EQ(loadCause(Bytes(full.begin(), full.begin() + long(cut)), [&](CArchive& ar) { ar >> d >> s; }),
              CArchiveException::endOfFile) << "cut at " << cut;
  Bytes markers;  // megabytes of UTF-16 markers: refused at the second, not followed down the stack
  for (int i = 0; i < 2000000; ++i) markers.insert(markers.end(), {0xFF, 0xFE, 0xFF});
  const auto readString = [&](CArchive& ar) { ar >> s; };
  const auto readObject = [](CArchive& ar) { delete ar.ReadObject(nullptr); };
  const struct { const char* what; Bytes bytes; std::function<void(CArchive&)> fn; CArchiveException::Cause cause; } rows[] = {
      {"4 GB length", {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 'x'}, readString, CArchiveException::endOfFile},
      {"markers", markers, readString, CArchiveException::genericException},
      {"class", {0xFF, 0xFF, 0x01, 0x00, 0x04, 0x00, 'N', 'o', 'p', 'e'}, readObject, CArchiveException::badClass},
      {"schema", {0xFF, 0xFF, 0x02, 0x00, 0x06, 0x00, 'C', 'C', 'o', 'l', 'o', 'r', 1, 2, 3, 4}, readObject,
       CArchiveException::badSchema},
      {"index", {0x05, 0x00}, readObject, CArchiveException::badIndex},
      {"store into a loading archive", {}, [](CArchive& ar) { ar << 1.0; }, CArchiveException::readOnly}};
  for (const auto& r : rows) EXPECT_EQ(loadCause(r.bytes, r.fn), r.cause) << r.what;
  EXPECT_EQ(loadCause({}, [&](CArchive& ar) { ar >> d; }, CArchive::store), CArchiveException::writeOnly);
}

TEST(CArchive, DiskFileRoundTrip) {
  const std::string path = ::testing::TempDir() + "archive_roundtrip.bin";
  double d = 0;
  CString s;
  for (UINT mode : {CFile::modeCreate | CFile::modeWrite, UINT(CFile::modeRead)}) {
    CFile f;
    ASSERT_TRUE(f.Open(path.c_str(), mode));
    CArchive ar(&f, mode == CFile::modeRead ? CArchive::load : CArchive::store);
    if (mode == CFile::modeRead) ar >> d >> s; else ar << 42.5 << CString("坡屋顶");
  }
  EXPECT_TRUE(d == 42.5 && s == "坡屋顶");
  std::remove(path.c_str());
}
TEST(CColor, PackingContrastAndGlColour) {
  EXPECT_FALSE(CColor(1, 2, 3, 4) == CColor(1, 2, 3, 5));  // alpha counts
  EXPECT_EQ(CColor(1, 2, 3, 4).getColor(), 0x030201UL);  // red in the low byte, no alpha
  CColor c(0, 0, 0, 7);
  c.set(0xFF112233UL);  // the top byte is ignored, alpha becomes opaque
  EXPECT_EQ(c, CColor(0x33, 0x22, 0x11, 255));
  EXPECT_EQ(CColor(128, 127, 0, 10).GetOtherColor(), CColor(0, 255, 255, 10));  // splits at 128
  GLRecorder rec(false);
  CColor(1, 2, 3, 4).glColor();
  ASSERT_EQ(rec.calls().size(), 1u);
  EXPECT_EQ(rec.calls()[0].text(), "glColor4ub(1, 2, 3, 4)");
}

TEST(Str2Color, ReadsThreeSemicolonSeparatedNumbers) {
  const struct { const char* text; int result; CColor clr; } rows[] = {
      {"255;0;0", 1, {255, 0, 0, 255}},  {"255;0", 0, {9, 9, 9, 9}},   {"no separators", 0, {9, 9, 9, 9}},
      {";;", 1, {0, 0, 0, 255}},         {"a;b;c", 1, {0, 0, 0, 255}},
      {"300;-1; 7x", 1, {44, 255, 7, 255}},  // low eight bits only
      {"1;2;3;4", 1, {1, 2, 4, 255}}};       // green stops at its first number
  for (const auto& r : rows) {
    CColor c(9, 9, 9, 9);
    EXPECT_EQ(Str2Color(r.text, c), r.result) << r.text;
    EXPECT_EQ(c, r.clr) << r.text;
  }
  std::mt19937 rng(7);  // arbitrary text never fails and only ever sets an opaque colour
  std::uniform_int_distribution<int> byte(1, 255), len(0, 40);
  for (int i = 0; i < 2000; ++i) {
    std::string s(size_t(len(rng)), ' ');
    for (char& ch : s) ch = char(byte(rng) % 3 == 0 ? ';' : byte(rng));
    CColor c(1, 1, 1, 1);
    const int r = Str2Color(CString(s), c);
    EXPECT_EQ(r, s.find(';') != s.rfind(';') ? 1 : 0);
    EXPECT_TRUE(r ? c.a == 255 : c == CColor(1, 1, 1, 1));
  }
}
