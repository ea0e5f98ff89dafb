// SPDX-License-Identifier: Apache-2.0
//
// The player object on its real toolbox and a real server, driven as a program with buttons would.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "I_Voxplay.h"
#include "SoundServer.h"
#include "Speech.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Samples = std::vector<std::int16_t>;
using States = std::vector<std::pair<int, unsigned int>>;

constexpr std::uint32_t kRate = 44100;

struct S_Release {
  void operator()(I_Voxplay* pIVoxplay) const { pIVoxplay->Release(); }
};
using C_PlayerPtr = std::unique_ptr<I_Voxplay, S_Release>;

C_PlayerPtr NewPlayer() {
  I_Voxplay* pIVoxplay = nullptr;
  EXPECT_EQ(CreateVoxplay(&pIVoxplay), 0);
  return C_PlayerPtr(pIVoxplay);
}

int PositionMs(I_Voxplay& player) {
  int nPosition = -1;
  EXPECT_TRUE(player.GetPositionMs(&nPosition));
  return nPosition;
}

// Waits for the position. False when it is not reached in any reasonable time.
bool WaitForMs(I_Voxplay& player, int nMs) {
  const auto limit = Clock::now() + 20s;
  while (PositionMs(player) < nMs) {
    if (Clock::now() > limit) return false;
    std::this_thread::sleep_for(1ms);
  }
  return true;
}

States g_states;

int OnState(int nState, unsigned int dwUserData) {
  g_states.emplace_back(nState, dwUserData);
  return 0;
}

// Frames of two channels, as floats in the form that the server uses.
C_Bytes AsFloats(const Samples& left, const Samples& right) {
  std::vector<float> frames;
  for (std::size_t i = 0; i < left.size(); ++i) {
    for (const std::int16_t nSample : {left[i], right[i]}) {
      frames.push_back(static_cast<float>(nSample) / 32768.0F);
    }
  }
  return BytesOf(frames);
}

// One channel of a recording.
C_Bytes Channel(const C_Bytes& sound, std::size_t nChannel) {
  C_Bytes channel;
  for (std::size_t i = 0; i + 8 <= sound.size(); i += 8) {
    for (std::size_t nByte = 0; nByte < 4; ++nByte) {
      channel.push_back(sound[i + nChannel * 4 + nByte]);
    }
  }
  return channel;
}

class VoxplayOnServer : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_server.Start());
    m_server.UseInThisProcess();
  }

  C_SoundServer m_server{kRate, "float32le", 2};
  C_TempFolder m_folder;
};

void ExpectStandstill(I_Voxplay& player) {
  const int nPosition = PositionMs(player);
  float fProgress = 0;
  EXPECT_TRUE(player.GetProgress(&fProgress));
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(PositionMs(player), nPosition);
  float fLater = 0;
  EXPECT_TRUE(player.GetProgress(&fLater));
  EXPECT_EQ(fLater, fProgress);
}

TEST_F(VoxplayOnServer, PauseAndStop_LoseAndRepeatNothing_WhenItPlaysOn) {
  const Samples samples = SweepWithNoise(66150, kRate);
  const std::string strFile = m_folder.Write("x.wav", WavOf(kRate, 1, BytesOf(samples)));
  const C_PlayerPtr player = NewPlayer();
  ASSERT_EQ(player->Open(strFile.c_str()), I_Voxplay::kOpened);
  g_states.clear();
  EXPECT_TRUE(player->SetNotify(OnState, 77));
  const auto got = m_server.RecordWhile([&] {
    EXPECT_TRUE(player->Play());
    EXPECT_TRUE(WaitForMs(*player, 150));
    EXPECT_TRUE(player->Pause());
    ExpectStandstill(*player);
    EXPECT_TRUE(player->Play());
    EXPECT_TRUE(WaitForMs(*player, 800));
    EXPECT_TRUE(player->Stop());
    ExpectStandstill(*player);
    EXPECT_TRUE(player->Play());
    EXPECT_TRUE(player->Play()) << "plays already";
    EXPECT_TRUE(WaitForMs(*player, 1550));
    EXPECT_TRUE(player->Stop());
  });
  EXPECT_EQ(g_states, (States{{2, 77}, {1, 77}, {2, 77}, {0, 77}, {2, 77}, {0, 77}}));
  const C_Bytes want = AsFloats(samples, samples);
  EXPECT_EQ(CompareSounds(want, got, 8), tagSameSound::Gaps);
  // Two silences of 0.3 s are in between.
  EXPECT_GE(WithoutSilentEnds(got, 8).size(), want.size() + std::size_t{8} * kRate * 6 / 10);
}

TEST_F(VoxplayOnServer, TwoPlayersInOneProcess_AreBothHeard) {
  const Samples sound = SweepWithNoise(17640, kRate);
  const Samples silence(sound.size());
  Samples left;
  Samples right;
  for (const std::int16_t nSample : sound) {
    left.insert(left.end(), {nSample, 0});
    right.insert(right.end(), {0, nSample});
  }
  const std::string strLeft = m_folder.Write("left.wav", WavOf(kRate, 2, BytesOf(left)));
  const std::string strRight = m_folder.Write("right.wav", WavOf(kRate, 2, BytesOf(right)));
  tagSameSound sameLeft = tagSameSound::Gaps;
  tagSameSound sameRight = tagSameSound::Gaps;
  // A busy machine makes gaps now and then.
  const auto bGaps = [&] {
    return sameLeft == tagSameSound::Gaps || sameRight == tagSameSound::Gaps;
  };
  for (int nTry = 0; nTry < 5 && bGaps(); ++nTry) {
    const auto got = m_server.RecordWhile([&] {
      const C_PlayerPtr a = NewPlayer();
      const C_PlayerPtr b = NewPlayer();
      EXPECT_EQ(a->Open(strLeft.c_str()), I_Voxplay::kOpened);
      EXPECT_EQ(b->Open(strRight.c_str()), I_Voxplay::kOpened);
      EXPECT_TRUE(a->Play());
      EXPECT_TRUE(b->Play());
      EXPECT_TRUE(WaitForMs(*a, 450));
      EXPECT_TRUE(WaitForMs(*b, 450));
    });
    sameLeft = CompareSounds(Channel(AsFloats(sound, silence), 0), Channel(got, 0), 4);
    sameRight = CompareSounds(Channel(AsFloats(silence, sound), 1), Channel(got, 1), 4);
  }
  EXPECT_EQ(sameLeft, tagSameSound::Exact);
  EXPECT_EQ(sameRight, tagSameSound::Exact);
}

}  // namespace
