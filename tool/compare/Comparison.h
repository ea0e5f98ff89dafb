// SPDX-License-Identifier: Apache-2.0
//
// How two sounds of the same rate and the same number of channels differ.
//
// The frames that both have once the lag is taken away are compared; the rest belongs to one of
// them alone. The signal-to-noise ratio (SNR) is the energy of the first sound over the energy of
// the difference, of all frames that both have. The segmental one is the mean over segments of
// 20 ms, each limited to -10..35 dB; segments of the first sound whose root mean square is below 40
// of 32768 do not count, nor does an incomplete last one.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "compare/SampleSource.h"

namespace tool {

// The sums of one channel, or of several together.
struct S_Sums {
  std::uint64_t qwSamples = 0;  // that both have
  std::uint64_t qwDiffering = 0;
  double dGreatest = 0.0;  // difference
  double dSignal = 0.0;
  double dNoise = 0.0;
  double dSegments = 0.0;  // sum of the ratios
  std::uint64_t qwSegments = 0;

  S_Sums& operator+=(const S_Sums& other);
  // Nullopt when it is infinite, or there is nothing to compare.
  [[nodiscard]] std::optional<double> Snr() const;
  [[nodiscard]] std::optional<double> SegmentalSnr() const;
};

// The level of all samples of a sound, in each channel.
struct S_Level {
  std::uint64_t qwSamples = 0;
  double dSquares = 0.0;
  double dPeak = 0.0;

  S_Level& operator+=(const S_Level& other);
  void Add(double dSample);
  // In dBFS, 0 for a square wave of full scale; nullopt for silence.
  [[nodiscard]] std::optional<double> Rms() const;
  [[nodiscard]] std::optional<double> Peak() const;
};

// What one of the two sounds has.
struct S_Side {
  std::uint64_t qwFrames = 0;
  std::uint64_t qwBefore = 0;  // frames before those that both have
  std::uint64_t qwAfter = 0;
  bool bHeardAlone = false;  // whether any of these is not zero
  std::vector<S_Level> levels;

  [[nodiscard]] std::uint64_t Alone() const noexcept { return qwBefore + qwAfter; }
};

struct S_Comparison {
  std::int64_t nLag = 0;
  std::uint64_t qwFrames = 0;                 // that both have
  std::optional<std::uint64_t> qwFirstFrame;  // of the first sound that differs
  std::vector<S_Sums> channels;
  S_Side first;
  S_Side second;

  // Whether they have the same samples at the same places, and nothing else.
  [[nodiscard]] bool IsEqual() const;
};

// Both are read from their beginnings.
S_Comparison Compare(C_SampleSource& first, C_SampleSource& second, std::int64_t nLag,
                     std::uint32_t dwRate);

}  // namespace tool
