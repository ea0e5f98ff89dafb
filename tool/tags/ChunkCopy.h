// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string>

#include "base/NewFile.h"
#include "tags/MarkChunks.h"
#include "voxplay.hpp"

namespace tool {

// Writes a RIFF or RF64 file again, byte for byte, but with other marks: the new chunks stand where
// the first of the old ones stood, or at the end. Samples and streams are not looked at, so this
// works for all codecs. Throws C_Failure for a file that the end cuts, and for one that would
// become too large.
void CopyWithMarks(const std::string& strFile, std::span<const voxplay::ChunkPlace> chunks,
                   std::span<const S_MarkChunk> marks, I_NewFile& target);

}  // namespace tool
