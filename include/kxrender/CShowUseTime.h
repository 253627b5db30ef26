#pragma once
#include "kxrender/CUseTime.h"

/// Times its own lifetime and prints it with the label when destroyed.
class KXRENDER_API CShowUseTime {
 public:
  explicit CShowUseTime(CString label);  ///< Starts timing under label.
  ~CShowUseTime();  ///< Prints the label and the elapsed milliseconds to the trace viewer.
  CShowUseTime(const CShowUseTime&) = delete;
  CShowUseTime& operator=(const CShowUseTime&) = delete;
  CUseTime& stopwatch() { return m_time; }  ///< The stopwatch underneath.

 private:
  CString m_label;
  CUseTime m_time;
};
