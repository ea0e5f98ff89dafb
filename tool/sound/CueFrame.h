// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "voxplay.hpp"

namespace tool {

// The frame of a cue point, which its record says twice. Our writers, and most others, say the same
// in both members. Some leave position at 0, as is usual without a play list, and a few leave
// sample_offset at 0. Where they differ, other programs go by sample_offset, so that is what people
// mean when they see the cue point elsewhere. But it counts from the block where the record names
// one, and there only position is a frame of the sound.
[[nodiscard]] inline std::uint32_t FrameOf(const voxplay::Cue& cue) noexcept {
  if (cue.sample_offset == 0) return cue.position;
  const bool bFromBlock = cue.block_start != 0 && cue.position != 0;
  return bFromBlock ? cue.position : cue.sample_offset;
}

}  // namespace tool
