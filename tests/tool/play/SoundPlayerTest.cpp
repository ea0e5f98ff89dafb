// SPDX-License-Identifier: Apache-2.0
#include "play/SoundPlayer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>

#include "MadeSound.h"

namespace {

using namespace std::chrono_literals;
using tool::C_SoundPlayer;

// Plays out for ever, until it is cut.
class C_SlowDevice final : public toolbox::I_OutputDevice {
 public:
  bool Start() override { return true; }
  void Stop() override { m_bCut.wait(false); }
  void Cut() override {
    m_bCut = true;
    m_bCut.notify_all();
  }

 private:
  std::atomic<bool> m_bCut = false;
};

std::unique_ptr<toolbox::I_OutputDevice> OpenSlowDevice(const toolbox::S_OutputFormat& /*format*/,
                                                        toolbox::I_DeviceClient& /*client*/) {
  return std::make_unique<C_SlowDevice>();
}

TEST(SoundPlayer, SkippingBeyondTheEnd_IsTheEnd) {
  C_MadeSound sound(8000, 1, 20000);
  C_SoundPlayer player(sound, "made.wav", {}, &OpenSlowDevice);
  player.Skip(30.0);
  EXPECT_EQ(player.Frame(), 20000U);
  player.Skip(-1.0);
  EXPECT_EQ(player.Frame(), 12000U);
  player.Skip(-30.0);
  EXPECT_EQ(player.Frame(), 0U);
  player.Cut();
}

TEST(SoundPlayer, OfAPart_SkippingStaysInIt) {
  C_MadeSound sound(8000, 1, 20000);
  C_SoundPlayer player(sound, "made.wav", {{4000, 8000}}, &OpenSlowDevice);
  player.Skip(30.0);
  EXPECT_EQ(player.Frame(), 8000U);
  player.Skip(-30.0);
  EXPECT_EQ(player.Frame(), 4000U);
  player.Cut();
}

TEST(SoundPlayer, CutWhileTheDevicePlaysOut_StopsAtOnce) {
  C_MadeSound sound(8000, 1, 100);
  C_SoundPlayer player(sound, "made.wav", {}, &OpenSlowDevice);
  const auto stopped = std::async(std::launch::async, [&player] { player.Stop(); });
  EXPECT_EQ(stopped.wait_for(50ms), std::future_status::timeout);
  player.Cut();
  stopped.wait();
}

}  // namespace
