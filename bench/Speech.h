// SPDX-License-Identifier: Apache-2.0
//
// A speech-like sound: the harmonics of a voice whose pitch and loudness move as in speech, with a
// little noise. It is the same in every run.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

namespace speech {

// Harmonics of the voice that stay below half of the rate.
constexpr int Harmonics(int nSampleRate) { return nSampleRate < 16000 ? 25 : 30; }

inline std::int16_t VoicedSample(std::size_t n, int nSampleRate, int nNoise) {
  const double seconds = static_cast<double>(n) / nSampleRate;
  const double phase = 2 * std::numbers::pi * (120 * seconds + 6 * std::sin(2 * seconds));
  double sum = 0;
  for (int k = 1; k <= Harmonics(nSampleRate); ++k) sum += std::sin(k * phase) / k;
  const double loudness = std::pow(std::sin(2 * std::numbers::pi * seconds), 2);
  return static_cast<std::int16_t>(9000 * loudness * sum + nNoise);
}

inline std::vector<std::int16_t> Samples(std::size_t nSamples, int nSampleRate = 16000) {
  std::mt19937 random(1);
  std::vector<std::int16_t> samples;
  samples.reserve(nSamples);
  for (std::size_t n = 0; n < nSamples; ++n) {
    const int nNoise = static_cast<int>(random() % 201) - 100;
    samples.push_back(VoicedSample(n, nSampleRate, nNoise));
  }
  return samples;
}

}  // namespace speech
