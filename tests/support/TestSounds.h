// SPDX-License-Identifier: Apache-2.0
//
// Sounds for playback tests: broad-band, never silent at either end, the same on every machine.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

// A sweep with added noise. `nChannels` channels are interleaved, each one different. No frame is
// zero.
inline std::vector<std::int16_t> SweepWithNoise(std::size_t nFrames, unsigned nRate,
                                                unsigned nChannels = 1) {
  std::vector<std::int16_t> samples;
  samples.reserve(nFrames * nChannels);
  std::uint32_t dwNoise = 12345;
  for (std::size_t n = 0; n < nFrames; ++n) {
    const double dTime = static_cast<double>(n) / nRate;
    for (unsigned i = 0; i < nChannels; ++i) {
      dwNoise = dwNoise * 1664525U + 1013904223U;
      const double dSweep = std::sin(6.283185307 * (200.0 + 800.0 * dTime + 150.0 * i) * dTime);
      const auto nSample =
          static_cast<std::int16_t>(9000.0 * dSweep + static_cast<double>(dwNoise >> 20) - 2048.0);
      samples.push_back(nSample != 0 ? nSample : std::int16_t{1});
    }
  }
  return samples;
}

template <typename T>
std::vector<std::uint8_t> BytesOf(const std::vector<T>& values) {
  std::vector<std::uint8_t> bytes(values.size() * sizeof(T));
  std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}
