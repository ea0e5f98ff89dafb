// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <string_view>

#include "sound/SoundInput.h"

namespace tool {

// The chunk with the samples of a RIFF file of ours: the last one of them is the one that counts.
// Null when there is none.
inline const voxplay::ChunkPlace* DataChunkOf(const S_SoundInfo& info) {
  const auto found =
      std::find_if(info.chunks.rbegin(), info.chunks.rend(), [](const voxplay::ChunkPlace& chunk) {
        return std::ranges::equal(chunk.id, std::string_view("data"));
      });
  return found == info.chunks.rend() ? nullptr : &*found;
}

}  // namespace tool
