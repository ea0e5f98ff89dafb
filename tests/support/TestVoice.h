// SPDX-License-Identifier: Apache-2.0
//
// A synthetic voice: harmonics of a gliding pitch under a syllable envelope, with breath noise.
// Nothing in it repeats, so that a shift in time shows in a correlation.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <numbers>
#include <vector>

inline std::vector<short> TestVoice(std::size_t dwSamples) {
  constexpr double dRate = 16000.0;
  std::vector<short> samples(dwSamples);
  std::uint32_t dwNoise = 1;
  double dPhase = 0.0;
  for (std::size_t i = 0; i < dwSamples; ++i) {
    const double dTime = static_cast<double>(i) / dRate;
    const double dPitch = 140.0 + 30.0 * std::sin(2.9 * dTime) + 11.0 * std::sin(7.3 * dTime);
    dPhase += 2.0 * std::numbers::pi * dPitch / dRate;
    double dValue = 0.0;
    for (int n = 1; n <= 16; ++n) {
      dValue +=
          std::sin(n * dPhase) / (1.0 + 0.15 * n * n * (1.0 + 0.5 * std::sin(3.7 * dTime + n)));
    }
    const double dSyllable = 0.55 + 0.45 * std::sin(2.0 * std::numbers::pi * 3.1 * dTime + 0.4);
    dwNoise = dwNoise * 1664525u + 1013904223u;
    const double dBreath = static_cast<double>(dwNoise >> 16) / 65536.0 - 0.5;
    samples[i] = static_cast<short>(std::lround(5000.0 * dSyllable * (dValue + 0.1 * dBreath)));
  }
  return samples;
}

// How alike a and b are when b is read nLag samples later: 1 for the same shape, 0 for no likeness.
inline double Likeness(const std::vector<short>& a, const std::vector<short>& b, int nLag) {
  double dProduct = 0.0;
  double dPowerA = 0.0;
  double dPowerB = 0.0;
  const auto nFirst = std::max<std::ptrdiff_t>(0, -nLag);
  const auto nEnd = std::min(std::ssize(a), std::ssize(b) - nLag);
  // Pointers, because this loop takes long without the optimiser.
  const short* const pA = a.data();
  const short* const pB = b.data();
  for (std::ptrdiff_t n = nFirst; n < nEnd; ++n) {
    const double dA = pA[n];
    const double dB = pB[n + nLag];
    dProduct += dA * dB;
    dPowerA += dA * dA;
    dPowerB += dB * dB;
  }
  return dPowerA > 0.0 && dPowerB > 0.0 ? dProduct / std::sqrt(dPowerA * dPowerB) : 0.0;
}

// The lag within +-nReach at which b is most like a.
inline int BestLag(const std::vector<short>& a, const std::vector<short>& b, int nReach) {
  int nBest = 0;
  double dBest = -1.0;
  for (int nLag = -nReach; nLag <= nReach; ++nLag) {
    const double dLikeness = Likeness(a, b, nLag);
    if (dLikeness <= dBest) continue;
    dBest = dLikeness;
    nBest = nLag;
  }
  return nBest;
}
