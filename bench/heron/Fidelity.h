// SPDX-License-Identifier: Apache-2.0
//
// How close a decoded sound is to the original, in dB.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The sums from which the two ratios of one sound, or of several together, are computed.
struct S_Fidelity {
  double dSignal = 0.0;    // energy of the original
  double dNoise = 0.0;     // energy of the difference
  double dSegments = 0.0;  // sum of the segments' ratios
  std::size_t nSegments = 0;

  S_Fidelity& operator+=(const S_Fidelity& other);
  // A flawless sound counts as 120 dB, so that averages stay finite. The original must not be
  // silent.
  [[nodiscard]] double Snr() const;
  // The mean over the segments, or 0 when there are none.
  [[nodiscard]] double SegmentalSnr() const;
};

// Compares sounds of equal length. A segment is 20 ms long, and its ratio is limited to -10..35 dB.
// Segments whose root mean square is below 40 do not count, nor does an incomplete last segment.
S_Fidelity Compare(std::span<const std::int16_t> original, std::span<const std::int16_t> decoded,
                   int nSampleRate);

// True unless the decoded sound fits better when it is shifted by one sample in either direction.
// In that case it still contains a delay of the coder, and a comparison would be meaningless.
bool IsInTime(std::span<const std::int16_t> original, std::span<const std::int16_t> decoded);
