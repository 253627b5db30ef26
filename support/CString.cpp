#include "kxrender/CString.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "platform/Win32System.h"

namespace {
int clampIndex(int i, int size) { return i < 0 ? 0 : (i > size ? size : i); }
char asciiLower(char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; }
char asciiUpper(char c) { return (c >= 'a' && c <= 'z') ? char(c - 'a' + 'A') : c; }
bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }
}  // namespace

CString::CString(const char* s, int length) {
  if (s && length > 0) m_s.assign(s, strnlen(s, size_t(length)));
}

char CString::GetAt(int i) const {
  if (i < 0 || i >= GetLength()) return '\0';
  return m_s[size_t(i)];
}

void CString::SetAt(int i, char ch) {
  if (i >= 0 && i < GetLength()) m_s[size_t(i)] = ch;
}

int CString::Compare(const char* s) const {
  const int r = std::strcmp(m_s.c_str(), s ? s : "");
  return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

int CString::CompareNoCase(const char* s) const {
  const char* a = m_s.c_str();
  const char* b = s ? s : "";
  for (;; ++a, ++b) {
    const auto ca = static_cast<unsigned char>(asciiLower(*a));
    const auto cb = static_cast<unsigned char>(asciiLower(*b));
    if (ca != cb) return ca < cb ? -1 : 1;
    if (!ca) return 0;
  }
}

int CString::Find(char ch, int start) const {
  if (start < 0 || start >= GetLength()) return -1;
  // Walk whole characters so a trail byte of a double-byte character that
  // happens to equal `ch` is not a match.
  const char* base = m_s.c_str();
  for (const char* p = base + start; *p; p = CharNextA(p))
    if (*p == ch) return int(p - base);
  return -1;
}

int CString::Find(const char* sub, int start) const {
  if (!sub || start < 0 || start > GetLength()) return -1;
  const size_t at = m_s.find(sub, size_t(start));
  return at == std::string::npos ? -1 : int(at);
}

int CString::ReverseFind(char ch) const {
  int last = -1;
  const char* base = m_s.c_str();
  for (const char* p = base; *p; p = CharNextA(p))
    if (*p == ch) last = int(p - base);
  return last;
}

int CString::FindOneOf(const char* chars) const {
  if (!chars) return -1;
  const char* base = m_s.c_str();
  for (const char* p = base; *p; p = CharNextA(p))
    if (std::strchr(chars, *p)) return int(p - base);
  return -1;
}

CString CString::Left(int count) const { return CString(m_s.substr(0, size_t(clampIndex(count, GetLength())))); }

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Mid(int first, int count) const {
  first = clampIndex(first, GetLength());
  count = clampIndex(count, GetLength() - first);
  return CString(m_s.substr(size_t(first), size_t(count)));
}

CString CString::Right(int count) const {
  count = clampIndex(count, GetLength());
  return CString(m_s.substr(m_s.size() - size_t(count)));
}

CString& CString::TrimLeft() {
  size_t i = 0;
  while (i < m_s.size() && isSpace(m_s[i])) ++i;
  m_s.erase(0, i);
  return *this;
}

CString& CString::TrimRight() {
  while (!m_s.empty() && isSpace(m_s.back())) m_s.pop_back();
  return *this;
}

CString& CString::Trim() { return TrimLeft().TrimRight(); }

CString& CString::TrimLeft(const char* chars) {
  if (!chars) return *this;
  const size_t i = m_s.find_first_not_of(chars);
  m_s.erase(0, i == std::string::npos ? m_s.size() : i);
  return *this;
}

CString& CString::TrimRight(const char* chars) {
  if (!chars) return *this;
  const size_t i = m_s.find_last_not_of(chars);
  m_s.erase(i == std::string::npos ? 0 : i + 1);
  return *this;
}

CString& CString::Trim(const char* chars) { return TrimLeft(chars).TrimRight(chars); }

CString& CString::MakeUpper() {
  for (char* p = &m_s[0]; p && *p; p = const_cast<char*>(CharNextA(p))) *p = asciiUpper(*p);
  return *this;
}

CString& CString::MakeLower() {
  for (char* p = &m_s[0]; p && *p; p = const_cast<char*>(CharNextA(p))) *p = asciiLower(*p);
  return *this;
}

int CString::Replace(const char* from, const char* to) {
  if (!from || !*from) return 0;
  const std::string f = from, t = to ? to : "";
  int n = 0;
  for (size_t at = m_s.find(f); at != std::string::npos; at = m_s.find(f, at + t.size())) {
    m_s.replace(at, f.size(), t);
    ++n;
  }
  return n;
}

int CString::Replace(char from, char to) {
  int n = 0;
  for (char* p = &m_s[0]; p && *p; p = const_cast<char*>(CharNextA(p)))
    if (*p == from) {
      *p = to;
      ++n;
    }
  return n;
}

int CString::Delete(int index, int count) {
  index = clampIndex(index, GetLength());
  count = clampIndex(count, GetLength() - index);
  m_s.erase(size_t(index), size_t(count));
  return GetLength();
}

int CString::Insert(int index, const char* s) {
  if (s) m_s.insert(size_t(clampIndex(index, GetLength())), s);
  return GetLength();
}

static std::string vformat(const char* format, va_list args) {
  if (!format) return {};
  va_list copy;
  va_copy(copy, args);
  const int n = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  if (n <= 0) return {};
  std::string out(size_t(n) + 1, '\0');
  std::vsnprintf(&out[0], out.size(), format, args);
  out.resize(size_t(n));
  return out;
}

void CString::Format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  m_s = vformat(format, args);
  va_end(args);
}

void CString::AppendFormat(const char* format, ...) {
  va_list args;
  va_start(args, format);
  m_s += vformat(format, args);
  va_end(args);
}
