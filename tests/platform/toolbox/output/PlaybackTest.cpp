// SPDX-License-Identifier: Apache-2.0
//
// Playback without a device, and what happens to playback when the device goes away.
#include "output/Playback.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>

#include "FakeDevice.h"
#include "SoundServer.h"
#include "output/CubebDevice.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using toolbox::C_Playback;
using toolbox::S_OutputFormat;

constexpr const char* kAnnouncement = "no output device; playing silently in real time";
constexpr const char* kLoss = "output device lost; playing silently in real time";
constexpr const char* kUnread = "sound file cannot be read; playing silently to its end";

class C_CountingSource final : public toolbox::I_RenderSource {
 public:
  bool RenderFrames(void* pFrames, UInt32 dwFrames) override {
    const auto* pbyFrames = static_cast<const UInt8*>(pFrames);
    bZeroed = bZeroed && std::all_of(pbyFrames, pbyFrames + dwFrames * cbFrame,
                                     [](UInt8 byValue) { return byValue == 0; });
    std::fill_n(static_cast<UInt8*>(pFrames), dwFrames * cbFrame, UInt8{1});
    dwSmallest = std::min(dwSmallest.load(), dwFrames);
    dwLargest = std::max(dwLargest.load(), dwFrames);
    qwFrames += dwFrames;
    return !bUnread;
  }
  [[nodiscard]] bool WaitFor(UInt64 qwWanted) const {
    const auto limit = Clock::now() + 20s;
    while (qwFrames < qwWanted && Clock::now() < limit) std::this_thread::sleep_for(1ms);
    return qwFrames >= qwWanted;
  }
  std::size_t cbFrame = 2;
  std::atomic<UInt64> qwFrames{0};
  std::atomic<UInt32> dwSmallest{0xFFFFFFFF};
  std::atomic<UInt32> dwLargest{0};
  std::atomic<bool> bZeroed{true};
  std::atomic<bool> bUnread{false};
};

// Captures what the code under test writes to standard error while this object lives.
class C_ErrorCapture {
 public:
  explicit C_ErrorCapture(bool bTerminal) : m_nOldError(dup(STDERR_FILENO)) {
    int nWrite = -1;
    if (bTerminal) {
      EXPECT_EQ(openpty(&m_nRead, &nWrite, nullptr, nullptr, nullptr), 0);
    } else {
      int ends[2] = {-1, -1};
      EXPECT_EQ(pipe(ends), 0);
      m_nRead = ends[0];
      nWrite = ends[1];
    }
    EXPECT_EQ(dup2(nWrite, STDERR_FILENO), STDERR_FILENO);
    close(nWrite);
    EXPECT_EQ(fcntl(m_nRead, F_SETFL, O_NONBLOCK), 0);
  }
  ~C_ErrorCapture() {
    dup2(m_nOldError, STDERR_FILENO);
    close(m_nOldError);
    close(m_nRead);
  }
  C_ErrorCapture(const C_ErrorCapture&) = delete;
  C_ErrorCapture& operator=(const C_ErrorCapture&) = delete;
  // Writes until the terminal takes no more.
  void Fill() const {
    EXPECT_EQ(fcntl(STDERR_FILENO, F_SETFL, O_NONBLOCK), 0);
    while (write(STDERR_FILENO, "x", 1) == 1) {
    }
    EXPECT_EQ(fcntl(STDERR_FILENO, F_SETFL, 0), 0);
  }
  // Reads up to the end of an announcement. A terminal may hand it over in pieces, and late.
  [[nodiscard]] std::string Announcement() const {
    std::string strAll = Text();
    for (; !IsWhole(strAll); strAll += Text()) std::this_thread::sleep_for(1ms);
    return strAll;
  }
  [[nodiscard]] std::string Text() const {
    std::string text(4096, '\0');
    const ssize_t nRead = read(m_nRead, text.data(), text.size());
    text.resize(nRead > 0 ? static_cast<std::size_t>(nRead) : 0);
    return text;
  }

 private:
  static bool IsWhole(const std::string& strText) {
    return strText.ends_with("in real time\r\n") || strText.ends_with("to its end\r\n");
  }
  int m_nOldError;
  int m_nRead = -1;
};

class PlaybackTest : public testing::Test {
 protected:
  const S_OutputFormat m_format{16000, 1, false};
  S_DeviceLog m_log;
  C_CountingSource m_source;
};

TEST_F(PlaybackTest, WithoutADevice_RenderingTakesAsLongAsTheSound) {
  m_log.bRefuseOpen = true;
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  const auto begin = Clock::now();
  playback.Start();
  EXPECT_TRUE(m_source.WaitFor(8000));
  EXPECT_GE(Clock::now() - begin, 490ms);
  playback.Stop();
  EXPECT_EQ(m_source.dwSmallest, 160U);
  EXPECT_LE(m_source.dwLargest, 1600U);
  EXPECT_TRUE(m_source.bZeroed);
}

TEST_F(PlaybackTest, ARateThatIsNoMultipleOfTheSlices_LosesNoFrame) {
  m_log.bRefuseOpen = true;
  const S_OutputFormat format{11025, 1, false};
  C_Playback playback(format, m_source, OpenFakeDevice(m_log));
  const auto begin = Clock::now();
  playback.Start();
  EXPECT_TRUE(m_source.WaitFor(11025));
  EXPECT_GE(Clock::now() - begin, 990ms);
  playback.Stop();
  EXPECT_EQ(m_source.dwSmallest, 110U);
}

// Each of its calls takes longer than the sound in one slice.
class C_SlowSource final : public toolbox::I_RenderSource {
 public:
  bool RenderFrames(void*, UInt32 dwFrames) override {
    const auto now = Clock::now();
    // 25 ms are 400 frames. Only the first slice is on time, and one after a second without any.
    bAskedForTooFew = bAskedForTooFew || (nCalls > 0 && now - m_before < 1s && dwFrames < 320);
    m_before = now;
    std::this_thread::sleep_for(25ms);
    dwLargest = std::max(dwLargest.load(), dwFrames);
    ++nCalls;
    return true;
  }
  std::atomic<UInt32> dwLargest{0};
  std::atomic<bool> bAskedForTooFew{false};
  std::atomic<UInt64> nCalls{0};

 private:
  Clock::time_point m_before;
};

TEST_F(PlaybackTest, WithoutADevice_ASourceOfSlowCalls_IsAskedForMoreAtOnceAndKeepsUp) {
  m_log.bRefuseOpen = true;
  C_SlowSource source;
  C_Playback playback(m_format, source, OpenFakeDevice(m_log));
  playback.Start();
  const auto limit = Clock::now() + 20s;
  while (source.nCalls < 20 && Clock::now() < limit) std::this_thread::sleep_for(1ms);
  playback.Stop();
  EXPECT_FALSE(source.bAskedForTooFew);
  EXPECT_GE(source.nCalls, 20U);
  EXPECT_LE(source.dwLargest, 1600U);
}

TEST_F(PlaybackTest, AfterStop_NothingIsRendered_AndStartGoesOn) {
  m_log.bRefuseOpen = true;
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  EXPECT_FALSE(playback.IsRunning());
  playback.Start();
  EXPECT_TRUE(playback.IsRunning());
  EXPECT_TRUE(m_source.WaitFor(160));
  playback.Stop();
  EXPECT_FALSE(playback.IsRunning());
  const UInt64 qwFrames = m_source.qwFrames;
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(m_source.qwFrames, qwFrames);
  playback.Start();
  EXPECT_TRUE(m_source.WaitFor(qwFrames + 160));
}

TEST_F(PlaybackTest, DeviceThatExists_IsTheOnlyOneUsed) {
  {
    C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
    playback.Start();
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(m_source.qwFrames, 0U);
    playback.Stop();
  }
  EXPECT_EQ(m_log.nStarted, 1);
  EXPECT_EQ(m_log.nStopped, 1);
  EXPECT_EQ(m_log.nClosed, 1);
}

TEST_F(PlaybackTest, Cut_ReachesTheDevice) {
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  playback.Cut();
  EXPECT_EQ(m_log.nCut, 1);
  m_log.bRefuseOpen = true;
  C_Playback silent(m_format, m_source, OpenFakeDevice(m_log));
  silent.Start();
  silent.Cut();
  EXPECT_EQ(m_log.nCut, 1);
}

std::ptrdiff_t CountThreads() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                       std::filesystem::directory_iterator());
}

// A thread that was joined is counted for a moment longer.
bool WaitForThreads(std::ptrdiff_t nWanted) {
  const auto limit = Clock::now() + 20s;
  while (CountThreads() != nWanted && Clock::now() < limit) std::this_thread::sleep_for(1ms);
  return CountThreads() == nWanted;
}

// When a device is lost it may be too late to make a thread.
TEST_F(PlaybackTest, TheThreadForSilence_IsMadeAtTheStartAndEndsWithPlayback) {
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  // The sanitizers have threads of their own.
  const std::ptrdiff_t nBefore = CountThreads();
  EXPECT_TRUE(playback.Start());
  EXPECT_TRUE(WaitForThreads(nBefore + 1));
  std::thread([this] { m_log.pClient->DeviceLost(); }).join();
  EXPECT_TRUE(m_source.WaitFor(160));
  playback.Stop();
  EXPECT_TRUE(WaitForThreads(nBefore));
}

TEST_F(PlaybackTest, ADeviceThatIsLostWhilePlaying_IsFollowedByTheNullOutput) {
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  std::vector<UInt8> frames(200);
  m_log.pClient->RenderFrames(frames.data(), 100);
  EXPECT_EQ(m_source.qwFrames, 100U);
  std::thread([this] { m_log.pClient->DeviceLost(); }).join();
  EXPECT_TRUE(m_source.WaitFor(1000));
  playback.Stop();
  EXPECT_EQ(m_log.nStopped, 0);
  const UInt64 qwFrames = m_source.qwFrames;
  playback.Start();
  EXPECT_TRUE(m_source.WaitFor(qwFrames + 320));
  EXPECT_EQ(m_log.nStarted, 1);
}

TEST_F(PlaybackTest, ADeviceThatIsLostWhileStopped_StartsNothing) {
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  m_log.pClient->DeviceLost();
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(m_source.qwFrames, 0U);
  playback.Start();
  EXPECT_TRUE(m_source.WaitFor(160));
  EXPECT_EQ(m_log.nStarted, 0);
}

TEST_F(PlaybackTest, ADeviceThatDoesNotStart_IsReplacedByTheNullOutput) {
  m_log.bRefuseStart = true;
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  EXPECT_TRUE(m_source.WaitFor(320));
}

TEST_F(PlaybackTest, LosingTheDeviceWhileStopping_NeverLeavesAnythingRunning) {
  for (int i = 0; i < 50; ++i) {
    S_DeviceLog log;
    C_Playback playback(m_format, m_source, OpenFakeDevice(log));
    playback.Start();
    std::thread loser([&log] { log.pClient->DeviceLost(); });
    playback.Stop();
    loser.join();
    const UInt64 qwFrames = m_source.qwFrames;
    std::this_thread::sleep_for(12ms);
    EXPECT_EQ(m_source.qwFrames, qwFrames);
  }
}

TEST_F(PlaybackTest, DestroyingARunningPlayback_StopsIt) {
  m_log.bRefuseOpen = true;
  {
    C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
    playback.Start();
    EXPECT_TRUE(m_source.WaitFor(160));
  }
  const UInt64 qwFrames = m_source.qwFrames;
  std::this_thread::sleep_for(30ms);
  EXPECT_EQ(m_source.qwFrames, qwFrames);
}

TEST_F(PlaybackTest, OnATerminal_SilentPlaybackIsAnnouncedOnce) {
  m_log.bRefuseOpen = true;
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  EXPECT_EQ(capture.Text(), "");
  playback.Start();
  EXPECT_EQ(capture.Announcement(), std::string(kAnnouncement) + "\r\n");
  playback.Stop();
  playback.Start();
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(PlaybackTest, OnATerminal_TheLossOfTheDeviceIsAnnouncedOnce) {
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  EXPECT_EQ(capture.Text(), "");
  m_log.pClient->DeviceLost();
  const std::string strNewLine = isatty(STDOUT_FILENO) == 1 ? "\r\n" : "";
  EXPECT_EQ(capture.Announcement(), strNewLine + kLoss + "\r\n");
  playback.Stop();
  playback.Start();
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(PlaybackTest, OnATerminal_ALossWhileNothingPlays_IsAnnouncedAtTheNextStart) {
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  playback.Stop();
  m_log.pClient->DeviceLost();
  EXPECT_EQ(capture.Text(), "");
  playback.Start();
  const std::string strNewLine = isatty(STDOUT_FILENO) == 1 ? "\r\n" : "";
  EXPECT_EQ(capture.Announcement(), strNewLine + kLoss + "\r\n");
}

TEST_F(PlaybackTest, OnATerminal_ADeviceThatNeverStarted_CountsAsMissing) {
  const C_ErrorCapture capture(/*bTerminal=*/true);
  {
    C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
    m_log.pClient->DeviceLost();
    playback.Start();
  }
  EXPECT_EQ(capture.Announcement(), std::string(kAnnouncement) + "\r\n");
  m_log.bRefuseStart = true;
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  EXPECT_EQ(capture.Announcement(), std::string(kAnnouncement) + "\r\n");
}

// A terminal may take its time to show the text, or stop showing anything. The sound goes on.
TEST_F(PlaybackTest, ATerminalThatTakesNoText_HoldsNobodyUp) {
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  capture.Fill();
  std::thread loser([this] { m_log.pClient->DeviceLost(); });
  EXPECT_TRUE(m_source.WaitFor(1000));
  EXPECT_TRUE(playback.IsRunning());
  playback.Stop();
  EXPECT_FALSE(capture.Announcement().empty());
  loser.join();
}

TEST_F(PlaybackTest, ATerminalThatTakesNoText_HearsLaterThatTheSoundCannotBeRead) {
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  capture.Fill();
  m_source.bUnread = true;
  std::array<UInt8, 20> frames{};
  m_log.pClient->RenderFrames(frames.data(), 10);
  std::string strFilling;
  do strFilling = capture.Text();
  while (strFilling.find_first_not_of('x') == std::string::npos && !strFilling.empty());
  EXPECT_EQ(strFilling, "");
  m_log.pClient->RenderFrames(frames.data(), 10);
  EXPECT_TRUE(capture.Announcement().ends_with(std::string(kUnread) + "\r\n"));
}

TEST_F(PlaybackTest, OnATerminal_ASoundThatCannotBeRead_IsAnnouncedOnce) {
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  std::array<UInt8, 20> frames{};
  m_log.pClient->RenderFrames(frames.data(), 10);
  EXPECT_EQ(capture.Text(), "");
  m_source.bUnread = true;
  m_log.pClient->RenderFrames(frames.data(), 10);
  const std::string strNewLine = isatty(STDOUT_FILENO) == 1 ? "\r\n" : "";
  EXPECT_EQ(capture.Announcement(), strNewLine + kUnread + "\r\n");
  m_log.pClient->RenderFrames(frames.data(), 10);
  EXPECT_EQ(capture.Text(), "");
  m_log.pClient->DeviceLost();
  EXPECT_EQ(capture.Announcement(), std::string(kLoss) + "\r\n");
  EXPECT_TRUE(m_source.WaitFor(1000));
}

TEST_F(PlaybackTest, WithoutADevice_ASoundThatCannotBeRead_IsAnnouncedToo) {
  m_log.bRefuseOpen = true;
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  EXPECT_EQ(capture.Announcement(), std::string(kAnnouncement) + "\r\n");
  m_source.bUnread = true;
  const std::string strNewLine = isatty(STDOUT_FILENO) == 1 ? "\r\n" : "";
  EXPECT_EQ(capture.Announcement(), strNewLine + kUnread + "\r\n");
}

TEST_F(PlaybackTest, OnAPipe_NothingIsAnnounced) {
  m_log.bRefuseOpen = true;
  const C_ErrorCapture capture(/*bTerminal=*/false);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  m_source.bUnread = true;
  EXPECT_TRUE(m_source.WaitFor(320));
  EXPECT_EQ(capture.Text(), "");
  m_log.bRefuseOpen = false;
  C_Playback lost(m_format, m_source, OpenFakeDevice(m_log));
  lost.Start();
  m_log.pClient->DeviceLost();
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(PlaybackTest, DeviceThatExists_IsNotAnnounced) {
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_Playback playback(m_format, m_source, OpenFakeDevice(m_log));
  playback.Start();
  EXPECT_EQ(capture.Text(), "");
}

class C_NoClient final : public toolbox::I_DeviceClient {
 public:
  void RenderFrames(void*, UInt32) override {}
  void DeviceLost() override {}
};

TEST_F(PlaybackTest, AMachineWithoutSound_HasNoDevice_AndSaysNothing) {
  UseNoSoundServerInThisProcess();
  const C_ErrorCapture capture(/*bTerminal=*/true);
  C_NoClient client;
  EXPECT_EQ(toolbox::OpenCubebDevice(m_format, client), nullptr);
  EXPECT_EQ(toolbox::OpenCubebDevice({44100, 2, true}, client), nullptr);
  EXPECT_EQ(capture.Text(), "");
}

}  // namespace
