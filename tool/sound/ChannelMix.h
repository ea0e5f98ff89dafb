// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>

namespace tool {

// Copies one channel, counted from 0, of interleaved frames. mono has room for one sample a frame.
void PickChannel(std::span<const std::int16_t> frames, std::uint32_t dwChannels,
                 std::uint32_t dwChannel, std::span<std::int16_t> mono);
void PickChannel(std::span<const std::int32_t> frames, std::uint32_t dwChannels,
                 std::uint32_t dwChannel, std::span<std::int32_t> mono);
void PickChannel(std::span<const float> frames, std::uint32_t dwChannels, std::uint32_t dwChannel,
                 std::span<float> mono);

// The plain mean of all channels. May work in place.
void MixChannels(std::span<const float> frames, std::uint32_t dwChannels, std::span<float> mono);

}  // namespace tool
