// SPDX-License-Identifier: Apache-2.0
#include "output/Watchdog.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using toolbox::C_Watchdog;

class WatchdogTest : public testing::Test {
 protected:
  // True when there was an alarm within `limit`.
  bool WaitForAlarm(std::chrono::milliseconds limit) {
    const auto end = Clock::now() + limit;
    while (m_nAlarms == 0 && Clock::now() < end) std::this_thread::sleep_for(1ms);
    return m_nAlarms != 0;
  }
  std::atomic<bool> m_bAlive{false};
  std::atomic<int> m_nAlarms{0};
  std::atomic<int> m_nAsked{0};
  C_Watchdog::ShowsLife m_showsLife = [this] {
    ++m_nAsked;
    return m_bAlive.load();
  };
  std::function<void()> m_alarm = [this] { ++m_nAlarms; };
};

TEST_F(WatchdogTest, SilenceAsLongAsTheLimit_IsReportedOnce) {
  const auto begin = Clock::now();
  const C_Watchdog watchdog(100ms, m_showsLife, m_alarm);
  EXPECT_TRUE(WaitForAlarm(20s));
  EXPECT_GE(Clock::now() - begin, 100ms);
  EXPECT_EQ(m_nAsked, 20);
  std::this_thread::sleep_for(150ms);
  EXPECT_EQ(m_nAlarms, 1);
  EXPECT_EQ(m_nAsked, 20);
}

TEST_F(WatchdogTest, LifeKeepsItQuiet_AndSilenceIsCountedFromTheLastSign) {
  m_bAlive = true;
  const C_Watchdog watchdog(100ms, m_showsLife, m_alarm);
  EXPECT_FALSE(WaitForAlarm(400ms));
  const auto begin = Clock::now();
  m_bAlive = false;
  EXPECT_TRUE(WaitForAlarm(20s));
  EXPECT_GE(Clock::now() - begin, 90ms);
}

TEST_F(WatchdogTest, OneThatIsDestroyed_EndsAtOnceAndSaysNothing) {
  const auto begin = Clock::now();
  { const C_Watchdog watchdog(1h, m_showsLife, m_alarm); }
  EXPECT_LT(Clock::now() - begin, 60s);
  EXPECT_EQ(m_nAlarms, 0);
}

// The child is stopped for twice the limit and does not count that time as silence: afterwards
// there were no more ticks than there was time for.
TEST_F(WatchdogTest, TimeInWhichTheProcessStoodStill_IsNoSilence) {
  const pid_t nChild = fork();
  ASSERT_GE(nChild, 0);
  if (nChild == 0) {
    constexpr auto tick = 1000ms / 20;
    const C_Watchdog watchdog(1000ms, m_showsLife, m_alarm);
    const int nBefore = m_nAsked;
    std::raise(SIGSTOP);
    const auto begin = Clock::now();
    std::this_thread::sleep_for(100ms);
    const int nTicks = m_nAsked - nBefore;
    _exit(nTicks <= (Clock::now() - begin) / tick + 2 ? 0 : 1);
  }
  int nStatus = 0;
  ASSERT_EQ(waitpid(nChild, &nStatus, WUNTRACED), nChild);
  ASSERT_TRUE(WIFSTOPPED(nStatus));
  std::this_thread::sleep_for(2000ms);
  ASSERT_EQ(kill(nChild, SIGCONT), 0);
  ASSERT_EQ(waitpid(nChild, &nStatus, 0), nChild);
  ASSERT_TRUE(WIFEXITED(nStatus));
  EXPECT_EQ(WEXITSTATUS(nStatus), 0);
}

}  // namespace
