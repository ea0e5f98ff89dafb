// SPDX-License-Identifier: Apache-2.0
//
// Odd cases of real-time mode: sounds that it cannot hold, and streams that fail at their end.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include "HeardSound.h"
#include "Speech.h"

namespace {

using namespace std::chrono_literals;

// Kestrel speech at 16000 bit/s.
constexpr std::uint32_t kFrameBytes = 40;
constexpr std::size_t kStreamHead = 6;  // length and bit rate

// The frames of the speech, over and over, after a header.
C_Bytes RepeatedSpeech(const S_Speech& speech, std::uint32_t dwFrames) {
  const C_Bytes frames(speech.stream.begin() + kStreamHead, speech.stream.end());
  C_Bytes stream = Join({U32(2 + dwFrames * kFrameBytes), U16(16000)});
  while (stream.size() < kStreamHead + dwFrames * kFrameBytes) {
    stream.insert(stream.end(), frames.begin(), frames.end());
  }
  stream.resize(kStreamHead + dwFrames * kFrameBytes);
  return C_SpBytes().Stream(stream).Take();
}

// The processor time that all threads of the process have used so far.
double CpuSeconds(pid_t nProcess) {
  std::ifstream file("/proc/" + std::to_string(nProcess) + "/stat");
  std::string strLine;
  std::getline(file, strLine);
  std::istringstream fields(strLine.substr(strLine.rfind(')') + 2));
  std::string strSkipped;
  for (int i = 0; i < 11; ++i) fields >> strSkipped;
  double dUser = 0;
  double dSystem = 0;
  fields >> dUser >> dSystem;
  return (dUser + dSystem) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

// True once the program does almost nothing for half a second: it neither decodes nor plays.
bool WaitUntilStuck(pid_t nProcess) {
  for (int i = 0; i < 100; ++i) {
    const double dBefore = CpuSeconds(nProcess);
    std::this_thread::sleep_for(500ms);
    if (CpuSeconds(nProcess) - dBefore < 0.03) return true;
  }
  return false;
}

// Half an hour is 57.6 MB of samples, nearly twice what the queue holds.
TEST_F(Heard, RealTimeModeOfHalfAnHour_IsStuckWhenTheQueueIsFull_AndStillEndsByInterruption) {
  const S_Speech speech = SpeechOf(50);
  const std::string strFile = m_folder.Write("long.kst", RepeatedSpeech(speech, 90000));
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  S_Run run;
  const C_Bytes recorded = server.RecordWhile([&] {
    C_RunningProgram running = m_player.Start({strFile, "1"}, {server.Environment()});
    EXPECT_TRUE(running.WaitForOutput("Playing..."));
    EXPECT_TRUE(WaitUntilStuck(running.Pid()));
    std::this_thread::sleep_for(1s);
    EXPECT_TRUE(WaitUntilStuck(running.Pid()));
    running.Send(SIGINT);
    run = running.Wait();
  });
  EXPECT_EQ(run.strOut, "Playing...");
  EXPECT_EQ(run.strErr, "");
  EXPECT_EQ(run.nSignal, SIGINT);
  // What was heard before, if the decoder left time for anything, is the beginning of the sound.
  // The server gets more than a tenth of a second in advance, and no load can interrupt that.
  C_Bytes heard = WithoutSilentEnds(recorded, 2);
  heard.resize(std::min<std::size_t>(heard.size(), 3200));
  EXPECT_TRUE(std::equal(heard.begin(), heard.end(), WithoutSilentEnds(speech.pcm, 2).begin()));
}

TEST_F(Heard, RealTimeModeOfAStreamThatFailsAtItsEnd_IsHeardTwice) {
  const S_Speech speech = SpeechOf(40);
  C_Bytes stream = speech.stream;
  stream[0] = static_cast<std::uint8_t>(stream[0] + 2);
  stream.insert(stream.end(), 2, 0);
  C_SoundServer server(16000, "s16le", 1);
  ExpectHeard(server, {m_folder.Write("x.kst", C_SpBytes().Stream(stream).Take()), "1"},
              Join({speech.pcm, speech.pcm}), "Playing...Finished\n", 0.5 + 2 * 0.8 + 0.5);
}

}  // namespace
