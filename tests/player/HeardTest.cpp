// SPDX-License-Identifier: Apache-2.0
//
// The real program on a real sound server: what is heard is what was decoded.
#include <gtest/gtest.h>
#include <soxr.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "SoundServer.h"
#include "Speech.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

constexpr std::uint32_t kPlaybackRate = 44100;

std::vector<float> AsFloat(const C_Bytes& pcm) {
  std::vector<float> result;
  for (std::size_t i = 0; i + 1 < pcm.size(); i += 2) {
    const auto nSample = static_cast<std::int16_t>(pcm[i] | pcm[i + 1] << 8);
    result.push_back(static_cast<float>(nSample) / 32768.0F);
  }
  return result;
}

// The whole sound converted at once, on both sides.
C_Bytes AsHeardInNormalMode(const C_Bytes& pcm, double dRate) {
  const std::vector<float> input = AsFloat(pcm);
  const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
  std::vector<float> output(
      static_cast<std::size_t>(static_cast<double>(input.size()) * kPlaybackRate / dRate) + 16);
  std::size_t nDone = 0;
  EXPECT_EQ(nullptr, soxr_oneshot(dRate, kPlaybackRate, 1, input.data(), input.size(), nullptr,
                                  output.data(), output.size(), &nDone, &io, &quality, nullptr));
  std::vector<float> stereo;
  for (std::size_t i = 0; i < nDone; ++i) stereo.insert(stereo.end(), {output[i], output[i]});
  return BytesOf(stereo);
}

class Heard : public ::testing::Test {
 protected:
  // Plays the file on the server and compares what it heard.
  void ExpectHeard(C_SoundServer& server, const C_Program::Texts& arguments, const C_Bytes& want,
                   const std::string& strOutput) {
    ASSERT_TRUE(server.Start());
    S_Run run;
    const S_Recording sound = server.RecordUntilSame(
        want, [&] { run = m_player.Run(arguments, {server.Environment()}); });
    EXPECT_EQ(tagSameSound::Exact, sound.same) << sound.Description();
    EXPECT_GT(sound.bytes.size(), want.size() / 2) << "silence proves nothing";
    EXPECT_EQ(run.strOut, strOutput);
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(run.nExit, 0);
  }

  C_Program m_player{VOXPLAY_PLAYER};
  C_TempFolder m_folder;
};

TEST_F(Heard, NormalModeOfSpeech_IsTheDecodedSoundConverted) {
  const S_Speech speech = SpeechOf(75);
  C_SoundServer server(kPlaybackRate, "float32le", 2);
  ExpectHeard(server, {m_folder.Write("x.kst", speech.file), "0"},
              AsHeardInNormalMode(speech.pcm, 16000),
              "file duration: 1.500000 secs\nPlaying...Finished\n");
}

TEST_F(Heard, RealTimeModeOfSpeech_IsTheDecodedSoundItself) {
  const S_Speech speech = SpeechOf(75);
  C_SoundServer server(16000, "s16le", 1);
  ExpectHeard(server, {m_folder.Write("x.kst", speech.file), "1"}, speech.pcm,
              "Playing...Finished\n");
}

TEST_F(Heard, RealTimeModeOfABareStream_IsTheDecodedSoundItself) {
  const S_Speech speech = SpeechOf(50);
  C_SoundServer server(16000, "s16le", 1);
  ExpectHeard(server, {m_folder.Write("bare.kst", speech.stream), "1"}, speech.pcm,
              "Playing...Finished\n");
}

TEST_F(Heard, NormalModeOfAWavFile_IsItsSoundAtItsOwnSpeed) {
  const C_Bytes pcm = BytesOf(SweepWithNoise(22050, kPlaybackRate));
  C_SoundServer server(kPlaybackRate, "float32le", 2);
  std::vector<float> stereo;
  for (const float fSample : AsFloat(pcm)) stereo.insert(stereo.end(), {fSample, fSample});
  ExpectHeard(server, {m_folder.Write("x.wav", WavOf(kPlaybackRate, 1, pcm)), "0"}, BytesOf(stereo),
              "file duration: 1.378125 secs\nPlaying...Finished\n");
}

// Nobody hears the end of it, but the program comes to its own.
TEST_F(Heard, AServerThatFreezesWhilePlaying_LetsBothModesFinish) {
  const S_Speech speech = SpeechOf(150);
  const std::string strFile = m_folder.Write("x.kst", speech.file);
  for (const char* pszMode : {"0", "1"}) {
    C_SoundServer server(16000, "s16le", 1);
    ASSERT_TRUE(server.Start());
    std::thread freezer([&server] {
      std::this_thread::sleep_for(std::chrono::milliseconds(1500));
      server.Freeze();
    });
    const S_Run run = m_player.Run({strFile, pszMode}, {server.Environment()});
    freezer.join();
    EXPECT_TRUE(run.strOut.ends_with("Playing...Finished\n")) << run.strOut;
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(run.nExit, 0);
  }
}

}  // namespace
