// SPDX-License-Identifier: Apache-2.0
//
// "voxtool play" on a real sound server: what is heard is what was decoded.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

#include "ChildProcess.h"
#include "PlayedSounds.h"
#include "SoundServer.h"
#include "TempFolder.h"

namespace {

using Texts = C_Program::Texts;

class PlayHeard : public testing::Test {
 protected:
  [[nodiscard]] S_Run Run(const C_SoundServer& server, const Texts& operands) const {
    Texts arguments = {"play"};
    arguments.insert(arguments.end(), operands.begin(), operands.end());
    return program.Run(arguments, {server.Environment()});
  }
  template <typename Sample>
  void ExpectHeard(C_SoundServer& server, const Texts& operands, const std::vector<Sample>& want,
                   double dLeastSeconds) const {
    ASSERT_TRUE(server.Start());
    S_Run run;
    const auto sound = server.RecordUntilSame(BytesOf(want), [&] { run = Run(server, operands); });
    EXPECT_EQ(sound.same, tagSameSound::Exact) << sound.Description();
    EXPECT_GT(sound.bytes.size(), want.size() * sizeof(Sample) / 2) << "silence proves nothing";
    EXPECT_EQ(run.strOut + run.strErr, "");
    EXPECT_EQ(run.nExit, 0);
    EXPECT_GE(run.dSeconds, dLeastSeconds);
  }

  const C_TempFolder folder;
  const C_Program program{VOXTOOL};
};

TEST_F(PlayHeard, Speech_IsTheDecodedSoundItself) {
  const auto samples = WriteKestrel(folder.Path("a.kst"), 24000);
  C_SoundServer server(16000, "s16le", 1);
  ExpectHeard(server, {folder.Path("a.kst")}, samples, 1.5);
}

TEST_F(PlayHeard, Mono_IsOnBothSides) {
  const auto samples = AsFloats(WriteWav(folder.Path("a.wav"), 22050, 1, 22050));
  std::vector<float> both;
  for (const float fSample : samples) both.insert(both.end(), {fSample, fSample});
  C_SoundServer server(22050, "float32le", 2);
  ExpectHeard(server, {folder.Path("a.wav")}, both, 1.0);
}

TEST_F(PlayHeard, Stereo_IsItself) {
  const auto samples = AsFloats(WriteWav(folder.Path("a.wav"), 44100, 2, 44100));
  C_SoundServer server(44100, "float32le", 2);
  ExpectHeard(server, {folder.Path("a.wav")}, samples, 1.0);
}

TEST_F(PlayHeard, APart_BeginsAndEndsExactly) {
  const auto samples = WriteKestrel(folder.Path("a.kst"), 48000);
  C_SoundServer server(16000, "s16le", 1);
  ExpectHeard(server, {"--from", "12345s", "--to", "30001s", folder.Path("a.kst")},
              Part(samples, 12345, 30001), 1.1);
}

TEST_F(PlayHeard, ADeviceByName_IsTheOneThatPlays) {
  const auto samples = WriteWav(folder.Path("a.wav"), 16000, 1, 16000);
  C_SoundServer server(16000, "s16le", 1);
  ExpectHeard(server, {"--device", "rec", folder.Path("a.wav")}, samples, 1.0);
}

TEST_F(PlayHeard, Devices_AreListedAndUnknownOnesRefused) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  const S_Run list = Run(server, {"--list-devices"});
  EXPECT_TRUE(list.strOut.starts_with("rec (default)\n    ")) << list.strOut;
  EXPECT_EQ(list.nExit, 0);
  const S_Run run = Run(server, {"--device", "nowhere", "a.wav"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strErr,
            "--device nowhere: there is no such output: \"voxtool play --list-devices\" lists "
            "them\n");
}

TEST_F(PlayHeard, AServerThatFreezes_IsNotWaitedFor) {
  WriteWav(folder.Path("a.wav"), 16000, 1, 48000);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  auto running =
      std::async(std::launch::async, [&] { return Run(server, {folder.Path("a.wav")}); });
  ASSERT_TRUE(server.WaitForStreams(1));
  server.Freeze();
  const S_Run run = running.get();
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(run.strErr, "");
}

TEST_F(PlayHeard, AServerThatIsFrozen_HasNoDevices) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.Freeze();
  const S_Run run = Run(server, {"--list-devices"});
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(run.strErr, "no output device\n");
  server.Thaw();
}

}  // namespace
