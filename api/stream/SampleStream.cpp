// SPDX-License-Identifier: Apache-2.0
#include "stream/SampleStream.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>
#include <vector>

namespace api {

namespace {

constexpr std::size_t kBlockSamples = 4096;  // that are converted together

template <typename Sample>
Sample From16(std::int16_t nSample) {
  if constexpr (std::is_same_v<Sample, float>) {
    return static_cast<float>(nSample) * 0x1p-15F;
  } else {
    return Sample{nSample} * 65536;
  }
}

}  // namespace

std::size_t C_SampleStream16::Read(std::span<std::int32_t> samples) { return ReadAs(samples); }
std::size_t C_SampleStream16::Read(std::span<float> samples) { return ReadAs(samples); }

template <typename Sample>
std::size_t C_SampleStream16::ReadAs(std::span<Sample> samples) {
  ThrowKeptFailure();
  const std::size_t nChannels = ChannelCount();
  const std::size_t nFrames = samples.size() / nChannels;
  std::array<std::int16_t, kBlockSamples> block;
  // A block has whole frames, and a frame may have more samples than that.
  std::vector<std::int16_t> frame(nChannels > block.size() ? nChannels : 0);
  const std::span<std::int16_t> room = frame.empty() ? std::span(block) : std::span(frame);
  std::size_t nDone = 0;
  while (nDone < nFrames) {
    const std::size_t nWanted = std::min(room.size() / nChannels, nFrames - nDone);
    const std::size_t nRead = ReadOrKeepFailure(room.first(nWanted * nChannels), nDone > 0);
    std::ranges::transform(room.first(nRead * nChannels),
                           samples.subspan(nDone * nChannels).begin(), &From16<Sample>);
    nDone += nRead;
    if (nRead < nWanted) break;
  }
  return nDone;
}

// Frames that were read before a failure are returned before it is thrown.
std::size_t C_SampleStream16::ReadOrKeepFailure(std::span<std::int16_t> samples, bool bKeep) {
  try {
    return Read(samples);
  } catch (const C_Failure& failure) {
    if (!bKeep) throw;
    m_kept.emplace(failure, Position());
    return 0;
  }
}

void C_SampleStream16::ThrowKeptFailure() {
  if (!m_kept) return;
  const auto [failure, qwPosition] = *std::exchange(m_kept, std::nullopt);
  if (qwPosition == Position()) throw C_Failure(failure);
}

}  // namespace api
