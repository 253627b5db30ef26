#include <cstdio>

#include "kxrender/CShowUseTime.h"
#include "kxrender/CUseTime.h"
#include "kxrender/KxPrintf.h"
#include "platform/Win32System.h"

static int64_t counter() {
  LARGE_INTEGER c;
  QueryPerformanceCounter(&c);
  return c.QuadPart;
}

CUseTime::CUseTime(bool silentMode) : startCount(0), endCount(0), printEnabled(true), silent(silentMode) {
  LARGE_INTEGER f;
  QueryPerformanceFrequency(&f);
  frequency = f.QuadPart;
}

void CUseTime::start() { startCount = counter(); }

void CUseTime::end() { endCount = counter(); }

unsigned int CUseTime::getTime() const {
  if (frequency <= 0) return 0;
  return static_cast<unsigned int>((endCount - startCount) * 1000000 / frequency);
}

CString CUseTime::GetTimeStr() const {
  CString s;
  s.Format("%.3f", getTime() / 1000.0);
  return s;
}

void CUseTime::print(const CString& label) {
  if (!printEnabled) return;
  const CString format = "\n" + label + ":%.3f";
  if (!silent) KxPrintf(format, getTime() / 1000.0);
}

CShowUseTime::CShowUseTime(CString label) : m_label(label), m_time(false) { m_time.start(); }

CShowUseTime::~CShowUseTime() {
  m_time.end();
  m_time.print(m_label);
}
