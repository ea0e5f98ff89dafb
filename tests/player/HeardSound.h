// SPDX-License-Identifier: Apache-2.0
//
// The real program on a real sound server, and what must be heard there.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "Converted.h"
#include "PrivateTemp.h"
#include "RiffBytes.h"
#include "SoundServer.h"
#include "TempFolder.h"
#include "TestSounds.h"

inline constexpr std::uint32_t kPlaybackRate = 44100;

inline std::vector<float> AsFloat(const C_Bytes& pcm) {
  std::vector<float> result;
  for (std::size_t i = 0; i + 1 < pcm.size(); i += 2) {
    const auto nSample = static_cast<std::int16_t>(pcm[i] | pcm[i + 1] << 8);
    result.push_back(static_cast<float>(nSample) / 32768.0F);
  }
  return result;
}

// Frames of two equal channels, as bytes.
inline C_Bytes OnBothSides(const std::vector<float>& mono) {
  std::vector<float> stereo;
  for (const float fSample : mono) stereo.insert(stereo.end(), {fSample, fSample});
  return BytesOf(stereo);
}

// The whole sound converted at once, on both sides.
inline C_Bytes AsHeardInNormalMode(const C_Bytes& pcm, double dRate) {
  return OnBothSides(Converted(AsFloat(pcm), dRate, kPlaybackRate));
}

class Heard : public ::testing::Test {
 protected:
  // Plays the file on the server and compares what was heard.
  void ExpectHeard(C_SoundServer& server, const C_Program::Texts& arguments, const C_Bytes& want,
                   const std::string& strOutput, double dLeastSeconds) {
    ASSERT_TRUE(server.Start());
    S_Run run;
    const S_Recording sound = server.RecordUntilSame(
        want, [&] { run = m_player.Run(arguments, {server.Environment()}); });
    EXPECT_EQ(tagSameSound::Exact, sound.same) << sound.Description();
    EXPECT_GT(sound.bytes.size(), want.size() / 2) << "silence proves nothing";
    EXPECT_EQ(run.strOut, strOutput);
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(run.nExit, 0);
    EXPECT_GE(run.dSeconds, dLeastSeconds);
  }

  C_Program m_player{VOXPLAY_PLAYER};
  // Removes what the player leaves there: up to 34 MB when it is interrupted.
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
};
