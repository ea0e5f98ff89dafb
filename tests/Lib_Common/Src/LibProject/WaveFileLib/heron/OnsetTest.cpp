// SPDX-License-Identifier: Apache-2.0
//
// The noise of a sudden beginning must not be heard before it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "Signals.h"
#include "heron/SoundCoder.h"

namespace heron {
namespace {

using test::C_Random;
using test::S_Sound;

struct S_Trial {
  int nSampleRate;
  int nBitDepth;
};

std::vector<S_Trial> AllTrials() {
  std::vector<S_Trial> trials;
  for (const int nSampleRate : {8000, 16000}) {
    for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
      trials.push_back({nSampleRate, nBitDepth});
    }
  }
  return trials;
}

class HeronOnsets : public testing::TestWithParam<S_Trial> {
 protected:
  static constexpr std::size_t kShifts = 12;

  // Where the attack is: 100 ms from the beginning and a little more.
  [[nodiscard]] static std::size_t AttackAt(std::size_t nShift) {
    const auto nRate = static_cast<std::size_t>(GetParam().nSampleRate);
    return nRate / 10 + nShift * (nRate / 1000 * 3 + 7);
  }
  // Silence up to there, then half a second of fnValue(seconds, a random number from -1 to 1).
  template <typename Value>
  [[nodiscard]] static S_Sound Attack(std::size_t nShift, Value fnValue) {
    C_Random random(nShift + 1);
    const std::size_t nAt = AttackAt(nShift);
    S_Sound sound(nAt + static_cast<std::size_t>(GetParam().nSampleRate) / 2);
    for (std::size_t n = nAt; n < sound.size(); ++n) {
      const double dTime = static_cast<double>(n - nAt) / GetParam().nSampleRate;
      const double dRandom = static_cast<double>(random.Between(-32767, 32767)) / 32767;
      sound[n] = static_cast<std::int16_t>(std::lround(fnValue(dTime, dRandom)));
    }
    return sound;
  }
  // By how many dB the error of all the time before the attack is below the energy of its first
  // 10 ms.
  [[nodiscard]] static double Below(const S_Sound& sound, std::size_t nAt) {
    std::vector<std::uint8_t> coded;
    S_Sound decoded;
    EXPECT_TRUE(EncodeSamples(sound, GetParam().nSampleRate, GetParam().nBitDepth, &coded, {}));
    EXPECT_TRUE(DecodeSamples(coded, GetParam().nSampleRate, &decoded));
    decoded.resize(sound.size());
    double dBefore = 0;
    for (std::size_t n = 0; n < nAt; ++n) dBefore += std::pow(decoded[n], 2);
    double dAttack = 0;
    const std::size_t nEnd = nAt + static_cast<std::size_t>(GetParam().nSampleRate) / 100;
    for (std::size_t n = nAt; n < nEnd; ++n) dAttack += std::pow(sound[n], 2);
    return dBefore == 0 ? 200 : 10 * std::log10(dAttack / dBefore);
  }
};
INSTANTIATE_TEST_SUITE_P(RatesAndDepths, HeronOnsets, testing::ValuesIn(AllTrials()),
                         [](const auto& trial) {
                           return std::to_string(trial.param.nSampleRate) + "Hz" +
                                  std::to_string(trial.param.nBitDepth) + "Bits";
                         });

TEST_P(HeronOnsets, AClick_LeavesSilenceBeforeIt) {
  for (std::size_t nShift = 0; nShift < kShifts; ++nShift) {
    const std::size_t nAt = AttackAt(nShift);
    S_Sound sound(2 * nAt);
    sound[nAt] = 30000;
    EXPECT_EQ(Below(sound, nAt), 200) << nShift;
  }
}

TEST_P(HeronOnsets, ABurstOfNoise_LeavesSilenceBeforeIt) {
  // Like castanets: 8 ms to 1/e.
  for (std::size_t nShift = 0; nShift < kShifts; ++nShift) {
    const S_Sound sound = Attack(nShift, [](double dTime, double dRandom) {
      return 29000 * dRandom * std::exp(-dTime / 0.008);
    });
    EXPECT_EQ(Below(sound, AttackAt(nShift)), 200) << nShift;
  }
}

TEST_P(HeronOnsets, APlosive_LeavesSilenceBeforeIt) {
  // A burst, and after 30 ms a voice.
  for (std::size_t nShift = 0; nShift < kShifts; ++nShift) {
    const S_Sound sound = Attack(nShift, [](double dTime, double dRandom) {
      const double dVoiced = std::max(dTime - 0.03, 0.0);
      const double dVoice = 8000 * std::sin(2 * std::numbers::pi * 150 * dTime);
      return 8000 * dRandom * std::exp(-dTime / 0.02) + dVoice * (1 - std::exp(-dVoiced / 0.02));
    });
    EXPECT_GT(Below(sound, AttackAt(nShift)), 60) << nShift;
  }
}

TEST_P(HeronOnsets, NoiseThatStays_IsSoftBeforeItsBeginning) {
  // This takes all the bits there are, so that the steps are coarse.
  const std::array<double, 5> least = {13, 21, 27, 35, 46};
  for (std::size_t nShift = 0; nShift < kShifts; ++nShift) {
    const S_Sound sound = Attack(nShift, [](double, double dRandom) { return 10000 * dRandom; });
    EXPECT_GT(Below(sound, AttackAt(nShift)),
              least[static_cast<std::size_t>(GetParam().nBitDepth - kMinBitDepth)])
        << nShift;
  }
}

}  // namespace
}  // namespace heron
