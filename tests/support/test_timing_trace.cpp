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
  PrivateChannel() { setenv("KXTRACE_CHANNEL", ("kxtrace-test-" + std::to_string(getpid())).c_str(), 1); }
} const privateChannel;
}  // namespace

KX_PRIVATE_MEMBER(StartCountOf, &CUseTime::startCount);
KX_PRIVATE_MEMBER(EndCountOf, &CUseTime::endCount);
struct CUseTimeAccess {
  static void setCounts(CUseTime& t, int64_t start, int64_t end) {
    t.*privateMember(StartCountOf{}) = start;
    t.*privateMember(EndCountOf{}) = end;
  }
};

TEST(CUseTime, MicrosecondsFromCountsAndClocksRunForwards) {
  CUseTime t(true);
  const struct { int64_t start, end; unsigned micro; } rows[] = {
      {10, 0, static_cast<unsigned>(-1)},  // a reversed interval wraps rather than failing
      {0, int64_t(6) * 3600 * 10000000, static_cast<unsigned>(uint64_t(6) * 3600 * 1000000)},  // 64-bit counts
      {1000, 1000 + 15000, 1500}};  // 100 ns counts; kept for the text form below
  for (const auto& r : rows) {
    CUseTimeAccess::setCounts(t, r.start, r.end);
    EXPECT_EQ(t.getTime(), r.micro) << r.end;
  }
  EXPECT_EQ(t.GetTimeStr(), "1.500");
  t.start();
  t.end();
  EXPECT_LT(t.getTime(), 60u * 1000000u);  // the counter runs forwards: not a wrapped, reversed interval
  __time64_t stored = 0;
  EXPECT_EQ(_time64(&stored), stored);
  EXPECT_GT(stored, 1700000000);  // after 2023
}

TEST(KxPrintf, ViewerReceivesLinesCutTo1024BytesAndNoViewerCostsNothing) {
  EXPECT_FALSE(KxTraceSend("x", 1));  // nobody listens: fails fast and quietly
  KxPrintf("%s", std::string(5000, 'z').c_str());
  KxPrintf(nullptr);
  KxTraceListener viewer, second;
  ASSERT_TRUE(viewer.open());
  EXPECT_FALSE(second.open());  // two viewers cannot listen at once
  std::string line;
  KxPrintf("storey %d of %s", 3, "tower");
  ASSERT_TRUE(viewer.receive(line, 2000));
  EXPECT_EQ(line, "storey 3 of tower");
  for (size_t length : {size_t(5000), size_t(1023)}) {
    KxPrintf("%s", std::string(length, 'z').c_str());
    ASSERT_TRUE(viewer.receive(line, 2000));
    EXPECT_EQ(line, std::string(std::min<size_t>(length, 1024), 'z'));
  }
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
  CUseTime silent(true);
  silent.start();
  silent.end();
  silent.print("silent");
  EXPECT_FALSE(viewer.receive(line, 200));
}
