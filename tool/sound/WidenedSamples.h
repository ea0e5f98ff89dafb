// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "sound/SoundInput.h"

namespace tool {

// Reads samples of a type that the sound has, by way of a buffer, as numbers of -1 to 1. All of
// them are exact. dUnit is full scale. Returns the number of frames.
template <typename Sample>
std::size_t ReadWidened(I_SoundInput& input, std::vector<Sample>& buffer, std::span<double> samples,
                        double dUnit) {
  buffer.resize(samples.size());
  const std::size_t nFrames = input.Read(std::span(buffer));
  const auto read = std::span(buffer).first(nFrames * input.Info().dwChannels);
  std::ranges::transform(read, samples.begin(), [dUnit](const Sample sample) {
    return static_cast<double>(sample) / dUnit;
  });
  return nFrames;
}

}  // namespace tool
