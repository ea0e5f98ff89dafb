// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "sound/FileBytes.h"
#include "voxplay.hpp"

namespace tool {

// Whether a chunk holds marks, that is cue points, their labels, or loops, and is written anew when
// marks change. All other chunks stay as they are.
bool HoldsMarks(const voxplay::ChunkPlace& chunk, C_FileBytes& file);

struct S_MarkChunk {
  std::string strID;
  std::vector<std::byte> content;
};
struct S_MarkChunks {
  std::vector<S_MarkChunk> chunks;
  std::vector<std::string> lost;  // what they do not hold, one sentence each
};

// The chunks with the marks of these notes, for a sound like this one.
S_MarkChunks MarkChunksOf(const voxplay::NotesView& notes, const voxplay::Info& info);

}  // namespace tool
