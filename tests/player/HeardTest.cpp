// SPDX-License-Identifier: Apache-2.0
//
// The real program on a real sound server: what is heard is what was decoded.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "HeardSound.h"
#include "Speech.h"

namespace {

TEST_F(Heard, NormalModeOfSpeech_IsTheDecodedSoundConverted) {
  const S_Speech speech = SpeechOf(75);
  C_SoundServer server(kPlaybackRate, "float32le", 2);
  ExpectHeard(server, {m_folder.Write("x.kst", speech.file), "0"},
              AsHeardInNormalMode(speech.pcm, 16000),
              "file duration: 1.500000 secs\nPlaying...Finished\n", 1.5);
}

// The program waits half a second before the sound and half a second after it.
TEST_F(Heard, RealTimeModeOfSpeech_IsTheDecodedSoundItself) {
  const S_Speech speech = SpeechOf(75);
  C_SoundServer server(16000, "s16le", 1);
  ExpectHeard(server, {m_folder.Write("x.kst", speech.file), "1"}, speech.pcm,
              "Playing...Finished\n", 0.5 + 1.5 + 0.5);
}

TEST_F(Heard, RealTimeModeOfABareStream_IsTheDecodedSoundItself) {
  const S_Speech speech = SpeechOf(50);
  C_SoundServer server(16000, "s16le", 1);
  ExpectHeard(server, {m_folder.Write("bare.kst", speech.stream), "1"}, speech.pcm,
              "Playing...Finished\n", 0.5 + 1.0 + 0.5);
}

TEST_F(Heard, NormalModeOfAWavFile_IsItsSoundAtItsOwnSpeed) {
  const C_Bytes pcm = BytesOf(SweepWithNoise(22050, kPlaybackRate));
  C_SoundServer server(kPlaybackRate, "float32le", 2);
  ExpectHeard(server, {m_folder.Write("x.wav", WavOf(kPlaybackRate, 1, pcm)), "0"},
              OnBothSides(AsFloat(pcm)), "file duration: 1.378125 secs\nPlaying...Finished\n", 0.5);
}

// Nobody hears the end of the sound, but the program still comes to its end.
TEST_F(Heard, AServerThatFreezesWhilePlaying_LetsBothModesFinish) {
  const std::string strFile = m_folder.Write("x.kst", SpeechOf(150).file);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  std::vector<std::future<S_Run>> runs;
  for (const char* pszMode : {"0", "1"}) {
    runs.push_back(std::async(std::launch::async, [&, pszMode] {
      return m_player.Run({strFile, pszMode}, {server.Environment()});
    }));
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  server.Freeze();
  for (auto& running : runs) {
    const S_Run run = running.get();
    EXPECT_TRUE(run.strOut.ends_with("Playing...Finished\n")) << run.strOut;
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(run.nExit, 0);
  }
}

}  // namespace
