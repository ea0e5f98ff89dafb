// SPDX-License-Identifier: Apache-2.0
#include "sound/ChannelMix.h"

#include <cstddef>

namespace tool {
namespace {

template <typename Sample>
void Pick(std::span<const Sample> frames, std::uint32_t dwChannels, std::uint32_t dwChannel,
          std::span<Sample> mono) {
  std::size_t nAt = dwChannel;
  for (Sample& sample : mono) {
    sample = frames[nAt];
    nAt += dwChannels;
  }
}

}  // namespace

void PickChannel(std::span<const std::int16_t> frames, std::uint32_t dwChannels,
                 std::uint32_t dwChannel, std::span<std::int16_t> mono) {
  Pick(frames, dwChannels, dwChannel, mono);
}
void PickChannel(std::span<const std::int32_t> frames, std::uint32_t dwChannels,
                 std::uint32_t dwChannel, std::span<std::int32_t> mono) {
  Pick(frames, dwChannels, dwChannel, mono);
}
void PickChannel(std::span<const float> frames, std::uint32_t dwChannels, std::uint32_t dwChannel,
                 std::span<float> mono) {
  Pick(frames, dwChannels, dwChannel, mono);
}

void MixChannels(std::span<const float> frames, std::uint32_t dwChannels, std::span<float> mono) {
  std::size_t nAt = 0;
  for (float& fMean : mono) {
    // Loud channels of floating point may have a sum beyond the range of float.
    double dSum = 0.0;
    for (std::uint32_t i = 0; i < dwChannels; ++i) dSum += static_cast<double>(frames[nAt++]);
    fMean = static_cast<float>(dSum / dwChannels);
  }
}

}  // namespace tool
