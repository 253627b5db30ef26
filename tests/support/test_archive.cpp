#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "kxrender/CArchive.h"
#include "kxrender/CColor.h"
#include "kxrender/CMemFile.h"
#include "kxrender/CString.h"

namespace {
using Bytes = std::vector<BYTE>;

template <typename Fn>
Bytes store(Fn fn) {
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    fn(ar);
  }
  return file.data();
}

CArchiveException::Cause causeOf(const std::function<void()>& fn) {
  try {
    fn();
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
  const Bytes expected = {0xAB, 0x34, 0x12, 0xEF, 0xCD, 0xAB, 0x89, 0xFE, 0xFF, 0xFF, 0xFF,
                          0,    0,    0,    0,    0,    0,    0xF0, 0x3F,  // 1.0
                          0,    0,    0,    0x3F,                          // 0.5f
                          1};
  EXPECT_EQ(b, expected);
}

TEST(CArchive, ObjectsThroughPointersCarryClassTagsAndIndices) {
  CColor first(1, 2, 3, 4), second(5, 6, 7, 8);
  const Bytes b = store([&](CArchive& ar) {
    ar << static_cast<const CObject*>(&first);
    ar << static_cast<const CObject*>(&second);
    ar << static_cast<const CObject*>(&first);
    ar << static_cast<const CObject*>(nullptr);
  });
  const Bytes expected = {
      0xFF, 0xFF, 0x01, 0x00, 0x06, 0x00, 'C', 'C', 'o', 'l', 'o', 'r', 1, 2, 3, 4,  // new class, then data
      0x01, 0x80, 5,    6,    7,    8,                                             // class index 1
      0x02, 0x00,                                                                  // object index 2 again
      0x00, 0x00};                                                                 // null
  EXPECT_EQ(b, expected);

  CMemFile in(b.data(), b.size());
  CArchive ar(&in, CArchive::load);
  CColor *a = nullptr, *c = nullptr, *again = nullptr, *none = reinterpret_cast<CColor*>(1);
  ar >> a >> c >> again >> none;
  std::unique_ptr<CColor> ownA(a), ownC(c);
  ASSERT_TRUE(a && c);
  EXPECT_EQ(*a, first);
  EXPECT_EQ(*c, second);
  EXPECT_EQ(again, a);  // the same object, not a copy
  EXPECT_EQ(none, nullptr);
}

TEST(CArchive, SerializeWritesOnlyTheFourBytes) {
  CColor c(9, 8, 7, 6);
  EXPECT_EQ(store([&](CArchive& ar) { c.Serialize(ar); }), (Bytes{9, 8, 7, 6}));
  CColor white;
  const Bytes b = store([&](CArchive& ar) { white.Serialize(ar); });
  CMemFile in(b.data(), b.size());
  CArchive ar(&in, CArchive::load);
  CColor back(0, 0, 0, 0);
  back.Serialize(ar);
  EXPECT_EQ(back, CColor(255, 255, 255, 255));
}

TEST(CArchive, StringLengthPrefixGrowsWithLength) {
  const Bytes shortForm = store([](CArchive& ar) { ar << CString(std::string(254, 'a')); });
  ASSERT_EQ(shortForm.size(), 255u);
  EXPECT_EQ(shortForm[0], 254);
  const Bytes wordForm = store([](CArchive& ar) { ar << CString(std::string(255, 'a')); });
  ASSERT_EQ(wordForm.size(), 258u);
  EXPECT_EQ(Bytes(wordForm.begin(), wordForm.begin() + 3), (Bytes{0xFF, 0xFF, 0x00}));
  const Bytes dwordForm = store([](CArchive& ar) { ar << CString(std::string(70000, 'a')); });
  EXPECT_EQ(Bytes(dwordForm.begin(), dwordForm.begin() + 7), (Bytes{0xFF, 0xFF, 0xFF, 0x70, 0x11, 0x01, 0x00}));

  CMemFile in(wordForm.data(), wordForm.size());
  CArchive ar(&in, CArchive::load);
  CString s;
  ar >> s;
  EXPECT_EQ(s.GetLength(), 255);
}

TEST(CArchive, TruncatedInputRaisesEndOfFile) {
  const Bytes full = store([](CArchive& ar) { ar << 3.25 << CString("roof"); });
  for (size_t cut = 0; cut < full.size(); ++cut) {
    CMemFile in(full.data(), cut);
    CArchive ar(&in, CArchive::load);
    EXPECT_EQ(causeOf([&] {
                double d;
                CString s;
                ar >> d >> s;
              }),
              CArchiveException::endOfFile)
        << "cut at " << cut;
  }
  // A length claiming four gigabytes over a few bytes fails without
  // allocating the claimed size.
  const Bytes huge = {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 'x'};
  CMemFile in(huge.data(), huge.size());
  CArchive ar(&in, CArchive::load);
  CString s;
  EXPECT_EQ(causeOf([&] { ar >> s; }), CArchiveException::endOfFile);

  // Megabytes of repeated UTF-16 markers are refused at the second marker
  // (following them recursively overflowed the stack).
  Bytes markers;
  for (int i = 0; i < 2000000; ++i) markers.insert(markers.end(), {0xFF, 0xFE, 0xFF});
  CMemFile in2(markers.data(), markers.size());
  CArchive ar2(&in2, CArchive::load);
  EXPECT_EQ(causeOf([&] { ar2 >> s; }), CArchiveException::genericException);
}

TEST(CArchive, WrongModeAndBadTagsRaise) {
  CMemFile file;
  CArchive loading(&file, CArchive::load);
  EXPECT_EQ(causeOf([&] { loading << 1.0; }), CArchiveException::readOnly);
  CArchive storing(&file, CArchive::store);
  double d;
  EXPECT_EQ(causeOf([&] { storing >> d; }), CArchiveException::writeOnly);

  const Bytes unknownClass = {0xFF, 0xFF, 0x01, 0x00, 0x04, 0x00, 'N', 'o', 'p', 'e'};
  CMemFile in1(unknownClass.data(), unknownClass.size());
  CArchive ar1(&in1, CArchive::load);
  EXPECT_EQ(causeOf([&] { delete ar1.ReadObject(nullptr); }), CArchiveException::badClass);

  const Bytes wrongSchema = {0xFF, 0xFF, 0x02, 0x00, 0x06, 0x00, 'C', 'C', 'o', 'l', 'o', 'r', 1, 2, 3, 4};
  CMemFile in2(wrongSchema.data(), wrongSchema.size());
  CArchive ar2(&in2, CArchive::load);
  EXPECT_EQ(causeOf([&] { delete ar2.ReadObject(nullptr); }), CArchiveException::badSchema);

  const Bytes danglingIndex = {0x05, 0x00};
  CMemFile in3(danglingIndex.data(), danglingIndex.size());
  CArchive ar3(&in3, CArchive::load);
  EXPECT_EQ(causeOf([&] { delete ar3.ReadObject(nullptr); }), CArchiveException::badIndex);
}

TEST(CArchive, RuntimeClassRegistryCreatesByName) {
  std::unique_ptr<CObject> made(CRuntimeClass::CreateObject("CColor"));
  ASSERT_TRUE(made);
  EXPECT_TRUE(made->IsKindOf(RUNTIME_CLASS(CColor)));
  EXPECT_TRUE(made->IsKindOf(RUNTIME_CLASS(CObject)));
  EXPECT_EQ(*static_cast<CColor*>(made.get()), CColor(255, 255, 255, 255));
  EXPECT_EQ(RUNTIME_CLASS(CColor)->m_wSchema, 1u);
  EXPECT_EQ(CRuntimeClass::CreateObject("NoSuchClass"), nullptr);
}

TEST(CArchive, DiskFileRoundTrip) {
  const std::string path = ::testing::TempDir() + "archive_roundtrip.bin";
  {
    CFile f;
    ASSERT_TRUE(f.Open(path.c_str(), CFile::modeCreate | CFile::modeWrite));
    CArchive ar(&f, CArchive::store);
    ar << 42.5 << CString("坡屋顶");
  }
  CFile f;
  ASSERT_TRUE(f.Open(path.c_str(), CFile::modeRead));
  CArchive ar(&f, CArchive::load);
  double d = 0;
  CString s;
  ar >> d >> s;
  EXPECT_EQ(d, 42.5);
  EXPECT_EQ(s, "坡屋顶");
  std::remove(path.c_str());
}
