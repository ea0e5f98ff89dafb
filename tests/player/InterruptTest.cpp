// SPDX-License-Identifier: Apache-2.0
//
// The real program when the user interrupts or suspends it: Ctrl-C and Ctrl-Z.
#include <gtest/gtest.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): kill
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "PrivateTemp.h"
#include "SoundServer.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Much longer than an immediate end takes, and much shorter than the wait for a service that does
// not answer.
constexpr auto kHangs = 3s;

class Interrupt : public ::testing::Test {
 protected:
  // Starts the program in a process group of its own, as a shell does for each job.
  [[nodiscard]] C_RunningProgram StartJob(const std::string& strFile, const char* pszMode,
                                          const C_Program::Texts& environment) const {
    return m_player.Start({strFile, pszMode}, environment, [] {
      setpgid(0, 0);
      signal(SIGINT, SIG_DFL);
    });
  }

  C_Program m_player{VOXPLAY_PLAYER};
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
};

// Interrupts every process of the job and expects them all to be gone soon.
void ExpectEnd(C_RunningProgram& job) {
  const pid_t nJob = job.Pid();
  const auto begin = Clock::now();
  EXPECT_EQ(kill(-nJob, SIGINT), 0);
  const S_Run run = job.Wait();
  EXPECT_LT(Clock::now() - begin, kHangs);
  EXPECT_EQ(run.nSignal, SIGINT);
  EXPECT_EQ(run.strErr, "");
  EXPECT_EQ(run.strOut.find("Finished"), std::string::npos);
  EXPECT_TRUE(kill(-nJob, 0) == -1 && errno == ESRCH) << "somebody is left";
}

// How many seconds of silence end a recording of 16 kHz, 16 bits and one channel.
double SilentEndSeconds(const std::vector<std::uint8_t>& sound) {
  const auto last = std::find_if(sound.rbegin(), sound.rend(), [](auto by) { return by != 0; });
  return static_cast<double>(last - sound.rbegin()) / 32000.0;
}

// The recording goes on for half a second after both programs have ended.
TEST_F(Interrupt, WhilePlaying_EndsTheSoundOfBothModesAtOnce) {
  const std::string strFile = m_folder.Write("x.kst", SpeechOf(150).file);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  const auto sound = server.RecordWhile([&] {
    C_RunningProgram normal = StartJob(strFile, "0", {server.Environment()});
    C_RunningProgram realTime = StartJob(strFile, "1", {server.Environment()});
    EXPECT_TRUE(normal.WaitForOutput("Playing..."));
    EXPECT_TRUE(realTime.WaitForOutput("Playing..."));
    std::this_thread::sleep_for(1s);
    ExpectEnd(normal);
    ExpectEnd(realTime);
  });
  EXPECT_GE(WithoutSilentEnds(sound, 2).size(), 16000U) << "half a second was heard before";
  EXPECT_GE(SilentEndSeconds(sound), 0.2);
}

TEST_F(Interrupt, WithAFrozenServerOrNone_EndsBothModesAtOnce) {
  const std::string strFile = m_folder.Write("x.kst", SpeechOf(150).file);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  C_RunningProgram playing = StartJob(strFile, "0", {server.Environment()});
  C_RunningProgram realTimePlaying = StartJob(strFile, "1", {server.Environment()});
  C_RunningProgram silent = StartJob(strFile, "0", {});
  C_RunningProgram realTimeSilent = StartJob(strFile, "1", {});
  for (C_RunningProgram* pJob : {&playing, &realTimePlaying, &silent, &realTimeSilent}) {
    EXPECT_TRUE(pJob->WaitForOutput("Playing..."));
  }
  std::this_thread::sleep_for(700ms);
  server.Freeze();
  C_RunningProgram opening = StartJob(strFile, "0", {server.Environment()});
  C_RunningProgram realTimeOpening = StartJob(strFile, "1", {server.Environment()});
  std::this_thread::sleep_for(300ms);
  for (C_RunningProgram* pJob :
       {&playing, &realTimePlaying, &silent, &realTimeSilent, &opening, &realTimeOpening}) {
    ExpectEnd(*pJob);
  }
}

// Half an hour of speech, which takes some time to decode.
C_Bytes LongSpeech() {
  const C_Bytes second = SpeechOf(50).stream;
  constexpr std::size_t cbHead = 6;
  C_Bytes frames;
  for (int i = 0; i < 30 * 60; ++i) {
    frames.insert(frames.end(), second.begin() + cbHead, second.end());
  }
  C_Bytes stream = U32(static_cast<std::uint32_t>(frames.size() + 2));
  stream.insert(stream.end(), second.begin() + 4, second.begin() + cbHead);
  stream.insert(stream.end(), frames.begin(), frames.end());
  return C_SpBytes().Stream(stream).Take();
}

TEST_F(Interrupt, WhileDecoding_LeavesTheFileAsItWas) {
  const C_Bytes file = LongSpeech();
  const std::string strFile = m_folder.Write("x.kst", file);
  C_RunningProgram job = StartJob(strFile, "0", {});
  const auto limit = Clock::now() + 20s;
  while (m_temp.NewFiles().size() < 2 && Clock::now() < limit) std::this_thread::sleep_for(1ms);
  ExpectEnd(job);
  EXPECT_EQ(m_folder.Read("x.kst"), file);
  // Two files are left behind: the sound decoded so far, and the WAV file that would have received
  // it. Nobody comes back for them.
  std::uintmax_t cbWav = 1;
  for (const std::string& strName : m_temp.NewFiles()) {
    if (strName.ends_with(".wav")) cbWav = std::filesystem::file_size("/tmp/" + strName);
  }
  EXPECT_EQ(cbWav, 0U) << "it was decoding";
  EXPECT_EQ(m_temp.NewFiles().size(), 2U);
}

// The sound that the service already held when the player was suspended is still heard. After that,
// playback goes on from the same place.
TEST_F(Interrupt, ASuspendedPlayer_PlaysOnWhereItWas) {
  const S_Speech speech = SpeechOf(75);
  const std::string strFile = m_folder.Write("x.kst", speech.file);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  const auto got = server.RecordWhile([&] {
    C_RunningProgram heard = StartJob(strFile, "1", {server.Environment()});
    C_RunningProgram silent = StartJob(strFile, "0", {});
    EXPECT_TRUE(heard.WaitForOutput("Playing..."));
    EXPECT_TRUE(silent.WaitForOutput("Playing..."));
    std::this_thread::sleep_for(1s);
    heard.Send(SIGSTOP);
    silent.Send(SIGSTOP);
    std::this_thread::sleep_for(700ms);
    heard.Send(SIGCONT);
    silent.Send(SIGCONT);
    for (C_RunningProgram* pJob : {&heard, &silent}) {
      const S_Run run = pJob->Wait();
      EXPECT_EQ(run.nExit, 0);
      EXPECT_TRUE(run.strOut.ends_with("Playing...Finished\n"));
      EXPECT_EQ(run.strErr, "");
    }
  });
  // The result is Exact only on a machine so busy that nothing had been heard yet when the player
  // stopped.
  EXPECT_NE(CompareSounds(speech.pcm, got, 2), tagSameSound::Wrong);
}

}  // namespace
