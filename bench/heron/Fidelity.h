// SPDX-License-Identifier: Apache-2.0
//
// How near a decoded sound is to the original, in dB.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// What the two ratios of one sound, or of several together, are made of.
struct S_Fidelity {
  double dSignal = 0.0;    // energy of the original
  double dNoise = 0.0;     // energy of the difference
  double dSegments = 0.0;  // sum of the segments' ratios
  std::size_t nSegments = 0;

  S_Fidelity& operator+=(const S_Fidelity& other);
  // A flawless sound counts as 120 dB, so that means stay finite. There must be a signal.
  [[nodiscard]] double Snr() const;
  // The mean over the segments; 0 without any.
  [[nodiscard]] double SegmentalSnr() const;
};

// Compares sounds of equal length. A segment has 20 ms, its ratio is limited to -10..35 dB; those
// whose root mean square is below 40, and an incomplete last one, do not count.
S_Fidelity Compare(std::span<const std::int16_t> original, std::span<const std::int16_t> decoded,
                   int nSampleRate);

// True unless the decoded sound fits better when it is moved by a sample to either side: then a
// coder's delay is in it, and a comparison would tell nothing.
bool IsInTime(std::span<const std::int16_t> original, std::span<const std::int16_t> decoded);
