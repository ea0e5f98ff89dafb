// SPDX-License-Identifier: Apache-2.0
#include "sound/WholeSound.h"

#include <algorithm>
#include <vector>

#include "base/Interrupt.h"

namespace tool {
namespace {

constexpr std::size_t kPieceSamples = 65536;

}  // namespace

std::uint64_t ReadToEnd(I_SoundInput& sound, const PFN_FramesRead& fnRead) {
  std::vector<std::int16_t> piece(std::max<std::size_t>(kPieceSamples, sound.Info().dwChannels));
  std::uint64_t qwFrames = 0;
  while (const std::size_t nRead = sound.Read(std::span(piece))) {
    ThrowIfInterrupted();
    qwFrames += nRead;
    if (fnRead) fnRead(qwFrames);
  }
  return qwFrames;
}

std::uint64_t ClaimedFrames(const S_SoundInfo& info) {
  if (info.ours && info.ours->claimed_frames != 0) return info.ours->claimed_frames;
  return info.qwFrames == kFramesUnknown || info.bFramesGuessed ? 0 : info.qwFrames;
}

}  // namespace tool
