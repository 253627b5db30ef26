#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "kxrender/CShowUseTime.h"
#include "kxrender/CUseTime.h"
#include "kxrender/KxPrintf.h"
#include "platform/Win32System.h"
#include "kxrender/KxTraceChannel.h"
#include "support/PrivateAccess.h"

namespace {
// Each test process talks on its own channel, so tests may run in parallel.
struct PrivateChannel {
  PrivateChannel() {
    const std::string name = "kxtrace-test-" + std::to_string(getpid());
    setenv("KXTRACE_CHANNEL", name.c_str(), 1);
  }
} const privateChannel;
}  // namespace

KX_PRIVATE_MEMBER(StartCountOf, &CUseTime::startCount);
KX_PRIVATE_MEMBER(EndCountOf, &CUseTime::endCount);
KX_PRIVATE_MEMBER(FrequencyOf, &CUseTime::frequency);
struct CUseTimeAccess {
  static void setCounts(CUseTime& t, int64_t start, int64_t end) {
    t.*privateMember(StartCountOf{}) = start;
    t.*privateMember(EndCountOf{}) = end;
  }
  static int64_t frequency(const CUseTime& t) { return t.*privateMember(FrequencyOf{}); }
};

TEST(CUseTime, MicrosecondsAndMillisecondText) {
  CUseTime t(true);
  const int64_t f = CUseTimeAccess::frequency(t);
  ASSERT_EQ(f, 10000000);
  CUseTimeAccess::setCounts(t, 1000, 1000 + 15000);  // 1500 microseconds
  EXPECT_EQ(t.getTime(), 1500u);
  EXPECT_EQ(t.GetTimeStr(), "1.500");
  // A reversed interval wraps to a large unsigned count rather than failing.
  CUseTimeAccess::setCounts(t, 10, 0);
  EXPECT_EQ(t.getTime(), static_cast<unsigned int>(-1));
  // Six hours stay exact: 64-bit arithmetic on 100 ns counts.
  CUseTimeAccess::setCounts(t, 0, int64_t(6) * 3600 * 10000000);
  EXPECT_EQ(t.getTime(), static_cast<unsigned int>(uint64_t(6) * 3600 * 1000000));
}

TEST(CUseTime, StartEndMeasureForwards) {
  CUseTime t(true);
  t.start();
  volatile double sink = 0;
  for (int i = 0; i < 100000; ++i) sink = sink + i;
  t.end();
  EXPECT_LT(t.getTime(), 60u * 1000000u);
}

TEST(Clocks, MillisecondClockAndWallClock) {
  const DWORD a = timeGetTime();
  const DWORD b = timeGetTime();
  EXPECT_LE(b - a, 1000u);
  __time64_t stored = 0;
  const __time64_t now = _time64(&stored);
  EXPECT_EQ(now, stored);
  EXPECT_GT(now, 1700000000);  // after 2023
  LARGE_INTEGER c1, c2;
  ASSERT_TRUE(QueryPerformanceCounter(&c1));
  ASSERT_TRUE(QueryPerformanceCounter(&c2));
  EXPECT_GE(c2.QuadPart, c1.QuadPart);
}

TEST(KxPrintf, WithoutViewerReturnsAtOnce) {
  // Nobody listens in this test: the send must fail fast and quietly.
  EXPECT_FALSE(KxTraceSend("x", 1));
  KxPrintf("%s", std::string(5000, 'z').c_str());
  KxPrintf(nullptr);
}

TEST(KxPrintf, ViewerReceivesFramedLinesCutTo1024Bytes) {
  KxTraceListener viewer;
  ASSERT_TRUE(viewer.open());
  KxPrintf("storey %d of %s", 3, "tower");
  std::string line;
  ASSERT_TRUE(viewer.receive(line, 2000));
  EXPECT_EQ(line, "storey 3 of tower");

  KxPrintf("%s", std::string(5000, 'z').c_str());
  ASSERT_TRUE(viewer.receive(line, 2000));
  EXPECT_EQ(line, std::string(1024, 'z'));

  KxPrintf("%s", std::string(1023, 'y').c_str());
  ASSERT_TRUE(viewer.receive(line, 2000));
  EXPECT_EQ(line.size(), 1023u);

  // Two viewers cannot listen at once.
  KxTraceListener second;
  EXPECT_FALSE(second.open());
}

TEST(CShowUseTime, PrintsLabelAndMillisecondsUnlessDisabled) {
  KxTraceListener viewer;
  ASSERT_TRUE(viewer.open());
  { CShowUseTime timer("load"); }
  std::string line;
  ASSERT_TRUE(viewer.receive(line, 2000));
  ASSERT_GE(line.size(), 7u);
  EXPECT_EQ(line.substr(0, 6), "\nload:");
  EXPECT_EQ(line[line.size() - 4], '.');  // three decimals

  {
    CShowUseTime quiet("quiet");
    quiet.stopwatch().setPrint(false);
  }
  {
    CUseTime silent(true);
    silent.start();
    silent.end();
    silent.print("silent");
  }
  EXPECT_FALSE(viewer.receive(line, 200));
}
