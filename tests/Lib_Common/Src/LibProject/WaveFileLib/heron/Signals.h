// SPDX-License-Identifier: Apache-2.0
//
// Numbers and sounds for testing the Heron frame coder: the same in every run and on every machine.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "TestVoice.h"

namespace heron::test {

using S_Sound = std::vector<std::int16_t>;

class C_Random {
 public:
  explicit C_Random(std::uint64_t qwSeed)
      : m_qwState(qwSeed * 0x9E3779B97F4A7C15u + 0x2545F4914F6CDD1Du) {}

  std::uint64_t Bits() noexcept {
    m_qwState ^= m_qwState << 13;
    m_qwState ^= m_qwState >> 7;
    m_qwState ^= m_qwState << 17;
    return m_qwState;
  }
  // A number from 0 to nLimit - 1.
  std::uint32_t Below(std::uint32_t nLimit) noexcept {
    return static_cast<std::uint32_t>((Bits() >> 32) * nLimit >> 32);
  }
  std::int64_t Between(std::int64_t nLeast, std::int64_t nMost) noexcept {
    return nLeast +
           static_cast<std::int64_t>(Bits() % static_cast<std::uint64_t>(nMost - nLeast + 1));
  }
  std::uint8_t Byte() noexcept { return static_cast<std::uint8_t>(Bits() >> 56); }

 private:
  std::uint64_t m_qwState;
};

inline S_Sound Noise(std::size_t nSamples, std::uint64_t qwSeed = 1) {
  C_Random random(qwSeed);
  S_Sound sound(nSamples);
  for (std::int16_t& nSample : sound) nSample = static_cast<std::int16_t>(random.Bits() >> 48);
  return sound;
}

// Full scale, nHalfPeriod samples up and as many down.
inline S_Sound Square(std::size_t nSamples, std::size_t nHalfPeriod) {
  S_Sound sound(nSamples);
  for (std::size_t n = 0; n < nSamples; ++n) {
    sound[n] = n / nHalfPeriod % 2 == 0 ? std::int16_t{32767} : std::int16_t{-32768};
  }
  return sound;
}

inline S_Sound Impulse(std::size_t nSamples, std::size_t nAt, std::int16_t nValue) {
  S_Sound sound(nSamples);
  sound[nAt] = nValue;
  return sound;
}

inline S_Sound Steady(std::size_t nSamples, std::int16_t nValue) {
  return S_Sound(nSamples, nValue);
}

struct S_NamedSound {
  std::string strName;
  S_Sound samples;
};

// The kinds of sounds that a codec may be given.
inline std::vector<S_NamedSound> SoundsOf(std::size_t nSamples) {
  return {{"voice", TestVoice(nSamples)},
          {"silence", Steady(nSamples, 0)},
          {"noise", Noise(nSamples)},
          {"square", Square(nSamples, 37)},
          {"steady", Steady(nSamples, 12345)},
          {"lowest", Steady(nSamples, -32768)},
          {"impulse", Impulse(nSamples, nSamples / 2, 32767)}};
}

// In dB: 200 for equal sounds, -200 for sounds of different lengths.
inline double SignalToNoise(const S_Sound& sound, const S_Sound& decoded) {
  if (sound.size() != decoded.size()) return -200;
  double dSignal = 0;
  double dNoise = 0;
  for (std::size_t i = 0; i < sound.size(); ++i) {
    dSignal += static_cast<double>(sound[i]) * sound[i];
    dNoise += std::pow(sound[i] - decoded[i], 2);
  }
  return dNoise == 0 ? 200 : 10 * std::log10(dSignal / dNoise);
}

}  // namespace heron::test
