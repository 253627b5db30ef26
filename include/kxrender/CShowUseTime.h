#pragma once
#include "kxrender/CUseTime.h"

// Times its own lifetime and prints it with the label when destroyed.
class KXRENDER_API CShowUseTime {
 public:
  explicit CShowUseTime(CString label);
  ~CShowUseTime();
  CShowUseTime(const CShowUseTime&) = delete;
  CShowUseTime& operator=(const CShowUseTime&) = delete;
  CUseTime& stopwatch() { return m_time; }

 private:
  CString m_label;
  CUseTime m_time;
};
